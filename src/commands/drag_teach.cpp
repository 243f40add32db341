// Drag teaching.
#include "zk/drag_teach.h"

#include "connection/reply.h"

using namespace zk;

AckReply Start_Drag_Teach_Cmd[ZK_SLOTS];
AckReply Stop_Drag_Teach_Cmd[ZK_SLOTS];
AckReply Run_Drag_Trajectory_Cmd[ZK_SLOTS];
AckReply Pause_Drag_Trajectory_Cmd[ZK_SLOTS];
AckReply Continue_Drag_Trajectory_Cmd[ZK_SLOTS];
AckReply Stop_Drag_Trajectory_Cmd[ZK_SLOTS];
AckReply Start_Multi_Drag_Teach_Cmd[ZK_SLOTS];
AckReply Set_Drag_Teach_Sensitivity_Cmd[ZK_SLOTS];

ZK_API int Parser_Drag_Teach(const char* text) { return acknowledgement(text, "drag_teach"); }
ZK_API int Parser_Run_Drag_Trajectory(const char* text) { return acknowledgement(text, "run_state"); }
ZK_API int Parser_Pause_Drag_Trajectory(const char* text) { return acknowledgement(text, "pause_state"); }
ZK_API int Parser_Continue_Drag_Trajectory(const char* text) { return acknowledgement(text, "continue_state"); }
ZK_API int Parser_Stop_Drag_Trajectory(const char* text) { return acknowledgement(text, "stop_state"); }
