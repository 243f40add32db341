#pragma once

#include "command.h"

namespace tool {

// Runs the simulated controller in the place of this program.
void add_simulate(CLI::App& zk);

}  // namespace tool
