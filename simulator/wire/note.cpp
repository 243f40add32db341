#include "wire/note.h"

#include <iostream>

namespace sim {
namespace {

bool silent = false;

}  // namespace

void note(const std::string& line) {
    if (!silent) std::cerr << "zk_simulator: " + line + "\n";
}

void silence_notes() { silent = true; }

}  // namespace sim
