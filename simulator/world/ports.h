#pragma once

#include <array>
#include <optional>

namespace sim {

// A digital port of the controller or the tool. Its output is wired to its input, unless something else drives it.
struct DigitalPort {
    int state = 0;
    int mode = 1;  // 0: an input, which cannot be set
    std::optional<int> driven = std::nullopt;

    int input() const { return driven.value_or(state); }
    int seen() const { return mode == 0 ? input() : state; }
};

// An analogue output with its input, in millivolts.
struct AnaloguePort {
    static constexpr int kHighest = 10'000;

    int output = 0;
    std::optional<int> driven = std::nullopt;

    int input() const { return driven.value_or(output); }
};

struct Ports {
    std::array<DigitalPort, 4> digital;
    std::array<AnaloguePort, 4> analogue;
    std::array<DigitalPort, 2> tool;
    int voltage_type = 0;
    int tool_voltage_type = 0;
};

}  // namespace sim
