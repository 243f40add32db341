// Modbus: the ports, and the coils and registers of their devices.

#include <climits>
#include <optional>

#include "commands/commands.h"
#include "devices/modbus.h"
#include "wire/command_table.h"

namespace sim {
namespace {

// The most that one transaction carries.
constexpr int kMostRead = 2000, kMostWritten = 1968;  // coils
constexpr int kMostRegistersRead = 125, kMostRegistersWritten = 123;
constexpr int kBits = 8;

// The device of a transaction; null if none answers or the device does not have all addresses.
struct Range {
    ModbusDevice& device;
    int first;
    int count;
};

std::optional<Range> range(ModbusMaster& modbus, const Call& call, int count, int most) {
    const Request& request = call.request;
    const int first = request.integer("address");
    ModbusDevice* device = modbus.find(request.integer("port"), request.integer("device"));
    if (!device || count < 1 || count > most || first < 0 || first > ModbusDevice::kAddresses - count)
        return std::nullopt;
    return Range{*device, first, count};
}

// Eight coils per byte, the first in the lowest bit.
template <class Read>
std::vector<int> packed_bits(const Range& range, Read read) {
    std::vector<int> bytes(static_cast<size_t>((range.count + kBits - 1) / kBits));
    for (int i = 0; i < range.count; ++i) {
        if ((range.device.*read)(range.first + i)) bytes[static_cast<size_t>(i / kBits)] |= 1 << i % kBits;
    }
    return bytes;
}

// The high byte of each register, then the low one.
template <class Read>
std::vector<int> register_bytes(const Range& range, Read read) {
    std::vector<int> bytes;
    for (int i = 0; i < range.count; ++i) {
        const int value = (range.device.*read)(range.first + i);
        bytes.push_back(value / 256);
        bytes.push_back(value % 256);
    }
    return bytes;
}

// The reply to a read, or its refusal.
template <class Data>
Json read_reply(const std::optional<Range>& range, Data data) {
    return range ? Json{{"data", data(*range)}} : Json{{"read_state", false}};
}

template <class Read>
void add_single_reads(CommandTable& table, ModbusMaster& modbus, const char* bits, Read read_bit, const char* registers,
                      int (ModbusDevice::*read_register)(int) const) {
    table.query(bits, bits, [=, &modbus](const Call& call) {
        return read_reply(range(modbus, call, call.request.integer("num"), kBits),
                          [&](const Range& asked) { return packed_bits(asked, read_bit).front(); });
    });
    table.query(registers, registers, [=, &modbus](const Call& call) {
        return read_reply(range(modbus, call, 1, 1),
                          [&](const Range& asked) { return (asked.device.*read_register)(asked.first); });
    });
}

void add_multiple_reads(CommandTable& table, ModbusMaster& modbus) {
    table.query("read_multiple_coils", "read_multiple_coils", [&modbus](const Call& call) {
        return read_reply(range(modbus, call, call.request.integer("num"), kMostRead),
                          [](const Range& asked) { return packed_bits(asked, &ModbusDevice::coil); });
    });
    const auto registers = [&](const char* name, auto read) {
        table.query(name, name, [&modbus, read](const Call& call) {
            return read_reply(range(modbus, call, call.request.integer("num"), kMostRegistersRead),
                              [&](const Range& asked) { return register_bytes(asked, read); });
        });
    };
    registers("read_multiple_holding_registers", &ModbusDevice::holding_register);
    registers("read_multiple_input_registers", &ModbusDevice::input_register);
}

// The bytes of a write: a number, or an array of several.
std::vector<int> bytes_of(const Request& request, int count) {
    const std::vector<int> bytes =
        count == 1 ? std::vector<int>{request.integer("data")} : request.integers("data", static_cast<size_t>(count));
    for (const int byte : bytes) {
        if (byte < 0 || byte > 255) throw BadRequest(request.command() + ": \"data\" holds what is no byte");
    }
    return bytes;
}

bool write_coils(ModbusMaster& modbus, const Call& call) {
    const auto range = sim::range(modbus, call, call.request.integer("num"), kMostWritten);
    if (!range) return false;
    const std::vector<int> bytes = bytes_of(call.request, (range->count + kBits - 1) / kBits);
    for (int i = 0; i < range->count; ++i)
        range->device.write_coil(range->first + i, bytes[static_cast<size_t>(i / kBits)] >> i % kBits & 1);
    return true;
}

bool write_registers(ModbusMaster& modbus, const Call& call) {
    const auto range = sim::range(modbus, call, call.request.integer("num"), kMostRegistersWritten);
    if (!range) return false;
    const std::vector<int> bytes = bytes_of(call.request, 2 * range->count);
    for (int i = 0; i < range->count; ++i) {
        const size_t high = 2 * static_cast<size_t>(i);
        range->device.write_register(range->first + i, bytes[high] * 256 + bytes[high + 1]);
    }
    return true;
}

void add_writes(CommandTable& table, ModbusMaster& modbus) {
    table.set("write_single_coil", "write_state", [&modbus](const Call& call) {
        const auto range = sim::range(modbus, call, 1, 1);
        if (range) range->device.write_coil(range->first, call.request.integer("data", 0, 65535) != 0);
        return range.has_value();
    });
    table.set("write_single_register", "write_state", [&modbus](const Call& call) {
        const auto range = sim::range(modbus, call, 1, 1);
        if (range) range->device.write_register(range->first, call.request.integer("data", 0, 65535));
        return range.has_value();
    });
    table.set("write_coils", "write_state", with(write_coils, modbus));
    table.set("write_registers", "write_state", with(write_registers, modbus));
}

void add_modes(CommandTable& table, ModbusMaster& modbus) {
    table.set("set_modbus_mode", "set_state", [&modbus](const Call& call) {
        ModbusPort& port = modbus.port(call.request.integer("port", 0, ModbusMaster::ZK_K_TOOL));
        const int baudrate = call.request.integer("baudrate", 1);
        port.timeout = call.request.integer("timeout", 0);
        port.baudrate = baudrate;
        return port.open = true;
    });
    table.set("close_modbus_mode", "set_state", [&modbus](const Call& call) {
        modbus.port(call.request.integer("port", 0, ModbusMaster::ZK_K_TOOL)).open = false;
        return true;
    });
    table.set("set_modbustcp_mode", "set_state", [&modbus](const Call& call) {
        call.request.text("ip");
        call.request.integer("port", 1, 65535);
        ModbusPort& port = modbus.port(ModbusMaster::ZK_K_TCP);
        port.timeout = call.request.integer("timeout", 0);
        return port.open = true;
    });
    table.set("close_modbustcp_mode", "set_state", [&modbus](const Call&) {
        modbus.port(ModbusMaster::ZK_K_TCP).open = false;
        return true;
    });
}

}  // namespace

void add_modbus_commands(CommandTable& table, ModbusMaster& modbus) {
    add_modes(table, modbus);
    add_single_reads(table, modbus, "read_coils", &ModbusDevice::coil, "read_holding_registers",
                     &ModbusDevice::holding_register);
    add_single_reads(table, modbus, "read_input_status", &ModbusDevice::discrete_input, "read_input_registers",
                     &ModbusDevice::input_register);
    add_multiple_reads(table, modbus);
    add_writes(table, modbus);
}

}  // namespace sim
