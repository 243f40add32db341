// A program that talks to the proxy as if it were the controller.
#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <memory>
#include <string>

#include "proxy/wire_commands.h"
#include "wire/sender.h"

namespace tool {

class Client;

// What stands behind the clients.
class Service {
 public:
    virtual ~Service() = default;
    virtual void join(const std::shared_ptr<Client>& client) = 0;
    virtual void take(const std::shared_ptr<Client>& client, Request request) = 0;
    // Bytes of a file.
    virtual void take_file(const std::shared_ptr<Client>& client, std::string bytes) = 0;
    virtual void leave(Client& client) = 0;
};

// Cuts what it receives at CRLF, the only end of a request. Bytes of a file are not cut.
class Client : public sim::Sender {
 public:
    Client(asio::ip::tcp::socket socket, const sim::DisturbedWire& faults, Service& service);

    void start();
    const std::string& name() const { return peer(); }
    asio::ip::address address() const { return address_; }
    bool is_on_this_host() const { return is_on_this_host_; }

    // Takes nothing more from it until `go_on`: the system then lets it wait.
    void pause() { is_paused_ = true; }
    void go_on();
    // The next bytes are a file.
    void expect_file(std::size_t size) { file_left_ = size; }
    // Sends what is still to be sent, then closes.
    void finish() { end(); }
    bool is_gone() { return !socket().is_open(); }

 private:
    std::shared_ptr<Client> self() { return std::static_pointer_cast<Client>(shared_from_this()); }
    void read();
    void cut();
    bool cut_file();
    bool cut_request();
    void leave(const std::string& reason);

    Service& service_;
    asio::ip::address address_;
    bool is_on_this_host_ = false;
    std::array<char, 4096> buffer_{};
    std::string pending_;
    bool is_paused_ = false, is_reading_ = false, is_dropping_ = false, has_left_ = false;
    std::size_t file_left_ = 0;
};

}  // namespace tool
