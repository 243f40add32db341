// Fences, walls, envelopes and self-collision.
#include "zk/safety_geometry.h"

#include "connection/reply.h"
#include "zk/arm_limits.h"

using namespace zk;

AckReply Set_Tool_Envelope_Cmd[ZK_SLOTS];
AckReply Set_Electronic_Fence_Enable_Cmd[ZK_SLOTS];
AckReply Set_Electronic_Fence_Config_Cmd[ZK_SLOTS];
AckReply Add_Electronic_Fence_Config_Cmd[ZK_SLOTS];
AckReply Update_Electronic_Fence_Config_Cmd[ZK_SLOTS];
AckReply Delete_Electronic_Fence_Config_Cmd[ZK_SLOTS];
AckReply Set_Self_Collision_Enable_Cmd[ZK_SLOTS];
AckReply Set_Virtual_Wall_Config_Cmd[ZK_SLOTS];
AckReply Set_Virtual_Wall_Enable_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Electronic_Fence_Enable(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_Electronic_Fence_Config(const char* text) { return Parser_Set_Config(text); }
ZK_API int Parser_Add_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "add_config"); }
ZK_API int Parser_Update_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "update_config"); }
ZK_API int Parser_delete_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "delete_config"); }
ZK_API int Parser_Set_Self_Collision_Enable(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_Config(const char* text) { return acknowledgement(text, "set_config"); }
