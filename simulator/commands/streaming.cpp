// Streamed set-points: followed at once, without an acknowledgement and without a report of arrival.

#include <utility>

#include "commands/commands.h"
#include "commands/set_points.h"
#include "wire/note.h"

namespace sim {
namespace {

// What distinguishes the commands.
struct Manner {
    const char* name;
    const char* report;  // its literal
    const char* status;  // in the real-time push
    bool passed_on;      // followed at the client's pace, and each one is reported
    Target target;
};

constexpr Manner kManners[] = {
    {"movej_canfd", "joint_state", "move_through_joint", true, joint_target},
    {"movep_canfd", "pose_state", "move_through_pose", true, pose_target},
    {"movej_follow", "joint_state", "move_through_joint", false, joint_target},
    {"movep_follow", "pose_state", "move_through_pose", false, pose_target},
};

Verdict follow(Arm& arm, const Tool& tool, const Call& call, const Manner& manner) {
    const bool direct = manner.passed_on && call.request.has("follow") && call.request.flag("follow");
    return follow_set_point(
        arm, tool, call,
        {.target = manner.target, .direct = direct, .near = manner.passed_on, .status = manner.status});
}

// Degrees, metres and radians: clients do not scale these numbers.
Json report(const Arm& arm, const Tool& tool, const Manner& manner, Verdict verdict) {
    Json report{{"state", manner.report}, {"joint", reported_joints(arm)}, {"arm_err", static_cast<int>(verdict)}};
    if (manner.report == std::string("pose_state")) {
        const WirePose wire = wire_pose(tool.pose());
        std::vector<double> pose;
        for (size_t i = 0; i < wire.size(); ++i) pose.push_back(wire[i] / (i < 3 ? 1e6 : 1e3));
        report["pose"] = pose;
    }
    return report;
}

// The number of set-points since the start, from all clients.
struct Counts {
    int64_t received = 0;
    int64_t refused = 0;
    Verdict last = Verdict::kFollowed;
};

void take(Arm& arm, const Tool& tool, const Call& call, const Manner& manner, Counts& counts) {
    Verdict verdict = Verdict::kMalformed;
    try {
        verdict = follow(arm, tool, call, manner);
    } catch (const BadRequest&) {
    }
    ++counts.received;
    const bool followed = verdict == Verdict::kFollowed;
    if (!followed) ++counts.refused;
    // A wrong stream is refused a thousand times a second: only its first refusal is printed.
    if (std::exchange(counts.last, verdict) != verdict && !followed)
        note(call.client->name() + ": " + manner.name + ": set-point refused: " + reason(verdict));
    if (manner.passed_on || !followed) call.client->send(report(arm, tool, manner, verdict));
}

}  // namespace

void add_streaming_commands(CommandTable& table, Arm& arm, const Tool& tool) {
    const auto counts = std::make_shared<Counts>();
    for (const Manner& manner : kManners)
        table.order(manner.name,
                    [&arm, &tool, counts, manner](const Call& call) { take(arm, tool, call, manner, *counts); });
    table.query("zk_sim_stream", "zk_sim_stream", [counts](const Call&) {
        return Json{{"received", counts->received}, {"refused", counts->refused}};
    });
}

}  // namespace sim
