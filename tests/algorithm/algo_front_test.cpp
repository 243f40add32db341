// The front in degrees: it stores radians in the model and reads them back.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "support/kdl_frames.h"
#include "zk/algorithm.h"
#include "zk/kinematics.h"
#include "zk/model.h"

namespace zk::test {
namespace {

constexpr double kDegree = M_PI / 180;

class Front : public testing::Test {
 protected:
    void SetUp() override { Algo_Init_Sys_Data(0, 0); }
};

TEST_F(Front, SelectsAModel) {
    Algo_Init_Sys_Data(1, 2);
    EXPECT_EQ(libalgo_get_robot_type(), 1);
    EXPECT_EQ(libalgo_get_sensor_type(), 2);
    EXPECT_EQ(invoke_libalgo_set_robot_type(6, 1), -1);
    EXPECT_STREQ(Algo_Version(), "1.4.8");
    invoke_libalgo_set_control_loop_period(0.01f);
    EXPECT_EQ(libalgo_get_control_loop_period(), 0.01f);
}

TEST_F(Front, LimitsAreStoredInRadians) {
    const struct {
        void (*set)(const float*);
        void (*get)(float*);
        void (*stored)(float*);
        double radians_per_unit;
    } limits[] = {
        {Algo_Set_Joint_Max_Limit, Algo_Get_Joint_Max_Limit, libalgo_get_jointlim_max, kDegree},
        {Algo_Set_Joint_Min_Limit, Algo_Get_Joint_Min_Limit, libalgo_get_jointlim_min, kDegree},
        {Algo_Set_Joint_Max_Speed, Algo_Get_Joint_Max_Speed, libalgo_get_joint_vel_maxlim, 6 * kDegree},
        {Algo_Set_Joint_Max_Acc, Algo_Get_Joint_Max_Acc, libalgo_get_joint_acc_maxlim, 6 * kDegree},
    };
    float values[8] = {30, -17.5f, 0.001f, 90, 178, 360, 999, 999};
    for (const auto& limit : limits) {
        ++values[0];
        limit.set(values);
    }
    values[0] -= 4;
    for (const auto& limit : limits) {
        ++values[0];
        float stored[8], back[8] = {0, 0, 0, 0, 0, 0, -1};
        limit.stored(stored);
        limit.get(back);
        for (int i = 0; i < 6; ++i) {
            EXPECT_FLOAT_EQ(stored[i], values[i] * limit.radians_per_unit);
            EXPECT_FLOAT_EQ(back[i], values[i]);
        }
        EXPECT_EQ(stored[6], 0);
        EXPECT_EQ(stored[7], 0);
        EXPECT_EQ(back[6], -1);
        limit.get(nullptr);
        limit.set(nullptr);
    }
}

TEST_F(Front, ConversionsAreSingleOperationsRoundedOnce) {
    // At some of these values single precision, or the inverse factor, rounds differently.
    float limits[8] = {};
    for (int i = 1; i < 2000; ++i) {
        limits[0] = i * 0.173f;
        Algo_Set_Joint_Max_Limit(limits);
        const float stored = robot.joint_config[0].pos_max;
        EXPECT_EQ(stored, static_cast<float>(limits[0] * 0.017453292519943295));
        float back[8];
        Algo_Get_Joint_Max_Limit(back);
        EXPECT_EQ(back[0], static_cast<float>(stored / 0.017453292519943295));
        Algo_Set_Joint_Max_Speed(limits);
        EXPECT_EQ(robot.joint_config[0].vel_max, static_cast<float>((limits[0] * 6.0f) * 0.017453292519943295));
        Algo_Set_Angle(limits[0], 0, 0);
        EXPECT_EQ(angleU, static_cast<float>(limits[0] * 3.141592653589793 / 180.0));
        EXPECT_EQ(robot.install_angle[0], stored);
    }
}

TEST_F(Front, MountsTheArm) {
    Algo_Set_Angle(90, -45, 10);
    EXPECT_FLOAT_EQ(angleU, M_PI_2);
    EXPECT_FLOAT_EQ(angleV, -M_PI_4);
    EXPECT_FLOAT_EQ(angleH, 10 * kDegree);
    float x = 0, y = 0, z = 0;
    Algo_Get_Angle(&x, &y, nullptr);
    EXPECT_EQ(x, 0);
    Algo_Get_Angle(&x, &y, &z);
    EXPECT_FLOAT_EQ(x, 90);
    EXPECT_FLOAT_EQ(y, -45);
    EXPECT_FLOAT_EQ(z, 10);
}

class FrontFrames : public Front {
 protected:
    void SetUp() override {
        Front::SetUp();
        Algo_Set_ToolFrame(&tool_);
        Algo_Set_WorkFrame(&work_);
    }
    const FrameRec tool_ = frame(0.1f, 0.5f), work_ = frame(0.4f, 1.5f);

 private:
    static FrameRec frame(float x, float rz) {
        FrameRec f{};
        std::strcpy(f.frame_name, "gripper");
        f.pose = {{x, 0.2f, 0.3f}, {9, 9, 9, 9}, {0.1f, -0.2f, rz}};
        f.payload = 1.5f;
        f.x = 0.01f;
        f.y = 0.02f;
        f.z = 0.03f;
        return f;
    }
};

TEST_F(FrontFrames, KeepPositionAndEulerAngles) {
    Algo_Set_ToolFrame(nullptr);
    Algo_Set_WorkFrame(nullptr);
    Algo_Get_Curr_ToolFrame(nullptr);
    Algo_Get_Curr_WorkFrame(nullptr);
    EXPECT_EQ(std::memcmp(&g_tool_pose, &tool_.pose, sizeof g_tool_pose), 0);
    EXPECT_EQ(std::memcmp(&g_work_pose, &work_.pose, sizeof g_work_pose), 0);
    float payload[11];
    libalgo_get_payload_params(payload);
    EXPECT_EQ(std::vector<float>(payload, payload + 11),
              (std::vector<float>{1.5f, 0.01f, 0.02f, 0.03f, 0, 0, 0, 0, 0, 0, 0}));

    FrameRec held{};
    held.pose.quaternion.w = 7;
    Algo_Get_Curr_ToolFrame(&held);
    FrameRec expected = tool_;
    std::memset(expected.frame_name, 0, sizeof expected.frame_name);
    expected.pose.quaternion = {7, 0, 0, 0};
    EXPECT_EQ(std::memcmp(&held, &expected, sizeof held), 0);

    held.payload = 8;
    Algo_Get_Curr_WorkFrame(&held);
    EXPECT_EQ(held.pose.position.x, 0.4f);
    EXPECT_EQ(held.pose.euler.rz, 1.5f);
    EXPECT_EQ(held.payload, 8);
}

TEST_F(FrontFrames, ToolAndEndAreEachOthersInverse) {
    const Pose end{{0.2f, -0.3f, 0.4f}, {}, {0.4f, -0.5f, 0.6f}};
    const Pose of_tool = Algo_End2Tool(end);
    expect_pose_near(of_tool, to_kdl(work_.pose) * to_kdl(end) * to_kdl(tool_.pose), 2e-6);
    expect_pose_near(Algo_Tool2End(of_tool), to_kdl(end), 2e-6);
}

TEST_F(FrontFrames, ForwardKinematicsTakeDegrees) {
    Algo_Set_Angle(20, 30, 40);
    const float degrees[6] = {10, -20, 30, 40, 50, 60};
    float radians[8] = {};
    for (int i = 0; i < 6; ++i) radians[i] = static_cast<float>(degrees[i] * kDegree);

    const KDL::Frame expected = to_kdl(forward_kinematics(radians));
    expect_pose_near(Algo_Forward_Kinematics(degrees), expected, 2e-6);
    expect_near(to_kdl(Forward_Kinematics_e(degrees)), expected, 2e-6);
    expect_near(to_kdl(invoke_forward_kinematics_e(degrees)), to_kdl(forward_kinematics_e(radians)), 2e-6);

    const Pose none = Algo_Forward_Kinematics(nullptr), zero{};
    EXPECT_EQ(std::memcmp(&none, &zero, sizeof zero), 0);
}

TEST_F(Front, JudgesJointsByTheirLimits) {
    const struct {
        float joints[7];
        int expected;
    } cases[] = {
        {{0, 0, 0, 0, 0, 0, 9999}, 0},     {{177, -129, 134, -177, 127, 359, 0}, 0},
        {{178.5f, 0, 0, 0, 0, 0, 0}, -1},  {{0, 0, 0, 0, 0, -361, 0}, -1},
        {{0, 0, -135.5f, 0, 0, 0, 0}, -1}, {{NAN, NAN, NAN, NAN, NAN, NAN, NAN}, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(zk_algo_judgment_overpos(c.joints), c.expected) << c.joints[0];
}

TEST_F(Front, ConvertsPoses) {
    const Pose pose{{0.1f, 0.2f, 0.3f}, {9, 9, 9, 9}, {0.4f, -0.5f, 0.6f}};
    const KDL::Frame f = to_kdl(pose);
    expect_near(to_kdl(Algo_Pos2Matrix(pose)), f, 1e-6);
    expect_pose_near(Algo_Matrix2Pos(to_matrix(f)), f, 1e-6);
    expect_near(kdl_rotation(Algo_Euler2Matrix(pose.euler)), f.M, 1e-6);
    expect_near(to_kdl(Algo_Euler2Quaternion(pose.euler)), f.M, 1e-6);
    expect_near(to_kdl(Algo_Quaternion2Euler(Algo_Euler2Quaternion(pose.euler))), f.M, 1e-6);

    const KDL::Frame work(KDL::Rotation::RPY(1, 0.2, -0.7), KDL::Vector(0.3, -0.1, 0.5));
    const Matrix work_T_base = to_matrix(work.Inverse());
    expect_pose_near(Algo_Base2WorkFrame(work_T_base, pose), work.Inverse() * f, 1e-6);
    expect_pose_near(Algo_WorkFrame2Base(work_T_base, pose), work * f, 1e-6);

    Matrix stretched = to_matrix(KDL::Frame::Identity());  // not a transform: inverted all the same
    stretched.m[0][0] = 2;
    EXPECT_FLOAT_EQ(Algo_WorkFrame2Base(stretched, pose).position.x, 0.05f);
}

TEST_F(Front, TimeOfDayIsThatOfTheSystem) {
    timeval before, now, after;
    gettimeofday(&before, nullptr);
    get_time_of_day(&now);
    gettimeofday(&after, nullptr);
    EXPECT_FALSE(timercmp(&now, &before, <));
    EXPECT_FALSE(timercmp(&now, &after, >));
}

}  // namespace
}  // namespace zk::test
