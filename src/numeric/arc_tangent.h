// The angle of a point, single precision, without a branch: what the C library calls atan2f, for solvers that need a
// score of them and whose points a processor cannot guess.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace zk {

// The arc tangent of 0 to 1. Method: odd polynomial through Chebyshev nodes, 2.5e-9 from the arc tangent.
template <class Real>
inline Real octant_of(Real tangent) {
    const Real t = tangent, u = t * t, u2 = u * u, u4 = u2 * u2;
    const Real low =
        (0.99999999754602042 - 0.33333282295513 * u) + (0.19998230640412754 - 0.14261573680656933 * u) * u2;
    const Real middle =
        (0.10940198966983225 - 0.083720639531456975 * u) + (0.057463557931223479 - 0.030717508982484105 * u) * u2;
    const Real high = 0.010680719485844748 - 0.0017437011522270041 * u;
    return t * (low + (middle + high * u4) * u4);
}

// As atan2f for finite points, 0 of either sign included, and within 0.55 of a last digit of the true angle; NaN for
// NaN. In double precision.
inline float arc_tangent(float y, float x) {
    const double height = std::fabs(y), width = std::fabs(x);
    const double longer = std::max(height, width), shorter = std::min(width, height);  // in this order NaN gets through
    const double octant = octant_of(shorter / std::max(longer, std::numeric_limits<double>::min()));
    constexpr double sign[] = {1, -1}, right_angle[] = {0, M_PI / 2}, straight_angle[] = {0, M_PI};
    const bool steep = height > width, backward = std::signbit(x);
    const double quadrant = right_angle[steep] + sign[steep] * octant;
    const double half_plane = straight_angle[backward] + sign[backward] * quadrant;
    return static_cast<float>(std::copysign(half_plane, y));
}

struct TwoAngles {
    float first, second;
};

// The angles of two points, to the bit those of two calls above: the same steps in both lanes of a register.
inline TwoAngles arc_tangents(float y0, float x0, float y1, float x1) {
    typedef double Two __attribute__((vector_size(16)));
    typedef std::int64_t Bits __attribute__((vector_size(16)));
    constexpr double kSmallest = std::numeric_limits<double>::min();
    const Bits sign = {INT64_MIN, INT64_MIN};
    const Bits y = (Bits)Two{y0, y1}, x = (Bits)Two{x0, x1};
    const Two height = (Two)(y & ~sign), width = (Two)(x & ~sign), smallest = {kSmallest, kSmallest};
    const Two longer = height < width ? width : height, shorter = height < width ? height : width;
    const Two octant = octant_of(shorter / (longer < smallest ? smallest : longer));
    const Bits steep = height > width, backward = x >> 63;
    const Two quadrant = (Two)(steep & (Bits)Two{M_PI / 2, M_PI / 2}) + (Two)((Bits)octant ^ (steep & sign));
    const Two half_plane = (Two)(backward & (Bits)Two{M_PI, M_PI}) + (Two)((Bits)quadrant ^ (x & sign));
    const Two angle = (Two)(((Bits)half_plane & ~sign) | (y & sign));
    return {static_cast<float>(angle[0]), static_cast<float>(angle[1])};
}

}  // namespace zk
