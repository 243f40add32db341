// From a name to a connected socket.
#pragma once

#include <unistd.h>

#include <utility>

#include "control/attempt.h"

namespace zk {

// Owns a descriptor.
class Descriptor {
 public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    int get() const { return number_; }
    int release() { return std::exchange(number_, -1); }

 private:
    int number_;
};

struct Peer {
    Descriptor descriptor;  // above all statuses
    char address[48] = "";  // of the peer
};

// Resolves the name, and tries its addresses in turn. The addresses share the time that is left. Returns 0,
// ZK_UNKNOWN_HOST, ZK_CONNECTION_REFUSED, ZK_NO_ROUTE, ZK_NO_ANSWER, ZK_NO_SOCKET or ZK_NO_MEMORY.
int dial(const char* host, int32_t port, Attempt& attempt, Peer& peer);

}  // namespace zk
