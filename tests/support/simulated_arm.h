// A connection of the library to a simulator of its own, made by the start-up as an application makes it.
#pragma once

#include "support/simulator_process.h"
#include "zk/connection.h"

namespace zk::test {

class SimulatedArm {
 public:
    // Model ZK65-B unless the arguments name another; a model with seven joints needs an arm mode with seven.
    explicit SimulatedArm(const std::vector<std::string>& arguments = {}, int arm_mode = 65);
    operator ArmSocket() const { return arm_; }
    const Simulator& simulator() const { return simulator_; }

 private:
    SimulatorProcess simulator_;
    ArmSocket arm_;
};

}  // namespace zk::test
