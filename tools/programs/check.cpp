#include <memory>

#include "programs/checker.h"
#include "programs/programs.h"
#include "quantity.h"
#include "report.h"

namespace tool {
namespace {

struct CheckRequest {
    ModelOption model;
    std::string path;
    std::vector<std::string> from;
    double speed = 100;
};

Json report_on(const CheckRequest& request) {
    const Program program = read_program(request.path);
    const zk::Model model = request.model.load();
    const zk::Joints from = request.from.empty() ? zk::Joints::from_degrees(std::vector<double>(model.joint_count()))
                                                 : parse_joints(request.from, model.joint_count());
    const Verdict verdict = check(program, model, from, request.speed);
    Json lines = Json::array();
    for (const Checked& one : verdict.lines) {
        lines.push_back({{"line", one.line},
                         {"command", one.command},
                         {"time_s", rounded(one.seconds, 2)},
                         {"to_limit_deg", rounded(one.to_limit_deg, 1)},
                         {"manipulability_percent", rounded(one.manipulability, 1)},
                         {"fault", one.fault.empty() ? Json() : Json(one.fault)}});
    }
    return {{"ok", !verdict.first_fault()}, {"time_s", rounded(verdict.seconds, 2)}, {"lines", lines}};
}

}  // namespace

void add_check(CLI::App& zk) {
    const auto request = std::make_shared<CheckRequest>();
    add_looking(
        zk, "check", "go through a program on a model: limits, reach, jumps, singular places, time",
        [request] { return report_on(*request); },
        [&](CLI::App& command) {
            request->model.add_to(command);
            command.add_option("--from", request->from, "joints where it starts, J1,J2,...; without it, all 0")
                ->delimiter(',')
                ->allow_extra_args(false);
            command.add_option("-s,--speed", request->speed, "percent of the program's speeds")
                ->capture_default_str()
                ->check(CLI::Range(1, 100));
            command.add_option("PROGRAM", request->path, "a file with one JSON object a line")->required();
            command.footer(
                "Splines are checked along straight lines. Times are estimates, between rests: of the joints' limits, "
                "and "
                "those of the tool in a new controller: 250 mm/s, 600 mrad/s. Fast paths of the tool take longer.");
        });
}

}  // namespace tool
