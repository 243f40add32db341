// The states that a controller pushes, over a second or two.
#pragma once

#include <optional>

#include "command.h"

namespace tool {

struct PushSample {
    std::size_t states = 0;
    double rate_Hz = 0;
    double jitter_ms = 0;  // 95 of 100 states come this close to the usual time after the one before
    double longest_gap_ms = 0;
    double clock_offset_ms = 0;          // host time minus controller time
    std::optional<double> lost_percent;  // these two by the controller's own time, if it sends one
    std::optional<double> clock_pace;    // controller seconds in a second of this host

    static PushSample take(const zk::Arm& arm);
};

}  // namespace tool
