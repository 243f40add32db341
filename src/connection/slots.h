// Lookups and changes of the table of connections.
#pragma once

#include <functional>

#include "connection/shared_memory.h"
#include "zk/connection.h"

namespace zk {

// Whether a socket is a handle of ZK_Connect. Those lie above all descriptors.
constexpr ArmSocket kFirstHandle = 1 << 30;
inline bool is_handle(ArmSocket socket) { return socket >= kFirstHandle; }

// Slot of an open connection, or -1. A socket below 1 is none, though a free slot looks like the socket 0.
int slot_of(ArmSocket socket);

// The connection that a request goes out on. A later connection may get the same number and the same slot, so a call
// notes its connection before it sends its request, and checks at every poll that the connection is still the same.
class Connection {
 public:
    explicit Connection(ArmSocket socket);
    static Connection at(int slot);

    ArmSocket socket() const { return socket_; }
    int slot() const { return slot_; }  // -1 when the socket was in no slot
    bool is_open() const { return slot_ >= 0 && !has_changed(); }
    // Whether the socket is in another slot now, or in none, or belongs to a later connection.
    bool has_changed() const;
    // Why a wait on the connection has to end: 0; 5 when it is not open; on one of ZK_Connect also ZK_LOST, and for the
    // call in progress on this thread ZK_CANCELLED and ZK_DEADLINE.
    int status() const;

 private:
    Connection(ArmSocket socket, int slot, unsigned generation)
        : socket_(socket), slot_(slot), generation_(generation) {}

    ArmSocket socket_;
    int slot_;
    unsigned generation_;
};

// Moves a descriptor to a number above all statuses, so that a call can return either. The number is the lowest free
// one above the number that was assigned last; above 1023 the search starts again at the bottom. A number thus comes
// back late, and a call on a closed connection does not reach the next one. Returns -1 on failure, the given descriptor
// closed.
int lift_descriptor(int descriptor);

// Joints of a slot, and of a socket; a socket that is in no slot counts as a six-joint arm.
int joint_count_of_slot(int slot);
int joint_count(ArmSocket socket);

// Joints that a request to this socket carries: seven for the arm modes 75 and 72.
int request_joint_count(ArmSocket socket);

inline bool sending_file() { return read(IsSendFile) == 1; }

// Takes a free slot. `prepare` gets the slot and returns the socket, before any thread finds it. Returns the socket, or
// -1 when no slot is free.
ArmSocket take_slot(int32_t arm_mode, const std::function<ArmSocket(int)>& prepare);

// Removes the connection from the table, and those of Arm_Socket_Start in all later slots with it.
void forget_connections(ArmSocket socket);

// Removes this connection alone.
void forget_connection(ArmSocket socket);

// Closes a descriptor when no thread of the library is inside a call on it.
void close_unused(int descriptor);

}  // namespace zk
