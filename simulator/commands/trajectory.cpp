// Commands for the running motion and the queued moves, and the waypoint stream.

#include <algorithm>
#include <utility>

#include "commands/commands.h"
#include "motion/arm.h"
#include "programs/program.h"
#include "wire/command_table.h"

namespace sim {
namespace {

// The target of the running trajectory, or of the one behind a timer, or the current joints if there is none.
Json current_trajectory(const Arm& arm, const Call&) {
    const Move* move = arm.motion().next_motion();
    if (!move) return {{"type", "none"}, {"data", thousandths(arm.joints())}};
    return {{"type", move->type}, {"data", move->data}};
}

// Waypoints are collected and then run in sequence.
struct Waypoints {
    std::vector<JointVector> points;
};

bool add_waypoint(const Arm& arm, const Call& call, Waypoints& waypoints) {
    constexpr size_t kMaxWaypoints = 10'000;
    JointVector target;
    for (const int joint : call.request.integers("joint")) target.push_back(joint / 1000.0);
    const std::string reason = arm.reason_not_to_move_to(target);
    if (!reason.empty()) throw BadRequest("add_waypoint: " + reason);
    if (waypoints.points.size() == kMaxWaypoints) return false;
    waypoints.points.push_back(target);
    return true;
}

// A straight line in joint space from point to point, with at most `frequency` points per second.
bool start_waypoint(Arm& arm, const Call& call, const Waypoints& waypoints) {
    constexpr int kMaxFrequency = 200;
    constexpr double kPercent = 100;
    const int frequency = call.request.integer("frequency", 1, kMaxFrequency);
    if (waypoints.points.empty()) return false;
    JointVector from = arm.end();
    for (const JointVector& point : waypoints.points) {
        const std::string reason = arm.reason_not_to_move_to(point);
        if (!reason.empty()) throw BadRequest("start_waypoint: " + reason);
        arm.check(arm.joint_path(std::exchange(from, point), point, kPercent).course());
    }
    for (const JointVector& point : waypoints.points) {
        Move move;
        move.type = "re_trajectory";
        move.status = "move_through_joint";
        move.owner = &waypoints;
        move.plan = [&arm, point, frequency](const JointVector& start) {
            Path path = arm.joint_path(start, point, kPercent);
            path.speed = std::min<double>(path.speed, frequency);
            return path;
        };
        arm.order(move);
    }
    return true;
}

void add_waypoints(CommandTable& table, Arm& arm) {
    const auto waypoints = std::make_shared<Waypoints>();
    table.set("add_waypoint", "waypoint_state",
              [&arm, waypoints](const Call& call) { return add_waypoint(arm, call, *waypoints); });
    table.set("start_waypoint", "waypoint_state",
              [&arm, waypoints](const Call& call) { return start_waypoint(arm, call, *waypoints); });
    table.set("clear_waypoint", "waypoint_state", [waypoints](const Call&) {
        waypoints->points.clear();
        return true;
    });
    table.set("stop_waypoint", "waypoint_state", [&arm, waypoints](const Call&) {
        arm.motion().remove(waypoints.get());
        return true;
    });
}

// A pause of the arm between two trajectories, in milliseconds.
bool timer(Arm& arm, const Call& call) {
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
    move.ended = [client = std::weak_ptr(call.client)](bool arrived) {
        if (const auto waiting = client.lock()) waiting->timer_ended(arrived);
    };
    arm.order(move);
    return true;
}

Action stop(Programs& programs, MotionQueue& motion, void (MotionQueue::*act)()) {
    return [&programs, &motion, act](const Call&) {
        programs.stop();
        (motion.*act)();
        return true;
    };
}

}  // namespace

void add_trajectory_commands(CommandTable& table, Arm& arm, Programs& programs) {
    table.set("set_arm_stop", "arm_stop", stop(programs, arm.motion(), &MotionQueue::stop));
    table.set("set_arm_slow_stop", "arm_slow_stop", stop(programs, arm.motion(), &MotionQueue::slow_stop));
    table.set("set_arm_pause", "arm_pause", [&arm](const Call&) { return arm.motion().pause(); });
    table.set("set_arm_continue", "arm_continue", [&arm](const Call&) { return arm.motion().resume(); });
    table.set("set_delete_current_trajectory", "delete_current_trajectory", [&arm](const Call&) {
        arm.motion().delete_current();
        return true;
    });
    table.set("set_arm_delete_trajectory", "arm_delete_trajectory",
              stop(programs, arm.motion(), &MotionQueue::delete_all));
    table.query("get_arm_current_trajectory", "arm_current_trajectory", with(current_trajectory, arm));
    add_waypoints(table, arm);
    table.set("timer", "wait_time", with(timer, arm));
}

}  // namespace sim
