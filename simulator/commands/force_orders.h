#pragma once

#include "devices/force_hold.h"
#include "motion/robot_model.h"
#include "wire/request.h"

namespace sim {

// Reads the force to hold from a request. For one direction: "sensor", "mode", "direction" or "dir", and "N" or "force"
// in tenths. For all: "sensor", "mode", and for each direction "control_mode", "desired_force" in tenths and
// "limit_vel" in thousandths of a metre and of a degree per second. Throws BadRequest, also for a sensor that the arm
// does not have.
//
// "sensor" 0 is the one-axis sensor, 1 the six-axis one. "mode" 0 is the work frame, 1 the tool. "control_mode" 0 holds
// the position in a direction, any other number the force. The one-axis sensor holds a force along z of the tool only.
HoldOrder hold_order(const Request& request, Sensor sensor);

}  // namespace sim
