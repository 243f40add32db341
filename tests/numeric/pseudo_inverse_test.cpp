#include <gtest/gtest.h>

#include <cmath>

#include "numeric/dense.h"
#include "zk/dense_matrix.h"

namespace {

using zk::test::dense;
using zk::test::expect_near;
using zk::test::random_dense;
using zk::test::to_eigen;

// Well away from singular, with singular values far enough apart for the iteration.
Mat regular() { return dense(3, 3, {4, 1, 0.5f, -1, 3, 0.25f, 0.5f, -0.5f, 1.5f}); }

// The eigenvectors of the two products come with the same signs for a and for -a, so that one of them needs the repair.
TEST(Svd, FactorsMultiplyToASquareMatrix) {
    for (const Mat& a : {regular(), mat_kM(-1, regular())}) {
        Mat U, S, V;
        mat_svd(&U, &S, &V, a);
        const Eigen::MatrixXd u = to_eigen(U), s = to_eigen(S), v = to_eigen(V), eye = Eigen::MatrixXd::Identity(3, 3);
        EXPECT_LT((u * s * v.transpose() - to_eigen(a)).norm(), 1e-4);
        EXPECT_LT((u * u.transpose() - eye).norm(), 1e-4);
        EXPECT_LT((v * v.transpose() - eye).norm(), 1e-4);
        const Eigen::VectorXd expected = Eigen::JacobiSVD<Eigen::MatrixXd>(to_eigen(a)).singularValues();
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(S.m[i][i], expected(i), 1e-4);
    }
}

TEST(Svd, OfWhatMatDiagCannotHoldIsZero) {
    Mat U, S, V;
    mat_svd(&U, &S, &V, dense(1, 1, {3}));
    EXPECT_EQ(S.rows, 1);
    EXPECT_EQ(S.m[0][0], 0);
}

TEST(PseudoInverse, NormalEquationsByShape) {
    for (const auto& [rows, cols] : {std::pair(2, 5), std::pair(5, 2), std::pair(3, 3)}) {
        const Mat a = random_dense(rows, cols);
        const Eigen::MatrixXd expected = to_eigen(a).completeOrthogonalDecomposition().pseudoInverse();
        expect_near(mat_pinv(a), expected, 1e-3 * expected.norm());
    }
}

TEST(PseudoInverse, ASingularProductIsNotReported) {
    const Mat inverse = mat_pinv(dense(2, 2, {1, 2, 2, 4}));
    EXPECT_EQ(inverse.rows, 2);
    EXPECT_EQ(inverse.cols, 2);
    EXPECT_EQ(mat_find_abs_max(inverse), 0);
    EXPECT_EQ(mat_pinv(mat_init(2, 3)).rows, 3);
}

TEST(PseudoInverse, BySingularValues) {
    const Eigen::MatrixXd expected = to_eigen(regular()).inverse();
    expect_near(mat_pinv_svd(regular()), expected, 1e-3);
    expect_near(mat_pinv_svd(dense(2, 2, {2, 0, 0, 1e-6f})), to_eigen(dense(2, 2, {0.5f, 0, 0, 0})), 1e-6);
}

TEST(Condition, IsTheRatioOfSingularValues) {
    const Eigen::VectorXd s = Eigen::JacobiSVD<Eigen::MatrixXd>(to_eigen(regular())).singularValues();
    EXPECT_NEAR(mat_cond(regular()), s(0) / s(2), 1e-3);
    EXPECT_NEAR(mat_cond(dense(2, 2, {4, 0, 0, 0.5f})), 8, 1e-4);
    // First over last, not largest over smallest.
    EXPECT_NEAR(mat_cond(dense(2, 2, {0.5f, 0, 0, 4})), 0.125f, 1e-4);
    EXPECT_EQ(mat_cond(dense(1, 3, {0.3f, 0.7f, 0.1f})), 1);  // a row has one singular value
}

}  // namespace
