#include "world/fences.h"

#include <algorithm>
#include <limits>

namespace sim {
namespace {

// The three lengths that begin with the name of an axis, in metres.
KDL::Vector place(const Fence& fence, const std::string& suffix) {
    const auto metres = [&](const char* axis) { return fence.lengths.at(axis + suffix) / 1e3; };
    return {metres("x"), metres("y"), metres("z")};
}

KDL::Vector normal(const Fence& fence) {
    const KDL::Vector first = place(fence, "1");
    return (place(fence, "2") - first) * (place(fence, "3") - first);  // KDL's product is the cross product
}

}  // namespace

const std::vector<std::string>& Fence::keys(int form) {
    static const std::vector<std::string> kKeys[kForms + 1] = {
        {},
        {"x_min_limit", "x_max_limit", "y_min_limit", "y_max_limit", "z_min_limit", "z_max_limit"},
        {"x1", "y1", "z1", "x2", "y2", "z2", "x3", "y3", "z3"},
        {"radius", "x", "y", "z"}};
    return kKeys[form];
}

bool Fence::has_extent() const {
    const auto positive = [&](const std::string& axis) {
        return lengths.at(axis + "_min_limit") < lengths.at(axis + "_max_limit");
    };
    switch (form) {
        case 1:
            return positive("x") && positive("y") && positive("z");
        case 2:
            return normal(*this).Norm() > 0;
        default:
            return lengths.at("radius") > 0;
    }
}

Region::Region(const Fence& fence) : form_(fence.form) {
    switch (form_) {
        case 1:
            low_ = place(fence, "_min_limit");
            high_ = place(fence, "_max_limit");
            break;
        case 2:
            place_ = place(fence, "1");
            normal_ = normal(fence);
            normal_.Normalize();
            break;
        case 3:
            place_ = place(fence, "");
            radius_ = fence.lengths.at("radius") / 1e3;
            break;
    }
}

double Region::inside(const KDL::Vector& point) const {
    if (form_ == 2) return dot(normal_, point - place_);
    if (form_ == 3) return radius_ - (point - place_).Norm();
    double nearest = std::numeric_limits<double>::infinity();  // of the faces
    KDL::Vector beyond;
    for (int i = 0; form_ == 1 && i < 3; ++i) {
        const double way = std::min(point(i) - low_(i), high_(i) - point(i));
        nearest = std::min(nearest, way);
        beyond(i) = std::min(way, 0.0);
    }
    return nearest >= 0 ? nearest : -beyond.Norm();
}

const Fence* FenceStore::find(const std::string& name) const {
    const auto found = fences_.find(name);
    return found == fences_.end() ? nullptr : &found->second;
}

// "NULL" terminates a list of names on the wire.
bool FenceStore::add(const std::string& name, const Fence& fence) {
    if (name.empty() || name.size() > kMaxName || name == "NULL" || fences_.size() == kMaxFences) return false;
    return fences_.emplace(name, fence).second;
}

bool FenceStore::update(const std::string& name, const Fence& fence) {
    const auto found = fences_.find(name);
    if (found == fences_.end()) return false;
    found->second = fence;
    return true;
}

}  // namespace sim
