// What a healthy arm answers while Arm_Socket_Start learns about it.
#pragma once

#include <string>

#include "support/scripted_controller.h"

namespace zk::test {

// Answers the nine questions as an arm with 6 or 7 joints does: the limits of its model, frames and mounting angles of
// zero, the real-time push off. Each answer can be replaced afterwards.
void answer_start_up(ScriptedController& controller, int joint_count = 6, const std::string& model = "");

// The answer to get_realtime_push of a controller that pushes its state to a port.
std::string realtime_push_on(int port, int cycle = 1);

}  // namespace zk::test
