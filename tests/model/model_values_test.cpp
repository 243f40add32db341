// What the setters of the model make of the values they are given.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

#include "support/kdl_frames.h"
#include "zk/model.h"

namespace zk::test {
namespace {

class Values : public testing::Test {
 protected:
    void SetUp() override { ASSERT_EQ(libalgo_init(), 0); }
};

std::vector<float> counting(std::size_t n, float from = 1) {
    std::vector<float> values(n);
    std::iota(values.begin(), values.end(), from);
    return values;
}

TEST_F(Values, StoredWholeComeBackAsTheyAre) {
    const struct {
        const char* name;
        void (*set)(const float*);
        void (*get)(float*);
        std::size_t size;
    } cases[] = {
        {"tool", libalgo_set_tool_cs_params, libalgo_get_tool_cs_params, 6},
        {"work", libalgo_set_work_cs_params, libalgo_get_work_cs_params, 6},
        {"install", libalgo_set_robot_install_angle, libalgo_get_robot_install_angle, 3},
        {"max", libalgo_set_jointlim_max, libalgo_get_jointlim_max, 8},
        {"min", libalgo_set_jointlim_min, libalgo_get_jointlim_min, 8},
        {"speed", libalgo_set_joint_vel_maxlim, libalgo_get_joint_vel_maxlim, 8},
        {"acceleration", libalgo_set_joint_acc_maxlim, libalgo_get_joint_acc_maxlim, 8},
        {"payload", libalgo_set_payload_params, libalgo_get_payload_params, 11},
        {"tcp", libalgo_set_tcp_config, libalgo_get_tcp_config, 4},
        {"command", libalgo_set_trajectory_planning_joint_cmd, libalgo_get_trajectory_planning_joint_cmd, 8},
    };
    float from = 1;
    for (const auto& c : cases) c.set(counting(c.size, from += 100).data());
    from = 1;
    for (const auto& c : cases) {
        std::vector<float> values(c.size + 1, -1);
        c.get(values.data());
        std::vector<float> expected = counting(c.size, from += 100);
        expected.push_back(-1);
        EXPECT_EQ(values, expected) << c.name;
    }
    CollisionThreshold threshold, held;
    std::iota(std::begin(threshold.value), std::end(threshold.value), 5.0f);
    libalgo_set_user_collision_threshold(&threshold);
    libalgo_get_user_collision_threshold(&held);
    EXPECT_EQ(std::memcmp(&threshold, &held, sizeof held), 0);
}

TEST_F(Values, OfAJointsRecordAreTheLimitsOfThatJoint) {
    JointConfig config;
    for (int i = 0; i < 17; ++i) reinterpret_cast<float*>(&config)[i] = 30.0f + i;
    libalgo_set_joint_config(2, &config);
    float max[8], min[8], speed[8], acceleration[8];
    libalgo_get_jointlim_max(max);
    libalgo_get_jointlim_min(min);
    libalgo_get_joint_vel_maxlim(speed);
    libalgo_get_joint_acc_maxlim(acceleration);
    EXPECT_EQ((std::vector<float>{max[2], min[2], speed[2], acceleration[2]}), (std::vector<float>{40, 41, 42, 43}));
    max[2] = 99;
    libalgo_set_jointlim_max(max);
    libalgo_get_joint_config(2, &config);
    EXPECT_EQ(config.pos_max, 99);
    EXPECT_EQ(config.reserved_after[2], 46);
}

TEST_F(Values, ModelingLimitsAreCountedAsDhAngles) {
    float max[8], min[8];
    libalgo_get_modeling_jointlim_max(max);
    libalgo_get_modeling_jointlim_min(min);
    EXPECT_FLOAT_EQ(max[1], (130 + 90) * M_PI / 180);
    EXPECT_FLOAT_EQ(min[2], (-135 + 90) * M_PI / 180);
    EXPECT_FLOAT_EQ(max[5], 2 * M_PI);
    EXPECT_EQ(max[6], 0);
}

TEST_F(Values, FramesAreRigidTransforms) {
    const float params[6] = {0.1f, -0.2f, 0.3f, 0.4f, -1.1f, 2.6f};
    const KDL::Frame frame(KDL::Rotation::RPY(0.4, -1.1, 2.6), KDL::Vector(0.1, -0.2, 0.3));
    libalgo_set_tool_cs_params(params);
    libalgo_set_work_cs_params(params);
    Matrix m;
    libalgo_get_tool_cs_matrix(&m);
    expect_near(to_kdl(m), frame, 5e-7);
    EXPECT_EQ(m.m[3][3], 1);
    libalgo_get_work_cs_to_base_matrix(&m);
    expect_near(to_kdl(m), frame.Inverse(), 5e-7);
    EXPECT_EQ(m.m[3][3], 1);
}

TEST_F(Values, MountingTurnsGravityIntoTheBaseFrame) {
    const float cases[][3] = {{0, 0, 0}, {static_cast<float>(M_PI_2), 0, 0}, {0, 0.7f, 0}, {0.3f, -0.5f, 1.9f}};
    for (const auto& angles : cases) {
        libalgo_set_robot_install_angle(angles);
        const KDL::Rotation world_R_base = KDL::Rotation::RPY(angles[0], angles[1], angles[2]);
        const KDL::Vector expected = world_R_base.Inverse() * KDL::Vector(0, 0, -9.81);
        float g[3];
        libalgo_get_robot_gravity_acc(g);
        EXPECT_LT((KDL::Vector(g[0], g[1], g[2]) - expected).Norm(), 2e-6);
        Matrix m;
        libalgo_get_robot_install_angle_matrix(&m);
        expect_near(to_kdl(m), KDL::Frame(world_R_base), 5e-7);
    }
}

TEST_F(Values, DhSettersLeaveTheEighthColumn) {
    DhParams ones, held;
    std::fill_n(reinterpret_cast<float*>(&ones), sizeof ones / sizeof(float), 1.0f);
    libalgo_set_dh_params(&ones);
    libalgo_get_dh_value(&held);
    EXPECT_EQ(held.offset[6], 1);
    EXPECT_EQ(held.offset[7], 0);
    EXPECT_EQ(held.d_comp[0], 0);
    libalgo_set_dh_compensation_value(&ones);
    libalgo_get_dh_value(&held);
    EXPECT_EQ(held.offset_comp[6], 1);
    EXPECT_EQ(held.offset_comp[7], 0);

    DhParams compensation{};
    libalgo_get_dh_compensation_value(&compensation);
    EXPECT_EQ(compensation.a_comp[6], 1);
    EXPECT_EQ(compensation.a_comp[7], 0);
    EXPECT_EQ(compensation.a[0], 0);

    robot.dh.d[7] = 5;
    libalgo_set_dh_params_default();
    libalgo_get_dh_params_default(&compensation);
    libalgo_get_dh_value(&held);
    EXPECT_EQ(std::memcmp(&held, &compensation, sizeof held), 0);
}

TEST_F(Values, DhParametersAreDefaultUntilOneOfTheArmsJointsDiffers) {
    const struct {
        float (DhParams::*row)[8];
        int joint;
        float value;
        int is_default;
    } cases[] = {
        {&DhParams::d, 5, 0.5f, 0},          {&DhParams::a, 0, 1e-9f, 0},       {&DhParams::a, 0, 0.9e-10f, 1},
        {&DhParams::alpha, 3, NAN, 0},       {&DhParams::offset, 0, -1e-9f, 0}, {&DhParams::d, 6, 0.5f, 1},
        {&DhParams::alpha_comp, 0, 0.5f, 1},
    };
    for (const auto& c : cases) {
        libalgo_set_dh_params_default();
        (robot.dh.*c.row)[c.joint] = c.value;
        EXPECT_EQ(libalgo_check_dh_params_is_default(), c.is_default) << c.joint << ' ' << c.value;
    }
}

TEST_F(Values, FeedbackGetsTheOffsetsOfTheArmsJoints) {
    RobotFeedback feedback;
    for (int i = 0; i < 8; ++i) feedback.joint[i] = i, feedback.cur[i] = 10 + i;
    for (uint32_t i = 0; i < 55; ++i) feedback.reserved[i] = i;
    robot.trajectory_planning_joint_cur[6] = -3;
    libalgo_update_feedback_data(&feedback);

    RobotFeedback held;
    float cur[8];
    libalgo_get_robot_feedback_data(&held);
    libalgo_get_trajectory_planning_joint_cur(cur);
    EXPECT_FLOAT_EQ(held.joint[1], 1 + 1.5707964f);
    EXPECT_FLOAT_EQ(held.cur[2], 12 + 1.5707964f);
    EXPECT_EQ(held.joint[3], 3);
    EXPECT_EQ(cur[2], 12);
    EXPECT_EQ(held.cur[6], 16);
    EXPECT_EQ(cur[6], -3);
    EXPECT_EQ(held.reserved[54], 54u);
}

TEST_F(Values, DragFactorsOfTheFirstGroupAloneAreKeptFromZero) {
    float factors[14] = {0.0005f, -0.0005f, 0.001f, 0, 2, 0.5f, 0, 0.0005f};
    libalgo_set_drag_regulation_factor(factors);
    DynamicsParams held;
    libalgo_get_dynamics_params(&held);
    const float expected[8] = {1, 1, 0.001f, 1, 2, 0.5f, 0, 0};  // the seventh is of no joint of this arm
    EXPECT_TRUE(std::equal(expected, expected + 8, held.drag_factor_a));
    EXPECT_EQ(held.drag_factor_b[0], 0.0005f);
}

TEST_F(Values, IdentificationGoesToItsThreePlaces) {
    libalgo_set_dynamics_identification_params(counting(49).data());
    DynamicsParams held;
    libalgo_get_dynamics_params(&held);
    EXPECT_EQ(held.identification_block[34], 35);
    EXPECT_EQ(held.reserved[0], 0);
    EXPECT_EQ(held.identification_d[0], 36);
    EXPECT_EQ(held.identification_d[6], 42);
    EXPECT_EQ(held.identification_d[7], 0);
    EXPECT_EQ(held.identification_c[0], 43);
}

TEST_F(Values, LinkRecordsAreThoseOfTheArmsJoints) {
    LinkDynamics links[8] = {}, held[8] = {};
    for (int i = 0; i < 8; ++i) links[i].mass = 20.0f + i, held[i].mass = -1;
    libalgo_set_link_dynamics_params(links);
    libalgo_get_link_dynamics_params(held);
    EXPECT_EQ(held[5].mass, 25);
    EXPECT_EQ(held[6].mass, -1);
    EXPECT_EQ(robot.dynamics_params.link[6].mass, 0);
    libalgo_get_link_dynamics_params_default(held);
    EXPECT_EQ(held[5].mass, 0.107f);
    EXPECT_EQ(held[6].mass, -1);
    libalgo_set_link_dynamics_params_default();
    EXPECT_EQ(robot.dynamics_params.link[0].mass, 1.51f);
}

TEST_F(Values, DirectionsKeepTheirSign) {
    const float given[8] = {-0.1f, 5, 0, NAN, -7, 0.5f, -1, -1};
    robot.joint_direction[2] = -1;
    libalgo_set_joint_direction(given);
    float held[8] = {0, 0, 0, 0, 0, 0, 0, 9};
    libalgo_get_joint_direction(held);
    EXPECT_EQ(std::vector<float>(held, held + 8), (std::vector<float>{-1, 1, -1, 1, -1, 1, 1, 9}));
}

TEST_F(Values, OutOfRangeAreRefused) {
    EXPECT_EQ(libalgo_set_safety_level(8), 0);
    EXPECT_EQ(libalgo_set_safety_level(9), -1);
    EXPECT_EQ(libalgo_get_safety_level(), 8);
    EXPECT_EQ(libalgo_set_safety_level(static_cast<uint16_t>(65536)), 0);
    EXPECT_EQ(libalgo_get_safety_level(), 0);

    EXPECT_EQ(libalgo_set_system_all_dof(6), 0);
    EXPECT_EQ(libalgo_set_system_all_dof(5), -1);
    EXPECT_EQ(libalgo_get_system_all_dof(), 6);

    for (const auto& [given, held] : {std::pair(2, 2), {0, 1}, {7, 1}}) {
        libalgo_set_dynamics_model_type(given);
        EXPECT_EQ(libalgo_get_dynamics_model_type(), held);
    }
}

}  // namespace
}  // namespace zk::test
