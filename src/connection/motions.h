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
        seen_ = false;
        steps_ = idles_ = 0;
        if (running_++ > 0) return;
        result_before_ = result_;
        result_ = ZK_NO_TRAJECTORY;
    }
    void withdraw() {  // it has not left
        const std::lock_guard guard(lock_);
        if (running_ > 0 && --running_ == 0 && result_ == ZK_NO_TRAJECTORY) result_ = result_before_;
    }
    // Other motions of the arm, those of a program for example, are reported alike.
    void report(int result) {
        const std::lock_guard guard(lock_);
        if (running_ == 0) return;
        --running_;
        result_ = result;
    }
    // Counts the steps of the waits, however many and short they are: whether this one asks what the arm does.
    bool step_asks() {
        const std::lock_guard guard(lock_);
        return ++steps_ % kStepsOfAQuestion == 0;
    }
    unsigned started() const {
        const std::lock_guard guard(lock_);
        return started_;
    }
    // The answer to a question that was put when so many were started. An arm that is idle after its motion, or idle
    // for long, sends no report any more.
    void found(bool idle, unsigned started) {
        const std::lock_guard guard(lock_);
        if (started_ != started) return;
        if (!idle) seen_ = true;
        if (idle && (seen_ || ++idles_ == kMostIdles)) running_ = 0;
    }

    bool are_over() const {
        const std::lock_guard guard(lock_);
        return running_ == 0;
    }
    // Of the last report since the arm was at rest; ZK_NO_TRAJECTORY without one. A request that has not left does not
    // count.
    int result() const {
        const std::lock_guard guard(lock_);
        return result_;
    }

 private:
    static constexpr int kStepsOfAQuestion = 10, kMostIdles = 50;

    mutable std::mutex lock_;
    unsigned started_ = 0;
    bool seen_ = false;  // the arm has moved since
    int steps_ = 0, idles_ = 0;
    int running_ = 0;
    int result_ = ZK_NO_TRAJECTORY, result_before_ = ZK_NO_TRAJECTORY;  // the latter of the motions that ended before
};

}  // namespace zk
