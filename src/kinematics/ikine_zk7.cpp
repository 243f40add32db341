// Inverse kinematics of the 75: seven axes, spherical shoulder and wrist.
#include <algorithm>
#include <cmath>

#include "kinematics/zk7.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/seven_axis.h"

namespace zk::zk7 {
namespace {

Joints seven(const float* values) {
    Joints joints;
    std::copy_n(values, 7, joints.begin());
    return joints;
}

template <void (*get)(float*)>
Joints limits() {
    float values[8];
    get(values);
    return seven(values);
}

Arm arm_of_model() {
    DhParams dh;
    libalgo_get_dh_value(&dh);
    return {dh.d[0],
            dh.d[2],
            dh.d[4],
            dh.d[6],
            limits<libalgo_get_modeling_jointlim_min>(),
            limits<libalgo_get_modeling_jointlim_max>(),
            seven(dh.offset),
            limits<libalgo_get_joint_vel_maxlim>(),
            libalgo_get_control_loop_period()};
}

// Shoulder or wrist near alignment, where the closed form is badly conditioned.
bool near_alignment(const Joints& seed) {
    constexpr float k5Degrees = 0.08726646f, k8Degrees = 0.13962634f;
    return std::fabs(seed[1]) < k5Degrees || std::fabs(seed[2]) < k8Degrees || std::fabs(seed[5]) < k5Degrees;
}

void wrap_into_limits(const Arm& arm, float* out) {
    constexpr float kTurn = 6.2831855f;
    for (int i = 0; i < 7; ++i) {
        if (out[i] < arm.lo[i]) {
            out[i] += kTurn;
        } else if (out[i] > arm.hi[i]) {
            out[i] -= kTurn;
        }
    }
}

// Writes the step's result; -2 at the first joint beyond its limits, the last one written.
int take_step(const Arm& arm, const Joints& q, float* out) {
    for (int i = 0; i < 7; ++i) {
        out[i] = q[i];
        if (q[i] < arm.lo[i] || q[i] > arm.hi[i]) return -2;
    }
    for (int i = 0; i < 7; ++i) out[i] -= arm.offset[i];
    return 0;
}

// Converts DH angles to joint angles; -2 at the first one beyond its limits.
int hand_over(const Arm& arm, float* out) {
    for (int i = 0; i < 7; ++i) {
        if (out[i] < arm.lo[i] || out[i] > arm.hi[i]) return -2;
        out[i] -= arm.offset[i];
    }
    return 0;
}

}  // namespace
}  // namespace zk::zk7

ZK_API int inverse_kinematics_zk_75(float* seed, float* out, Mat target) {
    using namespace zk::zk7;
    const Arm arm = arm_of_model();
    for (int i = 0; i < 7; ++i) seed[i] += arm.offset[i];
    const Joints from = seven(seed);
    const Target to = {zk::rotation_of<float>(target), zk::translation_of<float>(target)};

    if (ikine_get_solution_range_zk75() > 1.0f) {
        sweep(arm, from, to, out);
    } else {
        const Joints q = pseudo_inverse_step(arm, from, to);
        if (near_alignment(from)) return take_step(arm, q, out);
        const Joints answer = follow(arm, q, to, from[6]);
        std::copy(answer.begin(), answer.end(), out);
    }
    wrap_into_limits(arm, out);
    return hand_over(arm, out);
}
