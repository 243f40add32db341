#include "support/simulator_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "support/paths.h"
#include "support/socket.h"
#include "support/udp.h"

namespace zk::test {
namespace {

// The number after " name=" in a line.
int number_of(const std::string& text, const std::string& name) {
    const size_t at = text.find(" " + name + "=");
    if (at == std::string::npos) throw std::runtime_error("the simulator printed no " + name + ": " + text);
    return std::stoi(text.substr(at + name.size() + 2));
}

std::string read_first_line(int descriptor) {
    std::string text;
    char next;
    while (wait_readable(descriptor) && read(descriptor, &next, 1) == 1 && next != '\n') text += next;
    return text;
}

}  // namespace

SimulatorProcess::SimulatorProcess(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{kSimulator, "--port", "0", "--push-port", std::to_string(reserve_udp_port())};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    int output[2];
    checked(pipe2(output, O_CLOEXEC), "pipe2");
    const pid_t parent = getpid();
    process_ = checked(fork(), "fork");
    if (process_ == 0) {
        // The simulator ends when the test is killed, even before this line.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent || dup2(output[1], STDOUT_FILENO) < 0) _exit(126);
        execv(argv[0], argv.data());
        _exit(127);
    }
    ::close(output[1]);
    output_ = output[0];
    try {
        first_line_ = read_first_line(output_);
        port_ = number_of(first_line_, "port");
        push_port_ = number_of(first_line_, "push_port");
    } catch (...) {
        end();
        throw;
    }
}

SimulatorProcess::~SimulatorProcess() { end(); }

void SimulatorProcess::end() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    if (output_ >= 0) ::close(output_);
}

int SimulatorProcess::wait_for_exit() {
    int status = 0;
    checked(waitpid(process_, &status, 0), "waitpid");
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace zk::test
