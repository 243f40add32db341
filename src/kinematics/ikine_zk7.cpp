// Inverse kinematics of the 75: seven axes, spherical shoulder and wrist.
#include <algorithm>
#include <cmath>

#include "kinematics/solvers.h"
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

Arm arm_of(const RobotModel& model) {
    Arm arm = {model.dh.d[0], model.dh.d[2], model.dh.d[4], model.dh.d[6], {}, {}, {}, {}, model.control_loop_period};
    for (int i = 0; i < 7; ++i) {
        const JointConfig& limits = model.joint_config[i];
        arm.offset[i] = model.dh.offset[i];
        arm.lo[i] = limits.pos_min + arm.offset[i];
        arm.hi[i] = limits.pos_max + arm.offset[i];
        arm.max_speed[i] = limits.vel_max;
    }
    return arm;
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

int zk::solve_zk75(const RobotModel& model, const Search& search, float* seed, float* joint,
                   const Transform<float>& base_T_flange) {
    using namespace zk::zk7;
    const Arm arm = arm_of(model);
    for (int i = 0; i < 7; ++i) seed[i] += arm.offset[i];
    const Joints from = seven(seed);
    const Target to = {rotation_of<float>(base_T_flange), translation_of<float>(base_T_flange)};

    if (search.is_wide()) {
        sweep(arm, from, to, joint);
    } else {
        const Joints q = pseudo_inverse_step(arm, from, to);
        if (near_alignment(from)) return take_step(arm, q, joint);
        const Joints answer = follow(arm, q, to, from[6]);
        std::copy(answer.begin(), answer.end(), joint);
    }
    wrap_into_limits(arm, joint);
    return hand_over(arm, joint);
}

ZK_API int inverse_kinematics_zk_75(float* seed, float* out, Mat target) {
    return zk::solve_zk75(robot, {theta_v}, seed, out, zk::transform_of<float>(target));
}
