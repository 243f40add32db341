// Accepts the clients of the proxy.
#pragma once

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <vector>

#include "proxy/client.h"

namespace tool {

class Listener {
 public:
    // Throws Failure when it cannot listen there. Port 0 takes any free one.
    Listener(asio::io_context& io, const asio::ip::tcp::endpoint& at, const sim::DisturbedWire& faults,
             Service& service);

    int port() const { return at_.port(); }
    // Refuses new clients for this time.
    void refuse(int milliseconds);
    void disconnect_others(const Client& spared, bool reset);

 private:
    void accept();
    void accept_after(int milliseconds);
    void admit(asio::ip::tcp::socket socket);

    const sim::DisturbedWire& faults_;
    Service& service_;
    asio::ip::tcp::acceptor acceptor_;
    asio::ip::tcp::endpoint at_;
    asio::steady_timer timer_;
    std::vector<std::weak_ptr<Client>> clients_;
};

}  // namespace tool
