// Commands for the running motion and the queued moves, and the waypoint stream.

#include <algorithm>

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

// The target of the running trajectory, or the current joints if there is none.
Json current_trajectory(Call& call) {
    const Arm& arm = call.controller.arm;
    const Move* move = arm.motion().current();
    if (!move) return {{"type", "none"}, {"data", thousandths(arm.joints())}};
    return {{"type", move->type}, {"data", move->data}};
}

// Waypoints are collected and then run in sequence.
struct Waypoints {
    std::vector<JointVector> points;
};

bool add_waypoint(Call& call, Waypoints& waypoints) {
    constexpr size_t kMaxWaypoints = 10'000;
    JointVector target;
    for (const int joint : call.request.integers("joint")) target.push_back(joint / 1000.0);
    const std::string reason = call.controller.arm.reason_not_to_move_to(target);
    if (!reason.empty()) throw BadRequest("add_waypoint: " + reason);
    if (waypoints.points.size() == kMaxWaypoints) return false;
    waypoints.points.push_back(target);
    return true;
}

// A straight line in joint space from point to point, with at most `frequency` points per second.
bool start_waypoint(Call& call, Waypoints& waypoints) {
    constexpr int kMaxFrequency = 200;
    constexpr double kPercent = 100;
    const int frequency = call.request.integer("frequency", 1, kMaxFrequency);
    Arm& arm = call.controller.arm;
    if (waypoints.points.empty() || !arm.reason_not_to_move().empty()) return false;
    for (const JointVector& point : waypoints.points) {
        Move move;
        move.type = "re_trajectory";
        move.status = "move_through_joint";
        move.plan = [&arm, point, frequency](const JointVector& start) {
            Path path = arm.joint_path(start, point, kPercent);
            path.speed = std::min<double>(path.speed, frequency);
            return path;
        };
        arm.order(move);
    }
    return true;
}

void add_waypoints(CommandTable& table) {
    const auto waypoints = std::make_shared<Waypoints>();
    table.set("add_waypoint", "waypoint_state", [waypoints](Call& call) { return add_waypoint(call, *waypoints); });
    table.set("start_waypoint", "waypoint_state", [waypoints](Call& call) { return start_waypoint(call, *waypoints); });
    table.set("clear_waypoint", "waypoint_state", [waypoints](Call&) {
        waypoints->points.clear();
        return true;
    });
    table.set("stop_waypoint", "waypoint_state", [](Call& call) {
        call.controller.arm.motion().stop();
        return true;
    });
}

// A pause of the arm between two trajectories, in milliseconds.
bool timer(Call& call) {
    constexpr int kMaxWait = 3'600'000;
    const int milliseconds = call.request.integer("wait_time", 0, kMaxWait);
    Move move;
    move.type = "none";
    move.status = "idle";
    move.plan = [milliseconds](const JointVector& start) {
        // A path that stays in place for this time.
        Path path;
        path.at = [start](double) { return start; };
        path.speed = 1000.0 / std::max(1, milliseconds);
        path.acc = 1e6;
        return path;
    };
    call.controller.arm.order(move);
    return true;
}

Action motion(void (MotionQueue::*act)()) {
    return [act](Call& call) {
        (call.controller.arm.motion().*act)();
        return true;
    };
}

}  // namespace

void add_trajectory_commands(CommandTable& table) {
    table.set("set_arm_stop", "arm_stop", motion(&MotionQueue::stop));
    table.set("set_arm_slow_stop", "arm_slow_stop", motion(&MotionQueue::slow_stop));
    table.set("set_arm_pause", "arm_pause", [](Call& call) { return call.controller.arm.motion().pause(); });
    table.set("set_arm_continue", "arm_continue", [](Call& call) { return call.controller.arm.motion().resume(); });
    table.set("set_delete_current_trajectory", "delete_current_trajectory", motion(&MotionQueue::delete_current));
    table.set("set_arm_delete_trajectory", "arm_delete_trajectory", motion(&MotionQueue::delete_all));
    table.query("get_arm_current_trajectory", "arm_current_trajectory", current_trajectory);
    add_waypoints(table);
    table.set("timer", "wait_time", timer);
}

}  // namespace sim
