/*
 * Programs and global waypoints: the controller keeps them under ids and names, and lists, runs, changes and deletes
 * them. Send_TrajectoryFile (zk/file_transfer.h) brings projects there. zk/status.h describes the forms and their
 * statuses.
 *
 * Received texts are cut to their field and ended. A text that makes the request longer than its frame ends the
 * process. Keep the names of other replies out of yours: a reply that contains "point" is taken for a recorded point.
 */
#ifndef ZK_PROGRAMS_H
#define ZK_PROGRAMS_H

#include <stdbool.h>

#include "zk/connection.h"

#define ZK_PROGRAMS 200
#define ZK_WAYPOINTS 100
#define ZK_PROGRAM_LOOPS 100

/* ------------------------------------------------------------------------------------------------------ Programs -- */

typedef struct ProgramEntry {
    int32_t id;
    int32_t size;  /* bytes */
    int32_t speed; /* percent */
    char trajectory_name[32];
} ProgramEntry;

/* A page of the list. The caller sets page and search (0 and "" are not sent); the controller sends them back. */
typedef struct ProgramList {
    int32_t page_num;      /* from 1 */
    int32_t page_size;     /* programs on a page */
    int32_t total_size;    /* programs that the search finds, on all pages */
    char vague_search[32]; /* part of a name */
    ProgramEntry list[ZK_PROGRAMS];
} ProgramList;

/* The states of a program; a controller may define others. */
typedef enum ZK_ProgramState {
    ZK_PROGRAM_NONE = 0,
    ZK_PROGRAM_RUNNING = 1,
    ZK_PROGRAM_PAUSED = 2,
} ZK_ProgramState;

/*
 * The program in progress. Of an idle controller the id, the line, the speed, the mode and the count of loops are -1.
 */
typedef struct ProgramRunState {
    int32_t run_state; /* ZK_ProgramState */
    int32_t id;
    int32_t plan_num;                    /* line in progress */
    int32_t loop_num[ZK_PROGRAM_LOOPS];  /* rounds of each loop around that line, the outermost first */
    int32_t loop_cont[ZK_PROGRAM_LOOPS]; /* the present round of each */
    int32_t plan_speed;                  /* percent */
    int32_t step_mode;
    int32_t edit_id; /* program being edited */
    int32_t loop_count;
} ProgramRunState;

/* Queries a page of the programs into the first entries of the list; the others keep their values. */
ZK_API int Get_Program_Trajectory_List(ArmSocket socket, ProgramList* list);
ZK_API int Get_Program_Trajectory_List_Block(ArmSocket socket, ProgramList* list);

/* Queries the program in progress. The status is the run state itself, 0 for an idle controller: a status that equals
 * state->run_state is no failure. Waits up to m_nOutTime + 1 s. */
ZK_API int Get_Program_Run_State(ArmSocket socket, ProgramRunState* state);
ZK_API int Get_Program_Run_State_Block(ArmSocket socket, ProgramRunState* state);

/*
 * Runs the program of an id, at a speed in percent. The _NonBlock form waits until the controller has accepted it. The
 * _Block form waits for its end: as long as the controller runs a program, and then up to m_nOutTime + 1 s for the
 * report of the end (7). A program that was not seen running in 15 polls, 100 ms apart, counts as ended. 1 when
 * refused. After more than five failed polls it returns their status.
 */
ZK_API int Set_Program_ID_Start(ArmSocket socket, int32_t id, int32_t speed, bool block);
ZK_API int Set_Program_ID_Start_Block(ArmSocket socket, int32_t id, int32_t speed);
ZK_API int Set_Program_ID_Start_NonBlock(ArmSocket socket, int32_t id, int32_t speed);

ZK_API int Delete_Program_Trajectory(ArmSocket socket, int32_t id);
ZK_API int Delete_Program_Trajectory_Block(ArmSocket socket, int32_t id);

/* Sets the speed in percent and the name of a program. */
ZK_API int Update_Program_Trajectory(ArmSocket socket, int32_t id, int32_t speed, const char* name);
ZK_API int Update_Program_Trajectory_Block(ArmSocket socket, int32_t id, int32_t speed, const char* name);

/* Set and query the program that starts with the controller; 0 for none. */
ZK_API int Set_Default_Run_Program(ArmSocket socket, int32_t id);
ZK_API int Set_Default_run_program_Block(ArmSocket socket, int32_t id);
ZK_API int Get_Default_Run_Program(ArmSocket socket, int32_t* id);
ZK_API int Get_Default_run_program_Block(ArmSocket socket, int32_t* id);

/* ---------------------------------------------------------------------------------------------- Global waypoints -- */

/* A named place. The position and the Euler angles of the pose are sent, not its quaternion. Received values have the
 * precision of the wire: thousandths of a degree and of a radian, millionths of a metre. Complete the pose with
 * ZK_Complete_Pose before use. */
typedef struct GlobalWaypoint {
    char point_name[16];
    float joint[7]; /* degrees; six of them for an arm of six joints */
    Pose pose;      /* metres, radians */
    char work_frame[12];
    char tool_frame[12];
    char time[50]; /* of its creation, as the caller set it */
} GlobalWaypoint;

/* A page of the list, as in ProgramList. */
typedef struct GlobalWaypointList {
    int32_t page_num;
    int32_t page_size;
    int32_t total_size;
    char vague_search[32];
    GlobalWaypoint list[ZK_WAYPOINTS];
} GlobalWaypointList;

ZK_STATIC_ASSERT(sizeof(ProgramEntry) == 44 && offsetof(ProgramList, list) == 44, "layout of ProgramList");
ZK_STATIC_ASSERT(sizeof(GlobalWaypoint) == 160 && offsetof(GlobalWaypoint, pose) == 44 &&
                     offsetof(GlobalWaypoint, work_frame) == 84 && offsetof(GlobalWaypoint, time) == 108 &&
                     offsetof(GlobalWaypointList, list) == 44,
                 "layout of GlobalWaypoint and its list");

/* Adds a waypoint under a new name; changes an existing one. The request of the first may have 516 bytes, of which
 * bytes 501 to 504 are overwritten (Add_Queue in zk/queue.h); that of the second 299, which long names and texts
 * exceed. */
ZK_API int Add_Global_Waypoint(ArmSocket socket, GlobalWaypoint waypoint);
ZK_API int Add_Global_Waypoint_Block(ArmSocket socket, GlobalWaypoint waypoint);
ZK_API int Update_Global_Waypoint(ArmSocket socket, GlobalWaypoint waypoint);
ZK_API int Update_Global_Waypoint_Block(ArmSocket socket, GlobalWaypoint waypoint);

ZK_API int Delete_Global_Waypoint(ArmSocket socket, const char* name);
ZK_API int Delete_Global_Waypoint_Block(ArmSocket socket, const char* name);

/* Queries a waypoint by its name. A connection of seven joints accepts no pose of six numbers: 10. */
ZK_API int Given_Global_Waypoint(ArmSocket socket, const char* name, GlobalWaypoint* waypoint);
ZK_API int Given_Global_Waypoint_Block(ArmSocket socket, const char* name, GlobalWaypoint* waypoint);

/* Queries a page of the waypoints, as Get_Program_Trajectory_List does. Waits up to m_nOutTime + 100 s. */
ZK_API int Get_Global_Point_List(ArmSocket socket, GlobalWaypointList* list);
ZK_API int Get_Global_Point_List_Block(ArmSocket socket, GlobalWaypointList* list);

#endif
