#include "wire/dispatcher.h"

#include "wire/note.h"

namespace sim {

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
        carry_out(*command, {client, request});
    } catch (const std::exception& error) {
        note(client->name() + ": " + error.what());
    }
}

void Dispatcher::carry_out(const Command& command, const Call& call) const {
    if (command.query) {
        Json reply{{"state", command.literal}};
        reply.update(command.query(call));
        call.client->send(reply);
        return;
    }
    bool done = false;
    std::string reason;
    try {
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
        if (!reason.empty() && call.request.command().starts_with("zk_sim_")) reply["reason"] = reason;
        call.client->send(reply);
    }
    if (!done && command.refused) command.refused(call);
}

}  // namespace sim
