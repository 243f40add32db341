/* Replies: programs and global waypoints. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_PROGRAMS_H
#define ZK_REPLIES_PROGRAMS_H

#include "zk/mailboxes.h"
#include "zk/programs.h"

typedef struct ProgramListReply {
    int32_t count;
    int32_t result;
    int32_t received; /* programs in the reply */
    ProgramList programs;
} ProgramListReply;

typedef struct ProgramRunStateReply {
    int32_t count;
    int32_t result;
    ProgramRunState state;
} ProgramRunStateReply;

ZK_API ProgramListReply Get_Program_Trajectory_List_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Program_Trajectory_List(const char* text, ProgramList* list);
ZK_API ProgramRunStateReply Get_Program_Run_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Program_Run_State(const char* text, ProgramRunState* state);
ZK_API AckReply Set_Program_ID_Start_Cmd[ZK_SLOTS];
ZK_API IntReply Run_Finish_Cmd[ZK_SLOTS]; /* the value is the id of the program that ended */
ZK_API int Parser_Set_Program_ID_Start(const char* text);
ZK_API int Parser_Program_Run_Finish(const char* text, int32_t* finish_id);
ZK_API AckReply Delete_Program_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Delete_State(const char* text);
ZK_API AckReply Update_Program_Trajectory_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Default_Run_Program_Cmd[ZK_SLOTS];
ZK_API IntReply Get_Default_Run_Program_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_id(const char* text, int32_t* id);

typedef struct GlobalWaypointReply {
    int32_t count;
    int32_t result;
    GlobalWaypoint waypoint;
} GlobalWaypointReply;

typedef struct GlobalWaypointListReply {
    int32_t count;
    int32_t result;
    int32_t received; /* waypoints in the reply */
    GlobalWaypointList waypoints;
} GlobalWaypointListReply;

ZK_API AckReply Add_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API int Parser_Add_State(const char* text);
ZK_API AckReply Update_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API AckReply Delete_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API GlobalWaypointReply Given_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API int Parser_Given_Global_Waypoint(ArmSocket socket, const char* text, GlobalWaypoint* waypoint);
ZK_API GlobalWaypointListReply Get_Global_Waypoint_List_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Global_Waypoints_List(ArmSocket socket, const char* text, GlobalWaypointList* list);

#endif
