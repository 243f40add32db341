#include <gtest/gtest.h>

#include "support/kdl_frames.h"
#include "zk/pose.h"

namespace {

using zk::test::expect_near;
using zk::test::expect_pose_near;
using zk::test::to_kdl;
using zk::test::to_matrix;

constexpr double kTolerance = 5e-6;

// The quaternions are wrong on purpose: no conversion may read them.
const Pose kPose{{0.3f, -0.5f, 0.7f}, {0, 1, 0, 0}, {0.4f, -0.9f, 2.5f}};
const Pose kWorkFrame{{1.0f, 0.2f, -0.1f}, {0, 0, 1, 0}, {-0.2f, 0.6f, -1.1f}};

TEST(FrameConversion, PoseAndMatrixTellTheSameFrame) {
    expect_near(to_kdl(algo_pose_to_matrix(kPose)), to_kdl(kPose), kTolerance);
    expect_pose_near(algo_matrix_to_pose(to_matrix(to_kdl(kPose))), to_kdl(kPose), kTolerance);
    expect_near(zk::test::kdl_rotation(algo_euler_to_matrix(kPose.euler)), to_kdl(kPose.euler), kTolerance);
    EXPECT_EQ(algo_euler_to_matrix(kPose.euler).rows, 3);
}

TEST(FrameConversion, WorkFrameIsGivenByTheInverseOfItsOwnPose) {
    const KDL::Frame base_T_work = to_kdl(kWorkFrame);
    const Matrix work_T_base = to_matrix(base_T_work.Inverse());

    const Pose in_work = algo_base_to_workframe(work_T_base, kPose);
    expect_pose_near(in_work, base_T_work.Inverse() * to_kdl(kPose), kTolerance);
    expect_pose_near(algo_workframe_to_base(work_T_base, in_work), to_kdl(kPose), kTolerance);
    expect_pose_near(algo_workframe_to_base(work_T_base, kPose), base_T_work * to_kdl(kPose), kTolerance);
}

TEST(FrameConversion, MatrixThatIsNoTransformIsInvertedAsItIs) {
    Matrix stretched = to_matrix(KDL::Frame::Identity());
    stretched.m[0][0] = 2;
    EXPECT_FLOAT_EQ(algo_base_to_workframe(stretched, kPose).position.x, 0.6f);
    EXPECT_FLOAT_EQ(algo_workframe_to_base(stretched, kPose).position.x, 0.15f);
}

}  // namespace
