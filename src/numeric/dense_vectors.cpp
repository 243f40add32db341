#include <algorithm>
#include <cmath>

#include "numeric/fixed_matrix.h"
#include "zk/dense_matrix.h"

namespace zk {
namespace {

constexpr float kNullVector = 1e-16f;
constexpr float kHalfPi = 1.5707964f;

// Norms and products run down column 0, over the larger of both counts. They do not work for a row vector.
int length(const Mat& a) { return used<Mat>(std::max(a.rows, a.cols)); }

// A copy of a with the elements of column 0 computed anew.
template <typename Element>
Mat with_column(Mat a, Element element) {
    for (int i = 0; i < used<Mat>(a.rows); ++i) a.m[i][0] = element(i);
    return a;
}

Mat vector(std::initializer_list<float> elements) {
    Mat v = sized<Mat>(static_cast<int>(elements.size()), 1);
    int i = 0;
    for (float element : elements) v.m[i++][0] = element;
    return v;
}

// Column i of a times column j of b, over the rows of a rotation block.
float columns(const Mat& a, int i, const Mat& b, int j) {
    return a.m[0][i] * b.m[0][j] + a.m[1][i] * b.m[1][j] + a.m[2][i] * b.m[2][j];
}

// Element i of R1' (p2 - p1): the terms of p2 are added to the negative product with p1.
float translation_along(int i, const Mat& T1, const Mat& T2) {
    float sum = -columns(T1, i, T1, 3);
    for (int k = 0; k < 3; ++k) sum += T1.m[k][i] * T2.m[k][3];
    return sum;
}

// The axis of R times its angle.
Mat angle_axis(const Mat& R) {
    const Mat l = vector({R.m[2][1] - R.m[1][2], R.m[0][2] - R.m[2][0], R.m[1][0] - R.m[0][1]});
    const float trace = mat_trace(R);
    if (vec_is_zeros(l)) {
        if (trace > 0) return vec_zeros(3);
        return vec_kV(kHalfPi, vec_add_scalar(1, mat_diag(R)));
    }
    // l = 2 sin(angle) axis and trace - 1 = 2 cos(angle)
    const double n = vec_norm2(l);
    const double angle = std::atan2(n, static_cast<double>(trace - 1));
    return vec_kV(static_cast<float>(angle / n), l);
}

}  // namespace
}  // namespace zk

ZK_API Mat vec_init(int n) { return zk::sized<Mat>(n, 1); }

ZK_API Mat vec_zeros(int n) { return zk::sized<Mat>(n, 1); }

ZK_API Mat vec_add(Mat a, Mat b) {
    return zk::with_column(a, [&](int i) { return a.m[i][0] + b.m[i][0]; });
}

ZK_API Mat vec_sub(Mat a, Mat b) {
    return zk::with_column(a, [&](int i) { return a.m[i][0] - b.m[i][0]; });
}

ZK_API Mat vec_minus(Mat a) {
    return zk::with_column(a, [&](int i) { return -a.m[i][0]; });
}

ZK_API Mat vec_kV(float k, Mat a) {
    return zk::with_column(a, [&](int i) { return k * a.m[i][0]; });
}

ZK_API Mat vec_add_scalar(float k, Mat a) {
    return zk::with_column(a, [&](int i) { return a.m[i][0] + k; });
}

ZK_API float vec_norm2(Mat a) { return std::sqrt(vec_dot(a, a)); }

ZK_API float vec_normInf(Mat a) {
    float largest = 0;
    for (int i = 0; i < zk::length(a) - 1; ++i) largest = std::max(largest, std::fabs(a.m[i][0]));
    return largest;
}

ZK_API float vec_dot(Mat a, Mat b) {
    float sum = 0;
    for (int i = 0; i < zk::length(a); ++i) sum += a.m[i][0] * b.m[i][0];
    return sum;
}

ZK_API int vec_is_zeros(Mat a) { return vec_norm2(a) < zk::kNullVector; }

ZK_API void array_cross(const float* a, const float* b, float* out) {
    const float x = a[1] * b[2] - a[2] * b[1];
    const float y = a[2] * b[0] - a[0] * b[2];
    const float z = a[0] * b[1] - a[1] * b[0];
    out[0] = x;
    out[1] = y;
    out[2] = z;
}

ZK_API Mat vec3x3_cross(Mat a, Mat b) {
    const float a0 = a.m[0][0], a1 = a.m[1][0], a2 = a.m[2][0];
    const float b0 = b.m[0][0], b1 = b.m[1][0], b2 = b.m[2][0];
    return zk::vector({a1 * b2 - a2 * b1, a2 * b0 - a0 * b2, a0 * b1 - a1 * b0});
}

ZK_API Mat vec_to_skew(Mat a) {
    const float x = a.m[0][0], y = a.m[1][0], z = a.m[2][0];
    return {3, 3, {{0, -z, y}, {z, 0, -x}, {-y, x, 0}}};
}

ZK_API Mat skew_to_vec(Mat S) { return zk::vector({S.m[2][1], S.m[0][2], S.m[1][0]}); }

ZK_API Mat vec_vex(Mat R) {
    const auto& m = R.m;
    return zk::vector({(m[2][1] - m[1][2]) * 0.5f, (m[0][2] - m[2][0]) * 0.5f, (m[1][0] - m[0][1]) * 0.5f});
}

ZK_API Mat mat_T2R(Mat T) {
    return zk::filled<Mat>(3, 3, [&](int i, int j) { return T.m[i][j]; });
}

ZK_API Mat mat_T2p(Mat T) { return zk::vector({T.m[0][3], T.m[1][3], T.m[2][3]}); }

ZK_API Mat mat_homogen_trans_inv(Mat T) { return T; }

ZK_API Mat vec_Tdiff(Mat T1, Mat T2) {
    const auto q = [&](int i, int j) { return zk::columns(T1, i, T2, j); };  // R1' R2
    return zk::vector({zk::translation_along(0, T1, T2), zk::translation_along(1, T1, T2),
                       zk::translation_along(2, T1, T2), (q(2, 1) - q(1, 2)) * 0.5f, (q(0, 2) - q(2, 0)) * 0.5f,
                       (q(1, 0) - q(0, 1)) * 0.5f});
}

ZK_API Mat vec_angle_axis_diff(Mat T1, Mat T2) {
    const Mat dp = vec_sub(mat_T2p(T2), mat_T2p(T1));
    const Mat a = zk::angle_axis(mat_mult(mat_T2R(T2), mat_T(mat_T2R(T1))));
    return zk::vector({dp.m[0][0], dp.m[1][0], dp.m[2][0], a.m[0][0], a.m[1][0], a.m[2][0]});
}
