#include "wire/command_table.h"

namespace sim {

Command& CommandTable::set(const std::string& name, const std::string& key, Action action) {
    return add(name, {.literal = name, .key = key, .action = std::move(action), .query = {}, .refused = {}});
}

Command& CommandTable::query(const std::string& name, const std::string& literal, Query query) {
    return add(name, {.literal = literal, .key = {}, .action = {}, .query = std::move(query), .refused = {}});
}

Command& CommandTable::order(const std::string& name, Hook hook) {
    const auto action = [hook = std::move(hook)](const Call& call) {
        hook(call);
        return true;
    };
    return add(name, {.literal = {}, .key = {}, .action = action, .query = {}, .refused = {}});
}

const Command* CommandTable::find(const std::string& name) const {
    const auto found = commands_.find(name);
    return found == commands_.end() ? nullptr : &found->second;
}

std::vector<std::string> CommandTable::names() const {
    std::vector<std::string> names;
    for (const auto& [name, command] : commands_) names.push_back(name);
    return names;
}

Command& CommandTable::add(const std::string& name, Command command) {
    const auto [row, added] = commands_.emplace(name, std::move(command));
    if (!added) throw std::logic_error("two commands named " + name);
    return row->second;
}

}  // namespace sim
