#include "motion/follower.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sim {
namespace {

constexpr double kPause = 0.1;  // seconds without a set-point after which a stream has ended

// Braking is planned below the limit, since the last step before the target takes up to an eighth more.
constexpr double kPlannedShare = 0.8;

constexpr double kThere = 1e-9;  // degrees

// The highest speed from which a joint that slows by acc * seconds in every step comes to rest within a distance: n
// steps cover acc * seconds^2 * n (n + 1) / 2.
double speed_to_rest(double distance, double acc, double seconds) {
    const double steps = std::sqrt(0.25 + 2 * distance / (acc * seconds * seconds)) - 0.5;
    return std::min(steps * acc * seconds, distance / seconds);
}

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
    if (std::exchange(stopping_, false) && !set_point_.direct) stop_where_possible(joints);
    bool resting = true;
    for (size_t i = 0; i < joints.size(); ++i) {
        const double distance = set_point_.joints[i] - joints[i];
        speeds_[i] = next_speed(i, distance, seconds);
        const bool arrives = std::abs(speeds_[i] * seconds - distance) < kThere;
        joints[i] = arrives ? set_point_.joints[i] : joints[i] + speeds_[i] * seconds;
        resting = resting && distance == 0 && speeds_[i] == 0;
    }
    resting_ = resting;
}

double Follower::next_speed(size_t joint, double distance, double seconds) const {
    const Pace& pace = set_point_.paces[joint];
    if (set_point_.direct) return std::clamp(distance / seconds, -pace.speed, pace.speed);
    const double fastest = speed_to_rest(std::abs(distance), kPlannedShare * pace.acc, seconds);
    const double wanted = std::copysign(std::min(fastest, pace.speed), distance);
    const double change = pace.acc * seconds;
    return std::clamp(wanted, speeds_[joint] - change, speeds_[joint] + change);
}

void Follower::stop_where_possible(const JointVector& joints) {
    for (size_t i = 0; i < joints.size(); ++i) {
        const double acc = kPlannedShare * set_point_.paces[i].acc;
        set_point_.joints[i] = joints[i] + speeds_[i] * std::abs(speeds_[i]) / (2 * acc);
    }
}

}  // namespace sim
