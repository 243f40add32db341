/*
 * Streamed motion: set-points written straight to the socket, past the queue, at the rate of the caller's own loop.
 * What the controller says of them comes to the callback of ZK_API_Init.
 */
#ifndef ZK_STREAMING_H
#define ZK_STREAMING_H

#include "zk/connection.h"

/*
 * Stream a set-point: the connection's joints (6 or 7) in degrees, or a pose in metres with a unit quaternion (squared
 * norm above 0.99 and below 1.1) or else with its Euler angles in radians. follow: non-zero to follow closely, 0 to
 * smooth. expand: position of the expansion axis, sent in thousandths also for an arm without one.
 *
 * Return 0 whatever became of the set-point, a closed connection included; the plain names 18 during a file transfer
 * and 19 for a null pointer. Any thread, one at a time for each connection.
 *
 * Movej_CANFD_Block and Movep_CANFD_Block write a set-point and wait for a reply that never reaches them: they end in 7
 * after m_nOutTime (6 when it could not be written, 20 with 200 replies pending). The latter sends the quaternion in
 * thousandths. Use the other forms.
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
