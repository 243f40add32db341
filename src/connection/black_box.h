// The black box: with ZK_BLACK_BOX=DIR in the environment at the first ZK_Connect, what passed lately is kept in a file
// of DIR that outlives the process; copies of it are kept at errors. Without the variable nothing happens.
#pragma once

#include <atomic>
#include <cstddef>

#include "connection/black_box_format.h"
#include "zk/connection.h"

namespace zk::black_box {

// Looks for the variable once in the life of the process. A directory that cannot be written is named on standard
// error.
void open();

namespace detail {
extern std::atomic<bool> is_on;
}
inline bool is_on() { return detail::is_on.load(std::memory_order_relaxed); }

// Any thread. It waits for a copy of 64 kB at most.
void add(Kind kind, ArmSocket arm, const char* text, size_t size);
// A frame of a start-up, which stays.
void add_start(Kind kind, const char* text, size_t size);

// Makes a copy: not within 10 s of the last one, which holds what led to this, and 20 at most. why: a word of the
// copy's name. Another thread writes it.
void keep(const char* why);

}  // namespace zk::black_box
