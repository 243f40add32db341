/* Replies: drag teaching. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_DRAG_TEACH_H
#define ZK_REPLIES_DRAG_TEACH_H

#include "zk/drag_teach.h"
#include "zk/mailboxes.h"

typedef struct DragOriginReply {
    int32_t count;
    int32_t result;
    int32_t device;
} DragOriginReply;

ZK_API AckReply Start_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API int Parser_Drag_Teach(const char* text);
ZK_API AckReply Start_Multi_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Drag_Teach_Sensitivity_Cmd[ZK_SLOTS];
ZK_API IntReply Get_Drag_Teach_Sensitivity_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Drag_Teach_Sensitivity(const char* text, int32_t* grade);
ZK_API AckReply Run_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Run_Drag_Trajectory(const char* text);
ZK_API AckReply Pause_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Pause_Drag_Trajectory(const char* text);
ZK_API AckReply Continue_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Continue_Drag_Trajectory(const char* text);
ZK_API AckReply Stop_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Stop_Drag_Trajectory(const char* text);
ZK_API DragOriginReply Drag_Trajectory_Origin_Cmd[ZK_SLOTS];
ZK_API int Parser_Drag_Trajectory_Origin(const char* text, int32_t* device);

#endif
