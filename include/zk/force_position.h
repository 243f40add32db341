/* Force-position moves. */
#ifndef ZK_FORCE_POSITION_H
#define ZK_FORCE_POSITION_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Start_Force_Position_Move_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Force_Position_Move_Cmd[ZK_SLOTS];

#endif
