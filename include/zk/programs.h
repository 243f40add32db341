/* Programs and global waypoints. */
#ifndef ZK_PROGRAMS_H
#define ZK_PROGRAMS_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Popup_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Program_ID_Start_Cmd[ZK_SLOTS];
ZK_API AckReply Delete_Program_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Update_Program_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Default_Run_Program_Cmd[ZK_SLOTS];
ZK_API AckReply Add_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API AckReply Update_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API AckReply Delete_Global_Waypoint_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Popup(const char* text);
ZK_API int Parser_Set_Program_ID_Start(const char* text);
ZK_API int Parser_Delete_State(const char* text);
ZK_API int Parser_Add_State(const char* text);

#endif
