// The dexterous hand, and the PWM output.
#include "commands/arrival.h"
#include "connection/pending.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/pending.h"

using namespace zk;

namespace {

constexpr int kFingers = 6;
constexpr int32_t kMotionMs = 30000;  // longer than any posture or sequence takes

Request six(ArmSocket s, const char* command, const char* key, const int32_t* values) {
    return Request(s, command).numbers(key, values, kFingers);
}

int arrived(Request request, Mailbox acknowledgement, int32_t reply_ms) {
    return move_device(request.boolean("block", true), acknowledgement,
                       {.device = Device::kHand,
                        .limit = int64_t{reply_ms} + kMotionMs,
                        .keeps_reports = true,
                        .outwaits_others = true});
}

// A stream of values must not stop at a lost reply, so the limit is short.
int followed(const Request& request, Mailbox mailbox) {
    constexpr int32_t poll_ms = 5, limit_ms = 100;
    const Wait connection(request.socket());
    if (const int status = connection.claim(mailbox)) return status;
    mailbox.clear(connection.slot());
    if (const int status = post(request)) return status;
    return await_result(mailbox, connection, limit_ms, Take::kAll, poll_ms);
}

}  // namespace

static Request posture(ArmSocket s, int32_t number) {
    return Request(s, "set_hand_posture").number("posture_num", number);
}
AckReply Set_Hand_Posture_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Posture(ArmSocket s, int32_t number, bool block) {
    return guarded(block ? Set_Hand_Posture_Block : Set_Hand_Posture_NonBlock, s, number);
}
ZK_API int Set_Hand_Posture_Block(ArmSocket s, int32_t number) {
    return arrived(posture(s, number), Set_Hand_Posture_Cmd, read(m_nOutTime));
}
ZK_API int Set_Hand_Posture_NonBlock(ArmSocket s, int32_t number) {
    return set(posture(s, number), Set_Hand_Posture_Cmd);
}

static Request sequence(ArmSocket s, int32_t number) { return Request(s, "set_hand_seq").number("seq_num", number); }
AckReply Set_Hand_Seq_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Seq(ArmSocket s, int32_t number, bool block) {
    return guarded(block ? Set_Hand_Seq_Block : Set_Hand_Seq_NonBlock, s, number);
}
ZK_API int Set_Hand_Seq_Block(ArmSocket s, int32_t number) {
    return arrived(sequence(s, number), Set_Hand_Seq_Cmd, read(m_nOutTime_max));
}
ZK_API int Set_Hand_Seq_NonBlock(ArmSocket s, int32_t number) { return set(sequence(s, number), Set_Hand_Seq_Cmd); }

static Request angles(ArmSocket s, const int32_t* angle) { return six(s, "set_hand_angle", "hand_angle", angle); }
AckReply Set_Hand_Angle_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Angle(ArmSocket s, const int32_t* angle, bool block) {
    return checked(block ? Set_Hand_Angle_Block : Set_Hand_Angle_NonBlock, s, angle);
}
ZK_API int Set_Hand_Angle_Block(ArmSocket s, const int32_t* angle) { return set(angles(s, angle), Set_Hand_Angle_Cmd); }
ZK_API int Set_Hand_Angle_NonBlock(ArmSocket s, const int32_t* angle) { return post(angles(s, angle)); }

static Request next_angles(ArmSocket s, const int32_t* angle) {
    return six(s, "hand_follow_angle", "hand_angle", angle);
}
AckReply Set_Hand_Follow_Angle_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Follow_Angle(ArmSocket s, const int32_t* angle, bool block) {
    return guarded(block ? Set_Hand_Follow_Angle_Block : Set_Hand_Follow_Angle_NonBlock, s, angle);
}
ZK_API int Set_Hand_Follow_Angle_Block(ArmSocket s, const int32_t* angle) {
    return followed(next_angles(s, angle), Set_Hand_Follow_Angle_Cmd);
}
ZK_API int Set_Hand_Follow_Angle_NonBlock(ArmSocket s, const int32_t* angle) { return post(next_angles(s, angle)); }

static Request next_positions(ArmSocket s, const int32_t* position) {
    return six(s, "hand_follow_pos", "hand_pos", position);
}
AckReply Set_Hand_Follow_Pos_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Follow_Pos(ArmSocket s, const int32_t* position, bool block) {
    return guarded(block ? Set_Hand_Follow_Pos_Block : Set_Hand_Follow_Pos_NonBlock, s, position);
}
ZK_API int Set_Hand_Follow_Pos_Block(ArmSocket s, const int32_t* position) {
    return followed(next_positions(s, position), Set_Hand_Follow_Pos_Cmd);
}
ZK_API int Set_Hand_Follow_Pos_NonBlock(ArmSocket s, const int32_t* position) {
    return post(next_positions(s, position));
}

static Request hand_speed(ArmSocket s, int32_t speed) {
    return Request(s, "set_hand_speed").number("hand_speed", speed);
}
AckReply Set_Hand_Speed_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Speed(ArmSocket s, int32_t speed, bool block) {
    return guarded(block ? Set_Hand_Speed_Block : Set_Hand_Speed_NonBlock, s, speed);
}
ZK_API int Set_Hand_Speed_Block(ArmSocket s, int32_t speed) { return set(hand_speed(s, speed), Set_Hand_Speed_Cmd); }
ZK_API int Set_Hand_Speed_NonBlock(ArmSocket s, int32_t speed) { return post(hand_speed(s, speed)); }

static Request hand_force(ArmSocket s, int32_t force) {
    return Request(s, "set_hand_force").number("hand_force", force);
}
AckReply Set_Hand_Force_Cmd[ZK_SLOTS];
ZK_API int Set_Hand_Force(ArmSocket s, int32_t force, bool block) {
    return guarded(block ? Set_Hand_Force_Block : Set_Hand_Force_NonBlock, s, force);
}
ZK_API int Set_Hand_Force_Block(ArmSocket s, int32_t force) { return set(hand_force(s, force), Set_Hand_Force_Cmd); }
ZK_API int Set_Hand_Force_NonBlock(ArmSocket s, int32_t force) { return post(hand_force(s, force)); }

// The reply never reaches the pending list, so the blocking form ends in 7.
static Request pwm(ArmSocket s, int32_t frequency, int32_t duty) {
    return Request(s, "set_PWM").number("PWM_Frq", frequency).number("PWM_Dpulse", duty);
}
ZK_API int Set_PWM(ArmSocket s, int32_t frequency, int32_t duty, bool block) {
    return after_20_ms(block, Set_PWM_Block, Set_PWM_NoBlock, s, frequency, duty);
}
ZK_API int Set_PWM_Block(ArmSocket s, int32_t frequency, int32_t duty) {
    return pending(pwm(s, frequency, duty), ZK_KEY_PWM, Parser_Set_Hand);
}
ZK_API int Set_PWM_NoBlock(ArmSocket s, int32_t frequency, int32_t duty) { return post(pwm(s, frequency, duty)); }

ZK_API int Stop_PWM(ArmSocket s, bool block) { return after_20_ms(block, Stop_PWM_Block, Stop_PWM_NonBlock, s); }
ZK_API int Stop_PWM_Block(ArmSocket) { return ZK_NOT_BOOLEAN; }
ZK_API int Stop_PWM_NonBlock(ArmSocket s) { return Stop_PWM_Block(s); }
