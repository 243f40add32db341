#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "numeric/dense.h"
#include "zk/dense_matrix.h"

namespace zk::test {
namespace {

// A symmetric matrix with these eigenvalues; no eigenvector is a coordinate axis.
Mat symmetric(const std::vector<float>& values) {
    const int n = static_cast<int>(values.size());
    Mat Q, R;
    mat_qr(&Q, &R, random_dense(n, n));
    Mat a = product(product(Q, mat_diag(vec(values))), mat_T(Q));
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) a.m[j][i] = a.m[i][j];
    }
    return a;
}

std::vector<float> sorted_values(const Mat& values) {
    std::vector<float> v;
    for (int i = 0; i < values.rows; ++i) v.push_back(values.m[i][0]);
    std::sort(v.begin(), v.end());
    return v;
}

TEST(Qr, ReflectsToAnUpperTriangle) {
    for (const auto& [rows, cols] : {std::pair(4, 4), std::pair(6, 3), std::pair(3, 6)}) {
        const Mat a = random_dense(rows, cols);
        Mat Q, R;
        mat_qr(&Q, &R, a);
        expect_near(product(Q, R), a, 2e-5);
        expect_orthogonal(Q);
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < std::min(i, cols); ++j) EXPECT_NEAR(R.m[i][j], 0, 1e-5);
        }
    }
}

TEST(Qr, EachColumnTakesTheSignOppositeToItsHead) {
    Mat Q, R;
    mat_qr(&Q, &R, dense(2, 2, {3, 0, 4, 5}));
    EXPECT_NEAR(R.m[0][0], -5, 1e-5);
    EXPECT_NEAR(R.m[1][1], -3, 1e-5);  // the last step reflects a single element, too

    mat_qr(&Q, &R, dense(2, 2, {0, 1, 2, 1}));  // a zero head is reflected but not cleared
    EXPECT_EQ(R.m[0][0], 0);
    EXPECT_EQ(R.m[1][0], 2);  // -2 after the first reflection, negated by the last one
    EXPECT_EQ(std::abs(R.m[1][1]), 1);

    mat_qr(&Q, &R, dense(2, 2, {1, 1, 0, 0}));  // a zero last pivot
    EXPECT_TRUE(std::isnan(norm(R)) && std::isnan(norm(Q)));
}

TEST(Eigenvalues, AreReturnedAsMagnitudes) {
    Mat values;
    ASSERT_EQ(mat_eig(1000, &values, symmetric({9, -4, 2, 1}), 1e-6f), 1);
    EXPECT_EQ(values.cols, 1);
    const std::vector<float> v = sorted_values(values), expected{1, 2, 4, 9};
    ASSERT_EQ(v.size(), expected.size());
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(v[i], expected[i], 1e-4);
}

TEST(Eigenvalues, IterationEndsAtItsCountOrTolerance) {
    Mat once, Q, R;
    const Mat a = symmetric({5, 4, 3});
    mat_qr(&Q, &R, a);
    for (const auto& [count, tolerance] : {std::pair(1, 1e-6f), {5, 100.0f}}) {
        mat_eig(count, &once, a, tolerance);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(once.m[i][0], std::fabs(R.m[i][i]));
    }
}

TEST(Eigenvalues, FailureLeavesTheOutput) {
    const Mat before = dense(1, 2, {7, 7});
    Mat values = before, vectors = before;
    EXPECT_EQ(mat_eig(10, &values, mat_init(2, 3), 1e-6f), 0);
    EXPECT_EQ(mat_hermitian_eig(10, &values, &vectors, dense(2, 2, {1, 2, 3, 4}), 1e-6f), -1);
    EXPECT_EQ(mat_is_equal(values, before), 1);
    EXPECT_EQ(mat_is_equal(vectors, before), 1);
}

TEST(Eigenvectors, DiagonaliseAPositiveMatrix) {
    const Mat a = symmetric({8, 5, 3, 1});
    Mat values, vectors;
    ASSERT_EQ(mat_hermitian_eig(1000, &values, &vectors, a, 1e-6f), 0);
    expect_near(product(a, vectors), product(vectors, mat_diag(values)), 1e-4);
    expect_orthogonal(vectors);
}

TEST(Eigenvectors, NonSquareMatrixIsAccepted) {
    Mat values, vectors;
    testing::internal::CaptureStderr();
    EXPECT_EQ(mat_hermitian_eig(10, &values, &vectors, random_dense(3, 2), 1e-6f), 0);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(values.rows, 2);
}

TEST(Eigenvectors, TheDeterminantDecidesTheSign) {
    // Exact arithmetic: R has the diagonal -2, 3, and A + 2 I is regular where A - 3 I is, too.
    Mat values, vectors;
    ASSERT_EQ(mat_hermitian_eig(10, &values, &vectors, dense(2, 2, {2, 0, 0, -3}), 1e-6f), 0);
    EXPECT_EQ(values.m[0][0], 2);
    EXPECT_EQ(values.m[1][0], -3);
}

}  // namespace
}  // namespace zk::test
