#pragma once

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <memory>
#include <string>

#include "wire/disturbance.h"

namespace sim {

// Sends messages to one peer in their order, as the faults of the wire have it. Closes the connection to a peer that
// does not read.
class Sender : public std::enable_shared_from_this<Sender> {
 public:
    Sender(asio::ip::tcp::socket socket, const DisturbedWire& faults);
    virtual ~Sender() = default;

    // A whole message. One that is not disturbed keeps its place among the others.
    void send_text(std::string text, bool is_disturbed = true);

    // Closes the connection at once, with a reset on request.
    void drop(bool reset);

 protected:
    // Nothing more is received: the connection closes when all is sent.
    void end();
    void close();
    bool has_ended() const { return ended_; }
    const std::string& peer() const { return peer_; }
    asio::ip::tcp::socket& socket() { return socket_; }

 private:
    using Time = std::chrono::steady_clock::time_point;

    struct Message {
        std::string text;
        Time due;
        size_t cut_at = 0;  // the size of its first piece; 0: as the slices
        bool is_disturbed = true;
    };

    void disturb(const std::string& text);
    void post(Message message, bool keeps_order);
    void send_due();
    bool may_join(const Message& next) const;
    void write(size_t begin);
    void write_later(size_t begin);

    asio::ip::tcp::socket socket_;
    asio::steady_timer timer_;
    const DisturbedWire& faults_;
    std::string peer_;

    Disturbance disturbance_;
    std::deque<Message> outbox_;  // by the time that each is due
    Time last_due_;               // of those that keep their order
    Message writing_;             // on its way, with those that are due and may be joined to it
    size_t unread_bytes_ = 0;
    bool ended_ = false;
};

}  // namespace sim
