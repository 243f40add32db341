#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "client.h"
#include "request.h"

namespace sim {

class Controller;

// What a command has before it: the controller it acts on, who asks, and what is asked.
struct Call {
    Controller& controller;
    std::shared_ptr<Client> client;
    const Request& request;
};

using Action = std::function<bool(Call&)>;
using Query = std::function<Json(Call&)>;
using Hook = std::function<void(Call&)>;

struct Command {
    std::string literal;              // by which the client finds the reply
    std::string key;                  // of the acknowledgement; empty when the command has none
    Action action;                    // of a command that is acknowledged or not answered
    Query query;                      // of one that is answered
    Hook refused;                     // runs behind a false acknowledgement
    bool acknowledged_later = false;  // by the action itself, when what it began has ended; a refusal at once
};

// The commands by name. A client tells replies apart by searching their text for literals in a fixed order, and the
// first one found decides. A row names the literal of its own reply; no other key or value of the reply may hold an
// earlier one.
class CommandTable {
 public:
    // Acknowledged with {"command": <literal>, <key>: true or false}, the literal being the name unless the row is told
    // another. False also when the action throws BadRequest or NoPath.
    Command& set(const std::string& name, const std::string& key, Action action);

    // Answered with {"state": <literal>, ...}, the rest as `query` returns it. BadRequest leaves it unanswered.
    Command& query(const std::string& name, const std::string& literal, Query query);

    // Carried out and not answered.
    Command& order(const std::string& name, Hook hook);

    const Command* find(const std::string& name) const;
    std::vector<std::string> names() const;

 private:
    Command& add(const std::string& name, Command command);

    std::map<std::string, Command> commands_;
};

}  // namespace sim
