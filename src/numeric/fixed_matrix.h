// Arithmetic shared by the matrix records of three capacities: Matrix, Matrix7 and Mat.
#pragma once

#include <algorithm>
#include <type_traits>

namespace zk {

template <typename M>
inline constexpr int kCapacity = std::extent_v<decltype(M::m)>;

// Counts are trusted, but one that no record can hold reaches its end and not beyond.
template <typename M>
constexpr int used(int count) {
    return std::clamp(count, 0, kCapacity<M>);
}

template <typename M>
M sized(int rows, int cols) {
    M result{};
    result.rows = static_cast<decltype(result.rows)>(rows);
    result.cols = static_cast<decltype(result.cols)>(cols);
    return result;
}

template <typename M, typename Element>
M filled(int rows, int cols, Element element) {
    M result = sized<M>(rows, cols);
    for (int i = 0; i < used<M>(rows); ++i) {
        for (int j = 0; j < used<M>(cols); ++j) result.m[i][j] = element(i, j);
    }
    return result;
}

template <typename M>
M identity(int rows, int cols) {
    return filled<M>(rows, cols, [](int i, int j) { return i == j ? 1.0f : 0.0f; });
}

template <typename M>
M transposed(const M& a) {
    return filled<M>(a.cols, a.rows, [&](int i, int j) { return a.m[j][i]; });
}

template <typename M>
M scaled(const M& a, float k) {
    return filled<M>(a.rows, a.cols, [&](int i, int j) { return a.m[i][j] * k; });
}

// The size is that of a.
template <typename M>
M sum(const M& a, const M& b) {
    return filled<M>(a.rows, a.cols, [&](int i, int j) { return a.m[i][j] + b.m[i][j]; });
}

template <typename M>
M difference(const M& a, const M& b) {
    return filled<M>(a.rows, a.cols, [&](int i, int j) { return a.m[i][j] - b.m[i][j]; });
}

template <typename Sum, typename M>
M product(const M& a, const M& b, int rows, int inner, int cols) {
    return filled<M>(rows, cols, [&](int i, int j) {
        Sum total = 0;
        for (int k = 0; k < used<M>(inner); ++k) total += a.m[i][k] * b.m[k][j];
        return static_cast<float>(total);
    });
}

// Single-precision products, added up as Sum in ascending order and rounded once. Nearly all are of two frames, whose
// known bounds let the compiler lay the loops out flat.
template <typename Sum, typename M>
M product(const M& a, const M& b) {
    if (a.rows == 4 && a.cols == 4 && b.cols == 4) return product<Sum>(a, b, 4, 4, 4);
    return product<Sum>(a, b, a.rows, a.cols, b.cols);
}

}  // namespace zk
