#pragma once

#include "motion/curve.h"
#include "motion/move.h"
#include "motion/tool.h"

namespace sim {

// Plans the paths on which the tool follows a curve, with the frames and limits in force when the move was ordered.
class ToolPlanner {
 public:
    // At `percent` of the tool's speed limits.
    ToolPlanner(const Arm& arm, const Tool& tool, double percent);

    // The tool in the work frame.
    KDL::Frame tool_at(const JointVector& joints) const;

    // The joints for a curve that begins where the tool is: solved point after point from those before, near enough to
    // each other that between them the tool keeps to the curve. Throws NoPath where the arm cannot go on, or would have
    // to leave its limits or exceed its speeds.
    Path along(const Curve& curve, const JointVector& start) const;

 private:
    std::vector<JointVector> solve(const std::vector<KDL::Frame>& tools, const JointVector& start) const;
    bool keeps_to(const Curve& curve, const std::function<JointVector(double)>& joints, size_t pieces) const;
    void set_pace(const std::vector<KDL::Frame>& tools, const std::vector<JointVector>& knots, Path& path) const;
    void slow_for_bends(size_t pieces, Path& path) const;

    const Arm& arm_;
    Surroundings around_;
    const CartesianLimits& limits_;
    double share_;  // of the speed limits
};

}  // namespace sim
