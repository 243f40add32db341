#include <algorithm>
#include <iostream>
#include <memory>

#include "move/plan.h"
#include "programs/checker.h"
#include "programs/programs.h"
#include "progress.h"
#include "report.h"

namespace tool {
namespace {

using namespace zk::literals;

constexpr int kMostIds = 200;

struct SendRequest {
    ArmOption arm;
    std::string program;  // a file, or for run an id
    int id = 0;
    int speed = 20;
    bool yes = false;

    void add_to(CLI::App& command) {
        arm.add_to(command);
        command.add_option("-s,--speed", speed, "percent of the program's speeds")
            ->capture_default_str()
            ->check(CLI::Range(1, 100));
    }
};

void send(const zk::Arm& arm, const Program& program, const SendRequest& request, bool runs) {
    ProjectSendParams parameters{};
    program.path.copy(parameters.project_path, sizeof parameters.project_path);
    parameters.project_path_len = static_cast<int>(program.path.size());
    parameters.plan_speed = request.speed;
    parameters.only_save = runs ? 0 : 1;
    parameters.save_id = request.id;
    Progress progress("sending");
    const auto show = [](std::int64_t sent, std::int64_t total, void* bar) {
        static_cast<Progress*>(bar)->show(static_cast<double>(sent) / static_cast<double>(total));
    };
    std::int32_t line = 0;
    const int status = ZK_Send_TrajectoryFile_With_Progress(arm.handle(), &line, parameters, show, &progress);
    if (status == ZK_BAD_PATH) {
        throw Failure(kFailed, "the controller refuses " + program.path +
                                   (line > 0 ? ": line " + std::to_string(line) + " is wrong" : ""));
    }
    if (status != ZK_OK) zk::Result<void>(zk::Unexpected(zk::make_error(status, "Send_TrajectoryFile"))).value();
}

Program sendable_program(const std::string& path) {
    if (path.size() > ZK_PATH_SIZE) {
        throw Failure(kUsage, "the path has " + std::to_string(path.size()) + " bytes; " +
                                  std::to_string(ZK_PATH_SIZE) + " can be sent");
    }
    return read_program(path);
}

void ask(const zk::Arm& arm, const SendRequest& request) {
    check_ready(arm);
    if (!request.yes && !confirmed()) throw Failure(kFailed, "not run");
}

// An error ends a program too.
void await_end(const zk::Arm& arm) {
    arm.programs().wait().value();
    check_ready(arm);
}

void run_file(const SendRequest& request) {
    const Program program = sendable_program(request.program);
    const zk::Arm arm = connect_to_move(request.arm);
    const zk::Model model = arm.model().value();
    const Verdict verdict = check(program, model, arm.state().value().joints, request.speed);
    if (const Checked* fault = verdict.first_fault())
        throw Failure(kUsage, program.path + ", line " + std::to_string(fault->line) + ": " + fault->fault);
    print(Json{{"program", program.path}, {"time_s", rounded(verdict.seconds, 1)}, {"speed_percent", request.speed}},
          std::cout);
    ask(arm, request);
    send(arm, program, request, true);
    await_end(arm);
    // Nobody reports how a program ended that the controller does not keep.
    const zk::Pose end = model.forward(verdict.end).value(), now = arm.pose().value();
    if ((end.position - now.position).norm() > 1_mm || (end.rotation.inverse() * now.rotation).angle() > 0.5_deg)
        throw Failure(kFailed, "the program ended before its end");
}

void run_kept(const SendRequest& request, int id) {
    const zk::Arm arm = connect_to_move(request.arm);
    const std::vector<zk::Program> kept = arm.programs().list().value();
    const auto program = std::find_if(kept.begin(), kept.end(), [id](const zk::Program& one) { return one.id == id; });
    if (program == kept.end()) throw Failure(kUsage, "the controller keeps no program " + std::to_string(id));
    print(Json{{"program", id}, {"name", program->name}, {"speed_percent", request.speed}}, std::cout);
    ask(arm, request);
    arm.programs().start(id, zk::percent(request.speed)).value();
    await_end(arm);
}

void run(const SendRequest& request) {
    const bool is_id = !request.program.empty() && request.program.size() < 7 &&
                       request.program.find_first_not_of("0123456789") == std::string::npos;
    if (is_id) {
        run_kept(request, std::stoi(request.program));
    } else {
        run_file(request);
    }
    std::cout << "ended\n";
}

}  // namespace

void add_send(CLI::App& zk) {
    const auto request = std::make_shared<SendRequest>();
    CLI::App* command = zk.add_subcommand("send", "send a program, which the controller keeps");
    request->add_to(*command);
    command->add_option("--id", request->id, "the number to keep it under")->required()->check(CLI::Range(1, kMostIds));
    command->add_option("FILE", request->program, "the program")->required();
    command->callback([request] {
        const Program program = sendable_program(request->program);
        send(request->arm.connect(), program, *request, false);
        std::cout << program.path << ": sent, " << program.text.size() << " bytes\n";
    });
}

void add_run(CLI::App& zk) {
    const auto request = std::make_shared<SendRequest>();
    CLI::App* command =
        zk.add_subcommand("run", "run a program, after checks and a question, until its end; Ctrl-C stops the arm");
    request->add_to(*command);
    command->add_flag("-y,--yes", request->yes, "do not ask");
    command->add_option("PROGRAM", request->program, "a file, or the number of a program that the controller keeps")
        ->required();
    command->callback([request] { run(*request); });
}

}  // namespace tool
