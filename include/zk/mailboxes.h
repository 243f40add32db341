/*
 * Mailboxes. Each kind of reply has a table of one record per connection slot: the receive thread fills the record and
 * raises its count, the waiting command takes it. zk/replies/ declares the tables and the parsers.
 *
 * A parser reads the text of a reply into its outputs and returns a status: 0; 1 refused; 9 not JSON, or a key is
 * missing; 10 an array of another size; 11 (some: 8) a value of another type. Outputs that it read before the failure
 * keep their values. Pointers are not tested. Any thread.
 */
#ifndef ZK_MAILBOXES_H
#define ZK_MAILBOXES_H

#include <stdint.h>

#include "zk/export.h"

/* An acknowledgement: no payload. */
typedef struct AckReply {
    int32_t count;  /* above 0 when a reply is here */
    int32_t result; /* status of its parser */
} AckReply;

typedef struct IntReply {
    int32_t count;
    int32_t result;
    int32_t value;
} IntReply;

typedef struct FloatReply {
    int32_t count;
    int32_t result;
    float value;
} FloatReply;

/* One value for each joint, of which the connection's joint count are filled. */
typedef struct JointReply {
    int32_t count;
    int32_t result;
    float value[8];
} JointReply;

typedef struct JointIntReply {
    int32_t count;
    int32_t result;
    int32_t value[8];
} JointIntReply;

/*
 * The receive thread cuts the controllers' streams into messages. The first literal of an ordered table that a message
 * contains decides its key code, and each code has one route. An application needs none of this.
 */

/* Returns the key code of a message: that of the first literal in the table's order that the message contains; 0
 * without any. Any thread. */
ZK_API int Get_Json_KeyCode(const char* message);

/* Runs the route of a message from the connection of a slot. Returns 0. Receive thread. */
ZK_API int handle_Recv_Json(int32_t slot, char* message);

/* The receive thread's function. Started by ZK_API_Init; not to be called. */
ZK_API void* RecvThread(void* unused);

#endif
