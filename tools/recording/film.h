// A recording as the page of the live view plays it.
#pragma once

#include "recording/recording.h"
#include "view/view.h"

namespace tool {

// Reads a recording. model: the name of its arm; "" when the recording tells it. Throws Failure when the file is none.
zk::view::Film load_film(const std::string& path, const std::string& model);

}  // namespace tool
