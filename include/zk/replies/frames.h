/* Replies: frames and payload. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_FRAMES_H
#define ZK_REPLIES_FRAMES_H

#include "zk/frames.h"
#include "zk/mailboxes.h"

typedef struct FrameReply {
    int32_t count;
    int32_t result;
    FrameRec frame;
} FrameReply;

typedef struct FrameNamesReply {
    int32_t count;
    int32_t result;
    int32_t names;
    FrameName name[ZK_FRAME_NAMES];
} FrameNamesReply;

typedef struct GivenWorkFrameReply {
    int32_t count;
    int32_t result;
    char frame_name[12];
    Pose pose;
} GivenWorkFrameReply;

ZK_API AckReply Auto_Set_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Auto_Set_Tool_Frame(const char* text);
ZK_API AckReply Manual_Set_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Manual_Set_Tool_Frame(const char* text);
ZK_API AckReply Update_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Update_State(const char* text);
ZK_API AckReply Change_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Change_Tool_Frame(const char* text);
ZK_API AckReply Delete_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Delete_Tool_Frame(const char* text);
ZK_API AckReply Set_Payload_Cmd[ZK_SLOTS];
ZK_API AckReply Set_None_Payload_Cmd[ZK_SLOTS];
ZK_API FrameReply Current_Tool_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Current_Tool_Frame(const char* text, FrameRec* frame);
ZK_API FrameReply Given_Tool_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Given_Tool_Frame(const char* text, FrameRec* frame);
ZK_API FrameNamesReply Get_All_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_All_Tool_Frame(const char* text, FrameName* names, int32_t* count);
ZK_API AckReply Auto_Set_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Auto_Set_Work_Frame(const char* text);
ZK_API AckReply Manual_Set_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Manual_Set_Work_Frame(const char* text);
ZK_API AckReply Update_Work_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Change_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Change_Work_Frame(const char* text);
ZK_API AckReply Delete_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Delete_Work_Frame(const char* text);
ZK_API FrameReply Current_Work_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Current_Work_Frame(const char* text, FrameRec* frame);
ZK_API GivenWorkFrameReply Given_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Given_Work_Frame(const char* text, char* name, Pose* pose);
ZK_API FrameNamesReply Get_All_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_All_Work_Frame(const char* text, FrameName* names, int32_t* count);

#endif
