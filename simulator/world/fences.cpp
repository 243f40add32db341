#include "world/fences.h"

#include <kdl/frames.hpp>

namespace sim {

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
    const auto corner = [&](const std::string& number) {
        return KDL::Vector(lengths.at("x" + number), lengths.at("y" + number), lengths.at("z" + number));
    };
    switch (form) {
        case 1:
            return positive("x") && positive("y") && positive("z");
        case 2:
            return ((corner("2") - corner("1")) * (corner("3") - corner("1"))).Norm() > 0;
        default:
            return lengths.at("radius") > 0;
    }
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
