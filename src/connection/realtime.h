#pragma once

#include <cstdint>

#include "zk/realtime.h"

namespace zk {

inline bool is_listening(int32_t descriptor) { return descriptor != 0 && descriptor != -1; }

// Opens the UDP listener on a port. Returns 0 or 25. On a port that is taken it receives nothing.
int listen_on(int32_t port);

// Parses a datagram as Parser_Realtime_Arm_Joint_State does. *time becomes its optional "time" in milliseconds.
int parse_datagram(const char* text, RobotStatus* status, double* time);

// Closes the listener of the process, when any connection closes.
void stop_listening();

}  // namespace zk
