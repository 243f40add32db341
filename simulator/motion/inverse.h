#pragma once

#include <kdl/chainiksolverpos_lma.hpp>
#include <optional>

#include "motion/arm.h"

namespace sim {

// Inverse kinematics: from a pose of the flange to joints.
class InverseKinematics {
 public:
    explicit InverseKinematics(const RobotModel& model);
    InverseKinematics(const InverseKinematics&) = delete;
    InverseKinematics& operator=(const InverseKinematics&) = delete;

    // The joints near `seed`, in degrees and within the limits, that put the flange at this pose in the arm's own base;
    // nothing if there are none.
    std::optional<JointVector> solve(const KDL::Frame& flange, const JointVector& seed,
                                     const std::vector<JointLimits>& limits);

 private:
    std::optional<JointVector> solve_from(const KDL::JntArray& start, const KDL::Frame& flange, const JointVector& seed,
                                          const std::vector<JointLimits>& limits);

    KDL::Chain chain_;
    size_t elbow_;
    KDL::ChainIkSolverPos_LMA solver_;
};

}  // namespace sim
