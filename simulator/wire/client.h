#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "wire/json.h"

namespace sim {

// Receives the bytes of a file, which a client sends between its requests.
class Receiver {
 public:
    virtual ~Receiver() = default;

    // Consumes bytes from the front and returns how many. The rest is requests.
    virtual size_t take(std::string_view bytes) = 0;
    virtual bool wants_more() const = 0;
};

// A connected client, as the commands see it.
class Client {
 public:
    virtual ~Client() = default;

    // Queues one message, which is sent as one line ended by CRLF. Messages keep their order.
    virtual void send(const Json& message) = 0;
    virtual std::string name() const = 0;

    // A timer that this client ordered has run out, or was dropped. The wire has no report of that: only programs
    // listen.
    virtual void timer_ended(bool /*ran_out*/) {}

    // Passes the received bytes to the receiver until it needs no more.
    virtual void receive(const std::shared_ptr<Receiver>&) {}

    // Reads no more, so that the client's send buffer fills up.
    virtual void stop_reading() {}
    virtual void disconnect() {}
};

}  // namespace sim
