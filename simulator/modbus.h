#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <vector>

namespace sim {

// What one device on a bus holds: coils and holding registers as they were written, 0 before, and inputs that nobody
// can write: a discrete input is on at odd addresses, an input register holds its address.
class ModbusDevice {
 public:
    static constexpr int kAddresses = 65536;  // of each kind

    bool coil(int address) const { return held(coils_, address) != 0; }
    bool discrete_input(int address) const { return address % 2 != 0; }
    int holding_register(int address) const { return held(registers_, address); }
    int input_register(int address) const { return address; }

    void write_coil(int address, bool on) { coils_[address] = on ? 1 : 0; }
    void write_register(int address, int value) { registers_[address] = value; }

 private:
    using Bank = std::map<int, int>;
    static int held(const Bank& bank, int address) {
        const auto found = bank.find(address);
        return found == bank.end() ? 0 : found->second;
    }

    Bank coils_;
    Bank registers_;
};

// One port of the controller: it is a master on a bus or not, and has devices of its own.
struct ModbusPort {
    static constexpr int kDevices = 2;  // which answer, with the addresses from 1

    bool open = false;
    int baudrate = 0;
    int timeout = 0;  // as sent: tenths of a second on a serial port, milliseconds on TCP
    std::array<ModbusDevice, kDevices> devices;
};

// The ports, and who answers there.
class ModbusMaster {
 public:
    enum { ZK_K_CONTROLLER, ZK_K_TOOL, ZK_K_TCP, ZK_K_PORTS };

    ModbusPort& port(int number) { return ports_.at(static_cast<size_t>(number)); }

    // The device, or null when the port does not exist or is closed, or nobody has the address there.
    ModbusDevice* find(int port, int device);

 private:
    std::array<ModbusPort, ZK_K_PORTS> ports_;
};

}  // namespace sim
