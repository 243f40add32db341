// zk: look at an arm, move it, compute on its model.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>

#include "command.h"
#include "completion.h"
#include "look/look.h"
#include "move/move.h"
#include "offline/offline.h"
#include "programs/programs.h"
#include "proxy/proxy.h"
#include "recording/recording.h"
#include "remedy.h"
#include "simulate.h"

namespace tool {
namespace {

struct Group {
    const char* name;
    std::vector<void (*)(CLI::App&)> commands;
};

const std::array kGroups{
    Group{"Looking", {add_info, add_state, add_watch, add_doctor, add_latency, add_list, add_explain, add_view}},
    Group{"Moving", {add_move, add_home, add_jog, add_stop, add_clear}},
    Group{"Computing, without an arm", {add_fk, add_ik, add_urdf, add_map}},
    Group{"Programs", {add_check, add_send, add_run, add_waypoints}},
    Group{"Recording", {add_record, add_plot, add_export, add_replay, add_proxy}},
    Group{"Simulating", {add_simulate}},
    Group{"Shells", {add_completion}},
};

// The exit status of an error that a command did not foresee.
Exit exit_of(const zk::Error& error) {
    switch (error.status) {
        case ZK_NOT_CONNECTED:
        case ZK_LOST:
        case ZK_TIMEOUT:
            return kNoArm;
        case ZK_BAD_ARGUMENT:
            return kUsage;
        default:
            return kFailed;
    }
}

int run(int argc, char** argv) {
    CLI::App zk("Looks at robot arms, moves them, and computes on their models.", "zk");
    zk.set_version_flag("--version", "zk " ZK_TOOL_VERSION);
    zk.require_subcommand(1);
    zk.failure_message(
        [](const CLI::App*, const CLI::Error& error) { return "zk: " + std::string(error.what()) + ": see --help\n"; });
    zk.footer(
        "An arm is named by --arm HOST[:PORT], by ZK_ARM, or by a name of ~/.config/zk/arms.json.\n"
        "Exit status: 0 done, 1 refused or found wrong, 2 not usable as written, 3 no arm, 130 interrupted.");
    for (const Group& group : kGroups) {
        for (const auto add : group.commands) {
            const std::size_t before = zk.get_subcommands({}).size();
            add(zk);
            zk.get_subcommands({}).at(before)->group(group.name);
        }
    }
    try {
        zk.parse(argc, argv);
        if (!std::cout.flush())
            throw Failure(kFailed, std::string("standard output cannot be written: ") + std::strerror(errno));
        return kDone;
    } catch (const CLI::RuntimeError& end) {
        return end.get_exit_code();
    } catch (const CLI::RequiredError& error) {
        if (argc < 2 || !zk.get_subcommands().empty()) return zk.exit(error), kUsage;
        std::cerr << "zk: there is no command '" << argv[1] << "': see zk --help\n";
        return kUsage;
    } catch (const CLI::ParseError& error) {
        return zk.exit(error) == 0 ? kDone : kUsage;
    } catch (const Failure& failure) {
        std::cerr << "zk: " << failure.what() << '\n';
        return failure.exit;
    } catch (const zk::Error& error) {
        std::cerr << "zk: " << error.command << ": " << error.text << " (status " << error.status << "). "
                  << remedy_of(error) << '\n';
        return exit_of(error);
    } catch (const std::exception& error) {
        std::cerr << "zk: " << error.what() << '\n';
        return kFailed;
    }
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_DFL);
    return tool::run(argc, argv);
}
