// Inverse kinematics of the arms with three parallel axes, against KDL.
#include <gtest/gtest.h>

#include "kinematics/inverse_support.h"

namespace zk::test {
namespace {

constexpr double kTwoDegrees = 0.034906585039887;

// These arms are short: in metres and radians the smallest singular value of the smallest of them is seldom above 0.03.
constexpr double kSingular = 0.002;

struct Case {
    int model, sensor, rounds;
};

// Every way to reach a target, by geometry: the axes of joints 2 to 4 lie along `across`, that of joint 5 along
// `axis5`.
// None at all when a branch is one that the solver bends: joint 6 taken from the seed, an arm stretched beyond its
// reach.
std::optional<std::vector<Angles>> branches(const SixJointArm& arm, const KDL::Frame& flange) {
    const double d4 = arm.arm.d[3], d5 = arm.arm.d[4], a2 = arm.arm.a[1], a3 = arm.arm.a[2], a4 = arm.arm.a[3];
    const KDL::Vector wrist = arm.wrist_of(flange);
    std::vector<Angles> found;
    for (const int shoulder : {-1, 1}) {
        const double t1 =
            std::atan2(-wrist.x(), wrist.y()) + shoulder * std::acos(d4 / std::hypot(wrist.x(), wrist.y()));
        const KDL::Vector along(std::cos(t1), std::sin(t1), 0), across(-std::sin(t1), std::cos(t1), 0);
        for (const int side : {1, -1}) {
            const double t5 = side * std::acos(KDL::dot(across, flange.M.UnitZ()));
            if (std::fabs(std::sin(t5)) < kTwoDegrees + 1e-5) return std::nullopt;
            const KDL::Vector axis5 = across * flange.M.UnitZ() / std::sin(t5);
            const double t6 = std::atan2(-KDL::dot(axis5, flange.M.UnitX()), -KDL::dot(axis5, flange.M.UnitY()));
            const double t234 = std::atan2(KDL::dot(axis5, along), axis5.z());
            const KDL::Vector joint4 = wrist - d5 * axis5 - a2 * along;
            const double down = -joint4.z(), out = KDL::dot(joint4, along), reach = std::hypot(out, down);
            const double inner = std::acos((a3 * a3 + reach * reach - a4 * a4) / (2 * a3 * reach));
            const double bend = M_PI - std::acos((a3 * a3 + a4 * a4 - reach * reach) / (2 * a3 * a4));
            const double straight = (reach * reach - a3 * a3 - a4 * a4) / (2 * a3 * a4);
            if (std::fabs(std::fabs(straight) - 1.005) < 0.006) return std::nullopt;
            if (std::isnan(inner)) continue;
            for (const int elbow : {1, -1}) {
                const double t2 = std::atan2(down, out) - elbow * inner, t3 = elbow * bend;
                found.push_back({t1, t2, t3, t234 - t2 - t3, t5, t6});
            }
        }
    }
    return found;
}

// What the solver has to answer, or nothing when it is too close to call.
std::optional<Verdict> expected(const SixJointArm& arm, const KDL::Frame& flange, const Joints& seed) {
    constexpr double widened = 0.0087, unsure = 1e-4;
    bool at_a_limit = false;
    const auto candidates = branches(arm, flange);
    if (!candidates) return std::nullopt;
    std::vector<Scored> all;
    for (const Angles& theta : *candidates) {
        Verdict verdict{0, {}};
        const double score = weighed([&](int j) {
            double best = 1e6;
            for (int turn = -2; turn <= 2; ++turn) {
                const double q = theta[j] - arm.offset(j) + turn * 2 * M_PI, distance = std::fabs(q - seed[j]);
                const double beyond = std::max(q - arm.max(j), arm.min(j) - q) - widened;
                at_a_limit |= std::fabs(beyond) < unsure;
                if (beyond > 0 || distance >= best) continue;
                best = distance;
                verdict.joint[j] = static_cast<float>(q);
            }
            return best;
        });
        if (score >= 1e6) verdict = {-2, {}};
        all.push_back({score, verdict});
    }
    return at_a_limit ? std::nullopt : clear_best(all);
}

class Orb6 : public testing::TestWithParam<Case> {
 protected:
    SixJointArm arm_{GetParam().model, GetParam().sensor};
    std::mt19937 generator_{static_cast<unsigned>(GetParam().model * 10 + GetParam().sensor)};

    // Where the solver takes joint 6 from the seed, what is left is the wrist point; and a wrist point that the arm
    // then just fails to reach is reached for, with the elbow straight.
    void expect_reproduced(const Joints& q, const Matrix& target) {
        const KDL::Frame actual = arm_.base_T_link(q), wanted = arm_.base_T_flange(target);
        if (std::fabs(std::sin(q[4])) < kTwoDegrees + 1e-5) {
            EXPECT_LT((arm_.wrist_of(actual) - arm_.wrist_of(wanted)).Norm(), q[2] == 0 ? 0.005 : kMetres);
            EXPECT_LT(angle_between(actual.M, wanted.M), 3 * kTwoDegrees);
        } else {
            EXPECT_TRUE(reproduces(actual, wanted));
        }
    }
};

TEST_P(Orb6, SolvesWhatItCanReachAndStaysAtTheSeed) {
    int singular = 0;
    for (int round = 0; round < GetParam().rounds; ++round) {
        if (round % 4 == 1) arm_.mount_at_random(generator_);
        const Joints q = random_joints(arm_.arm, generator_, 0.95), seed = arm_.near(q, generator_);
        const Matrix target = to_matrix(arm_.world_T_tool(q));
        const bool regular = arm_.smallest_singular_value(q) >= kSingular && std::fabs(std::sin(q[4])) >= kTwoDegrees;
        singular += !regular;

        Joints solved{}, stayed{};
        const int status = inverse_kinematics_orb6(seed.data(), solved.data(), target);
        if (status == 0) expect_reproduced(solved, target);
        if (regular) {
            EXPECT_EQ(status, 0);
            EXPECT_EQ(inverse_kinematics_orb6(q.data(), stayed.data(), target), 0);
            EXPECT_TRUE(same_joints(stayed.data(), q, 1e-3));
        }
        if (HasFailure()) FAIL() << "in round " << round;
    }
    EXPECT_LT(singular, GetParam().rounds * 0.05);
}

TEST_P(Orb6, ChoosesTheNearestOfAllBranches) {
    int compared = 0;
    const int rounds = GetParam().rounds / 4;
    for (int round = 0; round < rounds; ++round) {
        if (round % 4 == 1) arm_.mount_at_random(generator_);
        const Joints q = random_joints(arm_.arm, generator_, 0.95), seed = random_joints(arm_.arm, generator_);
        if (arm_.smallest_singular_value(q) < kSingular) continue;
        const Matrix target = to_matrix(arm_.world_T_tool(q));
        const auto verdict = expected(arm_, arm_.base_T_flange(target), seed);
        if (!verdict) continue;
        ++compared;
        Joints solved{};
        EXPECT_EQ(inverse_kinematics_orb6(seed.data(), solved.data(), target), verdict->status);
        EXPECT_TRUE(verdict->status != 0 || same_joints(solved.data(), verdict->joint, 2e-3));
        if (HasFailure()) FAIL() << "in round " << round;
    }
    EXPECT_GT(compared, rounds * 0.85);
}

INSTANTIATE_TEST_SUITE_P(, Orb6,
                         testing::Values(Case{5, 0, 10000}, Case{5, 1, 1000}, Case{5, 2, 1000}, Case{6, 0, 10000},
                                         Case{8, 0, 10000}, Case{8, 1, 1000}, Case{8, 2, 1000}),
                         [](const auto& c) {
                             return "Model" + std::to_string(c.param.model) + "Sensor" + std::to_string(c.param.sensor);
                         });

class Orb6Edge : public EdgeCase {
 protected:
    Orb6Edge() : EdgeCase(5, inverse_kinematics_orb6) {}
};

TEST_F(Orb6Edge, LinedUpWristKeepsJoint6OfTheSeed) {
    for (const float middle : {0.0f, 3.1415927f}) {
        for (const float q5 : {middle, middle - 0.03f, 0.03f - middle}) {
            const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, q5, 0.9f};
            ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.5f, q5, 0.2f}, q), 0) << q5;
            EXPECT_FLOAT_EQ(solved_[5], 0.2f);
            const KDL::Frame wanted = arm_.base_T_link(q), actual = arm_.base_T_link(solved_);
            EXPECT_LT((arm_.wrist_of(actual) - arm_.wrist_of(wanted)).Norm(), kMetres);
            EXPECT_LT(angle_between(actual.M, wanted.M), std::fabs(std::sin(q5)) + kRadians);
        }
    }
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.05f, 0.9f};
    ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.5f, 0.05f, 0.8f}, q), 0);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
}

TEST_F(Orb6Edge, CosineOfJoint5MayBeAnythingRoundingMakesOfOne) {
    for (int round = 0; round < 500; ++round) {
        arm_.mount_at_random(generator_);
        Joints q = random_joints(arm_.arm, generator_, 0.9);
        q[2] = std::copysign(std::max(std::fabs(q[2]), 0.3f), q[2]);
        q[4] = 0;
        ASSERT_EQ(solve(q, q), 0) << round;
        // A single-precision cosine tells angles next to 0 to half a thousandth.
        EXPECT_LT(angle_between(arm_.base_T_link(solved_).M, arm_.base_T_flange(target(q)).M), 1.5e-3) << round;
    }
}

// The arc tangent's argument vanishes there, and the sign of the other one decides.
TEST_F(Orb6Edge, RightAnglesKeepTheirSide) {
    const float quarter = 1.5707964f;
    for (const float sum : {quarter, -quarter}) {
        for (const float q2 : {0.0f, 0.7f, 3.1415927f - 1e-6f}) {
            for (const float q3 : {-1.2f, 0.9f}) {
                Joints q = {0.3f, q2, q3, static_cast<float>(reduced(sum - q2 - q3)), 1.0f, -0.5f};
                if (std::fabs(q[3]) > 2.4f) continue;
                ASSERT_EQ(solve(q, q), 0);
                EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
            }
        }
    }
}

TEST_F(Orb6Edge, StraightArmHasSlack) {
    // Reaching backwards, so that the other shoulder, which stands forward of the axis, does not reach further.
    for (const float q2 : {-0.3f, -0.8f}) {
        const Joints q = {0.2f, q2, 0, 0.4f, 1.0f, 0.1f};
        Matrix at = target(q);
        ASSERT_EQ(solve(q, at), 0);
        EXPECT_TRUE(same_joints(solved_.data(), q, 2e-3));
        // Along the upper arm, by a length that takes the cosine of joint 3 from 1 to less, and to more, than 1.01.
        const double t2 = q2 + arm_.offset(1), per_metre = (0.26 + 0.24) / (0.26 * 0.24);
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

TEST_F(Orb6Edge, WristPointOnTheCylinderOfTheForearm) {
    // a2 + a3 cos t2 + a4 cos t23 + d5 sin t234 = 0
    const double a2 = -0.086, a3 = 0.26, a4 = 0.24, d5 = 0.11, t2 = -2.2, t3 = 1.9;
    const double t234 = std::asin(-(a2 + a3 * std::cos(t2) + a4 * std::cos(t2 + t3)) / d5);
    Joints q = {0.7f, static_cast<float>(t2 - arm_.offset(1)), static_cast<float>(t3), 0, 1.2f, -0.4f};
    q[3] = static_cast<float>(t234 - t2 - t3 - arm_.offset(3));
    for (int round = 0; round < 50; ++round) {
        arm_.mount_at_random(generator_);
        ASSERT_EQ(solve(q, q), 0);
        const KDL::Frame wanted = arm_.base_T_flange(target(q)), actual = arm_.base_T_link(solved_);
        EXPECT_LT((arm_.wrist_of(actual) - arm_.wrist_of(wanted)).Norm(), 3.2e-4);  // root of 1e-7
    }
}

TEST_F(Orb6Edge, LeavesTheOutputAloneWhenOutOfReach) {
    const Joints seed = {};
    Matrix far = target({0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f}), inside = far, nowhere = far;
    far.m[0][3] = 2;
    // The wrist point in the axis of joint 1.
    for (int i = 0; i < 2; ++i) inside.m[i][3] = arm_.arm.d[5] * inside.m[i][2];
    nowhere.m[1][1] = NAN;
    for (const Matrix& at : {far, inside, nowhere}) {
        EXPECT_EQ(solve(seed, at), -1);
        EXPECT_EQ(written(), 0);
    }
}

TEST_F(Orb6Edge, Joint6GoesToTheSideThatItsLimitsAllow) {
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 3.2f};
    ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 3.1f}, q), 0);
    EXPECT_NEAR(solved_[5], -3.0831852f, 2e-5);
}

TEST_F(Orb6Edge, WholeTurnsOfJoint6AreThoseOfTheSeed) {
    set_limits(5, -20, 20);
    for (const float q6 : {13.0f, 6.2f, -0.3f, -6.4f, -13.0f}) {
        const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, q6};
        Joints seed = q;
        seed[5] += 0.1f;
        ASSERT_EQ(solve(seed, q), 0);
        EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
    }
    // Beyond the limit only with the turns added: the last joint is written and refused.
    set_limits(5, -12.5f, 12.5f);
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 13.0f};
    EXPECT_EQ(solve({0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 12.9f}, q), -2);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
}

TEST_F(Orb6Edge, LimitsHaveHalfADegreeOfSlack) {
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};
    set_limits(1, -3, q[1] - 0.0086f);
    EXPECT_EQ(solve(q, q), 0);
    set_limits(0, 0.3f, 0.5f);  // no other shoulder
    set_limits(2, 0.5f, 1.5f);  // no other elbow
    set_limits(1, -3, q[1] - 0.0088f);
    EXPECT_EQ(solve(q, q), -2);
}

TEST_F(Orb6Edge, WritesUpToTheJointBeyondItsLimit) {
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};
    set_limits(2, 2.0f, 2.1f);
    EXPECT_EQ(solve(q, q), -2);
    EXPECT_EQ(written(), 3);
}

TEST_F(Orb6Edge, NanInJoint6OfTheSeedIsNoSolution) {
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};
    Joints seed = q;
    seed[5] = NAN;
    EXPECT_EQ(solve(seed, q), -2);
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
