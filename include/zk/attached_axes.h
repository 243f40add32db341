/*
 * Devices besides the arm: the lift that carries it, an expansion axis, and a mobile base. Numbers are sent unchanged;
 * the device defines their units and ranges. zk/status.h describes the forms, their statuses and "no reply".
 */
#ifndef ZK_ATTACHED_AXES_H
#define ZK_ATTACHED_AXES_H

#include <stdbool.h>

#include "zk/connection.h"

/* ---------------------------------------------------------------------------------------------------------- Lift -- */

/* Moves the lift to a height. The blocking form waits for the lift's report, however long it takes: 0 arrived; 1
 * refused, or ended before its target; 14 the lift is at rest, or did not start within about five seconds, and no
 * report came; after six failed queries of its state their status; 5 the connection was closed. */
ZK_API int Set_Lift_Height(ArmSocket socket, int32_t height, int32_t speed, bool block);
ZK_API int Set_Lift_Height_BLock(ArmSocket socket, int32_t height, int32_t speed);
ZK_API int Set_Lift_Height_NonBLock(ArmSocket socket, int32_t height, int32_t speed);

/* Queries the lift's state; `mode` is not 0 while it moves. `mode` may be null. */
ZK_API int Get_Lift_State(ArmSocket socket, int32_t* height, int32_t* current, uint16_t* err_flag, int32_t* mode);
ZK_API int Get_Lift_State_Block(ArmSocket socket, int32_t* height, int32_t* current, uint16_t* err_flag, int32_t* mode);

/* Runs the lift at a speed. No reply; the plain name always calls the non-blocking form. */
ZK_API int Set_Lift_Speed(ArmSocket socket, int32_t speed);
ZK_API int Set_Lift_Speed_Block(ArmSocket socket, int32_t speed);
ZK_API int Set_Lift_Speed_NonBlock(ArmSocket socket, int32_t speed);

/* An older form of Set_Lift_Height; use that. No reply: the blocking form waits 120 s longer. The non-blocking form
 * sends a command name with a trailing blank, which a controller may not know. */
ZK_API int Set_Lift(ArmSocket socket, int32_t height, int32_t speed, bool block);
ZK_API int Set_Lift_Block(ArmSocket socket, int32_t height, int32_t speed);
ZK_API int Set_Lift_NonBlock(ArmSocket socket, int32_t height, int32_t speed);

/* ------------------------------------------------------------------------------------------------ Expansion axis -- */

/* Run the expansion axis at a speed, and move it to a position. A blocking form ends with the next report of any
 * device, even that of an earlier move: 0 arrived; 1 refused, or ended before its target; 12 another device reported; 7
 * no report within m_nOutTime and 120 s. Expand_Set_Pos waits 20 ms first. */
ZK_API int Expand_Set_Speed(ArmSocket socket, int32_t speed, bool block);
ZK_API int Expand_Set_Speed_Block(ArmSocket socket, int32_t speed);
ZK_API int Expand_Set_Speed_NonBlock(ArmSocket socket, int32_t speed);

ZK_API int Expand_Set_Pos(ArmSocket socket, int32_t pos, int32_t speed, bool block);
ZK_API int Expand_Set_Pos_Block(ArmSocket socket, int32_t pos, int32_t speed);
ZK_API int Expand_Set_Pos_NonBlock(ArmSocket socket, int32_t pos, int32_t speed);

/* Queries the state of the axis. Waits m_nOutTime_max. */
ZK_API int Expand_Get_State(ArmSocket socket, int32_t* pos, uint16_t* err_flag, int32_t* current, int32_t* mode);
ZK_API int Expand_Get_State_BLock(ArmSocket socket, int32_t* pos, uint16_t* err_flag, int32_t* current, int32_t* mode);

/* Set and query the version of the axis. They wait m_nOutTime_max. The setter may take the reply to an earlier call. */
ZK_API int Expand_Set_Version(ArmSocket socket, int32_t version);
ZK_API int Expand_Set_Version_BLock(ArmSocket socket, int32_t version);

ZK_API int Expand_Get_Version(ArmSocket socket, int32_t* version);
ZK_API int Expand_Get_Version_BLock(ArmSocket socket, int32_t* version);

/* Set the greatest speed and acceleration of the motor and the conversion coefficient; query them and the limits of the
 * position. The setter may take the reply to an earlier call. */
ZK_API int Expand_Config(ArmSocket socket, int32_t rpm_max, int32_t rpm_acc, int32_t coefficient);
ZK_API int Expand_Config_Block(ArmSocket socket, int32_t rpm_max, int32_t rpm_acc, int32_t coefficient);

ZK_API int Expand_Get_Config(ArmSocket socket, int32_t* rpm_max, int32_t* rpm_acc, int32_t* coefficient,
                             int32_t* limit_min, int32_t* limit_max);
ZK_API int Expand_Get_Config_Block(ArmSocket socket, int32_t* rpm_max, int32_t* rpm_acc, int32_t* coefficient,
                                   int32_t* limit_min, int32_t* limit_max);

/* --------------------------------------------------------------------------------------------------- Mobile base -- */

/* Drive the base at a linear and an angular speed. No reply: use the non-blocking forms. */
ZK_API int Set_Vehicle(ArmSocket socket, int32_t speed, int32_t angular, bool block);
ZK_API int Set_Vehicle_Block(ArmSocket socket, int32_t speed, int32_t angular);
ZK_API int Set_Vehicle_NonBlock(ArmSocket socket, int32_t speed, int32_t angular);

ZK_API int Set_Car_Move(ArmSocket socket, int32_t linear, int32_t angular, bool block);
ZK_API int Set_Car_Move_Block(ArmSocket socket, int32_t linear, int32_t angular);
ZK_API int Set_Car_Move_NonBlock(ArmSocket socket, int32_t linear, int32_t angular);

/* Send the base to a station, set the speed and the mode of its navigation, start charging, and number the station at
 * its present place. No reply: use the non-blocking forms. */
ZK_API int Set_Car_Station(ArmSocket socket, int32_t station, int32_t speed, bool block);
ZK_API int Set_Car_Station_Block(ArmSocket socket, int32_t station, int32_t speed);
ZK_API int Set_Car_Station_NonBlock(ArmSocket socket, int32_t station, int32_t speed);

ZK_API int Set_Car_Navigation_Speed(ArmSocket socket, int32_t speed, bool block);
ZK_API int Set_Car_Navigation_Speed_Block(ArmSocket socket, int32_t speed);
ZK_API int Set_Car_Navigation_Speed_NonBlock(ArmSocket socket, int32_t speed);

ZK_API int Set_Car_Navigation_Mode(ArmSocket socket, int32_t mode, bool block);
ZK_API int Set_Car_Navigation_Mode_Block(ArmSocket socket, int32_t mode);
ZK_API int Set_Car_Navigation_Mode_NonBlock(ArmSocket socket, int32_t mode);

ZK_API int Set_Car_Charge(ArmSocket socket, int32_t charge_state, bool block);
ZK_API int Set_Car_Charge_Block(ArmSocket socket, int32_t charge_state);
ZK_API int Set_Car_Charge_NonBlock(ArmSocket socket, int32_t charge_state);

ZK_API int Set_Car_Station_Num(ArmSocket socket, int32_t station, bool block);
ZK_API int Set_Car_Station_Num_Block(ArmSocket socket, int32_t station);
ZK_API int Set_Car_Station_Num_NonBlock(ArmSocket socket, int32_t station);

/* Queries the state of the base. No reply and no other form: it always ends in 7 and delivers nothing. An application
 * that gets such a reply in another way reads it with Parser_Get_Car_State. */
ZK_API int Get_Car_State(ArmSocket socket, int32_t* battery_volume, int32_t* voltage, int32_t* current,
                         int32_t* car_err, int32_t* car_state, int32_t* station_num);
ZK_API int Get_Car_State_Block(ArmSocket socket, int32_t* battery_volume, int32_t* voltage, int32_t* current,
                               int32_t* car_err, int32_t* car_state, int32_t* station_num);

#endif
