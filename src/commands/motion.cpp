// Motion.
#include "zk/motion.h"

#include <array>
#include <cstring>

#include "commands/arrival.h"
#include "connection/reply.h"
#include "connection/wrappers.h"

using namespace zk;

MoveAcknowledgement Move_Receive_Cmd[ZK_SLOTS];
MoveReport Move_Cmd[ZK_SLOTS];

ZK_API int Parser_Receive_State(const char* text, int32_t* move_type) {
    struct MoveType {
        const char* command;
        int32_t code;
    };
    static constexpr std::array<MoveType, 5> types = {
        {{"movej", 1}, {"movel", 2}, {"movec", 3}, {"movej_p", 0}, {"moves", 5}}};
    Reply reply(text);
    const Item command = reply.text(reply.root(), "command");
    bool known = false;
    for (const MoveType& type : types) {
        if (std::strcmp(type.command, command.text()) != 0) continue;
        *move_type = type.code;
        known = true;
    }
    reply.require(known, ZK_WRONG_TYPE);
    return reply.acknowledgement("receive_state");
}

ZK_API int Parser_Plan_Feedback(const char* text, int32_t* device, int32_t* trajectory_connect) {
    Reply reply(text);
    reply.acknowledgement("trajectory_state");
    const Item from = reply.find("device");
    if (!reply.require(bool(from), ZK_BAD_REPLY)) return reply.status();
    if (from.is_number()) *device = from.integer();
    const Item connect = reply.find("trajectory_connect");
    *trajectory_connect = connect.is_number() ? connect.integer() : -1;
    return reply.status();
}

static Request movej(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t connect) {
    return Request(s, "movej")
        .joints("joint", joint)
        .number("v", v)
        .number("r", r)
        .number("trajectory_connect", connect);
}
ZK_API int Movej_Cmd(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block) {
    return checked(block ? Movej_Cmd_Block : Movej_Cmd_NonBlock, s, joint, v, r, trajectory_connect);
}
ZK_API int Movej_Cmd_Block(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_and_arrive(movej(s, joint, v, r, trajectory_connect), Trajectory::kJoint, trajectory_connect);
}
ZK_API int Movej_Cmd_NonBlock(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_accepted(movej(s, joint, v, r, trajectory_connect));
}
