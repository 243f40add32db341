// The bytes of a file on a connection. They go past the transmit queue, in exactly the pieces that they are given in,
// and each write lasts until the kernel has taken its piece.
#pragma once

#include <cstddef>

#include "zk/connection.h"

namespace zk {

class ByteStream {
 public:
    // Holds a descriptor of its own, so that a connection that is closed meanwhile is not written to under a number
    // that has come back as somebody else's. `silence_limit` is how long (ms) the controller may read nothing.
    ByteStream(ArmSocket socket, int32_t silence_limit);
    ~ByteStream();
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

    // 0; 5 once the connection was closed at this end, 6 once it was at the other, 7 when the controller read nothing.
    int write(const char* bytes, size_t size);

 private:
    int wait_for_room() const;

    ArmSocket socket_;
    int descriptor_;
    int32_t silence_limit_;
};

}  // namespace zk
