#include "motion/arm.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

constexpr double kHalfWireUnit = 0.0005;  // degrees

JointLimits wire_limits(const JointRange& range) {
    const auto down = [](double value) { return static_cast<int>(std::floor(value + 1e-9)); };
    return {static_cast<int>(std::lround(range.min * 1000)), static_cast<int>(std::lround(range.max * 1000)),
            down(range.speed / JointLimits::kDegrees), down(range.acc / JointLimits::kDegrees)};
}

}  // namespace

Arm::Arm(const RobotModel& model, const JointVector& joints)
    : model_(model), kinematics_(model), joints_(joints), ordered_(joints), states_(model.joint_count()) {
    for (const JointRange& joint : model.joints) range_.push_back(wire_limits(joint));
    limits = drive_limits = range_;
    motion_.check = [this](const Path& path) { check(path); };
}

Path Arm::joint_path(const JointVector& start, const JointVector& target, double percent) const {
    Path path;
    path.at = [start, target](double s) {
        JointVector joints(start);
        for (size_t i = 0; i < joints.size(); ++i) joints[i] += s * (target[i] - start[i]);
        return joints;
    };
    // All joints start and end together: the slowest one sets the pace.
    double speed = 0, acc = 0;
    for (size_t i = 0; i < start.size(); ++i) {
        const double turn = std::abs(target[i] - start[i]);
        if (turn == 0) continue;
        const double joint_speed = limits[i].speed() * percent / 100 / turn;
        const double joint_acc = limits[i].acc() / turn;
        speed = speed > 0 ? std::min(speed, joint_speed) : joint_speed;
        acc = acc > 0 ? std::min(acc, joint_acc) : joint_acc;
    }
    path.speed = speed;
    path.acc = acc;
    return path;
}

std::vector<Pace> Arm::paces() const {
    std::vector<Pace> paces;
    for (const JointLimits& joint : limits) paces.push_back({joint.speed(), joint.acc()});
    return paces;
}

void Arm::check(const Path& path) const {
    constexpr double kStep = 0.005, kMostSteps = 2000;
    constexpr double kRounding = 1e-6;  // degrees
    const Profile profile = path.profile();
    const double step = std::max(kStep, profile.duration() / kMostSteps);
    const JointVector start = path.at(0);
    JointVector before = start;
    for (double time = step; time < profile.duration() + step; time += step) {
        const JointVector joints = path.at(std::min(1.0, profile.distance(time)));
        for (size_t i = 0; i < joints.size(); ++i) {
            // A joint beyond its limit may move back.
            const bool inside = joints[i] >= std::min(start[i], limits[i].min_pos / 1000.0) - kHalfWireUnit &&
                                joints[i] <= std::max(start[i], limits[i].max_pos / 1000.0) + kHalfWireUnit;
            if (!inside) throw NoPath("joint " + std::to_string(i + 1) + " would leave its limits on the way");
            if (std::abs(joints[i] - before[i]) > limits[i].speed() * step + kRounding)
                throw NoPath("joint " + std::to_string(i + 1) + " would be too fast");
        }
        before = joints;
    }
}

std::string Arm::reason_not_to_move_to(const JointVector& target) const {
    if (target.size() != joint_count())
        return std::to_string(target.size()) + " joints for an arm of " + std::to_string(joint_count());
    for (size_t i = 0; i < target.size(); ++i) {
        const double wire = target[i] * 1000;
        if (!(wire >= limits[i].min_pos - 0.5 && wire <= limits[i].max_pos + 0.5))
            return "joint " + std::to_string(i + 1) + " beyond its limit";
    }
    return reason_not_to_move();
}

std::string Arm::reason_not_to_move() const {
    if (!powered_) return "the arm is powered off";
    if (dragged_) return "the arm is being dragged";
    if (arm_error_ != 0 || system_error_ != 0) return "the arm is in error";
    for (const JointState& state : states_) {
        if (state.error != 0) return "a joint is in error";
        if (!state.enabled) return "a joint is disabled";
    }
    return {};
}

void Arm::set_power(bool on) {
    powered_ = on;
    if (!on) motion_.stop();
}

void Arm::set_joint_enabled(size_t joint, bool enabled) {
    states_[joint].enabled = enabled;
    if (!enabled) motion_.stop();
}

void Arm::set_joint_error(size_t joint, int error) {
    states_[joint].error = error;
    if (error != 0) motion_.stop();
}

void Arm::set_errors(int arm_error, int system_error) {
    arm_error_ = arm_error;
    system_error_ = system_error;
    if (arm_error != 0 || system_error != 0) motion_.stop();
}

void Arm::clear_odometers() {
    for (JointState& state : states_) state.odometer = 0;
}

bool Arm::set_joint_zero(size_t joint) {
    if (!motion_.idle()) return false;
    joints_[joint] = ordered_[joint] = 0;
    return true;
}

std::vector<int> Arm::temperatures() const {
    std::vector<int> wire;
    for (size_t i = 0; i < joint_count(); ++i) wire.push_back(32000 + 250 * static_cast<int>(i));
    return wire;
}

std::vector<int> Arm::voltages() const { return std::vector<int>(joint_count(), powered_ ? 24000 : 0); }

std::vector<int> Arm::currents() const {
    std::vector<int> wire;
    for (const JointState& state : states_)
        wire.push_back(powered_ ? static_cast<int>(std::lround(100 + 5 * std::abs(state.speed))) : 0);
    return wire;
}

void Arm::step(double seconds) {
    const JointVector before = joints_;
    motion_.step(seconds, ordered_);
    joints_ = yielding ? yielding(ordered_) : ordered_;
    for (size_t i = 0; i < joints_.size(); ++i) {
        states_[i].speed = (joints_[i] - before[i]) / seconds;
        states_[i].odometer += std::abs(joints_[i] - before[i]);
    }
}

std::vector<int> thousandths(const JointVector& joints) {
    std::vector<int> wire;
    for (const double joint : joints) wire.push_back(static_cast<int>(std::lround(joint * 1000)));
    return wire;
}

}  // namespace sim
