/* Limits and model of the arm. */
#ifndef ZK_ARM_LIMITS_H
#define ZK_ARM_LIMITS_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a text that
 * is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Arm_Max_Line_Speed_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Arm_Max_Line_Acc_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Arm_Max_Angular_Speed_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Arm_Max_Angular_Acc_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Arm_Tip_Init_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Collision_Stage_Cmd[ZK_SLOTS];
ZK_API AckReply Set_DH_Data_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Joint_Zero_OffSet_Cmd[ZK_SLOTS];
ZK_API AckReply Set_ARM_Dynamic_Parm_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Arm_Servo_State_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Teach_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Plan_Speed_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_System_State_Servo(const char* text);
ZK_API int Parser_Arm_Line_Speed(const char* text);
ZK_API int Parser_Arm_Line_Acc(const char* text);
ZK_API int Parser_Arm_Angular_Speed(const char* text);
ZK_API int Parser_Arm_Angular_Acc(const char* text);
ZK_API int Parser_Arm_Tip_Init(const char* text);
ZK_API int Parser_Set_Collision_Stage(const char* text);
ZK_API int Parser_Set_DH_Data(const char* text);
ZK_API int Parser_Set_Joint_Zero_Offset(const char* text);
ZK_API int Parser_Set_Hand(const char* text);
ZK_API int Parser_Arm_Servo_State(const char* text);
ZK_API int Parser_Set_TEACH_FRAME(const char* text);
ZK_API int Parser_Set_Plan_Speed(const char* text);

#endif
