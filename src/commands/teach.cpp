// Teaching and stepping: jogs an axis until a stop, or moves it by a fixed amount.
#include "zk/replies/motion.h"

#include "commands/stillness.h"
#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"

using namespace zk;

namespace {

// The axis of a type argument: 0 is x, 1 is y, any other number z.
struct Axes {
    const char* names[3];
    const char* of(int32_t type) const { return names[type == 0 ? 0 : type == 1 ? 1 : 2]; }
};
constexpr Axes kPositions{{"x", "y", "z"}}, kOrientations{{"rx", "ry", "rz"}};
constexpr Axes kPositionSteps{{"x_step", "y_step", "z_step"}}, kOrientationSteps{{"rx_step", "ry_step", "rz_step"}};

const char* direction(uint8_t positive) { return positive ? "pos" : "neg"; }

Request axis_teach(ArmSocket s, const char* command, const char* axis, uint8_t positive, uint8_t v) {
    return Request(s, command).text("teach_type", axis).text("direction", direction(positive)).number("v", v);
}

Request axis_step(ArmSocket s, const char* command, const char* axis, int32_t step, uint8_t v) {
    return Request(s, command).text("step_type", axis).number("step", step).number("v", v);
}

}  // namespace

static Request joint_teach(ArmSocket s, uint8_t joint, uint8_t positive, uint8_t v) {
    return Request(s, "set_joint_teach")
        .number("teach_joint", joint)
        .text("direction", direction(positive))
        .number("v", v);
}
AckReply Joint_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API int Joint_Teach_Cmd(ArmSocket s, uint8_t joint, uint8_t direction, uint8_t v, bool block) {
    return guarded(block ? Joint_Teach_Cmd_Block : Joint_Teach_Cmd_NonBlock, s, joint, direction, v);
}
ZK_API int Joint_Teach_Cmd_Block(ArmSocket s, uint8_t joint, uint8_t direction, uint8_t v) {
    return set(joint_teach(s, joint, direction, v), Joint_Teach_Cmd_Cmd);
}
ZK_API int Joint_Teach_Cmd_NonBlock(ArmSocket s, uint8_t joint, uint8_t direction, uint8_t v) {
    return post(joint_teach(s, joint, direction, v));
}
ZK_API int Parser_Joint_Teach(const char* text) { return acknowledgement(text, "joint_teach"); }
ZK_TWIN(Parser_Joint_Teach);

static Request pos_teach(ArmSocket s, int32_t type, uint8_t positive, uint8_t v) {
    return axis_teach(s, "set_pos_teach", kPositions.of(type), positive, v);
}
AckReply Pos_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API int Pos_Teach_Cmd(ArmSocket s, int32_t type, uint8_t direction, uint8_t v, bool block) {
    return guarded(block ? Pos_Teach_Cmd_Block : Pos_Teach_Cmd_NonBlock, s, type, direction, v);
}
// Unlike all other waits, this one polls without a pause. The limit is the same.
ZK_API int Pos_Teach_Cmd_Block(ArmSocket s, int32_t type, uint8_t direction, uint8_t v) {
    Mailbox mailbox(Pos_Teach_Cmd_Cmd);
    const Wait connection(s);
    if (const int status = connection.claim(mailbox)) return status;
    mailbox.clear(connection.slot());
    if (const int status = post(pos_teach(s, type, direction, v))) return status;
    return await_result(mailbox, connection, read(m_nOutTime), Take::kAll, 0);
}
ZK_API int Pos_Teach_Cmd_NonBlock(ArmSocket s, int32_t type, uint8_t direction, uint8_t v) {
    return post(pos_teach(s, type, direction, v));
}
ZK_API int Parser_Pos_Teach(const char* text) { return acknowledgement(text, "pos_teach"); }
ZK_TWIN(Parser_Pos_Teach);

static Request ort_teach(ArmSocket s, int32_t type, uint8_t positive, uint8_t v) {
    return axis_teach(s, "set_ort_teach", kOrientations.of(type), positive, v);
}
AckReply Ort_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API int Ort_Teach_Cmd(ArmSocket s, int32_t type, uint8_t direction, uint8_t v, bool block) {
    return guarded(block ? Ort_Teach_Cmd_Block : Ort_Teach_Cmd_NonBlock, s, type, direction, v);
}
ZK_API int Ort_Teach_Cmd_Block(ArmSocket s, int32_t type, uint8_t direction, uint8_t v) {
    return set(ort_teach(s, type, direction, v), Ort_Teach_Cmd_Cmd);
}
ZK_API int Ort_Teach_Cmd_NonBlock(ArmSocket s, int32_t type, uint8_t direction, uint8_t v) {
    return post(ort_teach(s, type, direction, v));
}
ZK_API int Parser_Ort_Teach(const char* text) { return acknowledgement(text, "ort_teach"); }
ZK_TWIN(Parser_Ort_Teach);

AckReply Teach_Stop_Cmd_Cmd[ZK_SLOTS];
ZK_API int Teach_Stop_Cmd(ArmSocket s, bool block) {
    return guarded(block ? Teach_Stop_Cmd_Blcok : Teach_Stop_Cmd_NonBlcok, s);
}
ZK_API int Teach_Stop_Cmd_Blcok(ArmSocket s) { return set({s, "set_stop_teach"}, Teach_Stop_Cmd_Cmd); }
ZK_API int Teach_Stop_Cmd_NonBlcok(ArmSocket s) { return post({s, "set_stop_teach"}); }
ZK_API int Parser_Teach_Stop(const char* text) { return acknowledgement(text, "stop_teach"); }
ZK_TWIN(Parser_Teach_Stop);

// The step of a joint is sent times 1000, not truncated.
static Request joint_step(ArmSocket s, uint8_t joint, uint8_t v, float step) {
    return Request(s, "set_joint_step").numbers("joint_step", {double(joint), double(step * 1000.0f)}).number("v", v);
}
ZK_API int Joint_Step_Cmd(ArmSocket s, uint8_t joint, uint8_t v, float step, bool block) {
    return guarded(block ? Joint_Step_Cmd_Block : Joint_Step_Cmd_NonBlock, s, joint, v, step);
}
ZK_API int Joint_Step_Cmd_Block(ArmSocket s, uint8_t joint, uint8_t v, float step) {
    return move_until_still(joint_step(s, joint, v, step));
}
ZK_API int Joint_Step_Cmd_NonBlock(ArmSocket s, uint8_t joint, uint8_t v, float step) {
    return post(joint_step(s, joint, v, step));
}

static Request pos_step(ArmSocket s, int32_t type, uint8_t v, float step) {
    return axis_step(s, "set_pos_step", kPositionSteps.of(type), millionths(step), v);
}
ZK_API int Pos_Step_Cmd(ArmSocket s, int32_t type, uint8_t v, float step, bool block) {
    return guarded(block ? Pos_Step_Cmd_Block : Pos_Step_Cmd_NonBlock, s, type, v, step);
}
ZK_API int Pos_Step_Cmd_Block(ArmSocket s, int32_t type, uint8_t v, float step) {
    return move_until_still(pos_step(s, type, v, step));
}
ZK_API int Pos_Step_Cmd_NonBlock(ArmSocket s, int32_t type, uint8_t v, float step) {
    return post(pos_step(s, type, v, step));
}

static Request ort_step(ArmSocket s, int32_t type, uint8_t v, float step) {
    return axis_step(s, "set_ort_step", kOrientationSteps.of(type), thousandths(step), v);
}
ZK_API int Ort_Step_Cmd(ArmSocket s, int32_t type, uint8_t v, float step, bool block) {
    return guarded(block ? Ort_Step_Cmd_Block : Ort_Step_Cmd_NonBlock, s, type, v, step);
}
ZK_API int Ort_Step_Cmd_Block(ArmSocket s, int32_t type, uint8_t v, float step) {
    return move_until_still(ort_step(s, type, v, step));
}
ZK_API int Ort_Step_Cmd_NonBlock(ArmSocket s, int32_t type, uint8_t v, float step) {
    return post(ort_step(s, type, v, step));
}
