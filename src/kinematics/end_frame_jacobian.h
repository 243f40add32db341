// Links of a chain in the modified convention, and the Jacobian of seven of them in the frame of the chain's end.
#pragma once

#include "kinematics/small_matrix.h"

namespace zk {

enum class Twist { kNone, kPlus90, kMinus90 };

// Rx(twist) Tx(a) Rz(theta) Tz(d), of the sine and cosine of theta.
template <class Real>
Transform<Real> link_transform(Twist twist, Real a, Real s, Real c, Real d) {
    switch (twist) {
        case Twist::kPlus90:
            return {{{c, -s, 0, a}, {0, 0, -1, -d}, {s, c, 0, 0}}};
        case Twist::kMinus90:
            return {{{c, -s, 0, a}, {0, 0, 1, d}, {-s, -c, 0, 0}}};
        default:
            return {{{c, -s, 0, a}, {s, c, 0, 0}, {0, 0, 1, d}}};
    }
}

template <class Real>
using Jacobian = std::array<std::array<Real, 7>, 6>;

// From the end back to the base: before link i is multiplied in, U takes the end's coordinates to the frame of joint i,
// which turns about its z axis. So the axis seen from the end is U's third row, and the velocity of the end
// is z x p, both in that frame, seen through U's rotation (7.2). Returns the transform from the base to the end.
template <class Real, class LinkAt>
Transform<Real> end_frame_jacobian(LinkAt link, Jacobian<Real>& J) {
    Transform<Real> U = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    for (int i = 6; i >= 0; --i) {
        for (int k = 0; k < 3; ++k) {
            J[k][i] = U.m[1][k] * U.m[0][3] - U.m[0][k] * U.m[1][3];
            J[k + 3][i] = U.m[2][k];
        }
        U = link(i) * U;
    }
    return U;
}

}  // namespace zk
