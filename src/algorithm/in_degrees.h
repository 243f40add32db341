// The kinematics in degrees, on a model that is handed in.
#pragma once

#include "kinematics/solvers.h"

namespace zk {

// solve_model, seed and solution in degrees. Only a solution is converted.
int solve_in_degrees(const RobotModel& model, const Search& search, const float* seed, const Pose& pose, float* joint,
                     std::uint8_t flag);

}  // namespace zk
