// What the tests of the six-joint solvers share: an arm with a random tool and mounting, targets and checks by KDL, and
// the choice among branches that a test has enumerated itself.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/utilities/svd_eigen_HH.hpp>
#include <optional>
#include <random>
#include <vector>

#include "kinematics/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/inverse_kinematics.h"

namespace zk::test {

using Angles = std::array<double, 6>;
using Solver = int (*)(const float* seed, float* joint, Matrix world_T_tool);

inline double radians(double degrees) { return degrees * M_PI / 180; }

// The same angle in (-pi, pi].
inline double reduced(double angle) {
    const double r = std::remainder(angle, 2 * M_PI);
    return r <= -M_PI ? r + 2 * M_PI : r;
}

class SixJointArm {
 public:
    SixJointArm(int model, int sensor) : arm(arm_of(model, sensor)), chain(kdl_chain(arm)) {
        EXPECT_EQ(libalgo_set_robot_and_sensor_type(model, sensor), 0);
    }

    void mount_at_random(std::mt19937& generator) {
        std::uniform_real_distribution<float> metres(-0.3f, 0.3f), angle(-3.1f, 3.1f);
        const float tool[6] = {metres(generator), metres(generator), metres(generator),
                               angle(generator),  angle(generator),  angle(generator)};
        const float mounting[3] = {angle(generator), angle(generator), angle(generator)};
        libalgo_set_tool_cs_params(tool);
        libalgo_set_robot_install_angle(mounting);
        flange_T_tool = {KDL::Rotation::RPY(tool[3], tool[4], tool[5]), KDL::Vector(tool[0], tool[1], tool[2])};
        world_T_base = KDL::Frame(KDL::Rotation::RPY(mounting[0], mounting[1], mounting[2]));
    }

    // The frame behind so many joints of the arm; joints are joint angles, not model angles.
    template <class Q>
    KDL::Frame base_T_link(const Q& q, int joints = 6) const {
        KDL::JntArray angles(6);
        for (int i = 0; i < 6; ++i) angles(i) = q[i];
        KDL::Frame frame;
        EXPECT_GE(KDL::ChainFkSolverPos_recursive(chain).JntToCart(angles, frame, 2 * joints), 0);
        return frame;
    }
    template <class Q>
    KDL::Frame world_T_tool(const Q& q) const {
        return world_T_base * base_T_link(q) * flange_T_tool;
    }
    KDL::Frame base_T_flange(const Matrix& target) const {
        return world_T_base.Inverse() * to_kdl(target) * flange_T_tool.Inverse();
    }
    // Where the point d6 behind the flange has to stand, from the point of joint 1's axis at the height of joint 2.
    KDL::Vector wrist_of(const KDL::Frame& base_T_flange) const {
        return base_T_flange * KDL::Vector(0, 0, -arm.d[5]) - KDL::Vector(0, 0, arm.d[0]);
    }

    double smallest_singular_value(const Joints& q) const {
        KDL::JntArray angles(6);
        for (int i = 0; i < 6; ++i) angles(i) = q[i];
        KDL::Jacobian jacobian(6);
        KDL::ChainJntToJacSolver(chain).JntToJac(angles, jacobian);
        Eigen::MatrixXd u(6, 6), v(6, 6);
        Eigen::VectorXd values(6), scratch(6);
        EXPECT_EQ(KDL::svd_eigen_HH(jacobian.data, u, values, v, scratch), 0);
        return values.minCoeff();
    }

    double offset(int joint) const { return radians(arm.offset[joint]); }
    double min(int joint) const { return radians(arm.min[joint]); }
    double max(int joint) const { return radians(arm.max[joint]); }

    Joints near(const Joints& q, std::mt19937& generator) const {
        std::uniform_real_distribution<double> distance(-0.1, 0.1);
        Joints seed{};
        for (int i = 0; i < 6; ++i) {
            seed[i] = static_cast<float>(std::clamp(q[i] + distance(generator), min(i), max(i)));
        }
        return seed;
    }

    const Arm& arm;
    const KDL::Chain chain;
    KDL::Frame world_T_base, flange_T_tool;
};

inline void set_limits(int joint, float min, float max) {
    JointConfig config;
    libalgo_get_joint_config(static_cast<int16_t>(joint), &config);
    config.pos_min = min;
    config.pos_max = max;
    libalgo_set_joint_config(static_cast<int16_t>(joint), &config);
}

// One arm and one solver, and an output that shows what was written.
class EdgeCase : public testing::Test {
 protected:
    EdgeCase(int model, Solver solver) : arm_(model, 0), solver_(solver) {}

    Matrix target(const Joints& q) const { return to_matrix(arm_.world_T_tool(q)); }
    int solve(const Joints& seed, const Matrix& at) { return solver_(seed.data(), solved_.data(), at); }
    int solve(const Joints& seed, const Joints& q) { return solve(seed, target(q)); }
    int written() const { return 6 - static_cast<int>(std::count(solved_.begin(), solved_.begin() + 6, kUntouched)); }

    static constexpr float kUntouched = -77;
    SixJointArm arm_;
    const Solver solver_;
    std::mt19937 generator_{1};
    Joints solved_{kUntouched, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
};

inline constexpr double kMetres = 2e-5, kRadians = 2e-4;

// Distances of two frames that count as none, or so many times that.
inline testing::AssertionResult reproduces(const KDL::Frame& actual, const KDL::Frame& target, double times = 1) {
    const double metres = (actual.p - target.p).Norm(), turn = angle_between(actual.M, target.M);
    if (metres < kMetres * times && turn < kRadians * times) return testing::AssertionSuccess();
    return testing::AssertionFailure() << metres << " m and " << turn << " rad off";
}

inline testing::AssertionResult same_joints(const float* actual, const Joints& expected, double tolerance) {
    for (int i = 0; i < 6; ++i) {
        if (!(std::fabs(actual[i] - expected[i]) < tolerance)) {
            return testing::AssertionFailure()
                   << "joint " << i + 1 << " is " << actual[i] << " instead of " << expected[i];
        }
    }
    return testing::AssertionSuccess();
}

// What a solver should do: its status, and the joints if it is 0.
struct Verdict {
    int status;
    Joints joint;
};

// Distance to the seed weighed as all solvers do.
template <class Distance>
double weighed(Distance distance) {
    double sum = 0;
    for (int j = 0; j < 6; ++j) sum += (j < 3 ? 2.4 : 1.0) * distance(j);
    return sum;
}

// The best of scored verdicts, none when a second one of another kind comes too close to tell.
struct Scored {
    double score;
    Verdict verdict;
};
inline std::optional<Verdict> clear_best(std::vector<Scored> all) {
    if (all.empty()) return Verdict{-1, {}};
    std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.score < b.score; });
    if (all.size() > 1 && all[1].score < all[0].score + 1e-3) return std::nullopt;
    return all[0].verdict;
}

}  // namespace zk::test
