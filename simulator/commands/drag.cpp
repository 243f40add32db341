// Drag teaching: recording and replay. `zk_sim_hand` or a file of the command line moves the hand.

#include <algorithm>
#include <cmath>

#include "commands/commands.h"
#include "devices/drag_teach.h"
#include "devices/force_hold.h"
#include "wire/arrival_report.h"
#include "wire/command_table.h"
#include "wire/memory.h"

namespace sim {
namespace {

// The queued move of the replay, shared by the commands that act on it.
struct Replay {
    bool running = false;
};

// The parts on which these commands act.
struct Teaching {
    Arm& arm;
    DragTeach& drag;
    const ForceHold& hold;
};

void demand_rest(const Teaching& teaching, const Call& call) {
    const std::string reason = teaching.arm.reason_not_to_move();
    if (!reason.empty()) throw BadRequest(call.request.command() + ": " + reason);
    if (teaching.hold.active()) throw BadRequest(call.request.command() + ": a force is held");
    if (!teaching.arm.motion().idle()) throw BadRequest(call.request.command() + ": the arm moves");
}

bool start(const Teaching& teaching, const Call& call, bool record, const std::string& status) {
    demand_rest(teaching, call);
    teaching.drag.start(record, status);
    return true;
}

bool start_drag_teach(const Teaching& teaching, const Call& call) {
    return start(teaching, call, call.request.integer("trajectory_record", 0, 1) == 1, "current_drag");
}

// Mode 0 uses the joint currents, the others the six-axis sensor along chosen axes. The simulated hand ignores both the
// axes and the wall before a singularity.
bool start_multi_drag_teach(const Teaching& teaching, const Call& call) {
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
    if (by_sensor && teaching.arm.model().sensor != Sensor::kSixForce)
        throw BadRequest(request.command() + ": the arm has no six-axis force sensor");
    return start(teaching, call, true, by_sensor ? "sensor_drag" : "current_drag");
}

bool stop_drag_teach(DragTeach& drag, const Call&) {
    if (!drag.active()) return false;
    drag.stop();
    return true;
}

// {"seconds": ..., "joint": [degrees]}: the next leg of the hand.
bool lead_hand(const Arm& arm, DragTeach& drag, const Call& call) {
    constexpr double kMaxSeconds = 3600;
    call.request.demand_known_keys({"seconds", "joint"});
    const double seconds = call.request.number("seconds");
    const JointVector joints = call.request.numbers("joint", arm.joint_count());
    if (!drag.active()) throw Refusal("the hand leads the arm in drag teaching only");
    if (seconds < 0 || seconds > kMaxSeconds) throw Refusal("\"seconds\" is from 0 to 3600");
    for (size_t i = 0; i < joints.size(); ++i) {
        const double wire = joints[i] * 1000;
        if (wire < arm.range()[i].min_pos || wire > arm.range()[i].max_pos)
            throw Refusal("\"joint\" holds an angle beyond a limit, of joint " + std::to_string(i + 1));
    }
    drag.lead({seconds, joints});
    return true;
}

// Moves to the start of the recording.
bool return_to_origin(Arm& arm, const DragTeach& drag, const Call& call) {
    constexpr double kPercent = 20;
    if (drag.recording().empty()) throw BadRequest("drag_trajectory_origin: nothing is recorded");
    const JointVector target = drag.recording().front();
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

void demand_replayable(const Arm& arm, const DragTeach& drag) {
    constexpr double kNear = 0.5;  // degrees from the origin of the recording
    const std::vector<JointVector>& samples = drag.recording();
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
bool run_drag_trajectory(const Teaching& teaching, const Call& call, const std::shared_ptr<Replay>& replay) {
    const DragTeach& drag = teaching.drag;
    demand_rest(teaching, call);
    demand_replayable(teaching.arm, drag);
    Move move;
    move.type = "re_trajectory";
    move.status = "move_through_joint";
    move.data = thousandths(drag.recording().back());
    move.plan = [&drag](const JointVector& from) { return drag.replay(from); };
    move.ended = [replay, client = std::weak_ptr(call.client)](bool arrived) {
        replay->running = false;
        if (const auto waiting = client.lock())
            waiting->send({{"command", "run_drag_trajectory"}, {"run_state", arrived}});
    };
    teaching.arm.order(move);
    replay->running = true;
    return true;
}

}  // namespace

void add_drag_commands(CommandTable& table, Memory& memory, Arm& arm, DragTeach& drag, const ForceHold& hold) {
    const Teaching teaching{arm, drag, hold};
    const auto replay = std::make_shared<Replay>();
    table.set("start_drag_teach", "drag_teach", [=](const Call& call) { return start_drag_teach(teaching, call); });
    table.set("stop_drag_teach", "drag_teach", with(stop_drag_teach, drag));
    table.set("start_multi_drag_teach", "set_state",
              [=](const Call& call) { return start_multi_drag_teach(teaching, call); });
    memory.keep("drag_teaching", {{"grade", drag.sensitivity, 0, 100}});
    table.set("set_drag_teach_sensitivity", "set_state", [&drag](const Call& call) {
        drag.sensitivity = call.request.integer("grade", 0, 100);
        return true;
    });
    table.query("get_drag_teach_sensitivity", "get_drag_teach_sensitivity", [&drag](const Call&) {
        return Json{{"grade", drag.sensitivity}};
    });
    table
        .set("run_drag_trajectory", "run_state",
             [=](const Call& call) { return run_drag_trajectory(teaching, call, replay); })
        .acknowledged_later = true;
    table.set("pause_drag_trajectory", "pause_state",
              [&arm, replay](const Call&) { return replay->running && arm.motion().pause(); });
    table.set("continue_drag_trajectory", "continue_state",
              [&arm, replay](const Call&) { return replay->running && arm.motion().resume(); });
    table.set("stop_drag_trajectory", "stop_state", [&arm, replay](const Call&) {
        if (replay->running) arm.motion().stop();
        return replay->running;
    });
    table.set("drag_trajectory_origin", "trajectory_state", with(return_to_origin, arm, drag)).refused =
        [](const Call& call) { report_arrival(call.client, Device::kArm, false); };
    table.set("zk_sim_hand", "done", with(lead_hand, arm, drag)).keys = {"seconds", "joint"};
}

}  // namespace sim
