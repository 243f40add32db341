// Waits for the acknowledgement of a move, of the arm or of a device, and for the report of its arrival.
#pragma once

#include <functional>

#include "connection/exchange.h"
#include "zk/replies/motion.h"

namespace zk {

// Codes of the trajectory in progress.
enum class Trajectory : int32_t { kNone = 0, kJoint = 1, kLine = 2, kCircle = 3, kSpline = 5 };

// Whose arrival a report is about.
enum class Device : int32_t { kArm = 0, kGripper = 1, kHand = 2, kLift = 3, kExpansionAxis = 4 };

// The request of a move, with its last key. A joined move runs with the next one, and has no report of its own.
struct MoveRequest : Request {
    MoveRequest(Request& request, int32_t trajectory_connect)
        : Request(request.number("trajectory_connect", trajectory_connect)), joined(trajectory_connect != 0) {}

    bool joined;
};

// Queues a move and waits for the report of its end. Does not wait for a joined move.
int move_and_arrive(const MoveRequest& request, Trajectory expected);

// Queues a move and waits for the controller's acknowledgement.
int move_accepted(const MoveRequest& request);

// Copies the report and clears its mailbox.
MoveReport take_report(int slot);
inline bool is_of(const MoveReport& report, Device device) { return report.device == static_cast<int32_t>(device); }

// What a poll finds.
struct MotionPoll {
    bool idle = true;       // nothing moves
    bool expected = false;  // the requested motion runs
};

// Waits for the device's own report and polls the motion meanwhile. Returns the status of the report; the status of the
// poll after six failed polls; 14 without a report when the device has come to rest or has not started within fifty
// polls; 5.
int await_report(const Connection& connection, Device device, const std::function<int(MotionPoll&)>& poll);

struct DeviceMove {
    Device device;
    int64_t limit;               // ms, of acknowledgement and arrival together
    bool keeps_reports = false;  // a report from before the request counts as well
    bool outwaits_others =
        false;  // takes another device's report and waits on until the limit, instead of ending in 12
};

// Queues the move of a device, waits for its acknowledgement in a mailbox of its own, then for its report.
int move_device(const Request& request, Mailbox acknowledgement, const DeviceMove& form);

}  // namespace zk
