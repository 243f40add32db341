/*
 * Teaching and stepping: jogs a joint or an axis of the tool until a stop, or moves it by a fixed amount. zk/status.h
 * describes the forms and their statuses. Teach_Stop_Cmd may be called from any thread.
 *
 * direction: non-zero for the positive one. v: speed in percent, 1 to 100. type: 0 the x axis, 1 the y axis, any other
 * number the z axis.
 */
#ifndef ZK_TEACH_H
#define ZK_TEACH_H

#include <stdbool.h>

#include "zk/connection.h"

/* ------------------------------------------------------------------------------------------------------ Teaching -- */

/* Jog one joint (counted from 1), the position along an axis, or the orientation about an axis, until Teach_Stop_Cmd.
 * The blocking forms wait for the acknowledgement, not for the motion. */
ZK_API int Joint_Teach_Cmd(ArmSocket socket, uint8_t joint, uint8_t direction, uint8_t v, bool block);
ZK_API int Joint_Teach_Cmd_Block(ArmSocket socket, uint8_t joint, uint8_t direction, uint8_t v);
ZK_API int Joint_Teach_Cmd_NonBlock(ArmSocket socket, uint8_t joint, uint8_t direction, uint8_t v);

ZK_API int Pos_Teach_Cmd(ArmSocket socket, int32_t type, uint8_t direction, uint8_t v, bool block);
ZK_API int Pos_Teach_Cmd_Block(ArmSocket socket, int32_t type, uint8_t direction, uint8_t v);
ZK_API int Pos_Teach_Cmd_NonBlock(ArmSocket socket, int32_t type, uint8_t direction, uint8_t v);

ZK_API int Ort_Teach_Cmd(ArmSocket socket, int32_t type, uint8_t direction, uint8_t v, bool block);
ZK_API int Ort_Teach_Cmd_Block(ArmSocket socket, int32_t type, uint8_t direction, uint8_t v);
ZK_API int Ort_Teach_Cmd_NonBlock(ArmSocket socket, int32_t type, uint8_t direction, uint8_t v);

/* Ends jogging. */
ZK_API int Teach_Stop_Cmd(ArmSocket socket, bool block);
ZK_API int Teach_Stop_Cmd_Blcok(ArmSocket socket);
ZK_API int Teach_Stop_Cmd_NonBlcok(ArmSocket socket);

/* ------------------------------------------------------------------------------------------------------ Stepping -- */

/*
 * Move one joint by degrees, the position along an axis by metres, or the orientation about an axis by radians; the
 * sign of the step is the direction.
 *
 * The blocking forms wait for the report of the motion: its status (0 arrived, 1 not); 12 another device reported; 14
 * the arm does not move for m_nOutTime_max and some polls more; 5 the connection was closed; after failed polls of the
 * joints, their status. The non-blocking forms return 0.
 */
ZK_API int Joint_Step_Cmd(ArmSocket socket, uint8_t joint, uint8_t v, float step, bool block);
ZK_API int Joint_Step_Cmd_Block(ArmSocket socket, uint8_t joint, uint8_t v, float step);
ZK_API int Joint_Step_Cmd_NonBlock(ArmSocket socket, uint8_t joint, uint8_t v, float step);

ZK_API int Pos_Step_Cmd(ArmSocket socket, int32_t type, uint8_t v, float step, bool block);
ZK_API int Pos_Step_Cmd_Block(ArmSocket socket, int32_t type, uint8_t v, float step);
ZK_API int Pos_Step_Cmd_NonBlock(ArmSocket socket, int32_t type, uint8_t v, float step);

ZK_API int Ort_Step_Cmd(ArmSocket socket, int32_t type, uint8_t v, float step, bool block);
ZK_API int Ort_Step_Cmd_Block(ArmSocket socket, int32_t type, uint8_t v, float step);
ZK_API int Ort_Step_Cmd_NonBlock(ArmSocket socket, int32_t type, uint8_t v, float step);

#endif
