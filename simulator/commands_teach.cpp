// Jogging: motion of a joint or of the tool along an axis, until it is stopped or by a fixed amount.

#include <algorithm>

#include "commands.h"
#include "controller.h"

namespace sim {
namespace {

// By which the real-time push, and these commands, know a jog.
constexpr const char* kTeaching = "tech_demonstration";

bool jogging(const MotionQueue& motion) { return motion.current() && motion.current()->status == kTeaching; }

// +1 or -1.
double direction(const Request& request) {
    const std::string direction = request.text("direction");
    if (direction == "pos") return 1;
    if (direction == "neg") return -1;
    throw BadRequest(request.command() + ": \"direction\" is neither \"pos\" nor \"neg\"");
}

int percent(const Request& request) { return request.integer("v", 1, 100); }

Move relative_move(const Call& call, const char* type) {
    const std::string objection = call.controller.arm.objection_to_moving();
    if (!objection.empty()) throw BadRequest(call.request.command() + ": " + objection);
    Move move;
    move.type = type;
    return move;
}

// The one in progress gives way to it. It cannot wait behind moves: nobody might hold the key any more when its turn
// comes.
void start_jog(const Call& call, Move jog) {
    MotionQueue& motion = call.controller.arm.motion();
    if (jogging(motion)) motion.stop();
    if (motion.current() && !motion.stopping()) throw BadRequest(call.request.command() + ": the arm has moves to do");
    jog.status = kTeaching;
    call.controller.arm.order(std::move(jog));
}

// A path of one joint at `percent` of its speed.
Path joint_path(const Arm& arm, const JointVector& start, size_t joint, double end, double percent) {
    JointVector target = start;
    target[joint] = end;
    const std::string objection = arm.objection_to(target);
    if (!objection.empty()) throw NoPath(objection);
    return arm.joint_path(start, target, percent);
}

size_t joint_index(const Arm& arm, int number) {
    if (number < 1 || number > static_cast<int>(arm.joint_count())) throw BadRequest("a joint that the arm has not");
    return static_cast<size_t>(number - 1);
}

// To the limit, at most.
bool jog_joint(Call& call) {
    const Arm& arm = call.controller.arm;
    const size_t joint = joint_index(arm, call.request.integer("teach_joint"));
    const JointLimits& limits = arm.limits[joint];
    const double end = (direction(call.request) > 0 ? limits.max_pos : limits.min_pos) / 1000.0;
    Move jog = relative_move(call, "movej");
    jog.plan = [&arm, joint, end, percent = percent(call.request)](const JointVector& start) {
        return joint_path(arm, start, joint, end, percent);
    };
    start_jog(call, std::move(jog));
    return true;
}

bool step_joint(Call& call) {
    const Arm& arm = call.controller.arm;
    const std::vector<double> step = call.request.numbers("joint_step", 2);
    const size_t joint = joint_index(arm, static_cast<int>(std::clamp(step[0], -1.0, 100.0)));
    Move move = relative_move(call, "movej");
    move.status = "move_J";
    move.client = call.client;
    move.plan = [&arm, joint, turn = step[1] / 1000, percent = percent(call.request)](const JointVector& start) {
        return joint_path(arm, start, joint, start[joint] + turn, percent);
    };
    call.controller.arm.order(std::move(move));
    return true;
}

bool stop_jog(Call& call) {
    MotionQueue& motion = call.controller.arm.motion();
    if (jogging(motion)) motion.stop();
    return true;
}

// A client that waits for the end of its step learns that there will be none.
void report_refusal(Call& call) {
    Move move;
    move.client = call.client;
    call.controller.arm.motion().on_end(move, false);
}

}  // namespace

void add_teach_commands(CommandTable& table) {
    table.set("set_joint_teach", "joint_teach", jog_joint);
    table.set("set_stop_teach", "stop_teach", stop_jog);
    table.set("set_joint_step", "joint_step", step_joint).refused = report_refusal;
}

}  // namespace sim
