// Selection of an arm, and the defaults of each.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "support/kdl_arm.h"
#include "zk/model.h"

namespace zk::test {
namespace {

float radians(int degrees) { return static_cast<float>(degrees) * 0.017453292f; }

// The DH record holds angles rounded once to single precision.
float dh_angle(int degrees) { return static_cast<float>(degrees / 180.0 * M_PI); }

TEST(Model, HasTheDhParametersAndLimitsOfItsArm) {
    for (const Arm& arm : arms()) {
        SCOPED_TRACE(arm);
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(arm.model, arm.sensor), 0);
        EXPECT_EQ(libalgo_get_rbt_dof(), arm.joints);
        float max[8], min[8], acceleration[8];
        libalgo_get_jointlim_max(max);
        libalgo_get_jointlim_min(min);
        libalgo_get_joint_acc_maxlim(acceleration);
        DhParams dh;
        libalgo_get_dh_value(&dh);
        for (int j = 0; j < 8; ++j) {
            const bool has = j < arm.joints;
            EXPECT_EQ(max[j], has ? radians(arm.max[j]) : 0) << j;
            EXPECT_EQ(min[j], has ? radians(arm.min[j]) : 0) << j;
            EXPECT_EQ(acceleration[j], has ? radians(1000) : 0) << j;
            EXPECT_EQ(dh.d[j], has ? arm.d[j] : 0) << j;
            EXPECT_EQ(dh.a[j], has ? arm.a[j] : 0) << j;
            EXPECT_EQ(dh.offset[j], has ? dh_angle(arm.offset[j]) : 0) << j;
            // The record of model 4 differs from the twist of its wrist, and model 9 has none.
            const int twist = arm.model == 9 ? 0 : arm.model == 4 && j == 5 ? -90 : has ? arm.twist[j] : 0;
            EXPECT_EQ(dh.alpha[j], dh_angle(twist)) << j;
            EXPECT_EQ(dh.d_comp[j] + dh.a_comp[j] + dh.alpha_comp[j] + dh.offset_comp[j], 0) << j;
        }
        EXPECT_EQ(std::memcmp(&robot.dh, &dh_default, sizeof robot.dh), 0);
        EXPECT_EQ(std::memcmp(robot.dynamics_params.link, dyn_param_default.link, sizeof dyn_param_default.link), 0);
        EXPECT_TRUE(robot.tcp_config[0] == 0.25f && robot.tcp_config[1] == 1.6f && robot.tcp_config[2] == 0.6f &&
                    robot.tcp_config[3] == 4);
    }
}

TEST(Model, HasItsSpeedsDirectionsAndMasses) {
    using Values = std::vector<float>;
    const Values slow = {180, 180, 225, 225, 225, 225, 0}, straight = {1, 1, 1, 1, 1, 1, 1},
                 of_63 = {1, -1, 1, 1, 1, 1, 1}, parallel = {1, -1, 1, -1, 1, 1, 1};
    const struct {
        int model, sensor;
        Values speed, direction, mass;  // degrees per second, kilograms
    } rows[] = {
        // clang-format off
        {0, 0, slow, straight, {1.51f, 1.653f, 0.726f, 0.671f, 0.647f, 0.107f, 0}},
        {0, 2, slow, straight, {1.51f, 1.653f, 0.726f, 0.671f, 0.647f, 0.248f, 0}},
        {1, 1, {180, 180, 225, 225, 225, 225, 225}, straight, {1.574f, 1.217f, 1.11f, 0.685f, 0.619f, 0.602f, 0.15f}},
        {3, 0, slow, of_63, {1.837f, 2.006f, 1.961f, 1.201f, 1.026f, 0.107f, 0}},
        {4, 0, slow, of_63, Values(7)},
        {5, 0, slow, parallel, {1.50782f, 2.022748f, 1.885823f, 0.5700811f, 0.6413858f, 0.107f, 0}},
        {6, 0, {225, 225, 225, 180, 180, 180, 0}, parallel, {1.19575f, 0.8055f, 0.413f, 0.2386f, 0.2633f, 0.0667f, 0}},
        {7, 0, {180, 180, 180, 180, 225, 225, 225}, {-1, 1, -1, 1, -1, 1, -1},
         {0.849f, 0.954f, 1.166f, 0.501f, 0.164f, 0.92f, 0}},
        {8, 1, slow, parallel, {1.6026f, 2.8169f, 2.6857f, 0.625f, 0.6743f, 0.15f, 0}},
        {9, 3, Values(7, 300), straight, Values(7)},
        // clang-format on
    };
    for (const auto& row : rows) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(row.model, row.sensor), 0);
        float speed[8], direction[7];
        libalgo_get_joint_vel_maxlim(speed);
        libalgo_get_joint_direction(direction);
        for (int j = 0; j < 7; ++j) {
            EXPECT_EQ(speed[j], radians(static_cast<int>(row.speed[j]))) << row.model << ' ' << j;
            EXPECT_EQ(direction[j], row.direction[j]) << row.model << ' ' << j;
            EXPECT_EQ(robot.dynamics_params.link[j].mass, row.mass[j]) << row.model << ' ' << j;
        }
    }
}

TEST(Selection, AcceptsThePairsWithAnArm) {
    // One letter for each sensor from -1 to 4.
    const struct {
        int model;
        const char* taken;
    } cases[] = {{-1, "......"}, {0, ".yyy.."}, {1, ".yyy.."}, {2, "......"}, {3, ".yyy.."}, {4, ".yyy.."},
                 {5, ".yyy.."},  {6, ".y...."}, {7, ".y...."}, {8, ".yyy.."}, {9, "yyyyyy"}, {10, "......"}};
    for (const auto& [model, taken] : cases) {
        for (int sensor = -1; sensor <= 4; ++sensor) {
            const bool ok = taken[sensor + 1] == 'y';
            EXPECT_EQ(libalgo_set_robot_and_sensor_type(model, sensor), ok ? 0 : -1) << model << ' ' << sensor;
            EXPECT_EQ(libalgo_get_rbt_dof() > 0, ok);
            EXPECT_EQ(libalgo_get_robot_type(), model);
            EXPECT_EQ(libalgo_get_sensor_type(), sensor);
        }
    }
}

TEST(Selection, ResetsEverything) {
    libalgo_init();
    const RobotModel fresh = robot;
    std::memset(&robot, 0x3c, sizeof robot);
    EXPECT_EQ(libalgo_clear(), 0);
    EXPECT_EQ(std::memcmp(&robot, &fresh, sizeof fresh), 0);

    EXPECT_FLOAT_EQ(libalgo_get_control_loop_period(), 0.002f);
    EXPECT_EQ(libalgo_get_dynamics_model_type(), 0);
    EXPECT_EQ(libalgo_get_system_all_dof(), 0);
    Matrix m;
    for (const auto get :
         {libalgo_get_tool_cs_matrix, libalgo_get_work_cs_to_base_matrix, libalgo_get_robot_install_angle_matrix}) {
        get(&m);
        EXPECT_EQ(m.rows, 4);
        EXPECT_EQ(m.cols, 4);
        for (int i = 0; i < 16; ++i) EXPECT_EQ(m.m[i / 4][i % 4], i / 4 == i % 4);
    }
    float gravity[3];
    libalgo_get_robot_gravity_acc(gravity);
    EXPECT_EQ(gravity[2], -9.81f);
}

TEST(Selection, UnknownArmClearsTheModelButKeepsTheDefaults) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(0, 2), 0);
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(6, 1), -1);
    EXPECT_EQ(robot.dh.d[0], 0);
    EXPECT_EQ(robot.tcp_config[0], 0);
    EXPECT_EQ(robot.joint_config[0].pos_max, 0);
    EXPECT_EQ(dh_default.d[5], 0.1725f);
    EXPECT_EQ(dyn_param_default.link[5].mass, 0.248f);
    EXPECT_EQ(libalgo_check_dh_params_is_default(), 1);  // there is no joint that could differ
}

TEST(Selection, StoresTheLinkInertia) {
    const struct {
        int model, sensor, link;
        float record[10];  // inertia, centre of mass, mass
    } cases[] = {
        {0,
         0,
         0,
         {.0029285f, -3.26e-5f, -5.8e-6f, .0025064f, 4.79e-5f, .001756f, .0007414f, .0117825f, -.0162234f, 1.51f}},
        {1, 0, 6, {5.09e-5f, -3.1e-6f, -7e-7f, 4.74e-5f, 4e-7f, 6.04e-5f, -5.41e-5f, 2.73e-5f, -.0011557f, .107f}},
        {3, 1, 5, {8.24e-5f, -2.6e-6f, -8e-7f, 7.95e-5f, 5e-7f, 7.73e-5f, -3.98e-5f, 1.92e-5f, -.0020675f, .15f}},
        {0,
         2,
         5,
         {.0003088f, -3.8e-6f, -1.5e-6f, .0003046f, 9e-7f, .0001226f, -.0001056f, 5.88e-5f, -.0067513f, .248f}},
        {7, 0, 0, {.0006195f, -6e-7f, -3e-7f, .0007587f, -7e-7f, .000455f, 1.53e-5f, .0004118f, -.0042976f, .849f}},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(c.model, c.sensor), 0);
        LinkDynamics links[7];
        libalgo_get_link_dynamics_params(links);
        EXPECT_EQ(std::memcmp(&links[c.link], c.record, sizeof c.record), 0) << c.model << ' ' << c.sensor;
    }
}

}  // namespace
}  // namespace zk::test
