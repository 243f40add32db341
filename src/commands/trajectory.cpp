// Trajectory control: stop, pause, continue, clear, the trajectory in progress, and the stream of waypoints.
#include "zk/replies/trajectory.h"

#include <array>
#include <cstring>

#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/pending.h"

using namespace zk;

AckReply Set_Arm_Stop_Cmd[ZK_SLOTS];
ZK_API int Move_Stop_Cmd(ArmSocket s, bool block) {
    return guarded(block ? Move_Stop_Cmd_Block : Move_Stop_Cmd_NonBlock, s);
}
ZK_API int Move_Stop_Cmd_Block(ArmSocket s) { return set({s, "set_arm_stop"}, Set_Arm_Stop_Cmd); }
ZK_API int Move_Stop_Cmd_NonBlock(ArmSocket s) { return post({s, "set_arm_stop"}); }
ZK_API int Parser_Move_Stop(const char* text) { return acknowledgement(text, "arm_stop"); }
ZK_TWIN(Parser_Move_Stop);

// It clears the count of the other stop, not its own: the reply to an earlier call ends the wait at once.
AckReply Set_Arm_Slow_Stop_Cmd[ZK_SLOTS];
ZK_API int Move_Slow_Stop_Cmd(ArmSocket s, bool block) {
    return guarded(block ? Move_Slow_Stop_Cmd_Block : Move_Slow_Stop_Cmd_NonBlock, s);
}
ZK_API int Move_Slow_Stop_Cmd_Block(ArmSocket s) {
    return set({s, "set_arm_slow_stop"}, Set_Arm_Slow_Stop_Cmd, {.clears = Set_Arm_Stop_Cmd});
}
ZK_API int Move_Slow_Stop_Cmd_NonBlock(ArmSocket s) { return post({s, "set_arm_slow_stop"}); }
ZK_API int Parser_Move_Slow_Stop(const char* text) { return acknowledgement(text, "arm_slow_stop"); }

AckReply Set_Arm_Pause_Cmd[ZK_SLOTS];
ZK_API int Move_Pause_Cmd(ArmSocket s, bool block) {
    return guarded(block ? Move_Pause_Cmd_Block : Move_Pause_Cmd_NonBlock, s);
}
ZK_API int Move_Pause_Cmd_Block(ArmSocket s) { return set({s, "set_arm_pause"}, Set_Arm_Pause_Cmd); }
ZK_API int Move_Pause_Cmd_NonBlock(ArmSocket s) { return post({s, "set_arm_pause"}); }
ZK_API int Parser_Move_Pause(const char* text) { return acknowledgement(text, "arm_pause"); }
ZK_TWIN(Parser_Move_Pause);

AckReply Set_Arm_Continue_Cmd[ZK_SLOTS];
ZK_API int Move_Continue_Cmd(ArmSocket s, bool block) {
    return guarded(block ? Move_Continue_Cmd_Block : Move_Continue_Cmd_NonBlock, s);
}
ZK_API int Move_Continue_Cmd_Block(ArmSocket s) { return set({s, "set_arm_continue"}, Set_Arm_Continue_Cmd); }
ZK_API int Move_Continue_Cmd_NonBlock(ArmSocket s) { return post({s, "set_arm_continue"}); }
ZK_API int Parser_Move_Continue(const char* text) { return acknowledgement(text, "arm_continue"); }
ZK_TWIN(Parser_Move_Continue);

AckReply Clear_Current_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Clear_Current_Trajectory(ArmSocket s, bool block) {
    return guarded(block ? Clear_Current_Trajectory_Block : Clear_Current_Trajectory_NonBlock, s);
}
ZK_API int Clear_Current_Trajectory_Block(ArmSocket s) {
    return set({s, "set_delete_current_trajectory"}, Clear_Current_Trajectory_Cmd);
}
ZK_API int Clear_Current_Trajectory_NonBlock(ArmSocket s) { return post({s, "set_delete_current_trajectory"}); }
ZK_API int Parser_Clear_Current_Trajectory(const char* text) {
    return acknowledgement(text, "delete_current_trajectory");
}
ZK_TWIN(Parser_Clear_Current_Trajectory);

AckReply Clear_All_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Clear_All_Trajectory(ArmSocket s, bool block) {
    return guarded(block ? Clear_All_Trajectory_Block : Clear_All_Trajectory_NonBlock, s);
}
ZK_API int Clear_All_Trajectory_Block(ArmSocket s) {
    return set({s, "set_arm_delete_trajectory"}, Clear_All_Trajectory_Cmd);
}
ZK_API int Clear_All_Trajectory_NonBlock(ArmSocket s) { return post({s, "set_arm_delete_trajectory"}); }
ZK_API int Parser_Clear_All_Trajectory(const char* text) { return acknowledgement(text, "arm_delete_trajectory"); }
ZK_TWIN(Parser_Clear_All_Trajectory);

// For a pose type on a seven-joint arm the seventh value is the one that the record held.
TrajectoryReply Get_Arm_Current_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Trajectory(ArmSocket s, int32_t* type, float* data) {
    return query_after_20_ms(Get_Current_Trajectory_Block, s, type, data);
}
ZK_API int Get_Current_Trajectory_Block(ArmSocket s, int32_t* type, float* data) {
    const auto deliver = [&](const TrajectoryReply& reply) {
        *type = reply.type;
        copy_joints(s, reply.data, data);
    };
    return query({s, "get_arm_current_trajectory"}, Get_Arm_Current_Trajectory_Cmd, deliver,
                 {.clears_before = true, .clears_after = true});
}

namespace {

struct TrajectoryType {
    const char* name;
    int32_t code;
    bool is_pose;
};
constexpr std::array<TrajectoryType, 7> kTrajectoryTypes = {{{"none", ZK_TRAJECTORY_NONE, false},
                                                             {"movej", ZK_TRAJECTORY_JOINT, false},
                                                             {"movel", ZK_TRAJECTORY_LINE, true},
                                                             {"movec", ZK_TRAJECTORY_CIRCLE, true},
                                                             {"re_trajectory", ZK_TRAJECTORY_REPLAY, false},
                                                             {"moves", ZK_TRAJECTORY_SPLINE, true},
                                                             {"blend", ZK_TRAJECTORY_BLEND, false}}};

const TrajectoryType* find_type(const char* name) {
    for (const TrajectoryType& type : kTrajectoryTypes) {
        if (std::strcmp(type.name, name) == 0) return &type;
    }
    return nullptr;
}

}  // namespace

ZK_API int Parser_Get_Current_Trajectory(ArmSocket s, const char* text, int32_t* type, float* data) {
    Reply reply(text);
    const Item values = reply.array(reply.root(), "data");
    const Item name = reply.text(reply.root(), "type");
    const TrajectoryType* found = find_type(name.text());
    if (!reply.require(found != nullptr, ZK_WRONG_TYPE)) return reply.status();
    *type = found->code;
    if (found->is_pose) {
        scaled(values, 3, 1000000.0f, data);
        for (int i = 3; i < 6; ++i) data[i] = static_cast<float>(values[i].integer()) / 1000.0f;
    } else {
        scaled(values, joint_count(s), 1000.0f, data);
    }
    return reply.status();
}
ZK_TWIN(Parser_Get_Current_Trajectory);

// The stream of waypoints. The replies never reach the pending list, so the blocking forms end in 7.
constexpr PendingForm kClearsPastEnd = {.clears_past_end = true};

static Request add_waypoint(ArmSocket s, const float* joint) {
    return Request(s, "add_waypoint").joints("joint", joint);
}
ZK_API int Add_Waypoint(ArmSocket s, const float* joint, bool block) {
    return after_20_ms(block, Add_Waypoint_Block, Add_Waypoint_NonBlock, s, joint);
}
ZK_API int Add_Waypoint_Block(ArmSocket s, const float* joint) {
    return pending(add_waypoint(s, joint), ZK_KEY_ADD_WAYPOINT, Parser_Add_Waypoint, kClearsPastEnd);
}
ZK_API int Add_Waypoint_NonBlock(ArmSocket s, const float* joint) { return post(add_waypoint(s, joint)); }
ZK_API int Parser_Add_Waypoint(const char* text) {  // only false is a refusal
    Reply reply(text);
    const Item state = reply.find("waypoint_state");
    reply.require(bool(state), ZK_BAD_REPLY);
    reply.require(!state.is_false(), ZK_REFUSED);
    return reply.status();
}

static Request start_waypoint(ArmSocket s, int32_t frequency) {
    return Request(s, "start_waypoint").number("frequency", frequency);
}
ZK_API int Start_Waypoint(ArmSocket s, int32_t frequency, bool block) {
    return after_20_ms(block, Start_Waypoint_Block, Start_Waypoint_NonBlock, s, frequency);
}
ZK_API int Start_Waypoint_Block(ArmSocket s, int32_t frequency) {
    return pending(start_waypoint(s, frequency), ZK_KEY_START_WAYPOINT, Parser_Set_Gripper, kClearsPastEnd);
}
ZK_API int Start_Waypoint_NonBlock(ArmSocket s, int32_t frequency) { return post(start_waypoint(s, frequency)); }

ZK_API int Clear_Waypoint(ArmSocket s, bool block) {
    return after_20_ms(block, Clear_Waypoint_Block, Clear_Waypoint_NonBlock, s);
}
ZK_API int Clear_Waypoint_Block(ArmSocket s) {
    return pending({s, "clear_waypoint"}, ZK_KEY_CLEAR_WAYPOINT, Parser_Set_Gripper, kClearsPastEnd);
}
ZK_API int Clear_Waypoint_NonBlock(ArmSocket s) { return post({s, "clear_waypoint"}); }

ZK_API int Stop_Waypoint(ArmSocket s, bool block) {
    return after_20_ms(block, Stop_Waypoint_Block, Stop_Waypoint_NonBlock, s);
}
ZK_API int Stop_Waypoint_Block(ArmSocket s) {
    return pending({s, "stop_waypoint"}, ZK_KEY_STOP_WAYPOINT, Parser_Set_Gripper, kClearsPastEnd);
}
ZK_API int Stop_Waypoint_NonBlock(ArmSocket s) { return post({s, "stop_waypoint"}); }
ZK_API int Parser_Set_Gripper(const char* text) { return acknowledgement(text, "waypoint_state"); }

static Request timer(ArmSocket s, int32_t wait_time) { return Request(s, "timer").number("wait_time", wait_time); }
ZK_API int Timer(ArmSocket s, int32_t wait_time, bool block) {
    return after_20_ms(block, Timer_Block, Timer_NonBlock, s, wait_time);
}
ZK_API int Timer_Block(ArmSocket s, int32_t wait_time) {
    return pending(timer(s, wait_time), ZK_KEY_TIMER, Paser_Timer, kClearsPastEnd);
}
ZK_API int Timer_NonBlock(ArmSocket s, int32_t wait_time) { return post(timer(s, wait_time)); }
ZK_API int Paser_Timer(const char* text) { return acknowledgement(text, "wait_time"); }
