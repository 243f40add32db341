// Forward kinematics by KDL for tests of the simulator, by the name of its model.
#pragma once

#include <kdl/frames.hpp>
#include <string>
#include <vector>

namespace zk::test {

// The flange in the base frame, with the joints in degrees.
KDL::Frame flange_by_kdl(const std::string& model, const std::vector<double>& degrees);

}  // namespace zk::test
