// The two ends of a move, of the arm or of a device beside it: its acknowledgement and its arrival.
#pragma once

#include <functional>

#include "connection/exchange.h"
#include "zk/replies/motion.h"

namespace zk {

// Codes of the trajectory in progress that a move is known by while it runs.
enum class Trajectory : int32_t { kNone = 0, kJoint = 1, kLine = 2, kCircle = 3, kSpline = 5 };

// Who moved, in reports of arrival.
enum class Device : int32_t { kArm = 0, kGripper = 1, kHand = 2, kLift = 3, kExpansionAxis = 4 };

// Queues a move and waits until the arm has arrived, or reports that it will not. A joined move is not waited for.
int move_and_arrive(const Request& request, Trajectory expected, int32_t trajectory_connect);

// Queues a move and waits for the controller's acknowledgement.
int move_accepted(const Request& request);

// Takes the report that is here; there is none afterwards.
MoveReport take_report(int slot);
inline bool is_of(const MoveReport& report, Device device) { return report.device == static_cast<int32_t>(device); }

// What a poll tells of the motion: whether nothing moves, and whether what moves is what was asked for.
struct MotionPoll {
    bool idle = true;
    bool expected = false;
};

// Waits for a device's own report, polling what it does. Gives the report's status; that of the polls after six that
// failed; 14 when the device came to rest, or did not start within fifty looks, and no report came; 5.
int await_report(ArmSocket socket, Device device, const std::function<int(MotionPoll&)>& poll);

struct DeviceMove {
    Device device;
    int64_t limit;                 // ms, of acknowledgement and arrival together
    bool keeps_reports = false;    // a report that is there before the request counts as well
    bool outwaits_others = false;  // another device's report does not give 12; then nothing ends the wait but its limit
};

// Queues the move of a device, waits for its acknowledgement in a mailbox of its own, and then for its report.
int move_device(const Request& request, Mailbox acknowledgement, const DeviceMove& form);

}  // namespace zk
