// Force-position moves: streamed set-points, each with the force to hold. Each is reported.

#include <cmath>
#include <utility>

#include "commands/commands.h"
#include "commands/force_orders.h"
#include "commands/set_points.h"
#include "devices/force_control.h"
#include "wire/note.h"

namespace sim {
namespace {

// Whether set-points are accepted.
struct Mode {
    bool on = false;
    Verdict last = Verdict::kFollowed;
};

bool start(const Arm& arm, Mode& mode) {
    if (arm.model().sensor == Sensor::kBare) throw BadRequest("Start_Force_Position_Move: the arm has no force sensor");
    const std::string reason = arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest("Start_Force_Position_Move: " + reason);
    if (!arm.motion().idle()) return false;
    mode = {.on = true, .last = Verdict::kFollowed};
    return true;
}

bool stop(ForceHold& hold, Mode& mode) {
    if (mode.on) hold.end();
    return std::exchange(mode.on, false);
}

// The parts on which these commands act.
struct Parts {
    Arm& arm;
    const Tool& tool;
    ForceControl& force;
};

Verdict follow(const Parts& parts, const Call& call, const Mode& mode) {
    const HoldOrder order = hold_order(call.request, parts.arm.model().sensor);
    if (!mode.on) return Verdict::kNotNow;
    const bool direct = call.request.has("follow") && call.request.flag("follow");
    const auto target = call.request.has("joint") ? joint_target : pose_target;
    const Verdict verdict =
        follow_set_point(parts.arm, parts.tool, call,
                         {.target = target, .direct = direct, .near = true, .status = "move_through_force_pose"});
    if (verdict != Verdict::kFollowed) return verdict;
    return parts.force.begin_hold(order) ? verdict : Verdict::kNotNow;
}

// The force with which the tool presses, in newtons and newton metres; along the first held direction in tenths of a
// newton. Joints are degrees.
Json report(const Arm& arm, const ForceControl& force, Verdict verdict) {
    const HoldOrder& order = force.hold.order();
    const KDL::Wrench pressed = -force.felt(order.of_tool ? ForceAxes::kTool : ForceAxes::kWork);
    std::vector<double> forces(6);
    double along = 0;
    for (int i = 5; i >= 0; --i) {
        if (order.held[i]) along = pressed(i);
    }
    for (int i = 0; i < 6; ++i) forces[static_cast<size_t>(i)] = std::round(pressed(i) * 1e3) / 1e3;
    return {{"state", "Force_Position_State"},
            {"joint", reported_joints(arm)},
            {"all_direction_force", forces},
            {"force", std::lround(along * 10)},
            {"arm_err", static_cast<int>(verdict)}};
}

void take(const Parts& parts, const Call& call, Mode& mode) {
    Verdict verdict = Verdict::kMalformed;
    try {
        verdict = follow(parts, call, mode);
    } catch (const BadRequest&) {
    }
    if (std::exchange(mode.last, verdict) != verdict && verdict != Verdict::kFollowed)
        note(call.client->name() + ": Force_Position_Move: set-point refused: " + reason(verdict));
    call.client->send(report(parts.arm, parts.force, verdict));
}

}  // namespace

void add_force_position_commands(CommandTable& table, Arm& arm, const Tool& tool, ForceControl& force) {
    const Parts parts{arm, tool, force};
    const auto mode = std::make_shared<Mode>();
    table.set("Start_Force_Position_Move", "set_state", [&arm, mode](const Call&) { return start(arm, *mode); });
    table.set("Stop_Force_Position_Move", "set_state", [&force, mode](const Call&) { return stop(force.hold, *mode); });
    table.order("Force_Position_Move", [parts, mode](const Call& call) { take(parts, call, *mode); });
}

}  // namespace sim
