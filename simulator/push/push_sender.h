#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <string>

#include "push/push.h"
#include "wire/dispatcher.h"

namespace sim {

// Sends the real-time push once in each cycle.
class PushSender {
 public:
    // From `address`, so that listeners can distinguish controllers.
    PushSender(asio::io_context& io, const Push& push, const std::string& address, const Faults& faults);

    // Call it after every step of the controller.
    void step();

 private:
    void send(const std::string& datagram);
    void send_later(std::string datagram, std::chrono::milliseconds delay);

    const Push& push_;
    const Faults& faults_;
    asio::ip::udp::socket socket_;
    asio::ip::udp::socket unbound_;  // to other hosts from a loopback address, which cannot reach them
    Disturbance disturbance_;
    std::shared_ptr<PushSender*> alive_ = std::make_shared<PushSender*>(this);  // for datagrams that are late
};

// A UDP port that is free at this moment.
int free_udp_port(asio::io_context& io);

}  // namespace sim
