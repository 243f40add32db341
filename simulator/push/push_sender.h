#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

#include "push/push.h"

namespace sim {

// Sends the real-time push once in each cycle.
class PushSender {
 public:
    PushSender(asio::io_context& io, const Push& push);

    // Call it after every step of the controller.
    void step();

 private:
    const Push& push_;
    asio::ip::udp::socket socket_;
};

// A UDP port that is free at this moment.
int free_udp_port(asio::io_context& io);

}  // namespace sim
