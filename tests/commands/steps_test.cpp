// Steps of a simulated arm: joints, and the tool in the work and the tool frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "support/arm.h"
#include "support/kdl_frames.h"
#include "support/simulated_arm.h"
#include "zk/arm_limits.h"
#include "zk/arm_state.h"
#include "zk/teach.h"

namespace {

using namespace zk::test;
using Joints = std::array<float, 6>;

Joints joints_of(ArmSocket arm) {
    Joints joints{};
    EXPECT_EQ(Get_Joint_Degree(arm, joints.data()), 0);
    return joints;
}

Pose pose_of(ArmSocket arm) {
    float joints[7];
    Pose pose{};
    uint16_t arm_err = 0, sys_err = 0;
    EXPECT_EQ(Get_Current_Arm_State(arm, joints, &pose, &arm_err, &sys_err), 0);
    return pose;
}

bool comes_to(ArmSocket arm, const Joints& target) {
    return eventually([&] {
        const Joints now = joints_of(arm);
        return std::equal(now.begin(), now.end(), target.begin(),
                          [](float a, float b) { return std::abs(a - b) < 0.0011f; });
    });
}

TEST(Steps, MoveByTheirAmount) {
    const SimulatedArm arm;
    Joints joints = joints_of(arm);
    EXPECT_EQ(Joint_Step_Cmd(arm, 3, 50, -7.5f, true), 0);
    joints[2] -= 7.5f;
    EXPECT_TRUE(comes_to(arm, joints));
    EXPECT_EQ(Joint_Step_Cmd(arm, 2, 50, -150, true), 1) << "beyond the limit";

    const KDL::Frame start = to_kdl(pose_of(arm));
    EXPECT_EQ(Pos_Step_Cmd(arm, 1, 50, 0.03f, true), 0);
    const KDL::Frame along = to_kdl(pose_of(arm));
    EXPECT_TRUE(KDL::Equal(along, KDL::Frame(KDL::Vector(0, 0.03, 0)) * start, 2e-3));
    EXPECT_TRUE(KDL::Equal(along.p, start.p + KDL::Vector(0, 0.03, 0), 1e-5));
    EXPECT_EQ(Ort_Step_Cmd(arm, 0, 50, -0.2f, true), 0);
    const KDL::Frame about = to_kdl(pose_of(arm));
    EXPECT_TRUE(KDL::Equal(about, KDL::Frame(KDL::Rotation::RotX(-0.2) * along.M, along.p), 2e-3));

    ASSERT_EQ(Set_Teach_Frame(arm, 1, true), 0);
    EXPECT_EQ(Pos_Step_Cmd(arm, 2, 50, -0.02f, true), 0);
    const KDL::Frame back = about * KDL::Frame(KDL::Vector(0, 0, -0.02));
    EXPECT_TRUE(KDL::Equal(to_kdl(pose_of(arm)), back, 2e-3));
    EXPECT_EQ(Pos_Step_Cmd(arm, 2, 50, 3, true), 1) << "out of reach";
}

}  // namespace
