// A recording as the page of the live view plays it.
#pragma once

#include "recording/recording.h"
#include "view/view.h"

namespace tool {

// Reads a recording. Throws Failure when the file is none.
zk::view::Film load_film(const std::string& path);

}  // namespace tool
