// Inverse kinematics of the 65: no offsets, so shoulder, elbow and wrist make a plane triangle.
#include <cmath>

#include "kinematics/solvers.h"
#include "kinematics/spherical_wrist.h"
#include "zk/inverse_kinematics.h"

namespace zk {
namespace {

struct Zk6 {
    static constexpr float kLastTwist = 1;
    static constexpr bool kJoint5NearPi = false;
    static constexpr bool kSumFromSeed = true;

    const float a3, d4;
    explicit Zk6(const DhParams& dh) : a3(dh.a[2]), d4(dh.d[3]) {}

    // (S8) r^2 + z^2 = a3^2 + d4^2 + 2 a3 d4 sin t3. The straight arm may be a little too short, the folded one may
    // not.
    Elbows elbows(float r, float z) const {
        float sine = (r * r + z * z - d4 * d4 - a3 * a3) / (2 * d4 * a3);
        if (sine > 1 && sine < 1.0002f) sine = 1;
        const float cosine = std::sqrt(1 - sine * sine);
        const float up = arc_tangent(sine, cosine);
        return {{up, {sine, cosine}}, {mirrored(up), {sine, -cosine}}};
    }

    // (S9), (S10) With a = a3 sin t3 + d4 and c = a3 cos t3 the wrist point is r = c cos t23 + a sin t23, z = c sin
    // t23 - a cos t23: t23 is the angle of (r, z) plus that of (c, a).
    Point toward_t23(float r, float z, SineCosine t3) const {
        const float a = a3 * t3.s + d4, c = a3 * t3.c;
        return {z * c + r * a, r * c - z * a};
    }

    // (S11)
    static Axes forearm(SineCosine t1, SineCosine t23) {
        return {{t1.c * t23.c, t1.s * t23.c, t23.s}, {t1.s, -t1.c, 0}, {t1.c * t23.s, t1.s * t23.s, -t23.c}};
    }
};

}  // namespace

int solve_zk6(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool) {
    return SphericalWrist<Zk6>(model, seed, world_T_tool).solve(joint);
}

}  // namespace zk

ZK_API int inverse_kinematics_zk6(const float* seed, float* joint, Matrix world_T_tool) {
    return zk::solve_zk6(robot, seed, joint, world_T_tool);
}
