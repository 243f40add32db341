// Commands about the programs and waypoints of a controller.
#pragma once

#include "command.h"

namespace tool {

void add_check(CLI::App& zk);
void add_send(CLI::App& zk);
void add_run(CLI::App& zk);
void add_waypoints(CLI::App& zk);

}  // namespace tool
