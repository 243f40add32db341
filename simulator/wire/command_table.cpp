#include "wire/command_table.h"

namespace sim {

Command& CommandTable::set(std::string_view name, std::string_view key, Action action) {
    return add(name, {.literal = std::string(name),
                      .key = std::string(key),
                      .action = std::move(action),
                      .query = {},
                      .refused = {}});
}

Command& CommandTable::query(std::string_view name, std::string_view literal, Query query) {
    return add(name,
               {.literal = std::string(literal), .key = {}, .action = {}, .query = std::move(query), .refused = {}});
}

Command& CommandTable::order(std::string_view name, Hook hook) {
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

Command& CommandTable::add(std::string_view name, Command command) {
    const auto [row, added] = commands_.emplace(name, std::move(command));
    if (!added) throw std::logic_error("two commands named " + std::string(name));
    return row->second;
}

}  // namespace sim
