#include "world/arm_body.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sim {
namespace {

constexpr double kRadiusShare = 0.045;  // of the length from the shoulder to the flange

// The distance between two line segments: the closest points of the lines, moved onto the segments.
double distance_of_lines(const Capsule& a, const Capsule& b) {
    const KDL::Vector along_a = a.to - a.from, along_b = b.to - b.from, apart = a.from - b.from;
    const double aa = dot(along_a, along_a), bb = dot(along_b, along_b), ab = dot(along_a, along_b);
    const double at = dot(along_a, apart), bt = dot(along_b, apart), across = aa * bb - ab * ab;
    const auto share = [](double part, double whole) { return whole > 0 ? std::clamp(part / whole, 0.0, 1.0) : 0.0; };
    const double s = across > 1e-12 * aa * bb ? share(ab * bt - bb * at, across) : 0;
    const double t = share(ab * s + bt, bb);
    const double nearest_s = share(ab * t - at, aa);
    return (apart + along_a * nearest_s - along_b * t).Norm();
}

}  // namespace

double distance_between(const Capsule& a, const Capsule& b) { return distance_of_lines(a, b) - a.radius - b.radius; }

ArmBody::ArmBody(const Arm& arm) : arm_(arm) {
    for (const Capsule& link : at(arm.joints()).links) lengths_.push_back((link.to - link.from).Norm());
    for (size_t i = 1; i < lengths_.size(); ++i) radius_ += kRadiusShare * lengths_[i];
}

ArmBody::Pose ArmBody::at(const JointVector& joints) const {
    constexpr double kNoLink = 1e-6;  // metres
    const std::vector<KDL::Frame> frames = arm_.frames_at(joints);
    Pose pose{{}, frames.back()};
    for (size_t i = 1; i < frames.size(); ++i) {
        const KDL::Vector from = frames[i - 1].p, to = frames[i].p;
        if ((to - from).Norm() > kNoLink) pose.links.push_back({from, to, radius_});
    }
    return pose;
}

double ArmBody::length_between(size_t link, size_t other) const {
    double length = 0;
    for (size_t i = link + 1; i < other; ++i) length += lengths_[i];
    return length;
}

double ArmBody::own_depth(const Pose& pose, const std::vector<Capsule>& tool) const {
    double depth = -std::numeric_limits<double>::infinity();
    const auto compare = [&](size_t link, const Capsule& other, size_t number) {
        if (length_between(link, number) > radius_ + other.radius)
            depth = std::max(depth, -distance_between(pose.links[link], other));
    };
    for (size_t i = 0; i < pose.links.size(); ++i) {
        for (size_t j = i + 1; j < pose.links.size(); ++j) compare(i, pose.links[j], j);
        for (const Capsule& part : tool) compare(i, part, pose.links.size());
    }
    return depth;
}

}  // namespace sim
