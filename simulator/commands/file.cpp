// Files from and to clients, and the small commands around them.

#include "commands/commands.h"
#include "controller.h"

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
int take_project(Controller& controller, Plan plan, const std::string& text, const std::shared_ptr<Client>& client) {
    plan.program.lines = program_lines(text);
    if (const int wrong = first_wrong_line(plan.program.lines)) return wrong;
    const int id = plan.program.id;
    if (id != 0) controller.programs.kept[id] = plan.program;
    if (id != 0 && plan.auto_start) controller.programs.default_id = id;
    if (!plan.only_save) controller.programs.start(plan.program, plan.program.speed, plan.step_mode, client);
    return 0;
}

bool run_project(Call& call) {
    Controller& controller = call.controller;
    const Plan plan = plan_of(call.request);
    if (plan.only_save ? controller.programs.runs(plan.program.id) : controller.programs.running()) return false;
    Reception::Order order{};
    order.file = {"project", plan.program.name, plan.program.size};
    order.keeps_text = true;
    order.fault = controller.faults.transfer;
    const std::weak_ptr<Client> sender = call.client;
    order.judge = [&controller, plan, sender](const std::string& text) {
        return take_project(controller, plan, text, sender.lock());
    };
    return controller.files.receive(call.client, std::move(order));
}

bool update_software(Call& call) {
    Reception::Order order{};
    order.file = {"update", call.request.text("update_name"), call.request.integer("file_size", 1, kMaxUpdate)};
    order.fault = call.controller.faults.transfer;
    order.judge = [](const std::string&) { return 0; };
    return call.controller.files.receive(call.client, std::move(order));
}

Json received_files(Call& call) {
    Json list = Json::array();
    for (const FileRecord& file : call.controller.files.records) {
        char digest[17];
        std::snprintf(digest, sizeof digest, "%016llx", static_cast<unsigned long long>(file.digest));
        list.push_back({{"kind", file.kind}, {"name", file.name}, {"size", file.size}, {"fnv1a", digest}});
    }
    return {{"files", list}};
}

// The points of the recording follow the reply, one per line.
void save_trajectory(Call& call) {
    call.request.text("trajectory_name");
    const std::vector<JointVector>& points = call.controller.drag.recording();
    call.client->send({{"command", "save_trajectory"}, {"total_num", points.size()}, {"save_state", !points.empty()}});
    for (const JointVector& point : points) call.client->send({{"point", thousandths(point)}});
}

void add_versions(CommandTable& table) {
    for (const char* version : {"lift_version", "sale_version"}) {
        table.set(std::string("set_") + version, version, [version](Call& call) {
            call.request.integer(version);
            return true;
        });
    }
    table.query("get_tool_hardware_version", "get_tool_hardware_version", [](Call&) {
        return Json{{"version", 0x200}};
    });
}

}  // namespace

void add_file_commands(CommandTable& table) {
    table.set("run_project", "project_state", run_project);
    table.set("update_software", "update_state", update_software).literal = "run_update_software";
    table.order("save_trajectory", save_trajectory);
    table.query("zk_sim_files", "zk_sim_files", received_files);
    table.set("popup", "popup_result", [](Call& call) { return call.request.flag("popup_result"); });
    table.set("online_next", "state", [](Call& call) { return call.controller.programs.next(); });
    add_versions(table);
}

}  // namespace sim
