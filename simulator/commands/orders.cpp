#include "commands/orders.h"

#include "controller.h"

namespace sim {

int percent_of(const Call& call) { return call.request.integer("v", 1, 100); }

bool order(Call& call, Move move) {
    Arm& arm = call.controller.arm;
    const std::string reason = arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
    arm.order(std::move(move));
    return true;
}

void report_refusal(Call& call) {
    int connect = 0;
    try {
        connect = call.request.integer("trajectory_connect");
    } catch (const BadRequest&) {
    }
    Move move;
    move.client = call.client;
    move.connect = connect;
    call.controller.arm.motion().on_end(move, false);
}

}  // namespace sim
