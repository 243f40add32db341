#include "controller.h"

#include <stdexcept>

#include "commands/commands.h"
#include "wire/arrival_report.h"

namespace sim {
namespace {

void select(FrameStore& frames, const char* name, const std::optional<WirePose>& pose) {
    if (!pose) return;
    const Frame frame{.pose = *pose, .payload = 0, .position = {}};
    if (!frames.update(name, frame)) frames.add(name, frame);
    frames.select(name);
}

}  // namespace

Controller::Controller(const Options& options, const Json& kept, Scenario::Progress progress)
    : arm_(options.model, options.joints.empty() ? options.model.home : options.joints),
      force_(arm_, tool_, options.wall, ForceSensor(options.load, options.force_noise, options.seed)),
      devices_(options.object),
      push_(options.push, {time_, arm_, tool_, drag_, force_, devices_}) {
    add_commands();
    try {
        memory_.load(kept);
    } catch (const Refusal& refusal) {
        throw std::invalid_argument("--state: '" + options.state + "': " + refusal.what());
    }
    select(tool_.tools, "tool", options.tool);
    select(tool_.works, "work", options.work);
    if (options.install) tool_.mounting = *options.install;
    time_.speed = options.speed;
    drag_.script = options.hand;
    files_.directory = options.files;
    arm_.motion().on_end = [](const Move& move, bool arrived) {
        if (move.ended) return move.ended(arrived);
        if (arrived && move.connect != 0) return;  // joined to the next
        report_arrival(move.client.lock(), Device::kArm, arrived, move.connect);
    };
    set_faults(options);
    if (options.events)
        scenario_.emplace(*options.events, Scenario::Parts{arm_, ports_, dispatcher_}, std::move(progress));
    force_.measure();
}

// As a request sets them.
void Controller::set_faults(const Options& options) {
    dispatcher_.faults.seed = options.seed;
    Json faults{{"command", "zk_sim_fault"}, {"silent_on", options.silent_on}, {"refuse_on", options.refuse_on}};
    faults["transfer"] = {{"kind", options.transfer_fault.kind}, {"at", options.transfer_fault.at}};
    FaultNumbers numbers = options.faults;
    for (const FaultRow& row : fault_rows()) faults[row.name] = row.number(numbers);
    try {
        dispatcher_.commands.find("zk_sim_fault")->action({nullptr, Request(faults)});
    } catch (const Refusal& refusal) {
        throw std::invalid_argument(refusal.what());
    }
}

// Each family gets the parts on which its commands act.
void Controller::add_commands() {
    CommandTable& table = dispatcher_.commands;
    add_joint_commands(table, memory_, arm_);
    add_state_commands(table, memory_, arm_, tool_);
    add_limit_commands(table, memory_, arm_, tool_);
    add_frame_commands(table, memory_, arm_, tool_);
    add_motion_commands(table, arm_, tool_);
    add_trajectory_commands(table, arm_, programs_);
    add_streaming_commands(table, arm_, tool_, devices_.expansion);
    add_teach_commands(table, arm_, tool_);
    add_drag_commands(table, memory_, arm_, drag_, force_.hold);
    add_force_commands(table, arm_, force_);
    add_force_position_commands(table, arm_, tool_, force_);
    add_push_commands(table, push_.settings, arm_);
    add_fence_commands(table, memory_, guard_.safety, tool_.tools);
    add_modbus_commands(table, modbus_);
    add_system_commands(table, memory_, time_, arm_, modbus_);
    add_io_commands(table, ports_);
    add_gripper_commands(table, memory_, devices_.gripper);
    add_hand_commands(table, devices_.hand);
    add_axis_commands(table, memory_, devices_);
    add_file_commands(table, files_, programs_, drag_);
    add_program_commands(table, memory_, programs_, arm_);
    add_waypoint_commands(table, memory_, arm_);
    add_world_commands(table, ports_, modbus_, force_.wall, devices_.gripper);
    add_time_commands(table, time_);
    add_fault_commands(table, dispatcher_, fault_effects_, files_, arm_);
}

void Controller::step() {
    constexpr double kSeconds = kStepMs / 1000.0;
    time_.milliseconds += kStepMs;
    if (scenario_) scenario_->step(kStepMs);
    fault_effects_.step(kSeconds);
    guard_.step();
    drag_.step(kSeconds);
    force_.step_hold(kSeconds);
    arm_.step(kSeconds);
    devices_.step(kSeconds);
    force_.carried = devices_.gripper.carried();
    force_.measure();
    programs_.step();
    files_.step(kStepMs / time_.speed);
}

bool Controller::rests() const {
    return arm_.motion().rests() && !drag_.leads() && devices_.rest() && fault_effects_.rests() &&
           !programs_.proceed() && !force_.hold.active() && !force_.hold.stands_off() &&
           !(scenario_ && scenario_->waits());
}

}  // namespace sim
