#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "numeric/dense.h"
#include "zk/dense_matrix.h"
#include "zk/numeric.h"

namespace zk::test {
namespace {

// All elements differ, inside and outside the block, so that a wrong index shows.
Matrix numbered(int16_t rows, int16_t cols, float first) {
    Matrix a{rows, cols, {}};
    for (auto& row : a.m) {
        for (float& element : row) element = first++;
    }
    return a;
}

void expect_equal(const Matrix& actual, const Matrix& expected) {
    EXPECT_EQ(actual.rows, expected.rows);
    EXPECT_EQ(actual.cols, expected.cols);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) EXPECT_EQ(actual.m[i][j], expected.m[i][j]) << i << ", " << j;
    }
}

TEST(FixedMatrix, ProductHasTheRowsOfTheFirstAndTheColumnsOfTheSecond) {
    const Matrix a = numbered(2, 3, 1);   // 1 2 3 / 5 6 7
    const Matrix b = numbered(3, 1, 10);  // 10 / 14 / 18
    expect_equal(matrix_m(a, b), {2, 1, {{92}, {260}}});

    // A transform times a rotation also reads the zero row below the rotation.
    const Matrix transform{4, 4, {{1, 0, 0, 5}, {0, 1, 0, 6}, {0, 0, 1, 7}, {0, 0, 0, 1}}};
    const Matrix rotation{3, 3, {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}};
    expect_equal(matrix_m(transform, rotation), {4, 3, {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}});
}

TEST(FixedMatrix, ProductRoundsEachTermOnceAndTheSumOnce) {
    // 1e8 + 1 - 1e8 is 1 in double precision, 0 in single.
    expect_equal(matrix_m({1, 3, {{1e8f, 1, -1e8f}}}, {3, 1, {{1}, {1}, {1}}}), {1, 1, {{1}}});
    // (1 + 2^-12)^2 - 1 - 2^-11 is 2^-24, but 0 once the square is rounded to single.
    const float x = 1 + std::ldexp(1.0f, -12);
    expect_equal(matrix_m({1, 2, {{x, -1 - std::ldexp(1.0f, -11)}}}, {2, 1, {{x}, {1}}}), {1, 1, {{0}}});
}

TEST(FixedMatrix, FlagChoosesSumOrDifference) {
    const Matrix a = numbered(2, 2, 1), b{0, 7, {{10, 20}, {30, 40}}};
    for (int flag : {1, 9}) expect_equal(matrix_a(a, b, flag), {2, 2, {{11, 22}, {35, 46}}});
    for (int flag : {0, -1}) expect_equal(matrix_a(a, b, flag), {2, 2, {{-9, -18}, {-25, -34}}});
}

TEST(FixedMatrix, TransposeAndScaleLeaveZerosOutsideTheBlock) {
    expect_equal(matrix_t(numbered(2, 3, 1)), {3, 2, {{1, 5}, {2, 6}, {3, 7}}});
    expect_equal(matrix_m_num(numbered(3, 2, 1), -2), {3, 2, {{-2, -4}, {-10, -12}, {-18, -20}}});
    expect_equal(matrix_T2R(numbered(4, 4, 1)), {3, 3, {{1, 2, 3}, {5, 6, 7}, {9, 10, 11}}});
}

TEST(FixedMatrix, IdentityKeepsItsCount) {
    expect_equal(unit_matrix(2), {2, 2, {{1}, {0, 1}}});
    expect_equal(unit_matrix(9), {9, 9, {{1}, {0, 1}, {0, 0, 1}, {0, 0, 0, 1}}});
    expect_equal(unit_matrix(-1), {-1, -1, {}});
    expect_equal(zero_matrix(3, 1), {3, 1, {}});
}

TEST(FixedMatrix, EmptyAndImpossibleCountsStayInsideTheRecord) {
    const Matrix full = numbered(4, 4, 1);
    expect_equal(matrix_m(numbered(0, 4, 1), full), {0, 4, {}});
    expect_equal(matrix_m(full, numbered(4, -3, 1)), {4, -3, {}});
    expect_equal(matrix_m(numbered(2, 0, 1), full), {2, 4, {}});
    expect_equal(matrix_t(numbered(0, 3, 1)), {3, 0, {}});
    expect_equal(matrix_a(numbered(3, 0, 1), full, 1), {3, 0, {}});

    Matrix huge = full;
    huge.rows = huge.cols = 32767;
    Matrix squared = matrix_m(full, full);
    squared.rows = squared.cols = 32767;
    expect_equal(matrix_m(huge, huge), squared);
    expect_equal(matrix_t(matrix_t(huge)), huge);
}

TEST(FixedMatrix, CrossProductIsRightHandedAndReadsTheFirstColumn) {
    const Matrix x{3, 1, {{1, 9}, {0, 9}, {0, 9}}}, y{3, 1, {{0, 9}, {1, 9}, {0, 9}}};
    expect_equal(cross(x, y), {3, 1, {{0}, {0}, {1}}});
    expect_equal(cross({3, 1, {{1}, {2}, {3}}}, {3, 1, {{-4}, {6}, {5}}}), {3, 1, {{-8}, {-17}, {14}}});
}

Matrix7 widened(const Matrix& a) {
    Matrix7 wide{a.rows, a.cols, {}};
    for (int i = 0; i < 4; ++i) std::copy_n(a.m[i], 4, wide.m[i]);
    return wide;
}

void expect_same(const Matrix7& actual, const Matrix7& expected) {
    EXPECT_EQ(std::memcmp(&actual, &expected, sizeof actual), 0) << actual.rows << " by " << actual.cols;
}

TEST(Dim7, AgreesWithTheSmallerRecord) {
    const Matrix a = numbered(3, 4, 1), b = numbered(4, 2, 20);
    expect_same(matrix_m_dim7(widened(a), widened(b)), widened(matrix_m(a, b)));
    expect_same(matrix_t_dim7(widened(a)), widened(matrix_t(a)));
    expect_same(matrix_m_num_dim7(widened(a), 3), widened(matrix_m_num(a, 3)));
    for (int flag : {-1, 0, 1, 9}) {
        expect_same(matrix_a_dim7(widened(a), widened(b), flag), widened(matrix_a(a, b, flag)));
    }
    expect_same(unit_matrix_dim7(3), widened(unit_matrix(3)));
    expect_same(unit_matrix_dim7(-2), widened(unit_matrix(-2)));
}

TEST(Dim7, CountsBeyondTheRecordAreCutOff) {
    const Mat a = random_dense(7, 7);
    Matrix7 full = mat_to_matrix_more(a);
    full.rows = full.cols = 100;
    Mat squared = matrix_more_to_mat(matrix_m_dim7(full, full));
    EXPECT_EQ(squared.rows, 100);
    squared.rows = squared.cols = 7;
    expect_near(squared, product(a, a), 1e-5);
    EXPECT_EQ(unit_matrix_dim7(90).m[6][6], 1);
    EXPECT_EQ(unit_matrix_dim7(90).rows, 90);
}

// The system of a spline with unequal intervals.
TEST(Dim7, ClosedFormInvertsATridiagonalMatrix) {
    const auto interval = [] { return 1.25f + 0.375f * random_element(); };
    for (int round = 0; round < 20; ++round) {
        Matrix7 a = unit_matrix_dim7(7);
        for (int i = 1; i <= 5; ++i) {
            a.m[i][i - 1] = interval();
            a.m[i][i + 1] = interval();
            a.m[i][i] = 2 * (a.m[i][i - 1] + a.m[i][i + 1]);
        }
        Matrix7 unread = a;  // neither these elements nor the counts are read
        unread.m[0][6] = unread.m[4][1] = unread.m[6][0] = 99;
        unread.rows = unread.cols = 0;
        const Matrix7 inverse = simp_matrix_inv77(unread);
        EXPECT_EQ(inverse.rows, 7);
        EXPECT_EQ(inverse.cols, 7);
        EXPECT_EQ(inverse.m[6][6], 1);
        for (int j = 0; j < 7; ++j) EXPECT_EQ(inverse.m[0][j], j == 0);
        expect_near(product(matrix_more_to_mat(a), matrix_more_to_mat(inverse)), mat_eye(7, 7), 1e-6);
    }
}

TEST(Scalars, SignHasThreeValues) {
    EXPECT_EQ(zk_sign(1e-40f), 1);
    EXPECT_EQ(zk_sign(-1e-40f), -1);
    EXPECT_EQ(zk_sign(-0.0f), 0);
    EXPECT_EQ(zk_sign(NAN), 0);
}

TEST(Scalars, MyAtan2fDiffersFromAtan2AtTheOriginAndAtMinusZero) {
    for (float angle = -3.1f; angle < 3.1f; angle += 0.2f) {
        EXPECT_NEAR(my_atan2f(2 * std::sin(angle), 2 * std::cos(angle)), angle, 1e-3);
    }
    EXPECT_TRUE(std::isnan(my_atan2f(0, 0)));
    EXPECT_TRUE(std::isnan(my_atan2f(NAN, 1)));
    EXPECT_FLOAT_EQ(my_atan2f(-0.0f, -1), 3.1415927f);
}

}  // namespace
}  // namespace zk::test
