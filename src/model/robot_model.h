// Changes of a model record, the process's or another.
#pragma once

#include "zk/model.h"

namespace zk {

// Clears the record and fills in what makes that arm that arm: DH parameters, limits, directions, link inertia. False
// for a pair of model and sensor that there is no arm of; the record then has no joints.
bool select_arm(RobotModel& model, int number, int sensor);

// Tool in the flange, work frame in the world: x, y, z, rx, ry, rz. Mounting: rx, ry, rz. Radians, metres.
void set_tool(RobotModel& model, const float* params);
void set_work_frame(RobotModel& model, const float* params);
void set_mounting(RobotModel& model, const float* angles);

// One limit of all eight joints. Radians.
using Limit = float JointConfig::*;
void set_limits(RobotModel& model, Limit limit, const float* values);

}  // namespace zk
