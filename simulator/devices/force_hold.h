#pragma once

#include <array>
#include <kdl/frames.hpp>

namespace sim {

// The directions that hold a force: x, y, z, rx, ry, rz of the work frame or of the tool.
struct HoldOrder {
    bool of_tool = false;
    std::array<bool, 6> held{};
    std::array<double, 6> press{};                                 // newtons, newton metres
    std::array<double, 6> speed{0.05, 0.05, 0.05, 0.2, 0.2, 0.2};  // maximum, metres and radians per second
};

// Holds a force: offsets the tool from its commanded pose until it presses with the ordered force in the held
// directions. Without resistance the tool keeps moving.
class ForceHold {
 public:
    // Uses the axes of the previous hold while its offset lasts.
    void begin(const HoldOrder& order);
    void end() { active_ = false; }
    bool active() const { return active_; }
    const HoldOrder& order() const { return order_; }

    // Adjusts the offset by the force with which the tool presses, in the axes of the order. After the end of the hold,
    // reduces the offset to zero.
    void step(double seconds, const KDL::Wrench& pressed);
    // Undoes the last step.
    void step_back() { offset_ = before_; }

    bool stands_off() const { return !KDL::Equal(offset_, KDL::Twist::Zero(), 1e-9); }
    void forget() { offset_ = before_ = KDL::Twist::Zero(); }
    // The offset pose for a commanded pose, both in the work frame.
    KDL::Frame shifted(const KDL::Frame& tool) const;

 private:
    bool active_ = false;
    HoldOrder order_;
    KDL::Twist offset_ = KDL::Twist::Zero();
    KDL::Twist before_ = KDL::Twist::Zero();
};

}  // namespace sim
