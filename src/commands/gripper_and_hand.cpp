// Gripper and hand.
#include "zk/gripper_and_hand.h"

#include "connection/reply.h"
#include "zk/file_transfer.h"

using namespace zk;

AckReply Set_Gripper_Route_Cmd[ZK_SLOTS];
AckReply Set_Gripper_Release_Cmd[ZK_SLOTS];
AckReply Set_Hand_Posture_Cmd[ZK_SLOTS];
AckReply Set_Hand_Seq_Cmd[ZK_SLOTS];
AckReply Set_Hand_Angle_Cmd[ZK_SLOTS];
AckReply Set_Hand_Speed_Cmd[ZK_SLOTS];
AckReply Set_Hand_Force_Cmd[ZK_SLOTS];
AckReply Set_Hand_Follow_Angle_Cmd[ZK_SLOTS];
AckReply Set_Hand_Follow_Pos_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Gripper_Route(const char* text) { return Parser_Set_Online_Start(text); }
