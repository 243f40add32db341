// The real-time streams of the connections of ZK_Connect. One thread receives the datagrams of all, one socket a port.
// A datagram belongs to the connection whose controller has the sender's address and pushes to that port.
#pragma once

#include "zk/realtime.h"

namespace zk {

struct StreamRecord {
    ArmSocket handle;
    uint32_t sequence;      // datagrams of this connection so far
    int64_t host_ns;        // CLOCK_MONOTONIC when it was received
    int64_t controller_ms;  // -1: the datagram has no time
    double clock_offset_ms;
    float rest[8];  // degrees; where the arm stood still last
    RobotStatus status;
};

int64_t monotonic_ns();

// Receives the datagrams that the peer sends to a port of this host. Of two connections with one peer and one port the
// first gets them. Returns 0, or the errno of a port that cannot be bound.
int open_stream(int slot, ArmSocket handle, const char* peer, int32_t port);

// Returns when no datagram of the connection is being handled. Without effect when it has no stream.
void close_stream(ArmSocket handle);

// Copies the last record; false before the first one of this connection. Never waits for the receiving thread.
bool last_record(int slot, ArmSocket handle, StreamRecord& record);

// Copies the first kept record after a sequence number of this connection; false when there is none.
bool record_after(int slot, ArmSocket handle, uint32_t sequence, StreamRecord& record);

struct StreamCounts {
    int64_t datagrams = 0;
    int64_t dropped = 0;  // on the port, of all senders: from no arm of ours, or not readable
};
StreamCounts stream_counts(ArmSocket handle);

}  // namespace zk
