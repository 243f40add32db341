#pragma once

#include <kdl/frames.hpp>

namespace sim {

// An elastic wall in the room. It presses a tool that enters it back along its normal.
struct Wall {
    static constexpr double kStiffest = 50'000;  // newtons per metre; a hold on a stiffer wall does not settle

    KDL::Vector place;
    KDL::Vector normal{0, 0, 1};
    double stiffness = 0;  // newtons per metre; 0: there is no wall
};

// The wrench of the wall on a flange with this pose in the room, in the axes of the flange and about its origin.
KDL::Wrench contact_with(const Wall& wall, const KDL::Frame& flange, const KDL::Frame& flange_T_tool);

}  // namespace sim
