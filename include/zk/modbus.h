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
 * Make a serial port of the controller a master of Modbus RTU, and end that.
 *
 * baudrate: of the port. timeout: how long the controller waits for a device, in tenths of a second.
 * Set_Modbus_Mode also writes the timeout, in milliseconds, into m_nmodbusrtu_OutTime, the limit of every read and
 * write of all connections: as its first act, whatever comes of the command, also when it gives 18. So a timeout of 0
 * lets all of them end in 7. The two other forms leave the limit alone. The blocking form waits m_nOutTime and two
 * seconds.
 */
ZK_API int Set_Modbus_Mode(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout, bool block);
ZK_API int Set_Modbus_Mode_Block(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout);
ZK_API int Set_Modbus_Mode_NonBlock(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout);

ZK_API int Close_Modbus_Mode(ArmSocket socket, int32_t port, bool block);
ZK_API int Close_Modbus_Mode_Block(ArmSocket socket, int32_t port);
ZK_API int Close_Modbus_Mode_NonBlock(ArmSocket socket, int32_t port);

/* Connect the controller to a Modbus TCP server at a dotted address and port, and disconnect it. The timeout is the
 * controller's, and as many milliseconds are added to m_nOutTime while waiting for the acknowledgement. */
ZK_API int Set_Modbustcp_Mode(ArmSocket socket, const char* ip, int32_t port, int32_t timeout);
ZK_API int Set_Modbustcp_Mode_Block(ArmSocket socket, const char* ip, int32_t port, int32_t timeout);

ZK_API int Close_Modbustcp_Mode(ArmSocket socket);
ZK_API int Close_Modbustcp_Mode_Block(ArmSocket socket);

/* --------------------------------------------------------------------------------------------------------- Reads -- */

/* Read up to eight coils, or discrete inputs, of a device into one number: the first is bit 0. */
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
 * Read several coils, holding registers or input registers. `data` gets as many values as the controller's reply holds:
 * bytes of eight coils each, or of registers the high and the low byte in turn. Give it an array of ZK_MODBUS_VALUES,
 * whatever `num` is: how many a reply holds is not told, a late reply to a longer read may be taken for this one's, and
 * a refused read delivers the values of the one before. The names that begin with Read_ test no pointer: without an
 * array the values are dropped.
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

/* Switch `num` coils. `data` has eight of them in a byte, the first in bit 0; for up to eight coils one byte is read.
 * The frame takes 288 coils at the least. */
ZK_API int Write_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                       int32_t device, bool block);
ZK_API int Write_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                             int32_t device);
ZK_API int Write_Coils_NonBlock(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                int32_t device);

/* Set `num` holding registers. `data` has two bytes of each, the high one first. The frame takes 18 registers at the
 * least. */
ZK_API int Write_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                           int32_t device, bool block);
ZK_API int Write_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                 int32_t device);
ZK_API int Write_Registers_NonBlock(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                    int32_t device);

#endif
