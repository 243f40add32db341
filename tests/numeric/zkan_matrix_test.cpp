#include "zk/dense_matrix.h"

#include <gtest/gtest.h>

#include <cmath>

#include "numeric/dense.h"

namespace zk::test {
namespace {

const Mat k2x3 = dense(2, 3, {1, 2, 3, 4, 5, 6});

TEST(DenseMatrix, Arithmetic) {
    const Mat a = dense(2, 3, {10, 20, 30, 40, 50, 60}), wide = random_dense(3, 20);
    expect_equal(mat_add(k2x3, a), dense(2, 3, {11, 22, 33, 44, 55, 66}));
    expect_equal(mat_sub(k2x3, a), dense(2, 3, {-9, -18, -27, -36, -45, -54}));
    expect_equal(mat_kM(-0.5f, a), dense(2, 3, {-5, -10, -15, -20, -25, -30}));
    expect_equal(mat_T(k2x3), dense(3, 2, {1, 4, 2, 5, 3, 6}));
    expect_near(mat_mult(k2x3, wide), product(k2x3, wide), 1e-5);
    expect_equal(mat_mult(dense(1, 3, {1e8f, 1, -1e8f}), vec({1, 1, 1})), vec({0}));  // summed in single precision
    expect_equal(mat_eye(2, 3), dense(2, 3, {1, 0, 0, 0, 1, 0}));
    EXPECT_EQ(mat_trace(dense(2, 3, {1, 9, 9, 9, 2, 9})), 3);
}

TEST(DenseMatrix, SizesThatDoNotMatchReturnTheEmptyMatrix) {
    for (const Mat& empty : {mat_mult(k2x3, k2x3), mat_add(k2x3, mat_init(2, 2)), mat_sub(k2x3, mat_init(3, 3)),
                             mat_diag(dense(1, 1, {4})), mat_diag(mat_init(0, 3))}) {
        EXPECT_EQ(empty.rows, 0);
        EXPECT_EQ(empty.cols, 0);
    }
}

TEST(DenseMatrix, DiagonalGoesBothWays) {
    expect_equal(mat_diag(dense(1, 3, {1, 2, 3})), dense(3, 3, {1, 0, 0, 0, 2, 0, 0, 0, 3}));
    expect_equal(mat_diag(vec({1, 2})), dense(2, 2, {1, 0, 0, 2}));
    expect_equal(mat_diag(dense(3, 3, {1, 9, 9, 9, 2, 9, 9, 9, 3})), vec({1, 2, 3}));
    expect_equal(mat_diag(k2x3), vec({1, 5}));
}

TEST(DenseMatrix, RowsAndColumnsCountFromOne) {
    expect_equal(mat_get_Mrow_i(2, k2x3), dense(1, 3, {4, 5, 6}));
    expect_equal(mat_get_Mcol_j(3, k2x3), vec({3, 6}));
    Mat a = k2x3;
    mat_set_Mrow_i(1, &a, dense(1, 2, {7, 8}));
    expect_equal(a, dense(2, 3, {7, 8, 3, 4, 5, 6}));
    mat_set_Mcol_j(3, &a, vec({0, 1}));
    expect_equal(a, dense(2, 3, {7, 8, 0, 4, 5, 1}));
    swap_row(&a, 1, 2);
    expect_equal(a, dense(2, 3, {4, 5, 1, 7, 8, 0}));
    swap_col(&a, 3, 1);
    expect_equal(a, dense(2, 3, {1, 5, 4, 0, 8, 7}));
}

TEST(DenseMatrix, NumbersOutsideTheRecordChangeNothing) {
    Mat a = k2x3;
    for (int number : {0, -1, 21}) {
        mat_set_Mrow_i(number, &a, dense(1, 1, {9}));
        mat_set_Mcol_j(number, &a, dense(1, 1, {9}));
        swap_row(&a, 1, number);
        swap_col(&a, number, 1);
        expect_equal(mat_get_Mrow_i(number, a), mat_init(1, 3));
        expect_equal(mat_get_Mcol_j(number, a), mat_init(2, 1));
    }
    EXPECT_EQ(mat_is_equal(a, k2x3), 1);
}

TEST(DenseMatrix, CountsBeyondTheRecordAreCutOff) {
    Mat a = random_dense(20, 20), twice = mat_kM(2, a);
    a.rows = a.cols = twice.rows = twice.cols = 1000;
    EXPECT_EQ(mat_is_equal(mat_add(a, a), twice), 1);
    EXPECT_EQ(mat_diag(a).rows, 1000);
    EXPECT_EQ(mat_diag(a).m[19][0], a.m[19][19]);
    EXPECT_EQ(mat_find_abs_max(mat_init(-1, 4)), 0);
}

TEST(DenseMatrix, ExtremesAreOfAbsoluteValues) {
    EXPECT_EQ(mat_find_abs_max(dense(2, 2, {1, -7, 3, 0.5f})), 7);
    EXPECT_EQ(mat_find_abs_min(dense(2, 2, {1, -7, 3, -0.5f})), 0.5f);
    EXPECT_EQ(mat_find_abs_max(mat_init(0, 0)), 0);
    EXPECT_EQ(mat_find_abs_min(mat_init(0, 0)), 1e10f);
}

TEST(DenseMatrix, SymmetryIsExact) {
    EXPECT_EQ(mat_is_hermitian(dense(2, 2, {1, 2, 2, 3})), 1);
    EXPECT_EQ(mat_is_hermitian(dense(2, 2, {1, 2, std::nextafter(2.0f, 3.0f), 3})), 0);
    EXPECT_EQ(mat_is_hermitian(dense(2, 2, {std::nanf(""), 2, 2, 3})), 0);
    EXPECT_EQ(mat_is_hermitian(k2x3), -1);
    EXPECT_EQ(mat_is_hermitian(mat_init(0, 0)), 1);
    Mat a = dense(2, 2, {1, 2, 2, 3});
    a.m[2][0] = a.m[0][2] = 9;
    a.m[2][1] = 9;  // outside the block
    EXPECT_EQ(mat_is_hermitian(a), 1);
}

TEST(DenseMatrix, EqualityIsOfWholeRecords) {
    Mat a = k2x3;
    EXPECT_EQ(mat_is_equal(a, k2x3), 1);
    a.m[19][19] = 1;  // not in use, and compared
    EXPECT_EQ(mat_is_equal(a, k2x3), 0);
    EXPECT_EQ(mat_is_equal(dense(1, 1, {0.0f}), dense(1, 1, {-0.0f})), 0);
}

TEST(DenseMatrix, PrintsRowByRow) {
    testing::internal::CaptureStdout();
    mat_print(dense(2, 2, {1, -2.5f, 0, 1e6f}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Mat = \n\t1.000000,\t-2.500000,\t\n\t0.000000,\t1000000.000000,\t\n");
}

TEST(DenseMatrix, ConversionsKeepTheCountsAndCopyTheBlock) {
    const Matrix a{2, 3, {{1, 2, 3, 99}, {4, 5, 6, 99}, {99}}};
    EXPECT_EQ(mat_is_equal(matrix_to_mat(a), k2x3), 1);
    EXPECT_EQ(mat_is_equal(matrix_to_mat(mat_to_matrix(k2x3)), k2x3), 1);

    const Mat large = random_dense(7, 6);
    EXPECT_EQ(mat_is_equal(matrix_more_to_mat(mat_to_matrix_more(large)), large), 1);
    const Matrix cut = mat_to_matrix(large);  // more than the record holds: as much as it does
    EXPECT_EQ(cut.rows, 7);
    EXPECT_EQ(cut.m[3][3], large.m[3][3]);
    EXPECT_EQ(matrix_to_mat(cut).m[4][0], 0);
}

}  // namespace
}  // namespace zk::test
