// What makes each arm that arm.
#pragma once

namespace zk {

// Fills DH parameters, limits, directions and link inertia of the model into `robot`, and keeps the DH parameters and
// the links as the defaults. Returns false for a pair of model and sensor that there is no arm of; `robot` then has no
// joints.
bool set_robot_default_config(int model, int sensor);

}  // namespace zk
