#include "zk/replies/motion.h"

#include <array>
#include <cstring>

#include "commands/arrival.h"
#include "commands/twin.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"
#include "zk/arm_state.h"

using namespace zk;

MoveAcknowledgement Move_Receive_Cmd[ZK_SLOTS];
MoveReport Move_Cmd[ZK_SLOTS];

ZK_API int Parser_Receive_State(const char* text, int32_t* move_type) {
    struct MoveType {
        const char* command;
        int32_t code;
    };
    static constexpr std::array<MoveType, 5> kTypes = {
        {{"movej", 1}, {"movel", 2}, {"movec", 3}, {"movej_p", 0}, {"moves", 5}}};
    Reply reply(text);
    const Item command = reply.text(reply.root(), "command");
    bool known = false;
    for (const MoveType& type : kTypes) {
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
ZK_TWIN(Parser_Plan_Feedback);

static MoveRequest movej(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t connect) {
    return {Request(s, "movej").joints("joint", joint).number("v", v).number("r", r), connect};
}
ZK_API int Movej_Cmd(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block) {
    return checked(block ? Movej_Cmd_Block : Movej_Cmd_NonBlock, s, joint, v, r, trajectory_connect);
}
ZK_API int Movej_Cmd_Block(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_and_arrive(movej(s, joint, v, r, trajectory_connect), Trajectory::kJoint);
}
ZK_API int Movej_Cmd_NonBlock(ArmSocket s, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_accepted(movej(s, joint, v, r, trajectory_connect));
}

static MoveRequest to_pose(ArmSocket s, const char* command, const Pose& pose, uint8_t v, uint8_t r, int32_t connect) {
    return {Request(s, command).pose("pose", pose).number("v", v).number("r", r), connect};
}

ZK_API int Movel_Cmd(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block) {
    return guarded(block ? Movel_Cmd_Block : Movel_Cmd_NonBlock, s, pose, v, r, trajectory_connect);
}
ZK_API int Movel_Cmd_Block(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_and_arrive(to_pose(s, "movel", pose, v, r, trajectory_connect), Trajectory::kLine);
}
ZK_API int Movel_Cmd_NonBlock(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_accepted(to_pose(s, "movel", pose, v, r, trajectory_connect));
}

ZK_API int Moves_Cmd(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block) {
    return guarded(block ? Moves_Cmd_Block : Moves_Cmd_NonBlock, s, pose, v, r, trajectory_connect);
}
ZK_API int Moves_Cmd_Block(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_and_arrive(to_pose(s, "moves", pose, v, r, trajectory_connect), Trajectory::kSpline);
}
ZK_API int Moves_Cmd_NonBlock(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_accepted(to_pose(s, "moves", pose, v, r, trajectory_connect));
}

// The controller reports the joint move to a pose as a joint move.
ZK_API int Movej_P_Cmd(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block) {
    return guarded(block ? Movej_P_Cmd_Block : Movej_P_Cmd_NonBlock, s, pose, v, r, trajectory_connect);
}
ZK_API int Movej_P_Cmd_Block(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_and_arrive(to_pose(s, "movej_p", pose, v, r, trajectory_connect), Trajectory::kJoint);
}
ZK_API int Movej_P_Cmd_NonBlock(ArmSocket s, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect) {
    return move_accepted(to_pose(s, "movej_p", pose, v, r, trajectory_connect));
}

static MoveRequest movec(ArmSocket s, const Pose& via, const Pose& to, uint8_t v, uint8_t r, uint8_t loop,
                         int32_t connect) {
    return {Request(s, "movec")
                .object("pose", [&](Object& poses) { poses.pose("pose_via", via).pose("pose_to", to); })
                .number("v", v)
                .number("r", r)
                .number("loop", loop),
            connect};
}
ZK_API int Movec_Cmd(ArmSocket s, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop, int32_t trajectory_connect,
                     bool block) {
    return guarded(block ? Movec_Cmd_Block : Movec_Cmd_NonBlock, s, via, to, v, r, loop, trajectory_connect);
}
ZK_API int Movec_Cmd_Block(ArmSocket s, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                           int32_t trajectory_connect) {
    return move_and_arrive(movec(s, via, to, v, r, loop, trajectory_connect), Trajectory::kCircle);
}
ZK_API int Movec_Cmd_NonBlock(ArmSocket s, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                              int32_t trajectory_connect) {
    return move_accepted(movec(s, via, to, v, r, loop, trajectory_connect));
}

// A line to a target that the host computes from the present pose.
template <class Target>
static int line_from_here(ArmSocket s, uint8_t v, uint8_t r, int32_t connect, bool block, Target target) {
    float joint[7] = {};
    Pose pose{};
    uint16_t arm_err = 0, sys_err = 0;
    if (const int status = Get_Current_Arm_State(s, joint, &pose, &arm_err, &sys_err)) return status;
    const Pose computed = target(joint);
    pose.position = computed.position;
    pose.euler = computed.euler;
    return Movel_Cmd(s, pose, v, r, connect, block);
}

ZK_API int MoveCartesianTool_Cmd(ArmSocket s, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block, float x,
                                 float y, float z) {
    return line_from_here(s, v, r, trajectory_connect, block,
                          [&](float* joint) { return Algo_Cartesian_Tool(joint, x, y, z); });
}

ZK_API int MoveRotate_Cmd(ArmSocket s, int32_t axis, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block,
                          Pose reference, float rotation) {
    return line_from_here(s, v, r, trajectory_connect, block,
                          [&](float* joint) { return Algo_RotateMove(joint, axis, rotation, reference); });
}
