/* Streamed motion: set-points that are written straight to the socket, past the queue, at the rate of the caller's own
 * loop. The controller's reports on them come to the callback of ZK_API_Init. */
#ifndef ZK_STREAMING_H
#define ZK_STREAMING_H

#include "zk/connection.h"

/* report_type of an ArmMotionReport. */
typedef enum ZK_ReportType {
    ZK_REPORT_JOINT = 1,
    ZK_REPORT_POSE = 2,
    ZK_REPORT_FORCE = 3,
} ZK_ReportType;

/* The result of a report, and its arm_err: what became of the set-point, as zk_simulator numbers it. */
typedef enum ZK_SetPointResult {
    ZK_SET_POINT_FOLLOWED = 0,
    ZK_SET_POINT_MALFORMED = 257,
    ZK_SET_POINT_BEYOND_LIMIT = 258,
    ZK_SET_POINT_TOO_FAR = 259, /* from the current joints */
    ZK_SET_POINT_UNREACHABLE = 260,
    ZK_SET_POINT_NOT_NOW = 261, /* the arm may not move, has other moves to do, or was stopped */
} ZK_SetPointResult;

/*
 * Stream a set-point: the connection's joints (6 or 7) in degrees, or a pose in metres. The pose is sent with its
 * quaternion when the squared norm of that lies above 0.99 and below 1.1, else with its Euler angles in radians.
 * Queries leave the quaternion of a pose as it was, so call ZK_Complete_Pose before you stream a queried pose. follow:
 * non-zero to follow closely, 0 to smooth. expand: position of the expansion axis, sent in thousandths even without
 * such an axis.
 *
 * Return 0 even if the set-point was not written or the connection is closed; the plain names also 18 and 19. Any
 * thread, one at a time for each connection.
 *
 * Movej_CANFD_Block and Movep_CANFD_Block write a set-point, the latter with the quaternion in thousandths. No reply
 * (zk/status.h): use the other forms.
 */
ZK_API int Movej_CANFD(ArmSocket socket, const float* joint, uint8_t follow, float expand);
ZK_API int Movej_CANFD_NonBlock(ArmSocket socket, const float* joint, uint8_t follow, float expand);
ZK_API int Movej_CANFD_Block(ArmSocket socket, const float* joint);

ZK_API int Movep_CANFD(ArmSocket socket, uint8_t follow, Pose pose);
ZK_API int Movep_CANFD_NonBlock(ArmSocket socket, uint8_t follow, Pose pose);
ZK_API int Movep_CANFD_Block(ArmSocket socket, uint8_t follow, Pose pose);

ZK_API int Movej_Follow(ArmSocket socket, const float* joint);
ZK_API int Movej_Follow_NonBlock(ArmSocket socket, const float* joint);
ZK_API int Movep_Follow(ArmSocket socket, Pose pose);
ZK_API int Movep_Follow_NonBlock(ArmSocket socket, Pose pose);

#endif
