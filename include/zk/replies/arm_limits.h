/* Replies: limits and model of the arm. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_ARM_LIMITS_H
#define ZK_REPLIES_ARM_LIMITS_H

#include "zk/arm_limits.h"
#include "zk/mailboxes.h"

typedef struct DhDataReply {
    int32_t count;
    int32_t result;
    float data[5];
} DhDataReply;

ZK_API AckReply Set_Arm_Max_Line_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_Line_Speed(const char* text);
ZK_API FloatReply Get_Arm_Max_Line_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Line_Speed(const char* text, float* value);
ZK_API AckReply Set_Arm_Max_Line_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_Line_Acc(const char* text);
ZK_API FloatReply Get_Arm_Max_Line_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Line_Acc(const char* text, float* value);
ZK_API AckReply Set_Arm_Max_Angular_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_Angular_Speed(const char* text);
ZK_API FloatReply Get_Arm_Max_Angular_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Angular_Speed(const char* text, float* value);
ZK_API AckReply Set_Arm_Max_Angular_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_Angular_Acc(const char* text);
ZK_API FloatReply Get_Arm_Max_Angular_Acc_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Angular_Acc(const char* text, float* value);
ZK_API AckReply Set_Arm_Tip_Init_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_Tip_Init(const char* text);
ZK_API AckReply Set_Collision_Stage_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Collision_Stage(const char* text);
ZK_API IntReply Get_Collision_Stage_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Collision_Stage(const char* text, int32_t* stage);
ZK_API AckReply Set_DH_Data_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_DH_Data(const char* text);
ZK_API DhDataReply Get_DH_Data_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_DH_Data(const char* text, float* data);
ZK_API AckReply Set_Joint_Zero_OffSet_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Joint_Zero_Offset(const char* text);
ZK_API AckReply Set_ARM_Dynamic_Parm_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Hand(const char* text);
ZK_API AckReply Set_Plan_Speed_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Plan_Speed(const char* text);
ZK_API AckReply Set_Teach_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_TEACH_FRAME(const char* text);
ZK_API IntReply Get_Teach_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Teach_Frame(const char* text, int32_t* type);
ZK_API AckReply Set_Arm_Servo_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Arm_Servo_State(const char* text);
ZK_API int Parser_Set_System_State_Servo(const char* text);

#endif
