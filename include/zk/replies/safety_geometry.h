/* Replies: fences, virtual walls and tool envelopes. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_SAFETY_GEOMETRY_H
#define ZK_REPLIES_SAFETY_GEOMETRY_H

#include "zk/mailboxes.h"
#include "zk/safety_geometry.h"

typedef struct FenceEnableReply {
    int32_t count;
    int32_t result;
    int32_t enable;
    int32_t in_out_side;
    int32_t effective_region;
} FenceEnableReply;

typedef struct FenceConfigReply {
    int32_t count;
    int32_t result;
    FenceConfig fence;
} FenceConfigReply;

typedef struct FenceNamesReply {
    int32_t count;
    int32_t result;
    int32_t names;
    FenceName name[ZK_FENCES];
} FenceNamesReply;

typedef struct FenceListReply {
    int32_t count;
    int32_t result;
    int32_t fences;
    FenceConfig fence[ZK_FENCES];
} FenceListReply;

typedef struct ToolEnvelopeReply {
    int32_t count;
    int32_t result;
    ToolEnvelope envelope;
} ToolEnvelopeReply;

ZK_API AckReply Set_Electronic_Fence_Enable_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Electronic_Fence_Enable(const char* text);
ZK_API FenceEnableReply Get_Electronic_Fence_Enable_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Electronic_Fence_Enable(const char* text, int32_t* enable, int32_t* in_out_side,
                                              int32_t* effective_region);
ZK_API AckReply Set_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Electronic_Fence_Config(const char* text);
ZK_API FenceConfigReply Get_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Electronic_Fence_Config(const char* text, FenceConfig* fence);
ZK_API AckReply Add_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Add_Electronic_Fence_Config(const char* text);
ZK_API AckReply Update_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Update_Electronic_Fence_Config(const char* text);
ZK_API AckReply Delete_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_delete_Electronic_Fence_Config(const char* text);
ZK_API FenceConfigReply Given_Electronic_Fence_Config_Cmd[ZK_SLOTS];

/* 1 when "given_state" is false, 11 for any other value of it. */
ZK_API int Parser_Given_Electronic_Fence_Config(const char* text, FenceConfig* fence);
ZK_API FenceNamesReply Get_Electronic_Fence_List_Name_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Electronic_Fence_List_Names(const char* text, FenceName* names, int32_t* count);
ZK_API FenceListReply Get_Electronic_Fence_List_Info_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Electronic_Fence_List_Info(const char* text, FenceConfig* fences, int32_t* count);
ZK_API AckReply Set_Virtual_Wall_Enable_Cmd[ZK_SLOTS];
ZK_API FenceEnableReply Get_Virtual_Wall_Enable_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Virtual_Wall_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Config(const char* text);
ZK_API FenceConfigReply Get_Virtual_Wall_Config_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Self_Collision_Enable_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Self_Collision_Enable(const char* text);
ZK_API IntReply Get_Self_Collision_Enable_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Self_Collision_Enable(const char* text, int32_t* enable);
ZK_API AckReply Set_Tool_Envelope_Cmd[ZK_SLOTS];
ZK_API ToolEnvelopeReply Get_Tool_Envelope_Cmd[ZK_SLOTS];

/* 1 when "get_state" is false, 11 for a sphere that lacks a key. */
ZK_API int Parser_Get_Tool_Envelope(const char* text, ToolEnvelope* envelope);

#endif
