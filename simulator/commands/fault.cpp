// Injects faults by request: {"command": "zk_sim_fault", ...} with any of the keys below.

#include <algorithm>

#include "commands/commands.h"
#include "motion/arm.h"
#include "programs/files.h"
#include "wire/dispatcher.h"

namespace sim {
namespace {

constexpr int kLongestMs = 60'000;

std::set<std::string> known_commands(const CommandTable& table, const Request& request, const char* key) {
    const std::vector<std::string> names = request.texts(key);
    for (const std::string& name : names) {
        if (!table.find(name)) throw BadRequest("unknown command '" + name + "'");
    }
    return {names.begin(), names.end()};
}

// The fault of the next file transfers: {"kind": ..., "at": ...}.
TransferFault transfer_fault(const Request& fault) {
    const TransferFault transfer{fault.text("kind"), fault.has("at") ? fault.integer("at", 0) : 0};
    if (!is_transfer_fault(transfer.kind)) throw BadRequest("unknown fault of a transfer '" + transfer.kind + "'");
    return transfer;
}

// Reads the whole request before it changes anything.
bool set_faults(Dispatcher& dispatcher, Files& files, Arm& arm, const Call& call) {
    constexpr int kMaxWord = 65535;
    const Request& request = call.request;
    Faults faults = dispatcher.faults;
    TransferFault transfer = files.fault;
    if (request.has("silent_on")) faults.silent_on = known_commands(dispatcher.commands, request, "silent_on");
    if (request.has("refuse_on")) faults.refuse_on = known_commands(dispatcher.commands, request, "refuse_on");
    for (const WireFaultRow& row : wire_fault_rows()) {
        if (request.has(row.name)) row.value(faults.wire) = request.integer(row.name, 0, row.highest);
    }
    if (request.has("silence_ms")) {
        faults.silent_until =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(request.integer("silence_ms", 0, kLongestMs));
    }
    if (request.has("transfer")) transfer = transfer_fault(request.object("transfer"));
    const auto word = [&](const char* key, int now) {
        return request.has(key) ? request.integer(key, 0, kMaxWord) : now;
    };
    const int arm_err = word("arm_err", arm.arm_error()), sys_err = word("sys_err", arm.system_error());
    std::vector<int> joint_errors;
    if (request.has("joint_err")) joint_errors = request.integers("joint_err", arm.joint_count());

    dispatcher.faults = std::move(faults);
    files.fault = transfer;
    arm.set_errors(arm_err, sys_err);
    for (size_t i = 0; i < joint_errors.size(); ++i) arm.set_joint_error(i, std::clamp(joint_errors[i], 0, kMaxWord));
    return true;
}

// {"command": "zk_sim_disconnect", "reset": true}
bool disconnect(const Dispatcher& dispatcher, const Call& call) {
    if (dispatcher.disconnect_others) dispatcher.disconnect_others(*call.client, call.request.is_true("reset"));
    return true;
}

// {"command": "zk_sim_restart", "pause_ms": 500}: nobody listens in between.
bool restart(const Dispatcher& dispatcher, const Call& call) {
    const int pause_ms = call.request.has("pause_ms") ? call.request.integer("pause_ms", 0, kLongestMs) : 0;
    if (dispatcher.restart) dispatcher.restart(pause_ms);
    return dispatcher.restart != nullptr;
}

}  // namespace

void add_fault_commands(CommandTable& table, Dispatcher& dispatcher, Files& files, Arm& arm) {
    table.set("zk_sim_fault", "done", with(set_faults, dispatcher, files, arm));
    table.set("zk_sim_disconnect", "done", with(disconnect, dispatcher));
    table.set("zk_sim_restart", "done", with(restart, dispatcher));
}

}  // namespace sim
