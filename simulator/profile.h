#pragma once

namespace sim {

// The course of a distance over time. The speed rises and falls on a raised sine, so that the acceleration is
// continuous, starts and ends at zero and peaks at its limit in the middle of a ramp.
class Profile {
 public:
    Profile() = default;

    // From rest to rest over `length`, never above `speed` and `acc`.
    static Profile between_rests(double length, double speed, double acc);

    // From `speed` down to rest, never above `acc`.
    static Profile braking(double speed, double acc);

    // At an even speed, without ramps.
    static Profile even(double length, double speed);

    // The peak acceleration of a ramp to or from `speed` that takes so long.
    static double acc_of_ramp(double speed, double seconds) { return 2 * speed / seconds; }

    // How much of the time of a ramp its slow end takes on which so much of its distance lies, both 0 to 1.
    static double slow_end(double share_of_distance);

    double ramp() const { return up_; }  // seconds
    double duration() const { return up_ + cruise_ + down_; }
    double length() const { return distance(duration()); }
    double distance(double time) const;
    double speed(double time) const;

 private:
    Profile(double speed, double up, double cruise, double down)
        : speed_(speed), up_(up), cruise_(cruise), down_(down) {}

    double speed_ = 0;  // of the cruise
    double up_ = 0;     // durations, seconds
    double cruise_ = 0;
    double down_ = 0;
};

}  // namespace sim
