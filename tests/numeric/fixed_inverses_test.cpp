#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <cmath>
#include <random>

#include "zk/numeric.h"

namespace {

std::mt19937 generator(1);

float random_element() { return std::uniform_real_distribution<float>(-2, 2)(generator); }

template <typename M>
auto to_eigen(const M& a, int n) {
    Eigen::MatrixXd e(n, n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) e(i, j) = a.m[i][j];
    }
    return e;
}

// A random matrix that fills its whole record, with the counts n by n.
template <typename M>
M random_matrix(int n) {
    M a{static_cast<int16_t>(n), static_cast<int16_t>(n), {}};
    for (auto& row : a.m) {
        for (float& element : row) element = random_element();
    }
    return a;
}

// The rounding of a single-precision result of a well-computed inverse, whatever the condition of a.
template <typename M>
void expect_inverse(const M& actual, const M& a, int n) {
    const Eigen::MatrixXd expected = to_eigen(a, n).inverse();
    const double tolerance = 1e-6 * to_eigen(a, n).norm() * expected.norm() * expected.norm();
    EXPECT_LT((to_eigen(actual, n) - expected).norm(), tolerance) << "of size " << n;
}

template <typename M>
bool any_not_finite(const M& a) {
    for (const auto& row : a.m) {
        for (float element : row) {
            if (!std::isfinite(element)) return true;
        }
    }
    return false;
}

Matrix affine() {
    Matrix t = random_matrix<Matrix>(4);
    t.m[3][0] = t.m[3][1] = t.m[3][2] = 0;
    t.m[3][3] = 1;
    return t;
}

TEST(FixedInverse, ExchangeFormIsTheInverseOfEverySize) {
    for (int n = 1; n <= 4; ++n) {
        for (int i = 0; i < 50; ++i) {
            const Matrix a = random_matrix<Matrix>(n);
            expect_inverse(matrix_inv(a), a, n);
        }
    }
    for (int n = 1; n <= 7; ++n) {
        for (int i = 0; i < 50; ++i) {
            const Matrix7 a = random_matrix<Matrix7>(n);
            expect_inverse(matrix_inv_dim7(a), a, n);
        }
    }
}

TEST(FixedInverse, PivotsOffTheDiagonalAreExchangedBack) {
    const Matrix cyclic{4, 4, {{0, 2, 0, 0}, {0, 0, 4, 0}, {0, 0, 0, 8}, {16, 0, 0, 0}}};
    const Matrix inverse = matrix_inv(cyclic);
    const float expected[4][4] = {{0, 0, 0, 0.0625f}, {0.5f, 0, 0, 0}, {0, 0.25f, 0, 0}, {0, 0, 0.125f, 0}};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) EXPECT_EQ(inverse.m[i][j], expected[i][j]) << i << ", " << j;
    }
}

TEST(FixedInverse, ReadsTheRowCountAlone) {
    Matrix a = random_matrix<Matrix>(2);
    a.cols = 0;
    const Matrix inverse = matrix_inv(a);
    EXPECT_EQ(inverse.rows, 2);
    EXPECT_EQ(inverse.cols, 0);
    expect_inverse(inverse, a, 2);

    a.rows = 0;
    EXPECT_EQ(matrix_inv(a).rows, 0);
    EXPECT_EQ(matrix_inv(a).m[1][1], a.m[1][1]);

    a.rows = 300;  // no record holds it: the whole record is inverted
    expect_inverse(matrix_inv(a), a, 4);
}

TEST(FixedInverse, CofactorsInvertAnyFullRankMatrix) {
    for (int i = 0; i < 50; ++i) {
        Matrix a = random_matrix<Matrix>(4);
        a.rows = a.cols = 1;
        const Matrix inverse = matrix_inv_full_rank(a);
        EXPECT_EQ(inverse.rows, 4);
        EXPECT_EQ(inverse.cols, 4);
        // By cofactors in single precision the error follows the products, not the condition.
        const double error = (to_eigen(a, 4) * to_eigen(inverse, 4) - Eigen::Matrix4d::Identity()).norm();
        EXPECT_LT(error, 1e-4 / std::abs(to_eigen(a, 4).determinant()));
    }
}

TEST(FixedInverse, OfAnAffineTransformNeedsNoRotationAndNoLastRow) {
    for (int i = 0; i < 50; ++i) {
        Matrix t = affine();
        const Eigen::MatrixXd expected = to_eigen(t, 4).inverse();
        t.m[3][0] = t.m[3][3] = 77;
        t.rows = t.cols = 0;
        const Matrix inverse = matrix_inv_coordinate_system(t);
        EXPECT_EQ(inverse.rows, 4);
        EXPECT_EQ(inverse.cols, 4);
        EXPECT_EQ(inverse.m[3][0], 0);
        EXPECT_EQ(inverse.m[3][3], 1);
        EXPECT_LT((to_eigen(inverse, 4) - expected).norm(), 1e-5 * expected.norm() * expected.norm());
    }
}

TEST(FixedInverse, SingularMatricesReturnValuesThatAreNotFinite) {
    EXPECT_TRUE(any_not_finite(matrix_inv(zero_matrix(4, 4))));
    EXPECT_TRUE(any_not_finite(matrix_inv({2, 2, {{1, 2}, {2, 4}}})));
    EXPECT_TRUE(any_not_finite(matrix_inv_full_rank(zero_matrix(4, 4))));
    Matrix flat = affine();
    for (int i = 0; i < 3; ++i) flat.m[i][2] = 0;
    EXPECT_TRUE(any_not_finite(matrix_inv_coordinate_system(flat)));
    EXPECT_TRUE(any_not_finite(matrix_inv_dim7({7, 7, {}})));
}

}  // namespace
