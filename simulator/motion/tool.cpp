#include "motion/tool.h"

namespace sim {

Surroundings Tool::surroundings() const {
    return {frame_of(works.current().pose).Inverse() * room_T_base(), frame_of(tools.current().pose)};
}

KDL::Frame Tool::pose() const { return surroundings().tool_of(arm_.flange()); }

KDL::Frame Tool::mounted_flange() const { return room_T_base() * arm_.flange(); }

std::optional<JointVector> Tool::joints_at(const KDL::Frame& pose, const JointVector& seed) const {
    return arm_.joints_at(surroundings().flange_of(pose), seed);
}

KDL::Frame Tool::room_T_base() const {
    const auto& [rx, ry, rz] = mounting;
    return KDL::Frame(KDL::Rotation::RPY(rx * kRadians, ry * kRadians, rz * kRadians));
}

}  // namespace sim
