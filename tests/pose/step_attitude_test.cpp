#include <gtest/gtest.h>

#include <array>

#include "support/kdl_frames.h"
#include "zk/kinematics.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/pose.h"

namespace zk::test {
namespace {

constexpr float kDegree = 0.017453292f;
constexpr double kTolerance = 2e-5;
const float kDegrees[] = {10, 20, -70, 30, -60, 45};

// An arm with a tool and a work frame set, at a posture away from any singularity.
class ArmPose : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(0, 0), 0);
        const Pose tool{{0.02f, -0.01f, 0.15f}, {}, {0.2f, -0.3f, 0.4f}},
            work{{0.3f, 0.1f, -0.2f}, {}, {0.5f, 0.1f, -0.7f}};
        const auto params = [](const Pose& p) {
            return std::array{p.position.x, p.position.y, p.position.z, p.euler.rx, p.euler.ry, p.euler.rz};
        };
        libalgo_set_tool_cs_params(params(tool).data());
        libalgo_set_work_cs_params(params(work).data());
        flange_T_tool_ = to_kdl(tool);
        base_T_work_ = to_kdl(work);
        for (int i = 0; i < 6; ++i) radians_[i] = kDegrees[i] * kDegree;
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
        expect_pose_near(step_attitude(radians_, 7, 3 + i, 0.3f), {at.M * about_end[i], at.p}, kTolerance);
    }
    expect_pose_near(step_attitude(radians_, 1, 2, 0.3f), at, kTolerance);  // no axis: no turn
}

TEST_F(ArmPose, RotateMoveTurnsAboutTheCallersFrame) {
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

TEST_F(ArmPose, CartesianToolIgnoresTheMounting) {
    const float mounting[] = {0, 0.8f, 0.3f};
    libalgo_set_robot_install_angle(mounting);
    const KDL::Frame base_T_tool = to_kdl(forward_kinematics_e(radians_)) * flange_T_tool_;
    expect_pose_near(algo_cartesian_tool(kDegrees, 0.05f, -0.1f, 0.2f),
                     base_T_work_.Inverse() * base_T_tool * KDL::Frame(KDL::Vector(0.05, -0.1, 0.2)), kTolerance);
}

// Without an arm no joint angle is read, so the pointer may be null.
TEST(ArmPoseWithoutAnArm, ReadsNoJoint) {
    libalgo_set_robot_and_sensor_type(2, 0);
    ASSERT_LE(libalgo_get_rbt_dof(), 0);
    const float zeros[8] = {};
    EXPECT_NEAR(algo_rotate_move(nullptr, 1, 0, {}).position.x, forward_kinematics(zeros).position.x, 1e-9);
}

}  // namespace
}  // namespace zk::test
