// Poses of the interface and frames in double precision.
#pragma once

#include <cmath>

#include "arm_model/arm.h"
#include "numeric/turn.h"
#include "zk/transform_types.h"

namespace zk::arm {

inline Frame frame_of(const Position& p, const Euler& e) {
    const Turn x = turn_of(e.rx), y = turn_of(e.ry), z = turn_of(e.rz);
    return {{{y.c * z.c, y.s * z.c * x.s - z.s * x.c, y.s * z.c * x.c + x.s * z.s, p.x},
             {z.s * y.c, x.c * z.c + y.s * z.s * x.s, y.s * z.s * x.c - z.c * x.s, p.y},
             {-y.s, x.s * y.c, x.c * y.c, p.z}}};
}

// The quaternion need not be of unit length, but must not be 0.
inline Frame frame_of(const Position& p, const Quat& q) {
    const double w = q.w, x = q.x, y = q.y, z = q.z, k = 2 / (w * w + x * x + y * y + z * z);
    return {{{1 - k * (y * y + z * z), k * (x * y - w * z), k * (w * y + x * z), p.x},
             {k * (w * z + x * y), 1 - k * (z * z + x * x), k * (y * z - w * x), p.y},
             {k * (x * z - w * y), k * (w * x + y * z), 1 - k * (x * x + y * y), p.z}}};
}

// As matrix_to_euler counts them: roll takes the whole turn where pitch is a right angle, and an angle near minus half
// a turn counts as positive.
inline Euler euler_of(const Frame& t) {
    constexpr double kUpright = 1e-7;
    const auto& m = t.m;
    const double level = std::sqrt(m[0][0] * m[0][0] + m[1][0] * m[1][0]);
    const auto counted = [](double angle) { return static_cast<float>(angle < -3.13 ? angle + 2 * M_PI : angle); };
    const float ry = counted(angle_of(-m[2][0], level));
    if (level < kUpright) return {counted(angle_of(m[2][0] > 0 ? -m[0][1] : m[0][1], m[1][1])), ry, 0};
    return {counted(angle_of(m[2][1], m[2][2])), ry, counted(angle_of(m[1][0], m[0][0]))};
}

// 4 w^2 = 1 + m00 + m11 + m22 and 4 x^2 = 1 + m00 - m11 - m22, y and z alike. The largest component divides the others.
inline Quat quaternion_of(const Frame& t) {
    const auto& m = t.m;
    const auto quat = [](double size, double w, double x, double y, double z) {
        const double k = 0.5 / std::sqrt(size);
        return Quat{static_cast<float>(k * w), static_cast<float>(k * x), static_cast<float>(k * y),
                    static_cast<float>(k * z)};
    };
    const double zy = m[2][1] - m[1][2], xz = m[0][2] - m[2][0], yx = m[1][0] - m[0][1];
    const double sw = 1 + m[0][0] + m[1][1] + m[2][2];
    if (sw > 1) return quat(sw, sw, zy, xz, yx);
    const double sx = 1 + m[0][0] - m[1][1] - m[2][2], sy = 1 - m[0][0] + m[1][1] - m[2][2];
    const double sz = 1 - m[0][0] - m[1][1] + m[2][2];
    const double xy = m[0][1] + m[1][0], zx = m[0][2] + m[2][0], yz = m[1][2] + m[2][1];
    if (sx > sy && sx > sz) return quat(sx, zy, sx, xy, zx);
    if (sy > sz) return quat(sy, xz, xy, sy, yz);
    return quat(sz, yx, zx, yz, sz);
}

inline Pose pose_of(const Frame& t) {
    const auto [x, y, z] = translation_of<double>(t);
    return {{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)}, quaternion_of(t), euler_of(t)};
}

}  // namespace zk::arm
