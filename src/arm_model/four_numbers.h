// Four numbers in the lanes of an AVX2 register, for the templates that compute with a double elsewhere. Only sources
// that are built with these instructions may include this.
#pragma once

#include <immintrin.h>

#include "numeric/turn.h"

namespace zk::arm {
namespace {

// A truth about each of four numbers.
struct Mask {
    __m256d bits;

    friend Mask operator&&(Mask a, Mask b) { return {_mm256_and_pd(a.bits, b.bits)}; }
    friend Mask operator!(Mask a) { return {_mm256_xor_pd(a.bits, _mm256_cmp_pd(a.bits, a.bits, _CMP_TRUE_UQ))}; }
    friend Mask operator||(Mask a, Mask b) { return {_mm256_or_pd(a.bits, b.bits)}; }
    bool any() const { return _mm256_movemask_pd(bits) != 0; }
    bool all() const { return _mm256_movemask_pd(bits) == 15; }
    int rows() const { return _mm256_movemask_pd(bits); }
};

struct Four {
    __m256d v;

    Four() = default;
    Four(__m256d values) : v(values) {}
    Four(double value) : v(_mm256_set1_pd(value)) {}
    // A column of rows of floats.
    Four(const float* column, int stride)
        : v(_mm256_cvtps_pd(_mm_setr_ps(column[0], column[stride], column[2 * stride], column[3 * stride]))) {}

    friend Four operator+(Four a, Four b) { return a.v + b.v; }
    friend Four operator-(Four a, Four b) { return a.v - b.v; }
    friend Four& operator-=(Four& a, Four b) { return a = a - b; }
    friend Four& operator/=(Four& a, Four b) { return a = a / b; }
    friend Four& operator+=(Four& a, Four b) { return a = a + b; }
    friend Four operator*(Four a, Four b) { return a.v * b.v; }
    friend Four operator/(Four a, Four b) { return a.v / b.v; }
    friend Four operator-(Four a) { return _mm256_xor_pd(a.v, _mm256_set1_pd(-0.0)); }
    friend Mask operator<(Four a, Four b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LT_OQ)}; }
    friend Mask operator>(Four a, Four b) { return b < a; }
    friend Mask operator<=(Four a, Four b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LE_OQ)}; }
    friend Mask operator>=(Four a, Four b) { return b <= a; }

    friend Four sqrt(Four a) { return _mm256_sqrt_pd(a.v); }
    friend Four fabs(Four a) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a.v); }
    friend Four copysign(Four size, Four sign) {
        return _mm256_or_pd(fabs(size).v, _mm256_and_pd(_mm256_set1_pd(-0.0), sign.v));
    }
    friend Mask signbit(Four a) { return {a.v}; }  // select looks at the sign alone
    friend Mask has_bit(Four a, long long bit, long long added = 0) {
        const __m256i sum = _mm256_castpd_si256(a.v) + _mm256_set1_epi64x(added), one = _mm256_set1_epi64x(bit);
        return {_mm256_castsi256_pd(_mm256_cmpeq_epi64(_mm256_and_si256(sum, one), one))};
    }
};

Four select(Mask condition, Four yes, Four no) { return _mm256_blendv_pd(no.v, yes.v, condition.bits); }

TurnOf<Four> turn_of(Four angle) { return bounded_turn(angle); }

TurnOf<Four> select(Mask condition, TurnOf<Four> yes, TurnOf<Four> no) {
    return {select(condition, yes.s, no.s), select(condition, yes.c, no.c)};
}

}  // namespace
}  // namespace zk::arm
