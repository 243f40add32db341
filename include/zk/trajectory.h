/*
 * Trajectory control: commands that act on the motion in progress and on the controller's queue of trajectories.
 * zk/status.h describes the forms and their statuses.
 *
 * The stop and pause commands may be called from any thread, also while another thread waits in a blocking move.
 */
#ifndef ZK_TRAJECTORY_H
#define ZK_TRAJECTORY_H

#include "zk/connection.h"

/* ----------------------------------------------------------------------------------------- Stop, pause, continue -- */

/* Stops the motion at once, with the greatest deceleration the arm allows. The interrupted move ends in 1. */
ZK_API int Move_Stop_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Stop_Cmd_Block(ArmSocket socket);
ZK_API int Move_Stop_Cmd_NonBlock(ArmSocket socket);

/* Stops the motion gently. The interrupted move ends in 1. A reply left over from an earlier gentle stop that timed out
 * ends the wait at once. */
ZK_API int Move_Slow_Stop_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Slow_Stop_Cmd_Block(ArmSocket socket);
ZK_API int Move_Slow_Stop_Cmd_NonBlock(ArmSocket socket);

/* Holds the motion on its path; a move in progress goes on waiting until Move_Continue_Cmd resumes it. */
ZK_API int Move_Pause_Cmd(ArmSocket socket, bool block);
ZK_API int Move_Pause_Cmd_Block(ArmSocket socket);
ZK_API int Move_Pause_Cmd_NonBlock(ArmSocket socket);

/* Resumes a motion that was paused. */
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

/*
 * Asks what the arm is doing. `type` gets 0 none, 1 joint move, 2 line, 3 circle, 4 replay, 5 spline, 6 blend. `data`
 * has room for the connection's joints (6 or 7): joint angles in degrees for types 0, 1, 4 and 6; x, y, z in metres and
 * rx, ry, rz in radians for types 2, 3 and 5. Returns 0, 5, 7, 9, 11, 18, 19; 11 also for a type of another name. Waits
 * 20 ms before it asks.
 */
ZK_API int Get_Current_Trajectory(ArmSocket socket, int32_t* type, float* data);
ZK_API int Get_Current_Trajectory_Block(ArmSocket socket, int32_t* type, float* data);

/* ----------------------------------------------------------------------------------------------- Waypoint stream -- */

/*
 * Adds a waypoint (six or seven joint angles in degrees), starts the stream at a frequency, clears and stops it, or
 * waits. The controller does what it is asked, but its reply does not reach the caller: the blocking forms end in 7
 * after m_nOutTime (6 when the request could not be written, 20 with 200 replies pending). Use the non-blocking forms,
 * which give 0, and Get_Current_Trajectory. The plain names wait 20 ms before they ask.
 */
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

/* A pause in the stream of trajectories. Its blocking form ends in 7 likewise. */
ZK_API int Timer(ArmSocket socket, int32_t wait_time, bool block);
ZK_API int Timer_Block(ArmSocket socket, int32_t wait_time);
ZK_API int Timer_NonBlock(ArmSocket socket, int32_t wait_time);

#endif
