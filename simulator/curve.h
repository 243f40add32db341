#pragma once

#include <functional>
#include <kdl/frames.hpp>
#include <vector>

namespace sim {

// A course of the tool, over a parameter from 0 to 1.
using Curve = std::function<KDL::Frame(double)>;

// The distance between two poses in metres. A turn of a radian counts like 20 cm.
double distance_between(const KDL::Frame& from, const KDL::Frame& to);

// Straight, and turning about one axis.
Curve line(const KDL::Frame& from, const KDL::Frame& to);

// The arc from one pose through another to the third, and so many whole turns before it. The orientation goes smoothly
// through that of the second pose. Throws NoPath when the three positions make no circle.
Curve circle(const KDL::Frame& from, const KDL::Frame& via, const KDL::Frame& to, int turns);

// Smoothly through all poses. One that is the same as that before it counts once.
Curve spline(const std::vector<KDL::Frame>& poses);

}  // namespace sim
