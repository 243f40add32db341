#include "simulate.h"

#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace tool {
namespace {

// Beside this program first, as in a build; then as the shell would find it.
[[noreturn]] void become_simulator(std::vector<std::string> arguments) {
    std::error_code none;
    const std::filesystem::path beside = std::filesystem::read_symlink("/proc/self/exe", none).parent_path();
    std::vector<char*> argv;
    arguments.insert(arguments.begin(), "zk_simulator");
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    execv((beside / argv[0]).c_str(), argv.data());
    execvp(argv[0], argv.data());
    throw Failure(kFailed, "zk_simulator cannot be started: " + std::string(std::strerror(errno)));
}

}  // namespace

void add_simulate(CLI::App& zk) {
    CLI::App* command = zk.add_subcommand("simulate", "run the simulated controller; its options follow");
    command->prefix_command();
    command->set_help_flag();  // --help is the simulator's
    command->callback([command] { become_simulator(command->remaining()); });
}

}  // namespace tool
