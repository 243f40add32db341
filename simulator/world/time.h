#pragma once

#include <cstdint>

namespace sim {

// The simulated time since the start.
struct SimulatedTime {
    int64_t milliseconds = 0;
};

}  // namespace sim
