/* Replies: the real-time stream. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_REALTIME_H
#define ZK_REPLIES_REALTIME_H

#include "zk/mailboxes.h"
#include "zk/realtime.h"

typedef struct RealtimePushReply {
    int32_t count;
    int32_t result;
    RealtimePushConfig config;
} RealtimePushReply;

ZK_API RealtimePushReply Get_Realtime_Push_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Realtime_Push_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Realtime_Push(const char* text);
ZK_API int Parser_Get_Realtime_Push(const char* text, RealtimePushConfig* config);

/* Parses a datagram into a record; stores what it reads before an error. Returns 0, 9, 10 or 11. Any thread. */
ZK_API int Parser_Realtime_Arm_Joint_State(const char* text, RobotStatus* status);

#endif
