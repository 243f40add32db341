// Dense matrices in tests: written as lists, multiplied in double precision, compared by their distance.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
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

inline float random_element() {
    static std::mt19937 generator(7);
    return std::uniform_real_distribution<float>(-2, 2)(generator);
}

inline Mat random_dense(int rows, int cols) {
    Mat a = mat_init(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) a.m[i][j] = random_element();
    }
    return a;
}

inline Mat product(const Mat& a, const Mat& b) {
    Mat result = mat_init(a.rows, b.cols);
    for (int i = 0; i < a.rows; ++i) {
        for (int j = 0; j < b.cols; ++j) {
            double sum = 0;
            for (int k = 0; k < a.cols; ++k) sum += static_cast<double>(a.m[i][k]) * b.m[k][j];
            result.m[i][j] = static_cast<float>(sum);
        }
    }
    return result;
}

// Root of the sum of squares.
inline double distance(const Mat& a, const Mat& b) {
    double squares = 0;
    for (int i = 0; i < a.rows; ++i) {
        for (int j = 0; j < a.cols; ++j) squares += std::pow(static_cast<double>(a.m[i][j]) - b.m[i][j], 2);
    }
    return std::sqrt(squares);
}
inline double norm(const Mat& a) { return distance(a, {}); }

inline void expect_near(const Mat& actual, const Mat& expected, double tolerance) {
    ASSERT_EQ(actual.rows, expected.rows);
    ASSERT_EQ(actual.cols, expected.cols);
    EXPECT_LE(distance(actual, expected), tolerance);
}

inline void expect_equal(const Mat& actual, const Mat& expected) { expect_near(actual, expected, 0); }

inline void expect_orthogonal(const Mat& a) { expect_near(product(a, mat_T(a)), mat_eye(a.rows, a.rows), 1e-4); }

// The bound is the rounding of single precision, for any condition of a.
inline void expect_inverse(const Mat& actual, const Mat& a) {
    expect_near(product(a, actual), mat_eye(a.rows, a.rows), 1e-6 * norm(a) * norm(actual));
}

}  // namespace zk::test
