#pragma once

#include <kdl/chainiksolverpos_lma.hpp>
#include <optional>

#include "arm.h"

namespace sim {

// From a pose of the flange back to the joints.
class InverseKinematics {
 public:
    explicit InverseKinematics(const RobotModel& model);
    InverseKinematics(const InverseKinematics&) = delete;
    InverseKinematics& operator=(const InverseKinematics&) = delete;

    // The joints near `seed`, in degrees and within the limits, at which the flange has this pose in the arm's own
    // base; nothing where the arm cannot have it.
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
