// The inverse of a frame, for the solvers that need three of them an answer.
#pragma once

#include <cstdint>
#include <cstring>

#include "zk/transform_types.h"

namespace zk {

// Lane i belongs to column i of the frame, or to row i of its inverse.
typedef float FourFloats __attribute__((vector_size(16)));
typedef double FourDoubles __attribute__((vector_size(32)));

// [B t; 0 1] has the inverse [inverse(B), -inverse(B) t; 0 1]. With B = (a b c), the rows of inverse(B) are b x c, c x
// a and a x b over det(B), and by the rule of Cramer inverse(B) t = (det(t b c), det(a t c), det(a b t)) / det(B).
inline Matrix frame_inverse(const Matrix& T) {
    FourFloats row[3];  // x, y, z of a, b, c, t
    std::memcpy(row, T.m, sizeof row);
    const auto u = [&](int i) { return __builtin_shufflevector(row[i], row[i], 1, 2, 0, 3); };  // b, c, a
    const auto v = [&](int i) { return __builtin_shufflevector(row[i], row[i], 2, 0, 1, 3); };  // c, a, b
    // The columns of three matrices, t in the place of one column each, and of B.
    const auto first = [&](int i) { return __builtin_shufflevector(row[i], row[i], 3, 0, 0, 0); };
    const auto second = [&](int i) { return __builtin_shufflevector(row[i], row[i], 1, 3, 1, 1); };
    const auto third = [&](int i) { return __builtin_shufflevector(row[i], row[i], 2, 2, 3, 2); };
    const FourFloats determinant =  // by the rule of Sarrus
        first(0) * second(1) * third(2) + second(0) * third(1) * first(2) + third(0) * first(1) * second(2) -
        third(0) * second(1) * first(2) - second(0) * first(1) * third(2) - first(0) * third(1) * second(2);
    const double d = 1 / determinant[3];
    const auto times_d = [d](FourFloats lanes) {
        return __builtin_convertvector(__builtin_convertvector(lanes, FourDoubles) * d, FourFloats);
    };
    const FourFloats x = times_d(u(1) * v(2) - u(2) * v(1));
    const FourFloats y = times_d(u(2) * v(0) - u(0) * v(2));
    const FourFloats z = times_d(u(0) * v(1) - u(1) * v(0));
    const FourFloats p = times_d(-determinant);

    const FourFloats xy_upper = __builtin_shufflevector(x, y, 0, 4, 1, 5);
    const FourFloats zp_upper = __builtin_shufflevector(z, p, 0, 4, 1, 5);
    const FourFloats inverse[4] = {__builtin_shufflevector(xy_upper, zp_upper, 0, 1, 4, 5),
                                   __builtin_shufflevector(xy_upper, zp_upper, 2, 3, 6, 7),
                                   {x[2], y[2], z[2], p[2]},
                                   {0, 0, 0, 1}};
    Matrix result;
    result.rows = result.cols = 4;
    std::memcpy(result.m, inverse, sizeof result.m);
    return result;
}

// The frames of a model that its solvers invert.
enum class Inverted { kMounting, kTool, kWorkFrame };

// The inverse of a frame that hardly ever changes: each thread keeps the last one of each kind, beside what it is the
// inverse of.
template <Inverted kind>
const Matrix& kept_inverse(const Matrix& T) {
    struct Kept {
        bool is_known;
        Matrix frame, inverse;
    };
    typedef std::uint64_t Words __attribute__((vector_size(16)));
    thread_local Kept kept;
    Words now[4], then[4];
    std::memcpy(now, T.m, sizeof now);
    std::memcpy(then, kept.frame.m, sizeof then);
    const Words change = (now[0] ^ then[0]) | (now[1] ^ then[1]) | (now[2] ^ then[2]) | (now[3] ^ then[3]);
    if (!kept.is_known || (change[0] | change[1]) != 0) kept = {true, T, frame_inverse(T)};
    return kept.inverse;
}

}  // namespace zk
