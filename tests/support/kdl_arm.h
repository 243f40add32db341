// The arms as KDL sees them: chains built from tables of their own, in double precision, from the single-precision
// values that the model has.
#pragma once

#include <array>
#include <iosfwd>
#include <kdl/frames.hpp>
#include <memory>
#include <random>
#include <vector>

namespace KDL {
class Chain;
}

namespace zk::test {

// Sanitizers are slow: they get a share of the postures.
#ifdef ZK_UNDER_SANITIZER
inline constexpr int kShare = 10;
#else
inline constexpr int kShare = 1;
#endif

using Joints = std::array<float, 8>;

struct Arm {
    int model, sensor, joints;
    bool standard;  // convention: the twist stands at the end of the link, not at its start
    std::array<float, 7> d, a;
    std::array<int, 7> twist, offset;  // degrees
    std::array<int, 7> max, min;       // degrees
};

std::ostream& operator<<(std::ostream& out, const Arm& arm);

const std::vector<Arm>& arms();
const Arm& arm_of(int model, int sensor);

// One revolving segment a joint, from the base to the flange. The joints of the chain are DH angles less the offset.
KDL::Chain kdl_chain(const Arm& arm);

// Joint angles within a share of the arm's limits about the middle of each range, radians.
Joints random_joints(const Arm& arm, std::mt19937& generator, double share = 1);

// A frame within a metre, turned at will: x, y, z, rx, ry, rz.
struct RandomFrame {
    float params[6];
    explicit RandomFrame(std::mt19937& generator);
    KDL::Frame frame() const;
    const float* angles() const { return params + 3; }
};

double largest_difference(const Joints& a, const Joints& b);

// Kinematics of an arm by KDL. Joints in radians, frames from the base to the flange.
class KdlArm {
 public:
    explicit KdlArm(const Arm& arm);
    ~KdlArm();

    KDL::Frame forward(const Joints& q) const;
    // A column for each joint, in the base frame.
    std::vector<KDL::Twist> jacobian(const Joints& q) const;
    double smallest_singular_value(const Joints& q) const;
    // The angles after one step of the pseudo-inverse towards the target.
    Joints pseudo_inverse_step(const Joints& q, const KDL::Frame& target) const;
    // A pull to mid-range, a 70th of the distance over the squared range, less the part that moves the flange.
    Joints pull_to_mid_range(const Joints& q) const;
    // False when KDL finds no solution from there.
    bool solve(const KDL::Frame& target, const Joints& from, Joints& found) const;

    double metres_off(const Joints& q, const KDL::Frame& target) const;
    double radians_off(const Joints& q, const KDL::Frame& target) const;
    float lower(int joint) const { return static_cast<float>(arm.min[joint]) * 0.017453292f; }
    float upper(int joint) const { return static_cast<float>(arm.max[joint]) * 0.017453292f; }
    bool within_limits(const Joints& q) const;
    static void set_limits(int joint, float min, float max);  // of the library's model
    Joints seed_near(const Joints& q, double distance, std::mt19937& generator) const;

    const Arm arm;

 private:
    struct Solvers;
    const std::unique_ptr<Solvers> solvers_;
};

}  // namespace zk::test
