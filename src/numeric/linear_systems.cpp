#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "numeric/exchange_inverse.h"
#include "numeric/fixed_matrix.h"
#include "zk/dense_matrix.h"

namespace zk {
namespace {

using Columns = std::array<int, kCapacity<Mat>>;

// The determinant of the last n rows of the block of a size, over the n columns named: expansion along the first row.
float laplace(const Mat& a, int size, const Columns& columns, int n) {
    const float* row = a.m[size - n];
    if (n == 1) return row[columns[0]];
    if (n == 2) {
        const float* below = a.m[size - 1];
        return row[columns[0]] * below[columns[1]] - row[columns[1]] * below[columns[0]];
    }
    float sum = 0;
    for (int j = 0; j < n; ++j) {
        Columns rest;
        std::remove_copy(columns.begin(), columns.begin() + n, rest.begin(), columns[j]);
        const double sign = j % 2 == 0 ? 1 : -1;
        sum = static_cast<float>(sum + row[columns[j]] * sign * laplace(a, size, rest, n - 1));
    }
    return sum;
}

// Where the largest absolute value of column k stands, from row k down; the first one wins.
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
    zk::Columns all;
    for (int j = 0; j < zk::kCapacity<Mat>; ++j) all[j] = j;
    const int n = zk::used<Mat>(A.rows);
    return zk::laplace(A, n, all, n);
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
