// The checked inverse kinematics, for every arm, judged by KDL.
#include "zk/checked_inverse.h"

#include <gtest/gtest.h>

#include <array>

#include "kinematics/seven_axis_arm.h"
#include "zk/algorithm.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/status.h"

namespace zk::test {
namespace {

Joints in_degrees(Joints q) {
    for (float& angle : q) angle = static_cast<float>(angle * (180 / M_PI));
    return q;
}

Joints in_radians(Joints q) {
    for (float& angle : q) angle = static_cast<float>(angle * (M_PI / 180));
    return q;
}

// An arm that hangs at an angle, with a tool, in a work frame.
class Cell {
 public:
    explicit Cell(const Arm& arm) : arm(arm), chain_(kdl_chain(arm)), forward_(chain_) {
        Algo_Init_Sys_Data(arm.model, arm.sensor);
        Algo_Set_Angle(20, -130, 75);
        const FrameRec tool = frame(flange_T_tool_), work = frame(world_T_work_);
        Algo_Set_ToolFrame(&tool);
        Algo_Set_WorkFrame(&work);
    }
    KDL::Frame forward(const Joints& q) {
        KDL::JntArray joints(arm.joints);
        for (int i = 0; i < arm.joints; ++i) joints(i) = q[i];
        KDL::Frame base_T_flange;
        forward_.JntToCart(joints, base_T_flange);
        return world_T_work_.Inverse() * world_T_base_ * base_T_flange * flange_T_tool_;
    }
    Joints seed_near(const Joints& q, double distance, std::mt19937& generator) const {
        std::uniform_real_distribution<float> off(static_cast<float>(-distance), static_cast<float>(distance));
        Joints seed{};
        for (int i = 0; i < arm.joints; ++i) {
            const auto limit = [](int degrees) { return static_cast<float>(degrees) * 0.01745f; };
            seed[i] = std::clamp(q[i] + off(generator), limit(arm.min[i]), limit(arm.max[i]));
        }
        return in_degrees(seed);
    }
    double metres_off(const Joints& degrees, const KDL::Frame& target) {
        return (forward(in_radians(degrees)).p - target.p).Norm();
    }
    void expect_met(const Joints& degrees, const KDL::Frame& target) {
        EXPECT_LT(metres_off(degrees, target), 1.3e-5) << arm;  // the rounding of the library's own forward included
        EXPECT_LT(angle_between(forward(in_radians(degrees)).M, target.M), 1.1e-4) << arm;
        for (int i = 0; i < arm.joints; ++i) {
            EXPECT_GE(degrees[i], static_cast<float>(arm.min[i]) - 1e-4f) << arm << " joint " << i + 1;
            EXPECT_LE(degrees[i], static_cast<float>(arm.max[i]) + 1e-4f) << arm << " joint " << i + 1;
        }
    }
    const Arm arm;

 private:
    static FrameRec frame(const KDL::Frame& f) {
        FrameRec record{};
        record.pose = to_pose(f);
        return record;
    }

    const KDL::Frame world_T_base_{KDL::Rotation::RPY(20 * M_PI / 180, -130 * M_PI / 180, 75 * M_PI / 180)};
    const KDL::Frame flange_T_tool_{KDL::Rotation::RPY(0.1, -0.2, 0.3), KDL::Vector(0.02, 0.01, 0.1)};
    const KDL::Frame world_T_work_{KDL::Rotation::RPY(0.4, 0.2, -0.5), KDL::Vector(0.3, -0.2, 0.1)};
    const KDL::Chain chain_;
    KDL::ChainFkSolverPos_recursive forward_;
};

int checked(const Joints& seed, const KDL::Frame& target, Joints& out) {
    const Pose pose = to_pose(target);
    return ZK_Inverse_Kinematics_Checked(seed.data(), &pose, out.data(), 0);
}
int unchecked(const Joints& seed, const KDL::Frame& target, Joints& out) {
    const Pose pose = to_pose(target);
    return Algo_Inverse_Kinematics(seed.data(), &pose, out.data(), 0);
}

class CheckedInverse : public ::testing::TestWithParam<Arm> {};

// Half of the postures have a joint aligned, where closed forms lose their digits.
TEST_P(CheckedInverse, MeetsTheTarget) {
    const Arm& arm = GetParam();
    Cell cell(arm);
    std::mt19937 generator(21);
    std::uniform_real_distribution<float> aligned(-0.02f, 0.02f);
    constexpr int kTimes = 1000 / kShare;
    int unsolved = 0;
    double worst_unchecked = 0;
    for (int i = 0; i < kTimes; ++i) {
        Joints q = random_joints(arm, generator, 0.95), out{}, plain{};
        if (i % 2 == 1) q[arm.joints == 6 ? 4 : std::array{1, 2, 5}[i / 2 % 3]] = aligned(generator);
        const Joints seed = cell.seed_near(q, 0.1, generator);
        const KDL::Frame target = cell.forward(q);
        const bool answered = unchecked(seed, target, plain) == 0;
        const double missed = answered ? cell.metres_off(plain, target) : 0;
        worst_unchecked = std::max(worst_unchecked, missed);
        if (checked(seed, target, out) != 0) {
            ++unsolved;
            continue;
        }
        cell.expect_met(out, target);
        // A right answer stays as it is.
        if (answered && missed < 5e-6 && i % 2 == 0) {
            EXPECT_EQ(out, plain);
        }
    }
    EXPECT_LE(unsolved, kTimes / 100 + 1);
    EXPECT_TRUE(arm.model != 1 || worst_unchecked > 1e-3);
}

std::vector<Arm> one_of_each_model() {
    std::vector<Arm> result;
    for (const Arm& arm : arms()) {
        if (arm.model != 9 && arm.sensor == 0) result.push_back(arm);
    }
    return result;
}
INSTANTIATE_TEST_SUITE_P(Arms, CheckedInverse, ::testing::ValuesIn(one_of_each_model()),
                         [](const auto& info) { return "model" + std::to_string(info.param.model); });

class CheckedInverse75 : public ::testing::Test {
 protected:
    Cell cell{arm_of(1, 0)};
    const Joints bent = in_degrees({0.3f, 0.7f, -0.5f, 1.1f, 0.4f, 0.8f, 0.2f});
    const KDL::Frame at_bent = cell.forward(in_radians(bent));
    const Joints untouched{1, 2, 3, 4, 5, 6, 7, 8};
};

TEST_F(CheckedInverse75, OutOfReachIsNoSolution) {
    KDL::Frame target = at_bent;
    target.p = target.p + KDL::Vector(1, 1, 1);
    Joints out = untouched;
    EXPECT_EQ(unchecked(bent, target, out), ZK_OK);
    out = untouched;
    EXPECT_EQ(checked(bent, target, out), ZK_NO_SOLUTION);
    EXPECT_EQ(out, untouched);
}

// The arm angle of the first step takes joint 5 beyond its limit; others do not.
TEST_F(CheckedInverse75, LooksFurtherWhereTheNarrowSearchGivesUp) {
    const Joints q{-1.042f, 1.176f, -2.441f, 1.571f, 2.922f, -0.033f, -4.443f};
    const Joints seed = in_degrees({-1.109f, 1.090f, -2.392f, 1.533f, 3.020f, -0.116f, -4.428f});
    Joints out{};
    EXPECT_EQ(unchecked(seed, cell.forward(q), out), ZK_NO_SOLUTION);
    ASSERT_EQ(checked(seed, cell.forward(q), out), ZK_OK);
    cell.expect_met(out, cell.forward(q));
}

// With a straight elbow there is no arm angle, and the narrow answer is zeros.
TEST_F(CheckedInverse75, ReachesAStraightElbow) {
    Joints q = in_radians(bent), out{};
    q[3] = 0;
    ASSERT_EQ(checked(bent, cell.forward(q), out), ZK_OK);
    cell.expect_met(out, cell.forward(q));
}

TEST_F(CheckedInverse75, TakesEitherOrientationOfThePose) {
    Pose euler_only = to_pose(at_bent), quaternion_only = euler_only;
    euler_only.quaternion = {};
    quaternion_only.euler = {};
    Joints out{};
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(bent.data(), &euler_only, out.data(), 1), ZK_OK);
    cell.expect_met(out, at_bent);
    out = bent;  // in place
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(out.data(), &quaternion_only, out.data(), 0), ZK_OK);
    cell.expect_met(out, at_bent);
    out = untouched;
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(bent.data(), &euler_only, out.data(), 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(out, untouched);
}

TEST_F(CheckedInverse75, BadArguments) {
    const Pose pose = to_pose(at_bent);
    Joints out = untouched, beyond = bent;
    beyond[1] = 131;
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(nullptr, &pose, out.data(), 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(bent.data(), nullptr, out.data(), 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Inverse_Kinematics_Checked(bent.data(), &pose, nullptr, 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(checked(beyond, at_bent, out), ZK_BAD_ARGUMENT);
    libalgo_set_robot_and_sensor_type(2, 0);
    EXPECT_EQ(checked(bent, at_bent, out), ZK_NO_SOLUTION);
    EXPECT_EQ(out, untouched);
}

}  // namespace
}  // namespace zk::test
