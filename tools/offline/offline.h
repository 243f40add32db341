// Commands that compute on a model and talk to no arm, unless --arm says whose model it is.
#pragma once

#include "command.h"

namespace tool {

void add_fk(CLI::App& zk);
void add_ik(CLI::App& zk);
void add_urdf(CLI::App& zk);
void add_map(CLI::App& zk);

}  // namespace tool
