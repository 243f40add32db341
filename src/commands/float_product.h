// Numbers that are sent with their fraction: a single-precision product, not truncated.
#pragma once

#include <cstdint>

#include "connection/request.h"

namespace zk {

inline double float_product(float value, float factor) { return static_cast<double>(value * factor); }

// For each of the six directions: the force in tenths, the kind of control, and the speed limit in thousandths.
inline Request& held_directions(Request& request, const float* force, const int32_t* mode, const float* speed) {
    constexpr int directions = 6;
    double tenths[directions], thousandths[directions];
    for (int i = 0; i < directions; ++i) {
        tenths[i] = float_product(force[i], 10.0f);
        thousandths[i] = float_product(speed[i], 1000.0f);
    }
    return request.numbers("desired_force", tenths, directions)
        .numbers("control_mode", mode, directions)
        .numbers("limit_vel", thousandths, directions);
}

}  // namespace zk
