/* Fences, walls, envelopes and self-collision. */
#ifndef ZK_SAFETY_GEOMETRY_H
#define ZK_SAFETY_GEOMETRY_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Tool_Envelope_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Electronic_Fence_Enable_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API AckReply Add_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API AckReply Update_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API AckReply Delete_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Self_Collision_Enable_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Virtual_Wall_Config_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Virtual_Wall_Enable_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Electronic_Fence_Enable(const char* text);
ZK_API int Parser_Set_Electronic_Fence_Config(const char* text);
ZK_API int Parser_Add_Electronic_Fence_Config(const char* text);
ZK_API int Parser_Update_Electronic_Fence_Config(const char* text);
ZK_API int Parser_delete_Electronic_Fence_Config(const char* text);
ZK_API int Parser_Set_Self_Collision_Enable(const char* text);
ZK_API int Parser_Set_Config(const char* text);

#endif
