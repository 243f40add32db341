// The entry of the inverse kinematics: target, seed, choice of the solver; and its helpers.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <utility>

#include "support/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/inverse_kinematics.h"
#include "zk/kinematics.h"

namespace zk::test {
namespace {

TEST(InverseKinematics, HasNoSolverForModelsThatAreNoArm) {
    const float seed[8] = {};
    const Pose pose{};
    float joint[8] = {5};
    for (const int model : {2, 9, 10, 255, -1}) {
        libalgo_set_robot_and_sensor_type(model, 0);
        EXPECT_EQ(inverse_kinematics(seed, &pose, joint, 1), -4) << model;
        EXPECT_EQ(joint[0], 5);
    }
}

TEST(InverseKinematics, LastJointJustPastItsFullTurnCountsAsTheFullTurn) {
    // The pose is almost half a turn from the seed: the two degrees decide which way is shorter.
    ASSERT_EQ(libalgo_init(), 0);
    for (const float sign : {1.0f, -1.0f}) {
        const float q[8] = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, sign * 3.15f};
        const Pose pose = forward_kinematics(q);
        for (const auto& [last, status] :
             {std::pair(6.2831850f, 0), {6.2831860f, 0}, {6.30f, 0}, {6.318f, 0}, {6.32f, -2}}) {
            const float seed[8] = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, sign * last};
            float joint[8];
            EXPECT_EQ(inverse_kinematics(seed, &pose, joint, 0), status) << seed[5];
            EXPECT_NEAR(joint[5], status == 0 ? q[5] : q[5] + sign * 6.2831853f, 1e-4);
        }
    }
    // Joint 7 is the last of the seven-axis arm.
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(1, 0), 0);
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.5f, 6.25f};
    const Pose pose = forward_kinematics(q.data());
    Joints solved[3] = {};
    for (int i = 0; i < 3; ++i) {
        Joints seed = q;
        seed[6] = std::array{6.2831850f, 6.30f, 6.26f}[i];
        EXPECT_EQ(inverse_kinematics(seed.data(), &pose, solved[i].data(), 0), 0);
    }
    EXPECT_EQ(solved[1], solved[0]);
    EXPECT_NE(solved[2], solved[0]);
}

TEST(InverseKinematics, TargetOfAPoseIsInTheWorld) {
    ASSERT_EQ(libalgo_init(), 0);
    const float work[6] = {0.1f, -0.2f, 0.3f, 0.4f, -1.1f, 2.6f};
    libalgo_set_work_cs_params(work);
    const KDL::Frame world_T_work(KDL::Rotation::RPY(0.4, -1.1, 2.6), KDL::Vector(0.1, -0.2, 0.3));
    Pose pose{{0.5f, 0.6f, 0.7f}, {0.5f, -0.5f, 0.5f, 0.5f}, {0.2f, 0.3f, -0.4f}};
    Matrix world_T_tool;
    for (const int flag : {0, 1, 2, 257}) {
        calc_Tbase2tool_from_Pose(&world_T_tool, &pose, flag);
        const KDL::Rotation turn = flag == 1 ? to_kdl(pose.euler) : to_kdl(pose.quaternion);
        expect_near(to_kdl(world_T_tool), world_T_work * KDL::Frame(turn, to_kdl(pose.position)), 1e-6);
        EXPECT_EQ(world_T_tool.m[3][3], 1);
    }
}

// Squares of such coordinates overflow in single precision.
TEST(InverseKinematics, FiniteTargetFarAwayIsOutOfReach) {
    for (const int model : {0, 3, 4, 5, 6, 7, 8}) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(model, 0), 0);
        for (float far = 10; far < 2e38f; far *= 10) {
            for (const Position p : {Position{far, 0, 0.3f}, {0, -far, 0.3f}, {far, far, 0.3f}, {0.1f, 0.1f, far}}) {
                const Pose pose{p, {}, {0.1f, 0.2f, 0.3f}};
                const Joints seed{};
                Joints solved;
                EXPECT_EQ(inverse_kinematics(seed.data(), &pose, solved.data(), 1), -1)
                    << "model " << model << " at " << p.x << ' ' << p.y << ' ' << p.z;
            }
        }
    }
}

TEST(OverspeedJudgment, NamesTheFirstJointThatOnePeriodDoesNotAllow) {
    ASSERT_EQ(libalgo_init(), 0);
    libalgo_set_control_loop_period(0.01f);
    // The steps that 180 degrees per second allow joints 1 and 2, and 225 the others.
    const float slow = 0.0314f, fast = 0.0392f;
    const struct {
        float to[7];
        float scale;
        int expected;
    } cases[] = {
        {{slow, -slow, fast, -fast, fast, fast, 9}, 1, 0},
        {{0, slow + 0.0003f, 9, 0, 0, 0, 0}, 1, 2},
        {{0, 0, 0, 0, 0, -fast - 0.0003f, 0}, 1, 6},
        {{0, 0, slow / 2 + 0.001f, fast / 2 + 0.001f, 0, 0, 0}, 0.5f, 4},
        {{0, 0, 0, 0, 0, 0, 9}, 0, 0},
        {{0, 0, 1e-6f, 0, 0, 0, 0}, -2, 3},
        {{NAN, NAN, 0, 0, 9, 0, 0}, 1, 5},
    };
    const float from[7] = {};
    for (const auto& c : cases) {
        EXPECT_EQ(joint_overspeed_judgment(from, c.to, c.scale), c.expected) << c.expected;
    }
    libalgo_set_robot_and_sensor_type(2, 0);
    EXPECT_EQ(joint_overspeed_judgment(from, cases[1].to, 1), 0);
}

TEST(SolutionRange, SetsTheStrategyAndIsSetByIt) {
    EXPECT_EQ(theta_v, 0.013f);
    EXPECT_EQ(global_is_movl, 1);
    for (const auto& [range, strategy] : {std::pair(1.0f, 1), {1.0001f, 0}, {3.14f, 0}, {0.5f, 1}, {NAN, 1}}) {
        EXPECT_EQ(ikine_set_solution_range_zk75(range), strategy);
        EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), strategy);
        EXPECT_TRUE(std::isnan(range) || ikine_get_solution_range_zk75() == range);
    }
    for (const auto& [strategy, range] : {std::pair(1, 0.013f), {0, 3.14f}, {1, 0.013f}, {7, 3.14f}}) {
        ikine_set_7dof_solver_search_strategy(strategy);
        EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), strategy);
        EXPECT_EQ(ikine_get_solution_range_zk75(), range);
        libalgo_init();
        EXPECT_EQ(theta_v, range);
    }
    ikine_set_7dof_solver_search_strategy(1);
}

}  // namespace
}  // namespace zk::test
