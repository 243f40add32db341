#pragma once

#include <cstdint>
#include <limits>

namespace sim {

// The simulated time since the start.
struct SimulatedTime {
    int64_t milliseconds = 0;
    double speed = 1;  // simulated seconds in a second
};

constexpr double kSlowest = 0.1;
constexpr double kFastest = 100;

// As a speed: time follows the requests. After each one it runs to rest as fast as the machine computes, then stands.
constexpr double kAtOnce = std::numeric_limits<double>::infinity();
constexpr const char* kAtOnceName = "max";

}  // namespace sim
