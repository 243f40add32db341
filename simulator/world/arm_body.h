#pragma once

#include <kdl/frames.hpp>
#include <vector>

#include "motion/arm.h"

namespace sim {

// A ball around a line, in metres. A single point makes a sphere.
struct Capsule {
    KDL::Vector from, to;
    double radius;

    bool operator==(const Capsule&) const = default;
};

// The distance between their surfaces; negative where they overlap.
double distance_between(const Capsule& a, const Capsule& b);

// The arm as capsules along its links: each runs from one joint to the next that stands elsewhere.
class ArmBody {
 public:
    explicit ArmBody(const Arm& arm);

    // From the base to the flange, in the arm's own base, and the pose of the flange.
    struct Pose {
        std::vector<Capsule> links;
        KDL::Frame flange;
    };
    Pose at(const JointVector& joints) const;

    // How deep the links are in each other and in `tool`, which is fixed to the flange; negative where they are clear.
    // Links whose joints lie too close together to be clear of each other in any posture are not compared.
    double own_depth(const Pose& pose, const std::vector<Capsule>& tool) const;

 private:
    // The length of the links between two.
    double length_between(size_t link, size_t other) const;

    const Arm& arm_;
    std::vector<double> lengths_;
    double radius_ = 0;
};

}  // namespace sim
