// Joint configuration.
#include "zk/joint_configuration.h"

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"

using namespace zk;

namespace {

using JointQuery = int (*)(ArmSocket, float*);

int joints_query(ArmSocket s, const char* command, JointReply (&mailbox)[ZK_SLOTS], float* out) {
    return query({s, command}, mailbox, [&](const JointReply& reply) { copy_joints(s, reply.value, out); });
}

// A limit that the controller told goes into the local model. The model takes as many values as its arm has joints,
// which need not be as many as the connection has.
int limit_into_model(JointQuery query, void (*to_model)(const float*), ArmSocket s, float* out) {
    if (const int status = checked(query, s, out)) return status;
    float limit[8] = {};
    for (int i = 0; i < joint_count(s); ++i) limit[i] = out[i];
    to_model(limit);
    return ZK_OK;
}

}  // namespace

JointReply Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Speed(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Speed_Block, Algo_Set_Joint_Max_Speed, s, out);
}
ZK_API int Get_Joint_Speed_Block(ArmSocket s, float* out) {
    return joints_query(s, "get_joint_max_speed", Joint_Max_Speed_Cmd, out);
}
ZK_API int Parser_Get_Joint_Speed(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "joint_speed", .factor = 6.0f, .not_array = ZK_WRONG_SIZE}, out);
}

JointReply Get_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Acc(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Acc_Block, Algo_Set_Joint_Max_Acc, s, out);
}
ZK_API int Get_Joint_Acc_Block(ArmSocket s, float* out) {
    return joints_query(s, "get_joint_max_acc", Get_Joint_Max_Acc_Cmd, out);
}
ZK_API int Parser_Get_Joint_Acc(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "joint_acc", .factor = 6.0f}, out);
}

JointReply Get_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Min_Pos(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Min_Pos_Block, Algo_Set_Joint_Min_Limit, s, out);
}
ZK_API int Get_Joint_Min_Pos_Block(ArmSocket s, float* out) {
    return joints_query(s, "get_joint_min_pos", Get_Joint_Min_Pos_Cmd, out);
}
ZK_API int Parser_Get_Min_Pos(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "min_pos"}, out);
}

JointReply Get_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Max_Pos(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Max_Pos_Block, Algo_Set_Joint_Max_Limit, s, out);
}
ZK_API int Get_Joint_Max_Pos_Block(ArmSocket s, float* out) {
    return joints_query(s, "get_joint_max_pos", Get_Joint_Max_Pos_Cmd, out);
}
ZK_API int Parser_Get_Max_Pos(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "max_pos"}, out);
}

AckReply Set_Joint_Max_Speed_Cmd[ZK_SLOTS];
AckReply Set_Joint_Max_Acc_Cmd[ZK_SLOTS];
AckReply Set_Joint_Min_Pos_Cmd[ZK_SLOTS];
AckReply Set_Joint_Max_Pos_Cmd[ZK_SLOTS];
AckReply Set_Joint_En_State_Cmd[ZK_SLOTS];
AckReply Set_Joint_Zero_Cmd[ZK_SLOTS];
AckReply Set_Joint_Clear_Err_Cmd[ZK_SLOTS];
AckReply Auto_Fix_Joint_Over_Soft_Limit_Cmd[ZK_SLOTS];
AckReply Auto_Set_Joint_Limit_Cmd[ZK_SLOTS];
AckReply Set_Joint_Drive_Max_Speed_Cmd[ZK_SLOTS];
AckReply Set_Joint_Drive_Max_Acc_Cmd[ZK_SLOTS];
AckReply Set_Joint_Drive_Min_Pos_Cmd[ZK_SLOTS];
AckReply Set_Joint_Drive_Max_Pos_Cmd[ZK_SLOTS];

ZK_API int Parser_Start_Calibrate(const char* text) { return acknowledgement(text, "calibrate_state", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_Speed(const char* text) { return acknowledgement(text, "joint_max_speed", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_Acc(const char* text) { return acknowledgement(text, "joint_max_acc", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_Min_Pos(const char* text) { return acknowledgement(text, "joint_min_pos", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_Max_Pos(const char* text) { return acknowledgement(text, "joint_max_pos", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_EN_State(const char* text) { return acknowledgement(text, "joint_en_state", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_Zero_Pos(const char* text) { return acknowledgement(text, "joint_zero_pos", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Joint_Err_Clear(const char* text) { return acknowledgement(text, "joint_clear_err", ZK_NOT_BOOLEAN); }
ZK_API int Parser_Set_Joint_Limit(const char* text) { return acknowledgement(text, "limit_mode"); }
ZK_API int Parser_Set_Joint_Drive_Max_Speed(const char* text) { return acknowledgement(text, "joint_max_speed"); }
ZK_API int Parser_Set_Joint_Drive_Max_Acc(const char* text) { return acknowledgement(text, "joint_max_acc"); }
ZK_API int Parser_Set_Joint_Drive_Min_Pos(const char* text) { return acknowledgement(text, "joint_min_pos"); }
ZK_API int Parser_Set_Joint_Drive_Max_Pos(const char* text) { return acknowledgement(text, "joint_max_pos"); }
