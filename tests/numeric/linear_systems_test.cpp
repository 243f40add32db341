#include <gtest/gtest.h>

#include <cmath>

#include "numeric/dense.h"
#include "zk/dense_matrix.h"

namespace zk::test {
namespace {

// The product of two triangular matrices. Column 2 of the first row is zero.
Mat random_with_determinant(int n, double& determinant) {
    Mat lower = mat_eye(n, n), upper = mat_eye(n, n);
    determinant = 1;
    for (int i = 0; i < n; ++i) {
        determinant *= upper.m[i][i] = std::copysign(1 + 0.2f * std::fabs(random_element()), random_element());
        for (int j = 0; j < i; ++j) lower.m[i][j] = 0.3f * random_element();
        for (int j = i + 1; j < n; ++j) upper.m[i][j] = i == 0 && j == 1 ? 0 : 0.3f * random_element();
    }
    return product(lower, upper);
}

TEST(Determinant, AgreesWithTheTrianglesOfTheMatrix) {
    for (const int n : {2, 3, 7, 12, 20}) {
        double expected;
        Mat a = random_with_determinant(n, expected);
        EXPECT_NEAR(mat_det(a) / expected, 1, 1e-4) << n;
        if (n < 12) {
            EXPECT_NEAR(directCalculateDetA(a) / expected, 1, 1e-4) << n;
        }
        // A zero first pivot: 20 by 20 ends because the expansion computes each minor once.
        swap_col(&a, 1, 2);
        EXPECT_NEAR(mat_det(a) / expected, -1, 1e-3) << n;
    }
}

TEST(Determinant, OfAnEmptyASingleAndANonSquareMatrix) {
    EXPECT_EQ(mat_det(mat_init(0, 0)), 1);
    EXPECT_EQ(directCalculateDetA(mat_init(0, 0)), 0);
    EXPECT_EQ(mat_det(dense(1, 1, {-3})), -3);
    EXPECT_EQ(directCalculateDetA(dense(1, 1, {-3})), -3);
    testing::internal::CaptureStderr();
    EXPECT_EQ(mat_det(mat_init(2, 3)), INFINITY);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "A is not a square matrix.");
    EXPECT_EQ(directCalculateDetA(mat_init(2, 3)), 0);
}

TEST(Determinant, LaterZeroPivotExpandsTheHalfReducedRecord) {
    // Its determinant is -1. One step of elimination leaves 1 2 3 / 2 0 1 / 1 1 3 with the column below the first pivot
    // untouched, and that expands to -5.
    EXPECT_EQ(mat_det(dense(3, 3, {1, 2, 3, 2, 4, 7, 1, 3, 6})), -5);
}

TEST(Lu, FactorsMultiplyToTheMatrix) {
    for (const auto& [rows, cols] : {std::pair(4, 4), std::pair(3, 5), std::pair(5, 3)}) {
        Mat a = random_dense(rows, cols), L, U;
        for (int i = 0; i < 3; ++i) a.m[i][i] += 5;
        EXPECT_EQ(mat_lu(&L, &U, a, 1e-6f), 1);
        expect_near(product(L, U), a, 1e-5);
        EXPECT_EQ(L.rows, rows);
        EXPECT_EQ(L.cols, rows);
        for (int i = 0; i < rows; ++i) {
            EXPECT_EQ(L.m[i][i], 1);
            for (int j = i + 1; j < rows; ++j) EXPECT_EQ(L.m[i][j], 0);
            for (int j = 0; j < std::min(i, cols - 1); ++j) EXPECT_NEAR(U.m[i][j], 0, 1e-5);
        }
    }
}

TEST(Lu, StatusIsThatOfTheLastPivot) {
    Mat L, U;
    const Mat singular = dense(2, 2, {1, 2, 2, 4});
    EXPECT_EQ(mat_lu(&L, &U, singular, 1e-6f), 0);
    EXPECT_EQ(mat_lu(&L, &U, singular, 0), 1);
    EXPECT_EQ(mat_lu(&L, &U, dense(2, 2, {0, 1, 1, 0}), 1e-6f), 1);  // a zero pivot: stored, not finite
    EXPECT_FALSE(std::isfinite(L.m[1][0]));
    EXPECT_EQ(mat_lu(&L, &U, mat_init(0, 0), 1e-6f), 0);
}

TEST(DenseInverse, InvertsEverySize) {
    for (int n = 1; n <= 20; ++n) {
        const Mat a = random_dense(n, n);
        Mat inverse;
        ASSERT_EQ(mat_inv(&inverse, a), 1);
        expect_inverse(inverse, a);
    }
}

TEST(DenseInverse, FailureLeavesTheOutput) {
    const Mat before = dense(2, 2, {1, 2, 3, 4});
    Mat out = before;
    EXPECT_EQ(mat_inv(&out, mat_init(3, 3)), -1);
    EXPECT_EQ(mat_inv(&out, dense(2, 2, {1, 2, 2, 4})), -1);
    EXPECT_EQ(mat_inv(&out, dense(1, 1, {1e-40f})), -1);  // 1 / p overflows
    EXPECT_EQ(mat_inv(&out, dense(2, 2, {NAN, 0, 0, 0})), -1);
    EXPECT_EQ(mat_inv(&out, mat_init(2, 3)), 0);
    EXPECT_EQ(mat_is_equal(out, before), 1);
    EXPECT_EQ(mat_inv(&out, dense(2, 2, {1, 1, 1, 1.0000001f})), 1);  // there is no tolerance
    EXPECT_GT(mat_find_abs_max(out), 1e6f);
}

TEST(Rank, EliminatesWithPartialPivoting) {
    const Mat two = dense(3, 4, {1, 2, 3, 4, 2, 4, 6.5f, 8, 3, 6, 9, 12});
    EXPECT_EQ(mat_rank(0, random_dense(4, 6), 1e-5f), 4);
    EXPECT_EQ(mat_rank(1, random_dense(6, 4), 1e-5f), 4);
    EXPECT_EQ(mat_rank(0, dense(2, 2, {0, 1, 1, 0}), 1e-6f), 2);
    // The second column is twice the first: elimination stops there, before the third column's pivot.
    EXPECT_EQ(mat_rank(0, two, 1e-6f), 1);
    EXPECT_EQ(mat_rank(1, two, 1e-6f), 2);
    EXPECT_EQ(mat_rank(0, dense(2, 3, {0, 1, 2, 0, 3, 4}), 1e-6f), 0);
    EXPECT_EQ(mat_rank(0, mat_eye(3, 3), 1), 0);  // a pivot has to be above the tolerance
    EXPECT_EQ(mat_rank(0, mat_eye(3, 3), 0.5f), 3);
}

}  // namespace
}  // namespace zk::test
