// Modbus: the modes of the controller's ports, and the coils and registers of the devices on them.
#include "zk/replies/modbus.h"

#include <algorithm>
#include <cmath>

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"

using namespace zk;

namespace {

// A time limit. A negative one ends in 7 after one poll.
int32_t limit_of(int64_t ms) { return static_cast<int32_t>(std::clamp<int64_t>(ms, 1, INT32_MAX)); }
int32_t bus_limit() { return limit_of(read(m_nmodbusrtu_OutTime)); }

// Values beyond a frame's room may be dropped: the text is too long already and ends the process.
int sendable(int count) { return std::min(count, Request::kUsualFrame); }

Request place(ArmSocket s, const char* command, int32_t port, int32_t address) {
    return Request(s, command).number("port", port).number("address", address);
}

int bus_set(const Request& request, Mailbox mailbox) { return set(request, mailbox, {.limit = bus_limit()}); }

int bus_query(const Request& request, IntReply (&mailbox)[ZK_SLOTS], int32_t* data) {
    return query(request, mailbox, [&](const IntReply& reply) { *data = reply.value; }, {.limit = bus_limit()});
}

int bus_query(const Request& request, ModbusValuesReply (&mailbox)[ZK_SLOTS], int32_t* data) {
    const auto deliver = [&](const ModbusValuesReply& reply) {
        if (data) std::copy_n(reply.value, reply.values, data);
    };
    return query(request, mailbox, deliver, {.limit = bus_limit()});
}

}  // namespace

static Request modbus_mode(ArmSocket s, int32_t port, int32_t baudrate, int32_t timeout) {
    return Request(s, "set_modbus_mode").number("port", port).number("baudrate", baudrate).number("timeout", timeout);
}
AckReply Set_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_Modbus_Mode(ArmSocket s, int32_t port, int32_t baudrate, int32_t timeout, bool block) {
    write(m_nmodbusrtu_OutTime, static_cast<int32_t>(int64_t{timeout} * 100));
    return guarded(block ? Set_Modbus_Mode_Block : Set_Modbus_Mode_NonBlock, s, port, baudrate, timeout);
}
ZK_API int Set_Modbus_Mode_Block(ArmSocket s, int32_t port, int32_t baudrate, int32_t timeout) {
    return set(modbus_mode(s, port, baudrate, timeout), Set_Modbus_Mode_Cmd,
               {.limit = limit_of(int64_t{read(m_nOutTime)} + 2000)});
}
ZK_API int Set_Modbus_Mode_NonBlock(ArmSocket s, int32_t port, int32_t baudrate, int32_t timeout) {
    return post(modbus_mode(s, port, baudrate, timeout));
}

static Request modbus_mode_end(ArmSocket s, int32_t port) {
    return Request(s, "close_modbus_mode").number("port", port);
}
AckReply Stop_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API int Close_Modbus_Mode(ArmSocket s, int32_t port, bool block) {
    return guarded(block ? Close_Modbus_Mode_Block : Close_Modbus_Mode_NonBlock, s, port);
}
ZK_API int Close_Modbus_Mode_Block(ArmSocket s, int32_t port) {
    return set(modbus_mode_end(s, port), Stop_Modbus_Mode_Cmd);
}
ZK_API int Close_Modbus_Mode_NonBlock(ArmSocket s, int32_t port) { return post(modbus_mode_end(s, port)); }

// The acknowledgement comes when the controller has reached the server or given up.
AckReply Set_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_Modbustcp_Mode(ArmSocket s, const char* ip, int32_t port, int32_t timeout) {
    return checked(Set_Modbustcp_Mode_Block, s, ip, port, timeout);
}
ZK_API int Set_Modbustcp_Mode_Block(ArmSocket s, const char* ip, int32_t port, int32_t timeout) {
    return set(Request(s, "set_modbustcp_mode").text("ip", ip).number("port", port).number("timeout", timeout),
               Set_Modbustcp_Mode_Cmd, {.limit = limit_of(int64_t{read(m_nOutTime)} + timeout)});
}
ZK_API int Parser_Set_Modbustcp_Mode(const char* text) { return acknowledgement(text, "set_state"); }

AckReply Close_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API int Close_Modbustcp_Mode(ArmSocket s) { return guarded(Close_Modbustcp_Mode_Block, s); }
ZK_API int Close_Modbustcp_Mode_Block(ArmSocket s) {
    return set({s, "close_modbustcp_mode"}, Close_Modbustcp_Mode_Cmd);
}
ZK_API int Parser_Close_Modbustcp_Mode(const char* text) { return acknowledgement(text, "set_state"); }

static Request read_several(ArmSocket s, const char* command, int32_t port, int32_t address, int32_t num,
                            int32_t device) {
    return place(s, command, port, address).number("num", num).number("device", device);
}
static Request read_one(ArmSocket s, const char* command, int32_t port, int32_t address, int32_t device) {
    return place(s, command, port, address).number("device", device);
}

IntReply Get_Read_Coils_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Coils(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device, int32_t* data) {
    return checked(Get_Read_Coils_Block, s, port, address, num, device, data);
}
ZK_API int Get_Read_Coils_Block(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                int32_t* data) {
    return bus_query(read_several(s, "read_coils", port, address, num, device), Get_Read_Coils_Cmd, data);
}
ZK_API int Parser_Get_read_coils(const char* text, int32_t* data) {
    Reply reply(text);
    reply.require(!reply.find("read_state").is_false(), ZK_REFUSED);
    const Item number = reply.find("data");
    if (reply.require(number.is_number(), ZK_NOT_BOOLEAN)) *data = number.integer();
    return reply.status();
}

IntReply Get_Read_Input_Status_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Input_Status(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                 int32_t* data) {
    return checked(Get_Read_Input_Status_Block, s, port, address, num, device, data);
}
ZK_API int Get_Read_Input_Status_Block(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                       int32_t* data) {
    return bus_query(read_several(s, "read_input_status", port, address, num, device), Get_Read_Input_Status_Cmd, data);
}

IntReply Get_Read_Holding_Registers_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Holding_Registers(ArmSocket s, int32_t port, int32_t address, int32_t device, int32_t* data) {
    return checked(Get_Read_Holding_Registers_Block, s, port, address, device, data);
}
ZK_API int Get_Read_Holding_Registers_Block(ArmSocket s, int32_t port, int32_t address, int32_t device, int32_t* data) {
    return bus_query(read_one(s, "read_holding_registers", port, address, device), Get_Read_Holding_Registers_Cmd,
                     data);
}

IntReply Get_Read_Input_Registers_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Input_Registers(ArmSocket s, int32_t port, int32_t address, int32_t device, int32_t* data) {
    return checked(Get_Read_Input_Registers_Block, s, port, address, device, data);
}
ZK_API int Get_Read_Input_Registers_Block(ArmSocket s, int32_t port, int32_t address, int32_t device, int32_t* data) {
    return bus_query(read_one(s, "read_input_registers", port, address, device), Get_Read_Input_Registers_Cmd, data);
}

ModbusValuesReply Get_Read_Multiple_Coils_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Multiple_Coils(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                   int32_t* data) {
    return checked(Get_Read_Multiple_Coils_Block, s, port, address, num, device, data);
}
ZK_API int Get_Read_Multiple_Coils_Block(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                         int32_t* data) {
    return bus_query(read_several(s, "read_multiple_coils", port, address, num, device), Get_Read_Multiple_Coils_Cmd,
                     data);
}
ZK_API int Parser_Get_Read_Multiple_Coils(const char* text, int32_t* data, int32_t* count) {
    Reply reply(text);
    reply.require(!reply.find("read_state").is_false(), ZK_REFUSED);
    const Item array = reply.find("data");
    if (!reply.require(array.is_array(), ZK_NOT_BOOLEAN)) return reply.status();
    *count = std::min(array.size(), ZK_MODBUS_VALUES);
    for (int i = 0; i < *count; ++i) {
        if (array[i].is_number()) data[i] = array[i].integer();
    }
    return ZK_OK;
}

ModbusValuesReply Read_Multiple_Holding_Registers_Cmd[ZK_SLOTS];
ZK_API int Read_Multiple_Holding_Registers(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                           int32_t* data) {
    return guarded(Read_Multiple_Holding_Registers_Block, s, port, address, num, device, data);
}
ZK_API int Read_Multiple_Holding_Registers_Block(ArmSocket s, int32_t port, int32_t address, int32_t num,
                                                 int32_t device, int32_t* data) {
    return bus_query(read_several(s, "read_multiple_holding_registers", port, address, num, device),
                     Read_Multiple_Holding_Registers_Cmd, data);
}
ZK_API int Parser_Read_Multiple_Holding_Registers(const char* text, int32_t* data, int32_t* count) {
    return Parser_Get_Read_Multiple_Coils(text, data, count);
}

ModbusValuesReply Read_Multiple_intput_Registers_Cmd[ZK_SLOTS];
ZK_API int Read_Multiple_Input_Registers(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                         int32_t* data) {
    return guarded(Read_Multiple_Input_Registers_Block, s, port, address, num, device, data);
}
ZK_API int Read_Multiple_Input_Registers_Block(ArmSocket s, int32_t port, int32_t address, int32_t num, int32_t device,
                                               int32_t* data) {
    return bus_query(read_several(s, "read_multiple_input_registers", port, address, num, device),
                     Read_Multiple_intput_Registers_Cmd, data);
}

static Request write_one(ArmSocket s, const char* command, int32_t port, int32_t address, uint16_t data,
                         int32_t device) {
    return place(s, command, port, address).number("data", data).number("device", device);
}
AckReply Write_Single_Coil_Cmd[ZK_SLOTS];
ZK_API int Write_Single_Coil(ArmSocket s, int32_t port, int32_t address, uint16_t data, int32_t device, bool block) {
    return guarded(block ? Write_Single_Coil_Block : Write_Single_Coil_NonBlock, s, port, address, data, device);
}
ZK_API int Write_Single_Coil_Block(ArmSocket s, int32_t port, int32_t address, uint16_t data, int32_t device) {
    return bus_set(write_one(s, "write_single_coil", port, address, data, device), Write_Single_Coil_Cmd);
}
ZK_API int Write_Single_Coil_NonBlock(ArmSocket s, int32_t port, int32_t address, uint16_t data, int32_t device) {
    return post(write_one(s, "write_single_coil", port, address, data, device));
}
ZK_API int Parser_Write_single_coil(const char* text) { return acknowledgement(text, "write_state"); }

// Eight coils in a byte. One byte is sent as a number, several as an array.
static Request coils(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data, int32_t device) {
    Request request = place(s, "write_coils", port, address).number("num", num);
    if (num > 8) {
        request.numbers("data", data, sendable(static_cast<int>(std::ceil(static_cast<float>(num) * 0.125f))));
    } else {
        request.number("data", data[0]);
    }
    return request.number("device", device);
}
AckReply Write_Coils_Cmd[ZK_SLOTS];
ZK_API int Write_Coils(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data, int32_t device,
                       bool block) {
    return checked(block ? Write_Coils_Block : Write_Coils_NonBlock, s, port, address, num, data, device);
}
ZK_API int Write_Coils_Block(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                             int32_t device) {
    return bus_set(coils(s, port, address, num, data, device), Write_Coils_Cmd);
}
ZK_API int Write_Coils_NonBlock(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                int32_t device) {
    return post(coils(s, port, address, num, data, device));
}
ZK_API int Parser_Write_Multiple_Coils(const char* text) { return acknowledgement(text, "write_state"); }

AckReply Write_Single_Registers_Cmd[ZK_SLOTS];
ZK_API int Write_Single_Register(ArmSocket s, int32_t port, int32_t address, uint16_t data, int32_t device,
                                 bool block) {
    return guarded(block ? Write_Single_Register_Block : Write_Single_Register_NonBlock, s, port, address, data,
                   device);
}
ZK_API int Write_Single_Register_Block(ArmSocket s, int32_t port, int32_t address, uint16_t data, int32_t device) {
    return bus_set(write_one(s, "write_single_register", port, address, data, device), Write_Single_Registers_Cmd);
}
ZK_API int Write_Single_Register_NonBlock(ArmSocket s, int32_t port, int32_t address, uint16_t data, int32_t device) {
    return post(write_one(s, "write_single_register", port, address, data, device));
}

static Request registers(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data, int32_t device) {
    return place(s, "write_registers", port, address)
        .number("num", num)
        .numbers("data", data, 2 * sendable(std::max(num, 0)))
        .number("device", device);
}
AckReply Write_Registers_Cmd[ZK_SLOTS];
ZK_API int Write_Registers(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data, int32_t device,
                           bool block) {
    return checked(block ? Write_Registers_Block : Write_Registers_NonBlock, s, port, address, num, data, device);
}
ZK_API int Write_Registers_Block(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                 int32_t device) {
    return bus_set(registers(s, port, address, num, data, device), Write_Registers_Cmd);
}
ZK_API int Write_Registers_NonBlock(ArmSocket s, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                    int32_t device) {
    return post(registers(s, port, address, num, data, device));
}
