// Inputs, outputs and tool voltage.
#include "zk/io.h"

#include "connection/reply.h"
#include "zk/arm_limits.h"
#include "zk/file_transfer.h"

using namespace zk;

AckReply Set_DO_State_Cmd[ZK_SLOTS];
AckReply Set_AO_State_Cmd[ZK_SLOTS];
AckReply Set_Tool_DO_State_Cmd[ZK_SLOTS];
AckReply Set_Tool_IO_Mode_Cmd[ZK_SLOTS];
AckReply Set_Tool_Voltage_Cmd[ZK_SLOTS];
AckReply Set_IO_Mode_NC_Cmd[ZK_SLOTS];
AckReply Set_IO_State_NC_Cmd[ZK_SLOTS];
AckReply Set_Controller_Voltage_NC_Cmd[ZK_SLOTS];
AckReply Set_IO_Mode_Cmd[ZK_SLOTS];
AckReply Set_Voltage_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_DO_State(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_AO_State(const char* text) { return Parser_Set_Online_Start(text); }
ZK_API int Parser_Set_Tool_DO_State_2(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_Tool_DO_State(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_Tool_Voltage(const char* text) { return Parser_Set_Online_Start(text); }
ZK_API int Parser_Set_Voltage(const char* text) { return Parser_Set_Online_Start(text); }
