#include "world/wall.h"

namespace sim {

KDL::Wrench contact_with(const Wall& wall, const KDL::Frame& flange, const KDL::Frame& flange_T_tool) {
    const double depth = dot(wall.normal, wall.place - (flange * flange_T_tool).p);
    if (wall.stiffness <= 0 || depth <= 0) return KDL::Wrench::Zero();
    const KDL::Vector force = flange.M.Inverse(wall.normal) * (wall.stiffness * depth);
    return {force, flange_T_tool.p * force};  // KDL's product of two vectors is the cross product
}

}  // namespace sim
