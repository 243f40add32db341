#include "move/move.h"

#include <unistd.h>
#include <csignal>
#include <iostream>
#include <memory>

#include "move/plan.h"
#include "quantity.h"

namespace tool {
namespace {

using namespace zk::literals;

// What the commands that move have in common.
struct MoveRequest {
    ArmOption arm;
    std::vector<std::string> numbers;
    double speed = 20, max_step = 90;
    bool yes = false, dry_run = false;

    void add_to(CLI::App& command) {
        arm.add_to(command);
        command.add_option("-s,--speed", speed, "percent of the limits")
            ->capture_default_str()
            ->check(CLI::Range(1, 100));
        command.add_option("--max-step", max_step, "refuse to turn a joint further than this, in degrees")
            ->capture_default_str()
            ->check(CLI::Range(0, 720));
        command.add_flag("-y,--yes", yes, "do not ask");
        command.add_flag("--dry-run", dry_run, "check and say what would be done, but do not move");
    }
};

bool confirmed() {
    if (isatty(STDIN_FILENO) == 0)
        throw Failure(kUsage, "nobody can be asked here: write --yes to move without asking");
    std::cerr << "Move? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "yes";
}

// Carries a plan out. Ctrl-C stops the arm: the connection was opened with stop_at_exit.
void carry_out(const zk::Arm& arm, const Plan& plan, const MoveRequest& request) {
    std::cout << description(plan, zk::percent(request.speed)) << std::flush;
    if (request.dry_run) return;
    if (!request.yes && !confirmed()) throw Failure(kFailed, "not moved");
    const zk::MoveOptions options{zk::percent(request.speed)};
    const zk::Move move = plan.motion == Motion::kJoints ? arm.move_joints(plan.to, options)
                          : plan.motion == Motion::kPose ? arm.move_pose(plan.to_pose, options)
                                                         : arm.move_line(plan.to_pose, options);
    move.wait().value();
    std::cout << "arrived\n";
}

void move(const MoveRequest& request, Motion motion) {
    // Numbers that no arm can take are refused before a connection is asked for.
    const zk::Pose pose = motion == Motion::kJoints ? zk::Pose() : parse_pose(request.numbers);
    if (motion == Motion::kJoints) parse_joints(request.numbers, request.numbers.size());
    const zk::ConnectOptions options{5_s, 0, 500_ms, true, true};
    const zk::Arm arm = request.arm.connect(options);
    const zk::Model model = arm.model().value();
    const zk::Angle step = zk::degrees(request.max_step);
    carry_out(arm,
              motion == Motion::kJoints
                  ? plan_joints(arm, model, parse_joints(request.numbers, arm.joint_count()), step)
                  : plan_pose(arm, model, motion, pose, step),
              request);
}

void add_motion(CLI::App& zk, const char* name, const char* what, const char* numbers, Motion motion) {
    const auto request = std::make_shared<MoveRequest>();
    CLI::App* command = zk.add_subcommand(name, what);
    request->add_to(*command);
    command->add_option(motion == Motion::kJoints ? "JOINT" : "POSE", request->numbers, numbers)->required();
    command->callback([request, motion] { move(*request, motion); });
}

}  // namespace

void add_move(CLI::App& zk) {
    CLI::App* command = zk.add_subcommand("move", "move the arm, after checks and a question");
    command->require_subcommand(1);
    const char* pose = "X Y Z RX RY RZ of the tool in the work frame, in metres and degrees";
    add_motion(*command, "joints", "all joints to a target", "six or seven angles, in degrees", Motion::kJoints);
    add_motion(*command, "pose", "the tool to a pose, all joints arriving together", pose, Motion::kPose);
    add_motion(*command, "line", "the tool to a pose along a straight line", pose, Motion::kLine);
}

void add_home(CLI::App& zk) {
    const auto request = std::make_shared<MoveRequest>();
    CLI::App* command = zk.add_subcommand("home", "move all joints to the initial position that the controller keeps");
    request->add_to(*command);
    command->callback([request] {
        const zk::Arm arm = request->arm.connect({5_s, 0, 500_ms, true, true});
        std::array<float, zk::Joints::kMost> home{};
        arm.call<Get_Arm_Init_Pose>(home).value();
        carry_out(arm,
                  plan_joints(arm, arm.model().value(), zk::Joints::from_c(home.data(), arm.joint_count()),
                              zk::degrees(request->max_step)),
                  *request);
    });
}

void add_stop(CLI::App& zk) {
    const auto where = std::make_shared<ArmOption>();
    const auto emergency = std::make_shared<bool>(false);
    CLI::App* command = zk.add_subcommand("stop", "stop the arm at once");
    where->add_to(*command);
    command->add_flag("--emergency", *emergency, "and take its power: the brakes hold it");
    command->callback([where, emergency] {
        const zk::Arm arm = where->connect();
        arm.stop((*emergency ? ZK_EMERGENCY_STOP : ZK_STOP) | ZK_DROP_QUEUED).value();
        arm.wait_idle(10_s).value();
        std::cout << "stopped\n";
    });
}

}  // namespace tool
