// Force control: reading, zeroing and calibrating the sensors, and holding a force.

#include <cmath>
#include <utility>

#include "commands/commands.h"
#include "commands/force_orders.h"
#include "controller.h"

namespace sim {
namespace {

std::vector<int> wire_forces(const KDL::Wrench& wrench) {
    std::vector<int> wire(6);
    for (int i = 0; i < 6; ++i) wire[static_cast<size_t>(i)] = static_cast<int>(std::lround(wrench(i) * 1000));
    return wire;
}

void demand(const Call& call, Sensor sensor) {
    if (call.controller.arm.model().sensor != sensor)
        throw BadRequest(call.request.command() + ": the arm has no such sensor");
}

Json force_data(Call& call) {
    demand(call, Sensor::kSixForce);
    const Controller& controller = call.controller;
    return {{"force_data", wire_forces(controller.sensor.measured())},
            {"zero_force_data", wire_forces(controller.felt(ForceAxes::kSensor))},
            {"work_zero_force_data", wire_forces(controller.felt(ForceAxes::kWork))},
            {"tool_zero_force_data", wire_forces(controller.felt(ForceAxes::kTool))}};
}

// In this reply false means success.
Json fz(Call& call) {
    demand(call, Sensor::kOneForce);
    const Controller& controller = call.controller;
    const auto along_z = [](const KDL::Wrench& wrench) { return std::lround(wrench.force.z() * 1000); };
    return {{"set_state", false},
            {"Fz", along_z(controller.sensor.measured())},
            {"zero_Fz", along_z(controller.felt(ForceAxes::kSensor))},
            {"work_zero_Fz", along_z(controller.felt(ForceAxes::kWork))},
            {"tool_zero_Fz", along_z(controller.felt(ForceAxes::kTool))}};
}

Action clear(Sensor sensor) {
    return [sensor](Call& call) {
        demand(call, sensor);
        call.controller.sensor.clear();
        return true;
    };
}

// ------------------------------------------------------------------------------------------------------ Calibration --

// A calibration in progress: the arm moves from pose to pose, and the sensor measures at each.
struct Calibration {
    std::vector<ForceSensor::Sample> samples;
    bool running = false;
};
using SharedCalibration = std::shared_ptr<Calibration>;

constexpr double kPercent = 100;  // of the speed limits, between the poses

Move joint_move(const Arm& arm, const JointVector& target) {
    Move move;
    move.type = "movej";
    move.status = "move_J";
    move.data = thousandths(target);
    move.plan = [&arm, target](const JointVector& from) { return arm.joint_path(from, target, kPercent); };
    move.ended = [](bool) {};
    return move;
}

// Moves there, rests for a moment, measures, and reports whether that succeeded.
void measure_at(Controller& controller, const JointVector& joints, const SharedCalibration& calibration,
                const std::function<void(bool measured)>& then) {
    constexpr double kSeconds = 0.2;
    Move move = joint_move(controller.arm, joints);
    move.ended = [&controller](bool) { controller.sensor.begin_sample(); };
    controller.arm.order(move);
    Move rest = joint_move(controller.arm, joints);
    rest.plan = [](const JointVector& from) { return Path{[from](double) { return from; }, 1 / kSeconds, 1e6}; };
    rest.ended = [&controller, calibration, then](bool arrived) {
        if (arrived) calibration->samples.push_back(controller.sensor.sample());
        then(arrived);
    };
    controller.arm.order(rest);
}

void demand_poses(const Call& call, const std::vector<JointVector>& poses) {
    const Arm& arm = call.controller.arm;
    for (const JointVector& pose : poses) {
        const std::string reason = arm.reason_not_to_move_to(pose);
        if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
    }
    if (!arm.motion().idle() && !call.request.command().starts_with("manual_set_force"))
        throw BadRequest(call.request.command() + ": the arm moves");
}

// Answers the waiting client and ends the calibration.
std::function<void(bool)> conclusion(Call& call, const SharedCalibration& calibration, bool z_alone) {
    return [&controller = call.controller, client = std::weak_ptr(call.client), calibration, z_alone](bool whole) {
        ForceSensor& sensor = controller.sensor;
        const bool done =
            whole && (z_alone ? sensor.calibrate_z(calibration->samples) : sensor.calibrate(calibration->samples));
        calibration->running = false;
        calibration->samples.clear();
        if (const auto waiting = client.lock()) waiting->send({{"command", "set_force_sensor"}, {"set_state", done}});
    };
}

// Poses near the current one that turn the sensor to different sides of gravity.
std::vector<JointVector> poses_around(const Arm& arm) {
    struct Turns {
        double third_last, second_last, last;
    };
    constexpr Turns kTurns[] = {{0, 0, 0}, {0, 60, 0}, {0, 60, 90}, {60, 30, 0}, {-60, -40, 45}};
    std::vector<JointVector> poses;
    const size_t n = arm.joint_count();
    for (const Turns& turns : kTurns) {
        JointVector pose = arm.joints();
        const auto turn = [&](size_t joint, double angle) {
            const double turned = pose[joint] + angle;
            const bool fits = turned * 1000 <= arm.limits[joint].max_pos && turned * 1000 >= arm.limits[joint].min_pos;
            pose[joint] += fits ? angle : -angle;
        };
        turn(n - 3, turns.third_last);
        turn(n - 2, turns.second_last);
        turn(n - 1, turns.last);
        poses.push_back(pose);
    }
    return poses;
}

// The arm returns to its start.
Action calibrate_automatically(const SharedCalibration& calibration, Sensor sensor) {
    return [calibration, sensor](Call& call) {
        demand(call, sensor);
        Controller& controller = call.controller;
        const JointVector home = controller.arm.joints();
        const std::vector<JointVector> poses = poses_around(controller.arm);
        demand_poses(call, poses);
        calibration->running = true;
        calibration->samples.clear();
        for (const JointVector& pose : poses) measure_at(controller, pose, calibration, [](bool) {});
        Move back = joint_move(controller.arm, home);
        back.ended = conclusion(call, calibration, sensor == Sensor::kOneForce);
        controller.arm.order(back);
        return true;
    };
}

JointVector pose_of(const Call& call, const char* key) {
    JointVector pose = call.request.numbers(key, call.controller.arm.joint_count());
    for (double& joint : pose) joint /= 1000;
    return pose;
}

// The client sends its poses one by one. Only the last one is answered.
void measure_pose(Call& call, const SharedCalibration& calibration, bool first) {
    demand(call, Sensor::kSixForce);
    const JointVector pose = pose_of(call, "joint");
    demand_poses(call, {pose});
    if (first) calibration->samples.clear();
    calibration->running = true;
    measure_at(call.controller, pose, calibration, [](bool) {});
}

bool measure_last_pose(Call& call, const SharedCalibration& calibration) {
    demand(call, Sensor::kSixForce);
    const JointVector pose = pose_of(call, "joint");
    demand_poses(call, {pose});
    calibration->running = true;
    measure_at(call.controller, pose, calibration, conclusion(call, calibration, false));
    return true;
}

// Clients send the seventh joint of the second pose after the first pose.
bool measure_two_poses(Call& call, const SharedCalibration& calibration) {
    demand(call, Sensor::kOneForce);
    const size_t joints = call.controller.arm.joint_count();
    const bool shifted = joints == 7;
    JointVector first = call.request.numbers("pose1", shifted ? 8 : joints);
    JointVector second = call.request.numbers("pose2", shifted ? 6 : joints);
    if (shifted) {
        second.push_back(first.back());
        first.pop_back();
    }
    for (JointVector* pose : {&first, &second}) {
        for (double& joint : *pose) joint /= 1000;
    }
    demand_poses(call, {first, second});
    calibration->samples.clear();
    calibration->running = true;
    measure_at(call.controller, first, calibration, [](bool) {});
    measure_at(call.controller, second, calibration, conclusion(call, calibration, true));
    return true;
}

void add_calibrations(CommandTable& table) {
    const auto calibration = std::make_shared<Calibration>();
    const auto add = [&](const std::string& name, const Action& action) {
        Command& command = table.set(name, "set_state", action);
        command.literal = "set_force_sensor";
        command.acknowledged_later = true;
    };
    add("set_force_sensor", calibrate_automatically(calibration, Sensor::kSixForce));
    add("auto_set_Fz", calibrate_automatically(calibration, Sensor::kOneForce));
    add("manual_set_Fz", [calibration](Call& call) { return measure_two_poses(call, calibration); });
    for (const int number : {1, 2, 3}) {
        table.order("manual_set_force_pose" + std::to_string(number),
                    [calibration, number](Call& call) { measure_pose(call, calibration, number == 1); });
    }
    add("manual_set_force_pose4", [calibration](Call& call) { return measure_last_pose(call, calibration); });
    table.set("stop_set_force_sensor", "stop_state", [calibration](Call& call) {
        if (!std::exchange(calibration->running, false)) return false;
        calibration->samples.clear();  // of an abandoned calibration
        call.controller.arm.motion().stop();
        return true;
    });
}

// ---------------------------------------------------------------------------------------------------------- Holding --

bool set_force_position(Call& call) {
    Controller& controller = call.controller;
    const HoldOrder order = hold_order(call.request, controller.arm.model().sensor);
    const std::string reason = controller.arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest("set_force_position: " + reason);
    return controller.hold_force(order);
}

bool stop_force_position(Call& call) {
    const bool active = call.controller.hold.active();
    call.controller.hold.end();
    return active;
}

}  // namespace

void add_force_commands(CommandTable& table) {
    table.query("get_force_data", "get_force_data", force_data);
    table.set("clear_force_data", "clear_state", clear(Sensor::kSixForce));
    table.query("get_Fz", "get_Fz", fz);
    table.set("clear_Fz", "set_state", clear(Sensor::kOneForce));
    add_calibrations(table);
    table.set("set_force_position", "set_state", set_force_position);
    table.set("stop_force_position", "stop_state", stop_force_position);
}

}  // namespace sim
