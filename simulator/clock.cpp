#include "clock.h"

#include "wire/note.h"

namespace sim {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kStep{Controller::kStepMs};
constexpr std::chrono::seconds kMostToCatchUp{2};
constexpr std::chrono::milliseconds kLongestTurn{20};
constexpr int kMostRestlessSteps = 60'000 / Controller::kStepMs;

steady_clock::duration period(double speed) {
    return std::chrono::duration_cast<steady_clock::duration>(std::chrono::nanoseconds(kStep) / speed);
}

}  // namespace

Clock::Clock(asio::io_context& io, Controller& controller, std::function<void()> stepped)
    : timer_(io), controller_(controller), stepped_(std::move(stepped)), due_(steady_clock::now() + kStep) {
    controller_.dispatcher().handled = [this] { run_to_rest(); };
    wait();
}

void Clock::wait() {
    timer_.expires_at(due_);
    timer_.async_wait([this, alive = std::weak_ptr(alive_)](const asio::error_code& error) {
        if (error || alive.expired()) return;
        turn();
        wait();
    });
}

void Clock::turn() {
    const Time now = steady_clock::now();
    if (!at_once()) return catch_up(now);
    while (at_once() && !controller_.rests() && steady_clock::now() < now + kLongestTurn) step();
    due_ = at_once() && !controller_.rests() ? now : now + kStep;
}

void Clock::catch_up(Time now) {
    if (now - due_ > kMostToCatchUp) {
        note("halted for more than 2 s; simulated time skips the halt");
        due_ = now;
    }
    // Clients are served even when a step takes longer than the time that it simulates.
    // A step may change the speed.
    for (; !at_once() && due_ <= now && steady_clock::now() < now + kLongestTurn; due_ += period(speed())) step();
}

// The orders of a program are requests too, in the middle of a step.
void Clock::run_to_rest() {
    if (!at_once() || stepping_) return;
    do step();
    while (restless_steps_ > 0 && restless_steps_ < kMostRestlessSteps);
}

void Clock::step() {
    stepping_ = true;
    controller_.step();
    stepped_();
    stepping_ = false;
    restless_steps_ = at_once() && !controller_.rests() ? restless_steps_ + 1 : 0;
}

}  // namespace sim
