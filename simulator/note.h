#pragma once

#include <string>

namespace sim {

// Tells the person at the terminal what happened: one line on standard error. Nothing after `silence_notes`.
void note(const std::string& line);
void silence_notes();

}  // namespace sim
