#pragma once

#include <string>
#include <vector>

#include "motion/robot_model.h"

namespace sim {

// One leg of the path of the hand that leads the arm: to these joints in this time, or as soon as the joints can.
struct HandLeg {
    double seconds;
    JointVector joints;  // degrees
};

// Reads legs from a file. Each line holds the seconds and then the joints, separated by commas or blanks; '#' starts a
// comment. Throws std::invalid_argument.
std::vector<HandLeg> read_hand(const std::string& path);

}  // namespace sim
