// A command as one row: how it is called, what then goes over the wire, what the controller says, what the call gives.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "support/arm.h"

namespace zk::test {

struct CommandCase {
    std::string name;
    std::function<int(ArmSocket)> call;
    std::string wire;   // the request without its CRLF
    std::string reply;  // "" for none
    int status = 0;
    int arm_mode = 65;
};

inline std::ostream& operator<<(std::ostream& out, const CommandCase& row) { return out << row.name; }

// The name of a request's command.
inline std::string command_name(const std::string& wire) {
    const std::string key = "\"command\":\t\"";
    const size_t start = wire.find(key) + key.size();
    return wire.substr(start, wire.find('"', start) - start);
}

// Runs a row against a controller of its own.
void run(const CommandCase& row);

}  // namespace zk::test
