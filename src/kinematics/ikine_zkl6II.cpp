// Inverse kinematics of the 63: the shoulder is a2 off the axis of joint 1, the forearm a4 off the elbow. Numbers
// in brackets are the equations of docs/kinematics.md.
#include <cmath>

#include "kinematics/solvers.h"
#include "kinematics/spherical_wrist.h"
#include "zk/inverse_kinematics.h"

namespace zk {
namespace {

struct Zkl63_2 {
    static constexpr float kLastTwist = -1;
    static constexpr bool kJoint5NearPi = true;
    static constexpr bool kSumFromSeed = false;

    const float a2, a3, a4, d4;
    explicit Zkl63_2(const DhParams& dh) : a2(dh.a[1]), a3(dh.a[2]), a4(dh.a[3]), d4(dh.d[3]) {}

    // No slack for a straight arm: k is a length here, and beyond 1 m far out of reach.
    Elbows elbows(float r, float z) const {
        const float out = r - a2;                                                // (L7)
        float k = (out * out + z * z - a3 * a3 - a4 * a4 - d4 * d4) / (2 * a3);  // (S5)
        if (k > 1 && k < 1.0002f) k = 1;
        const float root = std::sqrt(d4 * d4 + a4 * a4 - k * k);
        const float y0 = d4 * k + a4 * root, x0 = a4 * k - d4 * root;  // (S6)
        const float y1 = d4 * k - a4 * root, x1 = a4 * k + d4 * root;
        const auto [first, second] = arc_tangents(y0, x0, y1, x1);
        return {{first, direction(y0, x0)}, {second, direction(y1, x1)}};
    }

    Point toward_t23(float r, float z, SineCosine t3) const {
        const float out = r - a2, p = a3 * t3.c + a4, q = a3 * t3.s + d4;
        return {out * q - z * p, z * q + out * p};  // (S7)
    }

    static Axes forearm(SineCosine t1, SineCosine t23) {
        return {{t1.c * t23.c, t1.s * t23.c, -t23.s}, {-t1.s, t1.c, 0}, {t1.c * t23.s, t1.s * t23.s, t23.c}};
    }
};

}  // namespace

int solve_zkl63_2(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool) {
    return SphericalWrist<Zkl63_2>(model, seed, world_T_tool).solve(joint);
}

}  // namespace zk

ZK_API int inverse_kinematics_zkl63_2(const float* seed, float* joint, Matrix world_T_tool) {
    return zk::solve_zkl63_2(robot, seed, joint, world_T_tool);
}
