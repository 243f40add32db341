#include "numeric/exchange_inverse.h"
#include "numeric/fixed_matrix.h"
#include "zk/numeric.h"

namespace zk {
namespace {

struct Column {
    float x, y, z;
};

// det(a b c), expanded by the rule of Sarrus.
float determinant(const Column& a, const Column& b, const Column& c) {
    return a.x * b.y * c.z + b.x * c.y * a.z + c.x * a.y * b.z - c.x * b.y * a.z - b.x * a.y * c.z - a.x * c.y * b.z;
}

// The determinant of a without row i and column j, with the sign of its place.
float cofactor(const Matrix& a, int i, int j) {
    const int rows[] = {(i + 1) % 4, (i + 2) % 4, (i + 3) % 4};
    const auto column = [&](int k) { return Column{a.m[rows[0]][k], a.m[rows[1]][k], a.m[rows[2]][k]}; };
    const float minor = determinant(column((j + 1) % 4), column((j + 2) % 4), column((j + 3) % 4));
    return (i + j) % 2 == 0 ? minor : -minor;
}

float times(float element, double d) { return static_cast<float>(element * d); }

}  // namespace
}  // namespace zk

ZK_API Matrix matrix_inv(Matrix A) { return zk::inverse(A); }

// inverse(A) = adjugate(A) / det(A)
ZK_API Matrix matrix_inv_full_rank(Matrix A) {
    float determinant = 0;
    for (int j = 0; j < 4; ++j) determinant += A.m[0][j] * zk::cofactor(A, 0, j);
    const float d = 1 / determinant;
    return zk::filled<Matrix>(4, 4, [&](int i, int j) { return zk::times(zk::cofactor(A, j, i), d); });
}

// [B t; 0 1] has the inverse [inverse(B), -inverse(B) t; 0 1]. With B = (a b c), the rows of inverse(B) are b x c, c x
// a and a x b over det(B), and by the rule of Cramer inverse(B) t = (det(t b c), det(a t c), det(a b t)) / det(B).
ZK_API Matrix matrix_inv_coordinate_system(Matrix T) {
    const auto& m = T.m;
    const zk::Column a{m[0][0], m[1][0], m[2][0]}, b{m[0][1], m[1][1], m[2][1]}, c{m[0][2], m[1][2], m[2][2]},
        t{m[0][3], m[1][3], m[2][3]};
    const double d = 1 / zk::determinant(a, b, c);
    const auto fill = [d](float* row, const zk::Column& u, const zk::Column& v, float translation) {
        row[0] = zk::times(u.y * v.z - u.z * v.y, d);
        row[1] = zk::times(u.z * v.x - u.x * v.z, d);
        row[2] = zk::times(u.x * v.y - u.y * v.x, d);
        row[3] = zk::times(-translation, d);
    };
    Matrix result = zk::sized<Matrix>(4, 4);
    fill(result.m[0], b, c, zk::determinant(t, b, c));
    fill(result.m[1], c, a, zk::determinant(a, t, c));
    fill(result.m[2], a, b, zk::determinant(a, b, t));
    result.m[3][3] = 1;
    return result;
}
