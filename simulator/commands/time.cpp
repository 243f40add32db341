// Simulated time: {"command": "zk_sim_speed", "speed": 10} and {"command": "zk_sim_time"}.

#include "world/time.h"

#include "commands/commands.h"
#include "wire/command_table.h"

namespace sim {
namespace {

bool set_speed(SimulatedTime& time, const Call& call) {
    const bool at_once = call.request.is_text("speed") && call.request.text("speed") == kAtOnceName;
    const double speed = at_once ? kAtOnce : call.request.number("speed");
    if (!at_once && !(speed >= kSlowest && speed <= kFastest)) throw BadRequest("\"speed\" is from 0.1 to 100, or max");
    time.speed = speed;
    return true;
}

Json now(const SimulatedTime& time, const Call&) {
    return {{"time", time.milliseconds}, {"speed", time.speed == kAtOnce ? Json(kAtOnceName) : Json(time.speed)}};
}

}  // namespace

void add_time_commands(CommandTable& table, SimulatedTime& time) {
    table.set("zk_sim_speed", "done", with(set_speed, time)).keys = {"speed"};
    table.query("zk_sim_time", "zk_sim_time", with(now, time));
}

}  // namespace sim
