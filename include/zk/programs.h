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

/* A page of the list: page and search are said by the caller (0 and "" are not sent) and told back by the controller.
 */
typedef struct ProgramList {
    int32_t page_num;      /* from 1 */
    int32_t page_size;     /* programs on a page */
    int32_t total_size;    /* programs that the search finds, on all pages */
    char vague_search[32]; /* part of a name */
    ProgramEntry list[ZK_PROGRAMS];
} ProgramList;

/* What runs: 0 nothing, 1 a program; other numbers are the controller's own, such as a pause. Of an idle controller the
 * id, the line, the speed, the mode and the count of loops are -1. */
typedef struct ProgramRunState {
    int32_t run_state;
    int32_t id;
    int32_t plan_num;                    /* line in progress */
    int32_t loop_num[ZK_PROGRAM_LOOPS];  /* rounds of each loop that the line stands in, the outermost first */
    int32_t loop_cont[ZK_PROGRAM_LOOPS]; /* the round in progress of each */
    int32_t plan_speed;                  /* percent */
    int32_t step_mode;
    int32_t edit_id; /* program that is being edited */
    int32_t loop_count;
} ProgramRunState;

/* Asks for a page of the programs. Gets the page's entries; the rest of the list stays as it was. */
ZK_API int Get_Program_Trajectory_List(ArmSocket socket, ProgramList* list);
ZK_API int Get_Program_Trajectory_List_Block(ArmSocket socket, ProgramList* list);

/* Asks what runs. The status is the run state itself, 0 for an idle controller: a number that equals state->run_state
 * is no failure. Waits up to m_nOutTime + 1 s. */
ZK_API int Get_Program_Run_State(ArmSocket socket, ProgramRunState* state);
ZK_API int Get_Program_Run_State_Block(ArmSocket socket, ProgramRunState* state);

/*
 * Runs the program of an id, at a speed in percent. The _NonBlock form waits until the controller has accepted it. The
 * _Block form waits for its end: for as long as the controller runs something, and then for the report of the end, up
 * to m_nOutTime + 1 s (7). A program that has not been seen running after 15 looks, 100 ms apart, counts as ended. A
 * refusal ends it with 1. More than five failed looks end it with their status.
 */
ZK_API int Set_Program_ID_Start(ArmSocket socket, int32_t id, int32_t speed, bool block);
ZK_API int Set_Program_ID_Start_Block(ArmSocket socket, int32_t id, int32_t speed);
ZK_API int Set_Program_ID_Start_NonBlock(ArmSocket socket, int32_t id, int32_t speed);

ZK_API int Delete_Program_Trajectory(ArmSocket socket, int32_t id);
ZK_API int Delete_Program_Trajectory_Block(ArmSocket socket, int32_t id);

/* Gives the program of an id another speed in percent and another name. */
ZK_API int Update_Program_Trajectory(ArmSocket socket, int32_t id, int32_t speed, const char* name);
ZK_API int Update_Program_Trajectory_Block(ArmSocket socket, int32_t id, int32_t speed, const char* name);

/* The program that runs by itself when the controller starts; 0 for none. */
ZK_API int Set_Default_Run_Program(ArmSocket socket, int32_t id);
ZK_API int Set_Default_run_program_Block(ArmSocket socket, int32_t id);
ZK_API int Get_Default_Run_Program(ArmSocket socket, int32_t* id);
ZK_API int Get_Default_run_program_Block(ArmSocket socket, int32_t* id);

/* ---------------------------------------------------------------------------------------------- Global waypoints -- */

/* A place with a name. Of the pose the position and the Euler angles go over the wire; received angles and positions
 * are rounded to its thousandths of a degree and of a radian, and millionths of a metre. */
typedef struct GlobalWaypoint {
    char point_name[16];
    float joint[7]; /* degrees; six of them for an arm of six joints */
    Pose pose;      /* metres, radians */
    char work_frame[12];
    char tool_frame[12];
    char time[50]; /* of its making, as it was given */
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

/* Adds a waypoint under a new name, or changes the one of a name. A request of the first may have 516 bytes, of which
 * those from 501 to 504 are spoilt (Add_Queue in zk/queue.h); one of the second 299, which long names and texts
 * exceed. */
ZK_API int Add_Global_Waypoint(ArmSocket socket, GlobalWaypoint waypoint);
ZK_API int Add_Global_Waypoint_Block(ArmSocket socket, GlobalWaypoint waypoint);
ZK_API int Update_Global_Waypoint(ArmSocket socket, GlobalWaypoint waypoint);
ZK_API int Update_Global_Waypoint_Block(ArmSocket socket, GlobalWaypoint waypoint);

ZK_API int Delete_Global_Waypoint(ArmSocket socket, const char* name);
ZK_API int Delete_Global_Waypoint_Block(ArmSocket socket, const char* name);

/* Asks for the waypoint of a name. Mind that a connection of seven joints takes no pose of six numbers: 10. */
ZK_API int Given_Global_Waypoint(ArmSocket socket, const char* name, GlobalWaypoint* waypoint);
ZK_API int Given_Global_Waypoint_Block(ArmSocket socket, const char* name, GlobalWaypoint* waypoint);

/* Asks for a page of the waypoints, as Get_Program_Trajectory_List does of the programs. Waits up to m_nOutTime + 100
 * s.
 */
ZK_API int Get_Global_Point_List(ArmSocket socket, GlobalWaypointList* list);
ZK_API int Get_Global_Point_List_Block(ArmSocket socket, GlobalWaypointList* list);

#endif
