// Dense matrices in tests: written as lists, compared with Eigen.
#pragma once

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <random>
#include <vector>

#include "zk/dense_matrix.h"

namespace zk::test {

inline Mat dense(int rows, int cols, const std::vector<float>& values) {
    Mat a = mat_init(rows, cols);
    mat_set_value(&a, values.data());
    return a;
}

inline Mat vec(const std::vector<float>& values) { return dense(static_cast<int>(values.size()), 1, values); }

inline Mat random_dense(int rows, int cols) {
    static std::mt19937 generator(7);
    std::uniform_real_distribution<float> element(-2, 2);
    Mat a = mat_init(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) a.m[i][j] = element(generator);
    }
    return a;
}

inline Eigen::MatrixXd to_eigen(const Mat& a) {
    Eigen::MatrixXd e(a.rows, a.cols);
    for (int i = 0; i < a.rows; ++i) {
        for (int j = 0; j < a.cols; ++j) e(i, j) = a.m[i][j];
    }
    return e;
}

inline void expect_near(const Mat& actual, const Eigen::MatrixXd& expected, double tolerance) {
    ASSERT_EQ(actual.rows, expected.rows());
    ASSERT_EQ(actual.cols, expected.cols());
    EXPECT_LT((to_eigen(actual) - expected).norm(), tolerance) << to_eigen(actual) << "\n\n" << expected;
}

inline void expect_equal(const Mat& actual, const Mat& expected) { expect_near(actual, to_eigen(expected), 1e-30); }

inline void expect_empty(const Mat& a) {
    EXPECT_EQ(a.rows, 0);
    EXPECT_EQ(a.cols, 0);
}

}  // namespace zk::test
