#pragma once

#include <kdl/frames.hpp>

namespace sim {

inline const KDL::Vector kGravity(0, 0, -9.81);  // metres per second squared, in the room

// The load on the sensor.
struct Load {
    double mass = 0;     // kilograms
    KDL::Vector centre;  // of gravity, in the flange frame, metres
};

// The wrench of a load's weight on a flange with this pose in the room.
KDL::Wrench weight_of(const Load& load, const KDL::Rotation& flange);

}  // namespace sim
