/*
 * Limits and model of the arm as a whole. zk/status.h describes the forms and their statuses.
 */
#ifndef ZK_ARM_LIMITS_H
#define ZK_ARM_LIMITS_H

#include <stdbool.h>

#include "zk/connection.h"

/* ---------------------------------------------------------------------------------------------- Cartesian limits -- */

/* Set and query the greatest speed and acceleration of the tool: metres along a line, radians for a rotation, per
 * second and per second squared. A reply that is not boolean returns 8. Set_Arm_Angular_Acc_Block may take the reply to
 * an earlier call. Get_Arm_Angular_Speed does not test its pointer. */
ZK_API int Set_Arm_Line_Speed(ArmSocket socket, float value, bool block);
ZK_API int Set_Arm_Line_Speed_Block(ArmSocket socket, float value);
ZK_API int Set_Arm_Line_Speed_NonBlock(ArmSocket socket, float value);

ZK_API int Get_Arm_Line_Speed(ArmSocket socket, float* value);
ZK_API int Get_Arm_Line_Speed_Block(ArmSocket socket, float* value);

ZK_API int Set_Arm_Line_Acc(ArmSocket socket, float value, bool block);
ZK_API int Set_Arm_Line_Acc_Block(ArmSocket socket, float value);
ZK_API int Set_Arm_Line_Acc_NonBlock(ArmSocket socket, float value);

ZK_API int Get_Arm_Line_Acc(ArmSocket socket, float* value);
ZK_API int Get_Arm_Line_Acc_Block(ArmSocket socket, float* value);

ZK_API int Set_Arm_Angular_Speed(ArmSocket socket, float value, bool block);
ZK_API int Set_Arm_Angular_Speed_Block(ArmSocket socket, float value);
ZK_API int Set_Arm_Angular_Speed_NonBlock(ArmSocket socket, float value);

ZK_API int Get_Arm_Angular_Speed(ArmSocket socket, float* value);
ZK_API int Get_Arm_Angular_Speed_Block(ArmSocket socket, float* value);

ZK_API int Set_Arm_Angular_Acc(ArmSocket socket, float value, bool block);
ZK_API int Set_Arm_Angular_Acc_Block(ArmSocket socket, float value);
ZK_API int Set_Arm_Angular_Acc_NonBlock(ArmSocket socket, float value);

ZK_API int Get_Arm_Angular_Acc(ArmSocket socket, float* value);
ZK_API int Get_Arm_Angular_Acc_Block(ArmSocket socket, float* value);

/* ------------------------------------------------------------------------------------------------ Tip, collision -- */

/* Restores the Cartesian limits that the arm starts with. The blocking form may take the reply to an earlier call. */
ZK_API int Set_Arm_Tip_Init(ArmSocket socket, bool block);
ZK_API int Set_Arm_Tip_Init_Block(ArmSocket socket);
ZK_API int Set_Arm_Tip_Init_NonBlock(ArmSocket socket);

/* Set and query the sensitivity of the collision detection: 0 is off, 8 reacts to the lightest touch. */
ZK_API int Set_Collision_Stage(ArmSocket socket, int32_t stage, bool block);
ZK_API int Set_Collision_Stage_Block(ArmSocket socket, int32_t stage);
ZK_API int Set_Collision_Stage_NonBlock(ArmSocket socket, int32_t stage);

ZK_API int Get_Collision_Stage(ArmSocket socket, int32_t* stage);
ZK_API int Get_Collision_Stage_Block(ArmSocket socket, int32_t* stage);

/* ---------------------------------------------------------------------------------------------- Model of the arm -- */

/* Set and query the controller's five DH lengths, in tenths on the wire; the controller defines their meaning. The
 * variable lwt holds the fourth: the non-blocking form writes it at once, the blocking form after the controller has
 * accepted, and every query from its reply. The blocking form may take the reply to an earlier call that timed out. */
ZK_API float lwt;
ZK_API int Set_DH_Data(ArmSocket socket, float first, float second, float third, float fourth, float fifth, bool block);
ZK_API int Set_DH_Data_Block(ArmSocket socket, float first, float second, float third, float fourth, float fifth);
ZK_API int Set_DH_Data_NonBlock(ArmSocket socket, float first, float second, float third, float fourth, float fifth);

ZK_API int Get_DH_Data(ArmSocket socket, float* first, float* second, float* third, float* fourth, float* fifth);
ZK_API int Get_DH_Data_Block(ArmSocket socket, float* first, float* second, float* third, float* fourth, float* fifth);

/* Sets the zero offsets of the connection's joints (6 or 7), in degrees. */
ZK_API int Set_Joint_Zero_Offset(ArmSocket socket, const float* offset, bool block);
ZK_API int Set_Joint_Zero_Offset_Block(ArmSocket socket, const float* offset);
ZK_API int Set_Joint_Zero_Offset_NonBlock(ArmSocket socket, const float* offset);

/* Sets the dynamic parameters, two for each of the connection's joints (12 or 14). */
ZK_API int Set_Arm_Dynamic_Parm(ArmSocket socket, const float* parm, bool block);
ZK_API int Set_Arm_Dynamic_Parm_Block(ArmSocket socket, const float* parm);
ZK_API int Set_Arm_Dynamic_Parm_NonBlock(ArmSocket socket, const float* parm);

/* Sets the speed of planned motion in percent. */
ZK_API int Set_Plan_Speed(ArmSocket socket, int32_t speed, bool block);
ZK_API int Set_Plan_Speed_Block(ArmSocket socket, int32_t speed);
ZK_API int Set_Plan_Speed_NonBlock(ArmSocket socket, int32_t speed);

/* Set and query the frame in which teaching moves: 0 work frame, 1 tool frame. A reply to the setter that is not
 * boolean returns 8. */
ZK_API int Set_Teach_Frame(ArmSocket socket, int32_t type, bool block);
ZK_API int Set_Teach_Frame_Block(ArmSocket socket, int32_t type);
ZK_API int Set_Teach_Frame_NonBlock(ArmSocket socket, int32_t type);

ZK_API int Get_Teach_Frame(ArmSocket socket, int32_t* type);
ZK_API int Get_Teach_Frame_Block(ArmSocket socket, int32_t* type);

/* --------------------------------------------------------------------------------------------------------- Servo -- */

/* Switches the servos of the arm on (any non-zero state) or off. */
ZK_API int Set_Arm_Servo_State(ArmSocket socket, uint8_t state, bool block);
ZK_API int Set_Arm_Servo_State_Block(ArmSocket socket, uint8_t state);
ZK_API int Set_Arm_Servo_State_NonBlock(ArmSocket socket, uint8_t state);

/* Sets the servo state of the system. No reply (zk/status.h): use the non-blocking form. */
ZK_API int Set_System_State_Servo(ArmSocket socket, uint8_t state, bool block);
ZK_API int Set_System_State_Servo_Block(ArmSocket socket, uint8_t state);
ZK_API int Set_System_State_Servo_NonBlock(ArmSocket socket, uint8_t state);

#endif
