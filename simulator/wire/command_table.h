#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "wire/client.h"
#include "wire/request.h"

namespace sim {

class Controller;

// The arguments of a command: the controller, the client and the request.
struct Call {
    Controller& controller;
    std::shared_ptr<Client> client;
    const Request& request;
};

using Action = std::function<bool(Call&)>;
using Query = std::function<Json(Call&)>;
using Hook = std::function<void(Call&)>;

struct Command {
    std::string literal;              // by which the client classifies the reply
    std::string key;                  // of the acknowledgement; empty if the command has none
    Action action;                    // of a setter
    Query query;                      // of a query
    Hook refused;                     // runs after a false acknowledgement
    bool acknowledged_later = false;  // the action itself acknowledges at its end; a refusal goes out at once
};

// The commands by name. A client classifies a reply by searching its text for literals in a fixed order; the first one
// found decides. A row names the literal of its reply. No other key or value of the reply may contain an earlier one.
class CommandTable {
 public:
    // Acknowledged with {"command": <literal>, <key>: true or false}. The literal is the command's name unless the row
    // sets another. Also false when the action throws BadRequest or NoPath.
    Command& set(const std::string& name, const std::string& key, Action action);

    // Answered with {"state": <literal>, ...} and the keys that `query` returns. Not answered after a BadRequest.
    Command& query(const std::string& name, const std::string& literal, Query query);

    // Executed without an answer.
    Command& order(const std::string& name, Hook hook);

    const Command* find(const std::string& name) const;
    std::vector<std::string> names() const;

 private:
    Command& add(const std::string& name, Command command);

    std::map<std::string, Command> commands_;
};

}  // namespace sim
