#pragma once

#include <functional>
#include <kdl/frames.hpp>
#include <vector>

namespace sim {

// A path of the tool over a parameter from 0 to 1.
using Curve = std::function<KDL::Frame(double)>;

// The distance between two poses in metres. A rotation of one radian counts as 20 cm.
double distance_between(const KDL::Frame& from, const KDL::Frame& to);

// A straight line with a rotation about one axis.
Curve line(const KDL::Frame& from, const KDL::Frame& to);

// The arc from one pose through the second to the third, after `loops` whole turns. The orientation passes smoothly
// through that of the second pose. Throws NoPath when the three positions define no circle.
Curve circle(const KDL::Frame& from, const KDL::Frame& via, const KDL::Frame& to, int turns);

// A smooth path through all poses. A pose that repeats the one before it counts once.
Curve spline(const std::vector<KDL::Frame>& poses);

}  // namespace sim
