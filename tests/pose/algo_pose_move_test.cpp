#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "support/kdl_frames.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/pose.h"

namespace zk::test {
namespace {

constexpr int kWork = 0, kTool = 1, kOther = 2;
constexpr float kPi = 3.1415927f;
constexpr double kTolerance = 1e-5;

// The quaternion is wrong on purpose: no step reads it.
const Pose kPose{{0.3f, -0.5f, 0.7f}, {0, 1, 0, 0}, {0.4f, -0.9f, 2.5f}};
const Pose kFrame{{9, 9, 9}, {0, 0, 1, 0}, {-0.2f, 0.6f, -1.1f}};

void expect_equal(const Euler& actual, const Euler& expected) {
    EXPECT_EQ(std::memcmp(&actual, &expected, sizeof actual), 0) << actual.rx << ' ' << actual.ry << ' ' << actual.rz;
}

class PoseStep : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(0, 0), 0);
        const float work[6] = {9, 9, 9, kFrame.euler.rx, kFrame.euler.ry, kFrame.euler.rz};
        const float tool[6] = {0.1f, 0.2f, 0.3f, 1, 1, 1};
        libalgo_set_work_cs_params(work);
        libalgo_set_tool_cs_params(tool);
    }
};

TEST(Rodrigues, TurnsAboutTheAxesOfTheFrameOrTheEndsOwn) {
    const KDL::Rotation F = to_kdl(kFrame.euler), C = to_kdl(kPose.euler), eye;
    const KDL::Vector of_frame[] = {F.UnitX(), F.UnitY(), F.UnitZ()}, own[] = {eye.UnitX(), eye.UnitY(), eye.UnitZ()};
    for (int i = 0; i < 3; ++i) {
        for (float theta : {-2.8f, -0.3f, 0.0f, 1.0f, 3.0f}) {
            for (int sign : {1, -1}) {  // the sign of the element does not count
                int axis[3] = {};
                axis[i] = sign;
                expect_near(to_kdl(Rodrigues_rotate_simplify(axis, kPose.euler, theta, kFrame)),
                            KDL::Rotation::Rot(of_frame[i], theta) * C, kTolerance);
                expect_near(to_kdl(Rodrigues_rotate_simplify_tool(axis, kPose.euler, theta, kFrame)),
                            C * KDL::Rotation::Rot(own[i], theta), kTolerance);
            }
        }
    }
}

TEST(Rodrigues, UsesTheLastAxisThatIsSet) {
    const int all[] = {1, -1, 1}, last[] = {0, 0, 1}, none[] = {2, 0, -5};
    for (const auto rotate : {Rodrigues_rotate_simplify, Rodrigues_rotate_simplify_tool}) {
        expect_equal(rotate(all, kPose.euler, 0.4f, kFrame), rotate(last, kPose.euler, 0.4f, kFrame));
        // The orientation is scaled by cos(theta): a positive factor keeps the angles, a negative one mirrors them.
        expect_near(to_kdl(rotate(none, kPose.euler, 0.4f, kFrame)), to_kdl(kPose.euler), kTolerance);
        Matrix negative = matrix_m_num(euler_to_matrix(kPose.euler), std::cos(2.0f));
        expect_near(to_kdl(rotate(none, kPose.euler, 2, kFrame)), to_kdl(matrix_to_euler(negative)), kTolerance);
    }
}

TEST(Rodrigues, TurnsIntoTheSingularPitch) {
    const int y[] = {0, 1, 0};
    for (float quarter : {kPi / 2, -kPi / 2}) {
        const Euler in_base = Rodrigues_rotate_simplify(y, {0.3f, 0, 0}, quarter, {});
        EXPECT_EQ(in_base.rz, 0);
        expect_near(to_kdl(in_base), KDL::Rotation::RotY(quarter) * KDL::Rotation::RotX(0.3), 1e-5);
        const Euler in_tool = Rodrigues_rotate_simplify_tool(y, {0, 0, 0.3f}, quarter, {});
        EXPECT_EQ(in_tool.rz, 0);
        expect_near(to_kdl(in_tool), KDL::Rotation::RotZ(0.3) * KDL::Rotation::RotY(quarter), 1e-5);
    }
}

TEST_F(PoseStep, TurnsAboutOneAxisAfterTheOther) {
    const float delta[] = {0.01f, -0.02f, 0.03f, 5, -10, 20};
    const KDL::Rotation F = to_kdl(kFrame.euler);
    const KDL::Vector step(0.01, -0.02, 0.03);
    const KDL::Frame at = to_kdl(kPose);
    const KDL::Rotation x = KDL::Rotation::RotX(5 * M_PI / 180), y = KDL::Rotation::RotY(-10 * M_PI / 180),
                        z = KDL::Rotation::RotZ(20 * M_PI / 180);
    expect_pose_near(algo_pose_move(delta, kWork, kPose), {F * z * y * x * F.Inverse() * at.M, at.p + step},
                     kTolerance);
    // The step goes along the tool's axes before the turn.
    expect_pose_near(algo_pose_move(delta, kTool, kPose), {at.M * x * y * z, at * step}, kTolerance);
}

TEST_F(PoseStep, TranslationLeavesTheOtherFieldsZero) {
    const float delta[] = {1, 2, 3, 40, 50, 60};
    const Pose expected{{1.3f, 1.5f, 3.7f}, {}, {}}, in_work = dPosMoveWork(delta, kPose);
    EXPECT_EQ(std::memcmp(&in_work, &expected, sizeof in_work), 0);
    const Pose zero{}, nowhere = dPosMove(delta, kOther, kPose);
    EXPECT_EQ(std::memcmp(&nowhere, &zero, sizeof nowhere), 0);
    // In no frame the whole step keeps the orientation.
    const Pose moved = algo_pose_move(delta, kOther, kPose);
    expect_equal(moved.euler, kPose.euler);
    expect_pose_near(moved, {to_kdl(kPose.euler), KDL::Vector::Zero()}, kTolerance);
}

TEST_F(PoseStep, ZeroStepKeepsTheAngles) {
    const float none[6] = {};
    const Pose turned{{1, 2, 3}, {0, 1, 0, 0}, {7, -3.5f, 2}};
    for (int frame : {kWork, kTool}) {
        const Pose moved = algo_pose_move(none, frame, turned);
        expect_equal(moved.euler, turned.euler);
        expect_pose_near(moved, to_kdl(turned), kTolerance);
    }
}

TEST_F(PoseStep, NanIsNotTakenForZero) {
    const float delta[] = {0, 0, 0, NAN, 0, 0};
    EXPECT_TRUE(std::isnan(rotateMove(delta, kTool, kPose).euler.ry));
}

TEST_F(PoseStep, TranslationAlongTheToolDoesNotWrap) {
    const float delta[] = {1, 0, 0, 0, 0, 0};
    const Pose moved = dPosMoveTool(delta, {{0, 0, 0}, {}, {-3.14f, 0, -3.135f}});
    EXPECT_NEAR(moved.euler.rx, -3.14f, 1e-6);
    EXPECT_NEAR(moved.euler.rz, -3.135f, 1e-6);
    expect_pose_near(moved, {KDL::Rotation::RPY(-3.14, 0, -3.135), KDL::Rotation::RPY(-3.14, 0, -3.135).UnitX()},
                     kTolerance);
    EXPECT_NEAR(dPosMoveTool(delta, {{}, {}, {0, kPi / 2, 0}}).euler.ry, kPi / 2, 1e-6);
}

}  // namespace
}  // namespace zk::test
