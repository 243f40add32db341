#include <algorithm>
#include <cmath>

#include "numeric/fixed_matrix.h"
#include "zk/dense_matrix.h"
#include "zk/numeric.h"

namespace zk {
namespace {

constexpr double kSmall = 0.00001;  // singular values count as 0, and residues as none, up to here

float magnitude(float v) { return v * static_cast<float>(zk_sign(v)); }

int smaller_count(const Mat& a) { return used<Mat>(std::min(a.rows, a.cols)); }

Mat inverse_or_zeros(const Mat& square) {
    Mat inverse = mat_init(square.rows, square.cols);
    mat_inv(&inverse, square);
    return inverse;
}

}  // namespace
}  // namespace zk

// A A' = U S S' U' and A' A = V S' S V'. Each eigenvector comes with a sign of its own: A v = s u decides u's.
ZK_API void mat_svd(Mat* U, Mat* S, Mat* V, Mat A) {
    const Mat B = mat_mult(mat_T(A), A), C = mat_mult(A, mat_T(A));
    Mat values1{}, values2{};
    mat_hermitian_eig(1000, &values1, U, C, 1e-16f);
    mat_hermitian_eig(1000, &values2, V, B, 1e-16f);

    const int count = zk::used<Mat>(std::min(values1.rows, values2.rows));
    *S = mat_init(A.rows, A.cols);
    for (int i = 0; i < count; ++i) S->m[i][i] = std::sqrt(zk::magnitude(values1.m[i][0]));
    for (int j = 1; j <= count; ++j) {
        const Mat u = mat_get_Mcol_j(j, *U), v = mat_get_Mcol_j(j, *V);
        const double e = vec_norm2(vec_sub(mat_mult(A, v), vec_kV(S->m[j - 1][j - 1], u)));
        if (e > zk::kSmall) mat_set_Mcol_j(j, U, vec_minus(u));
    }
}

ZK_API Mat mat_pinv_svd(Mat A) {
    Mat U{}, S{}, V{};
    mat_svd(&U, &S, &V, A);
    Mat P = mat_init(A.cols, A.rows);
    for (int i = 0; i < zk::smaller_count(A); ++i) {
        if (std::fabs(static_cast<double>(S.m[i][i])) > zk::kSmall) P.m[i][i] = 1 / S.m[i][i];
    }
    return mat_mult(mat_mult(V, P), mat_T(U));
}

ZK_API Mat mat_pinv(Mat A) {
    const Mat At = mat_T(A);
    if (A.rows < A.cols) return mat_mult(At, zk::inverse_or_zeros(mat_mult(A, At)));
    if (A.rows == A.cols) return zk::inverse_or_zeros(A);
    return mat_mult(zk::inverse_or_zeros(mat_mult(At, A)), At);
}

ZK_API float mat_cond(Mat A) {
    Mat values{};
    mat_eig(1000, &values, mat_mult(mat_T(A), A), 1e-10f);
    const int n = std::max(zk::smaller_count(A), 1);
    return std::sqrt(values.m[0][0] / values.m[n - 1][0]);
}
