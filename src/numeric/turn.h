// Sine, cosine and arc tangent in double precision without a call: for solvers that need some dozens of them.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "numeric/arc_tangent.h"

namespace zk {

// An angle as its sine and cosine.
struct Turn {
    double s, c;
};

// Within 3e-14 of the true values for angles of up to 1e5 radians; the C library's beyond, and NaN for infinity and
// NaN. Method: remainder of a quarter turn in two parts (Cody and Waite), Taylor series on an eighth of a turn.
inline Turn turn_of(double angle) {
    constexpr double kToInteger = 6755399441055744.0;  // 1.5 * 2^52: the sum's last bits are the rounded integer
    constexpr double kQuarterHigh = 1.5707963267341256, kQuarterLow = 6.0771005065061922e-11;
    if (!(std::fabs(angle) < 1e5)) return {std::sin(angle), std::cos(angle)};
    const double shifted = angle * (2 / M_PI) + kToInteger, quarters = shifted - kToInteger;
    const double x = (angle - quarters * kQuarterHigh) - quarters * kQuarterLow, u = x * x, u2 = u * u;
    const double s =
        x + x * u * ((-1. / 6 + u / 120) + u2 * ((-1. / 5040 + u / 362880) + u2 * (-1. / 39916800 + u / 6227020800.)));
    const double c = (1 - u / 2) + u2 * ((1. / 24 - u / 720) +
                                         u2 * ((1. / 40320 - u / 3628800) + u2 * (1. / 479001600 - u / 87178291200.)));
    const auto quadrant = std::bit_cast<std::uint64_t>(shifted);
    const double across = quadrant & 1 ? c : s, along = quadrant & 1 ? s : c;
    return {quadrant & 2 ? -across : across, (quadrant + 1) & 2 ? -along : along};
}

// The angle of the point (x, y), between -pi and pi, within 3e-9; NaN for NaN.
inline double angle_of(double y, double x) {
    const double height = std::fabs(y), width = std::fabs(x);
    const double longer = height < width ? width : height,
                 shorter = height < width ? height : width;  // NaN gets through
    const double octant = octant_of(shorter / (longer + std::numeric_limits<double>::min()));
    const double quadrant = height > width ? M_PI / 2 - octant : octant;
    return std::copysign(std::signbit(x) ? M_PI - quadrant : quadrant, y);
}

}  // namespace zk
