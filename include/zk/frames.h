/* Frames and payload. */
#ifndef ZK_FRAMES_H
#define ZK_FRAMES_H

#include "zk/connection.h"
#include "zk/frame_record.h"
#include "zk/mailboxes.h"

typedef struct FrameReply {
    int32_t count;
    int32_t result;
    FrameRec frame;
} FrameReply;

/*
 * Ask for the tool frame, and the work frame, in use: name (at most 10 bytes, not ended when it has that many), pose in
 * metres and radians (its quaternion as the record held it), and for a tool the payload with its centre of gravity. The
 * plain names then refresh g_tool_pose, or g_work_pose, from the local model; the frame that the controller answers
 * does not go into the model here: the start-up of the connection and the commands that change frames put it there.
 *
 * Afterwards the mailbox record of the first connection is wiped, whichever asked. Return 0, 5, 7, 9, 10, 11, and
 * 18, 19. Application threads.
 */
ZK_API FrameReply Current_Tool_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Tool_Frame(ArmSocket socket, FrameRec* frame);
ZK_API int Get_Current_Tool_Frame_Block(ArmSocket socket, FrameRec* frame);
ZK_API int Parser_Get_Current_Tool_Frame(const char* text, FrameRec* frame);

ZK_API FrameReply Current_Work_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Work_Frame(ArmSocket socket, FrameRec* frame);
ZK_API int Get_Current_Work_Frame_Block(ArmSocket socket, FrameRec* frame);
ZK_API int Parser_Get_Current_Work_Frame(const char* text, FrameRec* frame);

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Auto_Set_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Manual_Set_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Change_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Delete_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Payload_Cmd[ZK_SLOTS];
ZK_API AckReply Set_None_Payload_Cmd[ZK_SLOTS];
ZK_API AckReply Auto_Set_Work_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Manual_Set_Work_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Change_Work_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Delete_Work_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Update_Work_Frame_Cmd[ZK_SLOTS];
ZK_API AckReply Update_Tool_Frame_Cmd[ZK_SLOTS];

ZK_API int Parser_Auto_Set_Tool_Frame(const char* text);
ZK_API int Parser_Manual_Set_Tool_Frame(const char* text);
ZK_API int Parser_Change_Tool_Frame(const char* text);
ZK_API int Parser_Delete_Tool_Frame(const char* text);
ZK_API int Parser_Auto_Set_Work_Frame(const char* text);
ZK_API int Parser_Manual_Set_Work_Frame(const char* text);
ZK_API int Parser_Change_Work_Frame(const char* text);
ZK_API int Parser_Delete_Work_Frame(const char* text);
ZK_API int Parser_Update_State(const char* text);

#endif
