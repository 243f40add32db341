// The descriptor or slot that a thread of the library is using now, so that another thread can wait until it is unused.
// A descriptor must not be closed during a system call on it: its number could become that of another file.
#pragma once

#include <atomic>

#include "connection/shared_memory.h"

namespace zk {

class InUse {
 public:
    void enter(int number) { number_.store(number, std::memory_order_seq_cst); }
    void leave() { number_.store(kNone, std::memory_order_release); }
    bool is_using(int number) const { return number_.load(std::memory_order_seq_cst) == number; }
    // Call it after the number was taken from where the thread finds it.
    void wait_until_left(int number) const {
        for (Pause pause; is_using(number);) pause.next();
    }

 private:
    static constexpr int kNone = -1;
    std::atomic<int> number_{kNone};
};

inline InUse receive_use, realtime_use;  // of a descriptor, in calls that do not block or that the closer wakes
inline InUse dispatch_use;               // of a slot, while a message of its connection is dispatched
inline thread_local bool on_receive_thread = false;

}  // namespace zk
