#include "command.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "arms.h"
#include "remedy.h"
#include "report.h"

namespace tool {
namespace {

Exit exit_of(const Json& report) {
    const auto fails = [](const Json& row) { return row.is_object() && row.value("answer", "ok") != "ok"; };
    if (report.is_array()) return std::any_of(report.begin(), report.end(), fails) ? kFailed : kDone;
    if (!report.is_object() || report.value("ok", true)) return kDone;
    return report.value("reachable", true) ? kFailed : kNoArm;
}

}  // namespace

void ArmOption::add_to(CLI::App& command) {
    command.add_option("-a,--arm", text_, "address HOST[:PORT] of the controller, or a name of arms.json")
        ->envname("ZK_ARM");
}

Address ArmOption::address() const {
    if (text_.empty()) throw Failure(kUsage, "no arm is named: write --arm HOST[:PORT], or set ZK_ARM");
    return find_arm(text_);
}

zk::Arm ArmOption::connect(const zk::ConnectOptions& options) const {
    const Address address = this->address();
    zk::Result<zk::Arm> arm = zk::Arm::connect(address.host, address.port, options);
    if (arm) return std::move(*arm);
    throw Failure(kNoArm, sentence_of_no_arm(text_, address.host, arm.error()));
}

zk::Model model_called(const std::string& name) {
    zk::Result<zk::Model> model = zk::Model::named(name);
    if (!model) {
        throw Failure(kUsage, "no arm is called '" + name +
                                  "': there are ZK65, ZK75, 63, ORB65, ORB63, each with -B, -ZF or -6F, 62-B and 72-B");
    }
    return std::move(*model);
}

void ModelOption::add_to(CLI::App& command) {
    command.add_option("-m,--model", name_, "an arm by its name, such as ZK65-B; without it, the connected one");
    arm_.add_to(command);
}

zk::Model ModelOption::load() const {
    if (name_.empty() && !arm_.is_given()) throw Failure(kUsage, "no arm is named: write --model NAME or --arm HOST");
    return name_.empty() ? arm_.connect().model().value() : model_called(name_);
}

void add_looking(CLI::App& zk, const std::string& name, const std::string& what, std::function<Json()> look,
                 const Setup& setup, Show show) {
    CLI::App* command = zk.add_subcommand(name, what);
    const auto json = std::make_shared<bool>(false);
    command->add_flag("--json", *json, "print JSON");
    if (setup) setup(*command);
    command->callback([json, look = std::move(look), show = std::move(show)] {
        const Json report = look();
        if (*json) {
            std::cout << report.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
        } else {
            show ? show(report, std::cout) : print(report, std::cout);
        }
        if (const Exit exit = exit_of(report); exit != kDone) throw CLI::RuntimeError(exit);
    });
}

void add_looking_at_arm(CLI::App& zk, const std::string& name, const std::string& what,
                        std::function<Json(const zk::Arm&)> look, const Setup& setup, Show show) {
    const auto where = std::make_shared<ArmOption>();
    add_looking(
        zk, name, what, [where, look = std::move(look)] { return look(where->connect()); },
        [&](CLI::App& command) {
            where->add_to(command);
            if (setup) setup(command);
        },
        std::move(show));
}

}  // namespace tool
