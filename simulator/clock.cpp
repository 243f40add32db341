#include "clock.h"

#include "wire/note.h"

namespace sim {
namespace {

constexpr std::chrono::seconds kMostToCatchUp{2};
constexpr std::chrono::milliseconds kLongestTurn{20};

}  // namespace

Clock::Clock(asio::io_context& io, std::chrono::milliseconds period, std::function<void()> step)
    : timer_(io), period_(period), step_(std::move(step)), due_(std::chrono::steady_clock::now() + period) {
    wait();
}

void Clock::wait() {
    timer_.expires_at(due_);
    timer_.async_wait([this](const asio::error_code& error) {
        if (error) return;
        catch_up();
        wait();
    });
}

void Clock::catch_up() {
    const auto now = std::chrono::steady_clock::now();
    if (now - due_ > kMostToCatchUp) {
        note("halted for more than 2 s; simulated time skips the halt");
        due_ = now;
    }
    // Clients are served even when a step takes longer than the time that it simulates.
    for (; due_ <= now && std::chrono::steady_clock::now() < now + kLongestTurn; due_ += period_) step_();
}

}  // namespace sim
