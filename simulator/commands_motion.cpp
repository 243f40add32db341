// The commands that move the arm. Each is acknowledged at once and reported when it has ended.

#include <algorithm>

#include "commands.h"
#include "controller.h"
#include "note.h"

namespace sim {
namespace {

// What all motion commands say of themselves.
Move ordered_move(Call& call) {
    Move move;
    move.connect = call.request.integer("trajectory_connect");
    move.client = call.client;
    return move;
}

Move joint_move(const Arm& arm, Move move, const JointVector& target, double percent) {
    move.type = "movej";
    move.status = "move_J";
    move.data = thousandths(target);
    move.plan = [&arm, target, percent](const JointVector& start) {
        return std::optional<Path>(arm.joint_path(start, target, percent));
    };
    return move;
}

bool movej(Call& call) {
    Arm& arm = call.controller.arm;
    JointVector target;
    for (const int joint : call.request.integers("joint")) target.push_back(joint / 1000.0);
    const int percent = call.request.integer("v", 1, 100);
    const Move move = ordered_move(call);
    const std::string objection = arm.objection_to(target);
    if (!objection.empty()) throw BadRequest("movej: " + objection);
    arm.motion().add(joint_move(arm, move, target, percent));
    return true;
}

// A client that waits for the arrival learns that there will be none.
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

// Brings every joint that stands beyond a limit back to it, slowly.
bool fix_soft_limits(Call& call) {
    constexpr double kPercent = 10;
    Arm& arm = call.controller.arm;
    JointVector target = arm.joints();
    for (size_t i = 0; i < target.size(); ++i)
        target[i] = std::clamp(target[i], arm.limits[i].min_pos / 1000.0, arm.limits[i].max_pos / 1000.0);
    const std::string objection = arm.objection_to(target);
    if (!objection.empty()) throw BadRequest(call.request.command() + ": " + objection);
    Move move;
    move.client = call.client;
    arm.motion().add(joint_move(arm, move, target, kPercent));
    return true;
}

}  // namespace

void add_motion_commands(CommandTable& table) {
    table.set("movej", "receive_state", movej).refused = report_refusal;
    table.set("auto_fix_joint_over_soft_limit", "set_state", fix_soft_limits).refused = report_refusal;
}

}  // namespace sim
