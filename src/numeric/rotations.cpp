#include <cmath>

#include "numeric/fixed_matrix.h"
#include "numeric/sine_cosine.h"
#include "zk/numeric.h"

namespace zk {
namespace {

constexpr float kSingularPitch = 0.999999f;  // |m20| beyond which roll and yaw are one angle
constexpr float kWrapBelow = -3.13f;
constexpr float kTwoPi = 6.2831855f;
constexpr float kNullQuaternion = 0.000001f;  // squared norm

float wrapped(float angle) { return angle < kWrapBelow ? angle + kTwoPi : angle; }

Matrix transform(Matrix rotation, const Position& p) {
    auto& m = rotation.m;
    return {4,
            4,
            {{m[0][0], m[0][1], m[0][2], p.x},
             {m[1][0], m[1][1], m[1][2], p.y},
             {m[2][0], m[2][1], m[2][2], p.z},
             {0, 0, 0, 1}}};
}

}  // namespace
}  // namespace zk

ZK_API Matrix rotx(float angle) {
    const auto [s, c] = zk::sine_cosine(angle);
    return {3, 3, {{1, 0, 0}, {0, c, -s}, {0, s, c}}};
}

ZK_API Matrix roty(float angle) {
    const auto [s, c] = zk::sine_cosine(angle);
    return {3, 3, {{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
}

ZK_API Matrix rotz(float angle) {
    const auto [s, c] = zk::sine_cosine(angle);
    return {3, 3, {{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

ZK_API Matrix euler_to_matrix(Euler e) {
    const auto [sx, cx] = zk::sine_cosine(e.rx);
    const auto [sy, cy] = zk::sine_cosine(e.ry);
    const auto [sz, cz] = zk::sine_cosine(e.rz);
    return {3,
            3,
            {{cy * cz, (sy * cz) * sx - sz * cx, (sy * cz) * cx + sx * sz},
             {sz * cy, cx * cz + (sy * sz) * sx, (sy * sz) * cx - cz * sx},
             {-sy, sx * cy, cx * cy}}};
}

ZK_API Matrix quat_to_matrix(Quat q) {
    const float n = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    const float k = n > zk::kNullQuaternion ? 2 / n : 0;
    const float kw = k * q.w, kx = k * q.x, ky = k * q.y, kz = k * q.z;
    return {3,
            3,
            {{1 - (ky * q.y + kz * q.z), kx * q.y - kw * q.z, kw * q.y + kx * q.z},
             {kw * q.z + kx * q.y, 1 - (kz * q.z + kx * q.x), ky * q.z - kw * q.x},
             {kx * q.z - kw * q.y, kw * q.x + ky * q.z, 1 - (kx * q.x + ky * q.y)}}};
}

ZK_API Euler matrix_to_euler(Matrix R) {
    const auto& m = R.m;
    Euler e{};
    e.ry = std::atan2(-m[2][0], std::sqrt(m[0][0] * m[0][0] + m[1][0] * m[1][0]));
    if (m[2][0] > zk::kSingularPitch) {
        e.rx = -std::atan2(m[0][1], m[1][1]);
    } else if (m[2][0] < -zk::kSingularPitch) {
        e.rx = std::atan2(m[0][1], m[1][1]);
    } else {
        e.rx = std::atan2(m[2][1], m[2][2]);
        e.rz = std::atan2(m[1][0], m[0][0]);
    }
    return {zk::wrapped(e.rx), zk::wrapped(e.ry), zk::wrapped(e.rz)};
}

// With q of unit length, 4 w^2 = 1 + m00 + m11 + m22 and 4 x^2 = 1 + m00 - m11 - m22, y and z alike; the off-diagonal
// elements are products of two components: divided by the component found first, they yield the others.
ZK_API Quat matrix_to_quat(Matrix R) {
    const auto& m = R.m;
    const float trace = (m[0][0] + m[1][1]) + m[2][2];
    if (trace > 0) {
        const float s = 2 * std::sqrt(trace + 1);
        return {0.25f * s, (m[2][1] - m[1][2]) / s, (m[0][2] - m[2][0]) / s, (m[1][0] - m[0][1]) / s};
    }
    if (m[0][0] > m[1][1] && m[0][0] > m[2][2]) {
        const float s = 2 * std::sqrt(((m[0][0] + 1) - m[1][1]) - m[2][2]);
        return {(m[2][1] - m[1][2]) / s, 0.25f * s, (m[0][1] + m[1][0]) / s, (m[0][2] + m[2][0]) / s};
    }
    if (m[1][1] > m[2][2]) {
        const float s = 2 * std::sqrt(((m[1][1] + 1) - m[0][0]) - m[2][2]);
        return {(m[0][2] - m[2][0]) / s, (m[0][1] + m[1][0]) / s, 0.25f * s, (m[1][2] + m[2][1]) / s};
    }
    const float s = 2 * std::sqrt(((m[2][2] + 1) - m[0][0]) - m[1][1]);
    return {(m[1][0] - m[0][1]) / s, (m[0][2] + m[2][0]) / s, (m[1][2] + m[2][1]) / s, 0.25f * s};
}

ZK_API Quat euler_to_quat(Euler e) {
    const auto [sx, cx] = zk::sine_cosine(0.5f * e.rx);
    const auto [sy, cy] = zk::sine_cosine(0.5f * e.ry);
    const auto [sz, cz] = zk::sine_cosine(0.5f * e.rz);
    return {(cx * cy) * cz + (sx * sy) * sz, (cy * sx) * cz - (cx * sy) * sz, (cx * sy) * cz + (cy * sx) * sz,
            (cx * cy) * sz - (sx * sy) * cz};
}

ZK_API Euler quat_to_euler(Quat q) { return matrix_to_euler(quat_to_matrix(q)); }

ZK_API Quat quaternion_interpolation(float theta, float phi, Quat q1, Quat q2) {
    const float g = 1 / std::sin(theta);
    const float a = std::sin(theta - phi);
    const float b = std::sin(phi);
    const auto blend = [&](float c1, float c2) { return (a * c1 + b * c2) * g; };
    return {blend(q1.w, q2.w), blend(q1.x, q2.x), blend(q1.y, q2.y), blend(q1.z, q2.z)};
}

ZK_API Matrix pose_euler_to_transformation_matrix(Pose p) {
    return zk::transform(euler_to_matrix(p.euler), p.position);
}

ZK_API Matrix pose_quat_to_transformation_matrix(Pose p) {
    return zk::transform(quat_to_matrix(p.quaternion), p.position);
}

ZK_API Pose transformation_matrix_to_pose(Matrix T) {
    const Euler euler = matrix_to_euler(T);
    const Quat quaternion = matrix_to_quat(T);
    return {{T.m[0][3], T.m[1][3], T.m[2][3]}, quaternion, euler};
}
