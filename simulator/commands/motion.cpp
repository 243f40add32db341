// The commands that move the arm. Each is acknowledged at once, and its end is reported.

#include <algorithm>

#include "commands/commands.h"
#include "commands/orders.h"
#include "motion/tool_planner.h"

namespace sim {
namespace {

// The keys that all motion commands share.
Move ordered_move(const Call& call, const std::string& type, const std::string& status) {
    Move move;
    move.type = type;
    move.status = status;
    if (call.request.has("r")) move.blend = call.request.integer("r", 0, 100) / 100.0;
    move.connect = call.request.integer("trajectory_connect");
    move.client = call.client;
    return move;
}

Move joint_move(const Arm& arm, Move move, const JointVector& target, double percent) {
    move.plan = [&arm, target, percent](const JointVector& start) { return arm.joint_path(start, target, percent); };
    return move;
}

bool movej(Arm& arm, const Call& call) {
    JointVector target;
    for (const int joint : call.request.integers("joint")) target.push_back(joint / 1000.0);
    const Move move = ordered_move(call, "movej", "move_J");
    const std::string reason = arm.reason_not_to_move_to(target);
    if (!reason.empty()) throw BadRequest("movej: " + reason);
    return order(arm, call, joint_move(arm, move, target, percent_of(call)));
}

WirePose requested_pose(const Request& request, const char* key) {
    const std::vector<int> numbers = request.integers(key, 6);
    WirePose pose;
    std::copy_n(numbers.begin(), pose.size(), pose.begin());
    return pose;
}

// A move in joint space.
bool movej_p(Arm& arm, const Tool& tool, const Call& call) {
    const KDL::Frame pose = frame_of(requested_pose(call.request, "pose"));
    const Move move = ordered_move(call, "movej", "move_J");
    const auto target = tool.joints_at(pose, arm.end());
    if (!target) throw BadRequest("movej_p: the pose is out of reach");
    return order(arm, call, joint_move(arm, move, *target, percent_of(call)));
}

// A move of the tool to `target` along the curve that `course` makes from its start.
Move tool_move(const ToolPlanner& planner, Move move, const WirePose& target,
               const std::function<Curve(const KDL::Frame& from)>& course) {
    move.data.assign(target.begin(), target.end());
    move.plan = [planner, course](const JointVector& start) {
        return planner.along(course(planner.tool_at(start)), start);
    };
    return move;
}

bool movel(Arm& arm, const Tool& tool, const Call& call) {
    const WirePose target = requested_pose(call.request, "pose");
    const auto course = [to = frame_of(target)](const KDL::Frame& from) { return line(from, to); };
    return order(
        arm, call,
        tool_move(ToolPlanner(arm, tool, percent_of(call)), ordered_move(call, "movel", "move_L"), target, course));
}

bool movec(Arm& arm, const Tool& tool, const Call& call) {
    constexpr int kMostTurns = 255;
    const Request poses = call.request.object("pose");
    const WirePose target = requested_pose(poses, "pose_to");
    const auto course = [via = frame_of(requested_pose(poses, "pose_via")), to = frame_of(target),
                         turns = call.request.integer("loop", 0, kMostTurns)](const KDL::Frame& from) {
        return circle(from, via, to, turns);
    };
    return order(
        arm, call,
        tool_move(ToolPlanner(arm, tool, percent_of(call)), ordered_move(call, "movec", "move_C"), target, course));
}

// Joined moves of this kind form one spline, at the pace of the last.
bool moves(Arm& arm, const Tool& tool, const Call& call) {
    const WirePose target = requested_pose(call.request, "pose");
    const Move* before = arm.motion().last_joined();
    Move move = ordered_move(call, "moves", "move_S");
    if (before) move.points = before->points;
    move.points.push_back(frame_of(target));
    const auto course = [points = move.points](const KDL::Frame& from) {
        std::vector<KDL::Frame> poses{from};
        poses.insert(poses.end(), points.begin(), points.end());
        return spline(poses);
    };
    return order(arm, call, tool_move(ToolPlanner(arm, tool, percent_of(call)), move, target, course));
}

// Slowly moves every joint that is beyond a limit back to it.
bool fix_soft_limits(Arm& arm, const Call& call) {
    constexpr double kPercent = 10;
    JointVector target = arm.joints();
    for (size_t i = 0; i < target.size(); ++i)
        target[i] = std::clamp(target[i], arm.limits[i].min_pos / 1000.0, arm.limits[i].max_pos / 1000.0);
    const std::string reason = arm.reason_not_to_move_to(target);
    if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
    Move move;
    move.type = "movej";
    move.status = "move_J";
    move.client = call.client;
    return order(arm, call, joint_move(arm, move, target, kPercent));
}

}  // namespace

void add_motion_commands(CommandTable& table, Arm& arm, const Tool& tool) {
    const auto add_move = [&table](const char* name, Action action) {
        table.set(name, "receive_state", std::move(action)).refused = report_refusal;
    };
    add_move("movej", with(movej, arm));
    add_move("movej_p", with(movej_p, arm, tool));
    add_move("movel", with(movel, arm, tool));
    add_move("moves", with(moves, arm, tool));
    add_move("movec", with(movec, arm, tool));
    table.set("auto_fix_joint_over_soft_limit", "set_state", with(fix_soft_limits, arm));  // a refusal has no report
}

}  // namespace sim
