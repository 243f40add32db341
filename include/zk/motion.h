/*
 * Motion. A move has two replies: an acknowledgement that the controller took it, and later the report of its arrival.
 */
#ifndef ZK_MOTION_H
#define ZK_MOTION_H

#include <stdbool.h>

#include "zk/connection.h"

/*
 * Moves every joint to a target at the same time.
 *
 * joint: the connection's joints (6 or 7) in degrees. v: speed in percent, 1 to 100. r: blending radius in percent.
 * trajectory_connect: 0 for a move that ends by itself, 1 for one that is joined to the next.
 *
 * Movej_Cmd_Block waits for the arrival, however long the arm moves: 0 arrived; 1 refused, stopped or cleared; 14 the
 * arm is idle and no report came; 5 when the connection was closed meanwhile; after six failed polls of the trajectory
 * in progress their status (7, say). A joined move returns 0 at once. To end the wait, stop the arm from another
 * thread. Movej_Cmd_NonBlock waits for the acknowledgement alone, 100 ms at most: 0 taken, 1 refused, 5, 7, 9, 11. The
 * plain name chooses by its flag and adds 18 during a file transfer and 19 for a null pointer. Before the first
 * successful Arm_Socket_Start of the process no acknowledgement is looked for: NonBlock gives 0 at once, and a joined
 * move that blocks waits for an arrival.
 *
 * Application threads, one move a connection at a time: a blocking move that is sent behind one that still runs ends
 * with the arrival of the first.
 */
ZK_API int Movej_Cmd(ArmSocket socket, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect,
                     bool block);
ZK_API int Movej_Cmd_Block(ArmSocket socket, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Movej_Cmd_NonBlock(ArmSocket socket, const float* joint, uint8_t v, uint8_t r, int32_t trajectory_connect);

/*
 * Move the tool to a pose in the work frame (position in metres, Euler angles in radians; the quaternion is not sent):
 * along a line, along a spline through successive poses, or with each joint on its own way. The forms, their waits and
 * statuses are those of Movej_Cmd; a pose that the arm cannot reach is refused.
 */
ZK_API int Movel_Cmd(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block);
ZK_API int Movel_Cmd_Block(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Movel_Cmd_NonBlock(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);

ZK_API int Moves_Cmd(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block);
ZK_API int Moves_Cmd_Block(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Moves_Cmd_NonBlock(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);

ZK_API int Movej_P_Cmd(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block);
ZK_API int Movej_P_Cmd_Block(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);
ZK_API int Movej_P_Cmd_NonBlock(ArmSocket socket, Pose pose, uint8_t v, uint8_t r, int32_t trajectory_connect);

/* Moves the tool on a circle through one pose to another; loop: how many full turns come on top. Otherwise as above. */
ZK_API int Movec_Cmd(ArmSocket socket, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                     int32_t trajectory_connect, bool block);
ZK_API int Movec_Cmd_Block(ArmSocket socket, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                           int32_t trajectory_connect);
ZK_API int Movec_Cmd_NonBlock(ArmSocket socket, Pose via, Pose to, uint8_t v, uint8_t r, uint8_t loop,
                              int32_t trajectory_connect);

/*
 * Move along a line to a target that is computed on the host from where the arm stands: by x, y, z metres along the
 * tool's own axes; or turned in place by `rotation` degrees about axis 1, 2 or 3 of the frame whose rotation
 * `reference` holds. Return the status of Get_Current_Arm_State when that fails, else that of Movel_Cmd. Not while
 * another thread computes kinematics.
 */
ZK_API int MoveCartesianTool_Cmd(ArmSocket socket, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block,
                                 float x, float y, float z);
ZK_API int MoveRotate_Cmd(ArmSocket socket, int32_t axis, uint8_t v, uint8_t r, int32_t trajectory_connect, bool block,
                          Pose reference, float rotation);

#endif
