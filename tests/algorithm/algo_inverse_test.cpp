// The inverse kinematics in degrees: what is refused before solving, what comes out, and the setting of the search.
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
    void SetUp() override { Algo_Init_Sys_Data(0, 0); }

    const float joints_[7] = {10, -20, 50, 40, 60, -30, 20}, seed_[7] = {12, -22, 52, 38, 62, -28, 18};
    const Pose pose_ = [this] {
        Algo_Init_Sys_Data(0, 0);
        return Algo_Forward_Kinematics(joints_);
    }();

    void expect_joints(const float* actual, int count = 6) {
        for (int i = 0; i < count; ++i) EXPECT_NEAR(actual[i], joints_[i], 0.003) << i;
    }
};

TEST_F(Inverse, SolvesInDegreesForQuaternionOrEulerAngles) {
    for (const int flag : {0, 1}) {
        Pose pose = pose_;
        flag == 0 ? void(pose.euler = {9, 9, 9}) : void(pose.quaternion = {});
        float joint[7] = {};
        joint[6] = 77;
        ASSERT_EQ(Algo_Inverse_Kinematics(seed_, &pose, joint, flag), kSolved);
        expect_joints(joint);
        EXPECT_EQ(joint[6], 77);

        InverseKinematicsCall call = {seed_, &pose, {}, flag};
        ASSERT_EQ(Algo_Inverse_Kinematics_Wrap(&call), kSolved);
        EXPECT_EQ(std::memcmp(call.joint, joint, 6 * sizeof *joint), 0);
    }
}

TEST_F(Inverse, RefusesWhatIsMissing) {
    float joint[7];
    EXPECT_EQ(Algo_Inverse_Kinematics(nullptr, &pose_, joint, 1), kBadArgument);
    EXPECT_EQ(Algo_Inverse_Kinematics(seed_, nullptr, joint, 1), kBadArgument);
    InverseKinematicsCall call = {seed_, nullptr, {}, 1};
    EXPECT_EQ(Algo_Inverse_Kinematics_Wrap(&call), kBadArgument);
    EXPECT_EQ(Algo_Inverse_Kinematics_Wrap(nullptr), kBadArgument);
}

TEST_F(Inverse, WantsAUnitQuaternionWhereItIsTheOrientation) {
    const struct {
        float squared_norm;
        int with_quaternion;
    } cases[] = {{0, kBadArgument},  {0.9899f, kBadArgument}, {0.9901f, kSolved},
                 {1.0099f, kSolved}, {1.0101f, kBadArgument}, {INFINITY, kBadArgument}};
    for (const auto& c : cases) {
        Pose pose = pose_;
        const float factor = std::sqrt(c.squared_norm);
        for (float* q = &pose.quaternion.w; q <= &pose.quaternion.z; ++q) *q *= factor;
        float joint[7];
        EXPECT_EQ(Algo_Inverse_Kinematics(seed_, &pose, joint, 0), c.with_quaternion) << c.squared_norm;
        EXPECT_EQ(Algo_Inverse_Kinematics(seed_, &pose, joint, 1), kSolved) << c.squared_norm;
    }
    Pose pose = pose_;
    pose.quaternion.x = NAN;  // no number fails a comparison, so this is left to the solver
    float joint[7];
    EXPECT_EQ(Algo_Inverse_Kinematics(seed_, &pose, joint, 0), kNoSolution);
}

TEST_F(Inverse, TargetThatIsNotFiniteHasNoSolution) {
    for (const int model : {0, 1, 7}) {
        Algo_Init_Sys_Data(model, 0);
        const Pose reached = Algo_Forward_Kinematics(joints_);
        for (const int flag : {0, 1}) {
            for (const float value : {NAN, INFINITY}) {
                for (int i = 0; i < 6; ++i) {
                    Pose pose = reached;
                    float* orientation = flag == 0 ? &pose.quaternion.x : &pose.euler.rx;
                    (i < 3 ? &pose.position.x : orientation)[i % 3] = value;
                    const bool refused_norm = flag == 0 && i >= 3 && std::isinf(value);
                    float joint[7];
                    EXPECT_EQ(Algo_Inverse_Kinematics(joints_, &pose, joint, flag),
                              refused_norm ? kBadArgument : kNoSolution)
                        << "model " << model << " flag " << flag << " field " << i;
                }
            }
            Pose pose = reached;
            (flag == 0 ? pose.euler.rx : pose.quaternion.x) = NAN;  // not part of the target
            float joint[7];
            EXPECT_EQ(Algo_Inverse_Kinematics(joints_, &pose, joint, flag), kSolved);
        }
    }
}

// Without a candidate the sweep leaves its output as it was; zeros there are not an answer.
TEST_F(Inverse, WideSearchWritesTheJointsOnlyOnSuccess) {
    Algo_Init_Sys_Data(1, 0);
    const Pose reached = Algo_Forward_Kinematics(joints_);
    float limits[7] = {178, 130, 178, 5, 178, 128, 360};  // the elbow cannot bend as far as the target asks
    Algo_Set_Joint_Max_Limit(limits);
    for (float& limit : limits) limit = -limit;
    Algo_Set_Joint_Min_Limit(limits);
    Algo_Set_Redundant_Parameter_Traversal_Mode(true);
    const float seed[7] = {};
    for (const float before : {0.0f, 1.0f}) {
        float joint[7];
        std::fill_n(joint, 7, before);
        EXPECT_EQ(Algo_Inverse_Kinematics(seed, &reached, joint, 1), kNoSolution);
        EXPECT_EQ(std::count(joint, joint + 7, before), 7);
    }
    Algo_Init_Sys_Data(1, 0);
    float joint[7];
    EXPECT_EQ(Algo_Inverse_Kinematics(seed_, &reached, joint, 1), kSolved);
    EXPECT_NEAR(Algo_Forward_Kinematics(joint).position.x, reached.position.x, 1e-5);
    Algo_Set_Redundant_Parameter_Traversal_Mode(false);
    defaut_traversal_mode = 1;
}

TEST(CompletePose, FillsTheQuaternionFromTheEulerAngles) {
    EXPECT_EQ(ZK_Complete_Pose(nullptr), kBadArgument);
    const Euler angles[] = {{}, {0.3f, -0.4f, 0.5f}, {3.1f, 1.5707964f, -3.1f}};
    for (const Euler& e : angles) {
        Pose pose{{1, 2, 3}, {9, 9, 9, 9}, e};
        EXPECT_EQ(ZK_Complete_Pose(&pose), kSolved);
        const Quat expected = euler_to_quat(e);
        const Pose whole{{1, 2, 3}, expected, e};
        EXPECT_EQ(std::memcmp(&pose, &whole, sizeof pose), 0);
    }
}

TEST_F(Inverse, RefusesASeedOutsideTheLimits) {
    float joint[7];
    for (int i = 0; i < 6; ++i) {
        float seed[7];
        std::memcpy(seed, seed_, sizeof seed);
        seed[i] = static_cast<float>(robot.joint_config[i].pos_max * 180 / M_PI + 1);
        EXPECT_EQ(Algo_Inverse_Kinematics(seed, &pose_, joint, 1), kBadArgument) << i;
        seed[i] = -seed[i];
        EXPECT_EQ(Algo_Inverse_Kinematics(seed, &pose_, joint, 1), kBadArgument) << i;
    }
}

TEST_F(Inverse, FoldsEveryFailureOfTheSolver) {
    float joint[7];
    Pose far = pose_;
    far.position.x = 5;
    EXPECT_EQ(invoke_inverse_kinematics(seed_, &far, joint, 1), -1);
    EXPECT_NEAR(joint[1], -M_PI_2, 1e-6);  // not converted
    EXPECT_EQ(Algo_Inverse_Kinematics(seed_, &far, joint, 1), kNoSolution);
    Algo_Init_Sys_Data(9, 0);
    EXPECT_EQ(invoke_inverse_kinematics(seed_, &pose_, joint, 1), -4);
    EXPECT_EQ(Algo_Inverse_Kinematics(seed_, &pose_, joint, 1), kNoSolution);
}

TEST_F(Inverse, FollowsTheSeedUntilASearchModeIsChosen) {
    float joint[7];
    ASSERT_EQ(defaut_traversal_mode, 1);
    ikine_set_solution_range_zk75(3.14f);
    Algo_Inverse_Kinematics(seed_, &pose_, joint, 1);
    EXPECT_EQ(theta_v, 0.013f);
    EXPECT_EQ(global_is_movl, 1);

    for (const bool whole : {true, false, true}) {
        Algo_Set_Redundant_Parameter_Traversal_Mode(whole);
        EXPECT_EQ(defaut_traversal_mode, 0);
        EXPECT_EQ(theta_v, whole ? 3.14f : 0.013f);
        EXPECT_EQ(global_is_movl, whole ? 0 : 1);
        const float range = theta_v;
        Algo_Init_Sys_Data(0, 0);
        Algo_Inverse_Kinematics(seed_, &pose_, joint, 1);
        EXPECT_EQ(theta_v, range);
    }
    defaut_traversal_mode = 1;
}

TEST_F(Inverse, JudgesTheWayFromTheSeed) {
    const float from[7] = {}, joint_4_fast[7] = {0.3f, 0, 0, 0.5f, 9, 0, 0};
    EXPECT_EQ(invoke_joint_overspeed_judgment(from, joint_4_fast, 1), 4);
    EXPECT_EQ(invoke_joint_overspeed_judgment(from, joint_4_fast, 2), 5);

    float joint[7];
    libalgo_set_control_loop_period(1);
    EXPECT_EQ(invoke_inverse_kinematics_with_judgment_overspeed(seed_, &pose_, joint, 1), 0);
    expect_joints(joint);
    libalgo_set_control_loop_period(0.002f);  // allows a third of a degree
    EXPECT_EQ(invoke_inverse_kinematics_with_judgment_overspeed(seed_, &pose_, joint, 1), 1);
    EXPECT_EQ(invoke_inverse_kinematics_with_judgment_overspeed(joints_, &pose_, joint, 0), 0);
    expect_joints(joint);
    Pose far = pose_;
    far.position.x = 5;
    EXPECT_EQ(invoke_inverse_kinematics_with_judgment_overspeed(seed_, &far, joint, 1), -1);
}

TEST_F(Inverse, KeepsAccountOfTheTimeOfJudgedSolutions) {
    invoke_inverse_time_total_min = 10000.0;
    invoke_inverse_time_total_max = 0;
    float joint[7];
    const auto solve = [&] { invoke_inverse_kinematics_with_judgment_overspeed(seed_, &pose_, joint, 1); };
    solve();
    EXPECT_LT(invoke_inverse_time_total_min, 10000.0);
    EXPECT_EQ(invoke_inverse_time_total_max, 0);  // a new fastest is never also the slowest
    invoke_inverse_time_total_min = -1e9;
    invoke_inverse_time_total_max = -1e9;
    solve();
    EXPECT_EQ(invoke_inverse_time_total_min, -1e9);
    EXPECT_GT(invoke_inverse_time_total_max, -1e9);
}

TEST_F(Inverse, JudgedSolutionsOfTheSevenAxisArmFollowTheSeed) {
    Algo_Init_Sys_Data(1, 0);
    const Pose pose = Algo_Forward_Kinematics(joints_);
    ikine_set_solution_range_zk75(3.14f);
    float joint[7];
    libalgo_set_control_loop_period(1);
    EXPECT_EQ(invoke_inverse_kinematics_with_judgment_overspeed(joints_, &pose, joint, 1), 0);
    EXPECT_EQ(theta_v, 0.013f);
    expect_joints(joint, 7);
}

}  // namespace
}  // namespace zk::test
