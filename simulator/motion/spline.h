#pragma once

#include <vector>

namespace sim {

// A curve through points, in as many dimensions as these have. Between two of them it is a cubic; its speed is
// continuous, and at each point that of the parabola through it and its neighbours. Two points make a straight line.
class Spline {
 public:
    using Point = std::vector<double>;

    // At least two points; the parameters rise.
    Spline(std::vector<double> parameters, std::vector<Point> points);

    Point at(double parameter) const;

 private:
    std::vector<double> parameters_;
    std::vector<Point> points_;
    std::vector<Point> speeds_;
};

}  // namespace sim
