// Inverse kinematics of the 75: narrow mode along its seed, wide mode against a search in double precision.
#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "kinematics/seven_axis_arm.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/seven_axis.h"

namespace zk::test {
namespace {

constexpr double kDegree = M_PI / 180;

int solve(const Joints& seed, const KDL::Frame& target, Joints& out) {
    Joints from = seed;
    return inverse_kinematics_zk_75(from.data(), out.data(), to_mat(target));
}

bool near_alignment(const Joints& seed) {
    return std::fabs(seed[1]) < 5 * kDegree || std::fabs(seed[2]) < 8 * kDegree || std::fabs(seed[5]) < 5 * kDegree;
}

class Zk75 : public ::testing::Test {
 protected:
    Zk75() {
        libalgo_set_robot_and_sensor_type(1, 0);
        ikine_set_solution_range_zk75(0.013f);
    }
    ~Zk75() override { ikine_set_solution_range_zk75(0.013f); }

    void set_limits(int joint, float min, float max) {
        JointConfig config;
        libalgo_get_joint_config(static_cast<int16_t>(joint), &config);
        config.pos_min = min;
        config.pos_max = max;
        libalgo_set_joint_config(static_cast<int16_t>(joint), &config);
    }

    SevenAxisArm arm{1};
    const Solver narrow{solve, near_alignment};
    const Joints bent{0.3f, 0.7f, -0.5f, 1.1f, 0.4f, 0.8f, 0.2f};
};

TEST_F(Zk75, NarrowFindsPosturesNearTheSeed) {
    const Solved solved = solve_at_random(arm, 10000 / kShare, 0.005, narrow);
    EXPECT_LT(solved.singular, 0.05 * 10000 / kShare);
    // The arm angle is that of one step: where a joint is close to its limit it can come out beyond, and no other arm
    // angle is looked for.
    EXPECT_LE(solved.unsolved, 1 + 3e-4 * solved.asked);
    EXPECT_LT(solved.farthest, 2e-3);  // the pull to mid-range
}

double turned_into_range(double angle) { return std::remainder(angle, 2 * M_PI); }

// The least sum of squares from the seed over the arm angles of the sweep and all bends, with limits wider by a margin.
// Geometry and Euler angles are KDL's: the elbow is turned about the line from shoulder to wrist.
double nearest_by_search(const SevenAxisArm& arm, const Joints& seed, const KDL::Frame& target, double margin) {
    const double d1 = arm.arm.d[0], d3 = arm.arm.d[2], d5 = arm.arm.d[4], d7 = arm.arm.d[6];
    const KDL::Vector w = target.p - target.M * KDL::Vector(0, 0, d7) - KDL::Vector(0, 0, d1);
    const double L = w.Norm(), bend = std::acos((L * L - d3 * d3 - d5 * d5) / (2 * d3 * d5));
    const double corner = std::acos((L * L + d3 * d3 - d5 * d5) / (2 * L * d3));
    const double heading = std::atan2(w.y(), w.x()), tilt = std::atan2(std::hypot(w.x(), w.y()), w.z());

    double nearest = std::numeric_limits<double>::infinity();
    const auto offer = [&](const std::array<double, 7>& q) {
        double distance = 0;
        for (int i = 0; i < 7; ++i) {
            if (q[i] < arm.lower(i) - margin || q[i] > arm.upper(i) + margin) return;
            distance += (q[i] - seed[i]) * (q[i] - seed[i]);
        }
        nearest = std::min(nearest, distance);
    };
    for (const double q4 : {bend, -bend}) {
        const double above = q4 < 0 ? -corner : corner;
        const KDL::Rotation plane = KDL::Rotation::RotZ(heading) * KDL::Rotation::RotY(tilt - above);
        for (float psi = -3.1415927f; psi <= 3.1415927f; psi += 0.06f) {
            const KDL::Rotation shoulder = KDL::Rotation::Rot(w, psi) * plane;
            const KDL::Rotation wrist = (shoulder * KDL::Rotation::RotY(q4)).Inverse() * target.M;
            double a1, a2, a3, a5, a6, a7;
            shoulder.GetEulerZYZ(a1, a2, a3);
            wrist.GetEulerZYZ(a5, a6, a7);
            for (const bool s : {false, true}) {
                for (const bool t : {false, true}) {
                    const auto other = [](bool flip, double a) { return flip ? turned_into_range(a + M_PI) : a; };
                    offer({other(s, a1), s ? -a2 : a2, other(s, a3), q4, other(t, a5), t ? -a6 : a6, other(t, a7)});
                }
            }
        }
    }
    return nearest;
}

double distance(const Joints& a, const Joints& b) {
    double sum = 0;
    for (int i = 0; i < 7; ++i) sum += (static_cast<double>(a[i]) - b[i]) * (static_cast<double>(a[i]) - b[i]);
    return sum;
}

TEST_F(Zk75, WideFindsTheNearestOfAll) {
    ikine_set_solution_range_zk75(3.14f);
    std::mt19937 generator(3);
    int solved = 0;
    for (int i = 0; i < 1000 / kShare; ++i) {
        Joints q = random_joints(arm.arm, generator, 0.95), out{};
        q[6] /= 2;  // joint 7 is looked for in one turn
        const Joints seed = i % 2 == 0 ? random_joints(arm.arm, generator, 0.95) : arm.seed_near(q, 0.1, generator);
        if (arm.smallest_singular_value(q) < 0.006) continue;
        const KDL::Frame target = arm.forward(q);
        ASSERT_EQ(solve(seed, target, out), 0);
        // Near alignment an arc cosine in single precision has half the digits: such an answer misses by 0.1 mm.
        const double alignment = std::min(std::fabs(out[1]), std::fabs(out[5]));
        expect_reached(arm, out, target, alignment < 0.01 ? 10 : 1);
        expect_within_limits(arm, out);
        const double rounding = alignment < 0.03 ? 5e-3 : 2e-4;
        EXPECT_LE(distance(out, seed), nearest_by_search(arm, seed, target, -rounding) * (1 + 1e-4) + rounding);
        EXPECT_GE(distance(out, seed), nearest_by_search(arm, seed, target, rounding) * (1 - 1e-4) - rounding);
        ++solved;
    }
    EXPECT_GT(solved, 900 / kShare);
}

TEST_F(Zk75, WideWithNothingWithinTheLimitsTestsWhatOutHeld) {
    ikine_set_solution_range_zk75(3.14f);
    const KDL::Frame target = arm.forward(bent);
    set_limits(3, -0.1f, 0.1f);  // the elbow cannot bend that far
    Joints held{0.1f, 0.2f, 3.3f, 0.05f, 0.5f, 0.6f, 0.7f};
    Joints out = held;
    EXPECT_EQ(solve(bent, target, out), 0);
    held[2] -= 6.2831855f;
    EXPECT_EQ(out, held);
    out[3] = 1;
    EXPECT_EQ(solve(bent, target, out), -2);
}

TEST_F(Zk75, NarrowTakesThePseudoInverseStepNearAlignment) {
    struct {
        int joint;
        float step_at, solved_at;
    } const cases[] = {{1, 0.0870f, 0.0875f}, {2, 0.1394f, 0.1398f}, {5, -0.0870f, -0.0875f}};
    for (const auto& c : cases) {
        // A motion so large that one step of the pseudo-inverse misses the target by millimetres.
        const auto missed = [&](float angle) {
            Joints seed = bent, out{}, q = bent;
            seed[c.joint] = q[c.joint] = angle;
            for (int i = 0; i < 7; ++i) q[i] += i % 2 ? 0.08f : -0.08f;
            const KDL::Frame target = arm.forward(q);
            EXPECT_EQ(solve(seed, target, out), 0);
            if (std::fabs(angle) < std::fabs(c.solved_at)) {
                const Vector7 step = arm.pseudo_inverse_step(seed, target);
                for (int i = 0; i < 7; ++i) EXPECT_NEAR(out[i], seed[i] + step[i], 2e-3) << c.joint << i;
            }
            return metres_off(arm, out, target);
        };
        EXPECT_GT(missed(c.step_at), 1e-4) << c.joint;
        EXPECT_LT(missed(c.solved_at), 2e-5) << c.joint;
    }
    Joints out{};
    EXPECT_EQ(solve(Joints{0, 0, 0, 1, 0, 1, 0}, arm.forward({0, 0, 0, 1, 0, 1, 0}), out), 0);
    EXPECT_LT(largest_difference(out, {0, 0, 0, 1, 0, 1, 0}), 2e-3);
}

TEST_F(Zk75, NarrowStaysWhereTheSeedIsHalfwayBetweenTheLimits) {
    for (int i = 0; i < 7; ++i) set_limits(i, bent[i] - 1, bent[i] + 1);
    Joints out{};
    EXPECT_EQ(solve(bent, arm.forward(bent), out), 0);
    EXPECT_LT(largest_difference(out, bent), 1e-5);
}

// The pull is what is left of the distances from mid-range after the part that moves the flange is taken out.
TEST_F(Zk75, NarrowPullsToMidRange) {
    const auto moved = [&] {
        Joints out{};
        EXPECT_EQ(solve(bent, arm.forward(bent), out), 0);
        Vector7 by;
        for (int i = 0; i < 7; ++i) by[i] = static_cast<double>(out[i]) - bent[i];
        return by;
    };
    Vector7 pull;
    for (int i = 0; i < 7; ++i) {
        const double range = static_cast<double>(arm.upper(i)) - arm.lower(i);
        pull[i] = -bent[i] / 70 / (range * range);
    }
    const Matrix67 J = arm.jacobian(bent);
    const Vector7 expected = pull - J.transpose() * (J * J.transpose()).ldlt().solve(J * pull);
    EXPECT_GT(expected.norm(), 5e-5);
    EXPECT_LT((moved() - expected).norm(), 2e-6);

    // Not where it would make one joint too fast for a control period.
    const float slow[8] = {1, 1, 1, 1, 1, 1, 1e-4f, 1};
    libalgo_set_joint_vel_maxlim(slow);
    EXPECT_LT(moved().norm(), 2e-6);
}

TEST_F(Zk75, OutOfReachReturnsJointsThatMiss) {
    Joints out{};
    KDL::Frame target = arm.forward(bent);
    target.p = target.p * 3;
    EXPECT_EQ(solve(bent, target, out), 0);
    EXPECT_GT(metres_off(arm, out, target), 0.1);
    ikine_set_solution_range_zk75(3.14f);
    EXPECT_EQ(solve(bent, target, out), 0);
    EXPECT_EQ(out[3], 0);
    EXPECT_GT(metres_off(arm, out, target), 0.1);
}

TEST_F(Zk75, JointSevenIsTakenToTheSeedsSideInNarrowModeOnly) {
    Joints seed = bent, q = bent, out{};
    seed[6] = 3.1f;
    q[6] = 3.2f;  // 3.1 and the principal angle of 3.2 are 6.18 apart
    ASSERT_EQ(solve(seed, arm.forward(q), out), 0);
    EXPECT_GT(out[6], 3.1416f);
    expect_reached(arm, out, arm.forward(q));
    ikine_set_solution_range_zk75(3.14f);
    ASSERT_EQ(solve(seed, arm.forward(q), out), 0);
    EXPECT_LT(out[6], 3.1416f);
}

TEST_F(Zk75, BelowItsLimitAJointGetsATurn) {
    Joints q = bent, out{};
    q[6] = 3.2f;
    const KDL::Frame target = arm.forward(q);
    Joints seed = q;
    seed[6] = 2.9f;  // 5.98 from the principal angle of 3.2, so it is not taken to the seed's side
    set_limits(6, 0, 6);
    ASSERT_EQ(solve(seed, target, out), 0);
    EXPECT_GT(out[6], 3.1416f);
    expect_reached(arm, out, target);
    set_limits(6, 0, 3.1f);
    EXPECT_EQ(solve(seed, target, out), -2);
}

TEST_F(Zk75, OffsetsOfTheModelAreAddedToTheSeedAndTakenOutOfTheAnswer) {
    DhParams dh;
    libalgo_get_dh_value(&dh);
    const float offset[7] = {0.1f, -0.2f, 0.3f, -0.1f, 0.2f, -0.3f, 0.4f};
    std::copy_n(offset, 7, dh.offset);
    libalgo_set_dh_params(&dh);
    Joints seed = bent, out{};
    for (int i = 0; i < 7; ++i) seed[i] -= offset[i];
    const Joints given = seed;
    ASSERT_EQ(inverse_kinematics_zk_75(seed.data(), out.data(), to_mat(arm.forward(bent))), 0);
    EXPECT_LT(largest_difference(out, given), 2e-3);
    EXPECT_LT(largest_difference(seed, bent), 1e-6);
}

TEST(SevenAxisHelpers, TransformsOfTwelveMultiply) {
    const KDL::Frame a(KDL::Rotation::RPY(0.1, 0.2, 0.3), KDL::Vector(1, 2, 3));
    const KDL::Frame b(KDL::Rotation::RPY(-0.4, 0.5, 0.6), KDL::Vector(-4, 5, 6));
    const Matrix left = to_matrix(a), right = to_matrix(b);
    float in_place[12];
    std::copy_n(right.m[0], 12, in_place);
    marr_m(left.m[0], in_place, in_place);
    Matrix result{4, 4, {}};
    std::copy_n(in_place, 12, result.m[0]);
    expect_near(to_kdl(result), a * b, 3e-6);
}

TEST(SevenAxisHelpers, ZeroVectorsAreThoseBelowTheBound) {
    Mat v = vec_zeros(3);
    EXPECT_EQ(utils_is_zero_vec(v), 1);
    v.m[2][0] = -0.9e-10f;
    EXPECT_EQ(utils_is_zero_vec(v), 1);
    v.m[0][0] = 0.9e-10f;  // their sum is 0, their norm is not below 1e-10
    EXPECT_EQ(utils_is_zero_vec(v), 0);
    v = vec_zeros(3);
    v.m[3][0] = 1;  // beyond the length
    EXPECT_EQ(utils_is_zero_vec(v), 1);
    v.m[0][0] = 1;
    v.rows = 0;
    EXPECT_EQ(utils_is_zero_vec(v), 1);
}

TEST(SevenAxisHelpers, PosesDifferByTranslationAndAxisTimesAngle) {
    const KDL::Frame a(KDL::Rotation::RPY(0.1, 0.2, 0.3), KDL::Vector(1, 2, 3));
    const auto expect_difference = [&](const KDL::Frame& b, const KDL::Twist& expected, double tolerance) {
        const Mat difference = utils_angle_axis_diff(to_mat(a), to_mat(b));
        EXPECT_EQ(difference.rows, 6);
        EXPECT_EQ(difference.cols, 1);
        for (int i = 0; i < 6; ++i) EXPECT_NEAR(difference.m[i][0], expected(i), tolerance) << i;
    };
    const KDL::Frame b(KDL::Rotation::RPY(-1.4, 0.5, 0.6), KDL::Vector(-4, 5, 6));
    expect_difference(b, KDL::diff(a, b), 3e-6);
    expect_difference(a, KDL::Twist::Zero(), 1e-6);

    const Mat upright = to_mat(KDL::Frame::Identity()),
              turned = to_mat(KDL::Frame(KDL::Rotation(1, 0, 0, 0, -1, 0, 0, 0, -1)));
    const Mat half_turn = utils_angle_axis_diff(upright, turned);
    EXPECT_FLOAT_EQ(half_turn.m[3][0], 3.1415927f);
    EXPECT_EQ(half_turn.m[4][0], 0);
    EXPECT_EQ(half_turn.m[5][0], 0);
}

}  // namespace
}  // namespace zk::test
