#include "motion/profile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sim {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// A ramp from 0 to 1 over u = 0..1: acceleration 1 - cos(2 pi u), its integral and its second integral.
double ramp_speed(double u) { return u - std::sin(kTurn * u) / kTurn; }
double ramp_distance(double u) { return u * u / 2 + (std::cos(kTurn * u) - 1) / (kTurn * kTurn); }

// The mean acceleration of a ramp is half its peak.
double ramp_duration(double speed, double acc) { return 2 * speed / acc; }

}  // namespace

Profile Profile::between_rests(double length, double speed, double acc) {
    if (!(length > 0 && speed > 0 && acc > 0)) return {};
    // Two ramps without a cruise cover speed * ramp = 2 speed^2 / acc.
    const double peak = std::min(speed, std::sqrt(length * acc / 2));
    const double ramp = ramp_duration(peak, acc);
    return {peak, ramp, std::max(0.0, length / peak - ramp), ramp};
}

Profile Profile::braking(double speed, double acc) {
    if (!(speed > 0 && acc > 0)) return {};
    return {speed, 0, 0, ramp_duration(speed, acc)};
}

Profile Profile::even(double length, double speed) {
    if (!(length > 0 && speed > 0)) return {};
    return {speed, 0, length / speed, 0};
}

double Profile::slow_end(double share_of_distance) {
    if (share_of_distance >= 1) return 1;
    double low = 0, high = 1;
    while (high - low > 1e-9) {
        const double middle = (low + high) / 2;
        (ramp_distance(middle) < share_of_distance * ramp_distance(1) ? low : high) = middle;
    }
    return low;
}

double Profile::speed(double time) const {
    if (time <= 0 && up_ > 0) return 0;
    if (time < up_) return speed_ * ramp_speed(time / up_);
    if (time < up_ + cruise_) return speed_;
    if (time >= duration()) return 0;
    return speed_ * (1 - ramp_speed((time - up_ - cruise_) / down_));
}

double Profile::distance(double time) const {
    time = std::clamp(time, 0.0, duration());
    if (time < up_) return speed_ * up_ * ramp_distance(time / up_);
    double covered = speed_ * up_ / 2;
    if (time <= up_ + cruise_) return covered + speed_ * (time - up_);
    covered += speed_ * cruise_;
    const double u = (time - up_ - cruise_) / down_;
    return covered + speed_ * down_ * (u - ramp_distance(u));
}

}  // namespace sim
