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
    limits = drive_limits = adopted_ = range_;
    motion_.check = [this](const Course& course) { check(course); };
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

void Arm::check(const Course& course) const {
    constexpr double kStep = 0.005, kMostSteps = 2000;
    constexpr double kRounding = 1e-6;  // degrees
    const double step = std::max(kStep, course.seconds / kMostSteps);
    const JointVector start = course.at(0);
    const Survey depths = survey();
    const Depths allowed = depths ? depths(start) : Depths();
    JointVector before = start;
    for (double time = step; time < course.seconds + step; time += step) {
        const JointVector joints = course.at(time);
        for (size_t i = 0; i < joints.size(); ++i) {
            // A joint beyond its limit may move back.
            const bool inside = joints[i] >= std::min(start[i], limits[i].min_pos / 1000.0) - kHalfWireUnit &&
                                joints[i] <= std::max(start[i], limits[i].max_pos / 1000.0) + kHalfWireUnit;
            if (!inside) throw NoPath("joint " + std::to_string(i + 1) + " would leave its limits on the way");
            if (std::abs(joints[i] - before[i]) > limits[i].speed() * step + kRounding)
                throw NoPath("joint " + std::to_string(i + 1) + " would be too fast");
        }
        if (const auto hazard = depths ? entered(allowed, depths(joints)) : std::nullopt) throw HazardousPath(*hazard);
        before = joints;
    }
}

JointVector Arm::clear_until(const JointVector& start, const JointVector& target) const {
    constexpr double kStep = 0.5, kMostSteps = 400;  // degrees
    const Survey depths = survey();
    if (!depths) return target;
    double turn = 0;
    for (size_t i = 0; i < start.size(); ++i) turn = std::max(turn, std::abs(target[i] - start[i]));
    const Depths allowed = depths(start);
    const int steps = static_cast<int>(std::clamp(std::ceil(turn / kStep), 1.0, kMostSteps));
    JointVector clear = start;
    for (int step = 1; step <= steps; ++step) {
        JointVector joints = target;
        for (size_t i = 0; step < steps && i < joints.size(); ++i)
            joints[i] = start[i] + (target[i] - start[i]) * step / steps;
        if (entered(allowed, depths(joints))) return clear;
        clear = joints;
    }
    return clear;
}

void Arm::hazards_changed() {
    if (const Survey depths = survey()) allowed_ = depths(joints_);
    check_motion_again();
}

// After an error the arm may leave the hazard that it has entered.
void Arm::watch_hazards() {
    const Survey depths = survey();
    if (!depths) return;
    const Depths now = depths(joints_);
    if (arm_error_ != 0) {
        allowed_ = now;
        return;
    }
    auto hazard = entered(allowed_, now);
    const bool led = dragged_ || !motion_.stream().resting();
    if (!hazard && led) hazard = entered(allowed_, depths(stopping_place()));
    if (hazard) set_errors(error_word(*hazard), system_error_);
    for (size_t i = 0; i < kHazards; ++i) allowed_[i] = std::min(allowed_[i], now[i]);
}

JointVector Arm::stopping_place() const {
    JointVector joints = joints_;
    for (size_t i = 0; i < joints.size(); ++i) joints[i] += braking_distance(states_[i].speed, limits[i].acc());
    return joints;
}

std::string Arm::reason_not_to_move_to(const JointVector& target) const {
    if (target.size() != joint_count())
        return std::to_string(target.size()) + " joints for an arm of " + std::to_string(joint_count());
    const std::string broken = limit_broken_by(target);
    return broken.empty() ? reason_not_to_move() : broken;
}

std::string Arm::limit_broken_by(const JointVector& joints) const {
    for (size_t i = 0; i < joints.size(); ++i) {
        const double wire = joints[i] * 1000;
        if (!(wire >= limits[i].min_pos - 0.5 && wire <= limits[i].max_pos + 0.5))
            return "joint " + std::to_string(i + 1) + " beyond its limit";
    }
    return {};
}

void Arm::check_motion_again() {
    adopted_ = limits;
    try {
        motion_.check_again(paces());
        if (!motion_.stream().resting() && !limit_broken_by(motion_.stream().last(joints_)).empty()) motion_.stop();
    } catch (const HazardousPath& path) {
        set_errors(error_word(path.hazard), system_error_);
    } catch (const NoPath&) {
        motion_.stop();
    }
}

std::string Arm::reason_not_to_move() const {
    if (dragged_) return "the arm is being dragged";
    return reason_to_brake();
}

std::string Arm::reason_to_brake() const {
    if (!powered_) return "the arm is powered off";
    if (arm_error_ != 0 || system_error_ != 0) return "the arm is in error";
    for (const JointState& state : states_) {
        if (state.error != 0) return "a joint is in error";
        if (!state.enabled) return "a joint is disabled";
    }
    return {};
}

bool Arm::set_power(bool on) {
    if (on && !supplied_) return false;
    powered_ = on;
    if (!on) motion_.stop();
    return true;
}

void Arm::set_supply(bool on) {
    supplied_ = on;
    if (!on) set_power(false);
}

void Arm::set_joint_enabled(size_t joint, bool enabled) {
    states_[joint].enabled = enabled;
    if (!enabled) motion_.stop();
}

void Arm::set_joint_error(size_t joint, int error) {
    states_[joint].error = error;
    if (error != 0) motion_.stop();
}

bool Arm::clear_joint_error(size_t joint) {
    if (too_hot(joint)) return false;
    states_[joint].error = 0;
    return true;
}

void Arm::set_errors(int arm_error, int system_error) {
    arm_error_ = arm_error;
    system_error_ = stop_pressed_ ? kEmergencyStop : system_error;
    if (arm_error_ != 0 || system_error_ != 0) motion_.stop();
}

void Arm::press_emergency_stop(bool pressed) {
    stop_pressed_ = pressed;
    set_errors(arm_error_, system_error_);
}

// A joint behind its path would jump if it came free during the motion.
void Arm::set_stuck_joint(std::optional<size_t> joint) {
    if (!stuck_joint_ || motion_.idle()) stuck_joint_ = joint;
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
    for (size_t i = 0; i < joint_count(); ++i) wire.push_back(static_cast<int>(std::lround(temperature(i) * 1000)));
    return wire;
}

double Arm::temperature(size_t joint) const { return 32 + 0.25 * static_cast<double>(joint) + states_[joint].heat; }

std::vector<int> Arm::voltages() const { return std::vector<int>(joint_count(), powered_ ? 24000 : 0); }

std::vector<int> Arm::currents() const {
    std::vector<int> wire;
    for (const JointState& state : states_)
        wire.push_back(powered_ ? static_cast<int>(std::lround(100 + 5 * std::abs(state.speed))) : 0);
    return wire;
}

void Arm::step(double seconds) {
    const JointVector before = joints_;
    if (limits != adopted_) check_motion_again();
    motion_.step(seconds, ordered_);
    joints_ = yielding ? yielding(ordered_) : ordered_;
    if (stuck_joint_) joints_[*stuck_joint_] = before[*stuck_joint_];
    for (size_t i = 0; i < joints_.size(); ++i) {
        states_[i].speed = (joints_[i] - before[i]) / seconds;
        states_[i].odometer += std::abs(joints_[i] - before[i]);
    }
    watch_drives();
    if (joints_ != before) watch_hazards();
}

void Arm::watch_drives() {
    constexpr double kFarthest = 1;  // degrees behind its path
    const auto fail = [this](size_t joint, int error) {
        if (states_[joint].error == 0) set_joint_error(joint, error);
    };
    for (size_t i = 0; i < joint_count(); ++i) {
        if (too_hot(i)) fail(i, kOverTemperature);
    }
    if (!stuck_joint_) return;
    double& ordered = ordered_[*stuck_joint_];
    const double now = joints_[*stuck_joint_];
    if (std::abs(ordered - now) > kFarthest) fail(*stuck_joint_, kFollowingError);
    if (motion_.idle()) ordered = now;
}

std::vector<int> thousandths(const JointVector& joints) {
    std::vector<int> wire;
    for (const double joint : joints) wire.push_back(static_cast<int>(std::lround(joint * 1000)));
    return wire;
}

}  // namespace sim
