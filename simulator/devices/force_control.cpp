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
    if (!hold.stands_off()) return ordered;
    const auto around = tool_.surroundings();
    const KDL::Frame flange = around.flange_of(hold.shifted(around.tool_of(arm_.flange_at(ordered))));
    if (auto joints = joints_near(flange)) return *joints;
    hold.step_back();
    return arm_.joints();
}

std::optional<JointVector> ForceControl::joints_near(const KDL::Frame& flange) {
    constexpr double kFarthest = 5;       // degrees of a joint in one step
    constexpr double kResolution = 1e-6;  // metres; the noise of the sensor shifts the pose by less
    const JointVector& from = arm_.joints();
    if (out_of_reach_ && KDL::Equal(out_of_reach_->flange, flange, kResolution) && out_of_reach_->from == from &&
        out_of_reach_->limits == arm_.limits)
        return std::nullopt;
    auto joints = arm_.joints_at(flange, from);
    for (size_t i = 0; joints && i < from.size(); ++i) {
        if (!(std::abs((*joints)[i] - from[i]) < kFarthest)) joints.reset();
    }
    out_of_reach_.reset();
    if (!joints) out_of_reach_ = OutOfReach{flange, from, arm_.limits};
    return joints;
}

}  // namespace sim
