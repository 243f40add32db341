#include "move/move.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>
#include <iostream>
#include <memory>
#include <vector>

#include "arms.h"
#include "move/plan.h"
#include "quantity.h"

namespace tool {
namespace {

using namespace zk::literals;

struct MotionRequest : MoveRequest {
    std::vector<std::string> numbers;
};

void move(const MotionRequest& request, Motion motion) {
    // Numbers that no arm can take are refused before a connection is asked for.
    const zk::Pose pose = motion == Motion::kJoints ? zk::Pose() : parse_pose(request.numbers);
    if (motion == Motion::kJoints) parse_joints(request.numbers, request.numbers.size());
    const zk::Arm arm = request.connect();
    const zk::Model model = arm.model().value();
    const zk::Angle step = zk::degrees(request.max_step);
    carry_out(arm,
              motion == Motion::kJoints
                  ? plan_joints(arm, model, parse_joints(request.numbers, arm.joint_count()), step)
                  : plan_pose(arm, model, motion, pose, step),
              request);
}

void add_motion(CLI::App& zk, const char* name, const char* what, const char* numbers, Motion motion) {
    const auto request = std::make_shared<MotionRequest>();
    CLI::App* command = zk.add_subcommand(name, what);
    request->add_to(*command);
    command->add_option(motion == Motion::kJoints ? "JOINT" : "POSE", request->numbers, numbers)->required();
    command->callback([request, motion] { move(*request, motion); });
}

// Clears what can be cleared, and fails when something is left.
void clear(const zk::Arm& arm) {
    const auto words_of_joints = [&arm] {
        const ArmAllState all = arm.measurements().value();
        return std::vector<std::uint16_t>(all.err_flag, all.err_flag + arm.joint_count());
    };
    // What is refused is seen by what is left.
    const std::vector<std::uint16_t> before = words_of_joints();
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] != 0) (void)arm.call<Set_Joint_Err_Clear>(i + 1, true);
    }
    (void)arm.clear_error();
    const zk::ArmState now = arm.state().value();
    const std::vector<std::uint16_t> left = words_of_joints();
    if (now.arm_error != 0 || now.system_error != 0 || left != std::vector<std::uint16_t>(left.size()))
        throw Failure(kFailed, "an error is left, since its cause is still there: see zk doctor");
    std::cout << "no error is left\n";
}

// Sends a stop on a connection of its own: the arm moves on while the library asks an arm's controller what it is, and
// one that answers little is never asked to the end. Returns whether it was sent.
bool stop_at_once(const Address& address, bool emergency) {
    const std::string request = std::string("{\"command\":\"set_arm_stop\"}\r\n") +
                                (emergency ? "{\"command\":\"set_arm_power\",\"arm_power\":64}\r\n" : "");
    constexpr timeval kPatience{1, 0};
    addrinfo hints{}, *found = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    if (getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &hints, &found) != 0) return false;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> peers(found, &freeaddrinfo);
    bool is_sent = false;
    for (const addrinfo* peer = found; peer && !is_sent; peer = peer->ai_next) {
        const int descriptor = socket(peer->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof kPatience);
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
        is_sent =
            connect(descriptor, peer->ai_addr, peer->ai_addrlen) == 0 &&
            send(descriptor, request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size());
        char byte = 0;
        if (is_sent) (void)recv(descriptor, &byte, 1, 0);  // a close must not overtake it
        if (descriptor >= 0) close(descriptor);
    }
    return is_sent;
}

// Stops an arm, and waits until it rests.
void stop(const ArmOption& where, bool emergency) {
    const bool is_sent = stop_at_once(where.address(), emergency);
    try {
        const zk::Arm arm = where.connect();
        arm.stop((emergency ? ZK_EMERGENCY_STOP : ZK_STOP) | ZK_DROP_QUEUED).value();
        arm.wait_idle(10_s).value();
    } catch (const Failure& failure) {
        if (!is_sent) throw;
        throw Failure(failure.exit,
                      "a stop was sent, and nobody knows whether the arm rests: " + std::string(failure.what()));
    }
    std::cout << "stopped\n";
}

}  // namespace

void add_clear(CLI::App& zk) {
    const auto where = std::make_shared<ArmOption>();
    CLI::App* command = zk.add_subcommand("clear", "clear the errors of the arm, after you removed their cause");
    where->add_to(*command);
    command->callback([where] { clear(where->connect()); });
}

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
        const zk::Arm arm = request->connect();
        std::array<float, zk::Joints::kMost> initial{};
        arm.call<Get_Arm_Init_Pose>(initial).value();
        const zk::Joints home = zk::Joints::from_c(initial.data(), arm.joint_count());
        const Plan plan = plan_joints(arm, arm.model().value(), home, zk::degrees(request->max_step));
        if (is_near(plan.from, plan.to)) {
            std::cout << "the arm is at its initial position\n";
        } else {
            carry_out(arm, plan, *request);
        }
    });
}

void add_stop(CLI::App& zk) {
    const auto where = std::make_shared<ArmOption>();
    const auto emergency = std::make_shared<bool>(false);
    CLI::App* command = zk.add_subcommand("stop", "stop the arm at once");
    where->add_to(*command);
    command->add_flag("--emergency", *emergency, "and take its power: the brakes hold it");
    command->callback([where, emergency] { stop(*where, *emergency); });
}

}  // namespace tool
