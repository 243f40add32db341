// Jogging: motion of a joint, or of the tool along an axis, until a stop or by a fixed amount.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "commands/commands.h"
#include "commands/orders.h"
#include "motion/tool_planner.h"

namespace sim {
namespace {

// The name of a jog in the real-time push, by which these commands also find it.
constexpr const char* kTeaching = "tech_demonstration";

bool jogging(const MotionQueue& motion) { return motion.current() && motion.current()->status == kTeaching; }

// +1 or -1.
double direction_of(const Request& request) {
    const std::string direction = request.text("direction");
    if (direction == "pos") return 1;
    if (direction == "neg") return -1;
    throw BadRequest(request.command() + ": \"direction\" is neither \"pos\" nor \"neg\"");
}

// Replaces the jog in progress. A jog never waits for queued moves, since the operator may have released the key by
// then. Its end is not reported.
bool start_jog(Arm& arm, const Call& call, Move jog) {
    MotionQueue& motion = arm.motion();
    if (jogging(motion)) motion.stop();
    if (motion.current() && !motion.stopping()) throw BadRequest(call.request.command() + ": the arm has moves to do");
    jog.status = kTeaching;
    return order(arm, call, std::move(jog));
}

bool start_step(Arm& arm, const Call& call, Move step) {
    step.client = call.client;
    return order(arm, call, std::move(step));
}

bool stop_jog(MotionQueue& motion, const Call&) {
    if (jogging(motion)) motion.stop();
    return true;
}

// -------------------------------------------------------------------------------------------------------- One joint --

enum class Extent { kWhole, kAsFarAsClear };

// `end` maps the current position of the joint to its target.
Move joint_move(const Arm& arm, const Call& call, int number, Extent extent, const std::function<double(double)>& end) {
    if (number < 1 || number > static_cast<int>(arm.joint_count()))
        throw BadRequest(call.request.command() + ": a joint that the arm has not");
    const auto target = [joint = static_cast<size_t>(number - 1), end](JointVector joints) {
        joints[joint] = end(joints[joint]);
        return joints;
    };
    Move move;
    move.type = "movej";
    move.status = "move_J";
    move.plan = [&arm, target, extent, percent = percent_of(call)](const JointVector& start) {
        const JointVector end = target(start);
        const std::string reason = arm.reason_not_to_move_to(end);
        if (!reason.empty()) throw NoPath(reason);
        return arm.joint_path(start, extent == Extent::kWhole ? end : arm.clear_until(start, end), percent);
    };
    return move;
}

bool jog_joint(Arm& arm, const Call& call) {
    const int number = call.request.integer("teach_joint");
    const bool up = direction_of(call.request) > 0;
    const auto limit = [&arm, number, up](double) {
        const JointLimits& limits = arm.limits[static_cast<size_t>(number - 1)];
        return (up ? limits.max_pos : limits.min_pos) / 1000.0;
    };
    return start_jog(arm, call, joint_move(arm, call, number, Extent::kAsFarAsClear, limit));
}

bool step_joint(Arm& arm, const Call& call) {
    const std::vector<double> step = call.request.numbers("joint_step", 2);
    const int number = static_cast<int>(std::clamp(step[0], 0.0, 100.0));
    const auto target = [=](double joint) { return joint + step[1] / 1000; };
    return start_step(arm, call, joint_move(arm, call, number, Extent::kWhole, target));
}

// --------------------------------------------------------------------------------------------------------- The tool --

// An axis of the work frame or of the tool itself.
struct Axis {
    int number;    // 0 to 2
    bool turn;     // rotation about it in radians; otherwise translation along it in metres
    bool of_tool;  // in the frame of the tool
};

KDL::Frame displaced(const KDL::Frame& tool, const Axis& axis, double amount) {
    KDL::Vector unit;
    unit[axis.number] = 1;
    const KDL::Vector way = axis.turn ? KDL::Vector::Zero() : unit * amount;
    const KDL::Rotation turn = axis.turn ? KDL::Rotation::Rot(unit, amount) : KDL::Rotation::Identity();
    return axis.of_tool ? tool * KDL::Frame(turn, way) : KDL::Frame(turn * tool.M, tool.p + way);
}

// "x", "y" or "z", with a leading "r" for a rotation, and the command's own suffix.
Axis requested_axis(const Request& request, const char* key, const char* suffix, bool turn, TeachFrame frame) {
    const std::string requested = request.text(key);
    for (int i = 0; i < 3; ++i) {
        std::string name = turn ? "r" : "";
        name += "xyz"[i];
        name += suffix;
        if (requested == name) return {i, turn, frame == TeachFrame::kTool};
    }
    throw BadRequest(request.command() + ": no axis '" + requested + "'");
}

// How far the tool can go at full speed before a joint reaches its limit or maximum speed or the arm a hazard, in whole
// steps.
double reach(const Arm& arm, const Tool& tool, const Axis& axis, double direction, JointVector joints) {
    constexpr double kSpeedShare = 0.9;  // of a joint's limit, since the speed varies between two points
    const double step = axis.turn ? 0.02 : 0.005, most = axis.turn ? 2 * std::numbers::pi : 2.0;
    const CartesianLimits& limits = tool.limits;
    const double seconds = step / ((axis.turn ? limits.angular_speed : limits.line_speed) / 1e3);
    const Surroundings around = tool.surroundings();
    const KDL::Frame start = around.tool_of(arm.flange_at(joints));
    for (double amount = 0; amount < most; amount += step) {
        const auto next = arm.joints_at(around.flange_of(displaced(start, axis, direction * (amount + step))), joints);
        if (!next || arm.clear_until(joints, *next) != *next) return amount;
        for (size_t i = 0; i < joints.size(); ++i) {
            const double speed = std::abs((*next)[i] - joints[i]) / seconds;
            if (speed > kSpeedShare * arm.limits[i].speed()) return amount;
        }
        joints = *next;
    }
    return most;
}

Path path_along(const ToolPlanner& planner, const Axis& axis, double amount, const JointVector& start) {
    const KDL::Frame tool = planner.tool_at(start);
    return planner.along([=](double s) { return displaced(tool, axis, s * amount); }, start);
}

Move tool_move(std::function<Path(const JointVector&)> plan, const KDL::Frame& target) {
    Move move;
    move.type = "movel";
    move.status = "move_L";
    move.plan = std::move(plan);
    const WirePose pose = wire_pose(target);
    move.data.assign(pose.begin(), pose.end());
    return move;
}

// If the planner rejects the distance, half of it is tried. A jog reports its start as its target.
Action jog_tool(Arm& arm, const Tool& tool, bool turn) {
    return [&arm, &tool, turn](const Call& call) {
        const Axis axis = requested_axis(call.request, "teach_type", "", turn, tool.teach_frame);
        const double direction = direction_of(call.request);
        const ToolPlanner planner(arm, tool, percent_of(call));
        const auto plan = [planner, &arm, &tool, axis, direction](const JointVector& start) {
            for (double amount = reach(arm, tool, axis, direction, start);; amount /= 2) {
                try {
                    return path_along(planner, axis, direction * amount, start);
                } catch (const NoPath&) {
                    constexpr double kTooLittle = 0.001;
                    if (amount < kTooLittle) throw;
                }
            }
        };
        return start_jog(arm, call, tool_move(plan, tool.pose()));
    };
}

Action step_tool(Arm& arm, const Tool& tool, bool turn) {
    return [&arm, &tool, turn](const Call& call) {
        const Axis axis = requested_axis(call.request, "step_type", "_step", turn, tool.teach_frame);
        const double amount = call.request.integer("step") / (turn ? 1e3 : 1e6);
        const ToolPlanner planner(arm, tool, percent_of(call));
        const auto plan = [planner, axis, amount](const JointVector& start) {
            return path_along(planner, axis, amount, start);
        };
        const KDL::Frame start = planner.tool_at(arm.end());
        return start_step(arm, call, tool_move(plan, displaced(start, axis, amount)));
    };
}

}  // namespace

void add_teach_commands(CommandTable& table, Arm& arm, const Tool& tool) {
    constexpr bool kAlong = false, kAbout = true;
    table.set("set_joint_teach", "joint_teach", with(jog_joint, arm));
    table.set("set_pos_teach", "pos_teach", jog_tool(arm, tool, kAlong));
    table.set("set_ort_teach", "ort_teach", jog_tool(arm, tool, kAbout));
    table.set("set_stop_teach", "stop_teach", with(stop_jog, arm.motion()));
    table.set("set_joint_step", "joint_step", with(step_joint, arm)).refused = report_refusal;
    table.set("set_pos_step", "pos_step", step_tool(arm, tool, kAlong)).refused = report_refusal;
    table.set("set_ort_step", "ort_step", step_tool(arm, tool, kAbout)).refused = report_refusal;
}

}  // namespace sim
