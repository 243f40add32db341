#include "motion/survey.h"

#include <algorithm>

namespace sim {
namespace {

constexpr const char* kNames[kHazards] = {"the electronic fence", "the virtual wall", "the arm itself"};

}  // namespace

std::optional<Hazard> entered(const Depths& before, const Depths& now) {
    constexpr double kTolerance = 1e-4;  // metres
    for (size_t i = 0; i < kHazards; ++i) {
        if (now[i] > std::max(0.0, before[i]) + kTolerance) return static_cast<Hazard>(i);
    }
    return std::nullopt;
}

int error_word(Hazard hazard) { return 4097 + static_cast<int>(hazard); }

HazardousPath::HazardousPath(Hazard entered_hazard)
    : NoPath(std::string("the path leads into ") + kNames[static_cast<size_t>(entered_hazard)]),
      hazard(entered_hazard) {}

}  // namespace sim
