/* Inputs, outputs and Modbus. C++17, header only. */
#ifndef ZK_SIGNALS_HPP
#define ZK_SIGNALS_HPP

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "zk/call.hpp"
#include "zk/io.h"
#include "zk/modbus.h"
#include "zk/span.hpp"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* All inputs, or all outputs, of the controller. */
struct Signals {
    std::array<std::int32_t, 4> digital{};
    std::array<float, 4> volts{};
};

/* arm.io(): of the controller, and of the tool flange. Numbers are those of the controller. */
class Io {
 public:
    explicit Io(ArmSocket arm) : arm_(arm) {}

    [[nodiscard]] Result<void> set_digital(int number, bool on) const {
        return call<Set_DO_State>(arm_, number, on, true);
    }
    [[nodiscard]] Result<void> set_volts(int number, double volts) const {
        return call<Set_AO_State>(arm_, number, volts, true);
    }
    [[nodiscard]] Result<bool> digital_output(int number) const {
        std::uint8_t state = 0;
        return detail::then(call<Get_DO_State>(arm_, number, &state), [&] { return state != 0; });
    }

    [[nodiscard]] Result<Signals> inputs() const { return signals<Get_IO_Input>(); }
    [[nodiscard]] Result<Signals> outputs() const { return signals<Get_IO_Output>(); }

    [[nodiscard]] Result<void> set_tool_digital(int number, bool on) const {
        return call<Set_Tool_DO_State>(arm_, number, on, true);
    }
    /* Makes an input or output of the tool an output. */
    [[nodiscard]] Result<void> set_tool_is_output(int number, bool output) const {
        return call<Set_Tool_IO_Mode>(arm_, number, output, true);
    }
    /* The state of both inputs or outputs of the tool. */
    [[nodiscard]] Result<std::array<bool, 2>> tool_digital() const {
        std::array<float, 2> mode{}, state{};
        return detail::then(call<Get_Tool_IO_State>(arm_, mode, state), [&] {
            return std::array<bool, 2>{state[0] > 0, state[1] > 0};
        });
    }
    /* Sets the type of the tool's supply voltage, as the controller numbers it. */
    [[nodiscard]] Result<void> set_tool_voltage(int type) const { return call<Set_Tool_Voltage>(arm_, type, true); }

 private:
    template <auto kQuery>
    [[nodiscard]] Result<Signals> signals() const {
        Signals all;
        return detail::then(call<kQuery>(arm_, all.digital, all.volts), [&] { return all; });
    }
    ArmSocket arm_;
};

/* arm.modbus(port): a port of the controller, which is the master of a bus. Ports and devices are those of the
 * controller. ZK_REFUSED also means that the device does not answer. */
class Modbus {
 public:
    Modbus(ArmSocket arm, int port) : arm_(arm), port_(port) {}

    /* Opens a serial port. patience: how long the controller waits for a device, in tenths of a second, which also
     * bounds every read and write of the process. */
    [[nodiscard]] Result<void> open(int baud_rate, std::chrono::milliseconds patience = std::chrono::seconds(1)) const {
        return call<Set_Modbus_Mode>(arm_, port_, baud_rate, patience.count() / 100, true);
    }
    [[nodiscard]] Result<void> close() const { return call<Close_Modbus_Mode>(arm_, port_, true); }

    /* Connects the controller to a server at a dotted address; disconnects it. */
    [[nodiscard]] Result<void> connect(const std::string& address, int tcp_port,
                                       std::chrono::milliseconds patience = std::chrono::seconds(2)) const {
        return call<Set_Modbustcp_Mode>(arm_, address, tcp_port, patience);
    }
    [[nodiscard]] Result<void> disconnect() const { return call<Close_Modbustcp_Mode>(arm_); }

    /* Up to eight coils, or discrete inputs, of a device; the first is bit 0. */
    [[nodiscard]] Result<int> coils(int device, int address, int count = 1) const {
        return detail::fetch<Get_Read_Coils, std::int32_t>(arm_, port_, address, count, device);
    }
    [[nodiscard]] Result<int> discrete_inputs(int device, int address, int count = 1) const {
        return detail::fetch<Get_Read_Input_Status, std::int32_t>(arm_, port_, address, count, device);
    }

    /* One register. */
    [[nodiscard]] Result<int> holding_register(int device, int address) const {
        return detail::fetch<Get_Read_Holding_Registers, std::int32_t>(arm_, port_, address, device);
    }
    [[nodiscard]] Result<int> input_register(int device, int address) const {
        return detail::fetch<Get_Read_Input_Registers, std::int32_t>(arm_, port_, address, device);
    }

    /* Several registers, up to 125. */
    [[nodiscard]] Result<std::vector<std::uint16_t>> holding_registers(int device, int address, int count) const {
        return registers<Read_Multiple_Holding_Registers>(device, address, count);
    }
    [[nodiscard]] Result<std::vector<std::uint16_t>> input_registers(int device, int address, int count) const {
        return registers<Read_Multiple_Input_Registers>(device, address, count);
    }

    [[nodiscard]] Result<void> write_coil(int device, int address, bool on) const {
        return call<Write_Single_Coil>(arm_, port_, address, on ? 1 : 0, device, true);
    }
    [[nodiscard]] Result<void> write_register(int device, int address, std::uint16_t value) const {
        return call<Write_Single_Register>(arm_, port_, address, value, device, true);
    }
    /* At most 18 registers fit a request whatever their values. */
    [[nodiscard]] Result<void> write_registers(int device, int address, Span<const std::uint16_t> values) const {
        std::vector<std::uint8_t> bytes;
        for (const std::uint16_t value : values) {
            bytes.push_back(static_cast<std::uint8_t>(value >> 8));
            bytes.push_back(static_cast<std::uint8_t>(value & 0xff));
        }
        return call<Write_Registers>(arm_, port_, address, values.size(), bytes, device, true);
    }

 private:
    template <auto kQuery>
    [[nodiscard]] Result<std::vector<std::uint16_t>> registers(int device, int address, int count) const {
        if (count < 0 || count > ZK_MODBUS_VALUES / 2) return detail::failure_of<kQuery>(ZK_BAD_ARGUMENT);
        std::array<std::int32_t, ZK_MODBUS_VALUES> bytes{};
        return detail::then(call<kQuery>(arm_, port_, address, count, device, bytes), [&] {
            std::vector<std::uint16_t> values;
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
                values.push_back(static_cast<std::uint16_t>((bytes[2 * i] & 0xff) << 8 | (bytes[2 * i + 1] & 0xff)));
            return values;
        });
    }

    ArmSocket arm_;
    int port_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
