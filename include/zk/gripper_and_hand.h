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

/* Sets the range of openings in use. Waits m_nOutTime_max. */
ZK_API int Set_Gripper_Route(ArmSocket socket, int32_t min, int32_t max, bool block);
ZK_API int Set_Gripper_Route_Block(ArmSocket socket, int32_t min, int32_t max);
ZK_API int Set_Gripper_Route_NonBlock(ArmSocket socket, int32_t min, int32_t max);

/*
 * Move the gripper: open it, close it until it grips with a force, close it and keep the force, go to an opening.
 *
 * A blocking form waits until the gripper reports its arrival: 0; 1 refused, or ended before its target; 12 another
 * device reported; 7 no report within `timeout` seconds (0 returns 7 at once). A non-blocking form returns 0 at once
 * with a timeout of 0. With any other timeout it waits for the acknowledgement, at most m_nOutTime_max, and may take
 * that of an earlier call.
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

/* Queries the gripper's state. After a reply the status is that of the last reply about the upper position limits of
 * the joint drives on this connection, or 0 if there was none: even a broken reply returns 0, with the values that the
 * mailbox held. */
ZK_API int Get_Gripper_State(ArmSocket socket, GripperState* state);
ZK_API int Get_Gripper_State_Block(ArmSocket socket, GripperState* state);

/* ---------------------------------------------------------------------------------------------------------- Hand -- */

/*
 * Bring the hand into a posture, or run a sequence, by their numbers in the hand. A blocking form waits for the
 * acknowledgement and then for the hand's report: 0 arrived; 1 refused, or ended before its target; 7 at the limit,
 * m_nOutTime and 30 s for a posture, m_nOutTime_max and 30 s for a sequence. A report of another device, even of an
 * earlier move, makes the call wait for its limit. A non-blocking form waits m_nOutTime for the acknowledgement.
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

/* Stream angles and positions of the fingers: the blocking forms wait at most 100 ms. No form tests the pointer. */
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

/* Sets the frequency and the duty of the PWM output. No reply (zk/status.h): use the non-blocking form. */
ZK_API int Set_PWM(ArmSocket socket, int32_t frequency, int32_t duty, bool block);
ZK_API int Set_PWM_Block(ArmSocket socket, int32_t frequency, int32_t duty);
ZK_API int Set_PWM_NoBlock(ArmSocket socket, int32_t frequency, int32_t duty);

/* Sends nothing and returns 8: the controller has no such command. Set a duty of 0 instead. */
ZK_API int Stop_PWM(ArmSocket socket, bool block);
ZK_API int Stop_PWM_Block(ArmSocket socket);
ZK_API int Stop_PWM_NonBlock(ArmSocket socket);

#endif
