// Injects faults by request: {"command": "zk_sim_fault", ...} with any of the keys below.

#include <optional>

#include "commands/commands.h"
#include "devices/fault_effects.h"
#include "motion/arm.h"
#include "programs/files.h"
#include "wire/dispatcher.h"

namespace sim {
namespace {

constexpr int kLongestMs = 60'000;
constexpr int kMaxWord = 65535;

// The parts on which faults act.
struct Targets {
    Dispatcher& dispatcher;
    FaultEffects& effects;
    Files& files;
    Arm& arm;
};

// What a request asks for. All of it is read and checked before anything changes.
struct NewFaults {
    std::set<std::string> silent_on, refuse_on;
    FaultNumbers numbers;
    TransferFault transfer;
    std::optional<int> arm_err, sys_err;  // nothing: as they are
    std::vector<int> joint_err;           // empty: the same
};

std::vector<std::string> fault_keys() {
    std::vector<std::string> keys{"silent_on", "refuse_on", "transfer", "arm_err", "sys_err", "joint_err"};
    for (const FaultRow& row : fault_rows()) keys.emplace_back(row.name);
    return keys;
}

std::set<std::string> known_commands(const CommandTable& table, const std::vector<std::string>& names,
                                     bool acknowledged) {
    for (const std::string& name : names) {
        const Command* command = table.find(name);
        if (!command) throw Refusal("unknown command '" + name + "'");
        if (acknowledged && command->key.empty()) throw Refusal("'" + name + "' is no command that is acknowledged");
    }
    return {names.begin(), names.end()};
}

// The fault of the next file transfers: {"kind": ..., "at": ...}.
TransferFault transfer_fault(const Request& fault) {
    fault.demand_known_keys({"kind", "at"});
    const TransferFault transfer{fault.text("kind"), fault.has("at") ? fault.integer("at", 0) : 0};
    if (!is_transfer_fault(transfer.kind)) throw BadRequest("unknown fault of a transfer '" + transfer.kind + "'");
    return transfer;
}

NewFaults faults_of(const Targets& targets, const Request& request) {
    const CommandTable& commands = targets.dispatcher.commands;
    const auto names = [&](const char* key, const std::set<std::string>& now, bool acknowledged) {
        return request.has(key) ? known_commands(commands, request.texts(key), acknowledged) : now;
    };
    const auto word = [&](const char* key) {
        return request.has(key) ? std::optional(request.integer(key, 0, kMaxWord)) : std::nullopt;
    };
    const Faults& now = targets.dispatcher.faults;
    NewFaults faults{names("silent_on", now.silent_on, false),
                     names("refuse_on", now.refuse_on, true),
                     {now.wire, targets.effects.faults()},
                     request.has("transfer") ? transfer_fault(request.object("transfer")) : targets.files.fault,
                     word("arm_err"),
                     word("sys_err"),
                     {}};
    for (const FaultRow& row : fault_rows()) {
        if (request.has(row.name)) row.number(faults.numbers) = request.integer(row.name, 0, row.highest);
    }
    if (request.has("joint_err")) faults.joint_err = request.integers("joint_err", targets.arm.joint_count());
    return faults;
}

void demand_possible(const NewFaults& faults, size_t joint_count) {
    demand_possible(faults.numbers, joint_count);
    const ArmFaults& arm = faults.numbers.arm;
    for (const int word : faults.joint_err) {
        if (word < 0 || word > kMaxWord) throw Refusal("joint_err: " + std::to_string(word) + " is no error word");
    }
    for (const std::string& name : faults.refuse_on) {
        if (faults.silent_on.count(name) != 0)
            throw Refusal("refuse_on: '" + name + "' is ignored by silent_on, so it is not answered");
    }
    if (arm.emergency_stop != 0 && faults.sys_err.value_or(kEmergencyStop) != kEmergencyStop)
        throw Refusal("sys_err: the emergency stop is pressed; release it first");
    if (arm.full_disk != 0 && !faults.transfer.kind.empty())
        throw Refusal("transfer: with a full_disk no transfer begins");
}

bool set_faults(const Targets& targets, const Call& call) {
    NewFaults faults = faults_of(targets, call.request);
    demand_possible(faults, targets.arm.joint_count());
    Dispatcher& dispatcher = targets.dispatcher;
    dispatcher.faults.silent_on = std::move(faults.silent_on);
    dispatcher.faults.refuse_on = std::move(faults.refuse_on);
    dispatcher.faults.wire = faults.numbers.wire;
    if (call.request.has("silence_ms")) dispatcher.faults.begin_silence();
    if (call.request.has("refuse_ms") && dispatcher.refuse_clients)
        dispatcher.refuse_clients(faults.numbers.wire.refuse_ms);
    targets.files.fault = faults.transfer;
    targets.files.disk_full = faults.numbers.arm.full_disk != 0;
    targets.arm.set_errors(faults.arm_err.value_or(targets.arm.arm_error()),
                           faults.sys_err.value_or(targets.arm.system_error()));
    for (size_t i = 0; i < faults.joint_err.size(); ++i) targets.arm.set_joint_error(i, faults.joint_err[i]);
    targets.effects.set(faults.numbers.arm);
    return true;
}

// {"command": "zk_sim_disconnect", "reset": true}
bool disconnect(const Dispatcher& dispatcher, const Call& call) {
    const bool reset = call.request.has("reset") && call.request.flag("reset");
    if (dispatcher.disconnect_others) dispatcher.disconnect_others(*call.client, reset);
    return true;
}

// {"command": "zk_sim_restart", "pause_ms": 500}: nobody listens in between.
bool restart(const Dispatcher& dispatcher, const Call& call) {
    const int pause_ms = call.request.has("pause_ms") ? call.request.integer("pause_ms", 0, kLongestMs) : 0;
    if (dispatcher.restart) dispatcher.restart(pause_ms);
    return dispatcher.restart != nullptr;
}

}  // namespace

void add_fault_commands(CommandTable& table, Dispatcher& dispatcher, FaultEffects& effects, Files& files, Arm& arm) {
    const Targets targets{dispatcher, effects, files, arm};
    table.set("zk_sim_fault", "done", [targets](const Call& call) { return set_faults(targets, call); }).keys =
        fault_keys();
    table.set("zk_sim_disconnect", "done", with(disconnect, dispatcher)).keys = {"reset"};
    table.set("zk_sim_restart", "done", with(restart, dispatcher)).keys = {"pause_ms"};
}

}  // namespace sim
