#pragma once

namespace sim {

// The limits of a joint in the units of the wire: positions in thousandths of a degree, speeds and accelerations in
// thousandths of a revolution per minute (per second).
struct JointLimits {
    int min_pos;
    int max_pos;
    int max_speed;
    int max_acc;

    double speed() const { return max_speed * kDegrees; }  // degrees per second
    double acc() const { return max_acc * kDegrees; }      // degrees per second squared
    bool operator==(const JointLimits&) const = default;

    static constexpr double kDegrees = 6.0 / 1000;  // one revolution per minute is six degrees per second
};

// The limits of the tool in the units of the wire: thousandths of a metre and of a radian, per second and per second
// squared.
struct CartesianLimits {
    int line_speed = 250;
    int line_acc = 1600;
    int angular_speed = 600;
    int angular_acc = 4000;
};

}  // namespace sim
