// The simulated controller of this build, as a program of its own.
#pragma once

#include "support/paths.h"
#include "support/udp.h"
#include "zk/simulator.hpp"

namespace zk::test {

class SimulatorProcess : public Simulator {
 public:
    // Pushes to a port that nobody else takes.
    explicit SimulatorProcess(const std::vector<std::string>& arguments = {})
        : Simulator(with_push_port(arguments), kSimulator, kPatienceMs) {}

 private:
    static constexpr int kPatienceMs = 60'000;  // a busy machine is no fault

    static std::vector<std::string> with_push_port(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--push-port", std::to_string(reserve_udp_port())});
        return arguments;
    }
};

}  // namespace zk::test
