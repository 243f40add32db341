/*
 * Force-position moves: streamed set-points, each with forces that the controller holds at the same time. Start the
 * mode, write set-points at the rate of your own loop, and stop the mode. Set-points bypass the queue. The controller's
 * reports on them come to the callback of ZK_API_Init with type ZK_REPORT_FORCE.
 *
 * Joint angles are degrees, positions metres, Euler angles radians, forces newtons and newton metres.
 * zk/force_control.h names the numbers of sensors, modes and directions.
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
    int32_t control_mode[6]; /* ZK_ForceControl for each direction */
    float desired_force[6];  /* sent in tenths */
    float limit_vel[6];      /* speed limit while the arm yields; sent in thousandths */
} ForcePositionMove;

ZK_STATIC_ASSERT(sizeof(ForcePositionMove) == 156 && offsetof(ForcePositionMove, joint) == 44 &&
                     offsetof(ForcePositionMove, sensor) == 72 && offsetof(ForcePositionMove, follow) == 80 &&
                     offsetof(ForcePositionMove, control_mode) == 84 && offsetof(ForcePositionMove, limit_vel) == 132,
                 "layout of ForcePositionMove");

/* ------------------------------------------------------------------------------------------------------ The mode -- */

/* Start and end force-position moves. */
ZK_API int Start_Force_Position_Move(ArmSocket socket, bool block);
ZK_API int Start_Force_Position_Move_Block(ArmSocket socket);
ZK_API int Start_Force_Position_Move_NonBlock(ArmSocket socket);

ZK_API int Stop_Force_Position_Move(ArmSocket socket, bool block);
ZK_API int Stop_Force_Position_Move_Block(ArmSocket socket);
ZK_API int Stop_Force_Position_Move_NonBlock(ArmSocket socket);

/* ------------------------------------------------------------------------------------------------ The set-points -- */

/*
 * Write a set-point with a force along one direction `dir`. The pose is sent with its quaternion when the squared norm
 * of that lies above 0.99 and below 1.1, else with its Euler angles: complete a queried pose with ZK_Complete_Pose. The
 * seventh angle of a seven-joint arm is sent in whole degrees. force: newtons; sent in tenths, with its fraction.
 *
 * Return 0, or 6 when the set-point could not be written; the plain names also 18 and 19. A request of more than 299
 * bytes ends the process. Any thread, one at a time for each connection.
 *
 * The blocking forms, which no plain name calls, write a set-point, the pose always with its Euler angles. No reply
 * (zk/status.h): use the other forms, and the callback.
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

/* Write a set-point with forces in all directions. They return the same; there is no blocking form. */
ZK_API int Force_Position_Move(ArmSocket socket, ForcePositionMove move);
ZK_API int Force_Position_Move_NonBlock(ArmSocket socket, ForcePositionMove move);

#endif
