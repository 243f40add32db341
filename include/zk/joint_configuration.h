/*
 * Joint configuration: limits of the arm and of its drives, enabling and errors, zero points, calibration. zk/status.h
 * describes the forms and their statuses.
 *
 * Joints are counted from 1. Arrays have room for the connection's joints (6 or 7). Calls that change the local model
 * must not run while another thread computes kinematics.
 */
#ifndef ZK_JOINT_CONFIGURATION_H
#define ZK_JOINT_CONFIGURATION_H

#include <stdbool.h>

#include "zk/connection.h"

/* ------------------------------------------------------------------------------------------------ Setting limits -- */

/*
 * Set one joint's limit: speed in degrees per second, acceleration in degrees per second squared, lowest and highest
 * position in degrees. The plain names, blocking or not, then query the limit of all joints and put it into the local
 * model; they return the status of that query. Those of speed and acceleration also return 5 for a socket below 1 and 2
 * before ZK_API_Init. A reply to the setter that is not boolean returns 8.
 *
 * The non-blocking forms of speed and acceleration send the number without dividing it by 6: the same value sets a
 * limit six times as high.
 */
ZK_API int Set_Joint_Speed(ArmSocket socket, uint8_t joint, float value, bool block);
ZK_API int Set_Joint_Speed_Block(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Speed_NonBlock(ArmSocket socket, uint8_t joint, float value);

ZK_API int Set_Joint_Acc(ArmSocket socket, uint8_t joint, float value, bool block);
ZK_API int Set_Joint_Acc_Block(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Acc_NonBlock(ArmSocket socket, uint8_t joint, float value);

ZK_API int Set_Joint_Min_Pos(ArmSocket socket, uint8_t joint, float value, bool block);
ZK_API int Set_Joint_Min_Pos_Block(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Min_Pos_NonBlock(ArmSocket socket, uint8_t joint, float value);

ZK_API int Set_Joint_Max_Pos(ArmSocket socket, uint8_t joint, float value, bool block);
ZK_API int Set_Joint_Max_Pos_Block(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Max_Pos_NonBlock(ArmSocket socket, uint8_t joint, float value);

/* ----------------------------------------------------------------------------------------------- Querying limits -- */

/*
 * Query the joints' limits, in the units above. On success the plain names also put the limits into the local model,
 * where kinematics and its checks use them; the blocking forms do not. The model's limits of speed and acceleration
 * become six times the reported ones: the factor between degrees per second and revolutions per minute is applied
 * twice.
 */
ZK_API int Get_Joint_Speed(ArmSocket socket, float* out);
ZK_API int Get_Joint_Speed_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Acc(ArmSocket socket, float* out);
ZK_API int Get_Joint_Acc_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Min_Pos(ArmSocket socket, float* out);
ZK_API int Get_Joint_Min_Pos_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Max_Pos(ArmSocket socket, float* out);
ZK_API int Get_Joint_Max_Pos_Block(ArmSocket socket, float* out);

/* -------------------------------------------------------------------------------------------------- Drive limits -- */

/* Set one drive's limit, in the units above. The local model does not hold these. */
ZK_API int Set_Joint_Drive_Speed(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Drive_Speed_Block(ArmSocket socket, uint8_t joint, float value);

ZK_API int Set_Joint_Drive_Acc(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Drive_Acc_Block(ArmSocket socket, uint8_t joint, float value);

ZK_API int Set_Joint_Drive_Min_Pos(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Drive_Min_Pos_Block(ArmSocket socket, uint8_t joint, float value);

ZK_API int Set_Joint_Drive_Max_Pos(ArmSocket socket, uint8_t joint, float value);
ZK_API int Set_Joint_Drive_Max_Pos_Block(ArmSocket socket, uint8_t joint, float value);

/* Query the drives' limits, in the units above. The pointer is not tested. */
ZK_API int Get_Joint_Drive_Speed(ArmSocket socket, float* out);
ZK_API int Get_Joint_Drive_Speed_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Drive_Acc(ArmSocket socket, float* out);
ZK_API int Get_Joint_Drive_Acc_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Drive_Min_Pos(ArmSocket socket, float* out);
ZK_API int Get_Joint_Drive_Min_Pos_Block(ArmSocket socket, float* out);

ZK_API int Get_Joint_Drive_Max_Pos(ArmSocket socket, float* out);
ZK_API int Get_Joint_Drive_Max_Pos_Block(ArmSocket socket, float* out);

/* --------------------------------------------------------------------------------------------- States and errors -- */

/* Enable (1) or disable (0) a joint; query which are enabled. A reply to the setter that is not boolean returns 8. */
ZK_API int Set_Joint_EN_State(ArmSocket socket, uint8_t joint, uint8_t state, bool block);
ZK_API int Set_Joint_EN_State_Block(ArmSocket socket, uint8_t joint, uint8_t state);
ZK_API int Set_Joint_EN_State_NonBlock(ArmSocket socket, uint8_t joint, uint8_t state);

ZK_API int Get_Joint_EN_State(ArmSocket socket, uint8_t* state);
ZK_API int Get_Joint_EN_State_Block(ArmSocket socket, uint8_t* state);

/* Clears a joint's error. The plain name waits 20 ms first. A reply that is not boolean returns 8. */
ZK_API int Set_Joint_Err_Clear(ArmSocket socket, uint8_t joint, bool block);
ZK_API int Set_Joint_Err_Clear_Block(ArmSocket socket, uint8_t joint);
ZK_API int Set_Joint_Err_Clear_NonBlock(ArmSocket socket, uint8_t joint);

/* Queries the joints' error words and brake states; the controller defines their meaning. */
ZK_API int Get_Joint_Err_Flag(ArmSocket socket, uint16_t* err_flag, uint16_t* brake_state);
ZK_API int Get_Joint_Err_Flag_Block(ArmSocket socket, uint16_t* err_flag, uint16_t* brake_state);

/* Queries the joints' firmware versions. */
ZK_API int Get_Joint_Software_Version(ArmSocket socket, int32_t* version);
ZK_API int Get_Joint_Software_Version_Block(ArmSocket socket, int32_t* version);

/* -------------------------------------------------------------------------------------- Zero points, calibration -- */

/* Makes the present position of a joint its zero point. The plain name waits 20 ms first, and returns 5 for a socket
 * below 1 and 2 before ZK_API_Init. A reply that is not boolean returns 8. */
ZK_API int Set_Joint_Zero_Pos(ArmSocket socket, uint8_t joint, bool block);
ZK_API int Set_Joint_Zero_Pos_Block(ArmSocket socket, uint8_t joint);
ZK_API int Set_Joint_Zero_Pos_NonBlock(ArmSocket socket, uint8_t joint);

/* Start and stop the calibration of the joints, and query its state. No reply (zk/status.h): use the non-blocking
 * forms; the state cannot be queried. */
ZK_API int Start_Calibrate(ArmSocket socket, bool block);
ZK_API int Start_Calibrate_Block(ArmSocket socket);
ZK_API int Start_Calibrate_NonBlock(ArmSocket socket);
ZK_API int Stop_Calibrate(ArmSocket socket, bool block);
ZK_API int Stop_Calibrate_Block(ArmSocket socket);
ZK_API int Stop_Calibrate_NonBlock(ArmSocket socket);
ZK_API int Get_Calibrate_State(ArmSocket socket, float* state, uint16_t* err, int32_t* value);
ZK_API int Get_Calibrate_State_Block(ArmSocket socket, float* state, uint16_t* err, int32_t* value);

/* --------------------------------------------------------------------------------------------------- Soft limits -- */

/* Moves joints that are beyond a soft limit back inside. The blocking form waits for the acknowledgement, then without
 * limit for the report of the motion, and returns its status. The non-blocking form waits for the acknowledgement. */
ZK_API int Auto_Fix_Joint_Over_Soft_Limit(ArmSocket socket, bool block);
ZK_API int Auto_Fix_Joint_Over_Soft_Limit_Block(ArmSocket socket);
ZK_API int Auto_Fix_Joint_Over_Soft_Limit_NonBlock(ArmSocket socket);

/* Sets the soft limits by one of the controller's modes. The plain names wait 2 ms first. */
ZK_API int Auto_Set_Joint_Limit(ArmSocket socket, uint8_t mode);
ZK_API int Auto_Set_Joint_Limit_E(ArmSocket socket, uint8_t mode);
ZK_API int Auto_Set_Joint_Limit_Block_E(ArmSocket socket, uint8_t mode);

#endif
