// The simulated controller, as a program of its own.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace zk::test {

class SimulatorProcess {
 public:
    // Starts it on free ports with these arguments, and waits until it listens.
    explicit SimulatorProcess(const std::vector<std::string>& arguments = {});
    // Ends it, if it still runs.
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    int port() const { return port_; }
    int push_port() const { return push_port_; }

    // Its first line of output, with model and ports.
    const std::string& first_line() const { return first_line_; }

    pid_t id() const { return process_; }

    // Waits for the program to end of its own accord; its exit status, or -1 when a signal ended it.
    int wait_for_exit();

 private:
    void end();

    pid_t process_ = -1;
    int output_ = -1;
    std::string first_line_;
    int port_ = 0;
    int push_port_ = 0;
};

}  // namespace zk::test
