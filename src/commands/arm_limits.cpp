// Limits and model of the arm as a whole: Cartesian limits, tip, collision stage, DH data, offsets, dynamics, servo.
#include "zk/replies/arm_limits.h"

#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/pending.h"

using namespace zk;

float lwt = 0;

namespace {

// An integer. Its type is not checked.
int untyped_integer(const char* text, const char* key, int32_t* value) {
    Reply reply(text);
    const Item item = reply.find(key);
    if (reply.require(bool(item), ZK_BAD_REPLY)) *value = item.integer();
    return reply.status();
}

}  // namespace

static Request line_speed(ArmSocket s, float value) {
    return Request(s, "set_arm_max_line_speed").number("arm_line_speed", thousandths(value));
}
AckReply Set_Arm_Max_Line_Speed_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Line_Speed(ArmSocket s, float value, bool block) {
    return guarded(block ? Set_Arm_Line_Speed_Block : Set_Arm_Line_Speed_NonBlock, s, value);
}
ZK_API int Set_Arm_Line_Speed_Block(ArmSocket s, float value) {
    return set(line_speed(s, value), Set_Arm_Max_Line_Speed_Cmd);
}
ZK_API int Set_Arm_Line_Speed_NonBlock(ArmSocket s, float value) { return post(line_speed(s, value)); }
ZK_API int Parser_Arm_Line_Speed(const char* text) { return acknowledgement(text, "arm_line_speed", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Arm_Line_Speed);

FloatReply Get_Arm_Max_Line_Speed_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Line_Speed(ArmSocket s, float* value) { return checked(Get_Arm_Line_Speed_Block, s, value); }
ZK_API int Get_Arm_Line_Speed_Block(ArmSocket s, float* value) {
    return query_value(s, "get_arm_max_line_speed", Get_Arm_Max_Line_Speed_Cmd, value);
}
ZK_API int Parser_Get_Arm_Line_Speed(const char* text, float* value) {
    return float_value(text, "arm_line_speed", 1000.0f, value);
}
ZK_TWIN(Parser_Get_Arm_Line_Speed);

static Request line_acc(ArmSocket s, float value) {
    return Request(s, "set_arm_max_line_acc").number("arm_line_acc", thousandths(value));
}
AckReply Set_Arm_Max_Line_Acc_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Line_Acc(ArmSocket s, float value, bool block) {
    return guarded(block ? Set_Arm_Line_Acc_Block : Set_Arm_Line_Acc_NonBlock, s, value);
}
ZK_API int Set_Arm_Line_Acc_Block(ArmSocket s, float value) {
    return set(line_acc(s, value), Set_Arm_Max_Line_Acc_Cmd);
}
ZK_API int Set_Arm_Line_Acc_NonBlock(ArmSocket s, float value) { return post(line_acc(s, value)); }
ZK_API int Parser_Arm_Line_Acc(const char* text) { return acknowledgement(text, "arm_line_acc", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Arm_Line_Acc);

FloatReply Get_Arm_Max_Line_Acc_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Line_Acc(ArmSocket s, float* value) { return checked(Get_Arm_Line_Acc_Block, s, value); }
ZK_API int Get_Arm_Line_Acc_Block(ArmSocket s, float* value) {
    return query_value(s, "get_arm_max_line_acc", Get_Arm_Max_Line_Acc_Cmd, value);
}
ZK_API int Parser_Get_Arm_Line_Acc(const char* text, float* value) {
    return float_value(text, "arm_line_acc", 1000.0f, value);
}
ZK_TWIN(Parser_Get_Arm_Line_Acc);

static Request angular_speed(ArmSocket s, float value) {
    return Request(s, "set_arm_max_angular_speed").number("arm_angular_speed", thousandths(value));
}
AckReply Set_Arm_Max_Angular_Speed_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Angular_Speed(ArmSocket s, float value, bool block) {
    return guarded(block ? Set_Arm_Angular_Speed_Block : Set_Arm_Angular_Speed_NonBlock, s, value);
}
ZK_API int Set_Arm_Angular_Speed_Block(ArmSocket s, float value) {
    return set(angular_speed(s, value), Set_Arm_Max_Angular_Speed_Cmd);
}
ZK_API int Set_Arm_Angular_Speed_NonBlock(ArmSocket s, float value) { return post(angular_speed(s, value)); }
ZK_API int Parser_Arm_Angular_Speed(const char* text) {
    return acknowledgement(text, "arm_angular_speed", ZK_NOT_BOOLEAN);
}
ZK_TWIN(Parser_Arm_Angular_Speed);

// Unlike the other three, it does not test its pointer.
FloatReply Get_Arm_Max_Angular_Speed_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Angular_Speed(ArmSocket s, float* value) { return guarded(Get_Arm_Angular_Speed_Block, s, value); }
ZK_API int Get_Arm_Angular_Speed_Block(ArmSocket s, float* value) {
    return query_value(s, "get_arm_max_angular_speed", Get_Arm_Max_Angular_Speed_Cmd, value);
}
ZK_API int Parser_Get_Arm_Angular_Speed(const char* text, float* value) {
    return float_value(text, "arm_angular_speed", 1000.0f, value);
}
ZK_TWIN(Parser_Get_Arm_Angular_Speed);

static Request angular_acc(ArmSocket s, float value) {
    return Request(s, "set_arm_max_angular_acc").number("arm_angular_acc", thousandths(value));
}
// The reply to an earlier call ends the wait at once.
AckReply Set_Arm_Max_Angular_Acc_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Angular_Acc(ArmSocket s, float value, bool block) {
    return guarded(block ? Set_Arm_Angular_Acc_Block : Set_Arm_Angular_Acc_NonBlock, s, value);
}
ZK_API int Set_Arm_Angular_Acc_Block(ArmSocket s, float value) {
    return set(angular_acc(s, value), Set_Arm_Max_Angular_Acc_Cmd, {.keeps_count = true});
}
ZK_API int Set_Arm_Angular_Acc_NonBlock(ArmSocket s, float value) { return post(angular_acc(s, value)); }
ZK_API int Parser_Arm_Angular_Acc(const char* text) { return acknowledgement(text, "arm_angular_acc", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Arm_Angular_Acc);

FloatReply Get_Arm_Max_Angular_Acc_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Angular_Acc(ArmSocket s, float* value) { return checked(Get_Arm_Angular_Acc_Block, s, value); }
ZK_API int Get_Arm_Angular_Acc_Block(ArmSocket s, float* value) {
    return query_value(s, "get_arm_max_angular_acc", Get_Arm_Max_Angular_Acc_Cmd, value);
}
ZK_API int Parser_Get_Arm_Angular_Acc(const char* text, float* value) {
    return float_value(text, "arm_angular_acc", 1000.0f, value);
}
ZK_TWIN(Parser_Get_Arm_Angular_Acc);

// The reply to an earlier call ends the wait at once.
AckReply Set_Arm_Tip_Init_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Tip_Init(ArmSocket s, bool block) {
    return guarded(block ? Set_Arm_Tip_Init_Block : Set_Arm_Tip_Init_NonBlock, s);
}
ZK_API int Set_Arm_Tip_Init_Block(ArmSocket s) {
    return set({s, "set_arm_init"}, Set_Arm_Tip_Init_Cmd, {.keeps_count = true});
}
ZK_API int Set_Arm_Tip_Init_NonBlock(ArmSocket s) { return post({s, "set_arm_init"}); }
ZK_API int Parser_Arm_Tip_Init(const char* text) { return acknowledgement(text, "arm_init"); }
ZK_TWIN(Parser_Arm_Tip_Init);

static Request collision_stage(ArmSocket s, int32_t stage) {
    return Request(s, "set_collision_stage").number("collision_stage", stage);
}
AckReply Set_Collision_Stage_Cmd[ZK_SLOTS];
ZK_API int Set_Collision_Stage(ArmSocket s, int32_t stage, bool block) {
    return guarded(block ? Set_Collision_Stage_Block : Set_Collision_Stage_NonBlock, s, stage);
}
ZK_API int Set_Collision_Stage_Block(ArmSocket s, int32_t stage) {
    return set(collision_stage(s, stage), Set_Collision_Stage_Cmd);
}
ZK_API int Set_Collision_Stage_NonBlock(ArmSocket s, int32_t stage) { return post(collision_stage(s, stage)); }
ZK_API int Parser_Set_Collision_Stage(const char* text) { return acknowledgement(text, "collision_state"); }
ZK_TWIN(Parser_Set_Collision_Stage);

IntReply Get_Collision_Stage_Cmd[ZK_SLOTS];
ZK_API int Get_Collision_Stage(ArmSocket s, int32_t* stage) { return checked(Get_Collision_Stage_Block, s, stage); }
ZK_API int Get_Collision_Stage_Block(ArmSocket s, int32_t* stage) {
    return query_value(s, "get_collision_stage", Get_Collision_Stage_Cmd, stage);
}
ZK_API int Parser_Get_Collision_Stage(const char* text, int32_t* stage) {
    return untyped_integer(text, "collision_stage", stage);
}
ZK_TWIN(Parser_Get_Collision_Stage);

// The fourth value goes into lwt: at once in the non-blocking form, after an accepted reply in the blocking one.
static Request dh_data(ArmSocket s, float first, float second, float third, float fourth, float fifth) {
    const auto tenths = [](float value) { return double(truncated(value * 10.0f)); };
    return Request(s, "set_DH_data")
        .numbers("data", {tenths(first), tenths(second), tenths(third), tenths(fourth), tenths(fifth)});
}
AckReply Set_DH_Data_Cmd[ZK_SLOTS];
ZK_API int Set_DH_Data(ArmSocket s, float first, float second, float third, float fourth, float fifth, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (!block) write(lwt, fourth);
    const int status = (block ? Set_DH_Data_Block : Set_DH_Data_NonBlock)(s, first, second, third, fourth, fifth);
    if (block && status == ZK_OK) write(lwt, fourth);
    return status;
}
ZK_API int Set_DH_Data_Block(ArmSocket s, float first, float second, float third, float fourth, float fifth) {
    return set(dh_data(s, first, second, third, fourth, fifth), Set_DH_Data_Cmd,
               {.keeps_count = true});  // as with the tip
}
ZK_API int Set_DH_Data_NonBlock(ArmSocket s, float first, float second, float third, float fourth, float fifth) {
    return post(dh_data(s, first, second, third, fourth, fifth));
}
ZK_API int Parser_Set_DH_Data(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_DH_Data);

DhDataReply Get_DH_Data_Cmd[ZK_SLOTS];
ZK_API int Get_DH_Data(ArmSocket s, float* first, float* second, float* third, float* fourth, float* fifth) {
    const int status = checked(Get_DH_Data_Block, s, first, second, third, fourth, fifth);
    if (status == ZK_OK) write(lwt, *fourth);
    return status;
}
ZK_API int Get_DH_Data_Block(ArmSocket s, float* first, float* second, float* third, float* fourth, float* fifth) {
    return query({s, "get_DH_data"}, Get_DH_Data_Cmd, [&](const DhDataReply& reply) {
        *first = reply.data[0];
        *second = reply.data[1];
        *third = reply.data[2];
        *fourth = reply.data[3];
        *fifth = reply.data[4];
    });
}
ZK_API int Parser_Get_DH_Data(const char* text, float* data) {
    Reply reply(text);
    scaled(reply.array(reply.root(), "data"), 5, 10.0f, data);
    return reply.status();
}
ZK_TWIN(Parser_Get_DH_Data);

static Request zero_offset(ArmSocket s, const float* offset) {
    return Request(s, "set_joint_zero_offset").joints("offset", offset);
}
AckReply Set_Joint_Zero_OffSet_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Zero_Offset(ArmSocket s, const float* offset, bool block) {
    return checked(block ? Set_Joint_Zero_Offset_Block : Set_Joint_Zero_Offset_NonBlock, s, offset);
}
ZK_API int Set_Joint_Zero_Offset_Block(ArmSocket s, const float* offset) {
    return set(zero_offset(s, offset), Set_Joint_Zero_OffSet_Cmd);
}
ZK_API int Set_Joint_Zero_Offset_NonBlock(ArmSocket s, const float* offset) { return post(zero_offset(s, offset)); }
ZK_API int Parser_Set_Joint_Zero_Offset(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_Joint_Zero_Offset);

// Two values for each joint, times 1000, not truncated.
static Request dynamic_parm(ArmSocket s, const float* parm) {
    float thousandfold[14];
    const int count = 2 * request_joint_count(s);
    for (int i = 0; i < count; ++i) thousandfold[i] = parm[i] * 1000.0f;
    return Request(s, "set_arm_dynamic_parm").numbers("parm", thousandfold, count);
}
AckReply Set_ARM_Dynamic_Parm_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Dynamic_Parm(ArmSocket s, const float* parm, bool block) {
    return checked(block ? Set_Arm_Dynamic_Parm_Block : Set_Arm_Dynamic_Parm_NonBlock, s, parm);
}
ZK_API int Set_Arm_Dynamic_Parm_Block(ArmSocket s, const float* parm) {
    return set(dynamic_parm(s, parm), Set_ARM_Dynamic_Parm_Cmd);
}
ZK_API int Set_Arm_Dynamic_Parm_NonBlock(ArmSocket s, const float* parm) { return post(dynamic_parm(s, parm)); }
ZK_API int Parser_Set_Hand(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_Hand);

static Request plan_speed(ArmSocket s, int32_t speed) { return Request(s, "plan_speed").number("speed", speed); }
AckReply Set_Plan_Speed_Cmd[ZK_SLOTS];
ZK_API int Set_Plan_Speed(ArmSocket s, int32_t speed, bool block) {
    return guarded(block ? Set_Plan_Speed_Block : Set_Plan_Speed_NonBlock, s, speed);
}
ZK_API int Set_Plan_Speed_Block(ArmSocket s, int32_t speed) { return set(plan_speed(s, speed), Set_Plan_Speed_Cmd); }
ZK_API int Set_Plan_Speed_NonBlock(ArmSocket s, int32_t speed) { return post(plan_speed(s, speed)); }
ZK_API int Parser_Set_Plan_Speed(const char* text) { return acknowledgement(text, "plan_state"); }

static Request teach_frame(ArmSocket s, int32_t type) {
    return Request(s, "set_teach_frame").number("frame_type", type);
}
AckReply Set_Teach_Frame_Cmd[ZK_SLOTS];
ZK_API int Set_Teach_Frame(ArmSocket s, int32_t type, bool block) {
    return guarded(block ? Set_Teach_Frame_Block : Set_Teach_Frame_NonBlock, s, type);
}
ZK_API int Set_Teach_Frame_Block(ArmSocket s, int32_t type) { return set(teach_frame(s, type), Set_Teach_Frame_Cmd); }
ZK_API int Set_Teach_Frame_NonBlock(ArmSocket s, int32_t type) { return post(teach_frame(s, type)); }
ZK_API int Parser_Set_TEACH_FRAME(const char* text) { return acknowledgement(text, "set_state", ZK_NOT_BOOLEAN); }

IntReply Get_Teach_Frame_Cmd[ZK_SLOTS];
ZK_API int Get_Teach_Frame(ArmSocket s, int32_t* type) { return checked(Get_Teach_Frame_Block, s, type); }
ZK_API int Get_Teach_Frame_Block(ArmSocket s, int32_t* type) {
    return query_value(s, "get_teach_frame", Get_Teach_Frame_Cmd, type);
}
ZK_API int Parser_Get_Teach_Frame(const char* text, int32_t* type) { return untyped_integer(text, "frame_type", type); }

static Request arm_servo(ArmSocket s, uint8_t state) {
    return Request(s, "set_arm_servo").number("arm_servo", state != 0);
}
AckReply Set_Arm_Servo_State_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Servo_State(ArmSocket s, uint8_t state, bool block) {
    return guarded(block ? Set_Arm_Servo_State_Block : Set_Arm_Servo_State_NonBlock, s, state);
}
ZK_API int Set_Arm_Servo_State_Block(ArmSocket s, uint8_t state) {
    return set(arm_servo(s, state), Set_Arm_Servo_State_Cmd);
}
ZK_API int Set_Arm_Servo_State_NonBlock(ArmSocket s, uint8_t state) { return post(arm_servo(s, state)); }
ZK_API int Parser_Arm_Servo_State(const char* text) { return acknowledgement(text, "arm_servo"); }
ZK_TWIN(Parser_Arm_Servo_State);

// The reply never reaches the pending list, so the blocking form ends in 7.
static Request system_servo(ArmSocket s, uint8_t state) {
    return Request(s, "set_system_state_servo").number("servo_state", state);
}
ZK_API int Set_System_State_Servo(ArmSocket s, uint8_t state, bool block) {
    return after_20_ms(block, Set_System_State_Servo_Block, Set_System_State_Servo_NonBlock, s, state);
}
ZK_API int Set_System_State_Servo_Block(ArmSocket s, uint8_t state) {
    return pending(system_servo(s, state), ZK_KEY_SYSTEM_SERVO, Parser_Set_System_State_Servo);
}
ZK_API int Set_System_State_Servo_NonBlock(ArmSocket s, uint8_t state) { return post(system_servo(s, state)); }
ZK_API int Parser_Set_System_State_Servo(const char* text) { return acknowledgement(text, "servo_state"); }
