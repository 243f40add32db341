#include <gtest/gtest.h>

#include "support/kdl_frames.h"
#include "zk/kinematics.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/pose.h"

namespace {

using zk::test::expect_near;
using zk::test::expect_pose_near;
using zk::test::to_kdl;

constexpr float kDegree = 0.017453292f;
constexpr double kTolerance = 2e-5;
const float kDegrees[] = {10, 20, -70, 30, -60, 45};

// An arm with a tool and a work frame set, at a posture away from any singularity.
class ArmPose : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(0, 0), 0);
        const float tool[] = {0.02f, -0.01f, 0.15f, 0.2f, -0.3f, 0.4f};
        const float work[] = {0.3f, 0.1f, -0.2f, 0.5f, 0.1f, -0.7f};
        libalgo_set_tool_cs_params(tool);
        libalgo_set_work_cs_params(work);
        flange_T_tool_ = frame(tool);
        base_T_work_ = frame(work);
        for (int i = 0; i < 6; ++i) radians_[i] = kDegrees[i] * kDegree;
    }

    static KDL::Frame frame(const float* f) {
        return {KDL::Rotation::RPY(f[3], f[4], f[5]), KDL::Vector(f[0], f[1], f[2])};
    }

    KDL::Frame flange_T_tool_, base_T_work_;
    float radians_[8] = {};
};

TEST_F(ArmPose, StepAttitudeTurnsInPlaceAboutTheWorkFrameOrTheEnd) {
    const KDL::Frame at = to_kdl(forward_kinematics(radians_));
    const KDL::Rotation work = base_T_work_.M;
    const KDL::Rotation about_work[] = {KDL::Rotation::Rot(work.UnitX(), 0.3), KDL::Rotation::Rot(work.UnitY(), 0.3),
                                        KDL::Rotation::Rot(work.UnitZ(), 0.3)};
    const KDL::Rotation about_end[] = {KDL::Rotation::RotX(0.3), KDL::Rotation::RotY(0.3), KDL::Rotation::RotZ(0.3)};
    for (int i = 0; i < 3; ++i) {
        expect_pose_near(step_attitude(radians_, 0, 3 + i, 0.3f), {about_work[i] * at.M, at.p}, kTolerance);
        for (int frame : {1, 7, -1}) {
            expect_pose_near(step_attitude(radians_, frame, 3 + i, 0.3f), {at.M * about_end[i], at.p}, kTolerance);
        }
    }
    expect_pose_near(step_attitude(radians_, 1, 2, 0.3f), at, kTolerance);  // no axis: no turn
}

TEST_F(ArmPose, RotateMoveTakesDegreesAndAFrameOfTheCallers) {
    const KDL::Frame at = to_kdl(forward_kinematics(radians_));
    const Pose frame{{9, 9, 9}, {}, {0.4f, -0.2f, 1.2f}};
    const KDL::Rotation F = to_kdl(frame.euler);
    const KDL::Vector axes[] = {F.UnitX(), F.UnitY(), F.UnitZ()};
    for (int i = 0; i < 3; ++i) {
        expect_pose_near(algo_rotate_move(kDegrees, 1 + i, -25, frame),
                         {KDL::Rotation::Rot(axes[i], -25 * M_PI / 180) * at.M, at.p}, kTolerance);
    }
    for (int axis : {0, 4}) expect_pose_near(algo_rotate_move(kDegrees, axis, 25, frame), at, kTolerance);
    expect_pose_near(algo_rotate_move(kDegrees, 1, 0, frame), at, kTolerance);
}

TEST_F(ArmPose, CartesianToolMovesAlongTheToolsAxesInTheWorkFrame) {
    const KDL::Frame base_T_tool = to_kdl(forward_kinematics_e(radians_)) * flange_T_tool_;
    const KDL::Frame work_T_base = base_T_work_.Inverse();
    expect_pose_near(algo_cartesian_tool(kDegrees, 0, 0, 0), work_T_base * base_T_tool, kTolerance);
    expect_pose_near(algo_cartesian_tool(kDegrees, 0.05f, -0.1f, 0.2f),
                     work_T_base * base_T_tool * KDL::Frame(KDL::Vector(0.05, -0.1, 0.2)), kTolerance);
}

TEST_F(ArmPose, CartesianToolLeavesTheMountingOut) {
    const Pose before = algo_cartesian_tool(kDegrees, 0.1f, 0, 0);
    const float mounting[] = {0, 0.8f, 0.3f};
    libalgo_set_robot_install_angle(mounting);
    expect_pose_near(algo_cartesian_tool(kDegrees, 0.1f, 0, 0), to_kdl(before), 1e-9);
}

// With no arm selected no joint angle is read: the pointer may be as short as the arm.
TEST(ArmPoseWithoutAnArm, ReadsNoJoint) {
    libalgo_set_robot_and_sensor_type(2, 0);
    ASSERT_LE(libalgo_get_rbt_dof(), 0);
    const float zeros[8] = {};
    EXPECT_NEAR(algo_rotate_move(nullptr, 1, 0, {}).position.x, forward_kinematics(zeros).position.x, 1e-9);
}

}  // namespace
