/*
 * End effectors: a gripper of two fingers, a dexterous hand of six, and a PWM output. Speeds, forces, angles and
 * positions go on the wire as they are given; the device defines their ranges. zk/status.h describes the forms and
 * their statuses.
 */
#ifndef ZK_GRIPPER_AND_HAND_H
#define ZK_GRIPPER_AND_HAND_H

#include <stdbool.h>

#include "zk/connection.h"

typedef struct GripperState {
    uint8_t enable_state; /* 0 or 1 */
    uint8_t status;       /* 0 or 1 */
    int32_t error;
    int32_t mode;
    int32_t current_force;
    int32_t temperature;
    int32_t actpos; /* opening */
} GripperState;

/* ------------------------------------------------------------------------------------------------------- Gripper -- */

/* Sets the range of the opening that is used. Waits m_nOutTime_max. */
ZK_API int Set_Gripper_Route(ArmSocket socket, int32_t min, int32_t max, bool block);
ZK_API int Set_Gripper_Route_Block(ArmSocket socket, int32_t min, int32_t max);
ZK_API int Set_Gripper_Route_NonBlock(ArmSocket socket, int32_t min, int32_t max);

/*
 * Move the gripper: open it, close it until it grips with a force, close it and keep the force up, go to an opening.
 *
 * A blocking form waits until the gripper reports that it has arrived: 0 then; 1 refused, or ended before its target;
 * 12 the report that came is another device's; 7 when it did not report within `timeout` seconds (0 gives 7 at once). A
 * non-blocking form returns 0 at once with a timeout of 0; with any other it waits for the controller's
 * acknowledgement, though not for the arrival, for up to m_nOutTime_max, and takes one that an earlier call left
 * behind.
 */
ZK_API int Set_Gripper_Release(ArmSocket socket, int32_t speed, bool block, int32_t timeout);
ZK_API int Set_Gripper_Release_Block(ArmSocket socket, int32_t speed, int32_t timeout);
ZK_API int Set_Gripper_Release_NonBlock(ArmSocket socket, int32_t speed, int32_t timeout);

ZK_API int Set_Gripper_Pick(ArmSocket socket, int32_t speed, int32_t force, bool block, int32_t timeout);
ZK_API int Set_Gripper_Pick_Block(ArmSocket socket, int32_t speed, int32_t force, int32_t timeout);
ZK_API int Set_Gripper_Pick_NonBlock(ArmSocket socket, int32_t speed, int32_t force, int32_t timeout);

ZK_API int Set_Gripper_Pick_On(ArmSocket socket, int32_t speed, int32_t force, bool block, int32_t timeout);
ZK_API int Set_Gripper_Pick_On_Block(ArmSocket socket, int32_t speed, int32_t force, int32_t timeout);
ZK_API int Set_Gripper_Pick_On_NonBlock(ArmSocket socket, int32_t speed, int32_t force, int32_t timeout);

ZK_API int Set_Gripper_Position(ArmSocket socket, int32_t position, bool block, int32_t timeout);
ZK_API int Set_Gripper_Position_Block(ArmSocket socket, int32_t position, int32_t timeout);
ZK_API int Set_Gripper_Position_NonBlock(ArmSocket socket, int32_t position, int32_t timeout);

/*
 * Asks for the gripper's state. Once a reply is here the status is that of the last reply about the joint drives' upper
 * limits on this connection (0 if there was none), not of this one: a broken reply gives 0 as well, with what the
 * record held.
 */
ZK_API int Get_Gripper_State(ArmSocket socket, GripperState* state);
ZK_API int Get_Gripper_State_Block(ArmSocket socket, GripperState* state);

/* ---------------------------------------------------------------------------------------------------------- Hand -- */

/*
 * Bring the hand into a posture, or have it run through a sequence, by their numbers in the hand. A blocking form waits
 * for the acknowledgement and then the hand's report: 0 arrived; 1 refused, or ended before its target; 7 at the limit,
 * which is m_nOutTime and 30 s more for a posture, m_nOutTime_max and 30 s more for a sequence. Another device's
 * report, also one that an earlier move left behind, leaves the call waiting for its limit. A non-blocking form waits
 * for the acknowledgement, for up to m_nOutTime.
 */
ZK_API int Set_Hand_Posture(ArmSocket socket, int32_t posture, bool block);
ZK_API int Set_Hand_Posture_Block(ArmSocket socket, int32_t posture);
ZK_API int Set_Hand_Posture_NonBlock(ArmSocket socket, int32_t posture);

ZK_API int Set_Hand_Seq(ArmSocket socket, int32_t sequence, bool block);
ZK_API int Set_Hand_Seq_Block(ArmSocket socket, int32_t sequence);
ZK_API int Set_Hand_Seq_NonBlock(ArmSocket socket, int32_t sequence);

/* Sends the angles of the six fingers' joints. The blocking form waits for the acknowledgement, not for the arrival. */
ZK_API int Set_Hand_Angle(ArmSocket socket, const int32_t* angle, bool block);
ZK_API int Set_Hand_Angle_Block(ArmSocket socket, const int32_t* angle);
ZK_API int Set_Hand_Angle_NonBlock(ArmSocket socket, const int32_t* angle);

/* The same for streams of angles, and of positions: the blocking forms wait 100 ms at most, and no form tests the
 * pointer. */
ZK_API int Set_Hand_Follow_Angle(ArmSocket socket, const int32_t* angle, bool block);
ZK_API int Set_Hand_Follow_Angle_Block(ArmSocket socket, const int32_t* angle);
ZK_API int Set_Hand_Follow_Angle_NonBlock(ArmSocket socket, const int32_t* angle);

ZK_API int Set_Hand_Follow_Pos(ArmSocket socket, const int32_t* position, bool block);
ZK_API int Set_Hand_Follow_Pos_Block(ArmSocket socket, const int32_t* position);
ZK_API int Set_Hand_Follow_Pos_NonBlock(ArmSocket socket, const int32_t* position);

/* Set the speed and the force of the fingers. */
ZK_API int Set_Hand_Speed(ArmSocket socket, int32_t speed, bool block);
ZK_API int Set_Hand_Speed_Block(ArmSocket socket, int32_t speed);
ZK_API int Set_Hand_Speed_NonBlock(ArmSocket socket, int32_t speed);

ZK_API int Set_Hand_Force(ArmSocket socket, int32_t force, bool block);
ZK_API int Set_Hand_Force_Block(ArmSocket socket, int32_t force);
ZK_API int Set_Hand_Force_NonBlock(ArmSocket socket, int32_t force);

/* ----------------------------------------------------------------------------------------------------------- PWM -- */

/* Sets the frequency and the duty of the PWM output. The controller does it, but its reply does not reach the caller:
 * the blocking form ends in 7 after m_nOutTime (6 when the request could not be written, 20 with 200 replies pending).
 * Use the other form. The plain name waits 20 ms first. */
ZK_API int Set_PWM(ArmSocket socket, int32_t frequency, int32_t duty, bool block);
ZK_API int Set_PWM_Block(ArmSocket socket, int32_t frequency, int32_t duty);
ZK_API int Set_PWM_NoBlock(ArmSocket socket, int32_t frequency, int32_t duty);

/* Sends nothing and returns 8: the controller has no such command. Set a duty of 0 instead. */
ZK_API int Stop_PWM(ArmSocket socket, bool block);
ZK_API int Stop_PWM_Block(ArmSocket socket);
ZK_API int Stop_PWM_NonBlock(ArmSocket socket);

#endif
