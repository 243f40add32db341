// Whether an arm follows a stream of set-points.
#pragma once

#include <atomic>

#include "command.h"

namespace tool {

class Following {
 public:
    explicit Following(const zk::Arm& arm);

    // Throws Failure when the arm has refused a set-point or its connection is lost.
    void check() const;

 private:
    const zk::Arm& arm_;
    std::atomic<int> refusal_{0};
    zk::Subscription reports_;
};

}  // namespace tool
