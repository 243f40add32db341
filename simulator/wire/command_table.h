#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "wire/client.h"
#include "wire/request.h"

namespace sim {

// The arguments of a command.
struct Call {
    std::shared_ptr<Client> client;
    const Request& request;
};

using Action = std::function<bool(const Call&)>;
using Query = std::function<Json(const Call&)>;
using Hook = std::function<void(const Call&)>;

// The function, called with the parts of the controller on which it acts in front of its call.
template <class Function, class... Parts>
auto with(Function function, Parts&... parts) {
    return [function, &parts...](const Call& call) { return function(parts..., call); };
}

struct Command {
    std::string literal;                 // by which the client classifies the reply
    std::string key;                     // of the acknowledgement; empty if the command has none
    Action action;                       // of a setter
    Query query;                         // of a query
    Hook refused;                        // runs after a false acknowledgement
    bool acknowledged_later = false;     // the action itself acknowledges at its end; a refusal goes out at once
    std::vector<std::string> keys = {};  // which the requests of tests, zk_sim_..., may have; others may have any
};

// The commands by name. A client classifies a reply by searching its text for literals in a fixed order; the first one
// found decides. A row names the literal of its reply. No other key or value of the reply may contain an earlier one.
class CommandTable {
 public:
    // Acknowledged with {"command": <literal>, <key>: true or false}. The literal is the command's name unless the row
    // sets another. Also false when the action throws a Refusal.
    Command& set(std::string_view name, std::string_view key, Action action);

    // Answered with {"state": <literal>, ...} and the keys that `query` returns. Not answered after a BadRequest.
    Command& query(std::string_view name, std::string_view literal, Query query);

    // Executed without an answer.
    Command& order(std::string_view name, Hook hook);

    const Command* find(const std::string& name) const;
    std::vector<std::string> names() const;

 private:
    Command& add(std::string_view name, Command command);

    std::map<std::string, Command> commands_;
};

}  // namespace sim
