#pragma once

#include "options.h"

namespace sim {

// Serves clients until SIGINT or SIGTERM. Throws when a port is in use.
void serve(Options options);

}  // namespace sim
