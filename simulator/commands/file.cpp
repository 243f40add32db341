// Files from and to clients, and the small commands around them.

#include "commands/commands.h"
#include "devices/drag_teach.h"
#include "programs/files.h"
#include "programs/program.h"

namespace sim {
namespace {

constexpr int kMaxProject = 64 * 1024 * 1024;
constexpr int kMaxUpdate = 1024 * 1024 * 1024;

int optional_integer(const Request& request, const char* key, int low = INT_MIN, int high = INT_MAX) {
    return request.has(key) ? request.integer(key, low, high) : 0;
}

// How to handle a project. Clients may send the speed alone.
struct Plan {
    Program program;
    bool only_save;
    bool step_mode;
    bool auto_start;
};

Plan plan_of(const Request& request) {
    Plan plan;
    plan.program.name = request.text("project_name");
    plan.program.size = request.integer("file_size", 0, kMaxProject);
    plan.program.speed = request.integer("plan_speed", 1, 100);
    plan.program.id = optional_integer(request, "save_id", 0, Programs::kMaxId);
    plan.only_save = optional_integer(request, "only_save") != 0;
    plan.step_mode = optional_integer(request, "step_flag") != 0;
    plan.auto_start = optional_integer(request, "auto_start") != 0;
    return plan;
}

// Stores the project under its id, if it has one, and runs it unless the client only stores it.
int take_project(Programs& programs, Plan plan, const std::string& text, const std::shared_ptr<Client>& client) {
    plan.program.lines = program_lines(text);
    if (const int wrong = first_wrong_line(plan.program.lines)) return wrong;
    const int id = plan.program.id;
    if (id != 0) programs.kept[id] = plan.program;
    if (id != 0 && plan.auto_start) programs.default_id = id;
    if (!plan.only_save) programs.start(plan.program, plan.program.speed, plan.step_mode, client);
    return 0;
}

bool run_project(Files& files, Programs& programs, const Call& call) {
    const Plan plan = plan_of(call.request);
    if (plan.only_save ? programs.runs(plan.program.id) : programs.running()) return false;
    Reception::Order order{};
    order.file = {"project", plan.program.name, plan.program.size};
    order.keeps_text = true;
    order.fault = files.fault;
    const std::weak_ptr<Client> sender = call.client;
    order.judge = [&programs, plan, sender](const std::string& text) {
        return take_project(programs, plan, text, sender.lock());
    };
    return files.receive(call.client, std::move(order));
}

bool update_software(Files& files, const Call& call) {
    Reception::Order order{};
    order.file = {"update", call.request.text("update_name"), call.request.integer("file_size", 1, kMaxUpdate)};
    order.fault = files.fault;
    order.judge = [](const std::string&) { return 0; };
    return files.receive(call.client, std::move(order));
}

Json received_files(const Files& files, const Call&) {
    Json list = Json::array();
    for (const FileRecord& file : files.records) {
        char digest[17];
        std::snprintf(digest, sizeof digest, "%016llx", static_cast<unsigned long long>(file.digest));
        list.push_back({{"kind", file.kind}, {"name", file.name}, {"size", file.size}, {"fnv1a", digest}});
    }
    return {{"files", list}};
}

// The points of the recording follow the reply, one per line.
void save_trajectory(const DragTeach& drag, const Call& call) {
    call.request.text("trajectory_name");
    const std::vector<JointVector>& points = drag.recording();
    call.client->send({{"command", "save_trajectory"}, {"total_num", points.size()}, {"save_state", !points.empty()}});
    for (const JointVector& point : points) call.client->send({{"point", thousandths(point)}});
}

void add_versions(CommandTable& table) {
    for (const char* version : {"lift_version", "sale_version"}) {
        table.set(std::string("set_") + version, version, [version](const Call& call) {
            call.request.integer(version);
            return true;
        });
    }
    table.query("get_tool_hardware_version", "get_tool_hardware_version", [](const Call&) {
        return Json{{"version", 0x200}};
    });
}

}  // namespace

void add_file_commands(CommandTable& table, Files& files, Programs& programs, const DragTeach& drag) {
    table.set("run_project", "project_state", with(run_project, files, programs));
    table.set("update_software", "update_state", with(update_software, files)).literal = "run_update_software";
    table.order("save_trajectory", with(save_trajectory, drag));
    table.query("zk_sim_files", "zk_sim_files", with(received_files, files));
    table.set("popup", "popup_result", [](const Call& call) { return call.request.flag("popup_result"); });
    table.set("online_next", "state", [&programs](const Call&) { return programs.next(); });
    add_versions(table);
}

}  // namespace sim
