// Limits and model of the arm.
#include "zk/arm_limits.h"

#include "connection/reply.h"

using namespace zk;

AckReply Set_Arm_Max_Line_Speed_Cmd[ZK_SLOTS];
AckReply Set_Arm_Max_Line_Acc_Cmd[ZK_SLOTS];
AckReply Set_Arm_Max_Angular_Speed_Cmd[ZK_SLOTS];
AckReply Set_Arm_Max_Angular_Acc_Cmd[ZK_SLOTS];
AckReply Set_Arm_Tip_Init_Cmd[ZK_SLOTS];
AckReply Set_Collision_Stage_Cmd[ZK_SLOTS];
AckReply Set_DH_Data_Cmd[ZK_SLOTS];
AckReply Set_Joint_Zero_OffSet_Cmd[ZK_SLOTS];
AckReply Set_ARM_Dynamic_Parm_Cmd[ZK_SLOTS];
AckReply Set_Arm_Servo_State_Cmd[ZK_SLOTS];
AckReply Set_Teach_Frame_Cmd[ZK_SLOTS];
AckReply Set_Plan_Speed_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_System_State_Servo(const char* text) { return acknowledgement(text, "servo_state"); }
ZK_API int Parser_Arm_Line_Speed(const char* text) { return acknowledgement(text, "arm_line_speed", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Arm_Line_Acc(const char* text) { return acknowledgement(text, "arm_line_acc", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Arm_Angular_Speed(const char* text) {
    return acknowledgement(text, "arm_angular_speed", ZK_NOT_BOOLEAN);
}
ZK_API int Parser_Arm_Angular_Acc(const char* text) { return acknowledgement(text, "arm_angular_acc", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Arm_Tip_Init(const char* text) { return acknowledgement(text, "arm_init"); }
ZK_API int Parser_Set_Collision_Stage(const char* text) { return acknowledgement(text, "collision_state"); }
ZK_API int Parser_Set_DH_Data(const char* text) { return acknowledgement(text, "set_state"); }
ZK_API int Parser_Set_Joint_Zero_Offset(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_Hand(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Arm_Servo_State(const char* text) { return acknowledgement(text, "arm_servo"); }
ZK_API int Parser_Set_TEACH_FRAME(const char* text) { return acknowledgement(text, "set_state", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Set_Plan_Speed(const char* text) { return acknowledgement(text, "plan_state"); }
