/*
 * The stream of an arm's states: the last one, the next one, or each to a function. C++17, header only.
 *
 *     zk::StateStream states(arm);
 *     zk::State now = states.latest(100_ms).value();              // not older than that
 *     states.on_state([](const zk::State& state) { plot(state.joints()); });
 */
#ifndef ZK_STATE_STREAM_HPP
#define ZK_STATE_STREAM_HPP

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "zk/call.hpp"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* A record of the stream. */
struct State {
    ZK_State record; /* all of it, in the units of the C interface */

    /* Leaves the record to be filled: it is large. */
    State() {} /* NOLINT(modernize-use-equals-default) */

    Joints joints() const {
        return Joints::from_c(record.status.joint_position, static_cast<std::size_t>(record.joint_count));
    }
    /* The tool in the work frame. */
    Pose pose() const {
        const auto& p = record.status.position;
        const auto& q = record.status.quat;
        const auto wide = [](float value) { return static_cast<double>(value); };
        return {{metres(wide(p[0])), metres(wide(p[1])), metres(wide(p[2]))},
                Rotation::from_quaternion(wide(q[0]), wide(q[1]), wide(q[2]), wide(q[3]))};
    }
    std::chrono::nanoseconds age() const {
        return std::chrono::nanoseconds(static_cast<std::int64_t>(record.age_ms * 1e6));
    }
    /* The error words of arm and system; 0 for none. */
    std::uint16_t arm_error() const { return record.status.arm_err; }
    std::uint16_t system_error() const { return record.status.sys_err; }
};

/* Reads the states that a controller pushes. One thread at a time uses it; any number of streams read one arm. */
class StateStream {
 public:
    explicit StateStream(ArmSocket arm) : arm_(arm) {}
    template <class Arm, class = decltype(std::declval<const Arm&>().handle())>
    explicit StateStream(const Arm& arm) : StateStream(arm.handle()) {}
    StateStream(StateStream&&) = default;
    StateStream& operator=(StateStream&&) = default;

    /* The last state, at once. max_age: fails with ZK_STATE_TOO_OLD when it is older; 0 for any age. */
    [[nodiscard]] Result<State> latest(std::chrono::milliseconds max_age = {}) const {
        Result<State> state(std::in_place);
        const int status = ZK_Get_State(arm_, &state->record, milliseconds_of(max_age));
        if (status != ZK_OK) state = detail::failure_of<ZK_Get_State>(status);
        return state;
    }

    /* The next state in their order: none is left out while at most ZK_STATES_KEPT of them wait. ZK_NO_STATE when all
     * were read. */
    [[nodiscard]] Result<State> next_in_order() {
        Result<State> state(std::in_place);
        const int status = ZK_Get_State_After(arm_, last_, &state->record);
        if (status != ZK_OK) return detail::failure_of<ZK_Get_State_After>(status);
        last_ = state->record.sequence;
        return state;
    }

    /* Waits for a state newer than that of the last next(); ZK_TIMEOUT without one in this time. Looks every
     * millisecond. */
    [[nodiscard]] Result<State> next(std::chrono::milliseconds patience = std::chrono::seconds(1)) {
        const auto end = std::chrono::steady_clock::now() + patience;
        for (;;) {
            Result<State> state = latest();
            if (state && state->record.sequence != last_) {
                last_ = state->record.sequence;
                return state;
            }
            if (!state && state.error().status != ZK_NO_STATE) return state;
            if (std::chrono::steady_clock::now() >= end)
                return Unexpected(make_error(ZK_TIMEOUT, "ZK_Get_State", "no new state came"));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    /* Calls a function with each state, in a thread of its own, until stop(), the end of this object or of the
     * connection. Where states come faster than the function returns, it gets the last one. An exception ends it: see
     * failure(). The function must not destroy this object. */
    void on_state(std::function<void(const State&)> function) {
        stop();
        listener_ = std::make_unique<Listener>(arm_, std::move(function));
    }

    /* Ends the calls; waits for the one that runs. */
    void stop() { listener_.reset(); }

    /* What the function of on_state() has thrown; null for nothing. */
    std::exception_ptr failure() const { return listener_ ? listener_->failure() : nullptr; }

 private:
    class Listener {
     public:
        Listener(ArmSocket arm, std::function<void(const State&)> function)
            : thread_([this, arm, function = std::move(function)] { run(arm, function); }) {}
        ~Listener() {
            ended_ = true;
            thread_.join();
        }
        std::exception_ptr failure() const {
            const std::lock_guard<std::mutex> guard(lock_);
            return failure_;
        }

     private:
        void run(ArmSocket arm, const std::function<void(const State&)>& function) {
            try {
                for (StateStream states(arm); !ended_;) {
                    const Result<State> state = states.next(std::chrono::milliseconds(20));
                    if (state) function(*state);
                    if (!state && state.error().status != ZK_TIMEOUT) return;
                }
            } catch (...) {
                const std::lock_guard<std::mutex> guard(lock_);
                failure_ = std::current_exception();
            }
        }

        std::atomic<bool> ended_{false};
        mutable std::mutex lock_;
        std::exception_ptr failure_;
        std::thread thread_; /* the last: it uses the others */
    };

    ArmSocket arm_;
    std::uint32_t last_ = 0;
    std::unique_ptr<Listener> listener_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
