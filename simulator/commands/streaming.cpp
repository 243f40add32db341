// Streamed set-points: followed at once, without an acknowledgement and without a report of arrival.

#include <utility>

#include "commands/commands.h"
#include "commands/set_points.h"
#include "devices/devices.h"
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

// The parts on which these commands act.
struct Streaming {
    Arm& arm;
    const Tool& tool;
    LinearAxis& expansion;
};

// "expand" is the set-point of the expansion axis.
Verdict follow(const Streaming& parts, const Call& call, const Manner& manner) {
    LinearAxis& axis = parts.expansion;
    const bool direct = manner.passed_on && call.request.has("follow") && call.request.flag("follow");
    const bool expands = call.request.has("expand");
    const int expansion = expands ? call.request.integer("expand") : 0;
    if (expansion < axis.low || expansion > axis.high) return Verdict::kBeyondLimit;
    const Verdict verdict = follow_set_point(
        parts.arm, parts.tool, call,
        {.target = manner.target, .direct = direct, .near = manner.passed_on, .status = manner.status});
    if (!expands || verdict != Verdict::kFollowed) return verdict;
    constexpr double kPercent = 100;
    axis.audience.expect(call.client, false);
    axis.go(expansion, kPercent);
    return verdict;
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

void take(const Streaming& parts, const Call& call, const Manner& manner, Counts& counts) {
    Verdict verdict = Verdict::kMalformed;
    try {
        verdict = follow(parts, call, manner);
    } catch (const BadRequest&) {
    }
    ++counts.received;
    const bool followed = verdict == Verdict::kFollowed;
    if (!followed) ++counts.refused;
    // A wrong stream is refused a thousand times a second: only its first refusal is printed.
    if (std::exchange(counts.last, verdict) != verdict && !followed)
        note(call.client->name() + ": " + manner.name + ": set-point refused: " + reason(verdict));
    if (manner.passed_on || !followed) call.client->send(report(parts.arm, parts.tool, manner, verdict));
}

}  // namespace

void add_streaming_commands(CommandTable& table, Arm& arm, const Tool& tool, LinearAxis& expansion) {
    const auto counts = std::make_shared<Counts>();
    const Streaming parts{arm, tool, expansion};
    for (const Manner& manner : kManners)
        table.order(manner.name, [parts, counts, manner](const Call& call) { take(parts, call, manner, *counts); });
    table.query("zk_sim_stream", "zk_sim_stream", [counts](const Call&) {
        return Json{{"received", counts->received}, {"refused", counts->refused}};
    });
}

}  // namespace sim
