#include <algorithm>

#include "zk/dense_matrix.h"

namespace zk {
namespace {

constexpr int kHalfCapacity = 1000;

// The first half wins a tie, in both orders, and loses to a NaN.
void merge(int order, const float* first, int first_count, const float* second, int second_count, float* out) {
    const float *first_end = first + first_count, *second_end = second + second_count;
    while (first != first_end && second != second_end) {
        const bool first_wins = order == 0 ? *second >= *first : *first >= *second;
        *out++ = first_wins ? *first++ : *second++;
    }
    out = std::copy(first, first_end, out);
    std::copy(second, second_end, out);
}

}  // namespace
}  // namespace zk

ZK_API void merge_sort(int order, float* a, int n) {
    if (n < 2 || n > 2 * zk::kHalfCapacity) return;
    const int h = n / 2;
    float first[zk::kHalfCapacity], second[zk::kHalfCapacity];
    std::copy_n(a, h, first);
    std::copy_n(a + h, n - h, second);
    merge_sort(order, first, h);
    merge_sort(order, second, n - h);
    zk::merge(order, first, h, second, n - h, a);
}
