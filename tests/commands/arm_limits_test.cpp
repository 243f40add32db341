// Limits and model of the arm: every command on the wire, its guards, its parsers, and the length that is kept.
#include "zk/replies/arm_limits.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

const float kOffsets[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};
const float kDynamics[14] = {0.0123456f, 1.5f, -2.0f, 0.001f, 1e-10f, 123456.7f, -0.0f, 3e6f, 0, 0, 0, -1.25f, 7, 8};

const std::vector<CommandCase> kArmLimitsRows = {
    // Metres, radians and seconds in thousandths.
    SETTER(Set_Arm_Line_Speed, or_8(Set_Arm_Max_Line_Speed_Cmd),
           R"({"command": "set_arm_max_line_speed", "arm_line_speed": 250})", "arm_line_speed", 0.251f),
    SETTER(Set_Arm_Line_Acc, or_8(Set_Arm_Max_Line_Acc_Cmd),
           R"({"command": "set_arm_max_line_acc", "arm_line_acc": -1500})", "arm_line_acc", -1.5f),
    SETTER(Set_Arm_Angular_Speed, or_8(Set_Arm_Max_Angular_Speed_Cmd),
           R"({"command": "set_arm_max_angular_speed", "arm_angular_speed": 3141})", "arm_angular_speed", 3.1415f),
    SETTER_WITH(.taking_old_replies(), Set_Arm_Angular_Acc, or_8(Set_Arm_Max_Angular_Acc_Cmd),
                R"({"command": "set_arm_max_angular_acc", "arm_angular_acc": -2147483648})", "arm_angular_acc", 3e6f),
    QUERY(Get_Arm_Line_Speed, Get_Arm_Max_Line_Speed_Cmd, "get_arm_max_line_speed",
          R"({"state":"arm_max_line_speed","arm_line_speed":251})", "0.251"),
    QUERY(Get_Arm_Line_Acc, Get_Arm_Max_Line_Acc_Cmd, "get_arm_max_line_acc",
          R"({"state":"arm_max_line_acc","arm_line_acc":1600})", "1.6"),
    QUERY(Get_Arm_Angular_Speed, Get_Arm_Max_Angular_Speed_Cmd, "get_arm_max_angular_speed",
          R"({"state":"arm_max_angular_speed","arm_angular_speed":-600})", "-0.6"),
    QUERY(Get_Arm_Angular_Acc, Get_Arm_Max_Angular_Acc_Cmd, "get_arm_max_angular_acc",
          R"({"state":"arm_max_angular_acc","arm_angular_acc":4000})", "4"),

    SETTER_WITH(.taking_old_replies(), Set_Arm_Tip_Init, Set_Arm_Tip_Init_Cmd, "set_arm_init", "arm_init"),
    // The reply has "state" for "stage".
    SETTER(Set_Collision_Stage, Set_Collision_Stage_Cmd, R"({"command": "set_collision_stage", "collision_stage": 8})",
           R"({"command":"set_collision_state","collision_state":true})", 8),
    QUERY(Get_Collision_Stage, Get_Collision_Stage_Cmd, "get_collision_stage",
          R"({"state":"get_collision_stage","collision_stage":8})", "8", .reads({{9, 0}})),

    // DH lengths in tenths.
    SETTER_WITH(.taking_old_replies(), Set_DH_Data, Set_DH_Data_Cmd,
                R"({"command": "set_DH_data", "data": [1234, 0, 23, 100, -19]})", "set_state", 123.45f, -0.07f, 2.35f,
                10, -1.99f),
    QUERY(Get_DH_Data, Get_DH_Data_Cmd, "get_DH_data", R"({"state":"DH_data","data":[2405,0,-1,2560,1440]})",
          "240.5; 0; -0.1; 256; 144"),
    acknowledged(CALL(Set_Joint_Zero_Offset, (s, kOffsets, true)), Set_Joint_Zero_OffSet_Cmd,
                 R"({"command": "set_joint_zero_offset", "offset": [250, -90000, 1500, 0, 178000, 12345]})",
                 "set_state"),
    acknowledged(CALL(Set_Joint_Zero_Offset_Block, (s, kOffsets)), Set_Joint_Zero_OffSet_Cmd,
                 R"({"command": "set_joint_zero_offset", "offset": [250, -90000, 1500, 0, 178000, 12345, -7250]})",
                 "set_state")
        .on(75),
    queued(CALL(Set_Joint_Zero_Offset_NonBlock, (s, kOffsets)),
           R"({"command": "set_joint_zero_offset", "offset": [250, -90000, 1500, 0, 178000, 12345, -7250]})", 72),
    // A thousand times as large, but not truncated.
    acknowledged(CALL(Set_Arm_Dynamic_Parm, (s, kDynamics, true)), Set_ARM_Dynamic_Parm_Cmd,
                 R"({"command": "set_arm_dynamic_parm", "parm": [12.345600, 1500, -2000, 1, 1.000000e-07, 123456704, )"
                 R"(0, 3000000000, 0, 0, 0, -1250]})",
                 R"({"command":"set_arm_dynamic_parm","set_state":true})"),
    acknowledged(CALL(Set_Arm_Dynamic_Parm_Block, (s, kDynamics)), Set_ARM_Dynamic_Parm_Cmd,
                 R"({"command": "set_arm_dynamic_parm", "parm": [12.345600, 1500, -2000, 1, 1.000000e-07, 123456704, )"
                 R"(0, 3000000000, 0, 0, 0, -1250, 7000, 8000]})",
                 R"({"command":"set_arm_dynamic_parm","set_state":true})")
        .on(75),
    queued(CALL(Set_Arm_Dynamic_Parm_NonBlock, (s, kDynamics)),
           R"({"command": "set_arm_dynamic_parm", "parm": [12.345600, 1500, -2000, 1, 1.000000e-07, 123456704, )"
           R"(0, 3000000000, 0, 0, 0, -1250, 7000, 8000]})",
           72),

    SETTER(Set_Plan_Speed, Set_Plan_Speed_Cmd, R"({"command": "plan_speed", "speed": 50})", "plan_state", 50),
    SETTER(Set_Teach_Frame, or_8(Set_Teach_Frame_Cmd), R"({"command": "set_teach_frame", "frame_type": 1})",
           "set_state", 1),
    QUERY(Get_Teach_Frame, Get_Teach_Frame_Cmd, "get_teach_frame", R"({"state":"get_teach_frame","frame_type":1})", "1",
          .setting_the_count().reads({{9, 0}})),
    SETTER(Set_Arm_Servo_State, Set_Arm_Servo_State_Cmd, R"({"command": "set_arm_servo", "arm_servo": 1})", "arm_servo",
           200),
    queued("Off_" CALL(Set_Arm_Servo_State, (s, 0, false)), R"({"command": "set_arm_servo", "arm_servo": 0})"),
    // Its reply reaches no mailbox.
    NO_REPLY(Set_System_State_Servo, R"({"command": "set_system_state_servo", "servo_state": 3})", "servo_state", 3),
};

ZK_WIRE_TESTS(ArmLimits, "arm_limits.h", "Limits of the arm", kArmLimitsRows)

TEST(ArmLimitsParsers, TruncateNumbersToThousandths) {
    expect_parsed(parsing(Parser_Get_Arm_Line_Speed),
                  {{R"({"arm_line_speed":1.9e3})", 0, "1.9"}, {R"({"arm_line_speed":-1500.9})", 0, "-1.5"}});
    expect_parsed(parsing(Parser_Get_DH_Data), {{R"({"data":[1,2,3,4,5,6,7]})", 0, "0.1 0.2 0.3 0.4 0.5"}});
}

// The non-blocking form stores the fourth length at once, the blocking one after its acknowledgement.
TEST(KeptLength, ChangesWithSettingsAndReplies) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    float out[5];
    const auto ask = [&] { return Get_DH_Data(arm, &out[0], &out[1], &out[2], &out[3], &out[4]); };

    EXPECT_EQ(lwt, 0);
    controller.answer("set_DH_data", R"({"command":"set_DH_data","set_state":false})");
    EXPECT_EQ(Set_DH_Data(arm, 1, 2, 3, 4, 5, true), 1);
    EXPECT_EQ(lwt, 0);
    EXPECT_EQ(Set_DH_Data_NonBlock(arm, 1, 2, 3, 4, 5), 0);
    EXPECT_EQ(lwt, 0);
    eventually([] { return shared(Set_DH_Data_Cmd[0].count) == 1; });
    set_shared(Set_DH_Data_Cmd[0].count, 0);
    EXPECT_EQ(Set_DH_Data(arm, 1, 2, 3, 4, 5, false), 0);
    EXPECT_EQ(lwt, 4);
    eventually([] { return shared(Set_DH_Data_Cmd[0].count) == 1; });
    set_shared(Set_DH_Data_Cmd[0].count, 0);
    controller.answer("set_DH_data", R"({"command":"set_DH_data","set_state":true})");
    EXPECT_EQ(Set_DH_Data(arm, 1, 2, 3, 6, 5, true), 0);
    EXPECT_EQ(lwt, 6);

    controller.answer("get_DH_data", R"({"state":"DH_data","data":[10,20,30,80,50]})");
    EXPECT_EQ(Get_DH_Data_Block(arm, &out[0], &out[1], &out[2], &out[3], &out[4]), 0);
    EXPECT_EQ(lwt, 6);
    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(lwt, 8);
    EXPECT_EQ(Set_DH_Data(arm + 1, 1, 2, 3, 4, 5, true), 5);
    set_shared(IsSendFile, 1);
    EXPECT_EQ(Set_DH_Data(arm, 1, 2, 3, 4, 5, false), 18);
    set_shared(IsSendFile, 0);
    EXPECT_EQ(lwt, 8);
    controller.answer("get_DH_data", R"({"state":"DH_data","data":7})");
    lwt = 0;
    EXPECT_EQ(ask(), 11);
    EXPECT_EQ(lwt, 0);
}

}  // namespace
