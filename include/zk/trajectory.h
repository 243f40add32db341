/*
 * Trajectory control: commands that act on the motion in progress and on the controller's queue of trajectories.
 * zk/status.h describes the forms and their statuses.
 *
 * The stop and pause commands may be called from any thread, also while another thread waits in a blocking move. They
 * go through the transmit queue: a stop waits for all requests that are queued before it, of all arms, 20 ms each.
 *
 * A stop or a clearing is acknowledged before the stopped move reports its end. A blocking move that is sent in between
 * ends in 1, with the report of the stopped one. Wait until Get_Current_Trajectory delivers ZK_TRAJECTORY_NONE before
 * the next move.
 */
#ifndef ZK_TRAJECTORY_H
#define ZK_TRAJECTORY_H

#include "zk/connection.h"

/* ----------------------------------------------------------------------------------------- Stop, pause, continue -- */

/* Stops the motion with the greatest deceleration that the arm allows. The interrupted move ends in 1. */
ZK_API int Move_Stop_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Stop_Cmd_Block(ArmSocket socket);
ZK_API int Move_Stop_Cmd_NonBlock(ArmSocket socket);

/* Stops the motion gently. The interrupted move ends in 1. The blocking form may take the reply to an earlier gentle
 * stop that timed out. */
ZK_API int Move_Slow_Stop_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Slow_Stop_Cmd_Block(ArmSocket socket);
ZK_API int Move_Slow_Stop_Cmd_NonBlock(ArmSocket socket);

/* Holds the motion on its path; a blocking move keeps waiting until Move_Continue_Cmd resumes it. */
ZK_API int Move_Pause_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Pause_Cmd_Block(ArmSocket socket);
ZK_API int Move_Pause_Cmd_NonBlock(ArmSocket socket);

/* Resumes a paused motion. */
ZK_API int Move_Continue_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Continue_Cmd_Block(ArmSocket socket);
ZK_API int Move_Continue_Cmd_NonBlock(ArmSocket socket);

/* ----------------------------------------------------------------------------------------- Queue of trajectories -- */

/* Ends the trajectory in progress. */
ZK_API int Clear_Current_Trajectory(ArmSocket socket, bool block);
ZK_API int Clear_Current_Trajectory_Block(ArmSocket socket);
ZK_API int Clear_Current_Trajectory_NonBlock(ArmSocket socket);

/* Ends the trajectory in progress and drops the queued ones. */
ZK_API int Clear_All_Trajectory(ArmSocket socket, bool block);
ZK_API int Clear_All_Trajectory_Block(ArmSocket socket);
ZK_API int Clear_All_Trajectory_NonBlock(ArmSocket socket);

typedef enum ZK_TrajectoryKind {
    ZK_TRAJECTORY_NONE = 0,
    ZK_TRAJECTORY_JOINT = 1,
    ZK_TRAJECTORY_LINE = 2,
    ZK_TRAJECTORY_CIRCLE = 3,
    ZK_TRAJECTORY_REPLAY = 4,
    ZK_TRAJECTORY_SPLINE = 5,
    ZK_TRAJECTORY_BLEND = 6,
} ZK_TrajectoryKind;

/* Queries what the arm is doing. `type` gets a ZK_TrajectoryKind. `data` has room for the connection's joints (6 or 7):
 * joint angles in degrees for none, joint, replay and blend; x, y, z in metres and rx, ry, rz in radians for line,
 * circle and spline. A type of another name returns 11. The plain name waits 20 ms first. */
ZK_API int Get_Current_Trajectory(ArmSocket socket, int32_t* type, float* data);
ZK_API int Get_Current_Trajectory_Block(ArmSocket socket, int32_t* type, float* data);

/* ----------------------------------------------------------------------------------------------- Waypoint stream -- */

/* Add a waypoint (six or seven joint angles in degrees), start the stream at a frequency, clear it, and stop it. No
 * reply (zk/status.h): use the non-blocking forms, and Get_Current_Trajectory. */
ZK_API int Add_Waypoint(ArmSocket socket, const float* joint, bool block);
ZK_API int Add_Waypoint_Block(ArmSocket socket, const float* joint);
ZK_API int Add_Waypoint_NonBlock(ArmSocket socket, const float* joint);
ZK_API int Start_Waypoint(ArmSocket socket, int32_t frequency, bool block);
ZK_API int Start_Waypoint_Block(ArmSocket socket, int32_t frequency);
ZK_API int Start_Waypoint_NonBlock(ArmSocket socket, int32_t frequency);
ZK_API int Clear_Waypoint(ArmSocket socket, bool block);
ZK_API int Clear_Waypoint_Block(ArmSocket socket);
ZK_API int Clear_Waypoint_NonBlock(ArmSocket socket);
ZK_API int Stop_Waypoint(ArmSocket socket, bool block);
ZK_API int Stop_Waypoint_Block(ArmSocket socket);
ZK_API int Stop_Waypoint_NonBlock(ArmSocket socket);

/* Adds a pause to the stream of trajectories. No reply (zk/status.h). */
ZK_API int Timer(ArmSocket socket, int32_t wait_time, bool block);
ZK_API int Timer_Block(ArmSocket socket, int32_t wait_time);
ZK_API int Timer_NonBlock(ArmSocket socket, int32_t wait_time);

#endif
