#pragma once

#include "motion/tool.h"
#include "world/arm_body.h"
#include "world/safety.h"

namespace sim {

// Keeps the arm clear of the fence, the wall and itself.
class Guard {
 public:
    Guard(Arm& arm, const Tool& tool);
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    Safety safety;

    // Call it before the arm steps.
    void step();

 private:
    Scene scene() const;

    Arm& arm_;
    const Tool& tool_;
    ArmBody body_;
    Scene scene_;  // in the last step
};

}  // namespace sim
