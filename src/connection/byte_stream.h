// Writes the bytes of a file to a connection, past the transmit queue and in exactly the pieces that the caller passes.
// A write returns when the kernel has taken the whole piece.
#pragma once

#include <cstddef>

#include "connection/line.h"

namespace zk {

// A file's way from its announcement to its verdict. On a connection of ZK_Connect nothing else is written meanwhile,
// and the connection is lost when the file ends half-way.
class Transfer {
 public:
    explicit Transfer(const Connection& connection);
    ~Transfer();
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    int announced(int status) const;  // returns the status

 private:
    Connection connection_;
};

class ByteStream {
 public:
    // Duplicates the descriptor: if the connection is closed meanwhile, its number may become another file's.
    // `silence_limit` is how long (ms) the controller may read nothing.
    ByteStream(const Connection& connection, int32_t silence_limit);
    ~ByteStream();
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

    // Returns 0; 5 when this end has closed the connection, 6 when the controller has, 7 when it read nothing; what
    // ends a call on a connection of ZK_Connect.
    int write(const char* bytes, size_t size);

    // The controller has closed its end.
    bool is_closed_by_peer() const;

 private:
    int write_all(const char* bytes, size_t size);
    int wait_for_room() const;

    Connection connection_;
    Line* line_;  // null for a connection of Arm_Socket_Start
    int descriptor_;
    int32_t silence_limit_;
};

}  // namespace zk
