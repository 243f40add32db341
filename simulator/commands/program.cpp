// The stored programs: list, run and change them.

#include "programs/program.h"
#include "commands/commands.h"
#include "wire/memory.h"
#include "wire/pages.h"

namespace sim {
namespace {

constexpr int kMostPrograms = 100;
constexpr size_t kLongestName = 31;  // clients store a name in 32 bytes

int id_of(const Request& request) { return request.integer("id", 1, Programs::kMaxId); }

Json program_list(const Programs& programs, const Call& call) {
    std::vector<Json> entries;
    for (const auto& [id, program] : programs.kept) {
        entries.push_back({{"id", id},
                           {"size", program.size},
                           {"speed", program.speed},
                           {"trajectory_name", program.name.substr(0, kLongestName)}});
    }
    return page_reply(page_of(call.request, kMostPrograms), entries, "trajectory_name");
}

bool start_program(Programs& programs, const Arm& arm, const Call& call) {
    const auto found = programs.kept.find(id_of(call.request));
    const int speed = call.request.integer("speed", 1, 100);
    if (found == programs.kept.end() || !arm.reason_not_to_move().empty()) return false;
    return programs.start(found->second, speed, false, call.client);
}

bool delete_program(Programs& programs, const Call& call) {
    const int id = id_of(call.request);
    if (programs.runs(id)) return false;
    if (programs.default_id == id) programs.default_id = 0;
    return programs.kept.erase(id) != 0;
}

bool update_program(Programs& programs, const Call& call) {
    const auto found = programs.kept.find(id_of(call.request));
    const std::string name = call.request.text("project_name");
    const int speed = call.request.integer("plan_speed", 1, 100);
    if (found == programs.kept.end()) return false;
    found->second.name = name;
    found->second.speed = speed;
    return true;
}

bool set_default(Programs& programs, const Call& call) {
    const int id = call.request.integer("id", 0, Programs::kMaxId);
    if (id != 0 && programs.kept.count(id) == 0) return false;
    programs.default_id = id;
    return true;
}

Json saved_programs(const Programs& programs) {
    Json list = Json::array();
    for (const auto& [id, program] : programs.kept) {
        list.push_back({{"id", id},
                        {"name", program.name},
                        {"size", program.size},
                        {"plan_speed", program.speed},
                        {"lines", program.lines}});
    }
    return {{"default", programs.default_id}, {"programs", list}};
}

void load_programs(Programs& programs, const Request& saved) {
    for (const Request& request : saved.objects("programs")) {
        Program program;
        program.id = id_of(request);
        program.name = request.text("name");
        program.size = request.integer("size", 0);
        program.speed = request.integer("plan_speed", 1, 100);
        program.lines = request.texts("lines");
        if (first_wrong_line(program.lines) != 0) throw Refusal("the program " + program.name + " is wrong");
        programs.kept[program.id] = program;
    }
    programs.default_id = saved.integer("default", 0, Programs::kMaxId);
}

}  // namespace

void add_program_commands(CommandTable& table, Memory& memory, Programs& programs, const Arm& arm) {
    memory.keep(
        "programs", [&programs] { return saved_programs(programs); },
        [&programs](const Request& saved) { load_programs(programs, saved); });
    table.query("get_program_trajectory_list", "get_program_trajectory_list", with(program_list, programs));
    table.query("get_program_run_state", "get_program_run_state",
                [&programs](const Call&) { return programs.state(); });
    table.set("set_program_id_start", "start_state", with(start_program, programs, arm));
    table.set("delete_program_trajectory", "delete_state", with(delete_program, programs));
    table.set("update_program_trajectory", "update_state", with(update_program, programs));
    table.set("set_default_run_program", "set_state", with(set_default, programs));
    table.query("get_default_run_program", "get_default_run_program", [&programs](const Call&) {
        return Json{{"id", programs.default_id}};
    });
}

}  // namespace sim
