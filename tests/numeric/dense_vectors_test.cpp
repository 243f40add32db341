#include <gtest/gtest.h>

#include <cmath>

#include "numeric/dense.h"
#include "support/kdl_frames.h"
#include "zk/dense_matrix.h"
#include "zk/numeric.h"

namespace {

using zk::test::dense;
using zk::test::expect_equal;
using zk::test::expect_near;
using zk::test::to_eigen;
using zk::test::to_kdl;
using zk::test::vec;

constexpr float kPi = 3.1415927f;

Mat transform(const Pose& p) { return matrix_to_mat(pose_euler_to_transformation_matrix(p)); }

Eigen::MatrixXd to_eigen(const KDL::Twist& twist) {
    Eigen::MatrixXd e(6, 1);
    for (int i = 0; i < 6; ++i) e(i, 0) = twist(i);
    return e;
}

TEST(DenseVectors, ElementwiseArithmeticCopiesTheRestOfTheFirst) {
    const Mat a = vec({1, -2, 3}), b = vec({10, 20, 30});
    expect_equal(vec_add(a, b), vec({11, 18, 33}));
    expect_equal(vec_sub(a, b), vec({-9, -22, -27}));
    expect_equal(vec_minus(a), vec({-1, 2, -3}));
    expect_equal(vec_kV(2, a), vec({2, -4, 6}));
    expect_equal(vec_add_scalar(5, a), vec({6, 3, 8}));
    expect_equal(vec_minus(dense(2, 2, {1, 2, 3, 4})), dense(2, 2, {-1, 2, -3, 4}));
}

TEST(DenseVectors, NormsAndProductsGoDownTheFirstColumn) {
    EXPECT_EQ(vec_norm2(vec({3, -4})), 5);
    EXPECT_EQ(vec_norm2(mat_init(0, 0)), 0);
    Mat row = dense(1, 3, {3, 8, 9});
    row.m[1][0] = 4;  // not in use, and walked over: a row is no vector here
    EXPECT_EQ(vec_norm2(row), 5);
    EXPECT_EQ(vec_dot(vec({1, 2, 3}), vec({4, 5, 6})), 32);
    EXPECT_EQ(vec_is_zeros(vec({0, 0})), 1);
    EXPECT_EQ(vec_is_zeros(vec({1e-15f, 0})), 0);
    EXPECT_EQ(mat_is_equal(vec_zeros(3), vec({0, 0, 0})), 1);
    EXPECT_EQ(mat_is_equal(vec_init(3), vec({0, 0, 0})), 1);
}

TEST(DenseVectors, LargestMagnitudeLeavesOutTheLastElement) {
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
    EXPECT_EQ(y[0], -8);
    EXPECT_EQ(y[1], -17);
    EXPECT_EQ(y[2], 14);
}

TEST(TransformDifference, TakesATransformApart) {
    const Mat t = transform({{1, 2, 3}, {}, {0.1f, 0.2f, 0.3f}});
    expect_near(mat_T2R(t), to_eigen(t).topLeftCorner(3, 3), 1e-9);
    expect_equal(mat_T2p(t), vec({1, 2, 3}));
    EXPECT_EQ(mat_is_equal(mat_homogen_trans_inv(t), t), 1);
}

TEST(TransformDifference, SmallOneIsTheTwistInTheFirstFrame) {
    const Pose p1{{0.4f, -0.3f, 0.8f}, {}, {0.5f, -0.8f, 2.0f}};
    const Pose p2{{0.401f, -0.302f, 0.803f}, {}, {0.501f, -0.802f, 2.001f}};
    const KDL::Frame f1 = to_kdl(p1), f2 = to_kdl(p2);
    expect_near(vec_Tdiff(transform(p1), transform(p2)), to_eigen(f1.M.Inverse(KDL::diff(f1, f2))), 2e-6);
}

TEST(TransformDifference, SmallFormHasNoArcFunction) {
    const Mat d = vec_Tdiff(transform({{}, {}, {0, 0, 0}}), transform({{}, {}, {0, 0, 1.2f}}));
    expect_near(d, to_eigen(vec({0, 0, 0, 0, 0, std::sin(1.2f)})), 1e-6);
}

TEST(TransformDifference, FullOneIsKdlsAtAnyAngle) {
    const Pose p1{{0.4f, -0.3f, 0.8f}, {}, {0.5f, -0.8f, 2.0f}};
    for (float angle : {0.01f, 0.7f, 1.6f, 3.0f}) {
        const Pose p2{{-0.1f, 0.6f, 0.2f}, {}, {0.5f + angle, 0.3f, 1.1f}};
        expect_near(vec_angle_axis_diff(transform(p1), transform(p2)), to_eigen(KDL::diff(to_kdl(p1), to_kdl(p2))),
                    1e-5);
    }
}

TEST(TransformDifference, EqualTransformsAndHalfTurns) {
    const Mat t = transform({{1, 2, 3}, {}, {0.4f, 0.5f, 0.6f}}), eye = mat_eye(4, 4);
    const Mat none = vec_angle_axis_diff(t, t);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(none.m[i][0], 0);
    for (int axis = 0; axis < 3; ++axis) {
        Mat half = mat_kM(-1, eye);
        half.m[axis][axis] = half.m[3][3] = 1;
        const Mat d = vec_angle_axis_diff(eye, half);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(d.m[3 + i][0], i == axis ? kPi : 0);
    }
}

}  // namespace
