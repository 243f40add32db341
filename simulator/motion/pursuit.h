#pragma once

namespace sim {

// The limits of a motion, in units of its own per second and per second squared.
struct Pace {
    double speed;
    double acc;
};

// The speed in the next step of something that pursues a target at this signed distance, so that it comes to rest
// there.
double pursuit_speed(double speed, double distance, const Pace& pace, double seconds);

// Moves a position by a step at this speed, and exactly onto the target when it arrives.
void approach(double& position, double target, double speed, double seconds);

// The signed distance to the place where it comes to rest from this speed.
double braking_distance(double speed, double acc);

}  // namespace sim
