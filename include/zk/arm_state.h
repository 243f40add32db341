/* State of the arm. */
#ifndef ZK_ARM_STATE_H
#define ZK_ARM_STATE_H

#include <stdbool.h>

#include "zk/connection.h"
#include "zk/mailboxes.h"

typedef struct ArmStateReply {
    int32_t count;
    int32_t result;
    float joint[7];
    Pose pose;
    uint16_t arm_err;
    uint16_t sys_err;
} ArmStateReply;

typedef struct InstallPoseReply {
    int32_t count;
    int32_t result;
    float x, y, z;
} InstallPoseReply;

/*
 * Asks where the arm is. `joint` gets the connection's joints (6 or 7) in degrees, `pose` the tool in the work frame
 * (metres, radians; its quaternion stays as it was), the two words the arm's and the system's error.
 *
 * Returns 0, 5, 7, 9, 10, 11; the plain name adds 18, and 19 for a null pointer other than `pose`, which is not looked
 * at before it is written. Outputs get what the reply told before it failed. Application threads.
 */
ZK_API ArmStateReply Arm_Current_State_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Arm_State(ArmSocket socket, float* joint, Pose* pose, uint16_t* arm_err, uint16_t* sys_err);
ZK_API int Get_Current_Arm_State_Block(ArmSocket socket, float* joint, Pose* pose, uint16_t* arm_err,
                                       uint16_t* sys_err);
ZK_API int Parser_Arm_State(ArmSocket socket, const char* text, float* joint, Pose* pose, uint16_t* arm_err,
                            uint16_t* sys_err);

/*
 * Asks for the mounting angles, in degrees, and on success puts them into the local model. The plain name then compares
 * the outputs with the model: -1 when they differ, also when the query itself had failed; else 0, 5, 7, 9, 11, 18. None
 * of the pointers may be null. Application threads, not while another thread computes kinematics.
 */
ZK_API InstallPoseReply Get_Install_Pose_Cmd[ZK_SLOTS];
ZK_API int Get_Install_Pose(ArmSocket socket, float* x, float* y, float* z);
ZK_API int Get_Install_Pose_Block(ArmSocket socket, float* x, float* y, float* z);
ZK_API int Parser_Get_Install_Pose(const char* text, float* x, float* y, float* z);

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Arm_Init_Pose_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Install_Pose_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Arm_Init_Pose(const char* text);

#endif
