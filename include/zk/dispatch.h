/*
 * From message to mailbox. The receive thread cuts the controllers' streams into messages; each is classified by the
 * first literal of an ordered table that it contains, and runs the one route of its code. An application needs none of
 * this.
 */
#ifndef ZK_DISPATCH_H
#define ZK_DISPATCH_H

#include <stdint.h>

#include "zk/export.h"

/* Returns the key code of a message: that of the first literal in the table's order that the message contains; 0
 * without any. Any thread. */
ZK_API int Get_Json_KeyCode(const char* message);

/* Runs the route of a message from the connection of a slot. Returns 0. Receive thread. */
ZK_API int handle_Recv_Json(int32_t slot, char* message);

/* The receive thread's function. Started by ZK_API_Init; not to be called. */
ZK_API void* RecvThread(void* unused);

#endif
