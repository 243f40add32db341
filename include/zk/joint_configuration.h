/* Joint configuration. */
#ifndef ZK_JOINT_CONFIGURATION_H
#define ZK_JOINT_CONFIGURATION_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* ------------------------------------------------------------------------------------------------------- Limits -- */

/*
 * Ask the controller for the joints' limits: speed in degrees per second, acceleration in degrees per second squared,
 * lowest and highest position in degrees. `out` has room for the connection's joints (6 or 7). On success the plain
 * names also put the limits into the local model, where kinematics and its checks use them; the blocking forms do not.
 *
 * Return 0; 5 not an open connection; 7 no reply within m_nOutTime; 9, 10, 11 a reply that is broken, of another number
 * of joints, or of the wrong type. The plain names add 18 during a file transfer and 19 for a null pointer. Application
 * threads; the plain names not while another thread computes kinematics.
 */
ZK_API JointReply Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Speed(ArmSocket socket, float* out);
ZK_API int Get_Joint_Speed_Block(ArmSocket socket, float* out);
ZK_API int Parser_Get_Joint_Speed(ArmSocket socket, const char* text, float* out);

ZK_API JointReply Get_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Acc(ArmSocket socket, float* out);
ZK_API int Get_Joint_Acc_Block(ArmSocket socket, float* out);
ZK_API int Parser_Get_Joint_Acc(ArmSocket socket, const char* text, float* out);

ZK_API JointReply Get_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Min_Pos(ArmSocket socket, float* out);
ZK_API int Get_Joint_Min_Pos_Block(ArmSocket socket, float* out);
ZK_API int Parser_Get_Min_Pos(ArmSocket socket, const char* text, float* out);

ZK_API JointReply Get_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Max_Pos(ArmSocket socket, float* out);
ZK_API int Get_Joint_Max_Pos_Block(ArmSocket socket, float* out);
ZK_API int Parser_Get_Max_Pos(ArmSocket socket, const char* text, float* out);

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_En_State_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Zero_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Clear_Err_Cmd[ZK_SLOTS];
ZK_API AckReply Auto_Fix_Joint_Over_Soft_Limit_Cmd[ZK_SLOTS];
ZK_API AckReply Auto_Set_Joint_Limit_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Drive_Max_Speed_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Drive_Max_Acc_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Drive_Min_Pos_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Drive_Max_Pos_Cmd[ZK_SLOTS];

ZK_API int Parser_Start_Calibrate(const char* text);
ZK_API int Parser_Joint_Speed(const char* text);
ZK_API int Parser_Joint_Acc(const char* text);
ZK_API int Parser_Joint_Min_Pos(const char* text);
ZK_API int Parser_Joint_Max_Pos(const char* text);
ZK_API int Parser_Joint_EN_State(const char* text);
ZK_API int Parser_Joint_Zero_Pos(const char* text);
ZK_API int Parser_Joint_Err_Clear(const char* text);
ZK_API int Parser_Set_Joint_Limit(const char* text);
ZK_API int Parser_Set_Joint_Drive_Max_Speed(const char* text);
ZK_API int Parser_Set_Joint_Drive_Max_Acc(const char* text);
ZK_API int Parser_Set_Joint_Drive_Min_Pos(const char* text);
ZK_API int Parser_Set_Joint_Drive_Max_Pos(const char* text);

#endif
