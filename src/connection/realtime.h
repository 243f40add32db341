#pragma once

#include <cstdint>

#include "zk/realtime.h"

namespace zk {

inline bool is_listening(int32_t descriptor) { return descriptor != 0 && descriptor != -1; }

// Opens the UDP listener on a port. 0, or 25. A port that is taken leaves a listener that hears nothing.
int listen_on(int32_t port);

// Closes the listener of the process, at any connection's end.
void stop_listening();

}  // namespace zk
