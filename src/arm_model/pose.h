// Poses of the interface and frames in double precision.
#pragma once

#include <cmath>

#include "arm_model/arm.h"
#include "numeric/turn.h"
#include "zk/transform_types.h"

namespace zk::arm {

// The parts of a pose, in the order of its fields.
template <class Real>
struct EulerOf {
    Real x, y, z;
};
template <class Real>
struct QuatOf {
    Real w, x, y, z;
};

template <class Real>
Transform<Real> frame_of(const Vec3Of<Real>& p, const EulerOf<Real>& e) {
    const TurnOf<Real> x = turn_of(e.x), y = turn_of(e.y), z = turn_of(e.z);
    return {{{y.c * z.c, y.s * z.c * x.s - z.s * x.c, y.s * z.c * x.c + x.s * z.s, p[0]},
             {z.s * y.c, x.c * z.c + y.s * z.s * x.s, y.s * z.s * x.c - z.c * x.s, p[1]},
             {-y.s, x.s * y.c, x.c * y.c, p[2]}}};
}
inline Frame frame_of(const Position& p, const Euler& e) {
    return frame_of(Vector{p.x, p.y, p.z}, EulerOf<double>{e.rx, e.ry, e.rz});
}

// The quaternion need not be of unit length, but must not be 0.
template <class Real>
Transform<Real> frame_of(const Vec3Of<Real>& p, const QuatOf<Real>& q) {
    const auto [w, x, y, z] = q;
    const Real k = 2 / (w * w + x * x + y * y + z * z);
    return {{{1 - k * (y * y + z * z), k * (x * y - w * z), k * (w * y + x * z), p[0]},
             {k * (w * z + x * y), 1 - k * (z * z + x * x), k * (y * z - w * x), p[1]},
             {k * (x * z - w * y), k * (w * x + y * z), 1 - k * (x * x + y * y), p[2]}}};
}
inline Frame frame_of(const Position& p, const Quat& q) {
    return frame_of(Vector{p.x, p.y, p.z}, QuatOf<double>{q.w, q.x, q.y, q.z});
}

// As matrix_to_euler counts them: an angle near minus half a turn counts as positive.
template <class Real>
Real counted(Real angle) {
    return select(angle < -3.13, angle + 2 * M_PI, angle);
}

inline constexpr double kUpright = 1e-7;  // below that, pitch is a right angle

// `level` is the size of the x axis seen from above.
template <class Real>
EulerOf<Real> euler_of(const Transform<Real>& t, Real level) {
    const auto& m = t.m;
    return {counted(angle_of(m[2][1], m[2][2])), counted(angle_of(-m[2][0], level)),
            counted(angle_of(m[1][0], m[0][0]))};
}
template <class Real>
Real level_of(const Transform<Real>& t) {
    using std::sqrt;
    return sqrt(t.m[0][0] * t.m[0][0] + t.m[1][0] * t.m[1][0]);
}

// Roll takes the whole turn where pitch is a right angle.
inline Euler euler_of(const Frame& t) {
    const auto& m = t.m;
    const double level = level_of(t);
    const auto [x, y, z] = euler_of(t, level);
    if (!(level < kUpright)) return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    const double roll = counted(angle_of(m[2][0] > 0 ? -m[0][1] : m[0][1], m[1][1]));
    return {static_cast<float>(roll), static_cast<float>(y), 0};
}

// 4 w^2 = 1 + m00 + m11 + m22 and 4 x^2 = 1 + m00 - m11 - m22, y and z alike. The largest component divides the others.
template <class Real>
QuatOf<Real> quaternion_of(const Transform<Real>& t) {
    using std::sqrt;
    const auto& m = t.m;
    const Real zy = m[2][1] - m[1][2], xz = m[0][2] - m[2][0], yx = m[1][0] - m[0][1];
    const Real xy = m[0][1] + m[1][0], zx = m[0][2] + m[2][0], yz = m[1][2] + m[2][1];
    const Real sw = 1 + m[0][0] + m[1][1] + m[2][2], sx = 1 + m[0][0] - m[1][1] - m[2][2];
    const Real sy = 1 - m[0][0] + m[1][1] - m[2][2], sz = 1 - m[0][0] - m[1][1] + m[2][2];
    const auto by_w = sw > 1, by_x = sx > sy && sx > sz, by_y = sy > sz;
    const auto pick = [&](Real w, Real x, Real y, Real z) {
        return select(by_w, w, select(by_x, x, select(by_y, y, z)));
    };
    const Real k = 0.5 / sqrt(pick(sw, sx, sy, sz));
    return {k * pick(sw, zy, xz, yx), k * pick(zy, sx, xy, zx), k * pick(xz, xy, sy, yz), k * pick(yx, zx, yz, sz)};
}
inline Quat quat_of(const Frame& t) {
    const auto [w, x, y, z] = quaternion_of(t);
    return {static_cast<float>(w), static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

inline Pose pose_of(const Frame& t) {
    const auto [x, y, z] = translation_of<double>(t);
    return {{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)}, quat_of(t), euler_of(t)};
}

template <class Real>
struct Miss {
    Real metres, radians;
};

// Between two frames. The elements of two rotations differ by sqrt(8) sin(angle / 2) in all, the chord; for angles that
// are not refused it is the angle.
template <class Real>
Miss<Real> miss_of(const Transform<Real>& a, const Transform<Real>& b) {
    using std::sqrt;
    Real metres = 0, chord = 0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) chord += (a.m[i][j] - b.m[i][j]) * (a.m[i][j] - b.m[i][j]);
        metres += (a.m[i][3] - b.m[i][3]) * (a.m[i][3] - b.m[i][3]);
    }
    return {sqrt(metres), sqrt(chord / 2)};
}

}  // namespace zk::arm
