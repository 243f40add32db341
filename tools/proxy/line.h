// The proxy's own connection to a controller.
#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace tool {

class Line : public std::enable_shared_from_this<Line> {
 public:
    struct Events {
        std::function<void(std::string)> message;          // whole, with its line end
        std::function<void(const std::string& why)> lost;  // once, and nothing after it
        std::function<void()> drained;                     // it was full, and is not any more
    };
    // What is sent meanwhile waits for the connection.
    static std::shared_ptr<Line> open(asio::io_context& io, const asio::ip::tcp::endpoint& controller, Events events);

    explicit Line(asio::io_context& io) : socket_(io), timer_(io) {}
    void send(std::string_view bytes);
    bool is_full() const { return unsent_.size() + writing_.size() > kFull; }
    bool is_open() const { return is_open_; }
    bool is_connected() const { return is_connected_; }
    // The address by which the controller knows this host.
    asio::ip::address local_address() const;
    void close();
    // Sends what waits and no more. Messages come until the controller closes in its turn.
    void finish();

 private:
    static constexpr std::size_t kFull = 256 * 1024;
    void wait(std::chrono::seconds limit, const char* why);
    void read();
    void cut();
    void write();
    void lose(const std::string& why);

    asio::ip::tcp::socket socket_;
    asio::steady_timer timer_;
    Events events_;
    bool is_open_ = true, is_connected_ = false, is_finishing_ = false;
    std::array<char, 16384> buffer_{};
    std::string received_, unsent_, writing_;
};

}  // namespace tool
