#pragma once

#include <string>

namespace sim {

// Prints one line on standard error for the operator, unless `silence_notes` was called.
void note(const std::string& line);
void silence_notes();

}  // namespace sim
