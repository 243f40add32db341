// Gauss-Jordan inversion in place by the exchange form, with complete pivoting, for the matrix records of any capacity.
#pragma once

#include <cmath>
#include <utility>

#include "numeric/fixed_matrix.h"

namespace zk {

struct Pivot {
    int row = 0, col = 0;
    float value = 0;
};

// The largest absolute value of the block from (k, k) on; the first one wins. Over zeros the position stays as it was.
template <typename M>
void find_pivot(const M& a, int n, int k, Pivot& pivot) {
    pivot.value = 0;
    for (int i = k; i < n; ++i) {
        for (int j = k; j < n; ++j) {
            if (std::fabs(a.m[i][j]) > std::fabs(pivot.value)) pivot = {i, j, a.m[i][j]};
        }
    }
}

template <typename M>
void exchange_rows(M& a, int n, int i, int j) {
    for (int k = 0; k < n; ++k) std::swap(a.m[i][k], a.m[j][k]);
}

template <typename M>
void exchange_cols(M& a, int n, int i, int j) {
    for (int k = 0; k < n; ++k) std::swap(a.m[k][i], a.m[k][j]);
}

enum class AtZeroPivot { kCarryOn, kGiveUp };

// Inverts the n by n block of a, computing in Real. With kGiveUp it returns false at the first quotient that is not
// finite and leaves a half changed; with kCarryOn it leaves infinities and NaN in a.
template <typename Real, AtZeroPivot policy, typename M>
bool invert_by_exchange(M& a, int n) {
    Pivot pivot, chosen[kCapacity<M>];
    for (int k = 0; k < n; ++k) {
        find_pivot(a, n, k, pivot);
        chosen[k] = pivot;
        exchange_rows(a, n, k, pivot.row);
        exchange_cols(a, n, k, pivot.col);

        const Real p = pivot.value;
        Real r[kCapacity<M>], c[kCapacity<M>];
        for (int i = 0; i < n; ++i) {
            r[i] = i == k ? 1 / p : -static_cast<Real>(a.m[k][i]) / p;
            c[i] = i == k ? 1 : static_cast<Real>(a.m[i][k]);
            if (policy == AtZeroPivot::kGiveUp && !std::isfinite(r[i])) return false;
        }
        for (int i = 0; i < n; ++i) a.m[k][i] = a.m[i][k] = 0;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) a.m[i][j] = static_cast<float>(a.m[i][j] + c[i] * r[j]);
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        exchange_cols(a, n, k, chosen[k].row);
        exchange_rows(a, n, k, chosen[k].col);
    }
    return true;
}

// The inverse of the square block of size rows, in double precision. Both counts are kept.
template <typename M>
M inverse(const M& a) {
    if (a.rows < 1) return a;
    M result = filled<M>(a.rows, a.rows, [&](int i, int j) { return a.m[i][j]; });
    result.cols = a.cols;
    invert_by_exchange<double, AtZeroPivot::kCarryOn>(result, used<M>(a.rows));
    return result;
}

}  // namespace zk
