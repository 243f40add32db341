/*
 * Force-position moves: streamed set-points, each with the forces that the controller is to hold at the same time.
 * Start the mode, write set-points straight to the socket, past the queue, at the rate of a loop of your own, and stop
 * the mode. What the controller says of the set-points comes to the callback of ZK_API_Init, as reports of type 3.
 *
 * Joint angles are degrees, positions metres, Euler angles radians, forces newtons and newton metres. The numbers of
 * sensors, modes and directions are the controller's.
 */
#ifndef ZK_FORCE_POSITION_H
#define ZK_FORCE_POSITION_H

#include <stdbool.h>

#include "zk/connection.h"

/* A set-point with a force for each direction x, y, z, rx, ry, rz. */
typedef struct ForcePositionMove {
    int32_t flag;   /* 1: the set-point is the pose; any other number: the joints */
    Pose pose;      /* with a unit quaternion, or else with its Euler angles */
    float joint[7]; /* degrees; the seventh counts on a seven-joint connection */
    int32_t sensor;
    int32_t mode;
    uint8_t follow;          /* non-zero to follow closely, 0 to smooth */
    int32_t control_mode[6]; /* how the direction is controlled, the controller's number */
    float desired_force[6];  /* sent in tenths */
    float limit_vel[6];      /* speed limit of the giving way; sent in thousandths */
} ForcePositionMove;

ZK_STATIC_ASSERT(sizeof(ForcePositionMove) == 156 && offsetof(ForcePositionMove, joint) == 44 &&
                     offsetof(ForcePositionMove, sensor) == 72 && offsetof(ForcePositionMove, follow) == 80 &&
                     offsetof(ForcePositionMove, control_mode) == 84 && offsetof(ForcePositionMove, limit_vel) == 132,
                 "layout of ForcePositionMove");

/* ------------------------------------------------------------------------------------------------------ The mode -- */

/*
 * Begin and end force-position moves. The plain name takes a flag and calls <name>_Block, which waits for the reply: 0;
 * 1 refused; 5 not an open connection; 7 no reply within m_nOutTime; 9 or 11 a reply that is broken or of the wrong
 * type; or <name>_NonBlock, which only queues the request and returns 0. It adds 18 during a file transfer. Application
 * threads.
 */
ZK_API int Start_Force_Position_Move(ArmSocket socket, bool block);
ZK_API int Start_Force_Position_Move_Block(ArmSocket socket);
ZK_API int Start_Force_Position_Move_NonBlock(ArmSocket socket);

ZK_API int Stop_Force_Position_Move(ArmSocket socket, bool block);
ZK_API int Stop_Force_Position_Move_Block(ArmSocket socket);
ZK_API int Stop_Force_Position_Move_NonBlock(ArmSocket socket);

/* ------------------------------------------------------------------------------------------------ The set-points -- */

/*
 * Write a set-point with a force along one direction `dir`. The pose goes out with its quaternion when that is about a
 * unit one (squared norm above 0.99 and below 1.1), else with its Euler angles. Of a seven-joint arm the seventh angle
 * goes out in whole degrees. force: newtons; sent in tenths, with its fraction.
 *
 * Return 0, or 6 when the set-point could not be written; the plain names 18 during a file transfer, and 19 for a null
 * pointer. A request that does not fit 300 bytes ends the process. Any thread, one at a time for each connection.
 *
 * The blocking forms, which no plain name calls, write a set-point (the pose always by its Euler angles) and wait for a
 * reply that never reaches them: they end in 7 after m_nOutTime although the controller has the set-point (6 when it
 * could not be written, 20 with 200 replies pending). Use the other forms, and the callback.
 */
ZK_API int Force_Position_Move_Pose(ArmSocket socket, uint8_t sensor, uint8_t mode, int32_t dir, uint8_t follow,
                                    Pose pose, float force);
ZK_API int Force_Position_Move_Pose_NonBlock(ArmSocket socket, uint8_t sensor, uint8_t mode, int32_t dir,
                                             uint8_t follow, Pose pose, float force);
ZK_API int Force_Position_Move_Pose_Block(ArmSocket socket, uint8_t sensor, uint8_t mode, int32_t dir, Pose pose,
                                          float force);

ZK_API int Force_Position_Move_Joint(ArmSocket socket, const float* joint, uint8_t sensor, uint8_t mode, int32_t dir,
                                     uint8_t follow, float force);
ZK_API int Force_Position_Move_Joint_NonBlock(ArmSocket socket, const float* joint, uint8_t sensor, uint8_t mode,
                                              int32_t dir, uint8_t follow, float force);
ZK_API int Force_Position_Move_Joint_Block(ArmSocket socket, const float* joint, uint8_t sensor, uint8_t mode,
                                           int32_t dir, float force);

/* Write a set-point with forces in all directions. Return the same; there is no blocking form. */
ZK_API int Force_Position_Move(ArmSocket socket, ForcePositionMove move);
ZK_API int Force_Position_Move_NonBlock(ArmSocket socket, ForcePositionMove move);

#endif
