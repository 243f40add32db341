#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <memory>
#include <string>

#include "wire/client.h"
#include "wire/dispatcher.h"
#include "wire/disturbance.h"

namespace sim {

// One connection. Cuts the received bytes at CRLF, the only end of a request: line feeds and tabs may be inside one.
// The bytes of a file are not cut.
class Session : public Client, public std::enable_shared_from_this<Session> {
 public:
    Session(asio::ip::tcp::socket socket, const Dispatcher& dispatcher);

    void start();
    void send(const Json& message) override;
    std::string name() const override { return name_; }
    void receive(const std::shared_ptr<Receiver>& receiver) override { receiver_ = receiver; }
    void stop_reading() override;
    void disconnect() override { close(); }

    // Closes the connection at once, with a reset on request.
    void drop(bool reset);

 private:
    using Time = std::chrono::steady_clock::time_point;

    struct Message {
        std::string text;
        Time due;
        size_t cut_at = 0;  // the size of its first piece; 0: as the slices
        bool is_disturbed = true;
    };

    void read();
    void take(std::string_view bytes);
    void handle_requests();
    bool receiving() const { return receiver_ && receiver_->wants_more(); }
    void leave(const std::string& reason);

    void disturb(const std::string& text);
    void post(Message message, bool keeps_order);
    void send_due();
    bool may_join(const Message& next) const;
    void write(size_t begin);
    void write_later(size_t begin);
    void close();

    asio::ip::tcp::socket socket_;
    asio::steady_timer timer_;
    const Dispatcher& dispatcher_;
    std::string name_;

    std::array<char, 4096> buffer_{};
    std::string pending_;    // received, not yet ended by CRLF
    bool dropping_ = false;  // the rest of a request that is too long
    bool stopped_ = false;   // nothing more is read
    std::shared_ptr<Receiver> receiver_;

    Disturbance disturbance_;
    std::deque<Message> outbox_;  // by the time that each is due
    Time last_due_;               // of those that keep their order
    Message writing_;             // on its way, with those that are due and may be joined to it
    size_t unread_bytes_ = 0;
    bool left_ = false;  // nothing more will come
};

}  // namespace sim
