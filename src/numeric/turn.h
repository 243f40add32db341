// Sine, cosine and arc tangent in double precision without a call: for solvers that need some dozens of them.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "numeric/arc_tangent.h"

namespace zk {

// What the functions below need of a number: several doubles that are computed at once have the same.
template <class Real>
inline Real select(bool condition, Real yes, Real no) {
    return condition ? yes : no;
}
inline bool has_bit(double x, std::uint64_t bit, std::uint64_t added = 0) {
    return ((std::bit_cast<std::uint64_t>(x) + added) & bit) != 0;
}

// An angle as its sine and cosine.
template <class Real>
struct TurnOf {
    Real s, c;
};
using Turn = TurnOf<double>;

// Within 3e-14 of the true values for angles of up to 1e5 radians. Method: remainder of a quarter turn in two parts
// (Cody and Waite), Taylor series on an eighth of a turn.
template <class Real>
inline TurnOf<Real> bounded_turn(Real angle) {
    constexpr double kToInteger = 6755399441055744.0;  // 1.5 * 2^52: the sum's last bits are the rounded integer
    constexpr double kQuarterHigh = 1.5707963267341256, kQuarterLow = 6.0771005065061922e-11;
    const Real shifted = angle * (2 / M_PI) + kToInteger, quarters = shifted - kToInteger;
    const Real x = (angle - quarters * kQuarterHigh) - quarters * kQuarterLow, u = x * x, u2 = u * u;
    const Real s =
        x + x * u * ((-1. / 6 + u / 120) + u2 * ((-1. / 5040 + u / 362880) + u2 * (-1. / 39916800 + u / 6227020800.)));
    const Real c = (1 - u / 2) + u2 * ((1. / 24 - u / 720) +
                                       u2 * ((1. / 40320 - u / 3628800) + u2 * (1. / 479001600 - u / 87178291200.)));
    const Real across = select(has_bit(shifted, 1), c, s), along = select(has_bit(shifted, 1), s, c);
    return {select(has_bit(shifted, 2), -across, across), select(has_bit(shifted, 2, 1), -along, along)};
}

// The C library's for angles beyond, and NaN for infinity and NaN.
inline Turn turn_of(double angle) {
    if (!(std::fabs(angle) < 1e5)) return {std::sin(angle), std::cos(angle)};
    return bounded_turn(angle);
}

// The angle of the point (x, y), between -pi and pi, within 3e-9; NaN for NaN.
template <class Real>
inline Real angle_of(Real y, Real x) {
    using std::copysign, std::fabs, std::signbit;
    const Real height = fabs(y), width = fabs(x);
    const auto is_flat = height < width;
    const Real longer = select(is_flat, width, height), shorter = select(is_flat, height, width);  // NaN gets through
    const Real octant = octant_of(shorter / (longer + std::numeric_limits<double>::min()));
    const Real quadrant = select(height > width, M_PI / 2 - octant, octant);
    return copysign(select(signbit(x), M_PI - quadrant, quadrant), y);
}

}  // namespace zk
