#pragma once

#include "zk/connection.h"

namespace zk {

// Milliseconds since a value of Get_Program_Runtime; the clock may wrap in between.
inline int32_t elapsed_since(int32_t start) {
    return static_cast<int32_t>(static_cast<uint32_t>(Get_Program_Runtime()) - static_cast<uint32_t>(start));
}

}  // namespace zk
