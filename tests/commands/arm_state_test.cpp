// State of the arm: every command on the wire, its guards, its parsers, and the mounting in the local model.
#include "zk/replies/arm_state.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/simulated_arm.h"
#include "support/wire_protocol.h"
#include "zk/algorithm.h"

namespace {

using namespace zk::test;

const float kJoints[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};

// Joints in thousandths of a degree; pose in millionths of a metre, then thousandths of a radian.
const char* const kState = R"({"state":"current_arm_state","arm_state":{"pose":[100000,-200000,1,3141,-1570,1],)"
                           R"("joint":[1000,-90001,1,0,5,6],"arm_err":7,"sys_err":65536}})";
const char* const kStateWithoutErrors =
    R"({"state":"current_arm_state","arm_state":{"pose":[100000,-200000,1,3141,-1570,1],)"
    R"("joint":[1000,-90001,1,0,5,6,7000]}})";
const char* const kAllState =
    R"({"state":"arm_all_state","all_state":{"temperature":[30000,30250,3,4,5,6],"current":[100,200,3,4,5,6],)"
    R"("voltage":[24000,24001,3,4,5,6],"en_flag":[1,0,1,true,0,257],"err_flag":[0,1,2,3,4,65537],"sys_err":9}})";
const char* const kAllStateOutputs =
    "30 30.25 0.003 0.004 0.005 0.006 0, 24 24.001 0.003 0.004 0.005 0.006 0, 0.1 0.2 0.003 0.004 0.005 0.006 0, "
    "1 0 1 1 0 1 0, 0 1 2 3 4 1 0, 9";

const std::vector<CommandCase> kArmStateRows = {
    QUERY(Get_Current_Arm_State, Arm_Current_State_Cmd, "get_current_arm_state", kState,
          "1 -90.001 0.001 0 0.005 0.006; 0.1 -0.2 1e-06, 3.141 -1.57 0.001; 7; 0",
          .reads({{}, {{"/arm_state/joint", {9, 11, 11}}}})),
    answered("Incomplete_" ASK(Get_Current_Arm_State), Arm_Current_State_Cmd, "get_current_arm_state",
             kStateWithoutErrors, "1 -90.001 0.001 0 0.005 0.006 7; 0.1 -0.2 1e-06, 3.141 -1.57 0.001; 0; 0")
        .on(75)
        .returning(9),
    answered(ASK(Get_Joint_Temperature), Get_Joint_Temperature_Cmd, "get_current_joint_temperature",
             R"({"state":"current_joint_temperature","joint_temperature":[30000,30250,0,-1,5,6]})",
             "30 30.25 0 -0.001 0.005 0.006")
        .reads({{9, 11, 0, 11}}),
    answered(ASK(Get_Joint_Temperature_Block), Get_Joint_Temperature_Cmd, "get_current_joint_temperature",
             R"({"state":"current_joint_temperature","joint_temperature":[30000,30250,0,-1,5]})",
             "30 30.25 0 -0.001 0.005 0"),
    answered(ASK(Get_Joint_Current), Get_Joint_Current_Cmd, "get_current_joint_current",
             R"({"state":"current_joint_current","joint_current":[100,2,3,4,5,6,7]})",
             "0.1 0.002 0.003 0.004 0.005 0.006 0.007")
        .on(72)
        .reads({{9, 11, 0, 11}}),
    answered(ASK(Get_Joint_Current_Block), Get_Joint_Current_Cmd, "get_current_joint_current",
             R"({"state":"current_joint_current","joint_current":[1,2,3,4,5,6,7]})", "0 0 0 0 0 0")
        .returning(11),
    answered(ASK(Get_Joint_Voltage), Get_Joint_Voltage_Cmd, "get_current_joint_voltage",
             R"({"state":"current_joint_voltage","joint_voltage":[24000,1,2,3,4,5]})",
             "24 0.001 0.002 0.003 0.004 0.005")
        .reads({{9, 11, 0, 11}}),
    answered(ASK(Get_Joint_Voltage_Blcok), Get_Joint_Voltage_Cmd, "get_current_joint_voltage",
             R"({"state":"current_joint_voltage","joint_voltage":[]})", "0 0 0 0 0 0"),
    answered(ASK(Get_Joint_Degree), Get_Joint_Degree_Cmd, "get_joint_degree",
             R"({"state":"joint_degree","joint":[1000,-90001,1,0,5,6]})", "1 -90.001 0.001 0 0.005 0.006")
        .reads({{9, 11, 0}}),
    answered(ASK(Get_Joint_Degree_Block), Get_Joint_Degree_Cmd, "get_joint_degree",
             R"({"state":"joint_degree","joint":[1,2,3]})", "0.001 0.002 0.003 0 0 0"),
    QUERY(Get_Arm_All_State, Get_Joint_All_State_Cmd, "get_arm_all_state", kAllState, kAllStateOutputs,
          .reads({{9, 11, 11}, {{"/all_state", {9, 9}}}})),
    QUERY(Get_Arm_Plan_Num, Get_Arm_Plan_Num_Cmd, "get_arm_plan_num", R"({"state":"arm_plan_num","plan_num":3})", "3"),

    acknowledged(CALL(Set_Arm_Init_Pose, (s, kJoints, true)), Set_Arm_Init_Pose_Cmd,
                 R"({"command": "set_init_pose", "init_pose": [250, -90000, 1500, 0, 178000, 12345]})", "init_pose"),
    acknowledged(CALL(Set_Arm_Init_Pose_Block, (s, kJoints)), Set_Arm_Init_Pose_Cmd,
                 R"({"command": "set_init_pose", "init_pose": [250, -90000, 1500, 0, 178000, 12345, -7250]})",
                 "init_pose")
        .on(72),
    queued(CALL(Set_Arm_Init_Pose_NonBlock, (s, kJoints)),
           R"({"command": "set_init_pose", "init_pose": [250, -90000, 1500, 0, 178000, 12345, -7250]})", 75),
    queued("OtherMode_" CALL(Set_Arm_Init_Pose_NonBlock, (s, kJoints)),
           R"({"command": "set_init_pose", "init_pose": [250, -90000, 1500, 0, 178000, 12345]})", 634),
    answered(ASK(Get_Arm_Init_Pose), Get_Arm_Init_Pose_Cmd, "get_init_pose",
             R"({"state":"init_pose","init_pose":[1000,-90001,1,0,5,6]})", "1 -90.001 0.001 0 0.005 0.006")
        .reads({{9, 11, 11}}),
    answered(ASK(Get_Arm_Init_Pose_Block), Get_Arm_Init_Pose_Cmd, "get_init_pose",
             R"({"state":"init_pose","init_pose":[1,2,3,4,5,6,7]})", "0 0 0 0 0 0")
        .returning(11),

    // Angles go out as they are, with six decimals where they are no whole numbers.
    acknowledged(CALL(Set_Install_Pose, (s, true, 90, -45.5f, 0.1f)), Set_Install_Pose_Cmd,
                 R"({"command": "set_install_pose", "pose": [90, -45.500000, 0.100000]})", "set_state"),
    acknowledged(CALL(Set_Install_Pose_Block, (s, 1e-7f, 3e9f, -0.0f)), Set_Install_Pose_Cmd,
                 R"({"command": "set_install_pose", "pose": [1.000000e-07, 3000000000, 0]})", "set_state"),
    queued(CALL(Set_Install_Pose_NonBlock, (s, NAN, 1e-17f, 180)),
           R"({"command": "set_install_pose", "pose": [null, 0, 180]})"),
    answered(ASK(Get_Install_Pose), Get_Install_Pose_Cmd, "get_install_pose",
             R"({"state":"install_pose","pose":[90,-45.5,0.25]})", "90; -45.5; 0.25"),
    answered(ASK(Get_Install_Pose_Block), Get_Install_Pose_Cmd, "get_install_pose",
             R"({"state":"install_pose","pose":[0.1,-45.5,1e3]})", "0.1; -45.5; 1000"),
};

ZK_WIRE_TESTS(ArmState, "arm_state.h", "State of the arm", kArmStateRows)

TEST(ArmStateGuards, TheStateRefusesNullErrorWords) {
    static float joints[7];
    static Pose pose;
    static uint16_t word;
    expect_nothing_sent({{CALL(Get_Current_Arm_State, (s, joints, &pose, nullptr, &word))},
                         {CALL(Get_Current_Arm_State, (s, joints, &pose, &word, nullptr))}});
}

TEST(ArmStateParsers, ReadSevenAnglesAtMost) {
    expect_parsed(parsing(Paser_Get_Joint_Degree),
                  {{R"({"joint":[1,2,3,4,5,6,7,8,9]})", 0, "0.001 0.002 0.003 0.004 0.005 0.006 0.007"}});
}

// --------------------------------------------------------------------------------------------------------- Mounting --

class Mounting : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 60000);
        arm_ = connect_arm(controller_);
        Algo_Init_Sys_Data(0, 0);
        Algo_Set_Angle(1, 2, 3);
    }
    static std::string model() {
        float angles[3];
        Algo_Get_Angle(&angles[0], &angles[1], &angles[2]);
        return text_of(angles);
    }
    void let_the_setting_give(const char* state) {
        controller_.answer("set_install_pose",
                           std::string(R"({"command":"set_install_pose","set_state":)") + state + "}");
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
    float x_ = 0, y_ = 0, z_ = 0;
};

TEST_F(Mounting, ChangesTheModelAtOnceOrAfterTheAcknowledgement) {
    let_the_setting_give("false");
    EXPECT_EQ(Set_Install_Pose(arm_, true, 90, 0, 45), 1);
    EXPECT_EQ(model(), "1 2 3");
    EXPECT_EQ(Set_Install_Pose(arm_, false, 90, 0, 45), 0);
    EXPECT_EQ(model(), "90 0 45") << "whatever the reply";
    eventually([] { return shared(Set_Install_Pose_Cmd[0].count) == 1; });
    let_the_setting_give("true");
    EXPECT_EQ(Set_Install_Pose(arm_, true, 0, 90, 180), 0);
    EXPECT_EQ(model(), "0 90 180");
    EXPECT_EQ(Set_Install_Pose_NonBlock(arm_, 1, 2, 3), 0);
    EXPECT_EQ(Set_Install_Pose_Block(arm_, 1, 2, 3), 0);
    EXPECT_EQ(model(), "0 90 180");
    set_shared(IsSendFile, 1);
    EXPECT_EQ(Set_Install_Pose(arm_, false, 1, 2, 3), 18);
    EXPECT_EQ(model(), "0 90 180");
    set_shared(IsSendFile, 0);
}

TEST_F(Mounting, ChangesTheModelWithEveryReply) {
    controller_.answer("get_install_pose", R"({"state":"install_pose","pose":[90,0,45]})");
    EXPECT_EQ(Get_Install_Pose_Block(arm_, &x_, &y_, &z_), 0);
    EXPECT_EQ(model(), "90 0 45");
    controller_.answer("get_install_pose", R"({"state":"install_pose","pose":true})");
    EXPECT_EQ(Get_Install_Pose_Block(arm_, &x_, &y_, &z_), 11);
    EXPECT_EQ(model(), "90 0 45");
}

TEST_F(Mounting, ReturnsMinusOneWhenAFailedQueryDiffersFromTheModel) {
    controller_.answer("get_install_pose", R"({"state":"install_pose","angles":[0,0,0]})");
    EXPECT_EQ(Get_Install_Pose(arm_, &x_, &y_, &z_), -1);
    Algo_Set_Angle(0, 0, 0);
    EXPECT_EQ(Get_Install_Pose(arm_, &x_, &y_, &z_), 9);
    controller_.ignore("get_install_pose");
    set_shared(m_nOutTime, 30);
    x_ = y_ = z_ = 0;
    EXPECT_EQ(Get_Install_Pose(arm_, &x_, &y_, &z_), 7);
    z_ = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Get_Install_Pose(arm_, &x_, &y_, &z_), -1);
}

// -------------------------------------------------------------------------------------------------- A simulated arm --

TEST(ArmStateOfASimulatedArm, AgreesWithTheLocalModel) {
    SimulatedArm arm({"--joints", "10,-20,30,-40,50,-60", "--install", "90,0,0"});
    float joints[6], degrees[6];
    Pose pose{};
    uint16_t arm_err = 1, sys_err = 1;
    EXPECT_EQ(Get_Current_Arm_State(arm, joints, &pose, &arm_err, &sys_err), 0);
    EXPECT_EQ(text_of(joints), "10 -20 30 -40 50 -60");
    EXPECT_EQ(arm_err | sys_err, 0);
    EXPECT_EQ(Get_Joint_Degree(arm, degrees), 0);
    EXPECT_EQ(text_of(degrees), "10 -20 30 -40 50 -60");
    const Pose computed = Algo_Forward_Kinematics(joints);
    EXPECT_NEAR(pose.position.x, computed.position.x, 2e-6);
    EXPECT_NEAR(pose.position.y, computed.position.y, 2e-6);
    EXPECT_NEAR(pose.position.z, computed.position.z, 2e-6);
    EXPECT_NEAR(pose.euler.rx, computed.euler.rx, 1e-3);
    EXPECT_NEAR(pose.euler.ry, computed.euler.ry, 1e-3);
    EXPECT_NEAR(pose.euler.rz, computed.euler.rz, 1e-3);
}

}  // namespace
