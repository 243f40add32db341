#include "numeric/exchange_inverse.h"
#include "numeric/fixed_matrix.h"
#include "zk/numeric.h"

ZK_API Matrix7 unit_matrix_dim7(int n) { return zk::identity<Matrix7>(n, n); }

ZK_API Matrix7 matrix_t_dim7(Matrix7 A) { return zk::transposed(A); }

ZK_API Matrix7 matrix_a_dim7(Matrix7 A, Matrix7 B, int flag) {
    return flag >= 1 ? zk::sum(A, B) : zk::difference(A, B);
}

ZK_API Matrix7 matrix_m_dim7(Matrix7 A, Matrix7 B) { return zk::product<double>(A, B); }

ZK_API Matrix7 matrix_m_num_dim7(Matrix7 A, float k) { return zk::scaled(A, k); }

ZK_API Matrix7 matrix_inv_dim7(Matrix7 A) { return zk::inverse(A); }

// With before(i) the determinant of the block of rows 1 to i - 1, after(i) that of rows i + 1 to 5, and D that of the
// whole block, the inverse X of the tridiagonal A has, on and above the diagonal,
//     X(i, j) = before(i) (-A(i, i + 1)) ... (-A(j - 1, j)) after(j) / D
// and below it the same along the lower side diagonal. The unit end rows stay as they are.
ZK_API Matrix7 simp_matrix_inv77(Matrix7 A) {
    const auto& m = A.m;
    const auto sides = [&](int i) { return m[i][i + 1] * m[i + 1][i]; };

    float before[7] = {1, 1, m[1][1]};
    float after[7] = {0, 0, 0, 0, m[5][5], 1, 1};
    for (int i = 2; i <= 5; ++i) before[i + 1] = m[i][i] * before[i] - sides(i - 1) * before[i - 1];
    for (int i = 4; i >= 1; --i) after[i - 1] = m[i][i] * after[i] - sides(i) * after[i + 1];
    const float factor = 1 / before[6];

    Matrix7 X = zk::sized<Matrix7>(7, 7);
    X.m[0][0] = X.m[6][6] = 1;
    for (int i = 1; i <= 5; ++i) {
        X.m[i][i] = before[i] * after[i] * factor;
        float path = 1;
        for (int j = i + 1; j <= 6; ++j) {
            path *= -m[j - 1][j];
            X.m[i][j] = before[i] * path * after[j] * factor;
        }
        path = 1;
        for (int j = i - 1; j >= 0; --j) {
            path *= -m[j + 1][j];
            X.m[i][j] = before[j] * path * after[i] * factor;
        }
    }
    return X;
}
