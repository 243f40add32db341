/*
 * Connecting to an arm, and the data that the library reads from it.
 */
#ifndef ZK_STARTUP_H
#define ZK_STARTUP_H

#include <stdint.h>

#include "zk/connection.h"

/* Of the arm connected last: the model number (0 ZK65, 1 ZK75, 3 63, 5 ORB65, 6 62, 7 72, 8 ORB63) and the end sensor
 * (0 -B, 1 -ZF, 2 -6F). The flag is 1 once a controller has reported its model. */
ZK_API int32_t Curr_Robot_Type;
ZK_API int32_t Curr_Senser_Type;
ZK_API uint8_t g_is_robot_type_i;

/* The tool and the work frame in use as transforms, 4 by 4. A reply with the tool frame in use sets Tool_Matrix with
 * the Euler angles in the place of the position; the start-up stores the true transform. */
ZK_API Matrix Tool_Matrix;
ZK_API Matrix Frame_Matrix;

/*
 * Connects to a controller and loads the data of its arm: queries the model, initialises the local kinematics for it,
 * puts the arm's tool frame, work frame, mounting angles and joint limits into the local model, and prepares the
 * listener of the real-time stream if the controller has it enabled. Call ZK_API_Init first, with the arm mode of this
 * arm. Afterwards the local forward kinematics returns the pose that the controller reports. The registered real-time
 * callback is cleared.
 *
 * address: dotted IPv4 text; host names are not resolved. timeout: without effect; a connect takes as long as the
 * system takes.
 *
 * Returns the socket, always above ZK_LARGEST_STATUS, or a status: 4 no socket; 5 no connection, or closed during the
 * start; -1 all 20 connections are taken, or a mounting angle read back from the local model differs by more than 0.001
 * degrees; 7 no reply; 9, 10, 11 a reply that is broken, has another joint count than the arm mode, or has a value of
 * the wrong type; 18 during a file transfer; 25 the listener could not be set up (the connection stays open). A failed
 * attempt closes as Arm_Socket_Close does. Application threads. Several threads may start connections: one at a time
 * talks to its controller while the others wait.
 *
 * The socket is the lowest free number above that of the last connection or listener; above 1023 the search starts
 * again at ZK_LARGEST_STATUS + 1. So the number of a closed connection is not that of the next one.
 *
 * A second arm replaces the model, the frames and the limits of the first. A controller that reports an unknown model
 * keeps the model of the arm before; one that reports a combination of arm and sensor that does not exist leaves a
 * model without joints (libalgo_get_rbt_dof() is 0). A tool or work frame in use whose name contains "point" makes the
 * start end in 7, since its reply counts as that of a recorded point.
 */
ZK_API ArmSocket Arm_Socket_Start(const char* address, int32_t port, int32_t timeout);

#endif
