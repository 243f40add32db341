// The command that stands before a controller.
#pragma once

#include "command.h"

namespace tool {

void add_proxy(CLI::App& zk);

}  // namespace tool
