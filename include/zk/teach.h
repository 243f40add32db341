/* Teaching and stepping. */
#ifndef ZK_TEACH_H
#define ZK_TEACH_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a text that
 * is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Joint_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API AckReply Pos_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API AckReply Ort_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API AckReply Teach_Stop_Cmd_Cmd[ZK_SLOTS];

ZK_API int Parser_Joint_Teach(const char* text);
ZK_API int Parser_Pos_Teach(const char* text);
ZK_API int Parser_Ort_Teach(const char* text);
ZK_API int Parser_Teach_Stop(const char* text);

#endif
