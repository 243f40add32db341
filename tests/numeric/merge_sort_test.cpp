#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "zk/dense_matrix.h"

namespace {

std::vector<float> random_values(int n) {
    std::mt19937 generator(5);
    std::uniform_real_distribution<float> value(-9, 9);
    std::vector<float> values(n);
    for (float& v : values) v = value(generator);
    return values;
}

TEST(MergeSort, SortsBothWaysUpToItsCapacity) {
    for (int n : {0, 1, 2, 3, 17, 1999, 2000}) {
        std::vector<float> up = random_values(n), down = up, expected = up;
        merge_sort(0, up.data(), n);
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(up, expected) << n;
        merge_sort(-3, down.data(), n);
        std::sort(expected.begin(), expected.end(), std::greater<>());
        EXPECT_EQ(down, expected) << n;
    }
}

TEST(MergeSort, LeavesWhatItCannotHoldAsItIs) {
    const std::vector<float> values = random_values(2001);
    std::vector<float> sorted = values;
    merge_sort(0, sorted.data(), 2001);
    EXPECT_EQ(sorted, values);
    merge_sort(0, sorted.data(), -5);
    EXPECT_EQ(sorted, values);
}

TEST(MergeSort, IsStable) {
    const std::vector<bool> minus{true, false, false, true, true};
    for (int order : {0, 1}) {
        float zeros[] = {-0.0f, 0.0f, 0.0f, -0.0f, -0.0f};
        merge_sort(order, zeros, 5);
        for (int i = 0; i < 5; ++i) EXPECT_EQ(std::signbit(zeros[i]), minus[i]) << order << ", " << i;
    }
}

TEST(MergeSort, LetsTheSecondHalfPassANan) {
    for (int order : {0, 1}) {
        float values[] = {NAN, 1};
        merge_sort(order, values, 2);
        EXPECT_EQ(values[0], 1);
        float swapped[] = {1, NAN};
        merge_sort(order, swapped, 2);
        EXPECT_EQ(swapped[1], 1);
    }
}

}  // namespace
