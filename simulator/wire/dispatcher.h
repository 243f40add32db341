#pragma once

#include <set>
#include <string>
#include <string_view>

#include "wire/command_table.h"

namespace sim {

// Faults of all replies, which a client injects.
struct Faults {
    std::set<std::string> silent_on;  // requests ignored
    std::set<std::string> refuse_on;  // actions refused
    int delay_ms = 0;                 // before each message is sent
};

// Executes requests.
class Dispatcher {
 public:
    // A malformed request causes at most a note.
    void handle(std::string_view text, const std::shared_ptr<Client>& client) const;

    CommandTable commands;
    Faults faults;

 private:
    void carry_out(const Command& command, const Call& call) const;
};

}  // namespace sim
