#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "zk/dense_matrix.h"

namespace {

std::vector<float> random_values(int n) {
    std::mt19937 generator(5);
    std::vector<float> values(n);
    for (float& v : values) v = std::uniform_real_distribution<float>(-9, 9)(generator);
    return values;
}

TEST(MergeSort, SortsBothWaysUpTo2000Values) {
    for (int n : {0, 1, 2, 3, 17, 1999, 2000, 2001}) {
        std::vector<float> up = random_values(n), down = up, sorted = up;
        if (n <= 2000) std::sort(sorted.begin(), sorted.end());
        merge_sort(0, up.data(), n);
        EXPECT_EQ(up, sorted) << n;
        merge_sort(-3, down.data(), n);
        if (n <= 2000) std::reverse(sorted.begin(), sorted.end());
        EXPECT_EQ(down, sorted) << n;
    }
    merge_sort(0, nullptr, -5);
}

TEST(MergeSort, IsStableAndMovesTheSecondHalfBeforeANan) {
    const std::vector<bool> minus{true, false, false, true, true};
    for (int order : {0, 1}) {
        float zeros[] = {-0.0f, 0.0f, 0.0f, -0.0f, -0.0f};
        merge_sort(order, zeros, 5);
        for (int i = 0; i < 5; ++i) EXPECT_EQ(std::signbit(zeros[i]), minus[i]) << order << ", " << i;
        float nan_first[] = {NAN, 1}, nan_last[] = {1, NAN};
        merge_sort(order, nan_first, 2);
        merge_sort(order, nan_last, 2);
        EXPECT_EQ(nan_first[0], 1);
        EXPECT_EQ(nan_last[1], 1);
    }
}

}  // namespace
