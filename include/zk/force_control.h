/*
 * Force control: the six-axis force sensor and the one-axis sensor at the end of the arm, and the mode in which the
 * controller holds a force along a direction. zk/status.h describes the forms and their statuses. Forces are newtons,
 * moments newton metres.
 */
#ifndef ZK_FORCE_CONTROL_H
#define ZK_FORCE_CONTROL_H

#include <stdbool.h>

#include "zk/connection.h"

/* A force to be held, for each direction x, y, z, rx, ry, rz. */
typedef struct ForcePositionNew {
    int32_t sensor;
    int32_t mode;
    int32_t control_mode[6]; /* how the direction is controlled, the controller's number */
    float desired_force[6];  /* newtons and newton metres; sent in tenths, with their fraction */
    float limit_vel[6];      /* speed limit of the giving way; sent in thousandths, with their fraction */
} ForcePositionNew;

ZK_STATIC_ASSERT(sizeof(ForcePositionNew) == 80 && offsetof(ForcePositionNew, control_mode) == 8 &&
                     offsetof(ForcePositionNew, desired_force) == 32 && offsetof(ForcePositionNew, limit_vel) == 56,
                 "layout of ForcePositionNew");

/* ----------------------------------------------------------------------------------------------- Holding a force -- */

/*
 * Holds a force along a direction until Stop_Force_Postion. The plain name takes `force` in newtons and sends ten times
 * that; the forms send the number as it is, which is tenths of a newton.
 */
ZK_API int Set_Force_Postion(ArmSocket socket, int32_t sensor, int32_t mode, int32_t direction, int32_t force,
                             bool block);
ZK_API int Set_Force_Postion_Block(ArmSocket socket, int32_t sensor, int32_t mode, int32_t direction, int32_t force);
ZK_API int Set_Force_Postion_NonBlock(ArmSocket socket, int32_t sensor, int32_t mode, int32_t direction, int32_t force);

/* The same in all directions at once. Always waits for the reply. A request that does not fit 300 bytes, by many
 * numbers with fractions, ends the process. */
ZK_API int Set_Force_Postion_New(ArmSocket socket, ForcePositionNew param);
ZK_API int Set_Force_Postion_New_Block(ArmSocket socket, ForcePositionNew param);

/* Ends it. The blocking form waits m_nOutTime + 2000 ms. */
ZK_API int Stop_Force_Postion(ArmSocket socket, bool block);
ZK_API int Stop_Force_Postion_Block(ArmSocket socket);
ZK_API int Stop_Force_Postion_NonBlock(ArmSocket socket);

/* ----------------------------------------------------------------------------------------------- Six-axis sensor -- */

/*
 * Asks what the sensor feels. Each array gets six values, forces x, y, z and moments x, y, z: `force` as measured,
 * `zero_force` without the payload, and the same in the work frame and in the tool frame. A reply may leave all but the
 * first out; those arrays get what the last reply held, or zeros. The plain name gives 19 when `force` is null; the
 * other pointers may not be null. Afterwards the mailbox record of the first connection is wiped, whichever asked.
 */
ZK_API int Get_Force_Data(ArmSocket socket, float* force, float* zero_force, float* work_zero_force,
                          float* tool_zero_force);
ZK_API int Get_Force_Data_Block(ArmSocket socket, float* force, float* zero_force, float* work_zero_force,
                                float* tool_zero_force);

/* Takes what the sensor feels now for zero. The plain name waits 20 ms before it asks. */
ZK_API int Clear_Force_Data(ArmSocket socket, bool block);
ZK_API int Clear_Force_Data_Block(ArmSocket socket);
ZK_API int Clear_Force_Data_NonBlock(ArmSocket socket);

/* Calibrates the sensor automatically: the arm moves, so keep clear. The plain name always waits for the end, at most
 * m_nOutTime + 30000 ms. */
ZK_API int Set_Force_Sensor(ArmSocket socket);
ZK_API int Set_Force_Sensor_Block(ArmSocket socket);
ZK_API int Set_Force_Sensor_NonBlock(ArmSocket socket);

/*
 * Calibrates the sensor at four poses of the caller's, told one by one with `number` 1 to 4 and six or seven joint
 * angles in degrees. The plain name waits for the controller's reply at the fourth, m_nOutTime + 30000 ms at most, and
 * queues the others; it gives 19 for a null pointer. Another number makes a request that no controller understands.
 */
ZK_API int Manual_Set_Force(ArmSocket socket, int32_t number, const float* joint);
ZK_API int Manual_Set_Force_Block(ArmSocket socket, int32_t number, const float* joint);
ZK_API int Manual_Set_Force_NonBlock(ArmSocket socket, int32_t number, const float* joint);

/* Ends a calibration before its time. */
ZK_API int Stop_Set_Force_Sensor(ArmSocket socket, bool block);
ZK_API int Stop_Set_Force_Sensor_Block(ArmSocket socket);
ZK_API int Stop_Set_Force_Sensor_NonBlock(ArmSocket socket);

/* ----------------------------------------------------------------------------------------------- One-axis sensor -- */

/*
 * Asks for the force along the sensor's axis, in newtons: as measured, without the payload, and the same in the work
 * frame and in the tool frame. The controller says with "set_state" false that it can tell; everything else gives 9.
 * The plain name gives 19 when `fz` is null; the other pointers may not be null.
 */
ZK_API int Get_Fz(ArmSocket socket, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz);
ZK_API int Get_Fz_Block(ArmSocket socket, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz);

/* Takes what the sensor feels now for zero. */
ZK_API int Clear_Fz(ArmSocket socket, bool block);
ZK_API int Clear_Fz_Block(ArmSocket socket);
ZK_API int Clear_Fz_NonBlock(ArmSocket socket);

/* Calibrates the sensor automatically: the arm moves, so keep clear. The plain name always waits for the end, at most
 * m_nOutTime + 30000 ms. One reply of a calibration, of either sensor, ends the wait of them all. */
ZK_API int Auto_Set_Fz(ArmSocket socket);
ZK_API int Auto_Set_Fz_Block(ArmSocket socket);
ZK_API int Auto_Set_Fz_NonBlock(ArmSocket socket);

/*
 * Calibrates the sensor at two poses of the caller's, six or seven joint angles in degrees each. Waits m_nOutTime +
 * 2000 ms at most. With seven joints the last angle of the second pose goes out behind the first pose. The plain name
 * gives 19 for a null pointer.
 */
ZK_API int Manual_Set_Fz(ArmSocket socket, const float* pose1, const float* pose2);
ZK_API int Manual_Set_Fz_Block(ArmSocket socket, const float* pose1, const float* pose2);

#endif
