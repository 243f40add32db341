#pragma once

#include <array>
#include <optional>

#include "motion/arm.h"
#include "motion/frames.h"

namespace sim {

// The frame in whose axes the tool is jogged.
enum class TeachFrame { kWork = 0, kTool = 1 };

// The tool of an arm: its frames, its limits, and where it is.
class Tool {
 public:
    explicit Tool(const Arm& arm) : arm_(arm) {}

    FrameStore tools{"Arm_Tip"};
    FrameStore works{"Base"};
    Frame payload;                     // in force; its pose is not used
    std::array<double, 3> mounting{};  // of the arm: rx, ry, rz in degrees
    CartesianLimits limits;
    TeachFrame teach_frame = TeachFrame::kWork;

    // The frames and the mounting in force.
    Surroundings surroundings() const;

    KDL::Frame pose() const;            // of the current tool in the current work frame
    KDL::Frame mounted_flange() const;  // in the room
    KDL::Frame room_T_base() const;

    // The joints near `seed` and within their limits that put the tool at this pose in the work frame; nothing if there
    // are none.
    std::optional<JointVector> joints_at(const KDL::Frame& pose, const JointVector& seed) const;

 private:
    const Arm& arm_;
};

}  // namespace sim
