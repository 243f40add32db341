/* Drag teaching. */
#ifndef ZK_DRAG_TEACH_H
#define ZK_DRAG_TEACH_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Start_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API AckReply Run_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Pause_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Continue_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Start_Multi_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Drag_Teach_Sensitivity_Cmd[ZK_SLOTS];

ZK_API int Parser_Drag_Teach(const char* text);
ZK_API int Parser_Run_Drag_Trajectory(const char* text);
ZK_API int Parser_Pause_Drag_Trajectory(const char* text);
ZK_API int Parser_Continue_Drag_Trajectory(const char* text);
ZK_API int Parser_Stop_Drag_Trajectory(const char* text);

#endif
