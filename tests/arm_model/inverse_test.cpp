// Inverse kinematics of a model, near the seed and far from it, at limits and singular postures, and beyond.
#include <cmath>
#include <limits>

#include "arm_model/owned_model.h"
#include "zk/algorithm.h"
#include "zk/checked_inverse.h"

namespace zk::test {
namespace {

// "Meets the target", "lies within the limits", "nearest": no joint goes much further than it had to.
TEST_P(EachModel, SolvesNearTheSeedWithoutAJump) {
    for (int n = 0; n < 4000 / kShare; ++n) {
        const Joints q = cell.random(), seed = cell.near(q, n % 2 ? 5.7f : 0.6f);
        const KDL::Frame target = cell.forward(q);
        Joints answer{};
        ZK_InverseResult result;
        ASSERT_EQ(cell.inverse(target, seed, answer, &result), ZK_OK);
        ASSERT_TRUE(cell.meets(answer, target));
        ASSERT_TRUE(cell.within_limits(answer));
        EXPECT_LE(cell.largest_step(answer, seed), 2.5 * cell.largest_step(q, seed) + 1);
        EXPECT_NEAR(result.largest_step, cell.largest_step(answer, seed), 1e-3);
        const KDL::Twist miss = KDL::diff(cell.forward(answer), target);
        EXPECT_NEAR(result.miss_metres, miss.vel.Norm(), 2e-6);
        EXPECT_NEAR(result.miss_radians, miss.rot.Norm(), 5e-6);
    }
}

TEST_P(EachModel, SolvesFarFromTheSeed) {
    for (int n = 0; n < 1000 / kShare; ++n) {
        const KDL::Frame target = cell.forward(cell.random());
        Joints answer{};
        ASSERT_EQ(cell.inverse(target, cell.random(), answer), ZK_OK);
        ASSERT_TRUE(cell.meets(answer, target));
        ASSERT_TRUE(cell.within_limits(answer));
    }
}

// Axes on one line, a straight elbow, a joint at its limit: each alone and in pairs.
TEST_P(EachModel, SolvesAtSingularPosturesAndLimits) {
    const bool is_parallel = GetParam() == 5 || GetParam() == 6 || GetParam() == 8;
    const int elbow = joints == 7 ? 3 : 2, wrist = joints == 7 ? 5 : 4;
    const float straight = GetParam() == 0 ? 0 : joints == 7 || is_parallel ? 0 : degrees(std::atan2(.069, .405));
    for (int n = 0; n < 200; ++n) {
        Joints q = cell.random();
        const float tiny = n % 4 == 0 ? 0 : std::pow(10.f, -1 - n % 5);
        if (n % 3 != 1) q[wrist] = GetParam() == 7 ? q[wrist] : tiny;
        if (n % 3 != 2) q[elbow] = straight - tiny;
        if (n % 5 == 0) q[0] = cell.kdl.arm.max[0];
        if (n % 7 == 0) q[1] = cell.kdl.arm.min[1];
        const KDL::Frame target = cell.forward(q);
        Joints answer{};
        ASSERT_EQ(cell.inverse(target, cell.near(q, 3), answer), ZK_OK) << n;
        ASSERT_TRUE(cell.meets(answer, target)) << n;
        ASSERT_TRUE(cell.within_limits(answer)) << n;
        ASSERT_EQ(cell.inverse(target, cell.random(), answer), ZK_OK) << n;
        ASSERT_TRUE(cell.meets(answer, target)) << n;
    }
}

// Six joints: where shoulder, elbow and wrist are close to their lines, rounding of the target moves the closed form's
// answer far. Seven: about the straight elbow the smallest steps lead past postures that are nearer.
TEST(Inverse, DoesNotJumpWhereRoundingDecides) {
    const struct {
        int model;
        Joints posture, seed;
    } cases[] = {
        {0,
         {-109.48676f, -18.60256f, 41.48748f, 19.69242f, 8.18978f, 294.4578f},
         {-109.83144f, -18.61589f, 41.39403f, 20.17089f, 8.70223f, 294.68329f}},
        {6,
         {-55.72401f, -1.70264f, 0.99265f, 92.30271f, -0.82023f, 149.14813f},
         {-55.35426f, -2.12493f, 1.05711f, 91.82309f, -1.2443f, 148.78496f}},
        {8,
         {76.22816f, 179.11992f, 5.41166f, -98.77397f, -1.05694f, 8.91408f},
         {76.63486f, 179.48293f, 5.78558f, -98.36841f, -1.12418f, 8.42161f}},
        {1,
         {106.22827f, -63.06847f, -131.32709f, -0.42832f, 114.43084f, -127.9513f, 164.67291f},
         {105.88097f, -63.00529f, -130.90532f, -0.37552f, 114.41166f, -128.f, 165.04193f}},
        {7,
         {-53.89179f, -103.03381f, -32.12092f, -7.98754f, 143.21785f, -25.46472f, 35.19264f},
         {-57.70259f, -101.57979f, -37.54450f, -10.30834f, 146.11f, -30.87338f, 30.10608f}},
    };
    for (const auto& [model, posture, seed] : cases) {
        const Cell cell(model);
        const KDL::Frame target = cell.forward(posture);
        Joints answer{};
        ASSERT_EQ(cell.inverse(target, seed, answer), ZK_OK);
        EXPECT_TRUE(cell.meets(answer, target));
        EXPECT_LE(cell.largest_step(answer, seed), 2 * cell.largest_step(posture, seed) + 1) << model;
    }
}

// A locked joint leaves points of the free circle of seven joints.
TEST(Inverse, SolvesWithALockedJoint) {
    for (const int model : {1, 7}) {
        for (int n = 0; n < 280 / kShare; ++n) {
            Cell cell(model);
            cell.generator.seed(n);
            const Joints q = cell.random();
            Joints seed = cell.random(), min{}, max{}, answer{};
            ASSERT_EQ(ZK_Model_Get_Joint_Limits(cell.model.get(), min.data(), max.data()), ZK_OK);
            const int locked = n % 7;
            seed[locked] = min[locked] = max[locked] = q[locked];
            ASSERT_EQ(ZK_Model_Set_Joint_Limits(cell.model.get(), min.data(), max.data()), ZK_OK);
            ASSERT_EQ(cell.inverse(cell.forward(q), seed, answer), ZK_OK) << model << ' ' << n;
            EXPECT_TRUE(cell.meets(answer, cell.forward(q)) && cell.within_limits(answer));
            EXPECT_EQ(answer[locked], q[locked]);
        }
    }
}

// No posture of the list is nearer than the answer, and all of them meet the target.
TEST_P(EachModel, AnswerIsTheNearestOfAllPostures) {
    constexpr int kRoom = 4096;
    std::vector<float> rows(kRoom * joints);
    for (int n = 0; n < 50; ++n) {
        const Joints q = cell.random(), seed = cell.random();
        const KDL::Frame target = cell.forward(q);
        const Pose pose = to_pose(target);
        int count;
        ASSERT_EQ(ZK_Model_Inverse_All(cell.model.get(), &pose, seed.data(), nullptr, rows.data(), kRoom, &count),
                  ZK_OK);
        ASSERT_LE(count, kRoom);
        const auto distance = [&](const Joints& joint) {
            double sum = 0;
            for (int i = 0; i < joints; ++i) sum += std::pow(joint[i] - seed[i], 2);
            return std::sqrt(sum);
        };
        double before = 0, to_truth = joints == 6 ? 1e9 : 0;
        for (int row = 0; row < count; ++row) {
            Joints posture{};
            std::copy_n(&rows[row * joints], joints, posture.begin());
            ASSERT_TRUE(cell.meets(posture, target) && cell.within_limits(posture));
            EXPECT_GE(distance(posture), before - 1e-3);
            before = distance(posture);
            to_truth = std::min(to_truth, cell.largest_step(posture, q));
        }
        EXPECT_LT(to_truth, 0.01);  // the posture that made the target is among them
        Joints answer{}, first{};
        ASSERT_EQ(cell.inverse(target, seed, answer), ZK_OK);
        if (count == 0) continue;  // seven joints: the limits may leave less than a step of the circle
        std::copy_n(rows.begin(), joints, first.begin());
        EXPECT_LE(distance(answer), distance(first) + 1e-3);
    }
}

TEST(Inverse, CountsWholeTurnsAmongThePostures) {
    Cell cell(0);
    float min[6], max[6];
    ZK_Model_Get_Joint_Limits(cell.model.get(), min, max);
    const Joints q = {10, 20, 30, 40, 50, 60};
    const Pose pose = to_pose(cell.forward(q));
    int with_turns, without, tight;
    ASSERT_EQ(ZK_Model_Inverse_All(cell.model.get(), &pose, q.data(), nullptr, nullptr, 0, &with_turns), ZK_OK);
    min[5] = -179;
    max[5] = 180;
    ZK_Model_Set_Joint_Limits(cell.model.get(), min, max);
    ASSERT_EQ(ZK_Model_Inverse_All(cell.model.get(), &pose, q.data(), nullptr, nullptr, 0, &without), ZK_OK);
    EXPECT_EQ(with_turns, 2 * without);
    ZK_InverseOptions options{};
    options.max_step = 1;
    ASSERT_EQ(ZK_Model_Inverse_All(cell.model.get(), &pose, q.data(), &options, nullptr, 0, &tight), ZK_OK);
    EXPECT_EQ(tight, 1);
}

// At a straight elbow two closed forms return one posture.
TEST(Inverse, ListsEachPostureOnce) {
    Cell cell(0);
    for (int n = 0; n < 20; ++n) {
        Joints q = cell.random();
        q[2] = 0;
        const Pose pose = to_pose(cell.forward(q));
        float rows[64][6];
        int count;
        ASSERT_EQ(ZK_Model_Inverse_All(cell.model.get(), &pose, q.data(), nullptr, rows[0], 64, &count), ZK_OK);
        for (int i = 1; i < count; ++i) EXPECT_FALSE(std::equal(rows[i], rows[i] + 6, rows[i - 1]));
    }
}

// ----------------------------------------------------------------------------------------------- Options, refusals --

TEST_P(EachModel, RefusesWithTheCause) {
    const Joints q = cell.random(0.5), kept = {1, 2, 3, 4, 5, 6, 7};
    Joints answer = kept;
    ZK_InverseResult result;
    const auto refused = [&](const KDL::Frame& target, const Joints& seed, const ZK_InverseOptions* options = nullptr) {
        const int status = cell.inverse(target, seed, answer, &result, options);
        EXPECT_EQ(answer, kept);
        return status == ZK_NO_SOLUTION ? result.cause : ZK_CAUSE_NONE;
    };
    KDL::Frame away = cell.forward(q);
    away.p = away.p + KDL::Vector(2, 1, 1);
    EXPECT_EQ(refused(away, q), ZK_CAUSE_OUT_OF_REACH);
    for (const double absurd : {1e10, 1e20, 1e30}) {
        away.p = KDL::Vector(absurd, 1, absurd);
        EXPECT_EQ(refused(away, q), ZK_CAUSE_OUT_OF_REACH);
    }
    for (const double bad : {NAN, INFINITY, -INFINITY}) {
        away.p = KDL::Vector(0, bad, 0);
        EXPECT_EQ(refused(away, q), ZK_CAUSE_BAD_TARGET);
    }

    Joints turned = q;
    turned[0] += 20;
    ZK_InverseOptions options{};
    options.max_step = 2;
    EXPECT_EQ(refused(cell.forward(q), turned, &options), ZK_CAUSE_LARGER_STEP);
    options = {};
    options.min_manipulability = 1;
    EXPECT_EQ(refused(cell.forward(q), q, &options), ZK_CAUSE_SINGULAR);

    // Limits about q, and a target that takes joint 1 beyond them.
    float min[7], max[7];
    for (int i = 0; i < joints; ++i) {
        min[i] = q[i] - 1;
        max[i] = q[i] + 1;
    }
    ASSERT_EQ(ZK_Model_Set_Joint_Limits(cell.model.get(), min, max), ZK_OK);
    EXPECT_EQ(refused(cell.forward(turned), q), ZK_CAUSE_BEYOND_LIMITS);
    EXPECT_TRUE(result.joint == 1 || joints == 7);
}

// The forearm is too short by 3 cm, and some places on the circle are beyond the limits of joint 7.
TEST(Inverse, NamesTheReachBeforeTheLimits) {
    const Owned model = new_model(7);
    const Joints q = {0, 60, 0, 0, 0, 90, 0};
    Joints answer{};
    Pose pose;
    ZK_InverseResult result;
    ASSERT_EQ(ZK_Model_Forward(model.get(), q.data(), &pose), ZK_OK);
    pose.position.x += 0.03f;
    EXPECT_EQ(ZK_Model_Inverse(model.get(), &pose, q.data(), nullptr, answer.data(), &result), ZK_NO_SOLUTION);
    EXPECT_EQ(result.cause, ZK_CAUSE_OUT_OF_REACH);
}

TEST_P(EachModel, BadArguments) {
    const Joints q = cell.random(0.5);
    const Pose pose = to_pose(cell.forward(q));
    Joints answer{};
    const auto status = [&](const Joints& seed, const ZK_InverseOptions& options, const Pose& target) {
        return ZK_Model_Inverse(cell.model.get(), &target, seed.data(), &options, answer.data(), nullptr);
    };
    for (const float bad : {NAN, INFINITY, 1e20f, 1000.f}) {
        Joints seed = q;
        seed[joints - 1] = bad;
        EXPECT_EQ(status(seed, {}, pose), ZK_BAD_ARGUMENT);
    }
    ZK_InverseOptions options{};
    options.max_step = -1;
    EXPECT_EQ(status(q, options, pose), ZK_BAD_ARGUMENT);
    options = {};
    options.circle_step = 1e-9f;
    EXPECT_EQ(status(q, options, pose), ZK_BAD_ARGUMENT);
    options = {};
    options.joint_weight[0] = 1;  // the others 0
    EXPECT_EQ(status(q, options, pose), ZK_BAD_ARGUMENT);
    options = {};
    options.orientation = ZK_BY_QUATERNION;
    Pose scaled = pose;
    scaled.quaternion.w += 1;
    EXPECT_EQ(status(q, options, scaled), ZK_BAD_ARGUMENT);
    scaled = pose;
    scaled.euler = {NAN, NAN, NAN};
    EXPECT_EQ(status(q, options, scaled), ZK_OK);
    EXPECT_EQ(ZK_Model_Inverse(nullptr, &pose, q.data(), nullptr, answer.data(), nullptr), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Model_Inverse(cell.model.get(), nullptr, q.data(), nullptr, answer.data(), nullptr), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Model_Inverse(cell.model.get(), &pose, nullptr, nullptr, answer.data(), nullptr), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Model_Inverse(cell.model.get(), &pose, q.data(), nullptr, nullptr, nullptr), ZK_BAD_ARGUMENT);
}

// A heavy joint moves less: here the joint that moves most when all weigh the same.
TEST(Inverse, WeightsDecideWhichJointsMove) {
    for (const int model : {1, 7}) {
        Cell cell(model);
        const Joints q = cell.random(0.5), seed = cell.near(q, 4);
        Joints plain{}, weighted{};
        ASSERT_EQ(cell.inverse(cell.forward(q), seed, plain), ZK_OK);
        int most = 0;
        for (int i = 0; i < 7; ++i)
            most = std::fabs(plain[i] - seed[i]) > std::fabs(plain[most] - seed[most]) ? i : most;
        ZK_InverseOptions options{};
        std::fill_n(options.joint_weight, 7, 1.f);
        options.joint_weight[most] = 100;
        ASSERT_EQ(cell.inverse(cell.forward(q), seed, weighted, nullptr, &options), ZK_OK);
        EXPECT_LT(std::fabs(weighted[most] - seed[most]), 0.9 * std::fabs(plain[most] - seed[most]));
        EXPECT_TRUE(cell.meets(weighted, cell.forward(q)));
    }
}

TEST_P(EachModel, OnlyTheRatiosOfWeightsMatter) {
    for (int n = 0; n < 10; ++n) {
        const KDL::Frame target = cell.forward(cell.random());
        const Joints seed = cell.random();
        Joints plain{}, weighted{};
        ZK_InverseOptions options{};
        std::fill_n(options.joint_weight, joints, 1e-6f);
        ASSERT_EQ(cell.inverse(target, seed, plain), ZK_OK);
        ASSERT_EQ(cell.inverse(target, seed, weighted, nullptr, &options), ZK_OK);
        EXPECT_LT(cell.largest_step(plain, weighted), 0.01);
    }
}

// zk/checked_inverse.h: the same answers to the bit on the process-wide model, which may change between calls.
TEST_P(EachModel, CheckedInverseIsTheSameSolver) {
    Algo_Init_Sys_Data(GetParam(), 0);
    for (int n = 0; n < 20; ++n) {
        FrameRec tool{};
        tool.pose = {{.01f * n, 0, .1f}, {}, {0, .1f, 0}};
        Algo_Set_ToolFrame(&tool);
        const Owned copy = owned(ZK_Model_Copy_Current());
        const Joints q = cell.random(), seed = cell.random();
        const Pose target = Algo_Forward_Kinematics(q.data());
        for (const uint8_t flag : {0, 1}) {
            ZK_InverseOptions options{};
            options.orientation = flag == 1 ? ZK_BY_EULER : ZK_BY_QUATERNION;
            Joints mine{}, checked{};
            EXPECT_EQ(ZK_Model_Inverse(copy.get(), &target, seed.data(), &options, mine.data(), nullptr), ZK_OK);
            EXPECT_EQ(ZK_Inverse_Kinematics_Checked(seed.data(), &target, checked.data(), flag), ZK_OK);
            EXPECT_EQ(mine, checked);
        }
        Joints beyond = seed;
        beyond[1] = cell.kdl.arm.max[1] + 0.01f;
        EXPECT_EQ(ZK_Inverse_Kinematics_Checked(beyond.data(), &target, beyond.data(), 1), ZK_BAD_ARGUMENT);
    }
    const Joints q{};
    Joints answer{};
    const Pose target = Algo_Forward_Kinematics(q.data());
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(nullptr, &target, answer.data(), 1), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(q.data(), nullptr, answer.data(), 1), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(q.data(), &target, nullptr, 1), ZK_BAD_ARGUMENT);
    Algo_Init_Sys_Data(9, 0);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(q.data(), &target, answer.data(), 1), ZK_NO_SOLUTION);
}

}  // namespace
}  // namespace zk::test
