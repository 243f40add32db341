#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "numeric/dense.h"
#include "zk/dense_matrix.h"
#include "zk/numeric.h"

namespace zk::test {
namespace {

// A random matrix that fills its whole record, with the counts n by n.
template <typename M>
M random_matrix(int n) {
    M a{static_cast<int16_t>(n), static_cast<int16_t>(n), {}};
    for (auto& row : a.m) {
        for (float& element : row) element = random_element();
    }
    return a;
}

Matrix affine() {
    Matrix t = random_matrix<Matrix>(4);
    t.m[3][0] = t.m[3][1] = t.m[3][2] = 0;
    t.m[3][3] = 1;
    return t;
}

TEST(FixedInverse, InvertsEverySize) {
    for (int round = 0; round < 50; ++round) {
        for (int n = 1; n <= 4; ++n) {
            const Matrix a = random_matrix<Matrix>(n);
            expect_inverse(matrix_to_mat(matrix_inv(a)), matrix_to_mat(a));
        }
        for (int n = 1; n <= 7; ++n) {
            const Matrix7 a = random_matrix<Matrix7>(n);
            expect_inverse(matrix_more_to_mat(matrix_inv_dim7(a)), matrix_more_to_mat(a));
        }
    }
}

TEST(FixedInverse, ReadsOnlyTheRowCount) {
    const Matrix a = random_matrix<Matrix>(4), whole = matrix_inv(a);
    for (const int16_t rows : {2, 0, 300}) {
        Matrix counted = a, sized = a;
        counted.rows = rows;
        sized.rows = sized.cols = rows;
        const Matrix inverse = matrix_inv(counted), expected = rows == 300 ? whole : rows == 0 ? a : matrix_inv(sized);
        EXPECT_EQ(inverse.rows, rows);
        EXPECT_EQ(inverse.cols, 4);
        EXPECT_EQ(std::memcmp(inverse.m, expected.m, sizeof inverse.m), 0) << rows;
    }
}

TEST(FixedInverse, CofactorsInvertAnyFullRankMatrix) {
    for (int i = 0; i < 50; ++i) {
        Matrix a = random_matrix<Matrix>(4);
        a.rows = a.cols = 1;
        const Matrix inverse = matrix_inv_full_rank(a);
        EXPECT_EQ(inverse.rows, 4);
        EXPECT_EQ(inverse.cols, 4);
        a.rows = a.cols = 4;
        // By cofactors in single precision the error follows the products, not the condition.
        const double error = distance(product(matrix_to_mat(a), matrix_to_mat(inverse)), mat_eye(4, 4));
        EXPECT_LT(error, 1e-4 / std::fabs(directCalculateDetA(matrix_to_mat(a))));
    }
}

TEST(FixedInverse, AffineFormNeedsNoRotationAndNoLastRow) {
    for (int i = 0; i < 50; ++i) {
        const Matrix t = affine();
        Matrix unread = t;
        unread.m[3][0] = unread.m[3][3] = 77;
        unread.rows = unread.cols = 0;
        const Mat inverse = matrix_to_mat(matrix_inv_coordinate_system(unread));
        expect_near(product(matrix_to_mat(t), inverse), mat_eye(4, 4), 1e-5 * norm(matrix_to_mat(t)) * norm(inverse));
        EXPECT_EQ(inverse.m[3][0], 0);
        EXPECT_EQ(inverse.m[3][3], 1);
    }
}

TEST(FixedInverse, SingularMatrixReturnsInfinityOrNan) {
    Matrix flat = affine();
    for (int i = 0; i < 3; ++i) flat.m[i][2] = 0;
    for (const Matrix& inverse : {matrix_inv(zero_matrix(4, 4)), matrix_inv({2, 2, {{1, 2}, {2, 4}}}),
                                  matrix_inv_full_rank(zero_matrix(4, 4)), matrix_inv_coordinate_system(flat)}) {
        EXPECT_FALSE(std::isfinite(norm(matrix_to_mat(inverse))));
    }
    EXPECT_FALSE(std::isfinite(norm(matrix_more_to_mat(matrix_inv_dim7({7, 7, {}})))));
}

}  // namespace
}  // namespace zk::test
