/*
 * Modbus: the controller as the master of a bus, on its serial ports and over TCP.
 *
 * What goes over the bus is the controller's matter, and so are the numbers of its ports and of the devices. A device
 * has coils and discrete inputs of one bit, holding and input registers of 16 bits, each kind with addresses of its
 * own, from 0.
 *
 * The forms: the plain name takes a flag, where there is one, and calls <name>_Block, which waits for the controller's
 * reply, or <name>_NonBlock, which only queues the request and returns 0. Statuses: 0; 1 refused, also when the device
 * does not answer; 5 not an open connection; 7 no reply in time; 8 a reply to a read without "data" of its type; 9, 11
 * a reply that is broken or of the wrong type. The plain names add 18 during a file transfer, and 19 for a null
 * pointer where not told otherwise. Reads and writes have m_nmodbusrtu_OutTime, the modes m_nOutTime and more. A
 * request too long for its frame of 299 bytes, by its data, ends the process. Application threads.
 */
#ifndef ZK_MODBUS_H
#define ZK_MODBUS_H

#include <stdbool.h>

#include "zk/connection.h"
#include "zk/mailboxes.h"

#define ZK_MODBUS_VALUES 256 /* as many as a read of several delivers */

typedef struct ModbusValuesReply {
    int32_t count;
    int32_t result;
    int32_t values;
    int32_t value[ZK_MODBUS_VALUES];
} ModbusValuesReply;

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
ZK_API AckReply Set_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_Modbus_Mode(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout, bool block);
ZK_API int Set_Modbus_Mode_Block(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout);
ZK_API int Set_Modbus_Mode_NonBlock(ArmSocket socket, int32_t port, int32_t baudrate, int32_t timeout);

ZK_API AckReply Stop_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API int Close_Modbus_Mode(ArmSocket socket, int32_t port, bool block);
ZK_API int Close_Modbus_Mode_Block(ArmSocket socket, int32_t port);
ZK_API int Close_Modbus_Mode_NonBlock(ArmSocket socket, int32_t port);

/* Connect the controller to a Modbus TCP server at a dotted address and port, and disconnect it. The timeout is the
 * controller's, and as many milliseconds are added to m_nOutTime while waiting for the acknowledgement. */
ZK_API AckReply Set_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_Modbustcp_Mode(ArmSocket socket, const char* ip, int32_t port, int32_t timeout);
ZK_API int Set_Modbustcp_Mode_Block(ArmSocket socket, const char* ip, int32_t port, int32_t timeout);
ZK_API int Parser_Set_Modbustcp_Mode(const char* text);

ZK_API AckReply Close_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API int Close_Modbustcp_Mode(ArmSocket socket);
ZK_API int Close_Modbustcp_Mode_Block(ArmSocket socket);
ZK_API int Parser_Close_Modbustcp_Mode(const char* text);

/* --------------------------------------------------------------------------------------------------------- Reads -- */

/* Read up to eight coils, or discrete inputs, of a device into one number: the first is bit 0. */
ZK_API IntReply Get_Read_Coils_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device, int32_t* data);
ZK_API int Get_Read_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                int32_t* data);

ZK_API IntReply Get_Read_Input_Status_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Input_Status(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                 int32_t* data);
ZK_API int Get_Read_Input_Status_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                       int32_t* data);

/* Read one holding register, or input register, of a device. */
ZK_API IntReply Get_Read_Holding_Registers_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Holding_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t device, int32_t* data);
ZK_API int Get_Read_Holding_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t device,
                                            int32_t* data);

ZK_API IntReply Get_Read_Input_Registers_Cmd[ZK_SLOTS];
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
ZK_API ModbusValuesReply Get_Read_Multiple_Coils_Cmd[ZK_SLOTS];
ZK_API int Get_Read_Multiple_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                   int32_t* data);
ZK_API int Get_Read_Multiple_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                         int32_t* data);

ZK_API ModbusValuesReply Read_Multiple_Holding_Registers_Cmd[ZK_SLOTS];
ZK_API int Read_Multiple_Holding_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                           int32_t* data);
ZK_API int Read_Multiple_Holding_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num,
                                                 int32_t device, int32_t* data);

ZK_API ModbusValuesReply Read_Multiple_intput_Registers_Cmd[ZK_SLOTS];
ZK_API int Read_Multiple_Input_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, int32_t device,
                                         int32_t* data);
ZK_API int Read_Multiple_Input_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num,
                                               int32_t device, int32_t* data);

/* The parsers of these replies: 0, 1 when "read_state" is false, 8 when "data" is missing or of the wrong type, 9 when
 * it is no JSON. Of an array at most ZK_MODBUS_VALUES elements are taken; one that is no number leaves its place as it
 * was. Any thread. */
ZK_API int Parser_Get_read_coils(const char* text, int32_t* data);
ZK_API int Parser_Get_Read_Multiple_Coils(const char* text, int32_t* data, int32_t* count);
ZK_API int Parser_Read_Multiple_Holding_Registers(const char* text, int32_t* data, int32_t* count);

/* -------------------------------------------------------------------------------------------------------- Writes -- */

/* Switch one coil, set one holding register. */
ZK_API AckReply Write_Single_Coil_Cmd[ZK_SLOTS];
ZK_API int Write_Single_Coil(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device,
                             bool block);
ZK_API int Write_Single_Coil_Block(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device);
ZK_API int Write_Single_Coil_NonBlock(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device);

ZK_API AckReply Write_Single_Registers_Cmd[ZK_SLOTS];
ZK_API int Write_Single_Register(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device,
                                 bool block);
ZK_API int Write_Single_Register_Block(ArmSocket socket, int32_t port, int32_t address, uint16_t data, int32_t device);
ZK_API int Write_Single_Register_NonBlock(ArmSocket socket, int32_t port, int32_t address, uint16_t data,
                                          int32_t device);

/* Switch `num` coils. `data` has eight of them in a byte, the first in bit 0; for up to eight coils one byte is read.
 * The frame takes 288 coils at the least. */
ZK_API AckReply Write_Coils_Cmd[ZK_SLOTS];
ZK_API int Write_Coils(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                       int32_t device, bool block);
ZK_API int Write_Coils_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                             int32_t device);
ZK_API int Write_Coils_NonBlock(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                int32_t device);

/* Set `num` holding registers. `data` has two bytes of each, the high one first. The frame takes 18 registers at the
 * least. */
ZK_API AckReply Write_Registers_Cmd[ZK_SLOTS];
ZK_API int Write_Registers(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                           int32_t device, bool block);
ZK_API int Write_Registers_Block(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                 int32_t device);
ZK_API int Write_Registers_NonBlock(ArmSocket socket, int32_t port, int32_t address, int32_t num, const uint8_t* data,
                                    int32_t device);

/* Acknowledgements under "write_state": 0, 1 for false, 9, 11 for another type. Any thread. */
ZK_API int Parser_Write_single_coil(const char* text);
ZK_API int Parser_Write_Multiple_Coils(const char* text);

#endif
