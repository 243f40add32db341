/*
 * Motion. A move has two replies: an acknowledgement that the controller took it, and later the report of its arrival.
 */
#ifndef ZK_MOTION_H
#define ZK_MOTION_H

#include <stdbool.h>

#include "zk/connection.h"

/*
 * Moves every joint to a target; all arrive at the same time.
 *
 * joint: the connection's joints (6 or 7) in degrees. v: speed in percent, 1 to 100. r: blending radius in percent.
 * trajectory_connect: 0 for a move that ends by itself, 1 for one that is joined to the next.
 *
 * Movej_Cmd_Block waits for the arrival, however long the arm moves: 0 arrived; 1 refused, stopped or cleared; 9 or 11
 * the acknowledgement or the report is broken; 14 the arm is idle and no report came; 5 the connection was closed;
 * after six failed polls of the trajectory in progress their status, such as 7. A joined move returns 0 at once. To end
 * the wait, stop the arm from another thread.
 *
 * Movej_Cmd_NonBlock waits for the acknowledgement, at most 100 ms, on a connection of ZK_Connect at most m_nOutTime
 * (3000 ms): 0 accepted; 1 refused; 5; 7 no acknowledgement; 9 it is not JSON or lacks a key; 11 it has a value of
 * another type or names another command. Before the first successful Arm_Socket_Start of the process nothing waits for
 * the acknowledgement: NonBlock returns 0 at once, and a joined blocking move waits for an arrival.
 *
 * One move at a time on a connection: a blocking move that is sent while another runs ends with the arrival of the
 * first.
 */
ZK_API int Movej_Cmd(ArmSocket socket, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect,
                     bool block);
ZK_API int Movej_Cmd_Block(ArmSocket socket, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Movej_Cmd_NonBlock(ArmSocket socket, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect);

/* Move the tool to a pose in the work frame (position in metres, Euler angles in radians; the quaternion is not sent):
 * along a line, along a spline through successive poses, or with all joints arriving together. Forms, waits and
 * statuses are those of Movej_Cmd. The controller refuses a pose that the arm cannot reach. */
ZK_API int Movel_Cmd(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block);
ZK_API int Movel_Cmd_Block(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Movel_Cmd_NonBlock(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);

ZK_API int Moves_Cmd(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block);
ZK_API int Moves_Cmd_Block(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Moves_Cmd_NonBlock(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);

ZK_API int Movej_P_Cmd(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block);
ZK_API int Movej_P_Cmd_Block(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Movej_P_Cmd_NonBlock(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);

/* Moves the tool on a circle through one pose to another, with `loop` additional full turns. Otherwise as above. */
ZK_API int Movec_Cmd(ArmSocket socket, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                     int32_t trajectory_connect, bool block);
ZK_API int Movec_Cmd_Block(ArmSocket socket, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                           int32_t trajectory_connect);
ZK_API int Movec_Cmd_NonBlock(ArmSocket socket, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                              int32_t trajectory_connect);

/*
 * Move along a line to a target that the host computes from the present pose: by x, y, z metres along the tool's own
 * axes; or turned in place by `rotation` degrees about axis 1, 2 or 3 of the frame whose rotation `reference` holds.
 * They return the status of Get_Current_Arm_State when that fails, else that of Movel_Cmd. Do not call them while
 * another thread computes kinematics.
 *
 * MoveCartesianTool_Cmd leaves the mounting angles out: on an arm that is not mounted upright it moves along other axes
 * and much too far (1 mm asked, 190 mm moved at 30 degrees). There, query the pose with Get_Current_Arm_State, move it
 * along its own axes with dPosMoveTool (zk/pose.h), and call Movel_Cmd.
 */
ZK_API int MoveCartesianTool_Cmd(ArmSocket socket, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block,
                                 float x, float y, float z);
ZK_API int MoveRotate_Cmd(ArmSocket socket, int32_t axis, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block,
                          Pose reference, float rotation);

#endif
