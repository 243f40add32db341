#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#include <string>

#include "push/push.h"

namespace sim {

// Sends the real-time push once in each cycle.
class PushSender {
 public:
    // From `address`, so that listeners can distinguish controllers.
    PushSender(asio::io_context& io, const Push& push, const std::string& address);

    // Call it after every step of the controller.
    void step();

 private:
    const Push& push_;
    asio::ip::udp::socket socket_;
    asio::ip::udp::socket unbound_;  // to other hosts from a loopback address, which cannot reach them
};

// A UDP port that is free at this moment.
int free_udp_port(asio::io_context& io);

}  // namespace sim
