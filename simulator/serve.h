#pragma once

#include <vector>

#include "options.h"

namespace sim {

// Prints the first line of the program, and serves the clients of all arms until a signal, or the end of standard input
// where the options want that, ends the program. Throws std::exception when it cannot listen, or cannot
// write the state at the end.
void serve(const std::vector<Options>& arms);

}  // namespace sim
