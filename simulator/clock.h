#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>

namespace sim {

// Calls `step` once for every `period` since the start. On a busy machine the calls come late and several at once, but
// none is lost. Only the steps missed during a long halt of the whole process are skipped.
class Clock {
 public:
    Clock(asio::io_context& io, std::chrono::milliseconds period, std::function<void()> step);

 private:
    void wait();
    void catch_up();

    asio::steady_timer timer_;
    std::chrono::milliseconds period_;
    std::function<void()> step_;
    std::chrono::steady_clock::time_point due_;
};

}  // namespace sim
