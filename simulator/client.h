#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "json.h"

namespace sim {

// Takes what a client sends in the place of requests: the bytes of a file.
class Receiver {
 public:
    virtual ~Receiver() = default;

    // Takes from the front of what came, and tells how much; what it leaves is requests again.
    virtual size_t take(std::string_view bytes) = 0;
    virtual bool wants_more() const = 0;
};

// The other end of a connection, as the commands see it.
class Client {
 public:
    virtual ~Client() = default;

    // Queues one message; it goes out as one line ended by CRLF. Messages keep their order.
    virtual void send(const Json& message) = 0;
    virtual std::string name() const = 0;

    // From now on what comes goes to the receiver, as long as that wants more.
    virtual void receive(const std::shared_ptr<Receiver>&) {}

    // Nothing more is read: the other end fills up.
    virtual void stop_reading() {}
    virtual void disconnect() {}
};

}  // namespace sim
