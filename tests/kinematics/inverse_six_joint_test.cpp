// Inverse kinematics of the six-joint arms, against KDL.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/utilities/svd_eigen_HH.hpp>
#include <random>

#include "kinematics/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/inverse_kinematics.h"

namespace zk::test {
namespace {

constexpr double kMetres = 2e-5, kRadians = 2e-4;
constexpr double kTwoDegrees = 0.034906585039887;
constexpr float kUntouched = -77;
const Joints kPose = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};

struct Case {
    int model;
    int (*solve)(const float* seed, float* joint, Matrix world_T_tool);
    double singular;  // smallest singular value of the Jacobian from which on single precision holds the tolerances
    double power;     // of the distances that add up to the nearest solution
    int beyond_limit;
    bool meets_at_singularity, writes_without_solution;
};

std::ostream& operator<<(std::ostream& out, const Case& c) { return out << "model " << c.model; }

const Case kZk6 = {0, inverse_kinematics_zk6, 0.003, 2, -1, true, true};
const Case kZkl63_2 = {3, inverse_kinematics_zkl63_2, 0.005, 2, -1, true, true};
const Case kZkl63_3 = {4, inverse_kinematics_zkl63_3, 0.005, 2, -2, true, false};
const Case kOrb6 = {5, inverse_kinematics_orb6, 0.002, 1, -2, false, false};
const Case kOrb62 = {6, inverse_kinematics_orb6, 0.002, 1, -2, false, false};
const Case kOrb63 = {8, inverse_kinematics_orb6, 0.002, 1, -2, false, false};

testing::AssertionResult same_joints(const Joints& actual, const Joints& expected, double tolerance) {
    for (int i = 0; i < 6; ++i) {
        if (!(std::fabs(actual[i] - expected[i]) < tolerance)) {
            return testing::AssertionFailure()
                   << "joint " << i + 1 << " is " << actual[i] << " instead of " << expected[i];
        }
    }
    return testing::AssertionSuccess();
}

KDL::JntArray array_of(const Joints& q) {
    KDL::JntArray angles(6);
    for (int i = 0; i < 6; ++i) angles(i) = q[i];
    return angles;
}

// An arm, its solver, and an output that shows what was written.
class SixJoints : public testing::Test {
 protected:
    explicit SixJoints(const Case& c) : case_(c), arm_(arm_of(c.model, 0)), chain_(kdl_chain(arm_)) {
        EXPECT_EQ(libalgo_set_robot_and_sensor_type(c.model, 0), 0);
    }

    void mount_at_random() {
        std::uniform_real_distribution<float> metres(-0.3f, 0.3f), angle(-3.1f, 3.1f);
        float tool[6], mounting[3];
        for (int i = 0; i < 6; ++i) tool[i] = i < 3 ? metres(generator_) : angle(generator_);
        for (float& m : mounting) m = angle(generator_);
        libalgo_set_tool_cs_params(tool);
        libalgo_set_robot_install_angle(mounting);
        flange_T_tool_ = {KDL::Rotation::RPY(tool[3], tool[4], tool[5]), KDL::Vector(tool[0], tool[1], tool[2])};
        world_T_base_ = KDL::Frame(KDL::Rotation::RPY(mounting[0], mounting[1], mounting[2]));
    }

    KDL::Frame base_T_flange(const Joints& q) const {
        KDL::Frame frame;
        EXPECT_GE(KDL::ChainFkSolverPos_recursive(chain_).JntToCart(array_of(q), frame), 0);
        return frame;
    }
    KDL::Frame base_T_flange(const Matrix& target) const {
        return world_T_base_.Inverse() * to_kdl(target) * flange_T_tool_.Inverse();
    }
    Matrix target(const Joints& q) const { return to_matrix(world_T_base_ * base_T_flange(q) * flange_T_tool_); }

    // The point d6 before the flange on its axis, from the point of joint 1's axis at the height of joint 2.
    KDL::Vector wrist_of(const KDL::Frame& flange) const {
        return flange * KDL::Vector(0, 0, -arm_.d[5]) - KDL::Vector(0, 0, arm_.d[0]);
    }

    double smallest_singular_value(const Joints& q) const {
        KDL::Jacobian jacobian(6);
        KDL::ChainJntToJacSolver(chain_).JntToJac(array_of(q), jacobian);
        Eigen::MatrixXd u(6, 6), v(6, 6);
        Eigen::VectorXd values(6), scratch(6);
        EXPECT_EQ(KDL::svd_eigen_HH(jacobian.data, u, values, v, scratch), 0);
        return values.minCoeff();
    }

    static double radians(double degrees) { return degrees * M_PI / 180; }

    Joints near(const Joints& q) {
        std::uniform_real_distribution<double> distance(-0.1, 0.1);
        Joints seed{};
        for (int i = 0; i < 6; ++i) {
            seed[i] =
                static_cast<float>(std::clamp(q[i] + distance(generator_), radians(arm_.min[i]), radians(arm_.max[i])));
        }
        return seed;
    }

    int solve(const Joints& seed, const Matrix& at) { return case_.solve(seed.data(), solved_.data(), at); }
    int solve(const Joints& seed, const Joints& q) { return solve(seed, target(q)); }
    int written() const { return 6 - static_cast<int>(std::count(solved_.begin(), solved_.begin() + 6, kUntouched)); }

    testing::AssertionResult meets(const Matrix& at, double times = 1) const {
        const KDL::Frame actual = base_T_flange(solved_), wanted = base_T_flange(at);
        const double metres = (actual.p - wanted.p).Norm(), turn = angle_between(actual.M, wanted.M);
        if (metres < kMetres * times && turn < kRadians * times) return testing::AssertionSuccess();
        return testing::AssertionFailure() << metres << " m and " << turn << " rad off";
    }

    static void set_limits(int joint, float min, float max) {
        robot.joint_config[joint].pos_min = min;
        robot.joint_config[joint].pos_max = max;
    }

    const Case case_;
    const Arm& arm_;
    const KDL::Chain chain_;
    KDL::Frame world_T_base_, flange_T_tool_;
    std::mt19937 generator_{1};
    Joints solved_{kUntouched, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
};

class EverySolver : public SixJoints, public testing::WithParamInterface<Case> {
 protected:
    EverySolver() : SixJoints(GetParam()) {}

    // Where the parallel-axis arms take joint 6 from the seed, or stretch the elbow, they keep the wrist point at best.
    bool bends_the_target() const {
        return !case_.meets_at_singularity && (std::fabs(std::sin(solved_[4])) < kTwoDegrees + 1e-5 || solved_[2] == 0);
    }

    // Model 4 counts the way round that is shorter, within the limits or not.
    double distance(const Joints& q, const Joints& seed) const {
        double sum = 0;
        for (int j = 0; j < 6; ++j) {
            const double away = q[j] - seed[j], counted = case_.model == 4 ? std::remainder(away, 2 * M_PI) : away;
            sum += (j < 3 ? 2.4 : 1) * std::pow(std::fabs(counted), case_.power);
        }
        return sum;
    }

    // A regular solution within the limits that KDL finds from this posture, each joint less than half a turn from the
    // seed; false when it finds none.
    bool find_solution(const KDL::Frame& flange, const Joints& from, const Joints& seed, Joints& q) const {
        KDL::ChainIkSolverPos_LMA kdl(chain_, Eigen::Matrix<double, 6, 1>::Ones(), 1e-5, 100);
        KDL::JntArray found(6);
        if (kdl.CartToJnt(array_of(from), flange, found) < 0) return false;
        for (int j = 0; j < 6; ++j) {
            const double away = std::remainder(found(j) - seed[j], 2 * M_PI), angle = seed[j] + away;
            if (std::fabs(away) > 3.13 || angle < radians(arm_.min[j]) || angle > radians(arm_.max[j])) return false;
            q[j] = static_cast<float>(angle);
        }
        return smallest_singular_value(q) > 5 * case_.singular;
    }
};

TEST_P(EverySolver, ReachesTheTargetAndStaysAtTheSeed) {
    int singular = 0;
    constexpr int kRounds = 4000;
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        if (round % 4 == 1) mount_at_random();
        const Joints q = random_joints(arm_, generator_, 0.95);
        const Matrix at = target(q);
        const bool regular =
            smallest_singular_value(q) >= case_.singular && (case_.meets_at_singularity || !bends_the_target());
        singular += !regular;
        const int status = solve(near(q), at);
        // Close to the wrist's singularity single precision does not resolve joint 5 better.
        const double times = std::fabs(std::sin(q[4])) < 0.003 ? 10 : 1;
        EXPECT_TRUE(status != 0 || bends_the_target() || meets(at, times));
        if (!regular || std::fabs(std::sin(q[4])) < kTwoDegrees) continue;
        EXPECT_EQ(status, 0);
        EXPECT_EQ(solve(q, at), 0);
        EXPECT_TRUE(same_joints(solved_, q, 1e-3));
    }
    EXPECT_LT(singular, kRounds * 0.06);
}

TEST_P(EverySolver, ReturnsTheNearestSolution) {
    int compared = 0;
    for (int round = 0; round < 120 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        if (round % 4 == 1) mount_at_random();
        const Joints q = random_joints(arm_, generator_, 0.95), seed = random_joints(arm_, generator_, 0.5);
        const Matrix at = target(q);
        const int status = solve(seed, at);
        if (smallest_singular_value(q) < case_.singular || bends_the_target()) continue;
        Joints other{};
        for (int start = 0; start < 20; ++start) {
            if (!find_solution(base_T_flange(at), random_joints(arm_, generator_), seed, other)) continue;
            ++compared;
            EXPECT_TRUE(status == 0 || case_.model == 4);  // which looks at limits last
            if (status != 0) continue;
            EXPECT_TRUE(meets(at));
            EXPECT_LT(distance(solved_, seed), distance(other, seed) + 0.02);
        }
    }
    EXPECT_GT(compared, 200);
}

TEST_P(EverySolver, LimitsHaveHalfADegreeOfSlack) {
    for (int joint = 0; joint < 6; ++joint) {
        for (const float sign : {1.0f, -1.0f}) {
            for (const float beyond : {0.0086f, 0.0088f}) {
                // Only the branch of the pose lies within such limits.
                for (int other = 0; other < 6; ++other) set_limits(other, kPose[other] - 0.1f, kPose[other] + 0.1f);
                const float limit = kPose[joint] - sign * beyond;
                sign > 0 ? set_limits(joint, -3, limit) : set_limits(joint, limit, 3);
                EXPECT_EQ(solve(kPose, kPose), beyond < 0.0087f ? 0 : case_.beyond_limit) << joint;
            }
        }
    }
}

TEST_P(EverySolver, WithoutASolutionTheOutputIsTheZeroPoseOrUntouched) {
    const Matrix at = target(kPose);
    Matrix far = at, inside = at, nowhere = at;
    far.m[0][3] = 2;
    for (int i = 0; i < 2; ++i) inside.m[i][3] = arm_.d[5] * inside.m[i][2];  // on the axis of joint 1
    nowhere.m[1][1] = NAN;
    Joints zero{};
    for (int j = 0; j < 6; ++j) zero[j] = static_cast<float>(-radians(arm_.offset[j]));
    zero[5] += 6.2831855f;
    for (const unsigned avoid : {0u, 1u}) {
        libalgo_set_is_avoid_Singularity(avoid);
        for (const Matrix& unreached : {far, nowhere, case_.writes_without_solution ? far : inside}) {
            solved_.fill(kUntouched);
            EXPECT_EQ(solve({0, 0, 0, 0, 0, 7}, unreached), -1);
            EXPECT_TRUE(case_.writes_without_solution ? bool(same_joints(solved_, zero, 1e-6)) : written() == 0);
        }
    }
}

TEST_P(EverySolver, WritesUpToTheJointBeyondItsLimit) {
    set_limits(2, 2.0f, 2.1f);
    EXPECT_EQ(solve(kPose, kPose), case_.beyond_limit);
    EXPECT_EQ(written(), case_.writes_without_solution ? 6 : 3);
}

TEST_P(EverySolver, WholeTurnsOfJoint6AreThoseOfTheSeed) {
    Joints q = kPose, seed = kPose;
    for (const float limit : {20.0f, 12.5f}) {
        set_limits(5, -limit, limit);
        for (const float q6 : {13.0f, 6.2f, -0.3f, -6.4f, -13.0f}) {
            q[5] = q6;
            seed[5] = q6 + 0.1f;
            const bool beyond = std::fabs(q6) > limit, a_turn_back = beyond && case_.model == 4;
            EXPECT_EQ(solve(seed, q), beyond && !a_turn_back ? -2 : 0);
            if (a_turn_back) q[5] -= std::copysign(6.2831855f, q6);
            EXPECT_TRUE(same_joints(solved_, q, 1e-4)) << q6;
        }
    }
}

TEST_P(EverySolver, NanInTheSeedIsNeverReturned) {
    for (int j = 0; j < 6; ++j) {
        for (const float q5 : {0.0f, 0.8f}) {
            Joints q = kPose, seed = kPose;
            q[4] = q5;
            seed[j] = NAN;
            EXPECT_TRUE(solve(seed, q) != 0 || bends_the_target() || meets(target(q))) << j;
        }
    }
}

TEST_P(EverySolver, ReadsTheLengthsAndOffsetsOfTheModel) {
    DhParams dh = dh_default;
    Arm longer = arm_;
    KDL::JntArray angles = array_of(kPose);
    for (int joint = 0; joint < 6; ++joint) {
        if (dh.d[joint] != 0) dh.d[joint] += 0.01f * static_cast<float>(joint + 1);
        if (dh.a[joint] != 0) dh.a[joint] += 0.01f * static_cast<float>(joint + 1);
        dh.offset[joint] += 0.01f * static_cast<float>(joint);
        angles(joint) += 0.01 * joint;
    }
    libalgo_set_dh_params(&dh);
    std::copy_n(dh.d, 6, longer.d.begin());
    std::copy_n(dh.a, 6, longer.a.begin());
    KDL::Frame flange;
    ASSERT_GE(KDL::ChainFkSolverPos_recursive(kdl_chain(longer)).JntToCart(angles, flange), 0);
    ASSERT_EQ(solve(kPose, to_matrix(flange)), 0);
    EXPECT_TRUE(same_joints(solved_, kPose, 2e-5));
}

INSTANTIATE_TEST_SUITE_P(, EverySolver, testing::Values(kZk6, kZkl63_2, kZkl63_3, kOrb6, kOrb62, kOrb63),
                         [](const auto& c) { return "Model" + std::to_string(c.param.model); });

struct Zk6 : SixJoints {
    Zk6() : SixJoints(kZk6) {}
};
struct Zkl63_2 : SixJoints {
    Zkl63_2() : SixJoints(kZkl63_2) {}
};
struct Zkl63_3 : SixJoints {
    Zkl63_3() : SixJoints(kZkl63_3) {}
};
struct Orb6 : SixJoints {
    Orb6() : SixJoints(kOrb6) {}
};

TEST_F(Zk6, WristPointOnTheAxisOfJoint1KeepsTheSeed) {
    // With the upper arm tilted by q2 the forearm points back to the axis where a3 sin q2 + d4 sin(q2 + q3) = 0.
    const double q2 = 0.5, q23 = -std::asin(0.256 * std::sin(q2) / 0.21);
    const Joints q = {0.7f, static_cast<float>(q2), static_cast<float>(q23 - q2), 0.3f, 0.9f, -0.4f};
    for (const float q1 : {0.7f, -2.2f, 3.0f}) {
        Joints seed = q;
        seed[0] = q1;
        Matrix at = target(q);
        at.m[0][3] += 3e-5f;
        at.m[1][3] -= 3e-5f;
        ASSERT_EQ(solve(seed, at), 0);
        EXPECT_EQ(solved_[0], q1);
        EXPECT_TRUE(meets(at, 4));
        at.m[0][3] += 3e-5f;
        ASSERT_EQ(solve(seed, at), 0);
        EXPECT_NE(solved_[0], q1);
        EXPECT_TRUE(meets(at));
    }
}

TEST_F(Zk6, StraightArmHasSlack) {
    const Joints q = {0.2f, 0.6f, 0, 0.4f, 1.0f, 0.1f};
    const Matrix at = target(q);
    ASSERT_EQ(solve(q, at), 0);
    EXPECT_TRUE(same_joints(solved_, q, 2e-3));
    // Along the arm, by a length that takes the sine of model joint 3 from 1 to less, and to more, than 1.0002.
    const KDL::Vector along = wrist_of(base_T_flange(q)) / (0.256 + 0.21);
    const double per_metre = (0.256 + 0.21) / (0.256 * 0.21);
    for (const double excess : {0.00017, 0.00023}) {
        Matrix out = at;
        for (int i = 0; i < 3; ++i) out.m[i][3] += static_cast<float>(along[i] * excess / per_metre);
        EXPECT_EQ(solve(q, out), excess < 0.0002 ? 0 : -1);
    }
}

TEST_F(Zk6, SingularWristIsSplitAsTheSeedSplitsItWhenAskedTo) {
    libalgo_set_is_avoid_Singularity(1);
    struct Row {
        float q4, q6, seed4, seed6, solved4, solved6;
    };
    const Row rows[] = {
        {0.5f, 0.3f, 0.1f, 0.2f, 0.35f, 0.45f},
        {0.4f, 0.4f, 0.1f, 0.2f, 0.35f, 0.45f},
        {2.9f, 2.9f, 2.8f, 2.8f, 2.9f, 2.9f},        // the sum is a turn up
        {-2.9f, -2.9f, -2.8f, -3.0f, -2.8f, -3.0f},  // and down
    };
    for (const Row& row : rows) {
        const Joints q = {0.4f, -0.6f, 1.1f, row.q4, 0, row.q6};
        ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, row.seed4, 0, row.seed6}, q), 0);
        EXPECT_NEAR(solved_[3], row.solved4, 1e-5);
        EXPECT_NEAR(solved_[5], row.solved6, 1e-5);
        EXPECT_TRUE(meets(target(q), 2));
    }
    // Beyond five degrees, and without the flag, the true joints come out.
    for (const float q5 : {0.088f, 0.08f}) {
        const Joints q = {0.4f, -0.6f, 1.1f, 0.5f, q5, 0.3f};
        ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.1f, q5, 0.2f}, q), 0);
        EXPECT_TRUE(same_joints(solved_, q, 1e-4));
        libalgo_set_is_avoid_Singularity(0);
    }
}

TEST_F(Zkl63_2, Joint5StaysOnItsSideOfHalfATurn) {
    for (const float q5 : {3.10f, -3.10f}) {
        Joints q = kPose;
        q[4] = q5;
        ASSERT_EQ(solve(q, q), 0);
        EXPECT_TRUE(same_joints(solved_, q, 1e-4));
    }
}

TEST_F(Zkl63_2, Joint1StaysWhereItIsUnderItsOwnAxis) {
    // a2 + a3 cos t2 + a4 cos t23 + d4 sin t23 = 0
    const double a2 = -0.086, a3 = 0.38, a4 = 0.069, d4 = 0.405, t2 = -1.9;
    const double t23 = std::asin(-(a2 + a3 * std::cos(t2)) / std::hypot(a4, d4)) - std::atan2(a4, d4);
    const Joints q = {0.4f, static_cast<float>(t2 + M_PI_2), static_cast<float>(t23 - t2 - M_PI_2), 0.3f, 0.8f, 0.2f};
    for (const float seed1 : {0.4f, -2.9f, 1.7f}) {
        Joints seed = q;
        seed[0] = seed1;
        ASSERT_EQ(solve(seed, q), 0);
        EXPECT_NEAR(solved_[0], seed1, 1e-6);
        EXPECT_TRUE(meets(target(q)));
    }
}

// The rule looks at the model angle, half a turn from the joint's.
TEST_F(Zkl63_2, HoldsTheWristOnlyWithJoint5NearMinusHalfATurn) {
    Joints straight = kPose, seed = kPose, without{};
    straight[4] = 0;
    for (const unsigned avoid : {0u, 1u}) {
        libalgo_set_is_avoid_Singularity(avoid);
        ASSERT_EQ(solve(seed, straight), 0);
        if (avoid == 0) without = solved_;
    }
    EXPECT_EQ(solved_, without);

    Joints q = kPose;
    q[3] = -1.5f;
    q[4] = seed[4] = -3.09f;
    const KDL::Rotation m = base_T_flange(q).M;
    const double s1 = std::sin(q[0]), c1 = std::cos(q[0]);
    const double sum = std::atan2(s1 * m(0, 0) - c1 * m(1, 0), s1 * m(0, 1) - c1 * m(1, 1));
    ASSERT_EQ(solve(seed, q), 0);
    const double difference = seed[5] + M_PI - seed[3];
    EXPECT_NEAR(solved_[3], (sum - difference) / 2, 1e-4);
    EXPECT_NEAR(std::remainder(solved_[5] + M_PI - (sum + difference) / 2, 2 * M_PI), 0, 1e-4);

    q[4] = seed[4] = 3.09f;
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_TRUE(same_joints(solved_, q, 1e-4));
}

// Each joint gets half of the difference of t4 + t6, or t6 - t4, from the seed's. The seed's seventh value is that of
// joint 6.
TEST_F(Zkl63_3, SplitsTheTurnOfASingularWristByTheSeed) {
    set_limits(4, -3.2f, 3.2f);
    struct Row {
        float q5, seventh, solved4, solved6;
    };
    for (const Row& row : {Row{0, 0, 0.45f, 0.35f},
                           {0, 0.3f, 0.3f, 0.5f},
                           {3.1415927f, 0, 0.25f, -0.15f},
                           {3.1415927f, 0.3f, 0.4f, 0}}) {
        Joints q = kPose, seed = kPose;
        q[3] = 0.6f;
        q[4] = seed[4] = row.q5;
        q[5] = 0.2f;
        seed[3] = 0.1f;
        seed[6] = row.seventh;
        ASSERT_EQ(solve(seed, q), 0);
        EXPECT_TRUE(same_joints(solved_, {q[0], q[1], q[2], row.solved4, row.q5, row.solved6}, 1e-3));
    }
    Joints q = kPose;
    q[4] = 0.01f;
    ASSERT_EQ(solve(kPose, q), 0);
    EXPECT_TRUE(same_joints(solved_, q, 1e-3));
}

TEST_F(Orb6, LinedUpWristKeepsJoint6OfTheSeed) {
    for (const float middle : {0.0f, 3.1415927f}) {
        for (const float q5 : {middle, middle - 0.03f, 0.03f - middle}) {
            const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, q5, 0.9f};
            ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.5f, q5, 0.2f}, q), 0) << q5;
            EXPECT_FLOAT_EQ(solved_[5], 0.2f);
            const KDL::Frame wanted = base_T_flange(q), actual = base_T_flange(solved_);
            EXPECT_LT((wrist_of(actual) - wrist_of(wanted)).Norm(), kMetres);
            EXPECT_LT(angle_between(actual.M, wanted.M), std::fabs(std::sin(q5)) + kRadians);
        }
    }
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.05f, 0.9f};
    ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.5f, 0.05f, 0.8f}, q), 0);
    EXPECT_TRUE(same_joints(solved_, q, 1e-4));
}

TEST_F(Orb6, CosineOfJoint5BeyondOneByRoundingCountsAsOne) {
    for (int round = 0; round < 500; ++round) {
        mount_at_random();
        Joints q = random_joints(arm_, generator_, 0.9);
        q[2] = std::copysign(std::max(std::fabs(q[2]), 0.3f), q[2]);
        q[4] = 0;
        ASSERT_EQ(solve(q, q), 0) << round;
        // A single-precision cosine resolves angles next to 0 to half a thousandth.
        EXPECT_LT(angle_between(base_T_flange(solved_).M, base_T_flange(target(q)).M), 1.5e-3) << round;
    }
}

// The arc tangent's argument vanishes there, and the sign of the other one decides.
TEST_F(Orb6, RightAnglesKeepTheirSide) {
    const float quarter = 1.5707964f;
    for (const float sum : {quarter, -quarter}) {
        for (const float q2 : {0.0f, 0.7f, 3.1415927f - 1e-6f}) {
            for (const float q3 : {-1.2f, 0.9f}) {
                const double q4 = std::remainder(sum - q2 - q3, 2 * M_PI);
                if (std::fabs(q4) > 2.4) continue;
                const Joints q = {0.3f, q2, q3, static_cast<float>(q4), 1.0f, -0.5f};
                ASSERT_EQ(solve(q, q), 0);
                EXPECT_TRUE(same_joints(solved_, q, 1e-4));
            }
        }
    }
}

TEST_F(Orb6, StraightArmHasSlack) {
    // Reaching backwards, so that the other shoulder, which is in front of the axis, does not reach farther.
    for (const float q2 : {-0.3f, -0.8f}) {
        const Joints q = {0.2f, q2, 0, 0.4f, 1.0f, 0.1f};
        const Matrix at = target(q);
        ASSERT_EQ(solve(q, at), 0);
        EXPECT_TRUE(same_joints(solved_, q, 2e-3));
        // Along the upper arm, by a length that takes the cosine of joint 3 from 1 to less, and to more, than 1.01.
        const double t2 = q2 - M_PI_2, per_metre = (0.26 + 0.24) / (0.26 * 0.24);
        for (const double excess : {0.009, 0.011}) {
            Matrix out = at;
            const double metres = excess / per_metre;
            out.m[0][3] += static_cast<float>(metres * std::cos(t2) * std::cos(0.2));
            out.m[1][3] += static_cast<float>(metres * std::cos(t2) * std::sin(0.2));
            out.m[2][3] -= static_cast<float>(metres * std::sin(t2));
            EXPECT_EQ(solve(q, out), excess < 0.01 ? 0 : -1);
        }
    }
}

TEST_F(Orb6, WristPointOnTheCylinderOfTheForearm) {
    // a2 + a3 cos t2 + a4 cos t23 + d5 sin t234 = 0
    const double a2 = -0.086, a3 = 0.26, a4 = 0.24, d5 = 0.11, t2 = -2.2, t3 = 1.9;
    const double t234 = std::asin(-(a2 + a3 * std::cos(t2) + a4 * std::cos(t2 + t3)) / d5);
    Joints q = {0.7f, static_cast<float>(t2 + M_PI_2), static_cast<float>(t3), 0, 1.2f, -0.4f};
    q[3] = static_cast<float>(t234 - t2 - t3 - M_PI_2);
    for (int round = 0; round < 50; ++round) {
        mount_at_random();
        ASSERT_EQ(solve(q, q), 0);
        const KDL::Frame wanted = base_T_flange(target(q)), actual = base_T_flange(solved_);
        EXPECT_LT((wrist_of(actual) - wrist_of(wanted)).Norm(), 3.2e-4);  // root of 1e-7
    }
}

TEST_F(Orb6, Joint6GoesToTheSideThatItsLimitsAllow) {
    Joints q = kPose, seed = kPose;
    q[5] = 3.2f;
    seed[5] = 3.1f;
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_NEAR(solved_[5], -3.0831852f, 2e-5);
}

TEST(FindNearestJoint, MovesByWholeTurnsWithinLimitsAndMargin) {
    constexpr double turn = 6.2831855f, two_turns = 12.566371f;
    struct Row {
        double seed, candidate, margin, lower, upper, moved, distance;
    };
    const Row rows[] = {
        {0, 1, 0, -3, 3, 1, 1},                               // already there
        {6, 1, 0, -10, 10, 1 + turn, turn - 5},               // up one
        {-12, 1, 0, -20, 20, 1 - two_turns, 13 - two_turns},  // down two
        {12, 1, 0, -20, 20, 1 + two_turns, two_turns - 11},   // up two
        {6, 1, 0, -3, 3, 1, 5},                               // the nearest is beyond the limit
        {turn / 2, 0, 0, -10, 10, 0, turn / 2},               // a tie keeps the lower
        {0, 3.05, 0.1, -3, 3, 3.05, 3.05},                    // within the margin
        {0, 3.05, 0, -3, 3, 3.05, 1e6},                       // nothing fits: it stays
        {0, 1, 0, 1, 1, 1, 1},                                // limits are included
        {NAN, 1, 0, -3, 3, 1, 1e6},
        {0, 1, 0, 3, -3, 1, 1e6},
    };
    for (const Row& row : rows) {
        double candidate = row.candidate;
        EXPECT_DOUBLE_EQ(find_nearest_joint(&row.seed, &candidate, &row.margin, row.lower, row.upper), row.distance);
        EXPECT_DOUBLE_EQ(candidate, row.moved);
    }
    double nan = NAN;
    EXPECT_EQ(find_nearest_joint(&rows[0].seed, &nan, &rows[0].margin, -3, 3), 1e6);
    EXPECT_TRUE(std::isnan(nan));
}

TEST(FindMinIndex, TakesTheFirstOfTheSmallest) {
    const double values[] = {3, 1, 2, 1, NAN};
    EXPECT_EQ(find_min_index(values, 5), 1);
    EXPECT_EQ(find_min_index(values + 2, 2), 1);
    EXPECT_EQ(find_min_index(values, 1), 0);
    EXPECT_EQ(find_min_index(values, 0), 0);
    EXPECT_EQ(find_min_index(nullptr, -1), 0);
    EXPECT_EQ(find_min_index(values + 4, 1), 0);
}

}  // namespace
}  // namespace zk::test
