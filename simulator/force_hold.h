#pragma once

#include <array>
#include <kdl/frames.hpp>

namespace sim {

// An elastic wall in the room. A tool that comes behind it is pressed back along the normal.
struct Wall {
    KDL::Vector place;
    KDL::Vector normal{0, 0, 1};
    double stiffness = 0;  // newtons per metre; 0: there is no wall
};

// What the wall does to a flange that stands so in the room, in the axes of the flange and about its origin.
KDL::Wrench contact_with(const Wall& wall, const KDL::Frame& flange, const KDL::Frame& flange_T_tool);

// Which directions are to hold a force: x, y, z, rx, ry, rz of the work frame or of the tool.
struct HoldOrder {
    bool of_tool = false;
    std::array<bool, 6> held{};
    std::array<double, 6> press{};                                 // newtons, newton metres
    std::array<double, 6> speed{0.05, 0.05, 0.05, 0.2, 0.2, 0.2};  // most, metres and radians per second
};

// Holds a force: the tool stands off from where the arm is ordered to have it, by as much as it takes to press so hard
// in the held directions. Where nothing resists it moves on.
class ForceHold {
 public:
    // In the axes of the hold before, if that stands off.
    void begin(const HoldOrder& order);
    void end() { active_ = false; }
    bool active() const { return active_; }
    const HoldOrder& order() const { return order_; }

    // Goes on by what the tool presses with, in the axes of the order. Once it has ended, comes back instead.
    void step(double seconds, const KDL::Wrench& pressed);
    // As if the last step had not been.
    void step_back() { offset_ = before_; }

    bool stands_off() const { return !KDL::Equal(offset_, KDL::Twist::Zero(), 1e-9); }
    void forget() { offset_ = before_ = KDL::Twist::Zero(); }
    // Where the tool goes that is ordered to this pose; both in the work frame.
    KDL::Frame shifted(const KDL::Frame& tool) const;

 private:
    bool active_ = false;
    HoldOrder order_;
    KDL::Twist offset_ = KDL::Twist::Zero();
    KDL::Twist before_ = KDL::Twist::Zero();
};

}  // namespace sim
