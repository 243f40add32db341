#pragma once

namespace sim {

// A distance over time. The speed rises and falls by a raised sine, so that the acceleration is continuous, starts and
// ends at zero and peaks at its limit in the middle of a ramp.
class Profile {
 public:
    Profile() = default;

    // From rest to rest over `length`, within `speed` and `acc`.
    static Profile between_rests(double length, double speed, double acc);

    // From `speed` to rest, within `acc`.
    static Profile braking(double speed, double acc);

    // At constant speed, without ramps.
    static Profile even(double length, double speed);

    // The peak acceleration of a ramp to or from `speed` of this duration.
    static double acc_of_ramp(double speed, double seconds) { return 2 * speed / seconds; }

    // The share of a ramp's duration that its slow end takes for this share of its distance, both 0 to 1.
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
