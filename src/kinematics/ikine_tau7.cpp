// Inverse kinematics of the 72: seven axes whose wrist does not meet in a point, so there is no closed form. Numbers
// are the equations of docs/kinematics.md.
#include <algorithm>
#include <cmath>
#include <limits>

#include "kinematics/damped_least_squares.h"
#include "kinematics/rotation_difference.h"
#include "kinematics/solvers.h"
#include "numeric/fixed_matrix.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/seven_axis.h"

namespace zk::tau7 {
namespace {

using damped::Error;
using damped::Joints;

struct Arm {
    DhParams dh;
    damped::Limits limits;

    explicit Arm(const RobotModel& model) : dh(model.dh) {
        for (int i = 0; i < 7; ++i) {
            limits.lo[i] = model.joint_config[i].pos_min;
            limits.hi[i] = model.joint_config[i].pos_max;
        }
    }
};

struct Target {
    Mat3Of<double> R;
    Vec3Of<double> p;
};

// (8.1)
Transform<double> link(const Arm& arm, const Joints& q, int i) {
    constexpr Twist kTwists[] = {Twist::kNone,    Twist::kMinus90, Twist::kPlus90, Twist::kPlus90,
                                 Twist::kMinus90, Twist::kPlus90,  Twist::kPlus90};
    const double a[] = {0, 0, 0, arm.dh.a[3], arm.dh.a[4], 0, arm.dh.a[6]};
    const double d[] = {arm.dh.d[0], 0, arm.dh.d[2], 0, arm.dh.d[4], 0, arm.dh.d[6]};
    const double theta = q[i] + arm.dh.offset[i];
    return link_transform(kTwists[i], a[i], std::sin(theta), std::cos(theta), d[i]);
}

Transform<double> jacobian_and_pose(const Arm& arm, const Joints& q, damped::Jacobian& J) {
    return end_frame_jacobian([&](int i) { return link(arm, q, i); }, J);
}

// The remaining motion to the target, in the frame of the flange.
Error error_in_end_frame(const Transform<double>& current, const Target& target) {
    const Mat3Of<double> to_end = transposed(rotation_of<double>(current));
    const Vec3Of<double> p = product(to_end, minus(target.p, translation_of<double>(current)));
    const Vec3Of<double> a = axis_times_angle(product(to_end, target.R));
    return {p[0], p[1], p[2], a[0], a[1], a[2]};
}

// (8.5): downhill on the mean square distance from mid-range, measured in ranges.
Joints mid_range_pull(const Arm& arm, const Joints& q) {
    constexpr double kGain = -0.1 / 7;
    const auto& [lo, hi] = arm.limits;
    Joints z;
    for (int i = 0; i < 7; ++i) {
        const double range = hi[i] - lo[i];
        z[i] = range > 0 ? kGain * (q[i] - (lo[i] + hi[i]) / 2) / (range * range) : 0;
    }
    return z;
}

bool converge(const Arm& arm, const Target& target, const damped::Limits& limits, Joints& q) {
    constexpr double kMetres = 1e-6, kRadians = 1e-6;
    const auto at = [&](const Joints& joints, damped::Jacobian& J) {
        return error_in_end_frame(jacobian_and_pose(arm, joints, J), target);
    };
    return damped::converge(at, limits, mid_range_pull(arm, q), kMetres, kRadians, q);
}

damped::Limits no_limits() {
    damped::Limits limits;
    limits.lo.fill(-std::numeric_limits<double>::infinity());
    limits.hi.fill(std::numeric_limits<double>::infinity());
    return limits;
}

// The n-th of points that spread evenly over a share of the way from the seed to the limits of each joint. Method:
// Roberts, The Unreasonable Effectiveness of Quasirandom Sequences (2018), for seven dimensions.
Joints seed_about(const Arm& arm, const Joints& seed, int n, double share) {
    constexpr double kRoot = 1.0970017794609055;  // of x^8 = x + 1
    Joints q;
    double stride = 1;
    for (int i = 0; i < 7; ++i) {
        stride /= kRoot;
        const double point = 0.5 + n * stride, side = 2 * (point - std::floor(point)) - 1;
        q[i] = seed[i] + share * side * (side > 0 ? arm.limits.hi[i] - seed[i] : seed[i] - arm.limits.lo[i]);
    }
    return q;
}

struct Restarts {
    int count;
    double reach;  // how far around the seed, as a share of the joints' ranges
};

// (8.6): the farther the target, the farther the seeds, so that a small motion does not become a jump.
Restarts restarts(const Arm& arm, const Search& search, const Joints& seed, const Target& target) {
    if (search.is_wide()) return {150, 1};
    damped::Jacobian J;
    const double distance = std::sqrt(damped::squared(error_in_end_frame(jacobian_and_pose(arm, seed, J), target)));
    return {40, std::min(1.0, 2 * distance)};
}

// 0 with a solution in q, -2 when the seed leads to a solution beyond the limits, -1 for none.
int solve(const Arm& arm, const Search& search, const Joints& seed, const Target& target, Joints& q) {
    q = seed;
    if (converge(arm, target, arm.limits, q)) return 0;
    const auto [count, reach] = restarts(arm, search, seed, target);
    for (int n = 1; n <= count; ++n) {
        q = seed_about(arm, seed, n, reach * std::min(1.0, n / 20.0));
        if (converge(arm, target, arm.limits, q)) return 0;
    }
    q = seed;
    return converge(arm, target, no_limits(), q) ? -2 : -1;
}

Joints as_joints(const float* values) {
    Joints q;
    std::copy_n(values, 7, q.begin());
    return q;
}

}  // namespace
}  // namespace zk::tau7

int zk::solve_tau7(const RobotModel& model, const Search& search, const float* seed, float* joint,
                   const Transform<float>& base_T_flange) {
    using namespace zk::tau7;
    const Arm arm(model);
    const Target target = {rotation_of<double>(base_T_flange), translation_of<double>(base_T_flange)};
    Joints from = as_joints(seed), q;
    for (int i = 0; i < 7; ++i) from[i] = std::max(arm.limits.lo[i], std::min(arm.limits.hi[i], from[i]));
    const int status = tau7::solve(arm, search, from, target, q);
    if (status != 0) return status;
    std::copy(q.begin(), q.end(), joint);
    return 0;
}

ZK_API int inverse_kinematics_tau7(const float* seed, float* out, Mat target) {
    return zk::solve_tau7(robot, {theta_v}, seed, out, zk::transform_of<float>(target));
}

ZK_API void ikine_jacobe_and_pose_tau72(const float* joint, Mat* J, Mat* T) {
    using namespace zk::tau7;
    zk::damped::Jacobian jacobian;
    const zk::Transform<double> pose = jacobian_and_pose(Arm(robot), as_joints(joint), jacobian);
    *J = zk::filled<Mat>(6, 7, [&](int i, int j) { return static_cast<float>(jacobian[i][j]); });
    *T = zk::filled<Mat>(4, 4, [&](int i, int j) { return i == 3 ? j == 3 : static_cast<float>(pose.m[i][j]); });
}
