// What the library keeps with ZK_BLACK_BOX=DIR.
#pragma once

#include <string>

#include "recording/recording.h"

namespace tool {

bool is_black_box(const std::string& path);

// All that is whole, of the arm that has the most of it; who has others is told on standard error. Throws Failure when
// it cannot be read.
Recording load_black_box(const std::string& path);

}  // namespace tool
