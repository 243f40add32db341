#include "controller.h"

#include <cmath>
#include <numbers>

#include "commands/commands.h"
#include "motion/inverse.h"
#include "wire/note.h"

namespace sim {
namespace {

constexpr double kRadians = std::numbers::pi / 180;

}  // namespace

Controller::Controller(const Options& options)
    : arm(options.model, options.joints.empty() ? options.model.home : options.joints),
      devices(options.object_width),
      sensor(options.load, options.force_noise, options.seed),
      wall(options.wall),
      install(options.install),
      init_pose(options.model.joint_count(), 0.0),
      push(options.push),
      commands_(all_commands()),
      solver_(arm.model().chain),
      inverse_(std::make_unique<InverseKinematics>(arm.model())) {
    faults.delay_ms = options.delay_ms;
    faults.transfer = options.transfer_fault;
    files.directory = options.files;
    drag.script = options.hand;
    arm.yielding = [this](const JointVector& ordered) { return yielded(ordered); };
    for (const std::string& name : options.silent_on) {
        if (!commands_.find(name)) throw std::invalid_argument("--silent-on: unknown command '" + name + "'");
        faults.silent_on.insert(name);
    }
    for (const std::string& name : options.refuse_on) {
        const Command* command = commands_.find(name);
        if (!command || command->key.empty())
            throw std::invalid_argument("--refuse-on: '" + name + "' is no command that is acknowledged");
        faults.refuse_on.insert(name);
    }
    if (options.tool) {
        tools.add("tool", {.pose = *options.tool, .payload = 0, .position = {}});
        tools.select("tool");
    }
    if (options.work) {
        works.add("work", {.pose = *options.work, .payload = 0, .position = {}});
        works.select("work");
    }
    arm.motion().on_end = [](const Move& move, bool arrived) {
        if (move.ended) return move.ended(arrived);
        if (arrived && move.connect != 0) return;  // joined to the next
        report_arrival(move.client.lock(), Device::kArm, arrived, move.connect);
    };
    measure_force();
}

Controller::~Controller() = default;

void Controller::handle(std::string_view text, const std::shared_ptr<Client>& client) {
    try {
        const Json body = Json::parse(text, nullptr, false);
        if (body.is_discarded()) throw BadRequest("a request that is no JSON");
        const Request request(body);
        const Command* command = commands_.find(request.command());
        if (!command) throw BadRequest("unknown command '" + request.command() + "'");
        if (faults.silent_on.count(request.command()) != 0) return;
        Call call{*this, client, request};
        carry_out(*command, call);
    } catch (const std::exception& error) {
        note(client->name() + ": " + error.what());
    }
}

void Controller::carry_out(const Command& command, Call& call) {
    if (command.query) {
        Json reply{{"state", command.literal}};
        reply.update(command.query(call));
        call.client->send(reply);
        return;
    }
    bool done = false;
    try {
        done = faults.refuse_on.count(call.request.command()) == 0 && command.action(call);
    } catch (const BadRequest& error) {
        note(call.client->name() + ": " + error.what());
    } catch (const NoPath& error) {
        note(call.client->name() + ": " + call.request.command() + ": " + error.what());
    }
    const bool later = done && command.acknowledged_later;
    if (!command.key.empty() && !later) call.client->send({{"command", command.literal}, {command.key, done}});
    if (!done && command.refused) command.refused(call);
}

void Controller::step() {
    constexpr double kSeconds = kStepMs / 1000.0;
    ++steps_;
    drag.step(kSeconds);
    step_hold(kSeconds);
    arm.step(kSeconds);
    devices.step(kSeconds);
    measure_force();
    programs.step(*this);
    files.step(kStepMs);
}

void Controller::measure_force() {
    const KDL::Frame flange = mounted_flange();
    sensor.measure(flange, contact_with(wall, flange, surroundings().flange_T_tool));
}

KDL::Wrench Controller::felt(ForceAxes axes) const {
    KDL::Wrench wrench = sensor.compensated();
    if (arm.model().sensor == Sensor::kOneForce) wrench = {KDL::Vector(0, 0, wrench.force.z()), KDL::Vector::Zero()};
    if (axes == ForceAxes::kSensor) return wrench;
    const KDL::Wrench at_tool = surroundings().flange_T_tool.Inverse(wrench);
    return axes == ForceAxes::kTool ? at_tool : tool_pose().M * at_tool;
}

bool Controller::hold_force(const HoldOrder& order) {
    if (hold.stands_off() && order.of_tool != hold.order().of_tool && !settle_hold()) return false;
    hold.begin(order);
    return true;
}

// At rest the arm stays at the pose that a hold has reached.
bool Controller::settle_hold() {
    if (!arm.motion().idle()) return false;
    arm.hold_current_position();
    hold.forget();
    return true;
}

void Controller::step_hold(double seconds) {
    if (hold.active() && !arm.reason_not_to_move().empty()) hold.end();
    if (!hold.active() && (!hold.stands_off() || settle_hold())) return;
    hold.step(seconds, -felt(hold.order().of_tool ? ForceAxes::kTool : ForceAxes::kWork));
}

// The arm stays where it cannot yield any further.
JointVector Controller::yielded(const JointVector& ordered) {
    constexpr double kFarthest = 5;  // degrees of a joint in one step
    if (!hold.stands_off()) return ordered;
    const auto joints = joints_at(hold.shifted(surroundings().tool_of(flange_at(ordered))), arm.joints());
    bool near = joints.has_value();
    for (size_t i = 0; near && i < joints->size(); ++i) near = std::abs((*joints)[i] - arm.joints()[i]) < kFarthest;
    if (near) return *joints;
    hold.step_back();
    return arm.joints();
}

KDL::Frame Controller::flange_pose() const { return flange_at(arm.joints()); }

KDL::Frame Controller::flange_at(const JointVector& angles) const {
    KDL::JntArray joints(angles.size());
    for (size_t i = 0; i < angles.size(); ++i) joints(i) = angles[i] * kRadians;
    KDL::Frame flange;
    solver_.JntToCart(joints, flange);
    return flange;
}

KDL::Frame Controller::mounted_flange() const { return mounting() * flange_pose(); }

KDL::Frame Controller::tool_pose() const { return surroundings().tool_of(flange_pose()); }

Surroundings Controller::surroundings() const {
    return {frame_of(works.current().pose).Inverse() * mounting(), frame_of(tools.current().pose)};
}

std::optional<JointVector> Controller::joints_at(const KDL::Frame& tool, const JointVector& seed) const {
    return joints_at(tool, seed, surroundings());
}

std::optional<JointVector> Controller::joints_at(const KDL::Frame& tool, const JointVector& seed,
                                                 const Surroundings& around) const {
    return inverse_->solve(around.flange_of(tool), seed, arm.limits);
}

KDL::Frame Controller::mounting() const {
    const auto& [rx, ry, rz] = install;
    return KDL::Frame(KDL::Rotation::RPY(rx * kRadians, ry * kRadians, rz * kRadians));
}

}  // namespace sim
