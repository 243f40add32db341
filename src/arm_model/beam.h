// A path of seven joints, looked for as a whole.
#pragma once

#include <vector>

#include "arm_model/choice.h"

namespace zk::arm {

// Joints for the targets, one after the other from the seed, with the least sum of squared steps that was found; no
// joint moves further than max_step between two of them. Empty when no way was found, or without memory.
//
// Method: beam search. From each posture the smallest steps lead on to the next target, with the arm angle as it comes
// and a little to either side. Of the postures at a target the cheapest at each arm angle stays.
std::vector<Joints> way_along(const Arm& arm, const std::vector<Frame>& targets, const Wanted& wanted, double max_step);

}  // namespace zk::arm
