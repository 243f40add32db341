#include "progress.h"

#include <unistd.h>
#include <algorithm>
#include <iostream>
#include <utility>

namespace tool {

Progress::Progress(std::string what) : what_(std::move(what)), terminal_(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    if (percent_ >= 0) std::cerr << '\n';
}

void Progress::show(double share) {
    const int percent = static_cast<int>(100 * std::clamp(share, 0.0, 1.0));
    if (!terminal_ || percent == percent_) return;
    percent_ = percent;
    constexpr int kPercentOfCell = 4;
    const auto cells = static_cast<std::size_t>(percent / kPercentOfCell);
    std::cerr << '\r' << what_ << " [" << std::string(cells, '#') << std::string(100 / kPercentOfCell - cells, ' ')
              << "] " << percent << " %" << std::flush;
}

}  // namespace tool
