// The forward kinematics on a model that is handed in: nothing is kept.
#pragma once

#include "zk/model.h"
#include "zk/transform_types.h"

namespace zk {

// The flange of the model's arm, and its rotation as a transform without translation: the same elements to the bit.
Matrix base_T_flange(const RobotModel& model, const float* joint);
Matrix base_R_flange(const RobotModel& model, const float* joint);

}  // namespace zk
