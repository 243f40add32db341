#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "wire/command_table.h"
#include "wire/disturbance.h"

namespace sim {

// Faults of all replies, which a client injects.
struct Faults : DisturbedWire {
    std::set<std::string> silent_on;  // requests ignored
    std::set<std::string> refuse_on;  // actions refused
};

// Executes requests.
class Dispatcher {
 public:
    // A malformed request causes at most a note.
    void handle(std::string_view text, const std::shared_ptr<Client>& client) const;

    CommandTable commands;
    Faults faults;

    // What requests ask of those who serve the controller.
    std::function<void()> handled;                                            // a request has ended
    std::function<void(const Client& spared, bool reset)> disconnect_others;  // all clients but this one
    std::function<void(int milliseconds)> refuse_clients;                     // new ones, for this time
    std::function<void(int pause_ms)> restart;                                // lose all state

 private:
    void carry_out(std::string_view text, const std::shared_ptr<Client>& client) const;
    void answer(const Command& command, const Call& call) const;
    void act(const Command& command, const Call& call) const;
};

}  // namespace sim
