// Force-position moves.
#include "zk/force_position.h"

#include "connection/reply.h"

using namespace zk;

AckReply Start_Force_Position_Move_Cmd[ZK_SLOTS];
AckReply Stop_Force_Position_Move_Cmd[ZK_SLOTS];
