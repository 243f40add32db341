/*
 * State of the arm as a whole: where it stands, what its joints measure, and the poses that the controller keeps for
 * it. zk/status.h describes the forms and their statuses. Joint arrays have room for the connection's joints (6 or 7).
 */
#ifndef ZK_ARM_STATE_H
#define ZK_ARM_STATE_H

#include <stdbool.h>

#include "zk/connection.h"

/* What the joints measure; entries beyond the connection's joints stay as they were. */
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
 * Asks where the arm is. `joint` gets the connection's joints (6 or 7) in degrees, `pose` the tool in the work frame
 * (metres, radians; its quaternion stays as it was), the two words the arm's and the system's error.
 *
 * Returns 0, 5, 7, 9, 10, 11; the plain name adds 18, and 19 for a null pointer other than `pose`, which is not looked
 * at before it is written. Outputs get what the reply told before it failed. Application threads.
 */
ZK_API int Get_Current_Arm_State(ArmSocket socket, float* joint, Pose* pose, uint16_t* arm_err, uint16_t* sys_err);
ZK_API int Get_Current_Arm_State_Block(ArmSocket socket, float* joint, Pose* pose, uint16_t* arm_err,
                                       uint16_t* sys_err);

/* Ask what each joint measures: degrees Celsius, amperes, volts. A reply with fewer values leaves the later ones as the
 * record held them; one with more is of the wrong type. */
ZK_API int Get_Joint_Temperature(ArmSocket socket, float* out);
ZK_API int Get_Joint_Temperature_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Current(ArmSocket socket, float* out);
ZK_API int Get_Joint_Current_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Voltage(ArmSocket socket, float* out);
ZK_API int Get_Joint_Voltage_Blcok(ArmSocket socket, float* out);

/* Asks for the joint angles in degrees. The parser stores as many as the reply holds, seven at most. */
ZK_API int Get_Joint_Degree(ArmSocket socket, float* out);
ZK_API int Get_Joint_Degree_Block(ArmSocket socket, float* out);

/* Asks for all that the joints measure, and their states. */
ZK_API int Get_Arm_All_State(ArmSocket socket, ArmAllState* state);
ZK_API int Get_Arm_All_State_Block(ArmSocket socket, ArmAllState* state);

/* Asks how many trajectories are planned. */
ZK_API int Get_Arm_Plan_Num(ArmSocket socket, int32_t* number);
ZK_API int Get_Arm_Plan_Num_Block(ArmSocket socket, int32_t* number);

/* Set, and ask for, the joint angles in degrees that the controller keeps as the initial pose. */
ZK_API int Set_Arm_Init_Pose(ArmSocket socket, const float* joint, bool block);
ZK_API int Set_Arm_Init_Pose_Block(ArmSocket socket, const float* joint);
ZK_API int Set_Arm_Init_Pose_NonBlock(ArmSocket socket, const float* joint);

ZK_API int Get_Arm_Init_Pose(ArmSocket socket, float* joint);
ZK_API int Get_Arm_Init_Pose_Block(ArmSocket socket, float* joint);

/*
 * Sets the mounting angles, in degrees, and puts them into the local model: in the non-blocking form before the request
 * goes out, whatever the controller says to it; in the other after its consent. Not while another thread computes
 * kinematics.
 */
ZK_API int Set_Install_Pose(ArmSocket socket, bool block, float x, float y, float z);
ZK_API int Set_Install_Pose_Block(ArmSocket socket, float x, float y, float z);
ZK_API int Set_Install_Pose_NonBlock(ArmSocket socket, float x, float y, float z);

/*
 * Asks for the mounting angles, in degrees, and on success puts them into the local model. The plain name then compares
 * the outputs with the model: -1 when they differ, also when the query itself had failed; else 0, 5, 7, 9, 11, 18. None
 * of the pointers may be null. Application threads, not while another thread computes kinematics.
 */
ZK_API int Get_Install_Pose(ArmSocket socket, float* x, float* y, float* z);
ZK_API int Get_Install_Pose_Block(ArmSocket socket, float* x, float* y, float* z);

#endif
