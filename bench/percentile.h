#pragma once

#include <algorithm>
#include <vector>

// The value below which this fraction of them lies. Changes their order.
inline double percentile(std::vector<double>& values, double fraction) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(fraction * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}
