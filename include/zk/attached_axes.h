/* Lift, expansion axis and mobile base. */
#ifndef ZK_ATTACHED_AXES_H
#define ZK_ATTACHED_AXES_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Expand_Set_Version_Cmd[ZK_SLOTS];
ZK_API AckReply Expand_Config_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Car_Station(const char* text);
ZK_API int Parser_Expand_Set_Version(const char* text);
ZK_API int Parser_Expand_Config(const char* text);

#endif
