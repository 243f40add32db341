// What the rest of the library asks the table of connections.
#pragma once

#include "connection/shared_memory.h"
#include "zk/connection.h"

namespace zk {

// How many connections each slot has had: a later one may have the number of an earlier one.
inline std::atomic<unsigned> connections_had[ZK_SLOTS];

// Slot of an open connection, or -1. A socket below 1 is none, though a free slot looks like the socket 0.
int slot_of(ArmSocket socket);

// Joints of a slot, and of a socket; a socket that is in no slot counts as a six-joint arm.
int joint_count_of_slot(int slot);
int joint_count(ArmSocket socket);

// Joints that a request to this socket carries: seven for the arm modes 75 and 72.
int request_joint_count(ArmSocket socket);

inline bool sending_file() { return read(IsSendFile) == 1; }

// Closes a descriptor when no thread of the library is inside a call on it.
void close_unused(int descriptor);

}  // namespace zk
