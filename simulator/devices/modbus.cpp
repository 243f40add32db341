#include "devices/modbus.h"

namespace sim {

ModbusDevice* ModbusMaster::find(int port, int device) {
    if (port < 0 || port >= ZK_K_PORTS || device < 1 || device > ModbusPort::kDevices) return nullptr;
    ModbusPort& line = this->port(port);
    return line.open ? &line.devices[static_cast<size_t>(device - 1)] : nullptr;
}

}  // namespace sim
