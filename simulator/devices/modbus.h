#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <vector>

namespace sim {

// The registers of one device on a bus. Coils and holding registers are 0 until written. Until it is set from outside,
// a discrete input is on at odd addresses, and an input register holds its address.
class ModbusDevice {
 public:
    static constexpr int kAddresses = 65536;  // of each kind

    bool coil(int address) const { return held(coils_, address, 0) != 0; }
    bool discrete_input(int address) const { return held(discrete_inputs_, address, address % 2) != 0; }
    int holding_register(int address) const { return held(registers_, address, 0); }
    int input_register(int address) const { return held(input_registers_, address, address); }

    void write_coil(int address, int on) { coils_[address] = on ? 1 : 0; }
    void write_register(int address, int value) { registers_[address] = value; }
    void set_discrete_input(int address, int on) { discrete_inputs_[address] = on ? 1 : 0; }
    void set_input_register(int address, int value) { input_registers_[address] = value; }

 private:
    using Bank = std::map<int, int>;
    static int held(const Bank& bank, int address, int otherwise) {
        const auto found = bank.find(address);
        return found == bank.end() ? otherwise : found->second;
    }

    Bank coils_;
    Bank registers_;
    Bank discrete_inputs_;
    Bank input_registers_;
};

// One port of the controller, with its devices. When open, it is the master of its bus.
struct ModbusPort {
    static constexpr int kDevices = 2;  // at the addresses from 1

    bool open = false;
    int baudrate = 0;
    int timeout = 0;  // as sent: tenths of a second on a serial port, milliseconds on TCP
    std::array<ModbusDevice, kDevices> devices;
};

// The ports with their devices.
class ModbusMaster {
 public:
    enum { ZK_K_CONTROLLER, ZK_K_TOOL, ZK_K_TCP, ZK_K_PORTS };

    ModbusPort& port(int number) { return ports_.at(static_cast<size_t>(number)); }

    // The device, or null if the port does not exist or is closed, or no device has the address.
    ModbusDevice* find(int port, int device);

 private:
    std::array<ModbusPort, ZK_K_PORTS> ports_;
};

}  // namespace sim
