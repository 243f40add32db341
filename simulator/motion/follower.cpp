#include "motion/follower.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sim {
namespace {

constexpr double kPause = 0.1;  // seconds without a set-point after which a stream has ended

}  // namespace

bool Follower::follow(SetPoint set_point) {
    silence_ = 0;
    if (stopped_) return false;
    set_point_ = std::move(set_point);
    speeds_.resize(set_point_.joints.size());
    resting_ = false;
    return true;
}

void Follower::stop() {
    stopped_ = silence_ < kPause || !resting_;
    stopping_ = !resting_;
}

void Follower::step(double seconds, JointVector& joints) {
    silence_ += seconds;
    if (silence_ >= kPause && resting_) stopped_ = false;
    if (resting_) return;
    if (std::exchange(stopping_, false)) stop_where_possible(joints);
    bool resting = true;
    for (size_t i = 0; i < joints.size(); ++i) {
        const double distance = set_point_.joints[i] - joints[i];
        speeds_[i] = next_speed(i, distance, seconds);
        approach(joints[i], set_point_.joints[i], speeds_[i], seconds);
        resting = resting && distance == 0 && speeds_[i] == 0;
    }
    resting_ = resting;
}

double Follower::next_speed(size_t joint, double distance, double seconds) const {
    const Pace& pace = set_point_.paces[joint];
    if (set_point_.direct) return std::clamp(distance / seconds, -pace.speed, pace.speed);
    return pursuit_speed(speeds_[joint], distance, pace, seconds);
}

void Follower::stop_where_possible(const JointVector& joints) {
    set_point_.joints = joints;
    if (set_point_.direct) return;
    for (size_t i = 0; i < joints.size(); ++i)
        set_point_.joints[i] += braking_distance(speeds_[i], set_point_.paces[i].acc);
}

}  // namespace sim
