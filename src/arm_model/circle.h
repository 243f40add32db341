// The circle of postures that seven joints leave free, and the closed form of every build.
#pragma once

#include "arm_model/postures.h"

namespace zk::arm {

// Places on the circle that are looked at first, and where none of them keeps the limits.
inline constexpr int kPlaces = 64, kManyPlaces = 1024;

// The least squares end this close to the target, metres and radians.
inline constexpr double kConverged = 1e-6;

// What they find from the seed is taken unseen up to this squared distance.
inline constexpr double kNearSeed = 0.05;

// An upper bound of the reach: it saves the search.
template <class Real>
auto may_reach(const Arm& arm, const Transform<Real>& target) {
    return norm(translation_of<Real>(target)) < arm.upper + arm.fore + std::fabs(arm.link[5][0]) + kReachSlack;
}

// Where the elbow is about straight, postures that are nearer than that of the smallest steps may lie aside.
template <class Real>
auto is_about_straight(const Arm& arm, const std::array<Real, 7>& q) {
    constexpr double kStraight = 0.07;
    return off_line(arm.sign[3] * q[3] + arm.shift[3] + arm.lean) < kStraight;
}

// Where joints stand on the circle: the arm angle, or the turn of joint 7.
inline double place_of(const Arm& arm, const Joints& q) {
    return arm.build == Build::kSphericalSeven ? angle_of(arm_angle(arm, q)) : arm.sign[6] * q[6] + arm.shift[6];
}

template <class Choice>
bool postures_at(const Arm& arm, const Frame& target, double place, Choice& choice) {
    return arm.build == Build::kSphericalSeven ? spherical_seven(arm, target, turn_of(place), choice)
                                               : offset_seven(arm, target, turn_of(place), choice);
}

// Tries as many places, evenly spread from the first.
template <class Choice>
bool try_circle(const Arm& arm, const Frame& target, double first, int places, Choice& choice) {
    bool reached = false;
    for (int n = 0; n < places; ++n) {
        if (postures_at(arm, target, first + n * (2 * M_PI / places), choice)) reached = true;
    }
    return reached;
}

template <class Choice>
bool closed_form(const Arm& arm, const Frame& target, Choice& choice) {
    switch (arm.build) {
        case Build::kSphericalWrist:
            return spherical_wrist(arm, target, choice);
        case Build::kParallelAxes:
            return parallel_axes(arm, target, choice);
        default:
            return try_circle(arm, target, 0, kPlaces, choice);
    }
}

}  // namespace zk::arm
