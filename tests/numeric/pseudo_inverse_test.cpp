#include <gtest/gtest.h>

#include <cmath>

#include "numeric/dense.h"
#include "support/kdl_frames.h"
#include "zk/dense_matrix.h"

namespace zk::test {
namespace {

Mat rotation(double x, double y, double z) {
    return mat_T2R(matrix_to_mat(to_matrix(KDL::Frame(KDL::Rotation::RPY(x, y, z)))));
}

// The singular values of `regular`, far enough apart for the iteration.
const Mat kSingularValues = dense(3, 3, {4, 0, 0, 0, 2.5f, 0, 0, 0, 1.25f});
Mat regular() { return product(product(rotation(0.2, 0.3, -0.4), kSingularValues), rotation(-0.3, 0.1, 0.2)); }

// The eigenvectors have the same signs for a and -a, so one of the two needs its signs corrected.
TEST(Svd, FactorsMultiplyToASquareMatrix) {
    for (const Mat& a : {regular(), mat_kM(-1, regular())}) {
        Mat U, S, V;
        mat_svd(&U, &S, &V, a);
        expect_near(product(product(U, S), mat_T(V)), a, 1e-4);
        expect_orthogonal(U);
        expect_orthogonal(V);
        expect_near(S, kSingularValues, 1e-4);
    }
}

TEST(Svd, OneByOneHasSingularValueZero) {
    Mat U, S, V;
    mat_svd(&U, &S, &V, dense(1, 1, {3}));
    EXPECT_EQ(S.rows, 1);
    EXPECT_EQ(S.m[0][0], 0);
}

// A P A = A and P A P = P, and both products are symmetric.
TEST(PseudoInverse, MeetsThePenroseConditions) {
    for (const auto& [rows, cols] : {std::pair(2, 5), std::pair(5, 2), std::pair(3, 3)}) {
        const Mat a = random_dense(rows, cols), p = mat_pinv(a), ap = product(a, p), pa = product(p, a);
        expect_near(product(ap, a), a, 1e-4);
        expect_near(product(pa, p), p, 1e-4);
        expect_near(mat_T(ap), ap, 1e-4);
        expect_near(mat_T(pa), pa, 1e-4);
    }
}

TEST(PseudoInverse, SingularProductReturnsZeros) {
    expect_equal(mat_pinv(dense(2, 2, {1, 2, 2, 4})), mat_init(2, 2));
    EXPECT_EQ(mat_pinv(mat_init(2, 3)).rows, 3);
}

TEST(PseudoInverse, SvdFormDropsSmallSingularValues) {
    expect_near(product(mat_pinv_svd(regular()), regular()), mat_eye(3, 3), 1e-3);
    expect_near(mat_pinv_svd(dense(2, 2, {2, 0, 0, 1e-6f})), dense(2, 2, {0.5f, 0, 0, 0}), 1e-6);
}

TEST(Condition, IsTheRatioOfSingularValues) {
    EXPECT_NEAR(mat_cond(regular()), 3.2, 1e-3);
    // First over last, not largest over smallest.
    EXPECT_NEAR(mat_cond(dense(2, 2, {0.5f, 0, 0, 4})), 0.125f, 1e-4);
    EXPECT_EQ(mat_cond(dense(1, 3, {0.3f, 0.7f, 0.1f})), 1);  // a row has one singular value
}

}  // namespace
}  // namespace zk::test
