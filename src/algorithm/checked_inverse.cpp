// Inverse kinematics that is checked, and refined where it misses. It calls the functions that an application calls, in
// their units, so it checks what the application gets. Numbers are the equations of
// docs/kinematics.md.
#include "zk/checked_inverse.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "kinematics/damped_least_squares.h"
#include "kinematics/rotation_difference.h"
#include "zk/algorithm.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/status.h"

namespace zk::checked {
namespace {

using damped::Error;
using damped::Joints;

constexpr double kDegree = 3.14159265358979323846 / 180;

struct Degrees {
    float joint[8] = {};
};

struct Limits {
    Degrees lo, hi;
    Limits() {
        Algo_Get_Joint_Min_Limit(lo.joint);
        Algo_Get_Joint_Max_Limit(hi.joint);
    }
};

Degrees within(const Limits& limits, const Joints& q) {
    Degrees degrees;
    for (int i = 0; i < 7; ++i) {
        const float angle = static_cast<float>(q[i] / kDegree);
        degrees.joint[i] = std::max(limits.lo.joint[i], std::min(limits.hi.joint[i], angle));
    }
    return degrees;
}

Joints radians(const Degrees& degrees) {
    Joints q;
    for (int i = 0; i < 7; ++i) q[i] = degrees.joint[i] * kDegree;
    return q;
}

Matrix tool_at(const Degrees& degrees) {
    return pose_quat_to_transformation_matrix(Algo_Forward_Kinematics(degrees.joint));
}

// The motion from one transform to another in the frame of the first.
Error difference(const Matrix& from, const Matrix& to) {
    const Mat3Of<double> to_frame = transposed(rotation_of<double>(from));
    const Vec3Of<double> p = product(to_frame, minus(translation_of<double>(to), translation_of<double>(from)));
    const Vec3Of<double> a = axis_times_angle(product(to_frame, rotation_of<double>(to)));
    return {p[0], p[1], p[2], a[0], a[1], a[2]};
}

Error miss(const Degrees& joints, const Matrix& target) { return difference(tool_at(joints), target); }

bool meets(const Degrees& joints, const Matrix& target) {
    return damped::all_below(miss(joints, target), ZK_CHECKED_METRES, ZK_CHECKED_RADIANS);
}

// (9.1): central differences, half a degree to either side, where rounding and curvature weigh about the same.
damped::Jacobian jacobian(Degrees degrees) {
    constexpr float kAside = 0.5f;
    damped::Jacobian J{};
    for (int i = 0; i < libalgo_get_rbt_dof(); ++i) {
        const float at = degrees.joint[i], before = at - kAside, after = at + kAside;
        degrees.joint[i] = before;
        const Matrix from = tool_at(degrees);
        degrees.joint[i] = after;
        const Error moved = difference(from, tool_at(degrees));
        degrees.joint[i] = at;
        for (int k = 0; k < 6; ++k) J[k][i] = moved[k] / ((after - before) * kDegree);
    }
    return J;
}

// Moves the joints to the target, within the limits.
bool refined(const Limits& limits, const Matrix& target, Degrees& joints) {
    const auto at = [&](const Joints& q, damped::Jacobian& J) {
        const Degrees degrees = within(limits, q);
        J = jacobian(degrees);
        return miss(degrees, target);
    };
    Joints q = radians(joints);
    const damped::Limits room = {radians(limits.lo), radians(limits.hi)};
    if (!damped::converge(at, room, {}, ZK_CHECKED_METRES / 2, ZK_CHECKED_RADIANS / 2, q)) return false;
    joints = within(limits, q);
    return meets(joints, target);
}

// Refining starts from the answer or the seed, whichever is nearer to the target: an answer may be far off.
Degrees start(const Degrees& seed, const Degrees& answer, const Matrix& target) {
    return damped::squared(miss(answer, target)) < damped::squared(miss(seed, target)) ? answer : seed;
}

// The closed forms of six joints try every configuration; with seven they try one value of the free axis.
bool may_have_missed_a_solution() { return libalgo_get_rbt_dof() == 7; }

}  // namespace
}  // namespace zk::checked

ZK_API int ZK_Inverse_Kinematics_Checked(const float* seed, const Pose* target, float* joint, uint8_t flag) {
    using namespace zk::checked;
    if (!seed || !target || !joint) return ZK_BAD_ARGUMENT;
    const int dof = std::clamp(libalgo_get_rbt_dof(), 0, 7);
    Degrees from, answer;
    std::copy_n(seed, dof, from.joint);
    const int status = Algo_Inverse_Kinematics(from.joint, target, answer.joint, flag);
    if (status != ZK_OK && !(status == ZK_NO_SOLUTION && may_have_missed_a_solution())) return status;

    const Matrix goal =
        flag == 1 ? pose_euler_to_transformation_matrix(*target) : pose_quat_to_transformation_matrix(*target);
    if (status != ZK_OK) {
        answer = from;
    } else if (!meets(answer, goal)) {
        answer = start(from, answer, goal);
    }
    if (!meets(answer, goal) && !refined(Limits(), goal, answer)) return ZK_NO_SOLUTION;
    std::copy_n(answer.joint, dof, joint);
    return ZK_OK;
}
