/* Replies: Modbus. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_MODBUS_H
#define ZK_REPLIES_MODBUS_H

#include "zk/mailboxes.h"
#include "zk/modbus.h"

typedef struct ModbusValuesReply {
    int32_t count;
    int32_t result;
    int32_t values;
    int32_t value[ZK_MODBUS_VALUES];
} ModbusValuesReply;

ZK_API AckReply Set_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Modbustcp_Mode(const char* text);
ZK_API AckReply Close_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API int Parser_Close_Modbustcp_Mode(const char* text);
ZK_API IntReply Get_Read_Coils_Cmd[ZK_SLOTS];
ZK_API IntReply Get_Read_Input_Status_Cmd[ZK_SLOTS];
ZK_API IntReply Get_Read_Holding_Registers_Cmd[ZK_SLOTS];
ZK_API IntReply Get_Read_Input_Registers_Cmd[ZK_SLOTS];
ZK_API ModbusValuesReply Get_Read_Multiple_Coils_Cmd[ZK_SLOTS];
ZK_API ModbusValuesReply Read_Multiple_Holding_Registers_Cmd[ZK_SLOTS];
ZK_API ModbusValuesReply Read_Multiple_intput_Registers_Cmd[ZK_SLOTS];

/* Status 1 when "read_state" is false, 8 when "data" is missing or of the wrong type. At most ZK_MODBUS_VALUES elements
 * of an array are read; an element that is no number leaves its output as it was. */
ZK_API int Parser_Get_read_coils(const char* text, int32_t* data);
ZK_API int Parser_Get_Read_Multiple_Coils(const char* text, int32_t* data, int32_t* count);
ZK_API int Parser_Read_Multiple_Holding_Registers(const char* text, int32_t* data, int32_t* count);

ZK_API AckReply Write_Single_Coil_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Single_Registers_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Coils_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Registers_Cmd[ZK_SLOTS];

/* Acknowledgements under "write_state". */
ZK_API int Parser_Write_single_coil(const char* text);
ZK_API int Parser_Write_Multiple_Coils(const char* text);

#endif
