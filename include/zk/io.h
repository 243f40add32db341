/* Inputs, outputs and tool voltage. */
#ifndef ZK_IO_H
#define ZK_IO_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_DO_State_Cmd[ZK_SLOTS];
ZK_API AckReply Set_AO_State_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Tool_DO_State_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Tool_IO_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Tool_Voltage_Cmd[ZK_SLOTS];
ZK_API AckReply Set_IO_Mode_NC_Cmd[ZK_SLOTS];
ZK_API AckReply Set_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Controller_Voltage_NC_Cmd[ZK_SLOTS];
ZK_API AckReply Set_IO_Mode_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Voltage_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_DO_State(const char* text);
ZK_API int Parser_Set_AO_State(const char* text);
ZK_API int Parser_Set_Tool_DO_State_2(const char* text);
ZK_API int Parser_Set_Tool_DO_State(const char* text);
ZK_API int Parser_Set_Tool_Voltage(const char* text);
ZK_API int Parser_Set_Voltage(const char* text);

#endif
