/*
 * Modbus: the controller as the master of a bus, on its serial ports and over TCP. zk/status.h describes the forms and
 * their statuses.
 *
 * The controller defines the numbers of its ports and of the devices. A device has coils and discrete inputs of one
 * bit, holding and input registers of 16 bits; each kind has addresses of its own, from 0.
 *
 * Status 1 also means that the device does not answer; 8, that the reply to a read has no "data" of its type. Reads and
 * writes wait m_nmodbusrtu_OutTime, the modes m_nOutTime and more. Data that makes the request longer than its frame of
 * 299 bytes ends the process.
 */
#ifndef ZK_MODBUS_H
#define ZK_MODBUS_H

#include <stdbool.h>

#include "zk/connection.h"

#define ZK_MODBUS_VALUES 256 /* as many as a read of several delivers */

/* --------------------------------------------------------------------------------------------------------- Modes -- */

/*
 * Make a serial port of the controller a Modbus RTU master, and end that.
 *
 * baudrate: of the port. timeout: how long the controller waits for a device, in tenths of a second. Before anything
 * else, even when it returns 18, Set_Modbus_Mode writes the timeout, in milliseconds, into m_nmodbusrtu_OutTime, the
 * limit of every read and write on all connections. After a timeout of 0 all of them end in 7. The two other forms
 * leave that limit alone. The blocking form waits m_nOutTime and two seconds.
 */
ZK_API int Set_Modbus_Mode(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout, bool block);
ZK_API int Set_Modbus_Mode_Block(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout);
ZK_API int Set_Modbus_Mode_NonBlock(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout);

ZK_API int Close_Modbus_Mode(ArmSocket socket, int32_t port, bool block);
ZK_API int Close_Modbus_Mode_Block(ArmSocket socket, int32_t port);
ZK_API int Close_Modbus_Mode_NonBlock(ArmSocket socket, int32_t port);

/* Connect the controller to a Modbus TCP server at a dotted address and port; disconnect it. The call waits m_nOutTime
 * and `timeout` milliseconds for the acknowledgement. */
ZK_API int Set_Modbustcp_Mode(ArmSocket socket, const char* ip, int32_t port, int32_t timeout);
ZK_API int Set_Modbustcp_Mode_Block(ArmSocket socket, const char* ip, int32_t port, int32_t timeout);

ZK_API int Close_Modbustcp_Mode(ArmSocket socket);
ZK_API int Close_Modbustcp_Mode_Block(ArmSocket socket);

/* --------------------------------------------------------------------------------------------------------- Reads -- */

/* Read up to eight coils or discrete inputs of a device into one number: the first is bit 0. */
ZK_API int Get_Read_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device, int32_t* data);
ZK_API int Get_Read_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                int32_t* data);

ZK_API int Get_Read_Input_Status(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                 int32_t* data);
ZK_API int Get_Read_Input_Status_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                       int32_t* data);

/* Read one holding register, or input register, of a device. */
ZK_API int Get_Read_Holding_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t device, int32_t* data);
ZK_API int Get_Read_Holding_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t device,
                                            int32_t* data);

ZK_API int Get_Read_Input_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t device, int32_t* data);
ZK_API int Get_Read_Input_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t device,
                                          int32_t* data);

/*
 * Read several coils, holding registers or input registers. `data` gets as many values as the reply holds: bytes of
 * eight coils each, or for each register the high and the low byte. Always pass an array of ZK_MODBUS_VALUES: the
 * number of values is not reported, a late reply to a longer read may be taken for this one, and a refused read
 * delivers the values of the read before. The names that begin with Read_ do not test the pointer: with null the values
 * are dropped.
 */
ZK_API int Get_Read_Multiple_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                   int32_t* data);
ZK_API int Get_Read_Multiple_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                         int32_t* data);

ZK_API int Read_Multiple_Holding_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                           int32_t* data);
ZK_API int Read_Multiple_Holding_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num,
                                                 int32_t device, int32_t* data);

ZK_API int Read_Multiple_Input_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                         int32_t* data);
ZK_API int Read_Multiple_Input_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num,
                                               int32_t device, int32_t* data);

/* -------------------------------------------------------------------------------------------------------- Writes -- */

/* Switch one coil, set one holding register. */
ZK_API int Write_Single_Coil(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device,
                             bool block);
ZK_API int Write_Single_Coil_Block(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device);
ZK_API int Write_Single_Coil_NonBlock(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device);

ZK_API int Write_Single_Register(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device,
                                 bool block);
ZK_API int Write_Single_Register_Block(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device);
ZK_API int Write_Single_Register_NonBlock(ArmSocket socket, int32_t port, int32_t address, uint16_t data,
                                          int32_t device);

/* Writes `num` coils. A byte of `data` holds eight of them, the first in bit 0; for up to eight coils one byte is read.
 * A request has room for at least 288 coils. */
ZK_API int Write_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                       int32_t device, bool block);
ZK_API int Write_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                             int32_t device);
ZK_API int Write_Coils_NonBlock(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                int32_t device);

/* Writes `num` holding registers. `data` has two bytes for each, the high one first. A request has room for at least 18
 * registers. */
ZK_API int Write_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                           int32_t device, bool block);
ZK_API int Write_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                 int32_t device);
ZK_API int Write_Registers_NonBlock(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                    int32_t device);

#endif
