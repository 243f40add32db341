#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <memory>
#include <string>

#include "wire/client.h"
#include "wire/dispatcher.h"
#include "wire/sender.h"

namespace sim {

// One connection. Cuts the received bytes at CRLF, the only end of a request: line feeds and tabs may be inside one.
// The bytes of a file are not cut.
class Session : public Client, public Sender {
 public:
    Session(asio::ip::tcp::socket socket, const Dispatcher& dispatcher);

    void start();
    void send(const Json& message) override;
    std::string name() const override { return peer(); }
    void receive(const std::shared_ptr<Receiver>& receiver) override { receiver_ = receiver; }
    void stop_reading() override;
    void disconnect() override { close(); }

 private:
    std::shared_ptr<Session> self() { return std::static_pointer_cast<Session>(shared_from_this()); }
    void read();
    void take(std::string_view bytes);
    void handle_requests();
    bool receiving() const { return receiver_ && receiver_->wants_more(); }
    void leave(const std::string& reason);

    const Dispatcher& dispatcher_;

    std::array<char, 4096> buffer_{};
    std::string pending_;    // received, not yet ended by CRLF
    bool dropping_ = false;  // the rest of a request that is too long
    bool stopped_ = false;   // nothing more is read
    std::shared_ptr<Receiver> receiver_;
};

}  // namespace sim
