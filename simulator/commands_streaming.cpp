// Streamed set-points: followed at once, without an acknowledgement and without a report of arrival.

#include <algorithm>
#include <cmath>

#include "commands.h"
#include "controller.h"
#include "note.h"

namespace sim {
namespace {

// A set-point that is passed on may lie as far from where the arm stands as each joint goes at its speed limit in this
// time.
constexpr double kFollowingSeconds = 0.2;

// What a report tells of its set-point. Above all statuses that clients know, since they return it among those.
enum class Verdict { followed = 0, malformed = 257, beyond_limit, too_far, unreachable, not_now };

const char* reason(Verdict verdict) {
    switch (verdict) {
        case Verdict::malformed:
            return "malformed";
        case Verdict::beyond_limit:
            return "beyond a limit";
        case Verdict::too_far:
            return "too far from where the arm stands";
        case Verdict::unreachable:
            return "out of reach";
        case Verdict::not_now:
            return "the arm may not move, has moves to do, or was stopped";
        case Verdict::followed:
            break;
    }
    return "";
}

std::optional<JointVector> joint_target(const Call& call) {
    JointVector target;
    for (const int joint : call.request.integers("joint", call.controller.arm.joint_count()))
        target.push_back(joint / 1000.0);
    return target;
}

// Clients send a quaternion as w, x, y, z in millionths, or, in one form of one command, in thousandths. The length
// tells which.
KDL::Rotation rotation(const Request& request, int w, int x, int y, int z) {
    constexpr double kTolerance = 0.1;
    const double length = std::hypot(std::hypot(w, x), std::hypot(y, z));
    const double scale = length > 1e4 ? 1e6 : 1e3;
    if (std::abs(length / scale - 1) > kTolerance) throw BadRequest(request.command() + ": no unit quaternion");
    return KDL::Rotation::Quaternion(x / length, y / length, z / length, w / length);
}

KDL::Frame requested_pose(const Request& request) {
    if (request.has("pose_quat")) {
        const std::vector<int> p = request.integers("pose_quat", 7);
        return {rotation(request, p[3], p[4], p[5], p[6]), KDL::Vector(p[0] / 1e6, p[1] / 1e6, p[2] / 1e6)};
    }
    WirePose pose;
    std::ranges::copy(request.integers("pose", pose.size()), pose.begin());
    return frame_of(pose);
}

// Each is solved from the one before, so that the arm keeps its posture.
std::optional<JointVector> pose_target(const Call& call) {
    const Arm& arm = call.controller.arm;
    return call.controller.joints_at(requested_pose(call.request), arm.motion().stream().last(arm.joints()));
}

// How the commands differ.
struct Manner {
    const char* name;
    const char* report;                                 // its literal
    const char* status;                                 // in the real-time push
    bool passed_on;                                     // at the client's own pace, and each one is reported
    std::optional<JointVector> (*target)(const Call&);  // nothing when no joints reach it
};

constexpr Manner kManners[] = {
    {"movej_canfd", "joint_state", "move_through_joint", true, joint_target},
    {"movep_canfd", "pose_state", "move_through_pose", true, pose_target},
    {"movej_follow", "joint_state", "move_through_joint", false, joint_target},
    {"movep_follow", "pose_state", "move_through_pose", false, pose_target},
};

bool too_far(const Arm& arm, const JointVector& target) {
    const std::vector<Pace> paces = arm.paces();
    for (size_t i = 0; i < target.size(); ++i) {
        if (std::abs(target[i] - arm.joints()[i]) > kFollowingSeconds * paces[i].speed) return true;
    }
    return false;
}

Verdict follow(const Call& call, const Manner& manner) {
    Arm& arm = call.controller.arm;
    if (!arm.objection_to_moving().empty()) return Verdict::not_now;
    const bool direct = manner.passed_on && call.request.has("follow") && call.request.flag("follow");
    const std::optional<JointVector> target = manner.target(call);
    if (!target) return Verdict::unreachable;
    if (!arm.objection_to(*target).empty()) return Verdict::beyond_limit;
    if (manner.passed_on && too_far(arm, *target)) return Verdict::too_far;
    const bool taken = arm.motion().follow({*target, arm.paces(), direct, manner.status});
    return taken ? Verdict::followed : Verdict::not_now;
}

// Degrees, metres and radians: clients take the numbers as they are.
Json report(const Controller& controller, const Manner& manner, Verdict verdict) {
    std::vector<double> joints;
    for (const int joint : thousandths(controller.arm.joints())) joints.push_back(joint / 1e3);
    Json report{{"state", manner.report}, {"joint", joints}, {"arm_err", static_cast<int>(verdict)}};
    if (report["state"] == "pose_state") {
        const WirePose wire = wire_pose(controller.tool_pose());
        std::vector<double> pose;
        for (size_t i = 0; i < wire.size(); ++i) pose.push_back(wire[i] / (i < 3 ? 1e6 : 1e3));
        report["pose"] = pose;
    }
    return report;
}

// Set-points since the start, whoever sent them.
struct Counts {
    int64_t received = 0;
    int64_t refused = 0;
    Verdict last = Verdict::followed;
};

void take(Call& call, const Manner& manner, Counts& counts) {
    Verdict verdict = Verdict::malformed;
    try {
        verdict = follow(call, manner);
    } catch (const BadRequest&) {
    }
    ++counts.received;
    const bool followed = verdict == Verdict::followed;
    if (!followed) ++counts.refused;
    // A stream that goes wrong does so a thousand times a second: its first refusal is enough of a note.
    if (std::exchange(counts.last, verdict) != verdict && !followed)
        note(call.client->name() + ": " + manner.name + ": set-point refused: " + reason(verdict));
    if (manner.passed_on || !followed) call.client->send(report(call.controller, manner, verdict));
}

}  // namespace

void add_streaming_commands(CommandTable& table) {
    const auto counts = std::make_shared<Counts>();
    for (const Manner& manner : kManners)
        table.order(manner.name, [counts, manner](Call& call) { take(call, manner, *counts); });
    table.query("zk_sim_stream", "zk_sim_stream", [counts](Call&) {
        return Json{{"received", counts->received}, {"refused", counts->refused}};
    });
}

}  // namespace sim
