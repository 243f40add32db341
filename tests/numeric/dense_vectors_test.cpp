#include <gtest/gtest.h>

#include <cmath>

#include "numeric/dense.h"
#include "support/kdl_frames.h"
#include "zk/dense_matrix.h"
#include "zk/numeric.h"

namespace zk::test {
namespace {

Mat transform(const Pose& p) { return matrix_to_mat(pose_euler_to_transformation_matrix(p)); }

TEST(DenseVectors, ArithmeticChangesTheFirstColumnOnly) {
    const Mat a = vec({1, -2, 3}), b = vec({10, 20, 30});
    expect_equal(vec_add(a, b), vec({11, 18, 33}));
    expect_equal(vec_sub(a, b), vec({-9, -22, -27}));
    expect_equal(vec_minus(a), vec({-1, 2, -3}));
    expect_equal(vec_kV(2, a), vec({2, -4, 6}));
    expect_equal(vec_add_scalar(5, a), vec({6, 3, 8}));
    expect_equal(vec_minus(dense(2, 2, {1, 2, 3, 4})), dense(2, 2, {-1, 2, -3, 4}));
}

TEST(DenseVectors, NormsAndProductsReadTheFirstColumn) {
    EXPECT_EQ(vec_norm2(vec({3, -4})), 5);
    EXPECT_EQ(vec_norm2(mat_init(0, 0)), 0);
    Mat row = dense(1, 3, {3, 8, 9});
    row.m[1][0] = 4;  // outside the row, but read: only columns are vectors here
    EXPECT_EQ(vec_norm2(row), 5);
    EXPECT_EQ(vec_dot(vec({1, 2, 3}), vec({4, 5, 6})), 32);
    EXPECT_EQ(vec_is_zeros(vec({0, 0})), 1);
    EXPECT_EQ(vec_is_zeros(vec({1e-15f, 0})), 0);
    EXPECT_EQ(mat_is_equal(vec_zeros(3), vec({0, 0, 0})), 1);
    EXPECT_EQ(mat_is_equal(vec_init(3), vec({0, 0, 0})), 1);
}

TEST(DenseVectors, NormInfSkipsTheLastElement) {
    EXPECT_EQ(vec_normInf(vec({1, 2, 3})), 2);
    EXPECT_EQ(vec_normInf(vec({-9, 2, 3})), 9);
    EXPECT_EQ(vec_normInf(vec({5})), 0);
}

TEST(DenseVectors, CrossProductsAndSkewMatricesAgree) {
    const Mat a = vec({1, 2, 3}), b = vec({-4, 6, 5}), expected = vec({-8, -17, 14});
    expect_equal(vec3x3_cross(a, b), expected);
    expect_equal(mat_mult(vec_to_skew(a), b), expected);
    expect_equal(skew_to_vec(vec_to_skew(a)), a);
    expect_equal(vec_vex(vec_to_skew(a)), a);
    expect_equal(vec_vex(dense(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9})), vec({1, -2, 1}));

    const float x[] = {1, 2, 3};
    float y[] = {-4, 6, 5};
    array_cross(x, y, y);
    expect_equal(vec({y[0], y[1], y[2]}), expected);
}

TEST(Transform, SplitsIntoRotationAndPosition) {
    const Mat t = transform({{1, 2, 3}, {}, {0.1f, 0.2f, 0.3f}});
    expect_equal(mat_T2R(t), matrix_to_mat(euler_to_matrix({0.1f, 0.2f, 0.3f})));
    expect_equal(mat_T2p(t), vec({1, 2, 3}));
    EXPECT_EQ(mat_is_equal(mat_homogen_trans_inv(t), t), 1);
}

TEST(TransformDifference, SmallFormIsATwistInTheFirstFrame) {
    const Pose p1{{0.4f, -0.3f, 0.8f}, {}, {0.5f, -0.8f, 2.0f}};
    const Pose p2{{0.401f, -0.302f, 0.803f}, {}, {0.501f, -0.802f, 2.001f}};
    const KDL::Twist twist = to_kdl(p1).M.Inverse(KDL::diff(to_kdl(p1), to_kdl(p2)));
    const Mat difference = vec_Tdiff(transform(p1), transform(p2));
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(difference.m[i][0], twist(i), 2e-6);
    // It takes the sine of a large angle for the angle.
    const Mat turn = vec_Tdiff(transform({}), transform({{}, {}, {0, 0, 1.2f}}));
    expect_near(turn, vec({0, 0, 0, 0, 0, std::sin(1.2f)}), 1e-6);
}

}  // namespace
}  // namespace zk::test
