#pragma once

#include <kdl/frames.hpp>
#include <map>
#include <string>
#include <vector>

namespace sim {

// A fence or a wall: form 1 is a cuboid, 2 a plane through three points, 3 a sphere, 0 none. The lengths of the form
// have their names on the wire and are thousandths of a metre.
struct Fence {
    int form = 0;
    std::map<std::string, int> lengths;

    static constexpr int kForms = 3;
    static const std::vector<std::string>& keys(int form);

    // Whether it bounds a space: sides and radius are positive, and the points are not collinear.
    bool has_extent() const;
};

// The space that a fence bounds, in metres.
class Region {
 public:
    explicit Region(const Fence& fence);

    // How far a point is inside: negative outside. In front of a plane, from where its points run counterclockwise, is
    // inside. Without a fence all is.
    double inside(const KDL::Vector& point) const;

    bool operator==(const Region&) const = default;

 private:
    int form_;
    KDL::Vector low_, high_;      // of the cuboid
    KDL::Vector place_, normal_;  // of the plane; place_ is the centre of the sphere
    double radius_ = 0;
};

// The stored fences, by name.
class FenceStore {
 public:
    static constexpr size_t kMaxName = 10;    // bytes
    static constexpr size_t kMaxFences = 11;  // as many as a client takes

    const std::map<std::string, Fence>& all() const { return fences_; }
    const Fence* find(const std::string& name) const;

    // Each is false if the name is taken, unknown or invalid.
    bool add(const std::string& name, const Fence& fence);
    bool update(const std::string& name, const Fence& fence);
    bool remove(const std::string& name) { return fences_.erase(name) != 0; }

 private:
    std::map<std::string, Fence> fences_;
};

}  // namespace sim
