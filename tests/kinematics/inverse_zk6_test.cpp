// Inverse kinematics of the 65, against KDL.
#include <gtest/gtest.h>

#include "kinematics/inverse_support.h"

namespace zk::test {
namespace {

constexpr double kWidened = 0.0087;

// In metres and radians the smallest singular value of an arm of this size is below 0.02 in a fifth of all postures.
constexpr double kSingular = 0.003;

struct Case {
    int sensor, rounds;
};

// Every way to reach a target, as joint angles: the triangle of shoulder, elbow and wrist, then the Euler angles of the
// rotation that is left.
std::vector<Angles> branches(const SixJointArm& arm, const KDL::Frame& flange) {
    const double a3 = arm.arm.a[2], d4 = arm.arm.d[3];
    const KDL::Vector wrist = arm.wrist_of(flange);
    const double reach = wrist.Norm();
    const double at_shoulder = std::acos((a3 * a3 + reach * reach - d4 * d4) / (2 * a3 * reach));
    const double at_elbow = std::acos((a3 * a3 + d4 * d4 - reach * reach) / (2 * a3 * d4));
    std::vector<Angles> found;
    if (std::isnan(at_shoulder)) return found;
    for (const int side : {1, -1}) {
        const double q1 = std::atan2(side * wrist.y(), side * wrist.x());
        const double out = wrist.x() * std::cos(q1) + wrist.y() * std::sin(q1);
        for (const int elbow : {1, -1}) {
            // Joint 2 stands upright and joint 3 straight at 0; both turn the arm downward.
            const double upper_arm = std::atan2(wrist.z(), out) + elbow * at_shoulder;
            const double q2 = upper_arm - M_PI / 2, q3 = -elbow * (M_PI - at_elbow);
            Angles q = {q1, q2, q3};
            const KDL::Rotation hand = KDL::Rotation::RotX(-M_PI / 2) * arm.base_T_link(q, 3).M.Inverse() * flange.M;
            hand.GetEulerZYZ(q[3], q[4], q[5]);
            found.push_back(q);
            found.push_back({q[0], q[1], q[2], q[3] + M_PI, -q[4], q[5] + M_PI});
        }
    }
    return found;
}

// A branch as the solver sees it: joints 1 to 3 a turn nearer to their limits, joint 6 a turn nearer to the seed, and
// what is then beyond a limit does not count.
std::optional<Scored> judged(const SixJointArm& arm, const Angles& branch, const Joints& seed, double slack) {
    Scored result{0, {0, {}}};
    for (int j = 0; j < 6; ++j) {
        double q = reduced(branch[j] + arm.offset(j)) - arm.offset(j);
        const double min = arm.min(j) - kWidened, max = arm.max(j) + kWidened;
        if (j < 3) q = q < min ? q + 2 * M_PI : q > max ? q - 2 * M_PI : q;
        if (j == 5) q = seed[j] + reduced(q - seed[j]);
        if (q < min - slack || q > max + slack) return std::nullopt;
        result.verdict.joint[j] = static_cast<float>(q);
    }
    result.score = weighed([&](int j) { return std::pow(result.verdict.joint[j] - seed[j], 2); });
    return result;
}

// What the solver has to answer; nothing when a hair's breadth at a limit, or two equal branches, would change it.
std::optional<Verdict> expected(const SixJointArm& arm, const KDL::Frame& flange, const Joints& seed) {
    const auto with_slack = [&](double slack) {
        std::vector<Scored> all;
        for (const Angles& q : branches(arm, flange)) {
            if (const auto scored = judged(arm, q, seed, slack)) all.push_back(*scored);
        }
        return clear_best(all);
    };
    const auto strict = with_slack(-1e-4), lax = with_slack(1e-4);
    return strict && lax && strict->status == lax->status && strict->joint == lax->joint ? lax : std::nullopt;
}

class Zk6 : public testing::TestWithParam<Case> {
 protected:
    SixJointArm arm_{0, GetParam().sensor};
    std::mt19937 generator_{static_cast<unsigned>(GetParam().sensor)};
};

TEST_P(Zk6, SolvesWhatItCanReachAndStaysAtTheSeed) {
    int singular = 0;
    for (int round = 0; round < GetParam().rounds; ++round) {
        if (round % 4 == 1) arm_.mount_at_random(generator_);
        const Joints q = random_joints(arm_.arm, generator_, 0.95), seed = arm_.near(q, generator_);
        const Matrix target = to_matrix(arm_.world_T_tool(q));
        const bool regular = arm_.smallest_singular_value(q) >= kSingular;
        singular += !regular;

        Joints solved{}, stayed{};
        const int status = inverse_kinematics_zk6(seed.data(), solved.data(), target);
        EXPECT_TRUE(status != 0 || reproduces(arm_.base_T_link(solved), arm_.base_T_flange(target)));
        if (regular) {
            EXPECT_EQ(status, 0);
            EXPECT_EQ(inverse_kinematics_zk6(q.data(), stayed.data(), target), 0);
            EXPECT_TRUE(same_joints(stayed.data(), q, 1e-3));
        }
        if (HasFailure()) FAIL() << "in round " << round;
    }
    RecordProperty("singular", singular);
    EXPECT_LT(singular, GetParam().rounds * 0.05);
}

TEST_P(Zk6, ChoosesTheNearestOfAllBranches) {
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
        EXPECT_EQ(inverse_kinematics_zk6(seed.data(), solved.data(), target), verdict->status);
        EXPECT_TRUE(verdict->status != 0 || same_joints(solved.data(), verdict->joint, 2e-3));
        if (HasFailure()) FAIL() << "in round " << round;
    }
    EXPECT_GT(compared, rounds * 0.85);
}

INSTANTIATE_TEST_SUITE_P(, Zk6, testing::Values(Case{0, 10000}, Case{1, 1000}, Case{2, 1000}),
                         [](const auto& c) { return "Sensor" + std::to_string(c.param.sensor); });

// What follows runs on the bare arm without tool.
class Zk6Edge : public testing::Test {
 protected:
    SixJointArm arm_{0, 0};
    Joints solved_{};

    Matrix target(const Joints& q) const { return to_matrix(arm_.world_T_tool(q)); }
    int solve(const Joints& seed, const Matrix& at) { return inverse_kinematics_zk6(seed.data(), solved_.data(), at); }
    void set_limits(int joint, float min, float max) {
        robot.joint_config[joint].pos_min = min;
        robot.joint_config[joint].pos_max = max;
    }
    void expect_zero_pose(float turns = 0) {
        const float quarter = -1.5707964f, expected[6] = {0, quarter, quarter, 0, 0, turns};
        for (int i = 0; i < 6; ++i) EXPECT_EQ(solved_[i], expected[i]) << i;
    }
};

TEST_F(Zk6Edge, WristPointOnTheAxisOfJoint1KeepsTheSeed) {
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
        EXPECT_TRUE(reproduces(arm_.base_T_link(solved_), to_kdl(at), 4));
        at.m[0][3] += 3e-5f;
        ASSERT_EQ(solve(seed, at), 0);
        EXPECT_NE(solved_[0], q1);
        EXPECT_TRUE(reproduces(arm_.base_T_link(solved_), to_kdl(at)));
    }
}

TEST_F(Zk6Edge, StraightArmHasSlack) {
    const Joints q = {0.2f, 0.6f, 0, 0.4f, 1.0f, 0.1f};
    const Matrix at = target(q);
    ASSERT_EQ(solve(q, at), 0);
    EXPECT_TRUE(same_joints(solved_.data(), q, 2e-3));
    // Along the arm, by a length that takes the sine of model joint 3 from 1 to less, and to more, than 1.0002.
    const KDL::Vector along = arm_.wrist_of(arm_.base_T_link(q)) / (0.256 + 0.21);
    const double per_metre = (0.256 + 0.21) / (0.256 * 0.21);
    for (const double excess : {0.00017, 0.00023}) {
        Matrix out = at;
        for (int i = 0; i < 3; ++i) out.m[i][3] += static_cast<float>(along[i] * excess / per_metre);
        EXPECT_EQ(solve(q, out), excess < 0.0002 ? 0 : -1);
    }
}

TEST_F(Zk6Edge, SingularWristIsSplitAsTheSeedSplitsItWhenAskedTo) {
    libalgo_set_is_avoid_Singularity(1);
    struct Row {
        float q4, q5, q6, seed4, seed6, solved4, solved6;
    };
    const Row rows[] = {
        {0.5f, 0, 0.3f, 0.1f, 0.2f, 0.35f, 0.45f},
        {0.4f, 0, 0.4f, 0.1f, 0.2f, 0.35f, 0.45f},
        {2.9f, 0, 2.9f, 2.8f, 2.8f, 2.9f, 2.9f},        // the sum is a turn up
        {-2.9f, 0, -2.9f, -2.8f, -3.0f, -2.8f, -3.0f},  // and down
    };
    for (const Row& row : rows) {
        const Joints q = {0.4f, -0.6f, 1.1f, row.q4, row.q5, row.q6};
        ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, row.seed4, row.q5, row.seed6}, target(q)), 0);
        EXPECT_NEAR(solved_[3], row.solved4, 1e-5);
        EXPECT_NEAR(solved_[5], row.solved6, 1e-5);
        EXPECT_TRUE(reproduces(arm_.base_T_link(solved_), arm_.base_T_link(q), 2));
    }
    // Beyond five degrees, and without the flag, the true joints come out.
    for (const float q5 : {0.088f, 0.08f}) {
        const Joints q = {0.4f, -0.6f, 1.1f, 0.5f, q5, 0.3f};
        ASSERT_EQ(solve({0.4f, -0.6f, 1.1f, 0.1f, q5, 0.2f}, target(q)), 0);
        EXPECT_TRUE(same_joints(solved_.data(), q, 1e-4));
        libalgo_set_is_avoid_Singularity(0);
    }
}

TEST_F(Zk6Edge, WholeTurnsOfJoint6AreThoseOfTheSeed) {
    const Joints within = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 6.1f};
    Joints seed = within;
    seed[5] = 6.0f;
    ASSERT_EQ(solve(seed, target(within)), 0);
    EXPECT_TRUE(same_joints(solved_.data(), within, 1e-4));

    Joints beyond = within;
    beyond[5] = 13.0f;
    seed[5] = 12.9f;
    EXPECT_EQ(solve(seed, target(beyond)), -2);
    EXPECT_TRUE(same_joints(solved_.data(), beyond, 1e-4));
    set_limits(5, -20, 20);
    for (const float q6 : {13.0f, -6.4f, -13.0f}) {
        beyond[5] = q6;
        seed[5] = q6 + 0.1f;
        ASSERT_EQ(solve(seed, target(beyond)), 0);
        EXPECT_TRUE(same_joints(solved_.data(), beyond, 1e-4));
    }
}

TEST_F(Zk6Edge, LimitsHaveHalfADegreeOfSlack) {
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};
    for (int joint = 0; joint < 6; ++joint) {
        ASSERT_EQ(libalgo_init(), 0);
        for (int other = 0; other < 6; ++other) set_limits(other, q[other] - 0.1f, q[other] + 0.1f);
        set_limits(joint, -3, q[joint] - 0.0086f);
        EXPECT_EQ(solve(q, target(q)), 0) << joint;
        set_limits(joint, -3, q[joint] - 0.0088f);
        EXPECT_EQ(solve(q, target(q)), -1) << joint;
        set_limits(joint, q[joint] + 0.0086f, 3);
        EXPECT_EQ(solve(q, target(q)), 0) << joint;
        set_limits(joint, q[joint] + 0.0088f, 3);
        EXPECT_EQ(solve(q, target(q)), -1) << joint;
    }
}

TEST_F(Zk6Edge, WithoutASolutionTheModelsZeroPoseComesOut) {
    const Matrix at = target({0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f});
    Matrix far = at, nowhere = at;
    far.m[0][3] = 2;
    nowhere.m[1][1] = NAN;
    for (const unsigned avoid : {0u, 1u}) {
        libalgo_set_is_avoid_Singularity(avoid);
        EXPECT_EQ(solve({}, far), -1);
        expect_zero_pose();
        EXPECT_EQ(solve({0, 0, 0, 0, 0, -7}, nowhere), -1);
        expect_zero_pose(-6.2831855f);
    }
    Joints seed{};
    for (int joint = 0; joint < 6; ++joint) {
        seed.fill(0);
        seed[joint] = NAN;
        EXPECT_EQ(solve(seed, at), -1) << joint;
    }
}

TEST_F(Zk6Edge, ReadsTheLengthsOfTheModel) {
    // Longer links and other offsets: the inverse follows the forward kinematics.
    DhParams dh = dh_default;
    dh.d[0] += 0.05f;
    dh.d[3] += 0.04f;
    dh.d[5] += 0.03f;
    dh.a[2] += 0.02f;
    for (int joint = 0; joint < 6; ++joint) dh.offset[joint] += 0.01f * static_cast<float>(joint);
    libalgo_set_dh_params(&dh);
    Arm longer = arm_.arm;
    std::copy_n(dh.d, 6, longer.d.begin());
    std::copy_n(dh.a, 6, longer.a.begin());
    const Joints q = {0.4f, -0.6f, 1.1f, 0.3f, 0.8f, 0.2f};
    KDL::JntArray angles(6);
    for (int i = 0; i < 6; ++i) angles(i) = q[i] + 0.01 * i;
    KDL::Frame flange;
    ASSERT_GE(KDL::ChainFkSolverPos_recursive(kdl_chain(longer)).JntToCart(angles, flange), 0);
    ASSERT_EQ(solve(q, to_matrix(flange)), 0);
    EXPECT_TRUE(same_joints(solved_.data(), q, 1e-5));
}

}  // namespace
}  // namespace zk::test
