#pragma once

#include <kdl/frames.hpp>
#include <memory>
#include <optional>
#include <vector>

#include "motion/limits.h"
#include "motion/robot_model.h"

namespace sim {

// The kinematics of an arm, in its own base and without a tool.
class Kinematics {
 public:
    explicit Kinematics(const RobotModel& model);
    ~Kinematics();
    Kinematics(const Kinematics&) = delete;
    Kinematics& operator=(const Kinematics&) = delete;

    KDL::Frame flange_at(const JointVector& joints) const;
    // The places of the joints and of the flange, from the base on. Some stand at the same place.
    std::vector<KDL::Frame> frames_at(const JointVector& joints) const;

    // The joints near `seed`, in degrees and within the limits, that put the flange at this pose; nothing if there are
    // none.
    std::optional<JointVector> joints_at(const KDL::Frame& flange, const JointVector& seed,
                                         const std::vector<JointLimits>& limits) const;

 private:
    struct Solvers;
    std::unique_ptr<Solvers> solvers_;
};

}  // namespace sim
