// Inverse kinematics of the six-joint arms, against KDL.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "support/kdl_arm.h"
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

const Case kZk6 = {0, inverse_kinematics_zk6, 0.003, 2, -1, true, true};
const Case kZkl63_2 = {3, inverse_kinematics_zkl63_2, 0.005, 2, -1, true, true};
const Case kZkl63_3 = {4, inverse_kinematics_zkl63_3, 0.005, 2, -2, true, false};
const Case kOrb6 = {5, inverse_kinematics_orb6, 0.002, 1, -2, false, false};

void PrintTo(const Case& c, std::ostream* out) { *out << "model " << c.model; }

testing::AssertionResult same_joints(const Joints& actual, const Joints& expected, double tolerance) {
    for (int i = 0; i < 6; ++i) {
        if (!(std::fabs(actual[i] - expected[i]) < tolerance)) {
            return testing::AssertionFailure()
                   << "joint " << i + 1 << " is " << actual[i] << " instead of " << expected[i];
        }
    }
    return testing::AssertionSuccess();
}

// An arm in the model and its solver. Targets are frames of the flange.
class SixJoints : public KdlArm {
 public:
    explicit SixJoints(const Case& c) : KdlArm(arm_of(c.model, 0)), solver(c) {
        EXPECT_EQ(libalgo_set_robot_and_sensor_type(c.model, 0), 0);
    }

    void mount_at_random() {
        const RandomFrame tool(generator), mounting(generator);
        libalgo_set_tool_cs_params(tool.params);
        libalgo_set_robot_install_angle(mounting.angles());
        flange_T_tool_ = tool.frame();
        world_T_base_ = KDL::Frame(mounting.frame().M);
    }

    int solve(const Joints& seed, const KDL::Frame& flange) {
        return solver.solve(seed.data(), solved.data(), to_matrix(world_T_base_ * flange * flange_T_tool_));
    }
    int solve(const Joints& seed, const Joints& q) { return solve(seed, forward(q)); }

    testing::AssertionResult meets(const KDL::Frame& flange, double times = 1) const {
        const double metres = metres_off(solved, flange), turn = radians_off(solved, flange);
        if (metres < kMetres * times && turn < kRadians * times) return testing::AssertionSuccess();
        return testing::AssertionFailure() << metres << " m and " << turn << " rad off";
    }
    // The distance of the wrist point, d6 before the flange, from the target's.
    double wrist_off(const KDL::Frame& flange) const {
        const KDL::Vector before_flange(0, 0, -arm.d[5]);
        return (forward(solved) * before_flange - flange * before_flange).Norm();
    }
    // An arm with parallel axes misses the target where it takes joint 6 from the seed or straightens the elbow.
    bool bends_the_target() const {
        return !solver.meets_at_singularity && (std::fabs(std::sin(solved[4])) < kTwoDegrees + 1e-5 || solved[2] == 0);
    }

    const Case solver;
    std::mt19937 generator{1};
    Joints solved{kUntouched, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};

 private:
    KDL::Frame world_T_base_, flange_T_tool_;
};

class EverySolver : public testing::TestWithParam<Case> {
 protected:
    // Model 4 counts the shorter way round, within the limits or not.
    double distance(const Joints& q, const Joints& seed) const {
        double sum = 0;
        for (int j = 0; j < 6; ++j) {
            const double away = q[j] - seed[j], counted = case_.model == 4 ? std::remainder(away, 2 * M_PI) : away;
            sum += (j < 3 ? 2.4 : 1) * std::pow(std::fabs(counted), case_.power);
        }
        return sum;
    }

    // A regular solution that KDL finds from this posture, within the limits and half a turn of the seed. False for
    // none.
    bool find_solution(const KDL::Frame& flange, const Joints& from, const Joints& seed, Joints& q) const {
        Joints found{};
        if (!arm_.KdlArm::solve(flange, from, found)) return false;
        for (int j = 0; j < 6; ++j) {
            const double away = std::remainder(found[j] - seed[j], 2 * M_PI);
            if (std::fabs(away) > 3.13) return false;
            q[j] = static_cast<float>(seed[j] + away);
        }
        return arm_.within_limits(q) && arm_.smallest_singular_value(q) > 5 * case_.singular;
    }

    const Case& case_ = GetParam();
    SixJoints arm_{case_};
};

TEST_P(EverySolver, ReachesTheTargetAndStaysAtTheSeed) {
    int singular = 0;
    const int rounds = 4000 / kShare;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        if (round % 4 == 1) arm_.mount_at_random();
        const Joints q = random_joints(arm_.arm, arm_.generator, 0.95);
        const KDL::Frame at = arm_.forward(q);
        const int status = arm_.solve(arm_.seed_near(q, 0.1, arm_.generator), at);
        const bool regular = arm_.smallest_singular_value(q) >= case_.singular && !arm_.bends_the_target();
        singular += !regular;
        // Near the wrist's singularity single precision resolves joint 5 no better.
        const double times = std::fabs(std::sin(q[4])) < 0.003 ? 10 : 1;
        EXPECT_TRUE(status != 0 || arm_.bends_the_target() || arm_.meets(at, times));
        if (!regular || std::fabs(std::sin(q[4])) < kTwoDegrees) continue;
        EXPECT_EQ(status, 0);
        EXPECT_EQ(arm_.solve(q, at), 0);
        EXPECT_TRUE(same_joints(arm_.solved, q, 1e-3));
    }
    EXPECT_LT(singular, rounds * 0.06);
}

TEST_P(EverySolver, ReturnsTheNearestSolution) {
    int compared = 0;
    for (int round = 0; round < 120 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const Joints q = random_joints(arm_.arm, arm_.generator, 0.95);
        const Joints seed = random_joints(arm_.arm, arm_.generator, 0.5);
        const KDL::Frame at = arm_.forward(q);
        const int status = arm_.solve(seed, at);
        if (arm_.smallest_singular_value(q) < case_.singular || arm_.bends_the_target()) continue;
        Joints other{};
        for (int start = 0; start < 20; ++start) {
            if (!find_solution(at, random_joints(arm_.arm, arm_.generator), seed, other)) continue;
            ++compared;
            EXPECT_TRUE(status == 0 || case_.model == 4);  // model 4 tests limits last
            if (status != 0) continue;
            EXPECT_TRUE(arm_.meets(at));
            EXPECT_LT(distance(arm_.solved, seed), distance(other, seed) + 0.02);
        }
    }
    EXPECT_GT(compared, 200);
}

TEST_P(EverySolver, LimitsHaveHalfADegreeOfSlack) {
    for (int joint = 0; joint < 6; ++joint) {
        for (const float sign : {1.0f, -1.0f}) {
            for (const float beyond : {0.0086f, 0.0088f}) {
                // Only the branch of the pose lies within such limits.
                for (int other = 0; other < 6; ++other)
                    arm_.set_limits(other, kPose[other] - 0.1f, kPose[other] + 0.1f);
                const float limit = kPose[joint] - sign * beyond;
                sign > 0 ? arm_.set_limits(joint, -3, limit) : arm_.set_limits(joint, limit, 3);
                arm_.solved.fill(kUntouched);
                EXPECT_EQ(arm_.solve(kPose, kPose), beyond < 0.0087f ? 0 : case_.beyond_limit) << joint;
                // Some solvers stop at the joint beyond its limit.
                const bool writes_all = beyond < 0.0087f || case_.writes_without_solution;
                EXPECT_EQ(std::count(arm_.solved.begin(), arm_.solved.begin() + 6, kUntouched),
                          writes_all ? 0 : 5 - joint);
            }
        }
    }
}

TEST_P(EverySolver, WithoutASolutionTheOutputIsTheZeroPoseOrUntouched) {
    KDL::Frame far = arm_.forward(kPose), on_axis_1 = far, undefined = far;
    far.p.x(2);
    on_axis_1.p = {arm_.arm.d[5] * far.M(0, 2), arm_.arm.d[5] * far.M(1, 2), far.p.z()};
    undefined.M(1, 1) = NAN;
    Joints zero{};
    for (int j = 0; j < 6; ++j) zero[j] = static_cast<float>(-arm_.arm.offset[j] * M_PI / 180);
    zero[5] += 6.2831855f;
    for (const unsigned avoid : {0u, 1u}) {
        libalgo_set_is_avoid_Singularity(avoid);
        for (const KDL::Frame& unreached : {far, undefined, case_.writes_without_solution ? far : on_axis_1}) {
            arm_.solved.fill(kUntouched);
            const Joints untouched = arm_.solved;
            EXPECT_EQ(arm_.solve({0, 0, 0, 0, 0, 7}, unreached), -1);
            EXPECT_TRUE(same_joints(arm_.solved, case_.writes_without_solution ? zero : untouched, 1e-6));
        }
    }
}

TEST_P(EverySolver, WholeTurnsOfJoint6AreThoseOfTheSeed) {
    Joints q = kPose, seed = kPose;
    for (const float limit : {20.0f, 12.5f}) {
        arm_.set_limits(5, -limit, limit);
        for (const float q6 : {13.0f, 6.2f, -0.3f, -6.4f, -13.0f}) {
            q[5] = q6;
            seed[5] = q6 + 0.1f;
            const bool beyond = std::fabs(q6) > limit, a_turn_back = beyond && case_.model == 4;
            EXPECT_EQ(arm_.solve(seed, q), beyond && !a_turn_back ? -2 : 0);
            if (a_turn_back) q[5] -= std::copysign(6.2831855f, q6);
            EXPECT_TRUE(same_joints(arm_.solved, q, 1e-4)) << q6;
        }
    }
}

TEST_P(EverySolver, NanInTheSeedIsNeverReturned) {
    for (int j = 0; j < 6; ++j) {
        for (const float q5 : {0.0f, 0.8f}) {
            Joints q = kPose, seed = kPose;
            q[4] = q5;
            seed[j] = NAN;
            EXPECT_TRUE(arm_.solve(seed, q) != 0 || arm_.bends_the_target() || arm_.meets(arm_.forward(q))) << j;
        }
    }
}

TEST_P(EverySolver, ReadsTheLengthsAndOffsetsOfTheModel) {
    DhParams dh = dh_default;
    Arm longer = arm_.arm;
    Joints dh_angles = kPose;
    for (int joint = 0; joint < 6; ++joint) {
        const float change = 0.01f * static_cast<float>(joint + 1);
        if (dh.d[joint] != 0) longer.d[joint] = dh.d[joint] += change;
        if (dh.a[joint] != 0) longer.a[joint] = dh.a[joint] += change;
        dh.offset[joint] += change;
        dh_angles[joint] += change;
    }
    libalgo_set_dh_params(&dh);
    ASSERT_EQ(arm_.solve(kPose, KdlArm(longer).forward(dh_angles)), 0);
    EXPECT_TRUE(same_joints(arm_.solved, kPose, 2e-5));
}

INSTANTIATE_TEST_SUITE_P(, EverySolver, testing::Values(kZk6, kZkl63_2, kZkl63_3, kOrb6),
                         [](const auto& c) { return "Model" + std::to_string(c.param.model); });

TEST(SixJointWrist, SingularWristFollowsTheSeed) {
    constexpr float pi = 3.1415927f;
    using Angles = std::array<float, 4>;  // joints 4 to 6, and the seed's seventh value
    const struct {
        const Case& solver;
        unsigned avoid;  // singularities
        Angles q, seed, solved;
    } rows[] = {
        // The sum of joints 4 and 6 is that of the pose, their difference that of the seed.
        {kZk6, 1, {0.5f, 0, 0.3f}, {0.1f, 0, 0.2f}, {0.35f, 0, 0.45f}},
        {kZk6, 1, {0.4f, 0, 0.4f}, {0.1f, 0, 0.2f}, {0.35f, 0, 0.45f}},
        {kZk6, 1, {2.9f, 0, 2.9f}, {2.8f, 0, 2.8f}, {2.9f, 0, 2.9f}},        // the sum is a turn up
        {kZk6, 1, {-2.9f, 0, -2.9f}, {-2.8f, 0, -3.0f}, {-2.8f, 0, -3.0f}},  // and down
        // Beyond five degrees, and without the flag, the joints are those of the pose.
        {kZk6, 1, {0.5f, 0.088f, 0.3f}, {0.1f, 0.088f, 0.2f}, {0.5f, 0.088f, 0.3f}},
        {kZk6, 0, {0.5f, 0.08f, 0.3f}, {0.1f, 0.08f, 0.2f}, {0.5f, 0.08f, 0.3f}},
        // Joint 5 stays on its side of half a turn.
        {kZkl63_2, 0, {0.3f, 3.1f, 0.2f}, {0.3f, 3.1f, 0.2f}, {0.3f, 3.1f, 0.2f}},
        {kZkl63_2, 0, {0.3f, -3.1f, 0.2f}, {0.3f, -3.1f, 0.2f}, {0.3f, -3.1f, 0.2f}},
        {kZkl63_2, 1, {0.3f, 3.09f, 0.2f}, {0.3f, 3.09f, 0.2f}, {0.3f, 3.09f, 0.2f}},
        // Joints 4 and 6 share the change of t4 + t6, or of t6 - t4, equally. The seed's seventh value stands for its
        // joint 6.
        {kZkl63_3, 0, {0.6f, 0, 0.2f}, {0.1f, 0, 0.2f, 0}, {0.45f, 0, 0.35f}},
        {kZkl63_3, 0, {0.6f, 0, 0.2f}, {0.1f, 0, 0.2f, 0.3f}, {0.3f, 0, 0.5f}},
        {kZkl63_3, 0, {0.6f, pi, 0.2f}, {0.1f, pi, 0.2f, 0}, {0.25f, pi, -0.15f}},
        {kZkl63_3, 0, {0.6f, pi, 0.2f}, {0.1f, pi, 0.2f, 0.3f}, {0.4f, pi, 0}},
        {kZkl63_3, 0, {0.3f, 0.01f, 0.2f}, {0.3f, 0.8f, 0.2f}, {0.3f, 0.01f, 0.2f}},
        // Joint 6 moves within its limits. Beyond two degrees it is that of the pose.
        {kOrb6, 0, {0.3f, 0.8f, 3.2f}, {0.3f, 0.8f, 3.1f}, {0.3f, 0.8f, -3.0831852f}},
        {kOrb6, 0, {0.3f, 0.05f, 0.9f}, {0.5f, 0.05f, 0.8f}, {0.3f, 0.05f, 0.9f}},
    };
    for (const auto& row : rows) {
        SixJoints arm(row.solver);
        arm.set_limits(4, -3.2f, 3.2f);
        libalgo_set_is_avoid_Singularity(row.avoid);
        const auto posture = [](const Angles& w) { return Joints{0.4f, -0.6f, 1.1f, w[0], w[1], w[2], w[3]}; };
        EXPECT_EQ(arm.solve(posture(row.seed), posture(row.q)), 0);
        EXPECT_TRUE(same_joints(arm.solved, posture(row.solved), 1e-3)) << "model " << arm.arm.model << ' ' << row.q[1];
        EXPECT_TRUE(arm.meets(arm.forward(posture(row.q)), 2));
    }
}

// The rule reads the model angle, which is half a turn from the joint's.
TEST(SixJointWrist, Model3IsHeldOnlyWithJoint5NearMinusHalfATurn) {
    SixJoints arm(kZkl63_2);
    Joints straight = kPose, without{};
    straight[4] = 0;
    ASSERT_EQ(arm.solve(kPose, straight), 0);
    without = arm.solved;
    libalgo_set_is_avoid_Singularity(1);
    ASSERT_EQ(arm.solve(kPose, straight), 0);
    EXPECT_EQ(arm.solved, without);

    Joints q = kPose, seed = kPose;
    q[3] = -1.5f;
    q[4] = seed[4] = -3.09f;
    const KDL::Rotation m = arm.forward(q).M;
    const double s1 = std::sin(q[0]), c1 = std::cos(q[0]);
    const double sum = std::atan2(s1 * m(0, 0) - c1 * m(1, 0), s1 * m(0, 1) - c1 * m(1, 1));
    ASSERT_EQ(arm.solve(seed, q), 0);
    const double difference = seed[5] + M_PI - seed[3];
    EXPECT_NEAR(arm.solved[3], (sum - difference) / 2, 1e-4);
    EXPECT_NEAR(std::remainder(arm.solved[5] + M_PI - (sum + difference) / 2, 2 * M_PI), 0, 1e-4);
}

TEST(SixJointWrist, ParallelAxesKeepJoint6OfTheSeedWhenLinedUp) {
    SixJoints arm(kOrb6);
    int missed = 0;
    for (int round = 0; round < 100; ++round) {
        for (const float middle : {0.0f, 3.1415927f}) {
            for (const float q5 : {middle, middle - 0.03f, 0.03f - middle}) {
                const KDL::Frame wanted = arm.forward({0.4f, -0.6f, 1.1f, 0.3f, q5, 0.9f});
                const int status = arm.solve({0.4f, -0.6f, 1.1f, 0.5f, q5, 0.2f}, wanted);
                if (status != 0 || std::fabs(arm.solved[5] - 0.2f) > 1e-6) {
                    ++missed;
                    continue;
                }
                EXPECT_LT(arm.wrist_off(wanted), kMetres);
                // A single-precision cosine resolves angles next to 0 to half a thousandth.
                EXPECT_LT(arm.radians_off(arm.solved, wanted), std::fabs(std::sin(q5)) + 1.5e-3);
            }
        }
        arm.mount_at_random();
    }
    EXPECT_LE(missed, 2);  // where the frames' rounding takes the cosine of joint 5 beyond its slack
}

TEST(SixJointShoulder, StaysAtTheSeedWithTheWristPointOnItsAxis) {
    // Model 0: a3 sin q2 + d4 sin(q2 + q3) = 0.
    const double q2 = 0.5, q23 = -std::asin(0.256 * std::sin(q2) / 0.21);
    // Model 3: a2 + a3 cos t2 + a4 cos t23 + d4 sin t23 = 0.
    const double a2 = -0.086, a3 = 0.38, a4 = 0.069, d4 = 0.405, t2 = -1.9;
    const double t23 = std::asin(-(a2 + a3 * std::cos(t2)) / std::hypot(a4, d4)) - std::atan2(a4, d4);
    const struct {
        const Case& solver;
        double q2, q3;
    } rows[] = {{kZk6, q2, q23 - q2}, {kZkl63_2, t2 + M_PI_2, t23 - t2 - M_PI_2}};
    for (const auto& row : rows) {
        SixJoints arm(row.solver);
        Joints seed = {0.4f, static_cast<float>(row.q2), static_cast<float>(row.q3), 0.3f, 0.8f, 0.2f};
        KDL::Frame at = arm.forward(seed);
        for (const float q1 : {0.4f, -2.2f, 2.9f}) {
            seed[0] = q1;
            for (const float shift : {0.0f, 3e-5f, 6e-5f}) {
                KDL::Frame beside = at;
                beside.p += KDL::Vector(shift, -shift / 2, 0);
                ASSERT_EQ(arm.solve(seed, beside), 0);
                EXPECT_EQ(std::fabs(arm.solved[0] - q1) < 1e-6, shift < 5e-5f) << arm.arm << ' ' << q1 << ' ' << shift;
                EXPECT_TRUE(arm.meets(beside, 4));
            }
        }
    }
}

TEST(SixJointShoulder, ParallelAxesReachTheCylinderOfTheForearm) {
    // a2 + a3 cos t2 + a4 cos t23 + d5 sin t234 = 0
    const double a2 = -0.086, a3 = 0.26, a4 = 0.24, d5 = 0.11, t2 = -2.2, t3 = 1.9;
    const double t234 = std::asin(-(a2 + a3 * std::cos(t2) + a4 * std::cos(t2 + t3)) / d5);
    Joints q = {0.7f, static_cast<float>(t2 + M_PI_2), static_cast<float>(t3), 0, 1.2f, -0.4f};
    q[3] = static_cast<float>(t234 - t2 - t3 - M_PI_2);
    SixJoints arm(kOrb6);
    for (int round = 0; round < 50; ++round) {
        arm.mount_at_random();
        ASSERT_EQ(arm.solve(q, q), 0);
        EXPECT_LT(arm.wrist_off(arm.forward(q)), 3.2e-4);  // root of 1e-7
    }
}

// There one argument of the arc tangent is zero, and the sign of the other decides.
TEST(SixJointElbow, ParallelAxesKeepTheirSideAtRightAngles) {
    const float quarter = 1.5707964f;
    SixJoints arm(kOrb6);
    for (const float sum : {quarter, -quarter}) {
        for (const float q2 : {0.0f, 0.7f, 3.1415927f - 1e-6f}) {
            for (const float q3 : {-1.2f, 0.9f}) {
                const double q4 = std::remainder(sum - q2 - q3, 2 * M_PI);
                if (std::fabs(q4) > 2.4) continue;
                const Joints q = {0.3f, q2, q3, static_cast<float>(q4), 1.0f, -0.5f};
                ASSERT_EQ(arm.solve(q, q), 0);
                EXPECT_TRUE(same_joints(arm.solved, q, 1e-4));
            }
        }
    }
}

TEST(SixJointElbow, StraightArmHasSlack) {
    const struct {
        const Case& solver;
        float q2, tilt;  // of the arm from the vertical
        double a, b;     // upper arm and forearm, metres
        double in, out;  // of the cosine of the elbow, beyond 1
    } rows[] = {
        {kZk6, 0.6f, -0.6f, 0.256, 0.21, 0.00017, 0.00023},
        // Backwards, where the other shoulder does not reach farther.
        {kOrb6, -0.3f, -0.3f, 0.26, 0.24, 0.009, 0.011},
        {kOrb6, -0.8f, -0.8f, 0.26, 0.24, 0.009, 0.011},
    };
    for (const auto& row : rows) {
        SixJoints arm(row.solver);
        const Joints q = {0.2f, row.q2, 0, 0.4f, 1.0f, 0.1f};
        const KDL::Vector along = KDL::Rotation::RotZ(q[0]) * KDL::Rotation::RotY(row.tilt) * KDL::Vector(0, 0, 1);
        const double metres = row.a * row.b / (row.a + row.b);  // that add 1 to the cosine
        ASSERT_EQ(arm.solve(q, q), 0);
        EXPECT_TRUE(same_joints(arm.solved, q, 2e-3));
        EXPECT_EQ(arm.solve(q, {arm.forward(q).M, arm.forward(q).p + along * (row.in * metres)}), 0);
        EXPECT_EQ(arm.solve(q, {arm.forward(q).M, arm.forward(q).p + along * (row.out * metres)}), -1);
    }
}

TEST(FindNearestJoint, MovesByWholeTurnsWithinLimitsAndMargin) {
    constexpr double turn = 6.2831855f, two_turns = 12.566371f;
    struct Row {
        double seed, candidate, margin, lower, upper, moved, distance;
    };
    const Row rows[] = {
        {6, 1, 0, -10, 10, 1 + turn, turn - 5},               // up one
        {-12, 1, 0, -20, 20, 1 - two_turns, 13 - two_turns},  // down two
        {12, 1, 0, -20, 20, 1 + two_turns, two_turns - 11},   // up two
        {6, 1, 0, -3, 3, 1, 5},                               // the nearest is beyond the limit
        {turn / 2, 0, 0, -10, 10, 0, turn / 2},               // the lower of two equals
        {0, 3.05, 0.1, -3, 3, 3.05, 3.05},                    // within the margin
        {0, 3.05, 0, -3, 3, 3.05, 1e6},                       // nothing fits: unchanged
        {0, 1, 0, 1, 1, 1, 1},                                // limits are included
        {NAN, 1, 0, -3, 3, 1, 1e6},
    };
    for (const Row& row : rows) {
        double candidate = row.candidate;
        EXPECT_DOUBLE_EQ(find_nearest_joint(&row.seed, &candidate, &row.margin, row.lower, row.upper), row.distance);
        EXPECT_DOUBLE_EQ(candidate, row.moved);
    }
}

TEST(FindMinIndex, TakesTheFirstOfTheSmallest) {
    const double values[] = {3, 1, 2, 1, NAN};
    EXPECT_EQ(find_min_index(values, 5), 1);
    EXPECT_EQ(find_min_index(values + 2, 2), 1);
    EXPECT_EQ(find_min_index(nullptr, 0), 0);
}

}  // namespace
}  // namespace zk::test
