// Built with AVX2 instructions. Everything here is local, or a template of a local type: nothing of it must be taken
// for another source's function by the linker.
#include "arm_model/four.h"

#include "arm_model/chain.h"
#include "arm_model/pose.h"
#include "arm_model/zk_model.h"

#ifdef __AVX2__
#include <immintrin.h>

namespace zk::arm {
namespace {

// A truth about each of four numbers.
struct Mask {
    __m256d bits;

    friend Mask operator&(Mask a, Mask b) { return {_mm256_and_pd(a.bits, b.bits)}; }
    friend Mask operator|(Mask a, Mask b) { return {_mm256_or_pd(a.bits, b.bits)}; }
    bool any() const { return _mm256_movemask_pd(bits) != 0; }
    bool all() const { return _mm256_movemask_pd(bits) == 15; }
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
    friend Four& operator+=(Four& a, Four b) { return a = a + b; }
    friend Four operator*(Four a, Four b) { return a.v * b.v; }
    friend Four operator/(Four a, Four b) { return a.v / b.v; }
    friend Four operator-(Four a) { return _mm256_xor_pd(a.v, _mm256_set1_pd(-0.0)); }
    friend Mask operator<(Four a, Four b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_LT_OQ)}; }
    friend Mask operator>(Four a, Four b) { return b < a; }

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

// A product with a transform that all four share.
template <class A, class B>
Transform<Four> operator*(const Transform<A>& a, const Transform<B>& b) {
    Transform<Four> c;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j) {
            c.m[i][j] = Four(a.m[i][0]) * b.m[0][j] + Four(a.m[i][1]) * b.m[1][j] + Four(a.m[i][2]) * b.m[2][j];
        }
        c.m[i][3] = c.m[i][3] + a.m[i][3];
    }
    return c;
}

// Writes a field of four records.
void write(Four values, float* field, int stride) {
    float four[kFour];
    _mm_storeu_ps(four, _mm256_cvtpd_ps(values.v));
    for (int k = 0; k < kFour; ++k) field[k * stride] = four[k];
}

}  // namespace

bool can_do_four() { return __builtin_cpu_supports("avx2"); }

bool forward_four(const ZK_Model& model, const float* joint, Pose* pose) {
    constexpr double kLargest = 1e6;  // degrees; the turns of larger angles need the C library
    constexpr int kStride = sizeof(Pose) / sizeof(float);
    const Arm& arm = model.arm;
    std::array<Four, 7> q;
    for (int i = 0; i < arm.joints; ++i) {
        const Four degrees(joint + i, arm.joints);
        if (!(fabs(degrees) < kLargest).all()) return false;
        q[i] = degrees * kRadiansPerDegree;
    }
    const Transform<Four> t = arm.work_T_root * root_T_end(arm, q) * arm.end_T_tool;
    const Four level = level_of(t);
    if ((level < kUpright).any()) return false;
    const EulerOf<Four> e = euler_of(t, level);
    const QuatOf<Four> r = quaternion_of(t);
    const Four fields[] = {t.m[0][3], t.m[1][3], t.m[2][3], r.w, r.x, r.y, r.z, e.x, e.y, e.z};
    for (int i = 0; i < kStride; ++i) write(fields[i], &pose->position.x + i, kStride);
    return true;
}

}  // namespace zk::arm

#else

namespace zk::arm {

bool can_do_four() { return false; }
bool forward_four(const ZK_Model&, const float*, Pose*) { return false; }

}  // namespace zk::arm

#endif
