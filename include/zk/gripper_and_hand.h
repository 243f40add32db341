/* Gripper and hand. */
#ifndef ZK_GRIPPER_AND_HAND_H
#define ZK_GRIPPER_AND_HAND_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Gripper_Route_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Gripper_Release_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Posture_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Seq_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Angle_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Speed_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Force_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Follow_Angle_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Hand_Follow_Pos_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Gripper_Route(const char* text);

#endif
