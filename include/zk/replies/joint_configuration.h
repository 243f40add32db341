/* Replies: joint configuration. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_JOINT_CONFIGURATION_H
#define ZK_REPLIES_JOINT_CONFIGURATION_H

#include "zk/joint_configuration.h"
#include "zk/mailboxes.h"

/* Error words and brake states of the joints. */
typedef struct JointErrorReply {
    int32_t count;
    int32_t result;
    int32_t err_flag[8];
    int32_t brake_state[8];
} JointErrorReply;

ZK_API AckReply Set_Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Speed(const char* text);
ZK_API AckReply Set_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Acc(const char* text);
ZK_API AckReply Set_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Min_Pos(const char* text);
ZK_API AckReply Set_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Max_Pos(const char* text);
ZK_API JointReply Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Speed(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Acc(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Min_Pos(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Max_Pos(ArmSocket socket, const char* text, float* out);
ZK_API AckReply Set_Joint_Drive_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Joint_Drive_Max_Speed(const char* text);
ZK_API AckReply Set_Joint_Drive_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Joint_Drive_Max_Acc(const char* text);
ZK_API AckReply Set_Joint_Drive_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Joint_Drive_Min_Pos(const char* text);
ZK_API AckReply Set_Joint_Drive_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Joint_Drive_Max_Pos(const char* text);
ZK_API JointReply Get_Joint_Drive_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Drive_Max_Speed(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Drive_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Drive_Max_Acc(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Drive_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Drive_Min_Pos(ArmSocket socket, const char* text, float* out);
ZK_API JointReply Get_Joint_Drive_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Drive_Max_Pos(ArmSocket socket, const char* text, float* out);
ZK_API AckReply Set_Joint_En_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_EN_State(const char* text);
ZK_API JointIntReply Get_Joint_En_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_EN_State(ArmSocket socket, const char* text, int32_t* state);
ZK_API AckReply Set_Joint_Clear_Err_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Err_Clear(const char* text);
ZK_API JointErrorReply Get_Joint_Err_Flag_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Err_Flag(ArmSocket socket, const char* text, int32_t* err_flag, int32_t* brake_state);
ZK_API JointIntReply Get_Joint_Software_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Software_Version(ArmSocket socket, const char* text, int32_t* version);
ZK_API AckReply Set_Joint_Zero_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Zero_Pos(const char* text);
ZK_API int Parser_Start_Calibrate(const char* text);

/* Fills the outputs from a good reply and returns 11. */
ZK_API int Parser_Get_Calibrate_State(ArmSocket socket, const char* text, float* state, uint16_t* err, int32_t* value);
ZK_API AckReply Auto_Fix_Joint_Over_Soft_Limit_Cmd[ZK_SLOTS];
ZK_API AckReply Auto_Set_Joint_Limit_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Joint_Limit(const char* text);

#endif
