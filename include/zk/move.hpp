/* The handle of a motion that was started. C++17, header only. */
#ifndef ZK_MOVE_HPP
#define ZK_MOVE_HPP

#include <algorithm>
#include <chrono>
#include <utility>

#include "zk/call.hpp"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/*
 * A motion that the controller accepted, or why it did not. The arm moves on without the handle: it may be dropped by
 * (void), and outlive the Arm. It is not copied by accident, since one handle is enough to wait.
 *
 *     zk::Move move = arm.move_joints(there);
 *     ... other work ...
 *     move.wait().value();
 *
 * A connection has one wait: where several motions were started, each of their handles waits for the last of them. Any
 * thread but those of callbacks may wait.
 */
class [[nodiscard]] Move {
 public:
    /* Of a motion that was started on this arm with this result. joined: it runs with the next one. */
    Move(ArmSocket arm, Result<void> started, bool joined = false)
        : arm_(arm), started_(std::move(started)), joined_(joined) {}
    Move(Move&&) = default;
    Move& operator=(Move&&) = default;

    /* Whether the controller took the motion. */
    const Result<void>& accepted() const { return started_; }

    /* Waits for the end of the motion, however long it takes. Success when it arrived; ZK_REFUSED when it was not
     * accepted or ended before its target; ZK_CANCELLED after cancel(); ZK_BAD_ARGUMENT for a joined motion; the
     * statuses of ZK_Wait_Move. */
    [[nodiscard]] Result<void> wait() const {
        for (;;) {
            Result<void> ended = wait_for(std::chrono::hours(1));
            if (ended || ended.error().status != ZK_TIMEOUT) return ended;
        }
    }

    /* The same for a time: ZK_TIMEOUT when the motion is not over. May be called again. */
    [[nodiscard]] Result<void> wait_for(std::chrono::milliseconds time) const {
        if (!started_) return started_;
        if (joined_) {
            return Unexpected(make_error(ZK_BAD_ARGUMENT, detail::kName<ZK_Wait_Move>.data(),
                                         "a joined motion ends with the next one: wait for that"));
        }
        return call<ZK_Wait_Move>(arm_, std::max(1, milliseconds_of(time)));
    }

    /* How far it is, 0 to 1, as ZK_Move_Progress says: for joint motions, with the controller's stream of states. */
    [[nodiscard]] Result<double> progress() const {
        float share = 0;
        return detail::then(call<ZK_Move_Progress>(arm_, &share), [&] { return static_cast<double>(share); });
    }

    /* Ends the waits, in all threads, with ZK_CANCELLED. The arm moves on. */
    [[nodiscard]] Result<void> cancel() const { return call<ZK_Cancel>(arm_); }

    /* Stops the arm at once, ahead of all that is queued. A wait ends with ZK_REFUSED. */
    [[nodiscard]] Result<void> stop() const { return call<ZK_Stop>(arm_, ZK_STOP | ZK_DROP_QUEUED); }

 private:
    ArmSocket arm_;
    Result<void> started_;
    bool joined_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
