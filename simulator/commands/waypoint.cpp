// Global waypoints: named poses, stored as clients sent them.

#include <map>

#include "commands/commands.h"
#include "controller.h"
#include "wire/pages.h"

namespace sim {
namespace {

constexpr size_t kMaxGlobalWaypoints = 100;
constexpr int kMostOnAPage = 30;

using GlobalWaypoints = std::map<std::string, Json>;

std::string short_text(const Request& request, const char* key, size_t most) {
    const std::string text = request.text(key);
    if (text.size() > most) throw BadRequest(request.command() + ": \"" + key + "\" is too long");
    return text;
}

// Clients store the texts in fields of this size, with a terminating zero.
Json waypoint_of(const Call& call) {
    const Request& request = call.request;
    return {{"point_name", short_text(request, "point_name", 15)},
            {"joint", request.integers("joint", call.controller.arm.joint_count())},
            {"pose", request.integers("pose", 6)},
            {"work_frame", short_text(request, "work_frame", 11)},
            {"tool_frame", short_text(request, "tool_frame", 11)},
            {"time", short_text(request, "time", 49)}};
}

bool add(Call& call, GlobalWaypoints& waypoints) {
    const Json waypoint = waypoint_of(call);
    const std::string name = waypoint.at("point_name");
    if (name.empty() || waypoints.size() == kMaxGlobalWaypoints) return false;
    return waypoints.emplace(name, waypoint).second;
}

bool update(Call& call, GlobalWaypoints& waypoints) {
    const Json waypoint = waypoint_of(call);
    const auto found = waypoints.find(waypoint.at("point_name"));
    if (found == waypoints.end()) return false;
    found->second = waypoint;
    return true;
}

Json given(Call& call, const GlobalWaypoints& waypoints) {
    const auto found = waypoints.find(call.request.text("point_name"));
    return found == waypoints.end() ? Json{{"given_state", false}} : found->second;
}

Json list(Call& call, const GlobalWaypoints& waypoints) {
    std::vector<Json> entries;
    for (const auto& [name, waypoint] : waypoints) entries.push_back(waypoint);
    Json reply = page_reply(page_of(call.request, kMostOnAPage), entries, "point_name");
    reply["get_state"] = true;
    return reply;
}

}  // namespace

void add_waypoint_commands(CommandTable& table) {
    const auto waypoints = std::make_shared<GlobalWaypoints>();
    table.set("add_global_waypoint", "add_state", [waypoints](Call& call) { return add(call, *waypoints); });
    table.set("update_global_waypoint", "update_state", [waypoints](Call& call) { return update(call, *waypoints); });
    table.set("delete_global_waypoint", "delete_state",
              [waypoints](Call& call) { return waypoints->erase(call.request.text("point_name")) != 0; });
    table.query("given_global_waypoint", "given_global_waypoint",
                [waypoints](Call& call) { return given(call, *waypoints); });
    table.query("get_global_waypoints_list", "get_global_waypoints_list",
                [waypoints](Call& call) { return list(call, *waypoints); });
}

}  // namespace sim
