#include "motion/pursuit.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

// Braking is planned below the limit, since the last step before the target takes up to an eighth more.
constexpr double kPlannedShare = 0.8;

constexpr double kThere = 1e-9;

// The highest speed from which something that slows by acc * seconds in every step comes to rest within a distance: n
// steps cover acc * seconds^2 * n (n + 1) / 2.
double speed_to_rest(double distance, double acc, double seconds) {
    const double steps = std::sqrt(0.25 + 2 * distance / (acc * seconds * seconds)) - 0.5;
    return std::min(steps * acc * seconds, distance / seconds);
}

}  // namespace

double pursuit_speed(double speed, double distance, const Pace& pace, double seconds) {
    const double fastest = speed_to_rest(std::abs(distance), kPlannedShare * pace.acc, seconds);
    const double wanted = std::copysign(std::min(fastest, pace.speed), distance);
    const double change = pace.acc * seconds;
    return std::clamp(wanted, speed - change, speed + change);
}

void approach(double& position, double target, double speed, double seconds) {
    const double way = speed * seconds;
    position = std::abs(way - (target - position)) < kThere ? target : position + way;
}

double braking_distance(double speed, double acc) { return speed * std::abs(speed) / (2 * kPlannedShare * acc); }

}  // namespace sim
