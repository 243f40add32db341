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

inline Pose pose_of(const float (&frame)[6]) {
    return {{frame[0], frame[1], frame[2]}, {}, {frame[3], frame[4], frame[5]}};
}

// Multiplies first, so it rounds unlike a product with the constant pi / 180.
inline float radians(float degrees) { return degrees * 3.1415927f / 180.0f; }

}  // namespace zk
