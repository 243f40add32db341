#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <memory>

#include "controller.h"

namespace sim {

// Passes simulated time: steps the controller, at the speed that it has at that moment.
//
// At a finite speed a step follows every Controller::kStepMs of simulated time. On a busy machine the steps come late
// and several at once, but none is lost. Only the steps missed during a long halt of the whole process are skipped.
//
// At kAtOnce the time belongs to the requests, so that it does not depend on the machine: after each one the controller
// steps until it rests, at least once, and then stands. What does not end within a minute of simulated time goes on
// between the requests, each of which then passes a step alone.
class Clock {
 public:
    // Calls `stepped` after each step.
    Clock(asio::io_context& io, Controller& controller, std::function<void()> stepped);

 private:
    using Time = std::chrono::steady_clock::time_point;

    double speed() const { return controller_.time().speed; }
    bool at_once() const { return speed() == kAtOnce; }
    void wait();
    void turn();
    void catch_up(Time now);
    void run_to_rest();
    void step();

    asio::steady_timer timer_;
    Controller& controller_;
    std::function<void()> stepped_;
    Time due_;
    bool stepping_ = false;
    int restless_steps_ = 0;                                          // at kAtOnce, since the controller rested
    std::shared_ptr<Clock*> alive_ = std::make_shared<Clock*>(this);  // for a handler that runs late
};

}  // namespace sim
