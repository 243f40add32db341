/*
 * State of the arm as a whole: its position, the measurements of its joints, and the poses that the controller keeps
 * for it. zk/status.h describes the forms and their statuses. Joint arrays have room for the connection's joints (6 or
 * 7).
 */
#ifndef ZK_ARM_STATE_H
#define ZK_ARM_STATE_H

#include <stdbool.h>

#include "zk/connection.h"

/* What the joints measure. Entries beyond the connection's joints keep their values. */
typedef struct ArmAllState {
    float temperature[7]; /* degrees Celsius */
    float voltage[7];     /* volts */
    float current[7];     /* amperes */
    uint8_t en_state[7];  /* 1 enabled */
    uint16_t err_flag[7]; /* error words of the joints */
    uint16_t sys_err;     /* error word of the system */
} ArmAllState;

ZK_STATIC_ASSERT(sizeof(ArmAllState) == 108 && offsetof(ArmAllState, en_state) == 84 &&
                     offsetof(ArmAllState, err_flag) == 92 && offsetof(ArmAllState, sys_err) == 106,
                 "layout of ArmAllState");

/*
 * Queries where the arm is. `joint` gets the connection's joints (6 or 7) in degrees, `pose` the tool in the work frame
 * in metres and radians, `arm_err` and `sys_err` the error words of the arm and of the system.
 *
 * The quaternion of `pose` keeps its value. Call ZK_Complete_Pose before you pass the pose to streaming or inverse
 * kinematics, which read the quaternion. The plain name does not test `pose` for null.
 */
ZK_API int Get_Current_Arm_State(ArmSocket socket, float* joint, Pose* pose, uint16_t* arm_err, uint16_t* sys_err);
ZK_API int Get_Current_Arm_State_Block(ArmSocket socket, float* joint, Pose* pose, uint16_t* arm_err,
                                       uint16_t* sys_err);

/* Query what each joint measures: degrees Celsius, amperes, volts. A reply with fewer values leaves the later outputs
 * as the mailbox held them; one with more returns 11. */
ZK_API int Get_Joint_Temperature(ArmSocket socket, float* out);
ZK_API int Get_Joint_Temperature_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Current(ArmSocket socket, float* out);
ZK_API int Get_Joint_Current_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Voltage(ArmSocket socket, float* out);
ZK_API int Get_Joint_Voltage_Blcok(ArmSocket socket, float* out);

/* Queries the joint angles in degrees. */
ZK_API int Get_Joint_Degree(ArmSocket socket, float* out);
ZK_API int Get_Joint_Degree_Block(ArmSocket socket, float* out);

/* Queries everything that the joints measure, and their states. */
ZK_API int Get_Arm_All_State(ArmSocket socket, ArmAllState* state);
ZK_API int Get_Arm_All_State_Block(ArmSocket socket, ArmAllState* state);

/* Queries how many trajectories are planned. */
ZK_API int Get_Arm_Plan_Num(ArmSocket socket, int32_t* number);
ZK_API int Get_Arm_Plan_Num_Block(ArmSocket socket, int32_t* number);

/* Set and query the joint angles, in degrees, that the controller keeps as the initial pose. */
ZK_API int Set_Arm_Init_Pose(ArmSocket socket, const float* joint, bool block);
ZK_API int Set_Arm_Init_Pose_Block(ArmSocket socket, const float* joint);
ZK_API int Set_Arm_Init_Pose_NonBlock(ArmSocket socket, const float* joint);

ZK_API int Get_Arm_Init_Pose(ArmSocket socket, float* joint);
ZK_API int Get_Arm_Init_Pose_Block(ArmSocket socket, float* joint);

/* Sets the mounting angles, in degrees, and puts them into the local model: the non-blocking form before it queues the
 * request, even if the controller refuses it; the blocking form after the controller has accepted. Do not call it while
 * another thread computes kinematics. */
ZK_API int Set_Install_Pose(ArmSocket socket, bool block, float x, float y, float z);
ZK_API int Set_Install_Pose_Block(ArmSocket socket, float x, float y, float z);
ZK_API int Set_Install_Pose_NonBlock(ArmSocket socket, float x, float y, float z);

/* Queries the mounting angles, in degrees, and on success puts them into the local model. The plain name then compares
 * the outputs with the model and returns -1 when an angle differs by more than 0.001 degrees, also after a failed
 * query. No pointer may be null. Do not call it while another thread computes kinematics. */
ZK_API int Get_Install_Pose(ArmSocket socket, float* x, float* y, float* z);
ZK_API int Get_Install_Pose_Block(ArmSocket socket, float* x, float* y, float* z);

#endif
