#include "proxy/faults.h"

#include <charconv>
#include <functional>
#include <sstream>

#include "proxy/wire_commands.h"
#include "wire/note.h"
#include "wire/refusal.h"
#include "world/faults.h"

// The parts of the simulated controller that the proxy shares note what happens.
void sim::note(const std::string& line) { std::cerr << "zk proxy: " + line + "\n"; }

namespace tool {
namespace {

// Those of the arm are the arm's own.
const sim::FaultRow* row_of(const std::string& name) {
    for (const sim::FaultRow& row : sim::fault_rows()) {
        sim::FaultNumbers numbers;
        const void *number = &row.number(numbers), *arm = &numbers.arm;
        if (name == row.name && std::less<>()(number, arm)) return &row;
    }
    return nullptr;
}

void set_number(sim::FaultNumbers& numbers, const std::string& name, const Json& value) {
    const sim::FaultRow* row = row_of(name);
    if (!row) throw sim::Refusal("'" + name + "' is no fault of the wire");
    if (!value.is_number_integer() || value < 0 || value > row->highest)
        throw sim::Refusal(name + ": 0 to " + std::to_string(row->highest) + " (" + row->takes + ")");
    row->number(numbers) = value;
}

std::set<std::string> items_of(const std::string& list) {
    std::set<std::string> items;
    std::istringstream in(list);
    for (std::string item; std::getline(in, item, ',');) items.insert(item);
    return items;
}

void demand_commands(const std::set<std::string>& names) {
    for (const std::string& name : names) {
        if (!is_command(name)) throw sim::Refusal("unknown command '" + name + "'; zk simulate --commands lists all");
    }
}

}  // namespace

void FaultDesk::set(const std::string& list, const std::string& silent, const std::string& refused) {
    Json request{{"silent_on", items_of(silent)}, {"refuse_on", items_of(refused)}};
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ',');) {
        const auto equal = item.find('=');
        int number = 0;
        const char* end = item.data() + item.size();
        if (equal == std::string::npos || std::from_chars(item.data() + equal + 1, end, number).ptr != end)
            throw Failure(kUsage, "'" + item + "' is no fault such as delay_ms=50");
        request[item.substr(0, equal)] = number;
    }
    try {
        set(request);
    } catch (const sim::Refusal& refusal) {
        throw Failure(kUsage, refusal.what());
    }
}

void FaultDesk::set(const Json& request) {
    sim::FaultNumbers numbers{wire, {}};
    std::set<std::string> silent = silent_on, refused = refuse_on;
    for (const auto& [name, value] : request.items()) {
        if (name == "command") continue;
        if (name == "silent_on" || name == "refuse_on") {
            try {
                (name == "silent_on" ? silent : refused) = value.get<std::set<std::string>>();
            } catch (const Json::exception&) {
                throw sim::Refusal(name + ": a list of commands");
            }
        } else {
            set_number(numbers, name, value);
        }
    }
    demand_possible(numbers, 0);
    demand_commands(silent);
    demand_commands(refused);
    wire = numbers.wire;
    silent_on = std::move(silent);
    refuse_on = std::move(refused);
    if (request.contains("silence_ms")) begin_silence();
    if (request.contains("refuse_ms") && refuse_clients) refuse_clients(wire.refuse_ms);
}

bool FaultDesk::serve(Client& client, const Request& request) {
    if (request.command != "zk_sim_fault" && request.command != "zk_sim_disconnect") return false;
    Json reply{{"command", request.command}, {"done", true}};
    try {
        if (request.command == "zk_sim_fault") {
            set(request.body);
        } else {
            disconnect_others(client, request.body.value("reset", Json(false)) == true);
        }
    } catch (const sim::Refusal& refusal) {
        reply["done"] = false;
        reply["reason"] = request.command + ": " + refusal.what();
    }
    client.send_text(reply.dump() + "\r\n", false);
    return true;
}

}  // namespace tool
