/* Replies: gripper and hand. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_GRIPPER_AND_HAND_H
#define ZK_REPLIES_GRIPPER_AND_HAND_H

#include "zk/gripper_and_hand.h"
#include "zk/mailboxes.h"

typedef struct GripperStateReply {
    int32_t count;
    int32_t result;
    GripperState state;
} GripperStateReply;

ZK_API AckReply Set_Gripper_Route_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Gripper_Route(const char* text);
ZK_API AckReply Set_Gripper_Release_Cmd[ZK_SLOTS]; /* of all four */
ZK_API GripperStateReply Get_Gripper_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Gripper_State(const char* text, GripperState* state);
ZK_API AckReply Set_Hand_Posture_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Seq_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Angle_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Follow_Angle_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Follow_Pos_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Speed_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Force_Cmd[ZK_SLOTS];

#endif
