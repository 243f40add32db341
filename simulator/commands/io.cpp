// Inputs, outputs and supply voltages of the controller and the tool. Every output of the controller is wired to the
// input of its number.

#include <array>

#include "commands/commands.h"
#include "wire/command_table.h"

namespace sim {
namespace {

constexpr int kPorts = 4;
constexpr int kToolPorts = 2;
constexpr int kMaxMillivolts = 10'000;

struct DigitalPort {
    int state = 0;
    int mode = 1;  // 0: an input, which cannot be set
};

struct Ports {
    std::array<DigitalPort, kPorts> digital;
    std::array<int, kPorts> analogue{};  // millivolts
    std::array<DigitalPort, kToolPorts> tool;
    int voltage_type = 0;
    int tool_voltage_type = 0;
};
using SharedPorts = std::shared_ptr<Ports>;

// Clients count from 1.
template <class Port, size_t size>
Port& numbered(const Request& request, std::array<Port, size>& ports) {
    return ports[static_cast<size_t>(request.integer("IO_Num", 1, static_cast<int>(size)) - 1)];
}

bool set_state(const Request& request, DigitalPort& port) {
    const int state = request.integer("state", 0, 1);
    if (port.mode == 0) return false;
    port.state = state;
    return true;
}

Json states(const Ports& ports) {
    Json states;
    for (const DigitalPort& port : ports.digital) states.push_back(port.state);
    return states;
}

void add_digital(CommandTable& table, const SharedPorts& ports) {
    table.set("set_DO_state", "set_state",
              [ports](const Call& call) { return set_state(call.request, numbered(call.request, ports->digital)); });
    table.set("set_IO_mode", "set_state", [ports](const Call& call) {
        DigitalPort& port = numbered(call.request, ports->digital);
        port.mode = call.request.integer("IO_mode", 0, 1);
        return true;
    });
    const auto state = [ports](const Call& call) {
        return Json{{"IO_state", numbered(call.request, ports->digital).state}};
    };
    table.query("get_DO_state", "DO_state", state);
    table.query("get_DI_state", "DI_state", state);
    table.query("get_IO_state", "IO_state", [ports](const Call& call) {
        const DigitalPort& port = numbered(call.request, ports->digital);
        return Json{{"IO_state", port.state}, {"IO_Mode", port.mode}};
    });
}

void add_analogue(CommandTable& table, const SharedPorts& ports) {
    table.set("set_AO_state", "state", [ports](const Call& call) {
        int& port = numbered(call.request, ports->analogue);
        port = call.request.integer("voltage", 0, kMaxMillivolts);
        return true;
    });
    const auto voltage = [ports](const Call& call) {
        return Json{{"voltage", numbered(call.request, ports->analogue)}};
    };
    table.query("get_AO_state", "AO_state", voltage);
    table.query("get_AI_state", "AI_state", voltage);
}

void add_banks(CommandTable& table, const SharedPorts& ports) {
    table.query("get_IO_input", "IO_input", [ports](const Call&) {
        return Json{{"DI", states(*ports)}, {"AI", ports->analogue}};
    });
    table.query("get_IO_output", "IO_output", [ports](const Call&) {
        return Json{{"DO", states(*ports)}, {"AO", ports->analogue}};
    });
}

void add_voltage(CommandTable& table, const SharedPorts& ports) {
    constexpr int kMaxType = 3;
    table.set("set_voltage", "state", [ports](const Call& call) {
        call.request.flag("start_enable");
        ports->voltage_type = call.request.integer("voltage_type", 0, kMaxType);
        return true;
    });
    table.query("get_voltage", "voltage_state", [ports](const Call&) {
        return Json{{"voltage_type", ports->voltage_type}};
    });
    table.set("set_tool_voltage", "state", [ports](const Call& call) {
        ports->tool_voltage_type = call.request.integer("voltage_type", 0, kMaxType);
        return true;
    });
    table.query("get_tool_voltage", "tool_voltage", [ports](const Call&) {
        return Json{{"voltage_type", ports->tool_voltage_type}};
    });
}

void add_tool(CommandTable& table, const SharedPorts& ports) {
    table.set("set_tool_DO_state", "set_state",
              [ports](const Call& call) { return set_state(call.request, numbered(call.request, ports->tool)); });
    table.set("set_tool_IO_mode", "set_state", [ports](const Call& call) {
        DigitalPort& port = numbered(call.request, ports->tool);
        port.mode = call.request.integer("state", 0, 1);
        return true;
    });
    table.query("get_tool_IO_state", "tool_IO_state", [ports](const Call&) {
        Json modes, states;
        for (const DigitalPort& port : ports->tool) {
            modes.push_back(port.mode);
            states.push_back(port.state);
        }
        return Json{{"IO_Mode", modes}, {"IO_State", states}};
    });
}

}  // namespace

void add_io_commands(CommandTable& table) {
    const auto ports = std::make_shared<Ports>();
    add_digital(table, ports);
    add_analogue(table, ports);
    add_banks(table, ports);
    add_voltage(table, ports);
    add_tool(table, ports);
}

}  // namespace sim
