#pragma once

#include <string>

#include "json.h"

namespace sim {

// The other end of a connection, as the commands see it.
class Client {
 public:
    virtual ~Client() = default;

    // Queues one message; it goes out as one line ended by CRLF. Messages keep their order.
    virtual void send(const Json& message) = 0;
    virtual std::string name() const = 0;
};

}  // namespace sim
