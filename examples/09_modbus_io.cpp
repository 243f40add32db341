// Devices on a Modbus: open the controller's serial port as a master, switch coils, write a set-point of 32 bits into
// two registers, read everything back, and show the status of a device that does not answer.
//
// The simulated arm has devices 1 and 2. On a real bus, check first what the coils and registers of device 1 do.
#include "check.h"

namespace {

constexpr int kPort = 0, kBaudrate = 115200;
constexpr int kTimeout = 20;  // tenths of a second: also the limit of each read and write below
constexpr int kDevice = 1, kNobody = 99;

bool same(const char* what, int32_t wanted, int32_t found) {
    std::printf("%-20s wrote %d, read %d\n", what, wanted, found);
    if (wanted != found) std::fprintf(stderr, "The device did not keep the %s.\n", what);
    return wanted == found;
}

// Sets a lamp on coil 0, and eight valves on coils 8 to 15 in one request.
bool switch_coils(ArmSocket arm) {
    const uint8_t valves = 0b00000101;
    int32_t lamp_read = 0, valves_read = 0;
    return succeeded("Switching the lamp", Write_Single_Coil(arm, kPort, 0, 1, kDevice, true)) &&
           succeeded("Switching the valves", Write_Coils(arm, kPort, 8, 8, &valves, kDevice, true)) &&
           succeeded("Reading the lamp", Get_Read_Coils(arm, kPort, 0, 1, kDevice, &lamp_read)) &&
           succeeded("Reading the valves", Get_Read_Coils(arm, kPort, 8, 8, kDevice, &valves_read)) &&
           same("lamp", 1, lamp_read) && same("valves", valves, valves_read);
}

// A number of 32 bits takes two registers. Each is two bytes on the wire, the high one first.
bool write_set_point(ArmSocket arm, int32_t wanted) {
    const auto byte = [&](int shift) { return static_cast<uint8_t>(wanted >> shift); };
    const uint8_t bytes[] = {byte(24), byte(16), byte(8), byte(0)};
    int32_t read[ZK_MODBUS_VALUES] = {};
    if (!succeeded("Writing the set-point", Write_Registers(arm, kPort, 0, 2, bytes, kDevice, true)) ||
        !succeeded("Reading the set-point", Read_Multiple_Holding_Registers(arm, kPort, 0, 2, kDevice, read))) {
        return false;
    }
    return same("set-point", wanted, read[0] << 24 | read[1] << 16 | read[2] << 8 | read[3]);
}

bool nobody_answers(ArmSocket arm) {
    int32_t value = 0;
    const int status = Get_Read_Holding_Registers(arm, kPort, 0, kNobody, &value);
    std::printf("device %d: status %d, %s\n", kNobody, status, ZK_Status_Text(status));
    return status == ZK_REFUSED;
}

}  // namespace

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;
    if (!succeeded("Opening the bus", Set_Modbus_Mode(arm, kPort, kBaudrate, kTimeout, true))) return 1;
    const bool well = switch_coils(arm) && write_set_point(arm, 123456789) && nobody_answers(arm);
    return succeeded("Closing the bus", Close_Modbus_Mode(arm, kPort, true)) && well ? 0 : 1;
}
