#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <string>
#include <vector>

#include "wire/dispatcher.h"

namespace sim {

class Session;

// Accepts clients and hands their requests to the dispatcher.
class Server {
 public:
    // Throws asio::system_error when it cannot listen there. Port 0 takes any free one.
    Server(asio::io_context& io, const Dispatcher& dispatcher, const std::string& address, int port);

    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    int port() const { return endpoint_.port(); }

    // Disconnects all clients but one, with a reset on request.
    void disconnect_others(const Client* spared, bool reset);

    // Refuses new clients for this time.
    void refuse(int milliseconds);

 private:
    void accept();
    void accept_after(int milliseconds);
    void listen_again();
    void admit(asio::ip::tcp::socket socket);

    const Dispatcher& dispatcher_;
    asio::ip::tcp::acceptor acceptor_;
    asio::ip::tcp::endpoint endpoint_;
    asio::steady_timer retry_;
    std::vector<std::weak_ptr<Session>> sessions_;
    std::shared_ptr<Server*> alive_ = std::make_shared<Server*>(this);  // for handlers that run late
};

}  // namespace sim
