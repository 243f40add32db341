// A descriptor must not be closed while a thread of the library is inside a system call on it: the number could come
// back as somebody else's file. Each thread that reads shows here which descriptor it is using, and a close waits until
// none uses it. They use descriptors only for calls that do not block, or that the closer wakes.
#pragma once

#include <atomic>

namespace zk {

class DescriptorUse {
 public:
    void enter(int descriptor) { in_use_.store(descriptor, std::memory_order_seq_cst); }
    void leave() { in_use_.store(kNone, std::memory_order_release); }
    // Returns once the descriptor is not in use; to be called after it was taken from where the thread finds it.
    void wait_until_left(int descriptor) const;

 private:
    static constexpr int kNone = -1;
    std::atomic<int> in_use_{kNone};
};

inline DescriptorUse receive_use, realtime_use;

}  // namespace zk
