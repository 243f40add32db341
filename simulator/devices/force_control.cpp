#include "devices/force_control.h"

#include <cmath>

namespace sim {

ForceControl::ForceControl(Arm& arm, const Tool& tool, const Wall& a_wall, const ForceSensor& a_sensor)
    : sensor(a_sensor), wall(a_wall), arm_(arm), tool_(tool) {
    arm_.yielding = [this](const JointVector& ordered) { return yielded(ordered); };
}

void ForceControl::measure() {
    const KDL::Frame flange = tool_.mounted_flange();
    const KDL::Wrench contact = contact_with(wall, flange, tool_.surroundings().flange_T_tool);
    sensor.measure(flange, contact + weight_of(carried, flange.M));
}

KDL::Wrench ForceControl::felt(ForceAxes axes) const {
    KDL::Wrench wrench = sensor.compensated();
    if (arm_.model().sensor == Sensor::kOneForce) wrench = {KDL::Vector(0, 0, wrench.force.z()), KDL::Vector::Zero()};
    if (axes == ForceAxes::kSensor) return wrench;
    const KDL::Wrench at_tool = tool_.surroundings().flange_T_tool.Inverse(wrench);
    return axes == ForceAxes::kTool ? at_tool : tool_.pose().M * at_tool;
}

bool ForceControl::begin_hold(const HoldOrder& order) {
    if (hold.stands_off() && order.of_tool != hold.order().of_tool && !settle_hold()) return false;
    hold.begin(order);
    return true;
}

// At rest the arm stays at the pose that a hold has reached.
bool ForceControl::settle_hold() {
    if (!arm_.motion().idle()) return false;
    arm_.hold_current_position();
    hold.forget();
    return true;
}

void ForceControl::step_hold(double seconds) {
    if (hold.active() && !arm_.reason_not_to_move().empty()) hold.end();
    if (!hold.active() && (!hold.stands_off() || settle_hold())) return;
    hold.step(seconds, -felt(hold.order().of_tool ? ForceAxes::kTool : ForceAxes::kWork));
}

// The arm stays where it cannot yield any further.
JointVector ForceControl::yielded(const JointVector& ordered) {
    constexpr double kFarthest = 5;  // degrees of a joint in one step
    if (!hold.stands_off()) return ordered;
    const KDL::Frame pose = tool_.surroundings().tool_of(arm_.flange_at(ordered));
    const auto joints = tool_.joints_at(hold.shifted(pose), arm_.joints());
    bool near = joints.has_value();
    for (size_t i = 0; near && i < joints->size(); ++i) near = std::abs((*joints)[i] - arm_.joints()[i]) < kFarthest;
    if (near) return *joints;
    hold.step_back();
    return arm_.joints();
}

}  // namespace sim
