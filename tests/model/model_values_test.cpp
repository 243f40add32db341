// The setters and getters of the model.
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

std::vector<float> row(const float (&values)[8]) { return {values, values + 8}; }

TEST_F(Values, GettersReturnWhatSettersStored) {
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
        {"collision",
         [](const float* v) { libalgo_set_user_collision_threshold(reinterpret_cast<const CollisionThreshold*>(v)); },
         [](float* v) { libalgo_get_user_collision_threshold(reinterpret_cast<CollisionThreshold*>(v)); },
         sizeof(CollisionThreshold) / sizeof(float)},
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
}

TEST_F(Values, JointRecordHoldsTheLimitsOfTheJoint) {
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

    // The modeling limits are counted as DH angles.
    libalgo_get_modeling_jointlim_max(max);
    libalgo_get_modeling_jointlim_min(min);
    EXPECT_FLOAT_EQ(max[1], (130 + 90) * M_PI / 180);
    EXPECT_FLOAT_EQ(min[2], 41 + M_PI_2);
}

TEST_F(Values, FramesAreRigidTransforms) {
    const float params[6] = {0.1f, -0.2f, 0.3f, 0.4f, -1.1f, 2.6f};
    const KDL::Frame frame(KDL::Rotation::RPY(0.4, -1.1, 2.6), KDL::Vector(0.1, -0.2, 0.3));
    libalgo_set_tool_cs_params(params);
    libalgo_set_work_cs_params(params);
    libalgo_set_robot_install_angle(params + 3);
    Matrix tool, work, mounting;
    libalgo_get_tool_cs_matrix(&tool);
    libalgo_get_work_cs_to_base_matrix(&work);
    libalgo_get_robot_install_angle_matrix(&mounting);
    expect_near(to_kdl(tool), frame, 5e-7);
    expect_near(to_kdl(work), frame.Inverse(), 5e-7);
    expect_near(to_kdl(mounting), KDL::Frame(frame.M), 5e-7);
    for (const Matrix& m : {tool, work, mounting}) EXPECT_EQ(m.m[3][3], 1);

    float g[3];
    libalgo_get_robot_gravity_acc(g);
    EXPECT_LT((KDL::Vector(g[0], g[1], g[2]) - frame.M.Inverse() * KDL::Vector(0, 0, -9.81)).Norm(), 2e-6);
}

TEST_F(Values, DhSettersLeaveTheEighthColumn) {
    DhParams ones, expected = robot.dh, compensation{}, expected_compensation{};
    std::fill_n(reinterpret_cast<float*>(&ones), sizeof ones / sizeof(float), 1.0f);
    libalgo_set_dh_params(&ones);
    for (const auto set : {expected.d, expected.a, expected.alpha, expected.offset}) std::fill_n(set, 7, 1);
    EXPECT_EQ(std::memcmp(&robot.dh, &expected, sizeof expected), 0);

    libalgo_set_dh_compensation_value(&ones);
    libalgo_get_dh_compensation_value(&compensation);
    for (DhParams* dh : {&expected, &expected_compensation}) {
        for (const auto set : {dh->d_comp, dh->a_comp, dh->alpha_comp, dh->offset_comp}) std::fill_n(set, 7, 1);
    }
    EXPECT_EQ(std::memcmp(&robot.dh, &expected, sizeof expected), 0);
    EXPECT_EQ(std::memcmp(&compensation, &expected_compensation, sizeof compensation), 0);

    libalgo_set_dh_params_default();
    libalgo_get_dh_params_default(&compensation);
    EXPECT_EQ(std::memcmp(&robot.dh, &compensation, sizeof compensation), 0);
    EXPECT_EQ(robot.dh.d[0], 0.2405f);
}

TEST_F(Values, DhParametersAreDefaultUntilAJointOfTheArmDiffers) {
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

TEST_F(Values, FeedbackAddsTheOffsets) {
    RobotFeedback feedback;
    for (int i = 0; i < 8; ++i) feedback.joint[i] = i, feedback.cur[i] = 10 + i;
    for (uint32_t i = 0; i < 55; ++i) feedback.reserved[i] = i;
    robot.trajectory_planning_joint_cur[6] = -3;
    libalgo_update_feedback_data(&feedback);

    RobotFeedback held;
    float cur[8];
    libalgo_get_robot_feedback_data(&held);
    libalgo_get_trajectory_planning_joint_cur(cur);
    constexpr float quarter = 1.5707964f;
    EXPECT_EQ(row(held.joint), (std::vector<float>{0, 1 + quarter, 2 + quarter, 3, 4, 5, 6, 7}));
    EXPECT_EQ(row(held.cur), (std::vector<float>{10, 11 + quarter, 12 + quarter, 13, 14, 15, 16, 17}));
    EXPECT_EQ(row(cur), (std::vector<float>{10, 11, 12, 13, 14, 15, -3, 0}));
    EXPECT_EQ(held.reserved[54], 54u);
}

TEST_F(Values, DragFactorsNearZeroBecomeOne) {
    const float factors[14] = {0.0005f, -0.0005f, 0.001f, 0, 2, 0.5f, 0, 0.0005f};
    libalgo_set_drag_regulation_factor(factors);
    DynamicsParams held;
    libalgo_get_dynamics_params(&held);
    // This arm has no seventh joint.
    EXPECT_EQ(row(held.drag_factor_a), (std::vector<float>{1, 1, 0.001f, 1, 2, 0.5f, 0, 0}));
    EXPECT_EQ(held.drag_factor_b[0], 0.0005f);
}

TEST_F(Values, IdentificationFillsThreeFields) {
    libalgo_set_dynamics_identification_params(counting(49).data());
    DynamicsParams held;
    libalgo_get_dynamics_params(&held);
    EXPECT_EQ(held.identification_block[34], 35);
    EXPECT_EQ(held.reserved[0], 0);
    EXPECT_EQ(row(held.identification_d), (std::vector<float>{36, 37, 38, 39, 40, 41, 42, 0}));
    EXPECT_EQ(row(held.identification_c), (std::vector<float>{43, 44, 45, 46, 47, 48, 49, 0}));
}

TEST_F(Values, LinkRecordsCoverTheJointsOfTheArm) {
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
    EXPECT_EQ(row(held), (std::vector<float>{-1, 1, -1, 1, -1, 1, 1, 9}));
}

TEST_F(Values, OutOfRangeIsRefused) {
    EXPECT_EQ(libalgo_set_safety_level(8), 0);
    EXPECT_EQ(libalgo_set_safety_level(9), -1);
    EXPECT_EQ(libalgo_get_safety_level(), 8);

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
