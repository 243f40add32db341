#include "wire/dispatcher.h"

#include "wire/note.h"

namespace sim {
namespace {

bool is_of_a_test(const Request& request) { return request.command().starts_with("zk_sim_"); }

// Those of clients may have any others.
void demand_keys(const Command& command, const Request& request) {
    if (is_of_a_test(request)) request.demand_known_keys(command.keys);
}

}  // namespace

void Dispatcher::handle(std::string_view text, const std::shared_ptr<Client>& client) const {
    carry_out(text, client);
    if (handled) handled();
}

void Dispatcher::carry_out(std::string_view text, const std::shared_ptr<Client>& client) const {
    try {
        const std::optional<Json> body = Json::parse(text);
        if (!body) throw BadRequest("a request that is no JSON");
        const Request request(*body);
        const Command* command = commands.find(request.command());
        if (!command) throw BadRequest("unknown command '" + request.command() + "'");
        if (faults.silent_on.count(request.command()) != 0) return;
        command->query ? answer(*command, {client, request}) : act(*command, {client, request});
    } catch (const std::exception& error) {
        note(client->name() + ": " + error.what());
    }
}

void Dispatcher::answer(const Command& command, const Call& call) const {
    Json reply{{"state", command.literal}};
    try {
        demand_keys(command, call.request);
        reply.update(command.query(call));
    } catch (const Refusal& refusal) {
        if (!is_of_a_test(call.request)) throw;
        reply["done"] = false;
        reply["reason"] = call.request.command() + ": " + refusal.what();
    }
    call.client->send(reply);
}

void Dispatcher::act(const Command& command, const Call& call) const {
    bool done = false;
    std::string reason;
    try {
        demand_keys(command, call.request);
        done = faults.refuse_on.count(call.request.command()) == 0 && command.action(call);
    } catch (const BadRequest& error) {
        reason = error.what();
    } catch (const Refusal& refusal) {
        reason = call.request.command() + ": " + refusal.what();
    }
    if (!reason.empty()) note(call.client->name() + ": " + reason);
    const bool later = done && command.acknowledged_later;
    if (!command.key.empty() && !later) {
        Json reply{{"command", command.literal}, {command.key, done}};
        // The controller itself states no reasons, and clients search its replies for literals.
        if (!reason.empty() && is_of_a_test(call.request)) reply["reason"] = reason;
        call.client->send(reply);
    }
    if (!done && command.refused) command.refused(call);
}

}  // namespace sim
