#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>

#include "numeric/exchange_inverse.h"
#include "numeric/fixed_matrix.h"
#include "zk/dense_matrix.h"

namespace zk {
namespace {

// Expansion along the rows, bottom up: minors[columns] is the determinant of the last rows over that set of columns, as
// many rows as columns, bit j for column j. Each minor is computed once, which takes n 2^n steps and not n!.
float laplace(const Mat& a, int n, float* minors) {
    const unsigned all = (1u << n) - 1;
    for (unsigned columns = 1; columns <= all; ++columns) {
        const int count = std::popcount(columns);
        const float* row = a.m[n - count];
        const unsigned first = columns & -columns, others = columns ^ first;
        if (count == 1) {
            minors[columns] = row[std::countr_zero(columns)];
        } else if (count == 2) {
            minors[columns] =
                row[std::countr_zero(first)] * minors[others] - row[std::countr_zero(others)] * minors[first];
        } else {
            float sum = 0;
            double sign = 1;
            for (unsigned rest = columns; rest != 0; rest &= rest - 1, sign = -sign) {
                const unsigned column = rest & -rest;
                sum = static_cast<float>(sum + row[std::countr_zero(column)] * sign * minors[columns ^ column]);
            }
            minors[columns] = sum;
        }
    }
    return minors[all];
}

// The row of the largest absolute value of column k, from row k down; the first one wins.
int pivot_row(const Mat& a, int rows, int k) {
    int row = k;
    for (int i = k + 1; i < rows; ++i) {
        if (std::fabs(a.m[i][k]) > std::fabs(a.m[row][k])) row = i;
    }
    return row;
}

}  // namespace
}  // namespace zk

ZK_API float directCalculateDetA(Mat A) {
    if (A.rows != A.cols || A.rows < 1) return 0;
    const int n = zk::used<Mat>(A.rows);
    const std::unique_ptr<float[]> minors(new (std::nothrow) float[std::size_t{1} << n]);
    return minors ? zk::laplace(A, n, minors.get()) : std::numeric_limits<float>::quiet_NaN();
}

ZK_API float mat_det(Mat A) {
    if (A.rows != A.cols) {
        std::fputs("A is not a square matrix.", stderr);
        return std::numeric_limits<float>::infinity();
    }
    const int n = zk::used<Mat>(A.rows);
    for (int k = 0; k < n - 1; ++k) {
        if (A.m[k][k] == 0) return directCalculateDetA(A);
        for (int i = k + 1; i < n; ++i) {
            const float f = A.m[i][k] / A.m[k][k];
            for (int j = k + 1; j < n; ++j) A.m[i][j] -= A.m[k][j] * f;  // column k is left as it is
        }
    }
    float product = 1;
    for (int k = 0; k < n; ++k) product *= A.m[k][k];
    return product;
}

ZK_API int mat_lu(Mat* L, Mat* U, Mat A, float tol) {
    const int rows = zk::used<Mat>(A.rows), cols = zk::used<Mat>(A.cols);
    Mat lower = zk::identity<Mat>(A.rows, A.rows);
    for (int k = 0; k < cols - 1; ++k) {
        for (int i = k + 1; i < rows; ++i) {
            const float l = A.m[i][k] / A.m[k][k];
            lower.m[i][k] = l;
            for (int j = k; j < cols; ++j) A.m[i][j] -= l * A.m[k][j];
        }
    }
    *L = lower;
    *U = A;
    const float last = rows > 0 && cols > 0 ? A.m[rows - 1][cols - 1] : 0;
    return tol > std::fabs(last) ? 0 : 1;
}

ZK_API int mat_inv(Mat* out, Mat A) {
    if (A.rows != A.cols) return 0;
    if (!zk::invert_by_exchange<float, zk::AtZeroPivot::kGiveUp>(A, zk::used<Mat>(A.rows))) return -1;
    *out = A;
    return 1;
}

ZK_API int mat_rank(int flag, Mat A, float tol) {
    if (flag == 1) A = zk::transposed(A);
    const int rows = zk::used<Mat>(A.rows), cols = zk::used<Mat>(A.cols), bound = std::min(rows, cols);
    for (int k = 0; k < bound; ++k) {
        const int pivot = zk::pivot_row(A, rows, k);
        if (tol >= std::fabs(A.m[pivot][k])) return k;
        zk::exchange_rows(A, cols, k, pivot);
        for (int i = k + 1; i < rows; ++i) {
            const float f = A.m[i][k] / A.m[k][k];
            for (int j = k; j < cols; ++j) A.m[i][j] -= f * A.m[k][j];
        }
    }
    return bound;
}
