/*
 * Limits and model of the arm as a whole. zk/status.h describes the forms and their statuses.
 */
#ifndef ZK_ARM_LIMITS_H
#define ZK_ARM_LIMITS_H

#include <stdbool.h>

#include "zk/connection.h"

/* ---------------------------------------------------------------------------------------------- Cartesian limits -- */

/*
 * Set, and ask for, the greatest speed and acceleration of the tool: along a line in metres, of a rotation in radians,
 * per second and per second squared. A reply of another type than boolean gives 8. Set_Arm_Angular_Acc_Block takes a
 * reply that an earlier call left behind; Get_Arm_Angular_Speed tests no pointer.
 */
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

/* Sets the Cartesian limits back to those the arm starts with. A reply that an earlier call left behind ends the wait.
 */
ZK_API int Set_Arm_Tip_Init(ArmSocket socket, bool block);
ZK_API int Set_Arm_Tip_Init_Block(ArmSocket socket);
ZK_API int Set_Arm_Tip_Init_NonBlock(ArmSocket socket);

/* Set, and ask for, how readily a collision is noticed: 0 not at all to 8 at the lightest touch. */
ZK_API int Set_Collision_Stage(ArmSocket socket, int32_t stage, bool block);
ZK_API int Set_Collision_Stage_Block(ArmSocket socket, int32_t stage);
ZK_API int Set_Collision_Stage_NonBlock(ArmSocket socket, int32_t stage);

ZK_API int Get_Collision_Stage(ArmSocket socket, int32_t* stage);
ZK_API int Get_Collision_Stage_Block(ArmSocket socket, int32_t* stage);

/* ---------------------------------------------------------------------------------------------- Model of the arm -- */

/*
 * Set, and ask for, the controller's five DH lengths, on the wire in tenths; their meaning is the controller's. The
 * fourth is kept in lwt: at once in the non-blocking form, after the controller's consent in the blocking one, and with
 * every answer. A reply to an earlier setting that timed out ends the wait of the blocking form.
 */
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

/* Sets the dynamic parameters, two for each of the connection's joints (12 or 14). Parser_Set_Hand reads the
 * acknowledgement of this and of many other commands. */
ZK_API int Set_Arm_Dynamic_Parm(ArmSocket socket, const float* parm, bool block);
ZK_API int Set_Arm_Dynamic_Parm_Block(ArmSocket socket, const float* parm);
ZK_API int Set_Arm_Dynamic_Parm_NonBlock(ArmSocket socket, const float* parm);

/* Sets the speed of planned motion in percent. */
ZK_API int Set_Plan_Speed(ArmSocket socket, int32_t speed, bool block);
ZK_API int Set_Plan_Speed_Block(ArmSocket socket, int32_t speed);
ZK_API int Set_Plan_Speed_NonBlock(ArmSocket socket, int32_t speed);

/* Set, and ask for, the frame that teaching moves in: 0 work frame, 1 tool frame. A reply of another type than boolean
 * gives 8. */
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

/*
 * Sets the servo state of the system. The controller does it, but its reply does not reach the caller: the blocking
 * form ends in 7 after m_nOutTime (6 when the request could not be written, 20 with 200 replies pending). Use the
 * other.
 */
ZK_API int Set_System_State_Servo(ArmSocket socket, uint8_t state, bool block);
ZK_API int Set_System_State_Servo_Block(ArmSocket socket, uint8_t state);
ZK_API int Set_System_State_Servo_NonBlock(ArmSocket socket, uint8_t state);

#endif
