#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

#include "controller.h"

namespace sim {

// Sends the real-time push of a controller once in each cycle.
class PushSender {
 public:
    PushSender(asio::io_context& io, const Controller& controller);

    // Call it after every step of the controller.

    void step();

 private:
    const Controller& controller_;
    asio::ip::udp::socket socket_;
};

// A UDP port that is free at this moment.
int free_udp_port(asio::io_context& io);

}  // namespace sim
