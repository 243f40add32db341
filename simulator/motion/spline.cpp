#include "motion/spline.h"

#include <algorithm>
#include <utility>

namespace sim {
namespace {

using Point = Spline::Point;

// x a + y b
Point sum(double x, const Point& a, double y, const Point& b) {
    Point point(a.size());
    for (size_t i = 0; i < point.size(); ++i) point[i] = x * a[i] + y * b[i];
    return point;
}

}  // namespace

Spline::Spline(std::vector<double> parameters, std::vector<Point> points)
    : parameters_(std::move(parameters)), points_(std::move(points)), speeds_(points_.size()) {
    const size_t last = points_.size() - 1;
    const auto length = [&](size_t k) { return parameters_[k + 1] - parameters_[k]; };
    const auto chord = [&](size_t k) { return sum(1 / length(k), points_[k + 1], -1 / length(k), points_[k]); };
    if (last == 1) {
        speeds_[0] = speeds_[1] = chord(0);
        return;
    }
    for (size_t k = 1; k < last; ++k) {
        const double both = length(k - 1) + length(k);
        speeds_[k] = sum(length(k) / both, chord(k - 1), length(k - 1) / both, chord(k));
    }
    // The slope of a chord is the mean of the parabola's slopes at its ends.
    speeds_[0] = sum(2, chord(0), -1, speeds_[1]);
    speeds_[last] = sum(2, chord(last - 1), -1, speeds_[last - 1]);
}

// Hermite's cubic through the values and slopes at both ends of the interval.
Point Spline::at(double parameter) const {
    const auto above = std::upper_bound(parameters_.begin() + 1, parameters_.end() - 1, parameter);
    const size_t k = above - parameters_.begin() - 1;
    const double length = parameters_[k + 1] - parameters_[k];
    const double u = (parameter - parameters_[k]) / length, v = 1 - u;
    const Point values = sum(v * v * (1 + 2 * u), points_[k], u * u * (1 + 2 * v), points_[k + 1]);
    const Point slopes = sum(u * v * v * length, speeds_[k], -u * u * v * length, speeds_[k + 1]);
    return sum(1, values, 1, slopes);
}

}  // namespace sim
