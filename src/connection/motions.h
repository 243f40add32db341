// The motions of the arm that a connection has started and whose report has not come.
#pragma once

#include <mutex>

#include "zk/status.h"

namespace zk {

// The calls that start motions, those that wait for them, and the receive thread share it.
class Motions {
 public:
    void reset() {
        const std::lock_guard guard(lock_);
        running_ = 0;
        result_ = ZK_NO_TRAJECTORY;
    }
    // The request is about to leave. One that is refused counts too, since a report ends it as well.
    void start() {
        const std::lock_guard guard(lock_);
        ++started_;
        if (running_++ == 0) result_ = ZK_NO_TRAJECTORY;
    }
    void withdraw() {  // it has not left
        const std::lock_guard guard(lock_);
        if (running_ > 0) --running_;
    }
    // Other motions of the arm, those of a program for example, are reported alike.
    void report(int result) {
        const std::lock_guard guard(lock_);
        if (running_ == 0) return;
        --running_;
        result_ = result;
    }
    // The arm is at rest, so that no report will come, unless another motion was started since `started`.
    void settle(unsigned started) {
        const std::lock_guard guard(lock_);
        if (started_ == started) running_ = 0;
    }

    unsigned started() const {
        const std::lock_guard guard(lock_);
        return started_;
    }

    bool are_over() const {
        const std::lock_guard guard(lock_);
        return running_ == 0;
    }
    // Of the last report since the arm was at rest; ZK_NO_TRAJECTORY without one.
    int result() const {
        const std::lock_guard guard(lock_);
        return result_;
    }

 private:
    mutable std::mutex lock_;
    unsigned started_ = 0;
    int running_ = 0;
    int result_ = ZK_NO_TRAJECTORY;
};

}  // namespace zk
