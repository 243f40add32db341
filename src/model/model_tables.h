// What makes each arm that arm.
#pragma once

#include "zk/model.h"

namespace zk {

// Fills DH parameters, limits, directions and link inertia of the arm into the record. False for a pair of model and
// sensor that there is no arm of; the record stays.
bool configure(RobotModel& robot, int model, int sensor);

}  // namespace zk
