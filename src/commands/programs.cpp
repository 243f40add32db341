// Programs and global waypoints.
#include "zk/programs.h"

#include "connection/reply.h"

using namespace zk;

AckReply Set_Popup_Cmd[ZK_SLOTS];
AckReply Set_Program_ID_Start_Cmd[ZK_SLOTS];
AckReply Delete_Program_Trajectory_Cmd[ZK_SLOTS];
AckReply Update_Program_Trajectory_Cmd[ZK_SLOTS];
AckReply Set_Default_Run_Program_Cmd[ZK_SLOTS];
AckReply Add_Global_Waypoint_Cmd[ZK_SLOTS];
AckReply Update_Global_Waypoint_Cmd[ZK_SLOTS];
AckReply Delete_Global_Waypoint_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Popup(const char* text) { return acknowledgement(text, "popup_result"); }
ZK_API int Parser_Set_Program_ID_Start(const char* text) { return acknowledgement(text, "start_state"); }
ZK_API int Parser_Delete_State(const char* text) { return acknowledgement(text, "delete_state"); }
ZK_API int Parser_Add_State(const char* text) { return acknowledgement(text, "add_state"); }
