// Inverse kinematics of the seven-axis arms: the 75, narrow mode along its seed and wide mode against a search in
// double precision, and the 72.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "support/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/seven_axis.h"

namespace zk::test {
namespace {

constexpr double kDegree = M_PI / 180;
constexpr float kNarrow = 0.013f, kWide = 3.14f;

Mat to_mat(const KDL::Frame& f) { return matrix_to_mat(to_matrix(f)); }

class SevenJoints : public testing::Test {
 protected:
    explicit SevenJoints(int model) : arm(arm_of(model, 0)) { libalgo_set_robot_and_sensor_type(model, 0); }

    int solve(const Joints& seed, const KDL::Frame& target) {
        Joints from = seed;
        return arm.arm.model == 7 ? inverse_kinematics_tau7(from.data(), out.data(), to_mat(target))
                                  : inverse_kinematics_zk_75(from.data(), out.data(), to_mat(target));
    }
    int solve(const Joints& seed, const Joints& q) { return solve(seed, arm.forward(q)); }

    void expect_reached(const KDL::Frame& target, double times = 1) {
        EXPECT_LT(arm.metres_off(out, target), 2e-5 * times);
        EXPECT_LT(arm.radians_off(out, target), 2e-4 * times);
        EXPECT_TRUE(arm.within_limits(out));
    }

    const KdlArm arm;
    const Joints bent{0.3f, 0.7f, -0.5f, arm.arm.model == 7 ? -1.1f : 1.1f, 0.4f, 0.8f, 0.2f};
    Joints out{};
};

// Near these postures the 75 takes one step of the pseudo-inverse, which is exact for small motions only.
bool near_alignment(const Joints& seed) {
    return std::fabs(seed[1]) < 5 * kDegree || std::fabs(seed[2]) < 8 * kDegree || std::fabs(seed[5]) < 5 * kDegree;
}

class EverySevenAxisArm : public SevenJoints, public testing::WithParamInterface<int> {
 protected:
    EverySevenAxisArm() : SevenJoints(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(, EverySevenAxisArm, testing::Values(1, 7),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

TEST_P(EverySevenAxisArm, FindsPosturesNearTheSeed) {
    constexpr int kTimes = 10000 / kShare;
    std::mt19937 generator(7);
    int asked = 0, unsolved = 0;
    double farthest = 0;  // from a seed that is a solution itself
    for (int i = 0; i < kTimes; ++i) {
        const Joints q = random_joints(arm.arm, generator, 0.95);
        Joints seed = arm.seed_near(q, 0.1, generator);
        if (GetParam() == 1 && near_alignment(seed)) seed = arm.seed_near(q, 0.001, generator);
        if (arm.smallest_singular_value(q) < 0.005) continue;
        ++asked;
        for (const Joints& from : {seed, q}) {
            if (solve(from, q) != 0) {
                ++unsolved;
                continue;
            }
            expect_reached(arm.forward(q));
            if (from == q) farthest = std::max(farthest, largest_difference(out, q));
        }
    }
    EXPECT_GT(asked, 0.95 * kTimes);
    // The 75 tries one arm angle only: near a limit it can take a joint beyond.
    EXPECT_LE(unsolved, GetParam() == 1 ? 1 + 3e-4 * asked : 0);
    EXPECT_LT(farthest, 2e-3);  // the pull to mid-range
}

TEST_P(EverySevenAxisArm, IsPulledToMidRangeWithoutMovingTheFlange) {
    const Joints expected = arm.pull_to_mid_range(bent);
    EXPECT_GT(largest_difference(expected, {}), 2e-5);
    ASSERT_EQ(solve(bent, bent), 0);
    for (int i = 0; i < 7; ++i) EXPECT_NEAR(out[i] - bent[i], expected[i], 2e-6) << i;
}

struct Zk75 : SevenJoints {
    Zk75() : SevenJoints(1) {}
};

// The least sum of squares from the seed over the arm angles of the sweep and all bends, with limits wider by a margin.
// Geometry and Euler angles are KDL's: the elbow is turned about the line from shoulder to wrist.
double nearest_by_search(const KdlArm& arm, const Joints& seed, const KDL::Frame& target, double margin) {
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
                    const auto other = [](bool flip, double a) {
                        return flip ? std::remainder(a + M_PI, 2 * M_PI) : a;
                    };
                    offer({other(s, a1), s ? -a2 : a2, other(s, a3), q4, other(t, a5), t ? -a6 : a6, other(t, a7)});
                }
            }
        }
    }
    return nearest;
}

double squared_distance(const Joints& a, const Joints& b) {
    double sum = 0;
    for (int i = 0; i < 7; ++i) sum += (static_cast<double>(a[i]) - b[i]) * (static_cast<double>(a[i]) - b[i]);
    return sum;
}

TEST_F(Zk75, WideReturnsTheNearestSolution) {
    ikine_set_solution_range_zk75(kWide);
    std::mt19937 generator(3);
    int solved = 0;
    for (int i = 0; i < 1000 / kShare; ++i) {
        Joints q = random_joints(arm.arm, generator, 0.95);
        q[6] /= 2;  // the search covers one turn of joint 7
        const Joints seed = i % 2 == 0 ? random_joints(arm.arm, generator, 0.95) : arm.seed_near(q, 0.1, generator);
        if (arm.smallest_singular_value(q) < 0.006) continue;
        const KDL::Frame target = arm.forward(q);
        ASSERT_EQ(solve(seed, target), 0);
        // Near alignment an arc cosine in single precision has half the digits: such an answer misses by 0.1 mm.
        const double alignment = std::min(std::fabs(out[1]), std::fabs(out[5]));
        expect_reached(target, alignment < 0.01 ? 10 : 1);
        const double rounding = alignment < 0.03 ? 5e-3 : 2e-4, distance = squared_distance(out, seed);
        EXPECT_LE(distance, nearest_by_search(arm, seed, target, -rounding) * (1 + 1e-4) + rounding);
        EXPECT_GE(distance, nearest_by_search(arm, seed, target, rounding) * (1 - 1e-4) - rounding);
        ++solved;
    }
    EXPECT_GT(solved, 900 / kShare);
}

TEST_F(Zk75, WideWithoutACandidateChecksTheCallersArray) {
    ikine_set_solution_range_zk75(kWide);
    arm.set_limits(3, -0.1f, 0.1f);  // the elbow cannot bend that far
    Joints held = out = {0.1f, 0.2f, 3.3f, 0.05f, 0.5f, 0.6f, 0.7f};
    EXPECT_EQ(solve(bent, bent), 0);
    held[2] -= 6.2831855f;
    EXPECT_EQ(out, held);
    out[3] = 1;
    EXPECT_EQ(solve(bent, bent), -2);
}

TEST_F(Zk75, NarrowTakesThePseudoInverseStepNearAlignment) {
    const struct {
        int joint;
        float step_at, solved_at;
    } cases[] = {{1, 0.0870f, 0.0875f}, {2, 0.1394f, 0.1398f}, {5, -0.0870f, -0.0875f}};
    for (const auto& c : cases) {
        // A motion so large that one step of the pseudo-inverse misses the target by millimetres.
        for (const float angle : {c.step_at, c.solved_at}) {
            Joints seed = bent, q = bent;
            seed[c.joint] = q[c.joint] = angle;
            for (int i = 0; i < 7; ++i) q[i] += i % 2 ? 0.08f : -0.08f;
            EXPECT_EQ(solve(seed, q), 0);
            if (angle == c.solved_at) {
                EXPECT_LT(arm.metres_off(out, arm.forward(q)), 2e-5) << c.joint;
            } else {
                EXPECT_LT(largest_difference(out, arm.pseudo_inverse_step(seed, arm.forward(q))), 2e-3) << c.joint;
                EXPECT_GT(arm.metres_off(out, arm.forward(q)), 1e-4) << c.joint;
            }
        }
    }
    const Joints aligned = {0, 0, 0, 1, 0, 1, 0};
    EXPECT_EQ(solve(aligned, aligned), 0);
    EXPECT_LT(largest_difference(out, aligned), 2e-3);
}

TEST_F(Zk75, NarrowIsNotPulledWhereAJointWouldBecomeTooFast) {
    const float slow[8] = {1, 1, 1, 1, 1, 1, 1e-4f, 1};
    libalgo_set_joint_vel_maxlim(slow);
    EXPECT_EQ(solve(bent, bent), 0);
    EXPECT_LT(largest_difference(out, bent), 2e-6);
}

TEST_F(Zk75, OutOfReachReturnsJointsThatMiss) {
    KDL::Frame target = arm.forward(bent);
    target.p = target.p * 3;
    for (const float range : {kNarrow, kWide}) {
        ikine_set_solution_range_zk75(range);
        EXPECT_EQ(solve(bent, target), 0);
        EXPECT_GT(arm.metres_off(out, target), 0.1);
    }
    EXPECT_EQ(out[3], 0);
}

TEST_F(Zk75, NarrowMovesJoint7ToTheSeedsSide) {
    Joints seed = bent, q = bent;
    seed[6] = 3.1f;
    q[6] = 3.2f;  // 3.1 and the principal angle of 3.2 are 6.18 apart
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_GT(out[6], 3.1416f);
    expect_reached(arm.forward(q));
    ikine_set_solution_range_zk75(kWide);
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_LT(out[6], 3.1416f);
}

TEST_F(Zk75, JointBelowItsLimitIsMovedByATurn) {
    Joints q = bent, seed = bent;
    q[6] = 3.2f;
    seed[6] = 2.9f;  // 5.98 from the principal angle of 3.2, so it is not moved to the seed's side
    arm.set_limits(6, 0, 6);
    ASSERT_EQ(solve(seed, q), 0);
    EXPECT_GT(out[6], 3.1416f);
    expect_reached(arm.forward(q));
    arm.set_limits(6, 0, 3.1f);
    EXPECT_EQ(solve(seed, q), -2);
}

TEST_F(Zk75, AddsTheOffsetsToTheSeedAndSubtractsThemFromTheAnswer) {
    const float offset[7] = {0.1f, -0.2f, 0.3f, -0.1f, 0.2f, -0.3f, 0.4f};
    std::copy_n(offset, 7, robot.dh.offset);
    Joints seed = bent;
    for (int i = 0; i < 7; ++i) seed[i] -= offset[i];
    const Joints given = seed;
    ASSERT_EQ(inverse_kinematics_zk_75(seed.data(), out.data(), to_mat(arm.forward(bent))), 0);
    EXPECT_LT(largest_difference(out, given), 2e-3);
    EXPECT_LT(largest_difference(seed, bent), 1e-6);
}

struct Tau7 : SevenJoints {
    Tau7() : SevenJoints(7) {}
};

// Any target from any seed, as the arm with a closed form.
TEST_F(Tau7, FindsPosturesFarFromTheSeed) {
    for (const float range : {kNarrow, kWide}) {
        ikine_set_solution_range_zk75(range);
        std::mt19937 generator(5);
        const int times = 1000 / kShare;
        int unsolved = 0;
        for (int i = 0; i < times; ++i) {
            const Joints q = random_joints(arm.arm, generator, 0.95);
            if (solve(random_joints(arm.arm, generator), q) == 0) {
                expect_reached(arm.forward(q));
            } else {
                ++unsolved;
            }
        }
        EXPECT_LE(unsolved, range == kWide ? 0 : 1 + times / 500) << range;
    }
}

TEST_F(Tau7, JointsAtTheirLimitsStayAndTheOthersMakeUp) {
    std::mt19937 generator(9);
    for (int i = 0; i < 200; ++i) {
        Joints q = random_joints(arm.arm, generator, 0.8);
        q[i % 7] = i % 2 == 0 ? arm.lower(i % 7) : arm.upper(i % 7);
        if (arm.smallest_singular_value(q) < 0.05) continue;
        ASSERT_EQ(solve(arm.seed_near(q, 0.05, generator), q), 0) << i;
        expect_reached(arm.forward(q));
    }
}

TEST_F(Tau7, StatusSeparatesLimitsFromReach) {
    const Joints untouched = out = {1, 2, 3, 4, 5, 6, 7};
    Joints away = bent;
    for (float& joint : away) joint += 0.2f;
    for (int i = 0; i < 7; ++i) arm.set_limits(i, bent[i] - 0.05f, bent[i] + 0.05f);
    EXPECT_EQ(solve(bent, away), -2);
    KDL::Frame far = arm.forward(away), undefined = far;
    far.p = far.p * 3;
    EXPECT_EQ(solve(bent, far), -1);
    undefined.p.x(NAN);
    EXPECT_EQ(solve(bent, undefined), -1);
    EXPECT_EQ(out, untouched);
}

TEST_F(Tau7, SeedIsClampedToTheLimits) {
    for (int i = 0; i < 7; ++i) {
        Joints seed = bent, at_limit = bent;
        seed[i] = arm.upper(i) + 0.3f;
        at_limit[i] = arm.upper(i);
        ASSERT_EQ(solve(at_limit, bent), 0);
        const Joints expected = out;
        ASSERT_EQ(solve(seed, bent), 0);
        EXPECT_LT(largest_difference(out, expected), 1e-6) << i;
    }
}

TEST_F(Tau7, JacobianAndPoseAreThoseOfTheFlangeInItsOwnFrame) {
    std::mt19937 generator(13);
    for (int i = 0; i < 100; ++i) {
        const Joints q = random_joints(arm.arm, generator);
        Mat J, T;
        ikine_jacobe_and_pose_tau72(q.data(), &J, &T);
        ASSERT_EQ(J.rows, 6);
        ASSERT_EQ(J.cols, 7);
        const KDL::Frame pose = arm.forward(q);
        expect_near(to_kdl(mat_to_matrix(T)), pose, 1e-6);
        const std::vector<KDL::Twist> in_base = arm.jacobian(q);
        for (int j = 0; j < 7; ++j) {
            const KDL::Twist in_flange = pose.M.Inverse() * in_base[j];
            for (int k = 0; k < 6; ++k) EXPECT_NEAR(J.m[k][j], in_flange(k), 1e-6) << k << j;
        }
    }
}

TEST(SevenAxisHelpers, TransformsOfTwelveMultiplyInPlace) {
    const KDL::Frame a(KDL::Rotation::RPY(0.1, 0.2, 0.3), KDL::Vector(1, 2, 3));
    const KDL::Frame b(KDL::Rotation::RPY(-0.4, 0.5, 0.6), KDL::Vector(-4, 5, 6));
    const Matrix left = to_matrix(a);
    Matrix product = to_matrix(b);
    marr_m(left.m[0], product.m[0], product.m[0]);
    expect_near(to_kdl(product), a * b, 3e-6);
}

TEST(SevenAxisHelpers, ZeroVectorsAreThoseBelowTheBound) {
    Mat v = vec_zeros(3);
    v.m[2][0] = -0.9e-10f;
    EXPECT_EQ(utils_is_zero_vec(v), 1);
    v.m[0][0] = 0.9e-10f;  // their sum is 0, their norm is not below 1e-10
    EXPECT_EQ(utils_is_zero_vec(v), 0);
    v = vec_zeros(3);
    v.m[3][0] = 1;  // beyond the length
    EXPECT_EQ(utils_is_zero_vec(v), 1);
}

TEST(SevenAxisHelpers, PosesDifferByTranslationAndAxisTimesAngle) {
    const KDL::Frame eye, a(KDL::Rotation::RPY(0.5, -0.8, 2.0), KDL::Vector(0.4, -0.3, 0.8));
    std::vector<std::array<KDL::Frame, 2>> pairs = {{a, a}};
    for (const double angle : {0.01, 0.7, 1.6, 3.0}) {
        pairs.push_back({a, {KDL::Rotation::RPY(0.5 + angle, 0.3, 1.1), KDL::Vector(-0.1, 0.6, 0.2)}});
    }
    for (const KDL::Rotation& half :
         {KDL::Rotation::RotX(M_PI), KDL::Rotation::RotY(M_PI), KDL::Rotation::RotZ(M_PI)}) {
        pairs.push_back({eye, KDL::Frame(half)});
    }
    for (const auto difference_of : {utils_angle_axis_diff, vec_angle_axis_diff}) {
        for (const auto& [from, to] : pairs) {
            const Mat difference = difference_of(to_mat(from), to_mat(to));
            EXPECT_EQ(difference.rows, 6);
            EXPECT_EQ(difference.cols, 1);
            for (int i = 0; i < 6; ++i) EXPECT_NEAR(difference.m[i][0], KDL::diff(from, to)(i), 1e-5) << i;
        }
    }
}

}  // namespace
}  // namespace zk::test
