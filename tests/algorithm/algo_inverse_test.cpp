// The inverse kinematics in degrees: refusals, results and the search mode.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "zk/algorithm.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/numeric.h"

namespace zk::test {
namespace {

constexpr int kSolved = 0, kBadArgument = 19, kNoSolution = 21;

class Inverse : public testing::Test {
 protected:
    Inverse() { select(0); }

    void select(int model) {
        Algo_Init_Sys_Data(model, 0);
        pose_ = Algo_Forward_Kinematics(joints_);
        far_ = pose_;
        far_.position.x = 5;
    }
    int solve(const Pose& pose, int flag = 1) { return Algo_Inverse_Kinematics(seed_, &pose, solved_, flag); }
    int judged(const float* seed, const Pose& pose, int flag = 1) {
        return invoke_inverse_kinematics_with_judgment_overspeed(seed, &pose, solved_, flag);
    }
    void expect_solved(int count = 6) {
        for (int i = 0; i < count; ++i) EXPECT_NEAR(solved_[i], joints_[i], 0.003) << i;
    }

    const float joints_[7] = {10, -20, 50, 40, 60, -30, 20}, seed_[7] = {12, -22, 52, 38, 62, -28, 18};
    Pose pose_, far_;
    float solved_[7] = {};
};

TEST_F(Inverse, SolvesInDegreesForQuaternionOrEulerAngles) {
    for (const int flag : {0, 1}) {
        Pose pose = pose_;
        flag == 0 ? void(pose.euler = {9, 9, 9}) : void(pose.quaternion = {});
        solved_[6] = 77;
        ASSERT_EQ(solve(pose, flag), kSolved);
        expect_solved();
        EXPECT_EQ(solved_[6], 77);

        InverseKinematicsCall call = {seed_, &pose, {}, flag};
        ASSERT_EQ(Algo_Inverse_Kinematics_Wrap(&call), kSolved);
        EXPECT_EQ(std::memcmp(call.joint, solved_, 6 * sizeof *solved_), 0);
    }
}

TEST_F(Inverse, RefusesMissingArgumentsAndASeedOutsideTheLimits) {
    EXPECT_EQ(Algo_Inverse_Kinematics(nullptr, &pose_, solved_, 1), kBadArgument);
    EXPECT_EQ(Algo_Inverse_Kinematics(seed_, nullptr, solved_, 1), kBadArgument);
    EXPECT_EQ(Algo_Inverse_Kinematics_Wrap(nullptr), kBadArgument);
    const float beyond[7] = {0, 0, 0, 0, 0, 361};
    EXPECT_EQ(Algo_Inverse_Kinematics(beyond, &pose_, solved_, 1), kBadArgument);
}

TEST_F(Inverse, RefusesAQuaternionThatIsNotOfUnitLength) {
    const struct {
        float squared_norm;
        int with_quaternion;
    } cases[] = {{0, kBadArgument},  {0.9899f, kBadArgument}, {0.9901f, kSolved},
                 {1.0099f, kSolved}, {1.0101f, kBadArgument}, {INFINITY, kBadArgument}};
    for (const auto& c : cases) {
        Pose pose = pose_;
        const float factor = std::sqrt(c.squared_norm);
        for (float* q = &pose.quaternion.w; q <= &pose.quaternion.z; ++q) *q *= factor;
        EXPECT_EQ(solve(pose, 0), c.with_quaternion) << c.squared_norm;
        EXPECT_EQ(solve(pose, 1), kSolved) << c.squared_norm;
    }
}

TEST_F(Inverse, TargetThatIsNotFiniteHasNoSolution) {
    select(1);
    for (const int flag : {0, 1}) {
        for (const float value : {NAN, INFINITY}) {
            for (int i = 0; i < 6; ++i) {
                Pose pose = pose_;
                float* orientation = flag == 0 ? &pose.quaternion.x : &pose.euler.rx;
                (i < 3 ? &pose.position.x : orientation)[i % 3] = value;
                const bool norm_refused = flag == 0 && i >= 3 && std::isinf(value);
                EXPECT_EQ(solve(pose, flag), norm_refused ? kBadArgument : kNoSolution) << flag << " field " << i;
            }
        }
        Pose pose = pose_;
        (flag == 0 ? pose.euler.rx : pose.quaternion.x) = NAN;  // not part of the target
        EXPECT_EQ(solve(pose, flag), kSolved);
    }
}

// Without a candidate the sweep does not write its output: zeros there are no answer.
TEST_F(Inverse, WideSearchWritesTheJointsOnlyOnSuccess) {
    select(1);
    Algo_Set_Redundant_Parameter_Traversal_Mode(true);
    EXPECT_EQ(solve(pose_), kSolved);
    EXPECT_NEAR(Algo_Forward_Kinematics(solved_).position.x, pose_.position.x, 1e-5);

    float limits[7] = {178, 130, 178, 5, 178, 128, 360};  // the elbow cannot bend as far as the target asks
    Algo_Set_Joint_Max_Limit(limits);
    for (float& limit : limits) limit = -limit;
    Algo_Set_Joint_Min_Limit(limits);
    const float seed[7] = {}, nearly_straight[7] = {10, 20, 30, 4, 40, 50, 60};
    const Pose within_limits = Algo_Forward_Kinematics(nearly_straight);
    for (const float before : {0.0f, 1.0f}) {
        EXPECT_EQ(Algo_Inverse_Kinematics(nearly_straight, &within_limits, solved_, 1), kSolved);
        std::fill_n(solved_, 7, before);
        EXPECT_EQ(Algo_Inverse_Kinematics(seed, &pose_, solved_, 1), kNoSolution);
        EXPECT_EQ(std::count(solved_, solved_ + 7, before), 7);
    }
}

TEST(CompletePose, FillsTheQuaternionFromTheEulerAngles) {
    EXPECT_EQ(ZK_Complete_Pose(nullptr), kBadArgument);
    const Euler e{0.3f, -0.4f, 0.5f};
    const Pose whole{{1, 2, 3}, euler_to_quat(e), e};
    Pose pose{{1, 2, 3}, {9, 9, 9, 9}, e};
    EXPECT_EQ(ZK_Complete_Pose(&pose), kSolved);
    EXPECT_EQ(std::memcmp(&pose, &whole, sizeof pose), 0);
}

TEST_F(Inverse, ReportsEveryFailureOfTheSolverAs21) {
    EXPECT_EQ(invoke_inverse_kinematics(seed_, &far_, solved_, 1), -1);
    EXPECT_NEAR(solved_[1], -M_PI_2, 1e-6);  // not converted
    EXPECT_EQ(solve(far_), kNoSolution);
    Algo_Init_Sys_Data(9, 0);
    EXPECT_EQ(invoke_inverse_kinematics(seed_, &pose_, solved_, 1), -4);
    EXPECT_EQ(solve(pose_), kNoSolution);
}

TEST_F(Inverse, FollowsTheSeedUntilASearchModeIsChosen) {
    ASSERT_EQ(defaut_traversal_mode, 1);
    ikine_set_solution_range_zk75(3.14f);
    solve(pose_);
    EXPECT_EQ(theta_v, 0.013f);
    EXPECT_EQ(global_is_movl, 1);

    for (const bool whole : {true, false, true}) {
        Algo_Set_Redundant_Parameter_Traversal_Mode(whole);
        EXPECT_EQ(defaut_traversal_mode, 0);
        solve(pose_);
        EXPECT_EQ(theta_v, whole ? 3.14f : 0.013f);
        EXPECT_EQ(global_is_movl, whole ? 0 : 1);
    }
}

TEST_F(Inverse, JudgesTheSpeedFromTheSeed) {
    const float from[7] = {}, joint_4_fast[7] = {0.3f, 0, 0, 0.5f, 9, 0, 0};
    EXPECT_EQ(invoke_joint_overspeed_judgment(from, joint_4_fast, 1), 4);
    EXPECT_EQ(invoke_joint_overspeed_judgment(from, joint_4_fast, 2), 5);

    libalgo_set_control_loop_period(1);
    EXPECT_EQ(judged(seed_, pose_), 0);
    expect_solved();
    libalgo_set_control_loop_period(0.002f);  // allows a third of a degree
    EXPECT_EQ(judged(seed_, pose_), 1);
    EXPECT_EQ(judged(joints_, pose_, 0), 0);
    EXPECT_EQ(judged(seed_, far_), -1);
}

TEST_F(Inverse, RecordsTheFastestAndTheSlowestSolution) {
    invoke_inverse_time_total_min = 10000.0;
    invoke_inverse_time_total_max = 0;
    judged(seed_, pose_);
    EXPECT_LT(invoke_inverse_time_total_min, 10000.0);
    EXPECT_EQ(invoke_inverse_time_total_max, 0);  // a new fastest is never also the slowest
    invoke_inverse_time_total_min = -1e9;
    invoke_inverse_time_total_max = -1e9;
    judged(seed_, pose_);
    EXPECT_EQ(invoke_inverse_time_total_min, -1e9);
    EXPECT_GT(invoke_inverse_time_total_max, -1e9);
}

TEST_F(Inverse, JudgedSolutionsOfTheSevenAxisArmFollowTheSeed) {
    select(1);
    ikine_set_solution_range_zk75(3.14f);
    libalgo_set_control_loop_period(1);
    EXPECT_EQ(judged(joints_, pose_), 0);
    EXPECT_EQ(theta_v, 0.013f);
    expect_solved(7);
}

}  // namespace
}  // namespace zk::test
