#include "numeric/exchange_inverse.h"
#include "numeric/fixed_matrix.h"
#include "numeric/frame_inverse.h"
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

ZK_API Matrix matrix_inv_coordinate_system(Matrix T) { return zk::frame_inverse(T); }
