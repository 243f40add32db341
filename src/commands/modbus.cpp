// Modbus.
#include "zk/modbus.h"

#include "connection/reply.h"
#include "zk/arm_limits.h"

using namespace zk;

AckReply Set_Modbus_Mode_Cmd[ZK_SLOTS];
AckReply Stop_Modbus_Mode_Cmd[ZK_SLOTS];
AckReply Write_Single_Coil_Cmd[ZK_SLOTS];
AckReply Write_Coils_Cmd[ZK_SLOTS];
AckReply Write_Single_Registers_Cmd[ZK_SLOTS];
AckReply Write_Registers_Cmd[ZK_SLOTS];
AckReply Set_Modbustcp_Mode_Cmd[ZK_SLOTS];
AckReply Close_Modbustcp_Mode_Cmd[ZK_SLOTS];

ZK_API int Parser_Write_single_coil(const char* text) { return acknowledgement(text, "write_state"); }
ZK_API int Parser_Write_Multiple_Coils(const char* text) { return Parser_Write_single_coil(text); }
ZK_API int Parser_Set_Modbustcp_Mode(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Close_Modbustcp_Mode(const char* text) { return Parser_Set_DH_Data(text); }
