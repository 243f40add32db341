#pragma once

#include "command.h"

namespace tool {

// Prints what a shell needs to complete the commands and options of this program.
void add_completion(CLI::App& zk);

}  // namespace tool
