// Global waypoints: named poses, stored as clients sent them.

#include <map>

#include "commands/commands.h"
#include "motion/arm.h"
#include "wire/command_table.h"
#include "wire/memory.h"
#include "wire/pages.h"

namespace sim {
namespace {

constexpr size_t kMaxGlobalWaypoints = 100;
constexpr int kMostWaypoints = 30;

using GlobalWaypoints = std::map<std::string, Json>;

// Clients store the texts in fields of this size, with a terminating zero.
Json waypoint_of(const Request& request, const Arm& arm) {
    return {{"point_name", request.text("point_name", 15)}, {"joint", request.integers("joint", arm.joint_count())},
            {"pose", request.integers("pose", 6)},          {"work_frame", request.text("work_frame", 11)},
            {"tool_frame", request.text("tool_frame", 11)}, {"time", request.text("time", 49)}};
}

bool add(const Arm& arm, const Request& request, GlobalWaypoints& waypoints) {
    const Json waypoint = waypoint_of(request, arm);
    const std::string& name = waypoint.at("point_name").text();
    if (name.empty() || waypoints.size() == kMaxGlobalWaypoints) return false;
    return waypoints.emplace(name, waypoint).second;
}

bool update(const Arm& arm, const Call& call, GlobalWaypoints& waypoints) {
    const Json waypoint = waypoint_of(call.request, arm);
    const auto found = waypoints.find(waypoint.at("point_name").text());
    if (found == waypoints.end()) return false;
    found->second = waypoint;
    return true;
}

Json given(const Call& call, const GlobalWaypoints& waypoints) {
    const auto found = waypoints.find(call.request.text("point_name"));
    return found == waypoints.end() ? Json{{"given_state", false}} : found->second;
}

std::vector<Json> all(const GlobalWaypoints& waypoints) {
    std::vector<Json> entries;
    for (const auto& [name, waypoint] : waypoints) entries.push_back(waypoint);
    return entries;
}

Json list(const Call& call, const GlobalWaypoints& waypoints) {
    Json reply = page_reply(page_of(call.request, kMostWaypoints), all(waypoints), "point_name");
    reply["get_state"] = true;
    return reply;
}

}  // namespace

void add_waypoint_commands(CommandTable& table, Memory& memory, const Arm& arm) {
    const auto waypoints = std::make_shared<GlobalWaypoints>();
    memory.keep(
        "waypoints",
        [waypoints] {
            return Json{{"list", all(*waypoints)}};
        },
        [&arm, waypoints](const Request& saved) {
            for (const Request& waypoint : saved.objects("list")) {
                if (!add(arm, waypoint, *waypoints)) throw Refusal("a waypoint that cannot be");
            }
        });
    table.set("add_global_waypoint", "add_state",
              [&arm, waypoints](const Call& call) { return add(arm, call.request, *waypoints); });
    table.set("update_global_waypoint", "update_state",
              [&arm, waypoints](const Call& call) { return update(arm, call, *waypoints); });
    table.set("delete_global_waypoint", "delete_state",
              [waypoints](const Call& call) { return waypoints->erase(call.request.text("point_name")) != 0; });
    table.query("given_global_waypoint", "given_global_waypoint",
                [waypoints](const Call& call) { return given(call, *waypoints); });
    table.query("get_global_waypoints_list", "get_global_waypoints_list",
                [waypoints](const Call& call) { return list(call, *waypoints); });
}

}  // namespace sim
