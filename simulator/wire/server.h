#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <string>

#include "wire/dispatcher.h"

namespace sim {

// Accepts clients and hands their requests to the dispatcher.
class Server {
 public:
    // Throws asio::system_error when it cannot listen there. Port 0 takes any free one.
    Server(asio::io_context& io, const Dispatcher& dispatcher, const std::string& address, int port);

    int port() const { return acceptor_.local_endpoint().port(); }

 private:
    void accept();

    const Dispatcher& dispatcher_;
    asio::ip::tcp::acceptor acceptor_;
    asio::steady_timer retry_;
};

}  // namespace sim
