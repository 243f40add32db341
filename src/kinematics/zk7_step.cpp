// The pseudo-inverse step of the 75.
#include <cmath>

#include "kinematics/end_frame_jacobian.h"
#include "kinematics/rotation_difference.h"
#include "kinematics/zk7.h"
#include "numeric/exchange_inverse.h"
#include "numeric/sine_cosine.h"

namespace zk::zk7 {
namespace {

using Vec6 = std::array<float, 6>;

// In the shape that the exchange form inverts.
struct Gram {
    float m[6][6];
};

// (7.1): the twist is at the front of each link.
Transform<float> link(const Arm& arm, const Joints& q, int i) {
    const float d[] = {arm.d1, 0, arm.d3, 0, arm.d5, 0, arm.d7};
    const auto [s, c] = sine_cosine(q[i]);
    const Twist twist = i == 0 ? Twist::kNone : i % 2 == 1 ? Twist::kMinus90 : Twist::kPlus90;
    return link_transform(twist, 0.0f, s, c, d[i]);
}

float double_precision_angle_over(float n, float t) {
    return static_cast<float>(std::atan2(static_cast<double>(n), static_cast<double>(t)) / n);
}

// (7.3): the remaining motion to the target, in the frame of the flange.
Vec6 error_in_end_frame(const Transform<float>& current, const Target& target) {
    const auto is_zero = [](float n) { return n < 1e-16f; };
    const Mat3 to_end = transposed(rotation_of<float>(current));
    const Vec3 p = product(to_end, minus(target.p, translation_of<float>(current)));
    const Vec3 a = product(to_end, axis_times_angle(product(target.R, to_end), is_zero, double_precision_angle_over));
    return {p[0], p[1], p[2], a[0], a[1], a[2]};
}

// (7.4): J J'
Gram gram(const Jacobian<float>& J) {
    Gram G;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j <= i; ++j) {
            float sum = 0;
            for (int k = 0; k < 7; ++k) sum += J[i][k] * J[j][k];
            G.m[i][j] = G.m[j][i] = sum;
        }
    }
    return G;
}

// J' inv(J J') v
Joints pseudo_inverse_times(const Jacobian<float>& J, const Gram& inverse, const Vec6& v) {
    Vec6 y{};
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 6; ++j) y[i] += inverse.m[i][j] * v[j];
    }
    Joints result{};
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 7; ++k) result[k] += J[i][k] * y[i];
    }
    return result;
}

// (7.5): downhill on the mean square distance from mid-range, measured in ranges.
Joints mid_range_pull(const Arm& arm, const Joints& seed) {
    constexpr float kGain = -0.014285715f;  // -0.1 / 7
    Joints z;
    for (int i = 0; i < 7; ++i) {
        const float range = arm.hi[i] - arm.lo[i];
        z[i] = (seed[i] - (arm.lo[i] + arm.hi[i]) * 0.5f) * kGain / range / range;
    }
    return z;
}

// (7.6): the part of z that leaves the flange where it is.
Joints in_null_space(const Jacobian<float>& J, const Gram& inverse, const Joints& z) {
    Vec6 moved{};
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 7; ++k) moved[i] += J[i][k] * z[k];
    }
    const Joints back = pseudo_inverse_times(J, inverse, moved);
    Joints dn;
    for (int i = 0; i < 7; ++i) dn[i] = z[i] - back[i];
    return dn;
}

bool within_speed(const Arm& arm, const Joints& dq, const Joints& dn) {
    for (int i = 0; i < 7; ++i) {
        if (!(std::fabs(dq[i] + dn[i]) / arm.period <= arm.max_speed[i])) return false;
    }
    return true;
}

}  // namespace

Joints pseudo_inverse_step(const Arm& arm, const Joints& seed, const Target& target) {
    Jacobian<float> J;
    const Transform<float> current = end_frame_jacobian([&](int i) { return link(arm, seed, i); }, J);
    Gram inverse = gram(J);
    // Fully singular: only no motion is safe.
    if (!invert_by_exchange<float, AtZeroPivot::kGiveUp>(inverse, 6)) return seed;
    const Joints dq = pseudo_inverse_times(J, inverse, error_in_end_frame(current, target));  // (7.4)

    Joints q;
    for (int i = 0; i < 7; ++i) q[i] = seed[i] + dq[i];
    const Joints dn = in_null_space(J, inverse, mid_range_pull(arm, seed));
    if (!within_speed(arm, dq, dn)) return q;
    for (int i = 0; i < 7; ++i) q[i] += dn[i];
    return q;
}

}  // namespace zk::zk7
