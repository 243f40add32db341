#include "world/safety.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sim {
namespace {

std::optional<Zone> zone_of(const Barrier& barrier) {
    if (!barrier.enabled || barrier.shape.form == 0) return std::nullopt;
    return Zone{Region(barrier.shape), barrier.side != 0, barrier.region != 0};
}

double depth_of(const Capsule& part, const Zone& zone) {
    constexpr double kStep = 0.02;  // metres between the points that are looked at
    const double length = (part.to - part.from).Norm();
    const int steps = static_cast<int>(std::ceil(length / kStep));
    double depth = -std::numeric_limits<double>::infinity();
    for (int i = 0; i <= steps; ++i) {
        const double share = steps > 0 ? static_cast<double>(i) / steps : 0;
        const double inside = zone.region.inside(part.from + (part.to - part.from) * share);
        depth = std::max(depth, (zone.outside ? inside : -inside) + part.radius);
    }
    return depth;
}

Capsule moved(const KDL::Frame& frame, const Capsule& part) {
    return {frame * part.from, frame * part.to, part.radius};
}

}  // namespace

Scene Safety::scene(const std::string& tool, const KDL::Frame& flange_T_tool, const KDL::Frame& room_T_base) const {
    Scene scene{{zone_of(fence), zone_of(wall)}, self_collision, room_T_base, {}};
    if (scene.empty()) return {};
    const auto envelope = envelopes.find(tool);
    if (envelope != envelopes.end()) {
        for (const EnvelopeBall& ball : envelope->second) {
            const KDL::Vector centre = flange_T_tool * KDL::Vector(ball.x / 1e3, ball.y / 1e3, ball.z / 1e3);
            scene.tool.push_back({centre, centre, ball.radius / 1e3});
        }
    }
    if (scene.tool.empty()) scene.tool.push_back({flange_T_tool.p, flange_T_tool.p, 0});
    return scene;
}

Survey survey_of(const Scene& scene, const ArmBody& body) {
    if (scene.empty()) return {};
    return [scene, &body](const JointVector& joints) {
        const ArmBody::Pose pose = body.at(joints);
        std::vector<Capsule> tool;
        for (const Capsule& part : scene.tool) tool.push_back(moved(pose.flange, part));
        Depths depths;
        depths.fill(-std::numeric_limits<double>::infinity());
        for (size_t i = 0; i < scene.zones.size(); ++i) {
            const std::optional<Zone>& zone = scene.zones[i];
            if (!zone) continue;
            for (const Capsule& part : tool)
                depths[i] = std::max(depths[i], depth_of(moved(scene.room_T_base, part), *zone));
            // The first link stands where it is.
            for (size_t link = 1; zone->whole_arm && link < pose.links.size(); ++link)
                depths[i] = std::max(depths[i], depth_of(moved(scene.room_T_base, pose.links[link]), *zone));
        }
        if (scene.self_collision) depths[static_cast<size_t>(Hazard::kItself)] = body.own_depth(pose, tool);
        return depths;
    };
}

}  // namespace sim
