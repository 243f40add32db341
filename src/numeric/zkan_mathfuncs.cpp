#include <cmath>

#include "numeric/fixed_matrix.h"
#include "zk/numeric.h"

ZK_API Matrix zero_matrix(int rows, int cols) { return zk::sized<Matrix>(rows, cols); }

ZK_API Matrix unit_matrix(int n) { return zk::identity<Matrix>(n, n); }

ZK_API Matrix matrix_t(Matrix A) { return zk::transposed(A); }

ZK_API Matrix matrix_m(Matrix A, Matrix B) { return zk::product<double>(A, B); }

ZK_API Matrix matrix_a(Matrix A, Matrix B, int flag) { return flag >= 1 ? zk::sum(A, B) : zk::difference(A, B); }

ZK_API Matrix matrix_m_num(Matrix A, float k) { return zk::scaled(A, k); }

ZK_API Matrix matrix_T2R(Matrix A) {
    return zk::filled<Matrix>(3, 3, [&](int i, int j) { return A.m[i][j]; });
}

ZK_API Matrix cross(Matrix a, Matrix b) {
    const float a0 = a.m[0][0], a1 = a.m[1][0], a2 = a.m[2][0];
    const float b0 = b.m[0][0], b1 = b.m[1][0], b2 = b.m[2][0];
    return {3, 1, {{a1 * b2 - a2 * b1}, {a2 * b0 - a0 * b2}, {a0 * b1 - a1 * b0}}};
}

ZK_API int zk_sign(float v) { return (v > 0) - (v < 0); }

ZK_API float my_atan2f(float y, float x) {
    const float r = std::sqrt(y * y + x * x);
    const float a = std::acos(x / r);
    return y >= 0 ? a : -a;
}
