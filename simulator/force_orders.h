#pragma once

#include "force_hold.h"
#include "request.h"
#include "robot_model.h"

namespace sim {

// The force that a request orders to be held. Along one direction: "sensor", "mode", "direction" or "dir", and "N" or
// "force" in tenths. In all: "sensor", "mode", and of each direction "control_mode", "desired_force" in tenths and
// "limit_vel" in thousandths of a metre and of a degree per second. Throws BadRequest, also for a sensor that the arm
// does not have.
//
// "sensor" 0 is the one-axis sensor and 1 the six-axis one, "mode" 0 the work frame and 1 the tool, "control_mode" 0 a
// direction that holds its position and any other number one that holds its force. With the one-axis sensor only z of
// the tool can hold a force.
HoldOrder hold_order(const Request& request, Sensor sensor);

}  // namespace sim
