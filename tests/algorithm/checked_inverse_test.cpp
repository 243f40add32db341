// The checked inverse kinematics of every arm, against KDL.
#include "zk/checked_inverse.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "support/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/algorithm.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/status.h"

namespace zk::test {
namespace {

Joints in_degrees(Joints q) {
    for (float& angle : q) angle = static_cast<float>(angle * (180 / M_PI));
    return q;
}

Joints in_radians(Joints q) {
    for (float& angle : q) angle = static_cast<float>(angle * (M_PI / 180));
    return q;
}

// An arm that hangs at an angle, with a tool, in a work frame. Joints in degrees.
class Cell : public KdlArm {
 public:
    explicit Cell(int model) : KdlArm(arm_of(model, 0)) {
        Algo_Init_Sys_Data(model, 0);
        Algo_Set_Angle(20, -130, 75);
        FrameRec tool{}, work{};
        tool.pose = to_pose(flange_T_tool_);
        work.pose = to_pose(world_T_work_);
        Algo_Set_ToolFrame(&tool);
        Algo_Set_WorkFrame(&work);
    }
    KDL::Frame tool_at(const Joints& degrees) const {
        return world_T_work_.Inverse() * world_T_base_ * forward(in_radians(degrees)) * flange_T_tool_;
    }
    double metres_off(const Joints& degrees, const KDL::Frame& target) const {
        return (tool_at(degrees).p - target.p).Norm();
    }
    void expect_met(const Joints& degrees, const KDL::Frame& target) const {
        EXPECT_LT(metres_off(degrees, target), 1.3e-5) << arm;  // the rounding of the library's own forward included
        EXPECT_LT(angle_between(tool_at(degrees).M, target.M), 1.1e-4) << arm;
        for (int i = 0; i < arm.joints; ++i) {
            EXPECT_GE(degrees[i], static_cast<float>(arm.min[i]) - 1e-4f) << arm << " joint " << i + 1;
            EXPECT_LE(degrees[i], static_cast<float>(arm.max[i]) + 1e-4f) << arm << " joint " << i + 1;
        }
    }

 private:
    const KDL::Frame world_T_base_{KDL::Rotation::RPY(20 * M_PI / 180, -130 * M_PI / 180, 75 * M_PI / 180)};
    const KDL::Frame flange_T_tool_{KDL::Rotation::RPY(0.1, -0.2, 0.3), KDL::Vector(0.02, 0.01, 0.1)};
    const KDL::Frame world_T_work_{KDL::Rotation::RPY(0.4, 0.2, -0.5), KDL::Vector(0.3, -0.2, 0.1)};
};

int checked(const Joints& seed, const KDL::Frame& target, Joints& out) {
    const Pose pose = to_pose(target);
    return ZK_Inverse_Kinematics_Checked(seed.data(), &pose, out.data(), 0);
}
int unchecked(const Joints& seed, const KDL::Frame& target, Joints& out) {
    const Pose pose = to_pose(target);
    return Algo_Inverse_Kinematics(seed.data(), &pose, out.data(), 0);
}

class CheckedInverse : public ::testing::TestWithParam<int> {};

// Half of the postures have a joint aligned, where closed forms lose their digits.
TEST_P(CheckedInverse, MeetsTheTarget) {
    const Cell cell(GetParam());
    std::mt19937 generator(21);
    std::uniform_real_distribution<float> aligned(-0.02f, 0.02f);
    constexpr int kTimes = 1000 / kShare;
    int unsolved = 0, missed = 0, missed_when_aligned = 0;
    for (int i = 0; i < kTimes; ++i) {
        const bool align = i % 2 == 1;
        Joints q = random_joints(cell.arm, generator, 0.95), out{}, plain{};
        if (align) q[cell.arm.joints == 6 ? 4 : std::array{1, 2, 5}[i / 2 % 3]] = aligned(generator);
        const Joints seed = in_degrees(cell.seed_near(q, 0.1, generator));
        const KDL::Frame target = cell.tool_at(in_degrees(q));
        const bool answered = unchecked(seed, target, plain) == 0;
        const double off = answered ? cell.metres_off(plain, target) : 1;
        (align ? missed_when_aligned : missed) += off > 1e-3;
        if (checked(seed, target, out) != 0) {
            ++unsolved;
            continue;
        }
        cell.expect_met(out, target);
        // An answer that meets the target is not changed.
        if (off < 5e-6 && !align) {
            EXPECT_EQ(out, plain);
        }
    }
    EXPECT_LE(unsolved, kTimes / 100 + 1);
    EXPECT_LE(missed, kTimes / 10);
    EXPECT_TRUE(GetParam() != 1 || missed_when_aligned > 0);
}

INSTANTIATE_TEST_SUITE_P(, CheckedInverse, testing::Values(0, 1, 3, 4, 5, 6, 7, 8),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

class CheckedInverse75 : public ::testing::Test {
 protected:
    Cell cell{1};
    const Joints bent = in_degrees({0.3f, 0.7f, -0.5f, 1.1f, 0.4f, 0.8f, 0.2f});
    const KDL::Frame at_bent = cell.tool_at(bent);
    const Joints untouched{1, 2, 3, 4, 5, 6, 7, 8};
};

// The arm angle of the narrow search takes joint 5 beyond its limit; others do not.
TEST_F(CheckedInverse75, LooksFurtherWhereTheNarrowSearchGivesUp) {
    const KDL::Frame target = cell.tool_at(in_degrees({-1.042f, 1.176f, -2.441f, 1.571f, 2.922f, -0.033f, -4.443f}));
    const Joints seed = in_degrees({-1.109f, 1.090f, -2.392f, 1.533f, 3.020f, -0.116f, -4.428f});
    Joints out{};
    EXPECT_EQ(unchecked(seed, target, out), ZK_NO_SOLUTION);
    ASSERT_EQ(checked(seed, target, out), ZK_OK);
    cell.expect_met(out, target);
}

// With a straight elbow there is no arm angle, and the narrow answer is zeros.
TEST_F(CheckedInverse75, ReachesAStraightElbow) {
    Joints q = bent, out{};
    q[3] = 0;
    ASSERT_EQ(checked(bent, cell.tool_at(q), out), ZK_OK);
    cell.expect_met(out, cell.tool_at(q));
}

TEST_F(CheckedInverse75, TakesEitherOrientationOfThePose) {
    for (const uint8_t flag : {0, 1}) {
        Pose pose = to_pose(at_bent);
        flag == 0 ? void(pose.euler = {}) : void(pose.quaternion = {});
        Joints in_place = bent;
        EXPECT_EQ(ZK_Inverse_Kinematics_Checked(in_place.data(), &pose, in_place.data(), flag), ZK_OK);
        cell.expect_met(in_place, at_bent);
    }
}

TEST_F(CheckedInverse75, RefusesBadArgumentsAndTargetsOutOfReach) {
    const Pose pose = to_pose(at_bent);
    Joints out = untouched, beyond = bent;
    beyond[1] = 131;
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(nullptr, &pose, out.data(), 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(bent.data(), nullptr, out.data(), 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(bent.data(), &pose, nullptr, 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(checked(beyond, at_bent, out), ZK_BAD_ARGUMENT);
    EXPECT_EQ(checked(bent, {at_bent.M, at_bent.p + KDL::Vector(1, 1, 1)}, out), ZK_NO_SOLUTION);
    libalgo_set_robot_and_sensor_type(2, 0);
    EXPECT_EQ(checked(bent, at_bent, out), ZK_NO_SOLUTION);
    EXPECT_EQ(out, untouched);
}

}  // namespace
}  // namespace zk::test
