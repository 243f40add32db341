// Inverse kinematics of the two 63 arms, against KDL.
#include <gtest/gtest.h>

#include "kinematics/inverse_support.h"

namespace zk::test {
namespace {

constexpr double kWidened = 0.0087;
constexpr double kSingular = 0.005;

// Every way to reach a target, as joint angles: joints 1 to 3 by the wrist point, joints 4 to 6 as the Euler angles of
// the rotation that is left. Both arms are the same but for d2 and the way in which they count joints 5 and 6.
std::vector<Angles> branches(const SixJointArm& arm, const KDL::Frame& flange) {
    const double d2 = arm.arm.d[1], d4 = arm.arm.d[3], a2 = arm.arm.a[1], a3 = arm.arm.a[2], a4 = arm.arm.a[3];
    const double forearm = std::hypot(a4, d4);
    const KDL::Vector wrist = arm.wrist_of(flange);
    std::vector<Angles> found;
    for (const int shoulder : {-1, 1}) {
        const double q1 =
            std::atan2(-wrist.x(), wrist.y()) + shoulder * std::acos(d2 / std::hypot(wrist.x(), wrist.y()));
        const double out = wrist.x() * std::cos(q1) + wrist.y() * std::sin(q1) - a2, down = -wrist.z();
        const double reach = std::hypot(out, down);
        const double inner = std::acos((a3 * a3 + reach * reach - forearm * forearm) / (2 * a3 * reach));
        if (std::isnan(inner)) continue;
        for (const int elbow : {-1, 1}) {
            const double t2 = std::atan2(down, out) + elbow * inner;
            const double t23 = std::atan2(down - a3 * std::sin(t2), out - a3 * std::cos(t2)) - std::atan2(-d4, a4);
            Angles q = {q1, t2 - arm.offset(1), t23 - t2 - arm.offset(2)};
            const KDL::Rotation wrist_turn =
                KDL::Rotation::RotX(-M_PI / 2) * arm.base_T_link(q, 3).M.Inverse() * flange.M;
            wrist_turn.GetEulerZYZ(q[3], q[4], q[5]);
            found.push_back(q);
            found.push_back({q[0], q[1], q[2], q[3] + M_PI, -q[4], q[5] + M_PI});
        }
    }
    return found;
}

// The same angle, a turn up or down, within the limits of the joint; as given when neither is.
double into_limits(const SixJointArm& arm, int joint, double q) {
    return q < arm.min(joint) - kWidened ? q + 2 * M_PI : q > arm.max(joint) + kWidened ? q - 2 * M_PI : q;
}
double beyond_limits(const SixJointArm& arm, int joint, double q) {
    return std::max(q - arm.max(joint), arm.min(joint) - q) - kWidened;
}
double one_turn_nearer(double seed, double theta) {
    return seed - theta > M_PI ? theta + 2 * M_PI : seed - theta < -M_PI ? theta - 2 * M_PI : theta;
}

// A branch as the solver of model 3 sees it: what is beyond a limit does not count. The winner's joint 6 then moves
// another turn toward the seed, also beyond its limit.
std::optional<Scored> judged_63_2(const SixJointArm& arm, Angles q, const Joints& seed, double slack) {
    for (int j = 0; j < 6; ++j) {
        const double theta = reduced(q[j] + arm.offset(j)), s = seed[j] + arm.offset(j);
        q[j] = (j < 4 ? theta : one_turn_nearer(s, theta)) - arm.offset(j);
        if (j < 3) q[j] = into_limits(arm, j, q[j]);
        if (beyond_limits(arm, j, q[j]) > slack) return std::nullopt;
    }
    Scored result{weighed([&](int j) { return std::pow(q[j] - seed[j], 2); }), {0, {}}};
    q[5] = one_turn_nearer(seed[5], q[5]);
    if (beyond_limits(arm, 5, q[5]) > slack) result.verdict.status = -2;
    std::copy_n(q.begin(), 6, result.verdict.joint.begin());
    return result;
}

// As the solver of model 4 sees it: limits are looked at in the end.
std::optional<Scored> judged_63_3(const SixJointArm& arm, Angles q, const Joints& seed, double slack) {
    Scored result{weighed([&](int j) { return std::pow(reduced(q[j] - seed[j]), 2); }), {0, {}}};
    for (int j = 0; j < 6; ++j) {
        q[j] = into_limits(arm, j, seed[j] + reduced(q[j] - seed[j]));
        if (beyond_limits(arm, j, q[j]) > slack) result.verdict.status = -2;
    }
    std::copy_n(q.begin(), 6, result.verdict.joint.begin());
    return result;
}

struct Case {
    int model, sensor, rounds;
    Solver solve;
    std::optional<Scored> (*judged)(const SixJointArm&, Angles, const Joints& seed, double slack);
};

// What the solver has to answer; nothing when a hair's breadth at a limit, or two equal branches, would change it.
std::optional<Verdict> expected(const Case& c, const SixJointArm& arm, const KDL::Frame& flange, const Joints& seed) {
    const auto with_slack = [&](double slack) {
        std::vector<Scored> all;
        for (const Angles& q : branches(arm, flange)) {
            if (const auto scored = c.judged(arm, q, seed, slack)) all.push_back(*scored);
        }
        return clear_best(all);
    };
    const auto strict = with_slack(-1e-4), lax = with_slack(1e-4);
    return strict && lax && strict->status == lax->status && strict->joint == lax->joint ? lax : std::nullopt;
}

class Zkl63 : public testing::TestWithParam<Case> {
 protected:
    SixJointArm arm_{GetParam().model, GetParam().sensor};
    std::mt19937 generator_{static_cast<unsigned>(GetParam().model * 10 + GetParam().sensor)};
};

TEST_P(Zkl63, SolvesWhatItCanReachAndStaysAtTheSeed) {
    const Solver solve_arm = GetParam().solve;
    int singular = 0;
    for (int round = 0; round < GetParam().rounds; ++round) {
        if (round % 4 == 1) arm_.mount_at_random(generator_);
        const Joints q = random_joints(arm_.arm, generator_, 0.95), seed = arm_.near(q, generator_);
        const Matrix target = to_matrix(arm_.world_T_tool(q));
        const bool regular = arm_.smallest_singular_value(q) >= kSingular;
        singular += !regular;

        Joints solved{}, stayed{};
        const int status = solve_arm(seed.data(), solved.data(), target);
        // Next to the wrist's singularity single precision does not tell joint 5 better.
        const double times = std::fabs(std::sin(q[4])) < 0.003 ? 10 : 1;
        EXPECT_TRUE(status != 0 || reproduces(arm_.base_T_link(solved), arm_.base_T_flange(target), times));
        if (regular) {
            EXPECT_EQ(status, 0);
            EXPECT_EQ(solve_arm(q.data(), stayed.data(), target), 0);
            EXPECT_TRUE(same_joints(stayed.data(), q, 1e-3));
        }
        if (HasFailure()) FAIL() << "in round " << round;
    }
    EXPECT_LT(singular, GetParam().rounds * 0.05);
}

TEST_P(Zkl63, ChoosesTheNearestOfAllBranches) {
    int compared = 0;
    const int rounds = GetParam().rounds / 4;
    for (int round = 0; round < rounds; ++round) {
        if (round % 4 == 1) arm_.mount_at_random(generator_);
        const Joints q = random_joints(arm_.arm, generator_, 0.95), seed = random_joints(arm_.arm, generator_);
        if (arm_.smallest_singular_value(q) < kSingular) continue;
        const Matrix target = to_matrix(arm_.world_T_tool(q));
        const auto verdict = expected(GetParam(), arm_, arm_.base_T_flange(target), seed);
        if (!verdict) continue;
        ++compared;
        Joints solved{};
        EXPECT_EQ(GetParam().solve(seed.data(), solved.data(), target), verdict->status);
        EXPECT_TRUE(verdict->status != 0 || same_joints(solved.data(), verdict->joint, 2e-3));
        if (HasFailure()) FAIL() << "in round " << round;
    }
    EXPECT_GT(compared, rounds * 0.85);
}

constexpr auto zkl63_2 = inverse_kinematics_zkl63_2;
constexpr auto zkl63_3 = inverse_kinematics_zkl63_3;
INSTANTIATE_TEST_SUITE_P(
    , Zkl63,
    testing::Values(Case{3, 0, 10000, zkl63_2, judged_63_2}, Case{3, 1, 1000, zkl63_2, judged_63_2},
                    Case{3, 2, 1000, zkl63_2, judged_63_2}, Case{4, 0, 10000, zkl63_3, judged_63_3},
                    Case{4, 1, 1000, zkl63_3, judged_63_3}, Case{4, 2, 1000, zkl63_3, judged_63_3}),
    [](const auto& c) { return "Model" + std::to_string(c.param.model) + "Sensor" + std::to_string(c.param.sensor); });

const Joints kPose = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};

class Zkl63_2Edge : public EdgeCase {
 protected:
    Zkl63_2Edge() : EdgeCase(3, inverse_kinematics_zkl63_2) {}
};
class Zkl63_3Edge : public EdgeCase {
 protected:
    Zkl63_3Edge() : EdgeCase(4, inverse_kinematics_zkl63_3) {}
};

TEST_F(Zkl63_2Edge, WithoutASolutionTheOutputIsTheModelsZero) {
    Matrix far = target(kPose), nowhere = far;
    far.m[0][3] = 2;
    nowhere.m[1][1] = NAN;
    const float quarter = 1.5707964f, half = 3.1415927f;
    for (const Matrix& at : {far, nowhere}) {
        EXPECT_EQ(solve({0, 0, 0, 0, 0, 7.0f}, at), -1);
        EXPECT_TRUE(same_joints(solved_.data(), {0, quarter, -quarter, 0, -half, 6.2831855f - half}, 1e-6));
    }
    EXPECT_EQ(solve({NAN, 0, 0, 0, 0, 0}, kPose), -1);
}

TEST_F(Zkl63_2Edge, TakesAnotherBranchWhenALimitForbidsTheNearest) {
    set_limits(3, -3.1f, 0);
    ASSERT_EQ(solve(kPose, kPose), 0);
    EXPECT_LT(solved_[3], 0);
    EXPECT_TRUE(reproduces(arm_.base_T_link(solved_), arm_.base_T_link(kPose)));
    set_limits(1, 2.9f, 3.0f);
    EXPECT_EQ(solve(kPose, kPose), -1);
}

TEST_F(Zkl63_2Edge, LimitsHaveHalfADegreeOfSlack) {
    for (int j = 0; j < 3; ++j) set_limits(j, kPose[j] - 0.1f, kPose[j] + 0.1f);
    set_limits(1, -3, kPose[1] - 0.0086f);
    EXPECT_EQ(solve(kPose, kPose), 0);
    set_limits(1, -3, kPose[1] - 0.0088f);
    EXPECT_EQ(solve(kPose, kPose), -1);
}

TEST_F(Zkl63_2Edge, WholeTurnsOfJoint6CanTakeItBeyondItsLimit) {
    Joints q = kPose, seed = kPose;
    q[5] = 13.0f;
    seed[5] = 12.9f;
    EXPECT_EQ(solve(seed, q), -2);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
    q[5] = seed[5] = 6.0f;
    EXPECT_EQ(solve(seed, q), 0);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
}

TEST_F(Zkl63_2Edge, Joint5StaysOnItsSideOfHalfATurn) {
    for (const float q5 : {3.10f, -3.10f}) {
        Joints q = kPose;
        q[4] = q5;
        ASSERT_EQ(solve(q, q), 0);
        EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
    }
}

TEST_F(Zkl63_2Edge, Joint1StaysWhereItIsUnderItsOwnAxis) {
    // a2 + a3 cos t2 + a4 cos t23 + d4 sin t23 = 0
    const double a2 = -0.086, a3 = 0.38, a4 = 0.069, d4 = 0.405, t2 = -1.9;
    const double t23 = std::asin(-(a2 + a3 * std::cos(t2)) / std::hypot(a4, d4)) - std::atan2(a4, d4);
    const Joints q = {
        0.4f, static_cast<float>(t2 - arm_.offset(1)), static_cast<float>(t23 - t2 - arm_.offset(2)), 0.3f, 0.8f, 0.2f};
    for (const float seed1 : {0.4f, -2.9f, 1.7f}) {
        Joints seed = q;
        seed[0] = seed1;
        ASSERT_EQ(solve(seed, q), 0);
        EXPECT_NEAR(solved_[0], seed1, 1e-6);
        EXPECT_TRUE(reproduces(arm_.base_T_link(solved_), arm_.base_T_link(q)));
    }
}

// The rule looks at the model angle, half a turn from the joint's.
TEST_F(Zkl63_2Edge, HoldsTheWristOnlyWithJoint5NearMinusHalfATurn) {
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
    const KDL::Rotation m = arm_.base_T_link(q).M;
    const double s1 = std::sin(q[0]), c1 = std::cos(q[0]);
    const double sum = std::atan2(s1 * m(0, 0) - c1 * m(1, 0), s1 * m(0, 1) - c1 * m(1, 1));
    ASSERT_EQ(solve(seed, q), 0);
    const double difference = seed[5] + arm_.offset(5) - seed[3] - arm_.offset(3);
    EXPECT_NEAR(solved_[3] + arm_.offset(3), (sum - difference) / 2, 1e-4);
    EXPECT_NEAR(solved_[5] + arm_.offset(5), one_turn_nearer(seed[5] + arm_.offset(5), (sum + difference) / 2), 1e-4);

    q[4] = seed[4] = 3.09f;
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
}

TEST_F(Zkl63_3Edge, SplitsTheTurnOfAStraightWristByTheSeed) {
    Joints q = kPose, seed = kPose;
    q[3] = 0.6f;
    q[4] = 0;
    q[5] = 0.2f;
    seed[3] = 0.1f;
    seed[5] = 0.2f;
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_TRUE(same_joints(solved_.data(), {q[0], q[1], q[2], 0.45f, 0, 0.35f}, 1e-4));
    seed[6] = 0.3f;  // stands for joint 6 of the seed
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_TRUE(same_joints(solved_.data(), {q[0], q[1], q[2], 0.3f, 0, 0.5f}, 1e-4));

    q[4] = 0.01f;
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-3));
}

TEST_F(Zkl63_3Edge, SplitsTheTurnOfAFoldedWristByTheSeed) {
    set_limits(4, -3.2f, 3.2f);
    Joints q = kPose, seed = kPose;
    q[3] = 0.6f;
    q[4] = seed[4] = 3.1415927f;
    q[5] = 0.2f;
    seed[3] = 0.1f;
    ASSERT_EQ(solve(seed, q), 0);
    // t6 - t4 = -0.4, half of it and half of the seed's joint 4 on either side
    EXPECT_TRUE(same_joints(solved_.data(), {q[0], q[1], q[2], 0.25f, q[4], -0.15f}, 1e-3));
}

TEST_F(Zkl63_3Edge, LeavesTheOutputAloneWhenOutOfReach) {
    Matrix far = target(kPose), inside = far, nowhere = far;
    far.m[0][3] = 2;
    // The wrist point in the axis of joint 1, which d2 keeps it from.
    for (int i = 0; i < 2; ++i) inside.m[i][3] = arm_.arm.d[5] * inside.m[i][2];
    nowhere.m[1][1] = NAN;
    for (const Matrix& at : {far, inside, nowhere}) {
        EXPECT_EQ(solve(kPose, at), -1);
        EXPECT_EQ(written(), 0);
    }
}

TEST_F(Zkl63_3Edge, NearestBranchIsTheAnswerWhateverItsLimits) {
    set_limits(1, -3.1f, kPose[1] - 0.0086f);
    EXPECT_EQ(solve(kPose, kPose), 0);
    set_limits(1, -3.1f, kPose[1] - 0.0088f);
    solved_.fill(kUntouched);
    EXPECT_EQ(solve(kPose, kPose), -2);
    EXPECT_EQ(written(), 2);
}

TEST_F(Zkl63_3Edge, WholeTurnsOfJoint6AreThoseOfTheSeed) {
    set_limits(5, -20, 20);
    for (const float q6 : {13.0f, 6.2f, -0.3f, -6.4f, -13.0f}) {
        Joints q = kPose, seed = kPose;
        q[5] = q6;
        seed[5] = q6 + 0.1f;
        ASSERT_EQ(solve(seed, q), 0);
        EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
    }
}

TEST_F(Zkl63_3Edge, NanInTheSeedIsNeverReturnedAsAnAnswer) {
    for (int j = 0; j < 6; ++j) {
        for (const float q5 : {0.0f, 0.8f}) {
            Joints q = kPose, seed = kPose;
            q[4] = q5;
            seed[j] = NAN;
            if (solve(seed, q) != 0) continue;
            EXPECT_TRUE(reproduces(arm_.base_T_link(solved_), arm_.base_T_link(q))) << j;
        }
    }
}

}  // namespace
}  // namespace zk::test
