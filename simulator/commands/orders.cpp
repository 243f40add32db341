#include "commands/orders.h"

#include "wire/arrival_report.h"

namespace sim {

int percent_of(const Call& call) { return call.request.integer("v", 1, 100); }

bool order(Arm& arm, const Call& call, Move move) {
    const std::string reason = arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
    arm.order(std::move(move));
    return true;
}

void report_refusal(const Call& call) {
    int connect = 0;
    try {
        connect = call.request.integer("trajectory_connect");
    } catch (const BadRequest&) {
    }
    report_arrival(call.client, Device::kArm, false, connect);
}

}  // namespace sim
