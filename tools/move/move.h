// Commands that move an arm.
#pragma once

#include "command.h"

namespace tool {

void add_move(CLI::App& zk);
void add_home(CLI::App& zk);
void add_stop(CLI::App& zk);
void add_clear(CLI::App& zk);
void add_jog(CLI::App& zk);

}  // namespace tool
