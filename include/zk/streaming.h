/* Streamed motion: what the controller reports of it. */
#ifndef ZK_STREAMING_H
#define ZK_STREAMING_H

#include "zk/connection.h"

/*
 * Parses a report of streamed joint or pose set-points into the pose, the joints (six, and a seventh on a seven-joint
 * connection) and the error word, all unscaled. Returns the error word, or 9 when the text is not JSON or lacks it.
 */
ZK_API int Parser_Movej_CANFD(ArmSocket socket, const char* text, Pose* pose, float* joint, uint16_t* arm_err);

/*
 * Parses a report of a force-position move into the joints, the forces of all directions, the force along the
 * controlled one (the controller's number divided by 10) and the error word. Returns 0; 9 when the text is not JSON or
 * lacks "state"; 11 when the joints are no array.
 */
ZK_API int Parser_Force_Position_Move(ArmSocket socket, const char* text, float* joint, float* all_direction_force,
                                      int32_t* force, uint16_t* arm_err);

#endif
