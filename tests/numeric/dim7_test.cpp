#include <gtest/gtest.h>

#include <random>

#include "zk/numeric.h"

namespace {

Matrix7 numbered(int16_t rows, int16_t cols) {
    Matrix7 a{rows, cols, {}};
    for (int i = 0; i < 7; ++i) {
        for (int j = 0; j < 7; ++j) a.m[i][j] = static_cast<float>(1 + 10 * i + j);
    }
    return a;
}

TEST(Dim7, ArithmeticTakesTheLargerRecord) {
    const Matrix7 a = numbered(6, 7);
    EXPECT_EQ(matrix_t_dim7(a).rows, 7);
    EXPECT_EQ(matrix_t_dim7(a).m[6][5], a.m[5][6]);
    EXPECT_EQ(matrix_t_dim7(a).m[0][6], 0);  // row 6 of a is not in use
    EXPECT_EQ(matrix_a_dim7(a, a, 1).m[5][6], 2 * a.m[5][6]);
    EXPECT_EQ(matrix_a_dim7(a, a, 0).m[5][6], 0);
    EXPECT_EQ(matrix_m_num_dim7(a, 3).m[5][6], 3 * a.m[5][6]);

    const Matrix7 same = matrix_m_dim7(unit_matrix_dim7(7), numbered(7, 7));
    for (int i = 0; i < 7; ++i) {
        for (int j = 0; j < 7; ++j) EXPECT_EQ(same.m[i][j], a.m[i][j]);
    }
    const Matrix7 cut = matrix_m_dim7(numbered(7, 2), numbered(1, 1));
    EXPECT_EQ(cut.rows, 7);
    EXPECT_EQ(cut.cols, 1);
    EXPECT_EQ(cut.m[6][0], 61 * 1 + 62 * 11);
}

TEST(Dim7, SumsInDoublePrecision) {
    Matrix7 row{1, 3, {{1e8f, 1, -1e8f}}}, column{3, 1, {{1}, {1}, {1}}};
    EXPECT_EQ(matrix_m_dim7(row, column).m[0][0], 1);
}

TEST(Dim7, CountsBeyondTheRecordEndWithIt) {
    EXPECT_EQ(unit_matrix_dim7(3).m[3][3], 0);
    EXPECT_EQ(unit_matrix_dim7(90).m[6][6], 1);
    EXPECT_EQ(unit_matrix_dim7(90).rows, 90);
    EXPECT_EQ(unit_matrix_dim7(-2).m[0][0], 0);
    EXPECT_EQ(matrix_m_dim7(numbered(100, 7), numbered(7, 100)).m[6][6],
              matrix_m_dim7(numbered(7, 7), numbered(7, 7)).m[6][6]);
}

// A spline's system with unequal intervals, and one with unequal sides.
TEST(Dim7, ClosedFormInvertsATridiagonalWithUnitEndRows) {
    std::mt19937 generator(3);
    std::uniform_real_distribution<float> interval(0.5f, 2.0f);
    for (int round = 0; round < 20; ++round) {
        Matrix7 a = unit_matrix_dim7(7);
        for (int i = 1; i <= 5; ++i) {
            a.m[i][i - 1] = interval(generator);
            a.m[i][i + 1] = interval(generator);
            a.m[i][i] = 2 * (a.m[i][i - 1] + a.m[i][i + 1]);
        }
        Matrix7 unread = a;  // elements off the pattern and the counts play no part
        unread.m[0][6] = unread.m[4][1] = unread.m[6][0] = 99;
        unread.rows = unread.cols = 0;
        const Matrix7 inverse = simp_matrix_inv77(unread);
        EXPECT_EQ(inverse.rows, 7);
        EXPECT_EQ(inverse.cols, 7);
        EXPECT_EQ(inverse.m[6][6], 1);
        for (int j = 0; j < 7; ++j) EXPECT_EQ(inverse.m[0][j], j == 0);
        const Matrix7 product = matrix_m_dim7(a, inverse);
        for (int i = 0; i < 7; ++i) {
            for (int j = 0; j < 7; ++j) EXPECT_NEAR(product.m[i][j], i == j, 1e-6) << i << ", " << j;
        }
    }
}

}  // namespace
