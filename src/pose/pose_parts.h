// What the incremental moves share.
#pragma once

#include "zk/model.h"
#include "zk/numeric.h"

namespace zk {

inline constexpr int kWorkFrame = 0, kToolFrame = 1;

// The pose with another orientation, its quaternion formed anew.
inline Pose oriented(Pose p, const Euler& e) {
    p.euler = e;
    p.quaternion = euler_to_quat(e);
    return p;
}

template <void (*get_params)(float*)>
Pose frame_of_model() {
    float f[6];
    get_params(f);
    return {{f[0], f[1], f[2]}, {}, {f[3], f[4], f[5]}};
}

inline Pose work_frame() { return frame_of_model<libalgo_get_work_cs_params>(); }
inline Pose tool_frame() { return frame_of_model<libalgo_get_tool_cs_params>(); }

// Multiplies first, so it rounds unlike a product with the constant pi / 180.
inline float radians(float degrees) { return degrees * 3.1415927f / 180.0f; }

}  // namespace zk
