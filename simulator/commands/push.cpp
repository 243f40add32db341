// Setting and reading the real-time push.

#include <arpa/inet.h>

#include "commands/commands.h"
#include "motion/arm.h"
#include "push/push.h"
#include "wire/command_table.h"

namespace sim {
namespace {

struct Custom {
    const char* key;
    bool PushSettings::*flag;
};

constexpr Custom kCustom[] = {{"joint_speed", &PushSettings::joint_speed},
                              {"lift_state", &PushSettings::lift_state},
                              {"expand_state", &PushSettings::expand_state},
                              {"arm_current_status", &PushSettings::arm_current_status},
                              {"hand", &PushSettings::hand},
                              {"aloha_state", &PushSettings::aloha_state}};

std::string ipv4_address(const Request& request, const char* key) {
    const std::string text = request.text(key);
    in_addr address;
    if (inet_pton(AF_INET, text.c_str(), &address) != 1) throw BadRequest("\"" + text + "\" is no IPv4 address");
    return text;
}

// Omitted keys leave their settings unchanged; one wrong value leaves all of them unchanged.
bool set_realtime_push(PushSettings& in_force, const Call& call) {
    constexpr int kMaxCycle = 2000;
    const Request& request = call.request;
    PushSettings settings = in_force;
    if (request.has("cycle")) settings.cycle = request.integer("cycle", 1, kMaxCycle);
    if (request.has("enable")) settings.enable = request.flag("enable");
    if (request.has("port")) settings.port = request.integer("port", 1, 65535);
    if (request.has("force_coordinate")) settings.force_coordinate = request.integer("force_coordinate", 0, 2);
    if (request.has("ip")) settings.ip = ipv4_address(request, "ip");
    if (request.has("custom")) {
        const Request custom = request.object("custom");
        for (const auto& [key, flag] : kCustom) {
            if (custom.has(key)) settings.*flag = custom.flag(key);
        }
    }
    in_force = settings;
    return true;
}

Json get_realtime_push(const PushSettings& settings, const Arm& arm, const Call&) {
    Json reply{{"cycle", settings.cycle}, {"enable", settings.enable}, {"port", settings.port}};
    if (arm.model().sensor != Sensor::kBare) reply["force_coordinate"] = settings.force_coordinate;
    reply["ip"] = settings.ip;
    for (const auto& [key, flag] : kCustom) reply["custom"][key] = settings.*flag;
    return reply;
}

}  // namespace

void add_push_commands(CommandTable& table, PushSettings& settings, const Arm& arm) {
    table.set("set_realtime_push", "state", with(set_realtime_push, settings));
    table.query("get_realtime_push", "get_realtime_push", with(get_realtime_push, settings, arm));
}

}  // namespace sim
