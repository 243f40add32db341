#pragma once

#include <map>
#include <string>
#include <vector>

namespace sim {

// A fence or a wall: 1 cuboid, 2 plane by three points, 3 sphere, and the lengths of that form under their names on the
// wire, in thousandths of a metre. Form 0 is none.
struct Fence {
    int form = 0;
    std::map<std::string, int> lengths;

    static constexpr int kForms = 3;
    static const std::vector<std::string>& keys(int form);

    // Whether it bounds anything: no side of a cuboid and no radius is 0 or less, and the points are not in a line.
    bool has_extent() const;
};

// The fences that are kept by name.
class FenceStore {
 public:
    static constexpr size_t kMaxName = 10;    // bytes
    static constexpr size_t kMaxFences = 11;  // as many as a client takes

    const std::map<std::string, Fence>& all() const { return fences_; }
    const Fence* find(const std::string& name) const;

    // Each is false when the name does not allow it: there already, not there, or unusable.
    bool add(const std::string& name, const Fence& fence);
    bool update(const std::string& name, const Fence& fence);
    bool remove(const std::string& name) { return fences_.erase(name) != 0; }

 private:
    std::map<std::string, Fence> fences_;
};

}  // namespace sim
