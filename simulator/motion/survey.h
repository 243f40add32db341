#pragma once

#include <array>
#include <functional>
#include <optional>

#include "motion/move.h"

namespace sim {

// What the arm must keep clear of.
enum class Hazard { kFence, kWall, kItself };
constexpr size_t kHazards = 3;

// How deep the arm is in each hazard, in metres: 0 or less where it is clear.
using Depths = std::array<double, kHazards>;
using Survey = std::function<Depths(const JointVector&)>;  // empty: there are no hazards

// The hazard in which the arm is deeper than it was, if any. So an arm that stands in one may leave it.
std::optional<Hazard> entered(const Depths& before, const Depths& now);

// The arm's error word after a motion into a hazard.
int error_word(Hazard hazard);

// A path into a hazard.
struct HazardousPath : NoPath {
    explicit HazardousPath(Hazard entered_hazard);
    Hazard hazard;
};

}  // namespace sim
