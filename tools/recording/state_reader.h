// States of an arm, from the datagrams that its controller pushes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "recording/messages.h"

namespace tool {

class StateReader {
 public:
    // None for a datagram that cannot be read.
    std::optional<ArmRecord> read(const std::string& datagram, std::int64_t unix_ns);

 private:
    ZK_State state_{};  // what a datagram leaves out keeps its last value
};

}  // namespace tool
