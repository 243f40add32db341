// Inverse kinematics of the 72.
#include <gtest/gtest.h>

#include "kinematics/seven_axis_arm.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/seven_axis.h"

namespace zk::test {
namespace {

int solve(const Joints& seed, const KDL::Frame& target, Joints& out) {
    return inverse_kinematics_tau7(seed.data(), out.data(), to_mat(target));
}

class Tau7 : public ::testing::Test {
 protected:
    Tau7() {
        libalgo_set_robot_and_sensor_type(7, 0);
        ikine_set_solution_range_zk75(0.013f);
    }
    ~Tau7() override { ikine_set_solution_range_zk75(0.013f); }

    void set_limits_about(const Joints& q, float room) {
        float min[8] = {}, max[8] = {};
        for (int i = 0; i < 7; ++i) {
            min[i] = q[i] - room;
            max[i] = q[i] + room;
        }
        libalgo_set_jointlim_min(min);
        libalgo_set_jointlim_max(max);
    }

    SevenAxisArm arm{7};
    const Solver solver{solve};
    const Joints bent{0.3f, 0.7f, -0.5f, -1.1f, 0.4f, 0.8f, 0.2f};
};

TEST_F(Tau7, FindsPosturesNearTheSeed) {
    const Solved solved = solve_at_random(arm, 10000 / kShare, 0.005, solver);
    EXPECT_LT(solved.singular, 0.05 * 10000 / kShare);
    EXPECT_EQ(solved.unsolved, 0);
    EXPECT_LT(solved.farthest, 2e-3);  // the pull to mid-range
}

// What the arm with a closed form does: a target anywhere, from a seed anywhere.
TEST_F(Tau7, FindsPosturesFarFromTheSeed) {
    for (const float range : {0.013f, 3.14f}) {
        ikine_set_solution_range_zk75(range);
        std::mt19937 generator(5);
        const int times = 1000 / kShare;
        int unsolved = 0;
        for (int i = 0; i < times; ++i) {
            const KDL::Frame target = arm.forward(random_joints(arm.arm, generator, 0.95));
            Joints out{};
            if (solve(random_joints(arm.arm, generator), target, out) != 0) {
                ++unsolved;
            } else {
                expect_reached(arm, out, target);
                expect_within_limits(arm, out);
            }
        }
        EXPECT_LE(unsolved, range > 1 ? 0 : 1 + times / 500) << range;
    }
}

TEST_F(Tau7, PullsToMidRangeWithoutMovingTheFlange) {
    Vector7 pull;
    for (int i = 0; i < 7; ++i) {
        const double range = static_cast<double>(arm.upper(i)) - arm.lower(i);
        pull[i] = -(bent[i] - (static_cast<double>(arm.upper(i)) + arm.lower(i)) / 2) / 70 / (range * range);
    }
    const Matrix67 J = arm.jacobian(bent);
    const Vector7 expected = pull - J.transpose() * (J * J.transpose()).ldlt().solve(J * pull);
    EXPECT_GT(expected.norm(), 5e-5);
    Joints out{};
    ASSERT_EQ(solve(bent, arm.forward(bent), out), 0);
    for (int i = 0; i < 7; ++i) EXPECT_NEAR(static_cast<double>(out[i]) - bent[i], expected[i], 2e-6) << i;
}

TEST_F(Tau7, JointsAtTheirLimitsStayAndTheOthersMakeUp) {
    std::mt19937 generator(9);
    for (int i = 0; i < 200; ++i) {
        Joints q = random_joints(arm.arm, generator, 0.8), out{};
        q[i % 7] = i % 2 == 0 ? arm.lower(i % 7) : arm.upper(i % 7);
        if (arm.smallest_free_singular_value(q, q) < 0.02) continue;
        const Joints seed = arm.seed_near(q, 0.05, generator);
        const KDL::Frame target = arm.forward(q);
        ASSERT_EQ(solve(seed, target, out), 0) << i;
        expect_reached(arm, out, target);
        expect_within_limits(arm, out);
    }
}

TEST_F(Tau7, StatusSeparatesLimitsFromReach) {
    const Joints untouched{1, 2, 3, 4, 5, 6, 7};
    Joints out = untouched, away = bent;
    for (float& joint : away) joint += 0.2f;
    const KDL::Frame target = arm.forward(away);
    EXPECT_EQ(solve(bent, target, out), 0);

    set_limits_about(bent, 0.05f);
    out = untouched;
    EXPECT_EQ(solve(bent, target, out), -2);
    KDL::Frame far = target;
    far.p = far.p * 3;
    EXPECT_EQ(solve(bent, far, out), -1);
    KDL::Frame undefined = target;
    undefined.p.x(NAN);
    EXPECT_EQ(solve(bent, undefined, out), -1);
    EXPECT_EQ(out, untouched);
}

TEST_F(Tau7, ASeedBeyondTheLimitsCountsAsStandingThere) {
    Joints seed = bent, out{};
    seed[3] = 2;
    ASSERT_EQ(solve(seed, arm.forward(bent), out), 0);
    expect_reached(arm, out, arm.forward(bent));
    expect_within_limits(arm, out);
}

TEST_F(Tau7, JacobianAndPoseAreThoseOfTheFlangeInItsOwnFrame) {
    std::mt19937 generator(13);
    for (int i = 0; i < 100; ++i) {
        const Joints q = random_joints(arm.arm, generator);
        Mat J, T;
        ikine_jacobe_and_pose_tau72(q.data(), &J, &T);
        ASSERT_EQ(J.rows, 6);
        ASSERT_EQ(J.cols, 7);
        const KDL::Frame pose = arm.forward(q);
        expect_near(to_kdl(mat_to_matrix(T)), pose, 1e-6);
        const Matrix67 in_base = arm.jacobian(q);
        for (int j = 0; j < 7; ++j) {
            const KDL::Vector velocity(in_base(0, j), in_base(1, j), in_base(2, j));
            const KDL::Vector turning(in_base(3, j), in_base(4, j), in_base(5, j));
            const KDL::Twist in_flange = pose.M.Inverse() * KDL::Twist(velocity, turning);
            for (int k = 0; k < 6; ++k) EXPECT_NEAR(J.m[k][j], in_flange(k), 1e-6) << k << j;
        }
    }
}

}  // namespace
}  // namespace zk::test
