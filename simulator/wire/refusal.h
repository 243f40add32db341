#pragma once

#include <stdexcept>

namespace sim {

// Thrown by an action that cannot be done. The text is the reason.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace sim
