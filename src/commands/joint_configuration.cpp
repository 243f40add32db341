// Joint configuration: limits of the arm and of its drives, enabling, errors, zero points, calibration.
#include "zk/replies/joint_configuration.h"

#include "commands/twin.h"
#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"
#include "zk/replies/motion.h"
#include "zk/replies/pending.h"

using namespace zk;

namespace {

using JointQuery = int (*)(ArmSocket, float*);
using JointLimit = int (*)(ArmSocket, uint8_t, float);

// Queries a limit and puts it into the local model. The model's arm may have more joints than the connection.
int limit_into_model(JointQuery query, void (*to_model)(const float*), ArmSocket s, float* out) {
    if (const int status = checked(query, s, out)) return status;
    float limit[8] = {};
    for (int i = 0; i < joint_count(s); ++i) limit[i] = out[i];
    to_model(limit);
    return ZK_OK;
}

// Sets a limit, then queries it, so that the model gets the controller's value. Returns the status of the query.
int set_limit_and_refresh_model(JointLimit set, JointQuery query, ArmSocket s, uint8_t joint, float value) {
    if (const int status = guarded(set, s, joint, value)) return status;
    float held[8] = {};
    return query(s, held);
}

// The same after a check of the connection.
int limit_of_connection(JointLimit set, JointQuery query, ArmSocket s, uint8_t joint, float value) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (const int status = needs_connection(s)) return status;
    return set_limit_and_refresh_model(set, query, s, joint, value);
}

Request joint_pair(ArmSocket s, const char* command, const char* key, uint8_t joint, int32_t value) {
    return Request(s, command).numbers(key, {double(joint), double(value)});
}

// Most requests send speeds and accelerations in revolutions per minute, six degrees per second each.
int32_t thousandths_of_rpm(float degrees_per_second) { return thousandths(degrees_per_second / 6.0f); }

}  // namespace

// The non-blocking forms of speed and acceleration send the number undivided, six times as large.
AckReply Set_Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Speed(ArmSocket s, uint8_t joint, float value, bool block) {
    return limit_of_connection(block ? Set_Joint_Speed_Block : Set_Joint_Speed_NonBlock, Get_Joint_Speed, s, joint,
                               value);
}
ZK_API int Set_Joint_Speed_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_max_speed", "joint_max_speed", joint, thousandths_of_rpm(value)),
               Set_Joint_Max_Speed_Cmd);
}
ZK_API int Set_Joint_Speed_NonBlock(ArmSocket s, uint8_t joint, float value) {
    return post(joint_pair(s, "set_joint_max_speed", "joint_max_speed", joint, thousandths(value)));
}
ZK_API int Parser_Joint_Speed(const char* text) { return acknowledgement(text, "joint_max_speed", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_Speed);

AckReply Set_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Acc(ArmSocket s, uint8_t joint, float value, bool block) {
    return limit_of_connection(block ? Set_Joint_Acc_Block : Set_Joint_Acc_NonBlock, Get_Joint_Acc, s, joint, value);
}
ZK_API int Set_Joint_Acc_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_max_acc", "joint_max_acc", joint, thousandths_of_rpm(value)),
               Set_Joint_Max_Acc_Cmd);
}
ZK_API int Set_Joint_Acc_NonBlock(ArmSocket s, uint8_t joint, float value) {
    return post(joint_pair(s, "set_joint_max_acc", "joint_max_acc", joint, thousandths(value)));
}
ZK_API int Parser_Joint_Acc(const char* text) { return acknowledgement(text, "joint_max_acc", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_Acc);

AckReply Set_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Min_Pos(ArmSocket s, uint8_t joint, float value, bool block) {
    return set_limit_and_refresh_model(block ? Set_Joint_Min_Pos_Block : Set_Joint_Min_Pos_NonBlock, Get_Joint_Min_Pos,
                                       s, joint, value);
}
ZK_API int Set_Joint_Min_Pos_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_min_pos", "joint_min_pos", joint, thousandths(value)), Set_Joint_Min_Pos_Cmd);
}
ZK_API int Set_Joint_Min_Pos_NonBlock(ArmSocket s, uint8_t joint, float value) {
    return post(joint_pair(s, "set_joint_min_pos", "joint_min_pos", joint, thousandths(value)));
}
ZK_API int Parser_Joint_Min_Pos(const char* text) { return acknowledgement(text, "joint_min_pos", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_Min_Pos);

AckReply Set_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Max_Pos(ArmSocket s, uint8_t joint, float value, bool block) {
    return set_limit_and_refresh_model(block ? Set_Joint_Max_Pos_Block : Set_Joint_Max_Pos_NonBlock, Get_Joint_Max_Pos,
                                       s, joint, value);
}
ZK_API int Set_Joint_Max_Pos_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_max_pos", "joint_max_pos", joint, thousandths(value)), Set_Joint_Max_Pos_Cmd);
}
ZK_API int Set_Joint_Max_Pos_NonBlock(ArmSocket s, uint8_t joint, float value) {
    return post(joint_pair(s, "set_joint_max_pos", "joint_max_pos", joint, thousandths(value)));
}
ZK_API int Parser_Joint_Max_Pos(const char* text) { return acknowledgement(text, "joint_max_pos", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_Max_Pos);

JointReply Joint_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Speed(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Speed_Block, Algo_Set_Joint_Max_Speed, s, out);
}
ZK_API int Get_Joint_Speed_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_max_speed", Joint_Max_Speed_Cmd, out);
}
ZK_API int Parser_Get_Joint_Speed(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "joint_speed", .factor = 6.0f, .not_array = ZK_WRONG_SIZE}, out);
}
ZK_TWIN(Parser_Get_Joint_Speed);

JointReply Get_Joint_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Acc(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Acc_Block, Algo_Set_Joint_Max_Acc, s, out);
}
ZK_API int Get_Joint_Acc_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_max_acc", Get_Joint_Max_Acc_Cmd, out);
}
ZK_API int Parser_Get_Joint_Acc(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "joint_acc", .factor = 6.0f}, out);
}
ZK_TWIN(Parser_Get_Joint_Acc);

JointReply Get_Joint_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Min_Pos(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Min_Pos_Block, Algo_Set_Joint_Min_Limit, s, out);
}
ZK_API int Get_Joint_Min_Pos_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_min_pos", Get_Joint_Min_Pos_Cmd, out);
}
ZK_API int Parser_Get_Min_Pos(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "min_pos"}, out);
}
ZK_TWIN(Parser_Get_Min_Pos);

JointReply Get_Joint_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Max_Pos(ArmSocket s, float* out) {
    return limit_into_model(Get_Joint_Max_Pos_Block, Algo_Set_Joint_Max_Limit, s, out);
}
ZK_API int Get_Joint_Max_Pos_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_max_pos", Get_Joint_Max_Pos_Cmd, out);
}
ZK_API int Parser_Get_Max_Pos(ArmSocket s, const char* text, float* out) {
    return joint_array(s, text, {.key = "max_pos"}, out);
}
ZK_TWIN(Parser_Get_Max_Pos);

// The drives' own limits. The local model does not hold them.
AckReply Set_Joint_Drive_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Drive_Speed(ArmSocket s, uint8_t joint, float value) {
    return guarded(Set_Joint_Drive_Speed_Block, s, joint, value);
}
ZK_API int Set_Joint_Drive_Speed_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_drive_max_speed", "joint_max_speed", joint, thousandths_of_rpm(value)),
               Set_Joint_Drive_Max_Speed_Cmd);
}
ZK_API int Parser_Set_Joint_Drive_Max_Speed(const char* text) { return acknowledgement(text, "joint_max_speed"); }

AckReply Set_Joint_Drive_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Drive_Acc(ArmSocket s, uint8_t joint, float value) {
    return guarded(Set_Joint_Drive_Acc_Block, s, joint, value);
}
ZK_API int Set_Joint_Drive_Acc_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_drive_max_acc", "joint_max_acc", joint, thousandths_of_rpm(value)),
               Set_Joint_Drive_Max_Acc_Cmd);
}
ZK_API int Parser_Set_Joint_Drive_Max_Acc(const char* text) { return acknowledgement(text, "joint_max_acc"); }

AckReply Set_Joint_Drive_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Drive_Min_Pos(ArmSocket s, uint8_t joint, float value) {
    return guarded(Set_Joint_Drive_Min_Pos_Block, s, joint, value);
}
ZK_API int Set_Joint_Drive_Min_Pos_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_drive_min_pos", "joint_min_pos", joint, thousandths(value)),
               Set_Joint_Drive_Min_Pos_Cmd);
}
ZK_API int Parser_Set_Joint_Drive_Min_Pos(const char* text) { return acknowledgement(text, "joint_min_pos"); }

AckReply Set_Joint_Drive_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Drive_Max_Pos(ArmSocket s, uint8_t joint, float value) {
    return guarded(Set_Joint_Drive_Max_Pos_Block, s, joint, value);
}
ZK_API int Set_Joint_Drive_Max_Pos_Block(ArmSocket s, uint8_t joint, float value) {
    return set(joint_pair(s, "set_joint_drive_max_pos", "joint_max_pos", joint, thousandths(value)),
               Set_Joint_Drive_Max_Pos_Cmd);
}
ZK_API int Parser_Set_Joint_Drive_Max_Pos(const char* text) { return acknowledgement(text, "joint_max_pos"); }

JointReply Get_Joint_Drive_Max_Speed_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Drive_Speed(ArmSocket s, float* out) { return guarded(Get_Joint_Drive_Speed_Block, s, out); }
ZK_API int Get_Joint_Drive_Speed_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_drive_max_speed", Get_Joint_Drive_Max_Speed_Cmd, out);
}
ZK_API int Parser_Get_Joint_Drive_Max_Speed(ArmSocket s, const char* text, float* out) {
    return Parser_Get_Joint_Speed(s, text, out);
}

JointReply Get_Joint_Drive_Max_Acc_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Drive_Acc(ArmSocket s, float* out) { return guarded(Get_Joint_Drive_Acc_Block, s, out); }
ZK_API int Get_Joint_Drive_Acc_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_drive_max_acc", Get_Joint_Drive_Max_Acc_Cmd, out);
}
ZK_API int Parser_Get_Joint_Drive_Max_Acc(ArmSocket s, const char* text, float* out) {
    return Parser_Get_Joint_Acc(s, text, out);
}

JointReply Get_Joint_Drive_Min_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Drive_Min_Pos(ArmSocket s, float* out) { return guarded(Get_Joint_Drive_Min_Pos_Block, s, out); }
ZK_API int Get_Joint_Drive_Min_Pos_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_drive_min_pos", Get_Joint_Drive_Min_Pos_Cmd, out);
}
ZK_API int Parser_Get_Joint_Drive_Min_Pos(ArmSocket s, const char* text, float* out) {
    return Parser_Get_Min_Pos(s, text, out);
}

JointReply Get_Joint_Drive_Max_Pos_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Drive_Max_Pos(ArmSocket s, float* out) { return guarded(Get_Joint_Drive_Max_Pos_Block, s, out); }
ZK_API int Get_Joint_Drive_Max_Pos_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_drive_max_pos", Get_Joint_Drive_Max_Pos_Cmd, out);
}
ZK_API int Parser_Get_Joint_Drive_Max_Pos(ArmSocket s, const char* text, float* out) {
    return Parser_Get_Max_Pos(s, text, out);
}

static Request en_state(ArmSocket s, uint8_t joint, uint8_t state) {
    return joint_pair(s, "set_joint_en_state", "joint_en_state", joint, state);
}
AckReply Set_Joint_En_State_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_EN_State(ArmSocket s, uint8_t joint, uint8_t state, bool block) {
    return guarded(block ? Set_Joint_EN_State_Block : Set_Joint_EN_State_NonBlock, s, joint, state);
}
ZK_API int Set_Joint_EN_State_Block(ArmSocket s, uint8_t joint, uint8_t state) {
    return set(en_state(s, joint, state), Set_Joint_En_State_Cmd);
}
ZK_API int Set_Joint_EN_State_NonBlock(ArmSocket s, uint8_t joint, uint8_t state) {
    return post(en_state(s, joint, state));
}
ZK_API int Parser_Joint_EN_State(const char* text) { return acknowledgement(text, "joint_en_state", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_EN_State);

JointIntReply Get_Joint_En_State_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_EN_State(ArmSocket s, uint8_t* state) { return checked(Get_Joint_EN_State_Block, s, state); }
ZK_API int Get_Joint_EN_State_Block(ArmSocket s, uint8_t* state) {
    return query({s, "get_joint_en_state"}, Get_Joint_En_State_Cmd,
                 [&](const JointIntReply& reply) { copy_joints(s, reply.value, state); });
}
ZK_API int Parser_Get_Joint_EN_State(ArmSocket s, const char* text, int32_t* state) {
    return joint_array(s, text, "en_state", state);
}
ZK_TWIN(Parser_Get_Joint_EN_State);

static Request clear_err(ArmSocket s, uint8_t joint) {
    return Request(s, "set_joint_clear_err").number("joint_clear_err", joint);
}
AckReply Set_Joint_Clear_Err_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Err_Clear(ArmSocket s, uint8_t joint, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    const Wait call(s);
    if (const int status = sleep_before(call, kPauseMs)) return status;
    return block ? Set_Joint_Err_Clear_Block(s, joint) : Set_Joint_Err_Clear_NonBlock(s, joint);
}
ZK_API int Set_Joint_Err_Clear_Block(ArmSocket s, uint8_t joint) {
    return set(clear_err(s, joint), Set_Joint_Clear_Err_Cmd);
}
ZK_API int Set_Joint_Err_Clear_NonBlock(ArmSocket s, uint8_t joint) { return post(clear_err(s, joint)); }
ZK_API int Parser_Joint_Err_Clear(const char* text) { return acknowledgement(text, "joint_clear_err", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_Err_Clear);

JointErrorReply Get_Joint_Err_Flag_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Err_Flag(ArmSocket s, uint16_t* err_flag, uint16_t* brake_state) {
    return checked(Get_Joint_Err_Flag_Block, s, err_flag, brake_state);
}
ZK_API int Get_Joint_Err_Flag_Block(ArmSocket s, uint16_t* err_flag, uint16_t* brake_state) {
    return query({s, "get_joint_err_flag"}, Get_Joint_Err_Flag_Cmd, [&](const JointErrorReply& reply) {
        copy_joints(s, reply.err_flag, err_flag);
        copy_joints(s, reply.brake_state, brake_state);
    });
}
ZK_API int Parser_Get_Joint_Err_Flag(ArmSocket s, const char* text, int32_t* err_flag, int32_t* brake_state) {
    const int status = joint_array(s, text, "err_flag", err_flag);
    return status ? status : joint_array(s, text, "brake_state", brake_state);
}
ZK_TWIN(Parser_Get_Joint_Err_Flag);

JointIntReply Get_Joint_Software_Version_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Software_Version(ArmSocket s, int32_t* version) {
    return checked(Get_Joint_Software_Version_Block, s, version);
}
ZK_API int Get_Joint_Software_Version_Block(ArmSocket s, int32_t* version) {
    return query({s, "get_joint_software_version"}, Get_Joint_Software_Version_Cmd,
                 [&](const JointIntReply& reply) { copy_joints(s, reply.value, version); });
}
ZK_API int Parser_Get_Joint_Software_Version(ArmSocket s, const char* text, int32_t* version) {
    return joint_array(s, text, "version", version);
}
ZK_TWIN(Parser_Get_Joint_Software_Version);

static Request zero_pos(ArmSocket s, uint8_t joint) {
    return Request(s, "set_joint_zero_pos").number("joint_zero_pos", joint);
}
AckReply Set_Joint_Zero_Cmd[ZK_SLOTS];
ZK_API int Set_Joint_Zero_Pos(ArmSocket s, uint8_t joint, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    const Wait call(s);
    if (const int status = sleep_before(call, kPauseMs)) return status;
    if (const int status = needs_connection(s)) return status;
    return block ? Set_Joint_Zero_Pos_Block(s, joint) : Set_Joint_Zero_Pos_NonBlock(s, joint);
}
ZK_API int Set_Joint_Zero_Pos_Block(ArmSocket s, uint8_t joint) { return set(zero_pos(s, joint), Set_Joint_Zero_Cmd); }
ZK_API int Set_Joint_Zero_Pos_NonBlock(ArmSocket s, uint8_t joint) { return post(zero_pos(s, joint)); }
ZK_API int Parser_Joint_Zero_Pos(const char* text) { return acknowledgement(text, "joint_zero_pos", ZK_NOT_BOOLEAN); }
ZK_TWIN(Parser_Joint_Zero_Pos);

// The replies never reach the pending list, so the blocking forms end in 7.
ZK_API int Start_Calibrate(ArmSocket s, bool block) {
    return after_20_ms(block, Start_Calibrate_Block, Start_Calibrate_NonBlock, s);
}
ZK_API int Start_Calibrate_Block(ArmSocket s) {
    return pending({s, "start_calibrate"}, ZK_KEY_START_CALIBRATE, Parser_Start_Calibrate);
}
ZK_API int Start_Calibrate_NonBlock(ArmSocket s) { return post({s, "start_calibrate"}); }
ZK_API int Stop_Calibrate(ArmSocket s, bool block) {
    return after_20_ms(block, Stop_Calibrate_Block, Stop_Calibrate_NonBlock, s);
}
ZK_API int Stop_Calibrate_Block(ArmSocket s) {
    return pending({s, "stop_calibrate"}, ZK_KEY_STOP_CALIBRATE, Parser_Start_Calibrate);
}
ZK_API int Stop_Calibrate_NonBlock(ArmSocket s) { return post({s, "stop_calibrate"}); }
ZK_API int Parser_Start_Calibrate(const char* text) { return acknowledgement(text, "calibrate_state", ZK_NOT_BOOLEAN); }

ZK_API int Get_Calibrate_State(ArmSocket s, float* state, uint16_t* err, int32_t* value) {
    return query_after_20_ms(Get_Calibrate_State_Block, s, state, err, value);
}
ZK_API int Get_Calibrate_State_Block(ArmSocket s, float* state, uint16_t* err, int32_t* value) {
    return pending({s, "get_calibrate_state"}, ZK_KEY_CALIBRATE_STATE,
                   [&](const char* text) { return Parser_Get_Calibrate_State(s, text, state, err, value); });
}
ZK_API int Parser_Get_Calibrate_State(ArmSocket s, const char* text, float* state, uint16_t* err, int32_t* value) {
    Reply reply(text);
    const auto joints = [&](const char* key) {
        return reply.array(reply.root(), key, joint_count(s), ZK_WRONG_SIZE, ZK_BAD_REPLY);
    };
    const Item states = joints("joint_state");
    for (int i = 0; i < states.size(); ++i) state[i] = static_cast<uint8_t>(states[i].integer());
    const Item errors = joints("err");
    for (int i = 0; i < errors.size(); ++i) err[i] = static_cast<uint16_t>(errors[i].integer());
    // The key of the array is also read as a number, which fails: a good reply ends in 11.
    reply.take("err", *value);
    return reply.status();
}

// Moves joints that are beyond a soft limit back inside. After an accepted reply it waits without limit for the report.
// The acceptance of an earlier call counts, so every poll looks for a refusal.
AckReply Auto_Fix_Joint_Over_Soft_Limit_Cmd[ZK_SLOTS];
ZK_API int Auto_Fix_Joint_Over_Soft_Limit(ArmSocket s, bool block) {
    return guarded(block ? Auto_Fix_Joint_Over_Soft_Limit_Block : Auto_Fix_Joint_Over_Soft_Limit_NonBlock, s);
}
ZK_API int Auto_Fix_Joint_Over_Soft_Limit_Block(ArmSocket s) {
    Mailbox accepted(Auto_Fix_Joint_Over_Soft_Limit_Cmd), reports(Move_Cmd);
    const Wait connection(s);
    if (const int status = connection.claim(reports, Sharing::kAlone)) return status;
    if (const int status = connection.claim(accepted)) return status;
    reports.clear(connection.slot());
    if (is_handle(s)) accepted.clear(connection.slot());
    if (const int status = post({s, "auto_fix_joint_over_soft_limit"})) return status;
    const int32_t start = Get_Program_Runtime();
    bool acknowledged = false;
    for (;; pause(connection, kPollMs, acknowledged ? reports : accepted)) {
        acknowledged = has_arrived(accepted, connection);
        const bool arrived = has_arrived(reports, connection);
        if (const int status = connection.status()) return status;
        if (!acknowledged) {
            if (elapsed_since(start) >= read(m_nOutTime)) return ZK_TIMEOUT;
        } else if (accepted.result(connection.slot()) != ZK_OK) {
            return take_result(accepted, connection, Take::kOne);
        } else if (arrived) {
            return take_result(reports, connection, Take::kOne);
        }
    }
}
ZK_API int Auto_Fix_Joint_Over_Soft_Limit_NonBlock(ArmSocket s) {
    Mailbox accepted(Auto_Fix_Joint_Over_Soft_Limit_Cmd);
    const Wait connection(s);
    if (const int status = connection.claim(accepted)) return status;
    accepted.clear(connection.slot());
    if (const int status = post({s, "auto_fix_joint_over_soft_limit"})) return status;
    return await_result(accepted, connection, read(m_nOutTime), Take::kOne);
}

static Request limit_mode(ArmSocket s, uint8_t mode) {
    return Request(s, "auto_set_joint_limit").number("limit_mode", mode);
}
AckReply Auto_Set_Joint_Limit_Cmd[ZK_SLOTS];
ZK_API int Auto_Set_Joint_Limit(ArmSocket s, uint8_t mode) { return after_2_ms(Auto_Set_Joint_Limit_Block_E, s, mode); }
ZK_API int Auto_Set_Joint_Limit_E(ArmSocket s, uint8_t mode) { return Auto_Set_Joint_Limit(s, mode); }
ZK_API int Auto_Set_Joint_Limit_Block_E(ArmSocket s, uint8_t mode) {
    return set(limit_mode(s, mode), Auto_Set_Joint_Limit_Cmd);
}
ZK_API int Parser_Set_Joint_Limit(const char* text) { return acknowledgement(text, "limit_mode"); }
