#include "devices/force_hold.h"

#include <algorithm>

namespace sim {
namespace {

// The compliance of the arm: metres per second per newton and radians per second per newton metre. Against a wall the
// hold settles while the wall's stiffness times the first is well below the 200 steps per second.
constexpr double kCompliance = 0.002;
constexpr double kTurningCompliance = 0.2;

}  // namespace

void ForceHold::begin(const HoldOrder& order) {
    order_ = order;
    active_ = true;
}

void ForceHold::step(double seconds, const KDL::Wrench& pressed) {
    before_ = offset_;
    for (int i = 0; i < 6; ++i) {
        const double most = order_.speed[i] * seconds;
        if (!active_) {
            offset_(i) -= std::clamp(offset_(i), -most, most);
        } else if (order_.held[i]) {
            const double compliance = i < 3 ? kCompliance : kTurningCompliance;
            offset_(i) += std::clamp(compliance * (order_.press[i] - pressed(i)) * seconds, -most, most);
        }
    }
}

KDL::Frame ForceHold::shifted(const KDL::Frame& tool) const {
    const double angle = offset_.rot.Norm();
    const KDL::Rotation turn = angle > 0 ? KDL::Rotation::Rot(offset_.rot, angle) : KDL::Rotation::Identity();
    if (order_.of_tool) return tool * KDL::Frame(turn, offset_.vel);
    return {turn * tool.M, tool.p + offset_.vel};
}

}  // namespace sim
