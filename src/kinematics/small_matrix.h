// Vectors and matrices of three, and transforms of three rows of four, for the inside of the seven-axis solvers: what
// the records of the interface would copy around in every cycle.
#pragma once

#include <array>
#include <cmath>
#include <cstring>

namespace zk {

template <class Real>
using Vec3Of = std::array<Real, 3>;
template <class Real>
using Mat3Of = std::array<Vec3Of<Real>, 3>;
using Vec3 = Vec3Of<float>;
using Mat3 = Mat3Of<float>;

// The last row is 0, 0, 0, 1.
template <class Real>
struct Transform {
    Real m[3][4];
};

template <class Real>
Transform<Real> operator*(const Transform<Real>& a, const Transform<Real>& b) {
    typedef Real Row __attribute__((vector_size(4 * sizeof(Real))));
    Row row[3];
    std::memcpy(row, b.m, sizeof row);
    Transform<Real> c;
    for (int i = 0; i < 3; ++i) {
        Row sum = a.m[i][0] * row[0] + a.m[i][1] * row[1] + a.m[i][2] * row[2];
        sum[3] += a.m[i][3];
        std::memcpy(c.m[i], &sum, sizeof sum);
    }
    return c;
}

// A transform, and its rotation and translation, from any record that has an m.
template <class Real, class T>
Transform<Real> transform_of(const T& t) {
    Transform<Real> result;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j) result.m[i][j] = t.m[i][j];
    }
    return result;
}
template <class Real, class T>
Mat3Of<Real> rotation_of(const T& t) {
    Mat3Of<Real> r;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) r[i][j] = t.m[i][j];
    }
    return r;
}
template <class Real, class T>
Vec3Of<Real> translation_of(const T& t) {
    return {t.m[0][3], t.m[1][3], t.m[2][3]};
}

template <class Real>
Mat3Of<Real> transposed(const Mat3Of<Real>& a) {
    return {{{a[0][0], a[1][0], a[2][0]}, {a[0][1], a[1][1], a[2][1]}, {a[0][2], a[1][2], a[2][2]}}};
}

template <class Real>
Real dot(const Vec3Of<Real>& a, const Vec3Of<Real>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

template <class Real>
Real norm(const Vec3Of<Real>& a) {
    using std::sqrt;
    return sqrt(dot(a, a));
}

template <class Real>
Vec3Of<Real> cross(const Vec3Of<Real>& a, const Vec3Of<Real>& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

template <class Real>
Vec3Of<Real> minus(const Vec3Of<Real>& a, const Vec3Of<Real>& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

template <class Real>
Vec3Of<Real> scaled(Real k, const Vec3Of<Real>& a) {
    return {k * a[0], k * a[1], k * a[2]};
}

template <class Real>
Vec3Of<Real> normalised(const Vec3Of<Real>& a) {
    const Real n = norm(a);
    return {a[0] / n, a[1] / n, a[2] / n};
}

template <class Real>
Vec3Of<Real> product(const Mat3Of<Real>& a, const Vec3Of<Real>& v) {
    return {dot(a[0], v), dot(a[1], v), dot(a[2], v)};
}

template <class Real>
Mat3Of<Real> product(const Mat3Of<Real>& a, const Mat3Of<Real>& b) {
    Mat3Of<Real> c;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) c[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    }
    return c;
}

}  // namespace zk
