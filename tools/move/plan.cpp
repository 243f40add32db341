#include "move/plan.h"

#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <iostream>
#include <sstream>

#include "report.h"

namespace tool {
namespace {

using namespace zk::literals;

std::string in_degrees(zk::Angle angle) {
    std::ostringstream text;
    text << rounded(angle.degrees(), 1) << " degrees";
    return text.str();
}

// The joint that turns furthest, counted from 0.
std::size_t furthest(const zk::Joints& from, const zk::Joints& to) {
    std::size_t joint = 0;
    for (std::size_t i = 1; i < from.size(); ++i) {
        if (abs(to[i] - from[i]) > abs(to[joint] - from[joint])) joint = i;
    }
    return joint;
}

void check_step(const Plan& plan, zk::Angle max_step) {
    const std::size_t joint = furthest(plan.from, plan.to);
    const zk::Angle step = abs(plan.to[joint] - plan.from[joint]);
    if (step > max_step) {
        throw Failure(kUsage, "joint " + std::to_string(joint + 1) + " would turn " + in_degrees(step) +
                                  ", further than --max-step allows: " + in_degrees(max_step));
    }
}

// The joints at the end of a straight line, followed in small steps.
zk::Joints end_of_line(const zk::Model& model, const Plan& plan) {
    const zk::Position way = plan.to_pose.position - plan.from_pose.position;
    const zk::Rotation turn = plan.from_pose.rotation.inverse() * plan.to_pose.rotation;
    const double steps = std::max({1.0, std::ceil(way.norm() / 5_mm), std::ceil(turn.angle() / 1_deg)});
    std::vector<zk::Pose> path;
    for (int i = 1; i <= static_cast<int>(steps); ++i) {
        const double share = i / steps;
        path.emplace_back(plan.from_pose.position + way * share,
                          plan.from_pose.rotation * zk::Rotation::about(turn.axis(), turn.angle() * share));
    }
    const zk::Result<std::vector<zk::Joints>> joints = model.follow(path, plan.from);
    if (!joints) throw Failure(kUsage, "the line cannot be followed: " + joints.error().text);
    return joints->back();
}

void describe(const Plan& plan, zk::Percent speed) {
    const std::size_t joint = furthest(plan.from, plan.to);
    const zk::Length way = (plan.to_pose.position - plan.from_pose.position).norm();
    print(Json{{"motion", plan.motion == Motion::kLine ? "the tool along a line" : "all joints together"},
               {"from_deg", json_of(plan.from)},
               {"to_deg", json_of(plan.to)},
               {"furthest",
                "joint " + std::to_string(joint + 1) + " by " + in_degrees(abs(plan.to[joint] - plan.from[joint]))},
               {"tool_goes_mm", rounded(way.millimetres(), 1)},
               {"speed_percent", speed.value()}},
          std::cout);
    std::cout << std::flush;
}

// Waits for the end of a move that the controller has accepted.
void await_arrival(const zk::Move& move) {
    const zk::Result<void> arrived = move.wait();
    if (!arrived && arrived.error().status == ZK_REFUSED && arrived.error().command == std::string_view("ZK_Wait_Move"))
        throw Failure(kFailed, "the arm was stopped before its target: zk doctor says whether by an error");
    arrived.value();
}

}  // namespace

bool is_near(const zk::Joints& a, const zk::Joints& b, zk::Angle tolerance) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (abs(a[i] - b[i]) > tolerance) return false;
    }
    return true;
}

void check_ready(const zk::Arm& arm) {
    const zk::ArmState now = arm.state().value();
    if (now.arm_error != 0 || now.system_error != 0) throw Failure(kFailed, "the arm is in error: see zk doctor");
    if (!arm.is_powered().value()) throw Failure(kFailed, "the arm is off: see zk doctor");
}

void check_limits(const zk::Model& model, const zk::Joints& to) {
    const zk::JointLimits limits = model.joint_limits().value();
    for (std::size_t i = 0; i < to.size(); ++i) {
        if (!(to[i] >= limits.min[i] && to[i] <= limits.max[i])) {  // not a number either
            throw Failure(kUsage, "joint " + std::to_string(i + 1) + " would go to " + in_degrees(to[i]) +
                                      ", beyond its limits of " + in_degrees(limits.min[i]) + " to " +
                                      in_degrees(limits.max[i]));
        }
    }
}

Plan plan_joints(const zk::Arm& arm, const zk::Model& model, const zk::Joints& to, zk::Angle max_step) {
    const zk::ArmState now = arm.state().value();
    const Plan plan{Motion::kJoints, now.joints, to, now.pose, model.forward(to).value()};
    check_limits(model, to);
    check_step(plan, max_step);
    return plan;
}

Plan plan_pose(const zk::Arm& arm, const zk::Model& model, Motion motion, const zk::Pose& to, zk::Angle max_step) {
    const zk::ArmState now = arm.state().value();
    Plan plan{motion, now.joints, {}, now.pose, to};
    if (motion == Motion::kLine) {
        plan.to = end_of_line(model, plan);
    } else {
        const zk::Result<zk::Joints> joints = model.inverse(to, now.joints);
        if (!joints) throw Failure(kUsage, "the pose cannot be reached: " + joints.error().text);
        plan.to = *joints;
    }
    check_step(plan, max_step);
    return plan;
}

void MoveRequest::add_to(CLI::App& command) {
    arm.add_to(command);
    command.add_option("-s,--speed", speed, "percent of the limits")->capture_default_str()->check(CLI::Range(1, 100));
    command.add_option("--max-step", max_step, "refuse to turn a joint further than this, in degrees")
        ->capture_default_str()
        ->check(CLI::Range(0, 720));
    command.add_flag("-y,--yes", yes, "do not ask");
    command.add_flag("--dry-run", dry_run, "check and say what would be done, but do not move");
}

zk::Arm connect_to_move(const ArmOption& arm) { return arm.connect({5_s, 0, 500_ms, true, true}); }

bool confirmed() {
    if (isatty(STDIN_FILENO) == 0)
        throw Failure(kUsage, "nobody can be asked here: write --yes to move without asking");
    std::cerr << "Move? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

bool carry_out(const zk::Arm& arm, const Plan& plan, const MoveRequest& request) {
    describe(plan, zk::percent(request.speed));
    check_ready(arm);
    if (request.dry_run) return false;
    if (!request.yes && !confirmed()) throw Failure(kFailed, "not moved");
    // The checks and what was agreed to hold from there alone.
    if (!is_near(arm.joints().value(), plan.from))
        throw Failure(kFailed, "not moved: the arm has left the place where this motion was planned; plan it again");
    const zk::MoveOptions options{zk::percent(request.speed)};
    const zk::Move move = plan.motion == Motion::kJoints ? arm.move_joints(plan.to, options)
                          : plan.motion == Motion::kPose ? arm.move_pose(plan.to_pose, options)
                                                         : arm.move_line(plan.to_pose, options);
    await_arrival(move);
    std::cout << "arrived\n";
    return true;
}

}  // namespace tool
