// The stored programs: list, run and change them.

#include "commands/commands.h"
#include "controller.h"
#include "wire/pages.h"

namespace sim {
namespace {

constexpr int kMostOnAPage = 100;
constexpr size_t kLongestName = 31;  // clients store a name in 32 bytes

int id_of(const Request& request) { return request.integer("id", 1, Programs::kMaxId); }

Json program_list(Call& call) {
    std::vector<Json> entries;
    for (const auto& [id, program] : call.controller.programs.kept) {
        entries.push_back({{"id", id},
                           {"size", program.size},
                           {"speed", program.speed},
                           {"trajectory_name", program.name.substr(0, kLongestName)}});
    }
    return page_reply(page_of(call.request, kMostOnAPage), entries, "trajectory_name");
}

bool start_program(Call& call) {
    Controller& controller = call.controller;
    const auto found = controller.programs.kept.find(id_of(call.request));
    const int speed = call.request.integer("speed", 1, 100);
    if (found == controller.programs.kept.end() || !controller.arm.reason_not_to_move().empty()) return false;
    return controller.programs.start(found->second, speed, false, call.client);
}

bool delete_program(Call& call) {
    Programs& programs = call.controller.programs;
    const int id = id_of(call.request);
    if (programs.runs(id)) return false;
    if (programs.default_id == id) programs.default_id = 0;
    return programs.kept.erase(id) != 0;
}

bool update_program(Call& call) {
    Programs& programs = call.controller.programs;
    const auto found = programs.kept.find(id_of(call.request));
    const std::string name = call.request.text("project_name");
    const int speed = call.request.integer("plan_speed", 1, 100);
    if (found == programs.kept.end()) return false;
    found->second.name = name;
    found->second.speed = speed;
    return true;
}

bool set_default(Call& call) {
    Programs& programs = call.controller.programs;
    const int id = call.request.integer("id", 0, Programs::kMaxId);
    if (id != 0 && programs.kept.count(id) == 0) return false;
    programs.default_id = id;
    return true;
}

}  // namespace

void add_program_commands(CommandTable& table) {
    table.query("get_program_trajectory_list", "get_program_trajectory_list", program_list);
    table.query("get_program_run_state", "get_program_run_state",
                [](Call& call) { return call.controller.programs.state(call.controller); });
    table.set("set_program_id_start", "start_state", start_program);
    table.set("delete_program_trajectory", "delete_state", delete_program);
    table.set("update_program_trajectory", "update_state", update_program);
    table.set("set_default_run_program", "set_state", set_default);
    table.query("get_default_run_program", "get_default_run_program", [](Call& call) {
        return Json{{"id", call.controller.programs.default_id}};
    });
}

}  // namespace sim
