/*
 * Force control: the six-axis force sensor and the one-axis sensor at the end of the arm, and the mode in which the
 * controller holds a force along a direction. zk/status.h describes the forms and their statuses. Forces are newtons,
 * moments newton metres.
 */
#ifndef ZK_FORCE_CONTROL_H
#define ZK_FORCE_CONTROL_H

#include <stdbool.h>

#include "zk/connection.h"

/* The codes of sensor, mode and direction, as zk_simulator takes them. A controller may define others. */
typedef enum ZK_ForceSensor {
    ZK_SENSOR_ONE_AXIS = 0,
    ZK_SENSOR_SIX_AXIS = 1,
} ZK_ForceSensor;

typedef enum ZK_ForceFrame {
    ZK_FORCE_IN_WORK_FRAME = 0,
    ZK_FORCE_IN_TOOL_FRAME = 1,
} ZK_ForceFrame;

typedef enum ZK_ForceDirection {
    ZK_FORCE_X = 0,
    ZK_FORCE_Y = 1,
    ZK_FORCE_Z = 2,
    ZK_FORCE_RX = 3,
    ZK_FORCE_RY = 4,
    ZK_FORCE_RZ = 5,
} ZK_ForceDirection;

typedef enum ZK_ForceControl {
    ZK_CONTROL_POSITION = 0,
    ZK_CONTROL_FORCE = 1,
} ZK_ForceControl;

/* A force to hold, for each direction x, y, z, rx, ry, rz. */
typedef struct ForcePositionNew {
    int32_t sensor;
    int32_t mode;
    int32_t control_mode[6]; /* ZK_ForceControl for each direction */
    float desired_force[6];  /* newtons and newton metres; sent in tenths, with their fraction */
    float limit_vel[6];      /* speed limit while the arm yields; sent in thousandths, with their fraction */
} ForcePositionNew;

ZK_STATIC_ASSERT(sizeof(ForcePositionNew) == 80 && offsetof(ForcePositionNew, control_mode) == 8 &&
                     offsetof(ForcePositionNew, desired_force) == 32 && offsetof(ForcePositionNew, limit_vel) == 56,
                 "layout of ForcePositionNew");

/* ----------------------------------------------------------------------------------------------- Holding a force -- */

/* Holds a force along a direction until Stop_Force_Postion. sensor: ZK_ForceSensor. mode: ZK_ForceFrame. direction:
 * ZK_ForceDirection. The plain name takes `force` in newtons and sends ten times the number. The other forms send the
 * number unchanged: tenths of a newton. */
ZK_API int Set_Force_Postion(ArmSocket socket, int32_t sensor, int32_t mode, int32_t direction, int32_t force,
                             bool block);
ZK_API int Set_Force_Postion_Block(ArmSocket socket, int32_t sensor, int32_t mode, int32_t direction, int32_t force);
ZK_API int Set_Force_Postion_NonBlock(ArmSocket socket, int32_t sensor, int32_t mode, int32_t direction, int32_t force);

/* Holds forces in all directions at once. Always waits for the reply. A request of more than 299 bytes, by many numbers
 * with fractions, ends the process. */
ZK_API int Set_Force_Postion_New(ArmSocket socket, ForcePositionNew param);
ZK_API int Set_Force_Postion_New_Block(ArmSocket socket, ForcePositionNew param);

/* Ends holding a force. The blocking form waits m_nOutTime + 2000 ms. */
ZK_API int Stop_Force_Postion(ArmSocket socket, bool block);
ZK_API int Stop_Force_Postion_Block(ArmSocket socket);
ZK_API int Stop_Force_Postion_NonBlock(ArmSocket socket);

/* ----------------------------------------------------------------------------------------------- Six-axis sensor -- */

/*
 * Queries the six-axis sensor. Each array gets six values, forces x, y, z and moments x, y, z: `force` as measured,
 * `zero_force` without the payload, and the same in the work frame and in the tool frame. A reply may lack all but the
 * first; those arrays get what the last reply held, or zeros. The plain name returns 19 when `force` is null; the other
 * pointers may not be null. Zeroes the first record (zk/status.h).
 */
ZK_API int Get_Force_Data(ArmSocket socket, float* force, float* zero_force, float* work_zero_force,
                          float* tool_zero_force);
ZK_API int Get_Force_Data_Block(ArmSocket socket, float* force, float* zero_force, float* work_zero_force,
                                float* tool_zero_force);

/* Takes the present reading as zero. The plain name waits 20 ms first. */
ZK_API int Clear_Force_Data(ArmSocket socket, bool block);
ZK_API int Clear_Force_Data_Block(ArmSocket socket);
ZK_API int Clear_Force_Data_NonBlock(ArmSocket socket);

/* Calibrates the six-axis sensor. The arm moves, so keep clear. The plain name always waits for the end, at most
 * m_nOutTime + 30000 ms. */
ZK_API int Set_Force_Sensor(ArmSocket socket);
ZK_API int Set_Force_Sensor_Block(ArmSocket socket);
ZK_API int Set_Force_Sensor_NonBlock(ArmSocket socket);

/* Calibrates the six-axis sensor at four poses of the caller: one call for each, with `number` 1 to 4 and six or seven
 * joint angles in degrees. The plain name queues the first three and waits for the controller's reply at the fourth, at
 * most m_nOutTime + 30000 ms. Any other number makes a request without a command name. */
ZK_API int Manual_Set_Force(ArmSocket socket, int32_t number, const float* joint);
ZK_API int Manual_Set_Force_Block(ArmSocket socket, int32_t number, const float* joint);
ZK_API int Manual_Set_Force_NonBlock(ArmSocket socket, int32_t number, const float* joint);

/* Cancels a calibration. */
ZK_API int Stop_Set_Force_Sensor(ArmSocket socket, bool block);
ZK_API int Stop_Set_Force_Sensor_Block(ArmSocket socket);
ZK_API int Stop_Set_Force_Sensor_NonBlock(ArmSocket socket);

/* ----------------------------------------------------------------------------------------------- One-axis sensor -- */

/* Queries the force along the axis of the one-axis sensor, in newtons: as measured, without the payload, and the same
 * in the work frame and in the tool frame. A good reply has "set_state" false; any other reply returns 9. The plain
 * name returns 19 when `fz` is null; the other pointers may not be null. */
ZK_API int Get_Fz(ArmSocket socket, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz);
ZK_API int Get_Fz_Block(ArmSocket socket, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz);

/* Takes the present reading as zero. */
ZK_API int Clear_Fz(ArmSocket socket, bool block);
ZK_API int Clear_Fz_Block(ArmSocket socket);
ZK_API int Clear_Fz_NonBlock(ArmSocket socket);

/* Calibrates the one-axis sensor. The arm moves, so keep clear. The plain name always waits for the end, at most
 * m_nOutTime + 30000 ms. The reply to a calibration of either sensor ends the wait for both. */
ZK_API int Auto_Set_Fz(ArmSocket socket);
ZK_API int Auto_Set_Fz_Block(ArmSocket socket);
ZK_API int Auto_Set_Fz_NonBlock(ArmSocket socket);

/* Calibrates the one-axis sensor at two poses of the caller, six or seven joint angles in degrees each. Waits at most
 * m_nOutTime + 2000 ms. With seven joints the last angle of the second pose is sent at the end of the first pose. */
ZK_API int Manual_Set_Fz(ArmSocket socket, const float* pose1, const float* pose2);
ZK_API int Manual_Set_Fz_Block(ArmSocket socket, const float* pose1, const float* pose2);

#endif
