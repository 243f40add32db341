#include <algorithm>
#include <cmath>

#include "numeric/fixed_matrix.h"
#include "zk/dense_matrix.h"
#include "zk/numeric.h"

namespace zk {
namespace {

constexpr float kSingular = 1e-16f;

// H = I - 2 u u', u along v = x + sign(x0) |x| e1, so that H x = -sign(x0) |x| e1
Mat reflection(const Mat& x) {
    Mat v = x;
    v.m[0][0] = x.m[0][0] + static_cast<float>(zk_sign(x.m[0][0])) * vec_norm2(x);
    const Mat u = mat_kM(1 / vec_norm2(v), v);
    return mat_sub(mat_eye(x.rows, x.rows), mat_kM(2.0f, mat_mult(u, mat_T(u))));
}

// H as the lower right corner of an identity.
Mat bordered(const Mat& H, int size) {
    const int k = size - H.rows;
    return filled<Mat>(size, size, [&](int i, int j) {
        if (i >= k && j >= k) return H.m[i - k][j - k];
        return i == j ? 1.0f : 0.0f;
    });
}

struct Iteration {
    Mat R;  // of the last round; empty when there was none
    Mat Q;  // the product of all rounds
};

// T = Q R, then T := R Q, until R is diagonal within tol.
Iteration iterate(int max_iter, const Mat& A, float tol) {
    Iteration done{{}, mat_eye(A.rows, A.rows)};
    Mat T = A;
    for (int i = 0; i < max_iter; ++i) {
        Mat Q;
        mat_qr(&Q, &done.R, T);
        T = mat_mult(done.R, Q);
        done.Q = mat_mult(done.Q, Q);
        const Mat D = mat_diag(mat_diag(done.R));
        const float e = std::fabs(mat_find_abs_max(mat_sub(done.R, D)));
        if (tol > e) break;
    }
    return done;
}

}  // namespace
}  // namespace zk

ZK_API void mat_qr(Mat* Q, Mat* R, Mat A) {
    const int rows = zk::used<Mat>(A.rows), steps = zk::used<Mat>(std::min(A.rows, A.cols));
    *Q = mat_eye(rows, rows);
    *R = A;
    for (int k = 0; k < steps; ++k) {
        const Mat x = zk::filled<Mat>(rows - k, 1, [&](int i, int) { return R->m[k + i][k]; });
        const Mat H = zk::bordered(zk::reflection(x), rows);
        *Q = mat_mult(*Q, H);
        *R = mat_mult(H, *R);
    }
}

ZK_API int mat_eig(int max_iter, Mat* values, Mat A, float tol) {
    if (A.rows != A.cols) return 0;
    *values = mat_diag(zk::iterate(max_iter, A, tol).R);
    for (int i = 0; i < zk::used<Mat>(values->rows); ++i) {
        if (values->m[i][0] < 0) values->m[i][0] = -values->m[i][0];
    }
    return 1;
}

ZK_API int mat_hermitian_eig(int max_iter, Mat* values, Mat* vectors, Mat A, float tol) {
    if (mat_is_hermitian(A) == 0) return -1;
    const zk::Iteration done = zk::iterate(max_iter, A, tol);
    *vectors = done.Q;
    *values = mat_diag(done.R);
    // The diagonal of R has the sign of the reflections: v is kept where A - v I is singular, else it is -v.
    const Mat E = mat_eye(A.rows, A.cols);
    for (int i = 0; i < zk::used<Mat>(values->rows); ++i) {
        float& v = values->m[i][0];
        if (std::fabs(mat_det(mat_sub(A, mat_kM(v, E)))) > zk::kSingular) v = -v;
    }
    return 0;
}
