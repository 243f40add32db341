// Force control: reading, zeroing and calibrating the sensors, and holding a force.

#include <cmath>
#include <utility>

#include "commands/commands.h"
#include "commands/force_orders.h"
#include "devices/force_control.h"
#include "wire/command_table.h"

namespace sim {
namespace {

std::vector<int> wire_forces(const KDL::Wrench& wrench) {
    std::vector<int> wire(6);
    for (int i = 0; i < 6; ++i) wire[static_cast<size_t>(i)] = static_cast<int>(std::lround(wrench(i) * 1000));
    return wire;
}

void demand(const Arm& arm, const Call& call, Sensor sensor) {
    if (arm.model().sensor != sensor) throw BadRequest(call.request.command() + ": the arm has no such sensor");
}

// Without the sensor both queries are answered by what clients read as an error.
Json force_data(const Arm& arm, const ForceControl& force, const Call&) {
    if (arm.model().sensor != Sensor::kSixForce) return {{"get_state", false}};
    return {{"force_data", wire_forces(force.sensor.measured())},
            {"zero_force_data", wire_forces(force.felt(ForceAxes::kSensor))},
            {"work_zero_force_data", wire_forces(force.felt(ForceAxes::kWork))},
            {"tool_zero_force_data", wire_forces(force.felt(ForceAxes::kTool))}};
}

// In this reply false means success.
Json fz(const Arm& arm, const ForceControl& force, const Call&) {
    if (arm.model().sensor != Sensor::kOneForce) return {{"set_state", true}};
    const auto along_z = [](const KDL::Wrench& wrench) { return std::lround(wrench.force.z() * 1000); };
    return {{"set_state", false},
            {"Fz", along_z(force.sensor.measured())},
            {"zero_Fz", along_z(force.felt(ForceAxes::kSensor))},
            {"work_zero_Fz", along_z(force.felt(ForceAxes::kWork))},
            {"tool_zero_Fz", along_z(force.felt(ForceAxes::kTool))}};
}

Action clear(const Arm& arm, ForceControl& force, Sensor sensor) {
    return [&arm, &force, sensor](const Call& call) {
        demand(arm, call, sensor);
        force.sensor.clear();
        return true;
    };
}

// ------------------------------------------------------------------------------------------------------ Calibration --

// A calibration: the arm moves from pose to pose, and the sensor measures at each.
struct Calibration {
    Arm& arm;
    ForceSensor& sensor;
    std::vector<ForceSensor::Sample> samples = {};
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
void measure_at(const SharedCalibration& calibration, const JointVector& joints,
                const std::function<void(bool measured)>& then) {
    constexpr double kSeconds = 0.2;
    Arm& arm = calibration->arm;
    Move move = joint_move(arm, joints);
    move.ended = [&sensor = calibration->sensor](bool) { sensor.begin_sample(); };
    arm.order(move);
    Move rest = joint_move(arm, joints);
    rest.plan = [](const JointVector& from) { return Path{[from](double) { return from; }, 1 / kSeconds, 1e6}; };
    rest.ended = [calibration, then](bool arrived) {
        if (arrived) calibration->samples.push_back(calibration->sensor.sample());
        then(arrived);
    };
    arm.order(rest);
}

void demand_poses(const Arm& arm, const Call& call, const std::vector<JointVector>& poses) {
    JointVector from = arm.end();
    for (const JointVector& pose : poses) {
        const std::string reason = arm.reason_not_to_move_to(pose);
        if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
        arm.check(arm.joint_path(std::exchange(from, pose), pose, kPercent).course());
    }
    if (!arm.motion().idle() && !call.request.command().starts_with("manual_set_force"))
        throw BadRequest(call.request.command() + ": the arm moves");
}

// Answers the waiting client and ends the calibration.
std::function<void(bool)> conclusion(const SharedCalibration& calibration, const Call& call, bool z_alone) {
    return [client = std::weak_ptr(call.client), calibration, z_alone](bool whole) {
        ForceSensor& sensor = calibration->sensor;
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
    return [calibration, sensor](const Call& call) {
        Arm& arm = calibration->arm;
        demand(arm, call, sensor);
        const JointVector home = arm.joints();
        const std::vector<JointVector> poses = poses_around(arm);
        demand_poses(arm, call, poses);
        calibration->running = true;
        calibration->samples.clear();
        for (const JointVector& pose : poses) measure_at(calibration, pose, [](bool) {});
        Move back = joint_move(arm, home);
        back.ended = conclusion(calibration, call, sensor == Sensor::kOneForce);
        arm.order(back);
        return true;
    };
}

JointVector pose_of(const Arm& arm, const Call& call) {
    JointVector pose = call.request.numbers("joint", arm.joint_count());
    for (double& joint : pose) joint /= 1000;
    return pose;
}

// The client sends its poses one by one. Only the last one is answered.
void measure_pose(const SharedCalibration& calibration, const Call& call, bool first) {
    const Arm& arm = calibration->arm;
    demand(arm, call, Sensor::kSixForce);
    const JointVector pose = pose_of(arm, call);
    demand_poses(arm, call, {pose});
    if (first) calibration->samples.clear();
    calibration->running = true;
    measure_at(calibration, pose, [](bool) {});
}

bool measure_last_pose(const SharedCalibration& calibration, const Call& call) {
    const Arm& arm = calibration->arm;
    demand(arm, call, Sensor::kSixForce);
    const JointVector pose = pose_of(arm, call);
    demand_poses(arm, call, {pose});
    calibration->running = true;
    measure_at(calibration, pose, conclusion(calibration, call, false));
    return true;
}

// Clients send the seventh joint of the second pose after the first pose.
bool measure_two_poses(const SharedCalibration& calibration, const Call& call) {
    const Arm& arm = calibration->arm;
    demand(arm, call, Sensor::kOneForce);
    const size_t joints = arm.joint_count();
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
    demand_poses(arm, call, {first, second});
    calibration->samples.clear();
    calibration->running = true;
    measure_at(calibration, first, [](bool) {});
    measure_at(calibration, second, conclusion(calibration, call, true));
    return true;
}

void add_calibrations(CommandTable& table, Arm& arm, ForceSensor& sensor) {
    const auto calibration = std::make_shared<Calibration>(Calibration{arm, sensor});
    const auto add = [&](const std::string& name, const Action& action) {
        Command& command = table.set(name, "set_state", action);
        command.literal = "set_force_sensor";
        command.acknowledged_later = true;
    };
    add("set_force_sensor", calibrate_automatically(calibration, Sensor::kSixForce));
    add("auto_set_Fz", calibrate_automatically(calibration, Sensor::kOneForce));
    add("manual_set_Fz", [calibration](const Call& call) { return measure_two_poses(calibration, call); });
    for (const int number : {1, 2, 3}) {
        table.order("manual_set_force_pose" + std::to_string(number),
                    [calibration, number](const Call& call) { measure_pose(calibration, call, number == 1); });
    }
    add("manual_set_force_pose4", [calibration](const Call& call) { return measure_last_pose(calibration, call); });
    table.set("stop_set_force_sensor", "stop_state", [calibration](const Call&) {
        if (!std::exchange(calibration->running, false)) return false;
        calibration->samples.clear();  // of an abandoned calibration
        calibration->arm.motion().stop();
        return true;
    });
}

// ---------------------------------------------------------------------------------------------------------- Holding --

bool set_force_position(const Arm& arm, ForceControl& force, const Call& call) {
    const HoldOrder order = hold_order(call.request, arm.model().sensor);
    const std::string reason = arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest("set_force_position: " + reason);
    return force.begin_hold(order);
}

bool stop_force_position(ForceHold& hold, const Call&) {
    const bool active = hold.active();
    hold.end();
    return active;
}

}  // namespace

void add_force_commands(CommandTable& table, Arm& arm, ForceControl& force) {
    table.query("get_force_data", "get_force_data", with(force_data, arm, force));
    table.set("clear_force_data", "clear_state", clear(arm, force, Sensor::kSixForce));
    table.query("get_Fz", "get_Fz", with(fz, arm, force));
    table.set("clear_Fz", "set_state", clear(arm, force, Sensor::kOneForce));
    add_calibrations(table, arm, force.sensor);
    table.set("set_force_position", "set_state", with(set_force_position, arm, force));
    table.set("stop_force_position", "stop_state", with(stop_force_position, force.hold));
}

}  // namespace sim
