// Measures of a motion from the samples of the real-time push.
#pragma once

#include <algorithm>

#include "simulator/talk.h"

namespace zk::test {

constexpr double kCycle = 0.010;  // seconds between two samples of these tests
inline const std::vector<std::string> kCycleOption{"--quiet", "--push-cycle", "2"};

// The errors of a speed and an acceleration between samples whose positions are rounded to a thousandth of a degree.
constexpr double kSpeedRounding = 0.001 / kCycle;
constexpr double kAccRounding = 0.002 / (kCycle * kCycle);

inline std::vector<std::string> arguments(const std::string& model) {
    std::vector<std::string> all(kCycleOption);
    all.insert(all.end(), {"--model", model});
    return all;
}

struct Limits {
    std::vector<double> speed;  // degrees per second
    std::vector<double> acc;    // degrees per second squared
};

inline Limits limits_of(Talk& talk) {
    Limits limits{talk.ask("get_joint_max_speed").at("joint_speed"), talk.ask("get_joint_max_acc").at("joint_acc")};
    for (double& speed : limits.speed) speed *= 6.0 / 1000;
    for (double& acc : limits.acc) acc *= 6.0 / 1000;
    return limits;
}

// The highest mean speed between two samples and the highest mean acceleration over three. Neither exceeds the true
// maximum, even if a datagram was lost.
struct Peaks {
    double speed = 0;
    double acc = 0;
};

inline Peaks peaks_of(const std::vector<Sample>& samples, size_t joint) {
    Peaks peaks;
    const auto seconds = [&](size_t from, size_t to) { return (samples[to].time - samples[from].time) / 1000.0; };
    const auto speed = [&](size_t from) {
        return (samples[from + 1].joints[joint] - samples[from].joints[joint]) / seconds(from, from + 1);
    };
    for (size_t i = 0; i + 1 < samples.size(); ++i) {
        peaks.speed = std::max(peaks.speed, std::abs(speed(i)));
        if (i == 0) continue;
        const double acc = (speed(i) - speed(i - 1)) / (seconds(i - 1, i + 1) / 2);
        peaks.acc = std::max(peaks.acc, std::abs(acc));
    }
    return peaks;
}

inline void expect_within_limits(const std::vector<Sample>& samples, const Limits& limits, double share) {
    for (size_t joint = 0; joint < limits.speed.size(); ++joint) {
        const Peaks peaks = peaks_of(samples, joint);
        EXPECT_LE(peaks.speed, limits.speed[joint] * share + kSpeedRounding) << "joint " << joint + 1;
        EXPECT_LE(peaks.acc, limits.acc[joint] + kAccRounding) << "joint " << joint + 1;
    }
}

inline void expect_near(const std::vector<double>& joints, const std::vector<double>& target) {
    ASSERT_EQ(joints.size(), target.size());
    for (size_t i = 0; i < joints.size(); ++i) EXPECT_NEAR(joints[i], target[i], 0.001) << "joint " << i + 1;
}

}  // namespace zk::test
