// Drag teaching: recording and replay. `zk_sim_hand` or a file of the command line moves the hand.

#include <algorithm>
#include <cmath>

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

// The queued move of the replay, shared by the commands that act on it.
struct Replay {
    bool running = false;
};

void demand_rest(const Call& call) {
    const Controller& controller = call.controller;
    const std::string reason = controller.arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
    if (controller.hold.active()) throw BadRequest(call.request.command() + ": a force is held");
    if (!controller.arm.motion().idle()) throw BadRequest(call.request.command() + ": the arm moves");
}

bool start(Call& call, bool record, const std::string& status) {
    demand_rest(call);
    call.controller.drag.start(record, status);
    return true;
}

bool start_drag_teach(Call& call) {
    return start(call, call.request.integer("trajectory_record", 0, 1) == 1, "current_drag");
}

// Mode 0 uses the joint currents, the others the six-axis sensor along chosen axes. The simulated hand ignores both the
// axes and the wall before a singularity.
bool start_multi_drag_teach(Call& call) {
    const Request& request = call.request;
    request.integer("singular_wall", 0, 1);
    bool by_sensor = true;
    if (request.has("free_axes")) {
        for (const int free : request.integers("free_axes", 6)) {
            if (free != 0 && free != 1) throw BadRequest("\"free_axes\" holds something else than 0 and 1");
        }
        request.integer("frame", 0, 1);
    } else {
        by_sensor = request.integer("mode", 0, 3) != 0;
    }
    if (by_sensor && call.controller.arm.model().sensor != Sensor::kSixForce)
        throw BadRequest(request.command() + ": the arm has no six-axis force sensor");
    return start(call, true, by_sensor ? "sensor_drag" : "current_drag");
}

bool stop_drag_teach(Call& call) {
    if (!call.controller.drag.active()) return false;
    call.controller.drag.stop();
    return true;
}

// {"seconds": ..., "joint": [degrees]}: the next leg of the hand.
bool lead_hand(Call& call) {
    constexpr double kMaxSeconds = 3600;
    Controller& controller = call.controller;
    const double seconds = call.request.number("seconds");
    const JointVector joints = call.request.numbers("joint", controller.arm.joint_count());
    if (!controller.drag.active() || seconds < 0 || seconds > kMaxSeconds) return false;
    for (size_t i = 0; i < joints.size(); ++i) {
        const double wire = joints[i] * 1000;
        if (wire < controller.arm.range()[i].min_pos || wire > controller.arm.range()[i].max_pos) return false;
    }
    controller.drag.lead({seconds, joints});
    return true;
}

// Moves to the start of the recording.
bool return_to_origin(Call& call) {
    constexpr double kPercent = 20;
    Controller& controller = call.controller;
    Arm& arm = controller.arm;
    if (controller.drag.recording().empty()) throw BadRequest("drag_trajectory_origin: nothing is recorded");
    const JointVector target = controller.drag.recording().front();
    const std::string reason = arm.reason_not_to_move_to(target);
    if (!reason.empty()) throw BadRequest("drag_trajectory_origin: " + reason);
    Move move;
    move.type = "movej";
    move.status = "move_J";
    move.data = thousandths(target);
    move.client = call.client;
    move.plan = [&arm, target](const JointVector& from) { return arm.joint_path(from, target, kPercent); };
    arm.order(move);
    return true;
}

void report_refusal(Call& call) {
    Move move;
    move.client = call.client;
    call.controller.arm.motion().on_end(move, false);
}

void demand_replayable(const Call& call) {
    constexpr double kNear = 0.5;  // degrees from the origin of the recording
    const Arm& arm = call.controller.arm;
    const std::vector<JointVector>& samples = call.controller.drag.recording();
    if (samples.size() < 2) throw BadRequest("run_drag_trajectory: nothing is recorded");
    for (const JointVector& joints : samples) {
        const std::string reason = arm.reason_not_to_move_to(joints);
        if (!reason.empty()) throw BadRequest("run_drag_trajectory: " + reason);
    }
    for (size_t i = 0; i < samples[0].size(); ++i) {
        if (std::abs(arm.joints()[i] - samples[0][i]) > kNear)
            throw BadRequest("run_drag_trajectory: the arm is not at the origin of the recording");
    }
}

// Acknowledged at the end of the replay.
bool run_drag_trajectory(Call& call, const std::shared_ptr<Replay>& replay) {
    Controller& controller = call.controller;
    demand_rest(call);
    demand_replayable(call);
    Move move;
    move.type = "re_trajectory";
    move.status = "move_through_joint";
    move.data = thousandths(controller.drag.recording().back());
    move.plan = [&controller](const JointVector& from) { return controller.drag.replay(from); };
    move.ended = [replay, client = std::weak_ptr(call.client)](bool arrived) {
        replay->running = false;
        if (const auto waiting = client.lock())
            waiting->send({{"command", "run_drag_trajectory"}, {"run_state", arrived}});
    };
    controller.arm.order(move);
    replay->running = true;
    return true;
}

}  // namespace

void add_drag_commands(CommandTable& table) {
    const auto replay = std::make_shared<Replay>();
    table.set("start_drag_teach", "drag_teach", start_drag_teach);
    table.set("stop_drag_teach", "drag_teach", stop_drag_teach);
    table.set("start_multi_drag_teach", "set_state", start_multi_drag_teach);
    table.set("set_drag_teach_sensitivity", "set_state", [](Call& call) {
        call.controller.drag.sensitivity = call.request.integer("grade", 0, 100);
        return true;
    });
    table.query("get_drag_teach_sensitivity", "get_drag_teach_sensitivity", [](Call& call) {
        return Json{{"grade", call.controller.drag.sensitivity}};
    });
    table.set("run_drag_trajectory", "run_state", [replay](Call& call) { return run_drag_trajectory(call, replay); })
        .acknowledged_later = true;
    table.set("pause_drag_trajectory", "pause_state",
              [replay](Call& call) { return replay->running && call.controller.arm.motion().pause(); });
    table.set("continue_drag_trajectory", "continue_state",
              [replay](Call& call) { return replay->running && call.controller.arm.motion().resume(); });
    table.set("stop_drag_trajectory", "stop_state", [replay](Call& call) {
        if (replay->running) call.controller.arm.motion().stop();
        return replay->running;
    });
    table.set("drag_trajectory_origin", "trajectory_state", return_to_origin).refused = report_refusal;
    table.set("zk_sim_hand", "done", lead_hand);
}

}  // namespace sim
