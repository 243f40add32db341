/* Modbus. */
#ifndef ZK_MODBUS_H
#define ZK_MODBUS_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Modbus_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Single_Coil_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Coils_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Single_Registers_Cmd[ZK_SLOTS];
ZK_API AckReply Write_Registers_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Modbustcp_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Close_Modbustcp_Mode_Cmd[ZK_SLOTS];

ZK_API int Parser_Write_single_coil(const char* text);
ZK_API int Parser_Write_Multiple_Coils(const char* text);
ZK_API int Parser_Set_Modbustcp_Mode(const char* text);
ZK_API int Parser_Close_Modbustcp_Mode(const char* text);

#endif
