// Every posture of an arm at a target.
#pragma once

#include <vector>

#include "arm_model/choice.h"

namespace zk::arm {

// Between two places on the free circle, unless a caller says otherwise.
inline constexpr double kCircleStep = 5 * M_PI / 180;

// The postures within the limits and the largest step, nearest to the seed first, each once, or with all its whole
// turns. None without memory.
std::vector<Joints> every_posture(const Arm& arm, const Frame& target, const Wanted& wanted, double max_step,
                                  double circle_step, bool whole_turns);

}  // namespace zk::arm
