// The states that a controller pushes once, for every client that asks for them.
#pragma once

#include <asio/ip/udp.hpp>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "proxy/client.h"

namespace tool {

class PushShare {
 public:
    // Datagrams leave from this address, by which clients tell arms apart.
    PushShare(asio::io_context& io, const asio::ip::address& listen, const sim::DisturbedWire& faults);

    // The controller's answer to get_realtime_push. Until there is one, clients wait.
    void configure(const Json& settings);
    bool is_configured() const { return settings_.has_value(); }
    // Receives the datagrams of this controller. Throws asio::system_error when the port is taken.
    void receive(const asio::ip::address& controller, int port, std::function<void(const std::string&)> on_datagram);

    // The answers of a controller that has this client alone. Empty: a request that no controller answers.
    std::string answer(const std::shared_ptr<Client>& client, const Request& request);
    void forget(const Client& client);

    void send(const std::string& datagram);

 private:
    struct Listener {
        asio::ip::udp::endpoint at;
        bool enable = false;
        int cycle = 1;
        int passed = 0;  // datagrams since the last that it got
    };
    Listener& listener_of(const Client& client);
    int free_port(const Client& client) const;
    bool set(const Client& client, const Json& wanted);
    void read();
    void send_to(const asio::ip::udp::endpoint& at, const std::string& datagram);

    asio::io_context& io_;
    asio::ip::udp::socket out_;
    std::optional<asio::ip::udp::socket> in_;
    asio::ip::address controller_;
    std::function<void(const std::string&)> on_datagram_;
    std::array<char, 2048> buffer_{};
    asio::ip::udp::endpoint sender_;
    sim::Disturbance disturbance_;
    const sim::DisturbedWire& faults_;
    std::optional<Json> settings_;
    std::map<const Client*, Listener> listeners_;
};

}  // namespace tool
