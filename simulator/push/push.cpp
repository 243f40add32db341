#include "push/push.h"

#include <cmath>

#include "devices/devices.h"
#include "devices/drag_teach.h"
#include "devices/force_control.h"
#include "motion/tool.h"
#include "world/time.h"

namespace sim {
namespace {

std::vector<int> wire_speeds(const Arm& arm) {
    std::vector<int> speeds;
    for (const JointState& state : arm.states())
        speeds.push_back(static_cast<int>(std::lround(state.speed / 6 * 1000)));
    return speeds;
}

Json joint_status(const Arm& arm, bool with_speeds) {
    std::vector<int> enabled, errors;
    for (const JointState& state : arm.states()) {
        enabled.push_back(state.enabled);
        errors.push_back(state.error);
    }
    Json status{{"joint_current", arm.currents()},
                {"joint_en_flag", enabled},
                {"joint_err_code", errors},
                {"joint_position", thousandths(arm.joints())},
                {"joint_temperature", arm.temperatures()},
                {"joint_voltage", arm.voltages()}};
    if (with_speeds) status["joint_speed"] = wire_speeds(arm);
    return status;
}

Json waypoint(const KDL::Frame& pose) {
    const WirePose wire = wire_pose(pose);
    double x, y, z, w;
    pose.M.GetQuaternion(x, y, z, w);
    const auto millionths = [](double value) { return std::lround(value * 1e6); };
    return {{"quat", {millionths(w), millionths(x), millionths(y), millionths(z)}},
            {"euler", {wire[3], wire[4], wire[5]}},
            {"position", {wire[0], wire[1], wire[2]}}};
}

// Thousandths: all six axes of one sensor, the force along z of the other.
std::vector<int> wire_forces(const KDL::Wrench& wrench, Sensor sensor) {
    std::vector<int> wire;
    for (int i = 0; i < 6; ++i) {
        if (sensor == Sensor::kSixForce || i == 2) wire.push_back(static_cast<int>(std::lround(wrench(i) * 1000)));
    }
    return wire;
}

Json lift_state(const LinearAxis& lift) {
    return {{"pos", lift.position() * 1000},
            {"height", lift.position()},
            {"current", lift.current()},
            {"err_flag", lift.stuck() ? 1 : 0},
            {"en_flag", 1}};
}

Json expansion_state(const LinearAxis& axis) {
    return {{"joint_id", 1},
            {"mode", axis.moving() ? 1 : 0},
            {"pos", axis.position()},
            {"current", axis.current()},
            {"err_flag", axis.stuck() ? 1 : 0},
            {"en_flag", 1}};
}

Json hand_state(const Hand& hand) {
    const Hand::Posture none{};
    return {{"hand_pos", hand.angles()},
            {"hand_angle", hand.angles()},
            {"hand_force", none},
            {"hand_state", hand.moving()},
            {"hand_err", hand.stuck() ? 1 : 0}};
}

}  // namespace

void Push::add_force(Json& message) const {
    const Sensor sensor = parts_.arm.model().sensor;
    if (sensor == Sensor::kBare) return;
    const KDL::Wrench zero = parts_.force.felt(static_cast<ForceAxes>(settings.force_coordinate));
    message[sensor == Sensor::kSixForce ? "six_force_sensor" : "one_force_sensor"] = {
        {"force", wire_forces(parts_.force.sensor.measured(), sensor)},
        {"zero_force", wire_forces(zero, sensor)},
        {"coordinate", settings.force_coordinate}};
}

void Push::add_devices(Json& message) const {
    const Devices& devices = parts_.devices;
    if (settings.lift_state) message["lift_state"] = lift_state(devices.lift);
    if (settings.expand_state) message["expand_state"] = expansion_state(devices.expansion);
    if (settings.hand) message["hand"] = hand_state(devices.hand);
    if (settings.aloha_state) message["aloha_state"] = {{"io1_state", 0}, {"io2_state", 0}};
}

bool Push::due() const {
    return settings.enable && parts_.time.milliseconds % (settings.cycle * PushSettings::kCycleMs) == 0;
}

std::string Push::datagram() const {
    const Arm& arm = parts_.arm;
    Json message{{"time", parts_.time.milliseconds},
                 {"joint_status", joint_status(arm, settings.joint_speed)},
                 {"waypoint", waypoint(parts_.tool.pose())},
                 {"arm_err", arm.arm_error()},
                 {"sys_err", arm.system_error()}};
    if (settings.arm_current_status)
        message["arm_current_status"] = parts_.drag.active() ? parts_.drag.status() : arm.motion().status();
    add_force(message);
    add_devices(message);
    std::string text = message.dump();
    // A truncated datagram would be useless: optional parts are dropped first.
    for (const char* optional : {"time", "aloha_state", "hand", "expand_state", "lift_state"}) {
        if (text.size() <= kMaxDatagram) break;
        if (message.erase(optional) != 0) text = message.dump();
    }
    return text;
}

}  // namespace sim
