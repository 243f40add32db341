#pragma once

#include <deque>

#include "arm.h"

namespace sim {

// Where the arm has been of late, a point every 20 ms while it moved.
class RecentPath {
 public:
    static constexpr size_t kMaxPoints = 3000;

    void step(const Arm& arm) {
        constexpr int kStepsAPoint = 4;
        if (++steps_ % kStepsAPoint != 0) return;
        const std::vector<int> point = thousandths(arm.joints());
        const bool moved = !last_.empty() && point != last_;
        last_ = point;
        if (!moved) return;
        points_.push_back(point);
        if (points_.size() > kMaxPoints) points_.pop_front();
    }
    const std::deque<std::vector<int>>& points() const { return points_; }  // thousandths of a degree

 private:
    std::deque<std::vector<int>> points_;
    std::vector<int> last_;
    int steps_ = 0;
};

}  // namespace sim
