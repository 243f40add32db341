// Force-position moves: streamed set-points, each with the force to hold. Each is reported.

#include <cmath>

#include "commands/commands.h"
#include "commands/force_orders.h"
#include "commands/set_points.h"
#include "controller.h"
#include "wire/note.h"

namespace sim {
namespace {

// Whether set-points are accepted.
struct Mode {
    bool on = false;
    Verdict last = Verdict::kFollowed;
};

bool start(Call& call, Mode& mode) {
    Controller& controller = call.controller;
    if (controller.arm.model().sensor == Sensor::kBare)
        throw BadRequest("Start_Force_Position_Move: the arm has no force sensor");
    const std::string reason = controller.arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest("Start_Force_Position_Move: " + reason);
    if (!controller.arm.motion().idle()) return false;
    mode = {.on = true, .last = Verdict::kFollowed};
    return true;
}

bool stop(Call& call, Mode& mode) {
    if (mode.on) call.controller.hold.end();
    return std::exchange(mode.on, false);
}

Verdict follow(const Call& call, const Mode& mode) {
    Controller& controller = call.controller;
    const HoldOrder order = hold_order(call.request, controller.arm.model().sensor);
    if (!mode.on) return Verdict::kNotNow;
    const bool direct = call.request.has("follow") && call.request.flag("follow");
    const auto target = call.request.has("joint") ? joint_target : pose_target;
    const Verdict verdict =
        follow_set_point(call, {.target = target, .direct = direct, .near = true, .status = "move_through_force_pose"});
    if (verdict != Verdict::kFollowed) return verdict;
    return controller.hold_force(order) ? verdict : Verdict::kNotNow;
}

// The force with which the tool presses, in newtons and newton metres; along the first held direction in tenths of a
// newton. Joints are degrees.
Json report(const Call& call, Verdict verdict) {
    const Controller& controller = call.controller;
    const HoldOrder& order = controller.hold.order();
    const KDL::Wrench pressed = -controller.felt(order.of_tool ? ForceAxes::kTool : ForceAxes::kWork);
    std::vector<double> forces(6);
    double along = 0;
    for (int i = 5; i >= 0; --i) {
        if (order.held[i]) along = pressed(i);
    }
    for (int i = 0; i < 6; ++i) forces[static_cast<size_t>(i)] = std::round(pressed(i) * 1e3) / 1e3;
    return {{"state", "Force_Position_State"},
            {"joint", reported_joints(call)},
            {"all_direction_force", forces},
            {"force", std::lround(along * 10)},
            {"arm_err", static_cast<int>(verdict)}};
}

void take(Call& call, Mode& mode) {
    Verdict verdict = Verdict::kMalformed;
    try {
        verdict = follow(call, mode);
    } catch (const BadRequest&) {
    }
    if (std::exchange(mode.last, verdict) != verdict && verdict != Verdict::kFollowed)
        note(call.client->name() + ": Force_Position_Move: set-point refused: " + reason(verdict));
    call.client->send(report(call, verdict));
}

}  // namespace

void add_force_position_commands(CommandTable& table) {
    const auto mode = std::make_shared<Mode>();
    table.set("Start_Force_Position_Move", "set_state", [mode](Call& call) { return start(call, *mode); });
    table.set("Stop_Force_Position_Move", "set_state", [mode](Call& call) { return stop(call, *mode); });
    table.order("Force_Position_Move", [mode](Call& call) { take(call, *mode); });
}

}  // namespace sim
