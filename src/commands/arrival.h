// The two ends of a move: its acknowledgement and its arrival.
#pragma once

#include "connection/request.h"

namespace zk {

// Codes of the trajectory in progress that a move is known by while it runs.
enum class Trajectory : int32_t { kNone = 0, kJoint = 1, kLine = 2, kCircle = 3, kSpline = 5 };

// Queues a move and waits until the arm has arrived, or reports that it will not. A joined move is not waited for.
int move_and_arrive(const Request& request, Trajectory expected, int32_t trajectory_connect);

// Queues a move and waits for the controller's acknowledgement.
int move_accepted(const Request& request);

}  // namespace zk
