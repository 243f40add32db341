/* Replies: state of the arm. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_ARM_STATE_H
#define ZK_REPLIES_ARM_STATE_H

#include "zk/arm_state.h"
#include "zk/mailboxes.h"

typedef struct ArmStateReply {
    int32_t count;
    int32_t result;
    float joint[7];
    Pose pose;
    uint16_t arm_err;
    uint16_t sys_err;
} ArmStateReply;

typedef struct ArmAllStateReply {
    int32_t count;
    int32_t result;
    ArmAllState state;
} ArmAllStateReply;

typedef struct InstallPoseReply {
    int32_t count;
    int32_t result;
    float x, y, z;
} InstallPoseReply;

ZK_API ArmStateReply Arm_Current_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_State(ArmSocket socket, const char* text, float* joint, Pose* pose, uint16_t* arm_err,
                            uint16_t* sys_err);
ZK_API JointReply Get_Joint_Temperature_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Temperature(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Current_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Current(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Voltage_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Voltage(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Degree_Cmd[ZK_SLOTS];
ZK_API int Paser_Get_Joint_Degree(const char* text, float* out);
ZK_API ArmAllStateReply Get_Joint_All_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_All_State(ArmSocket socket, const char* text, ArmAllState* state);
ZK_API IntReply Get_Arm_Plan_Num_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Plan_Num(const char* text, int32_t* number);
ZK_API AckReply Set_Arm_Init_Pose_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Arm_Init_Pose(const char* text);
ZK_API JointReply Get_Arm_Init_Pose_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Init_Pose(ArmSocket socket, const char* text, float* joint);
ZK_API AckReply Set_Install_Pose_Cmd[ZK_SLOTS];
ZK_API InstallPoseReply Get_Install_Pose_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Install_Pose(const char* text, float* x, float* y, float* z);

#endif
