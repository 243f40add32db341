// What surrounds the arm, changed from outside: inputs, Modbus registers, the wall, the object for the gripper.

#include "commands/commands.h"
#include "devices/devices.h"
#include "devices/modbus.h"
#include "wire/command_table.h"
#include "world/ports.h"
#include "world/wall.h"

namespace sim {
namespace {

constexpr double kFarthest = 10;  // metres

template <class Port, size_t size>
bool drive(const Request& request, std::array<Port, size>& ports, int highest) {
    Port& port = ports[static_cast<size_t>(request.integer("IO_Num", 1, static_cast<int>(size)) - 1)];
    if (request.has("value"))
        port.driven = request.integer("value", 0, highest);
    else
        port.driven.reset();
    return true;
}

// {"command": "zk_sim_input", "kind": "DI", "IO_Num": 3, "value": 1}; without a value it is left to its output again.
bool set_input(Ports& ports, const Call& call) {
    const std::string kind = call.request.text("kind");
    if (kind == "DI") return drive(call.request, ports.digital, 1);
    if (kind == "AI") return drive(call.request, ports.analogue, AnaloguePort::kHighest);
    if (kind == "tool_DI") return drive(call.request, ports.tool, 1);
    throw BadRequest("\"kind\" is none of DI, AI, tool_DI");
}

// {"command": "zk_sim_modbus", "port": 0, "device": 1, "kind": "input_register", "address": 7, "values": [1, 2]}
bool set_registers(ModbusMaster& modbus, const Call& call) {
    const Request& request = call.request;
    const int port = request.integer("port", 0, ModbusMaster::ZK_K_PORTS - 1);
    const int number = request.integer("device", 1, ModbusPort::kDevices);
    const std::vector<int> values = request.integers("values");
    const int first = request.integer("address", 0, ModbusDevice::kAddresses - static_cast<int>(values.size()));
    ModbusDevice& device = modbus.port(port).devices[static_cast<size_t>(number - 1)];
    const std::string kind = request.text("kind");
    void (ModbusDevice::*write)(int, int) = kind == "coil"               ? &ModbusDevice::write_coil
                                            : kind == "discrete_input"   ? &ModbusDevice::set_discrete_input
                                            : kind == "holding_register" ? &ModbusDevice::write_register
                                            : kind == "input_register"   ? &ModbusDevice::set_input_register
                                                                         : nullptr;
    if (!write) throw BadRequest("\"kind\" is none of coil, discrete_input, holding_register, input_register");
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i] < 0 || values[i] > 65535) throw BadRequest("\"values\" are no words");
    }
    if (values.empty()) throw BadRequest("\"values\" holds nothing");
    for (size_t i = 0; i < values.size(); ++i) (device.*write)(first + static_cast<int>(i), values[i]);
    return true;
}

// {"command": "zk_sim_wall", "place": [x, y, z]} moves the wall; "normal" and "stiffness" may be changed as well.
bool set_wall(Wall& wall, const Call& call) {
    const auto vector = [&](const char* key, const KDL::Vector& now) {
        if (!call.request.has(key)) return now;
        const std::vector<double> v = call.request.numbers(key, 3);
        return KDL::Vector(v[0], v[1], v[2]);
    };
    Wall moved{vector("place", wall.place), vector("normal", wall.normal), wall.stiffness};
    if (call.request.has("stiffness")) moved.stiffness = call.request.number("stiffness");
    if (!(moved.place.Norm() <= kFarthest)) throw BadRequest("\"place\" is within 10 m");
    if (moved.normal.Normalize() == 0) throw BadRequest("\"normal\" has no direction");
    if (!(moved.stiffness >= 0 && moved.stiffness <= Wall::kStiffest))
        throw BadRequest("\"stiffness\" is from 0 to 50000 N/m");
    wall = moved;
    return true;
}

// {"command": "zk_sim_object", "width": 300, "mass": 0.5}: an object between the fingers, 0 for none.
bool set_object(Gripper& gripper, const Call& call) {
    const Request& request = call.request;
    const Object object{request.integer("width", 0, Gripper::kOpen - 1),
                        request.has("mass") ? request.number("mass") : 0};
    if (!(object.mass >= 0 && object.mass <= Object::kHeaviest)) throw BadRequest("\"mass\" is from 0 to 20 kg");
    if (object.width == 0 && object.mass > 0) throw BadRequest("\"mass\" is of an object, which has a width");
    if (object.width > gripper.opening())
        throw Refusal("\"width\" is above the opening of the gripper, " + std::to_string(gripper.opening()));
    if (object.width > 0 && gripper.slips) throw Refusal("the gripper loses each object until grip_loss ends");
    object.width > 0 ? gripper.put_between(object) : gripper.take_object();
    return true;
}

}  // namespace

void add_world_commands(CommandTable& table, Ports& ports, ModbusMaster& modbus, Wall& wall, Gripper& gripper) {
    table.set("zk_sim_input", "done", with(set_input, ports)).keys = {"kind", "IO_Num", "value"};
    table.set("zk_sim_modbus", "done", with(set_registers, modbus)).keys = {"port", "device", "kind", "address",
                                                                            "values"};
    table.set("zk_sim_wall", "done", with(set_wall, wall)).keys = {"place", "normal", "stiffness"};
    table.set("zk_sim_object", "done", with(set_object, gripper)).keys = {"width", "mass"};
}

}  // namespace sim
