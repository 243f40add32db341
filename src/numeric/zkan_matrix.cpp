#include <cmath>
#include <cstdio>
#include <cstring>

#include "numeric/exchange_inverse.h"
#include "numeric/fixed_matrix.h"
#include "zk/dense_matrix.h"

namespace zk {
namespace {

bool in_record(int number) { return number >= 1 && number <= kCapacity<Mat>; }

template <typename Visit>
void for_each(const Mat& a, Visit visit) {
    for (int i = 0; i < used<Mat>(a.rows); ++i) {
        for (int j = 0; j < used<Mat>(a.cols); ++j) visit(a.m[i][j]);
    }
}

bool same_size(const Mat& a, const Mat& b) { return a.rows == b.rows && a.cols == b.cols; }

// As much of the block as both records hold.
template <typename To, typename From>
To converted(const From& a) {
    To result = sized<To>(a.rows, a.cols);
    const int rows = std::min(used<To>(a.rows), used<From>(a.rows));
    const int cols = std::min(used<To>(a.cols), used<From>(a.cols));
    for (int i = 0; i < rows; ++i) std::copy_n(a.m[i], cols, result.m[i]);
    return result;
}

}  // namespace
}  // namespace zk

ZK_API Mat mat_init(int rows, int cols) { return zk::sized<Mat>(rows, cols); }

ZK_API Mat mat_zeros(int rows, int cols) { return zk::sized<Mat>(rows, cols); }

ZK_API Mat mat_eye(int rows, int cols) { return zk::identity<Mat>(rows, cols); }

ZK_API void mat_set_value(Mat* A, const float* values) {
    for (int i = 0; i < zk::used<Mat>(A->rows); ++i, values += A->cols) {
        std::copy_n(values, zk::used<Mat>(A->cols), A->m[i]);
    }
}

ZK_API Mat mat_get_Mrow_i(int i, Mat A) {
    return zk::filled<Mat>(1, A.cols, [&](int, int j) { return zk::in_record(i) ? A.m[i - 1][j] : 0; });
}

ZK_API Mat mat_get_Mcol_j(int j, Mat A) {
    return zk::filled<Mat>(A.rows, 1, [&](int i, int) { return zk::in_record(j) ? A.m[i][j - 1] : 0; });
}

ZK_API void mat_set_Mrow_i(int i, Mat* A, Mat v) {
    if (!zk::in_record(i)) return;
    for (int j = 0; j < zk::used<Mat>(v.cols); ++j) A->m[i - 1][j] = v.m[0][j];
}

ZK_API void mat_set_Mcol_j(int j, Mat* A, Mat v) {
    if (!zk::in_record(j)) return;
    for (int i = 0; i < zk::used<Mat>(v.rows); ++i) A->m[i][j - 1] = v.m[i][0];
}

ZK_API void swap_row(Mat* A, int i, int j) {
    if (zk::in_record(i) && zk::in_record(j)) zk::exchange_rows(*A, zk::used<Mat>(A->cols), i - 1, j - 1);
}

ZK_API void swap_col(Mat* A, int i, int j) {
    if (zk::in_record(i) && zk::in_record(j)) zk::exchange_cols(*A, zk::used<Mat>(A->rows), i - 1, j - 1);
}

ZK_API void mat_print(Mat A) {
    std::printf("Mat = \n");
    for (int i = 0; i < zk::used<Mat>(A.rows); ++i) {
        std::printf("\t");
        for (int j = 0; j < zk::used<Mat>(A.cols); ++j) std::printf("%lf,\t", static_cast<double>(A.m[i][j]));
        std::printf("\n");
    }
}

ZK_API Mat mat_add(Mat A, Mat B) { return zk::same_size(A, B) ? zk::sum(A, B) : Mat{}; }

ZK_API Mat mat_sub(Mat A, Mat B) { return zk::same_size(A, B) ? zk::difference(A, B) : Mat{}; }

ZK_API Mat mat_kM(float k, Mat A) { return zk::scaled(A, k); }

ZK_API Mat mat_mult(Mat A, Mat B) { return A.cols == B.rows ? zk::product<float>(A, B) : Mat{}; }

ZK_API Mat mat_T(Mat A) { return zk::transposed(A); }

ZK_API float mat_trace(Mat A) {
    float trace = 0;
    for (int i = 0; i < zk::used<Mat>(std::min(A.rows, A.cols)); ++i) trace += A.m[i][i];
    return trace;
}

ZK_API Mat mat_diag(Mat A) {
    const auto square = [](int n, auto element) {
        return zk::filled<Mat>(n, n, [&](int i, int j) { return i == j ? element(i) : 0.0f; });
    };
    if (A.rows == 1 && A.cols > 1) return square(A.cols, [&](int i) { return A.m[0][i]; });
    if (A.cols == 1 && A.rows > 1) return square(A.rows, [&](int i) { return A.m[i][0]; });
    if (A.rows < 2 || A.cols < 2) return {};
    return zk::filled<Mat>(std::min(A.rows, A.cols), 1, [&](int i, int) { return A.m[i][i]; });
}

ZK_API float mat_find_abs_max(Mat A) {
    float largest = 0;
    zk::for_each(A, [&](float element) {
        if (std::fabs(element) > largest) largest = std::fabs(element);
    });
    return largest;
}

ZK_API float mat_find_abs_min(Mat A) {
    float smallest = 1e10f;
    zk::for_each(A, [&](float element) {
        if (std::fabs(element) < smallest) smallest = std::fabs(element);
    });
    return smallest;
}

ZK_API int mat_is_hermitian(Mat A) {
    if (A.rows != A.cols) return -1;
    for (int i = 0; i < zk::used<Mat>(A.rows); ++i) {
        for (int j = 0; j < zk::used<Mat>(A.cols); ++j) {
            if (A.m[i][j] != A.m[j][i]) return 0;
        }
    }
    return 1;
}

// Of the bytes: zeros of different sign differ, and a NaN equals itself.
ZK_API int mat_is_equal(Mat A, Mat B) {
    return std::memcmp(&A, &B, sizeof A) == 0;  // NOLINT(bugprone-suspicious-memory-comparison)
}

ZK_API Mat matrix_to_mat(Matrix A) { return zk::converted<Mat>(A); }

ZK_API Matrix mat_to_matrix(Mat A) { return zk::converted<Matrix>(A); }

ZK_API Mat matrix_more_to_mat(Matrix7 A) { return zk::converted<Mat>(A); }

ZK_API Matrix7 mat_to_matrix_more(Mat A) { return zk::converted<Matrix7>(A); }
