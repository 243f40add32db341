// The seven-axis arms as the tests of their solvers see them: forward, Jacobian and pseudo-inverse by KDL and Eigen.
#pragma once

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <functional>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <random>

#include "kinematics/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/dense_matrix.h"

namespace zk::test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZK_UNDER_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZK_UNDER_SANITIZER 1
#endif
#endif
#ifndef ZK_UNDER_SANITIZER
#define ZK_UNDER_SANITIZER 0
#endif

// Sanitizers are slow: they get a share of the postures.
inline constexpr int kShare = ZK_UNDER_SANITIZER ? 10 : 1;

using Vector6 = Eigen::Matrix<double, 6, 1>;
using Vector7 = Eigen::Matrix<double, 7, 1>;
using Matrix67 = Eigen::Matrix<double, 6, 7>;

inline KDL::JntArray jnt_array(const Joints& q) {
    KDL::JntArray result(7);
    for (int i = 0; i < 7; ++i) result(i) = q[i];
    return result;
}

class SevenAxisArm {
 public:
    explicit SevenAxisArm(int model)
        : arm(arm_of(model, 0)), chain_(kdl_chain(arm)), forward_(chain_), jacobian_(chain_) {}

    KDL::Frame forward(const Joints& q) {
        KDL::Frame f;
        forward_.JntToCart(jnt_array(q), f);
        return f;
    }
    // In the base frame.
    Matrix67 jacobian(const Joints& q) {
        KDL::Jacobian j(7);
        jacobian_.JntToJac(jnt_array(q), j);
        return j.data;
    }
    // What the pseudo-inverse asks of the joints to bring the flange from its place at q to the target.
    Vector7 pseudo_inverse_step(const Joints& q, const KDL::Frame& target) {
        const Matrix67 J = jacobian(q);
        return J.transpose() * (J * J.transpose()).ldlt().solve(error(q, target));
    }
    double smallest_singular_value(const Joints& q) { return smallest_singular_value(jacobian(q)); }
    // Of the joints that are not at their limits in the answer.
    double smallest_free_singular_value(const Joints& q, const Joints& answer) {
        Matrix67 J = jacobian(q);
        for (int i = 0; i < 7; ++i) {
            if (at_limit(answer, i)) J.col(i).setZero();
        }
        return smallest_singular_value(J);
    }
    bool at_limit(const Joints& q, int i) const {
        constexpr float kClose = 2e-3f;  // a pull to mid-range away
        return q[i] < lower(i) + kClose || q[i] > upper(i) - kClose;
    }
    float lower(int i) const { return static_cast<float>(arm.min[i]) * 0.017453292f; }
    float upper(int i) const { return static_cast<float>(arm.max[i]) * 0.017453292f; }

    Joints seed_near(const Joints& q, double distance, std::mt19937& generator) const {
        std::uniform_real_distribution<double> off(-distance, distance);
        Joints seed = q;
        for (int i = 0; i < 7; ++i) {
            seed[i] = std::clamp(static_cast<float>(q[i] + off(generator)), lower(i), upper(i));
        }
        return seed;
    }

    const Arm arm;

 private:
    static double smallest_singular_value(const Matrix67& J) {
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix<double, 6, 6>> eigen(J * J.transpose(),
                                                                               Eigen::EigenvaluesOnly);
        return std::sqrt(std::max(0.0, eigen.eigenvalues()[0]));
    }
    Vector6 error(const Joints& q, const KDL::Frame& target) {
        const KDL::Twist t = KDL::diff(forward(q), target);
        return {t.vel.x(), t.vel.y(), t.vel.z(), t.rot.x(), t.rot.y(), t.rot.z()};
    }

    const KDL::Chain chain_;
    KDL::ChainFkSolverPos_recursive forward_;
    KDL::ChainJntToJacSolver jacobian_;
};

inline Mat to_mat(const KDL::Frame& f) { return matrix_to_mat(to_matrix(f)); }

inline double largest_difference(const Joints& a, const Joints& b) {
    double largest = 0;
    for (int i = 0; i < 7; ++i) largest = std::max(largest, std::fabs(static_cast<double>(a[i]) - b[i]));
    return largest;
}

inline double metres_off(SevenAxisArm& arm, const Joints& q, const KDL::Frame& target) {
    return (arm.forward(q).p - target.p).Norm();
}
inline double radians_off(SevenAxisArm& arm, const Joints& q, const KDL::Frame& target) {
    return angle_between(arm.forward(q).M, target.M);
}
inline void expect_reached(SevenAxisArm& arm, const Joints& q, const KDL::Frame& target, double times = 1) {
    EXPECT_LT(metres_off(arm, q, target), 2e-5 * times);
    EXPECT_LT(radians_off(arm, q, target), 2e-4 * times);
}
inline void expect_within_limits(const SevenAxisArm& arm, const Joints& q) {
    for (int i = 0; i < 7; ++i) {
        EXPECT_GE(q[i], arm.lower(i)) << i;
        EXPECT_LE(q[i], arm.upper(i)) << i;
    }
}

// A solver: from the seed to the target, joints to out; 0 when it found some. Where a seed is one of alignment it takes
// a single step that is exact for small motions only.
struct Solver {
    std::function<int(const Joints& seed, const KDL::Frame& target, Joints& out)> solve;
    std::function<bool(const Joints& seed)> near_alignment = [](const Joints&) { return false; };
};

struct Solved {
    int asked = 0, singular = 0, unsolved = 0;
    double farthest = 0;  // from a seed that is a solution itself, radians
};

// Random postures from seeds about them. What is answered must reach the target.
inline Solved solve_at_random(SevenAxisArm& arm, int times, double singular, const Solver& solver) {
    std::mt19937 generator(7);
    Solved result;
    for (int i = 0; i < times; ++i) {
        const Joints q = random_joints(arm.arm, generator, 0.95);
        Joints seed = arm.seed_near(q, 0.1, generator), out{};
        if (solver.near_alignment(seed)) seed = arm.seed_near(q, 0.001, generator);
        if (arm.smallest_singular_value(q) < singular) {
            ++result.singular;
            continue;
        }
        ++result.asked;
        const KDL::Frame target = arm.forward(q);
        for (const Joints& from : {seed, q}) {
            if (solver.solve(from, target, out) != 0) {
                ++result.unsolved;
                continue;
            }
            expect_reached(arm, out, target);
            expect_within_limits(arm, out);
            if (from == q) result.farthest = std::max(result.farthest, largest_difference(out, q));
        }
    }
    return result;
}

}  // namespace zk::test
