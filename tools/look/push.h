// The states that a controller pushes: over a second or two, or why none come.
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

// What an examination found. "unknown": the controller does not say.
struct Finding {
    const char* verdict;  // "ok", "warn", "fault", "unknown"
    std::string sentence, remedy;

    std::string text() const { return remedy.empty() ? sentence : sentence + " " + remedy; }
};

// Why no state of an arm comes to this program.
Finding why_no_state(const zk::Arm& arm);

}  // namespace tool
