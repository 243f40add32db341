// The gripper. The end of a motion with "block": true is reported; that of any other is not.

#include "commands/commands.h"
#include "devices/devices.h"
#include "wire/command_table.h"
#include "wire/memory.h"

namespace sim {
namespace {

constexpr int kMaxSpeed = 1000;  // units of opening per second
constexpr int kMinForce = 50, kMaxForce = 1000;

// Each reads its whole request before anything moves.
bool release(Gripper& gripper, const Call& call) {
    const int speed = call.request.integer("speed", 1, kMaxSpeed);
    gripper.audience.expect(call.client, wants_report(call.request));
    gripper.go(gripper.widest, speed, 0, Gripper::Mode::kPosition);
    return true;
}

Action pick(Gripper& gripper, Gripper::Mode mode) {
    return [&gripper, mode](const Call& call) {
        const int speed = call.request.integer("speed", 1, kMaxSpeed);
        const int force = call.request.integer("force", kMinForce, kMaxForce);
        gripper.audience.expect(call.client, wants_report(call.request));
        gripper.go(gripper.narrowest, speed, force, mode);
        return true;
    };
}

bool position(Gripper& gripper, const Call& call) {
    const int opening = call.request.integer("position", gripper.narrowest, gripper.widest);
    gripper.audience.expect(call.client, wants_report(call.request));
    gripper.go(opening, kMaxSpeed, kMinForce, Gripper::Mode::kPosition);
    return true;
}

void set_route(Gripper& gripper, const Request& request) {
    const int min = request.integer("min", 0, Gripper::kOpen - 1);
    const int max = request.integer("max", min + 1, Gripper::kOpen);
    gripper.narrowest = min;
    gripper.widest = max;
}

bool route(Gripper& gripper, const Call& call) {
    set_route(gripper, call.request);
    return true;
}

Json state(const Gripper& gripper, const Call&) {
    return {{"enable", 1},
            {"status", 1},
            {"error", gripper.stuck() ? 1 : 0},
            {"mode", static_cast<int>(gripper.mode())},
            {"current_force", gripper.force()},
            {"temperature", 30},
            {"actpos", gripper.opening()}};
}

}  // namespace

void add_gripper_commands(CommandTable& table, Memory& memory, Gripper& gripper) {
    memory.keep(
        "gripper",
        [&gripper] {
            return Json{{"min", gripper.narrowest}, {"max", gripper.widest}};
        },
        [&gripper](const Request& saved) { set_route(gripper, saved); });
    table.set("set_gripper_route", "state", with(route, gripper));
    table.set("set_gripper_release", "state", with(release, gripper));
    table.set("set_gripper_pick", "state", pick(gripper, Gripper::Mode::kPick));
    table.set("set_gripper_pick_on", "state", pick(gripper, Gripper::Mode::kPickOn));
    table.set("set_gripper_position", "state", with(position, gripper));
    table.query("get_gripper_state", "get_gripper_state", with(state, gripper));
}

}  // namespace sim
