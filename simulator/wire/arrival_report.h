#pragma once

#include <memory>

#include "wire/client.h"
#include "wire/request.h"

namespace sim {

// The device that moved, by its number in arrival reports.
enum class Device { kArm = 0, kGripper = 1, kHand = 2, kLift = 3, kExpansionAxis = 4 };

// Clients that do not wait omit "block" or send a number for it.
inline bool wants_report(const Request& request) { return request.is_true("block"); }

inline void report_arrival(const std::shared_ptr<Client>& client, Device device, bool arrived, int connect = 0) {
    if (!client) return;
    client->send({{"state", "current_trajectory_state"},
                  {"trajectory_state", arrived},
                  {"device", static_cast<int>(device)},
                  {"trajectory_connect", connect}});
}

}  // namespace sim
