#include "command_table.h"

namespace sim {

Command& CommandTable::set(const std::string& name, const std::string& key, Action action) {
    return add(name, {.key = key, .state = {}, .action = std::move(action), .query = {}, .refused = {}});
}

Command& CommandTable::query(const std::string& name, const std::string& state, Query query) {
    return add(name, {.key = {}, .state = state, .action = {}, .query = std::move(query), .refused = {}});
}

Command& CommandTable::order(const std::string& name, Hook hook) {
    return add(name, {.key = {},
                      .state = {},
                      .action = [hook = std::move(hook)](Call& call) { return hook(call), true; },
                      .query = {},
                      .refused = {}});
}

const Command* CommandTable::find(const std::string& name) const {
    const auto found = commands_.find(name);
    return found == commands_.end() ? nullptr : &found->second;
}

Command& CommandTable::add(const std::string& name, Command command) {
    const auto [row, added] = commands_.emplace(name, std::move(command));
    if (!added) throw std::logic_error("two commands named " + name);
    return row->second;
}

}  // namespace sim
