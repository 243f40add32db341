// Inputs, outputs and supply voltages of the controller and the tool. Every output of the controller is wired to the
// input of its number.

#include "world/ports.h"

#include <functional>

#include "commands/commands.h"
#include "wire/command_table.h"

namespace sim {
namespace {

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

// One value of each port.
template <class Port, size_t size, class Value>
Json list(const std::array<Port, size>& ports, Value value) {
    Json values;
    for (const Port& port : ports) values.push_back(std::invoke(value, port));
    return values;
}

void add_digital(CommandTable& table, Ports& ports) {
    table.set("set_DO_state", "set_state",
              [&ports](const Call& call) { return set_state(call.request, numbered(call.request, ports.digital)); });
    table.set("set_IO_mode", "set_state", [&ports](const Call& call) {
        DigitalPort& port = numbered(call.request, ports.digital);
        port.mode = call.request.integer("IO_mode", 0, 1);
        return true;
    });
    table.query("get_DO_state", "DO_state", [&ports](const Call& call) {
        return Json{{"IO_state", numbered(call.request, ports.digital).state}};
    });
    table.query("get_DI_state", "DI_state", [&ports](const Call& call) {
        return Json{{"IO_state", numbered(call.request, ports.digital).input()}};
    });
    table.query("get_IO_state", "IO_state", [&ports](const Call& call) {
        const DigitalPort& port = numbered(call.request, ports.digital);
        return Json{{"IO_state", port.seen()}, {"IO_Mode", port.mode}};
    });
}

void add_analogue(CommandTable& table, Ports& ports) {
    table.set("set_AO_state", "state", [&ports](const Call& call) {
        AnaloguePort& port = numbered(call.request, ports.analogue);
        port.output = call.request.integer("voltage", 0, AnaloguePort::kHighest);
        return true;
    });
    table.query("get_AO_state", "AO_state", [&ports](const Call& call) {
        return Json{{"voltage", numbered(call.request, ports.analogue).output}};
    });
    table.query("get_AI_state", "AI_state", [&ports](const Call& call) {
        return Json{{"voltage", numbered(call.request, ports.analogue).input()}};
    });
}

void add_banks(CommandTable& table, Ports& ports) {
    table.query("get_IO_input", "IO_input", [&ports](const Call&) {
        return Json{{"DI", list(ports.digital, &DigitalPort::input)},
                    {"AI", list(ports.analogue, &AnaloguePort::input)}};
    });
    table.query("get_IO_output", "IO_output", [&ports](const Call&) {
        return Json{{"DO", list(ports.digital, &DigitalPort::state)},
                    {"AO", list(ports.analogue, &AnaloguePort::output)}};
    });
}

void add_voltage(CommandTable& table, Ports& ports) {
    constexpr int kMaxType = 3;
    table.set("set_voltage", "state", [&ports](const Call& call) {
        call.request.flag("start_enable");
        ports.voltage_type = call.request.integer("voltage_type", 0, kMaxType);
        return true;
    });
    table.query("get_voltage", "voltage_state", [&ports](const Call&) {
        return Json{{"voltage_type", ports.voltage_type}};
    });
    table.set("set_tool_voltage", "state", [&ports](const Call& call) {
        ports.tool_voltage_type = call.request.integer("voltage_type", 0, kMaxType);
        return true;
    });
    table.query("get_tool_voltage", "tool_voltage", [&ports](const Call&) {
        return Json{{"voltage_type", ports.tool_voltage_type}};
    });
}

void add_tool(CommandTable& table, Ports& ports) {
    table.set("set_tool_DO_state", "set_state",
              [&ports](const Call& call) { return set_state(call.request, numbered(call.request, ports.tool)); });
    table.set("set_tool_IO_mode", "set_state", [&ports](const Call& call) {
        DigitalPort& port = numbered(call.request, ports.tool);
        port.mode = call.request.integer("state", 0, 1);
        return true;
    });
    table.query("get_tool_IO_state", "tool_IO_state", [&ports](const Call&) {
        return Json{{"IO_Mode", list(ports.tool, &DigitalPort::mode)},
                    {"IO_State", list(ports.tool, &DigitalPort::seen)}};
    });
}

}  // namespace

void add_io_commands(CommandTable& table, Ports& ports) {
    add_digital(table, ports);
    add_analogue(table, ports);
    add_banks(table, ports);
    add_voltage(table, ports);
    add_tool(table, ports);
}

}  // namespace sim
