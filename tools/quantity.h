// Numbers with units, as people write them on a command line.
#pragma once

#include <string>
#include <vector>

#include "command.h"

namespace tool {

// "90", "90deg", "1.57rad"; a bare number is in degrees. "0.3", "0.3m", "300mm"; a bare number is in metres. Throw
// Failure for what is neither, or is not finite.
zk::Angle parse_angle(const std::string& text);
zk::Length parse_length(const std::string& text);

// Six or seven angles. Throws Failure for another number of them, or for an angle beyond 360 degrees: it is in another
// unit, or slipped.
zk::Joints parse_joints(const std::vector<std::string>& texts, std::size_t count);

// X Y Z RX RY RZ. Throws Failure for another number of them, or for a place more than 5 m away: it is in millimetres,
// or slipped.
zk::Pose parse_pose(const std::vector<std::string>& texts);

}  // namespace tool
