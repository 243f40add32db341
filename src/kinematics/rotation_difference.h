// Rotations as axis times angle.
#pragma once

#include <cmath>

#include "kinematics/small_matrix.h"

namespace zk {

// Axis times angle of R. is_zero(n) means a vector without a direction, angle_over(n, t) is atan2(n, t) / n. A half
// turn is read from the diagonal, which is right for turns about the coordinate axes.
// Method: Sugihara, Solvability-Unconcerned Inverse Kinematics by the Levenberg-Marquardt Method, IEEE Transactions on
// Robotics 27 (2011).
template <class IsZero, class AngleOver>
Vec3 axis_times_angle(const Mat3& R, IsZero is_zero, AngleOver angle_over) {
    constexpr float kHalfPi = 1.5707964f;
    const Vec3 l = {R[2][1] - R[1][2], R[0][2] - R[2][0], R[1][0] - R[0][1]};  // 2 sin(angle) axis
    const float trace = R[0][0] + R[1][1] + R[2][2];                           // 1 + 2 cos(angle)
    const float n = norm(l);
    if (is_zero(n)) {
        if (trace > 0) return {};
        return {kHalfPi * (R[0][0] + 1), kHalfPi * (R[1][1] + 1), kHalfPi * (R[2][2] + 1)};
    }
    return scaled(angle_over(n, trace - 1), l);
}

// Axis times angle of R, half turns about any axis included.
inline Vec3Of<double> axis_times_angle(const Mat3Of<double>& R) {
    constexpr double kPi = 3.14159265358979323846, kNoDirection = 1e-9;
    const Vec3Of<double> l = {R[2][1] - R[1][2], R[0][2] - R[2][0], R[1][0] - R[0][1]};
    const double n = norm(l), trace = R[0][0] + R[1][1] + R[2][2];
    if (n > kNoDirection) return scaled(std::atan2(n, trace - 1) / n, l);
    if (trace > 0) return scaled(0.5, l);
    // R + I = 2 axis axis': its longest column has the axis with the least rounding.
    const int k = R[0][0] > R[1][1] && R[0][0] > R[2][2] ? 0 : R[1][1] > R[2][2] ? 1 : 2;
    Vec3Of<double> axis = {R[0][k], R[1][k], R[2][k]};
    axis[k] += 1;
    return scaled(kPi, normalised(axis));
}

}  // namespace zk
