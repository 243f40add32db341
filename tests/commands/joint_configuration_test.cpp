// Joint configuration: every command on the wire, its guards, its parsers, and what goes into the local model.
#include "zk/joint_configuration.h"

#include <gtest/gtest.h>

#include <future>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/simulated_arm.h"
#include "support/wire_protocol.h"
#include "zk/algorithm.h"
#include "zk/force_control.h"
#include "zk/io.h"
#include "zk/motion.h"

namespace {

using namespace zk::test;

// What a limit that was set is followed by.
const Exchange kSpeeds{R"({"command": "get_joint_max_speed"})",
                       R"({"state":"joint_max_speed","joint_speed":[30000,37500,1000,1,0,-1000]})"};
const Exchange kAccelerations{R"({"command": "get_joint_max_acc"})",
                              R"({"state":"joint_max_acc","joint_acc":[30000,37500,1000,1,0,-1000]})"};
const Exchange kLowest{R"({"command": "get_joint_min_pos"})",
                       R"({"state":"joint_min_pos","min_pos":[-178000,-130001,0,1,2,3]})"};
const Exchange kHighest{R"({"command": "get_joint_max_pos"})",
                        R"({"state":"joint_max_pos","max_pos":[178000,130001,0,1,2,3]})"};
const char* const kTurns = "180 225 6 0.006 0 -6";  // 6 degrees per second for 1000 on the wire
const char* const kLowestDegrees = "-178 -130.001 0 0.001 0.002 0.003";
const char* const kHighestDegrees = "178 130.001 0 0.001 0.002 0.003";

const std::vector<CommandCase> kRows = {
    // Speed and acceleration go out in thousandths of a revolution per minute, without the division by 6 where nobody
    // waits.
    acknowledged(CALL(Set_Joint_Speed, (s, 3, 180.5f, true)), Set_Joint_Max_Speed_Cmd,
                 R"({"command": "set_joint_max_speed", "joint_max_speed": [3, 30083]})",
                 R"({"command":"set_joint_max_speed","joint_max_speed":true})")
        .followed_by(kSpeeds),
    queued("Unblocked_" CALL(Set_Joint_Speed, (s, 3, 6.0f, false)),
           R"({"command": "set_joint_max_speed", "joint_max_speed": [3, 6000]})")
        .followed_by(kSpeeds),
    acknowledged(CALL(Set_Joint_Speed_Block, (s, 3, 6.0f)), Set_Joint_Max_Speed_Cmd,
                 R"({"command": "set_joint_max_speed", "joint_max_speed": [3, 1000]})",
                 R"({"command":"set_joint_max_speed","joint_max_speed":true})"),
    queued(CALL(Set_Joint_Speed_NonBlock, (s, 3, 60.0f)),
           R"({"command": "set_joint_max_speed", "joint_max_speed": [3, 60000]})"),
    acknowledged(CALL(Set_Joint_Acc, (s, 255, -7.7f, true)), Set_Joint_Max_Acc_Cmd,
                 R"({"command": "set_joint_max_acc", "joint_max_acc": [255, -1283]})",
                 R"({"command":"set_joint_max_acc","joint_max_acc":true})")
        .followed_by(kAccelerations),
    queued("Unblocked_" CALL(Set_Joint_Acc, (s, 1, 6.0f, false)),
           R"({"command": "set_joint_max_acc", "joint_max_acc": [1, 6000]})")
        .followed_by(kAccelerations),
    acknowledged(CALL(Set_Joint_Acc_Block, (s, 1, 6.0f)), Set_Joint_Max_Acc_Cmd,
                 R"({"command": "set_joint_max_acc", "joint_max_acc": [1, 1000]})",
                 R"({"command":"set_joint_max_acc","joint_max_acc":true})"),
    queued(CALL(Set_Joint_Acc_NonBlock, (s, 1, 0.251f)),
           R"({"command": "set_joint_max_acc", "joint_max_acc": [1, 250]})"),
    acknowledged(CALL(Set_Joint_Min_Pos, (s, 1, -178.5f, true)), Set_Joint_Min_Pos_Cmd,
                 R"({"command": "set_joint_min_pos", "joint_min_pos": [1, -178500]})",
                 R"({"command":"set_joint_min_pos","joint_min_pos":true})")
        .followed_by(kLowest),
    queued("Unblocked_" CALL(Set_Joint_Min_Pos, (s, 1, 1.0f, false)),
           R"({"command": "set_joint_min_pos", "joint_min_pos": [1, 1000]})")
        .followed_by(kLowest),
    acknowledged(CALL(Set_Joint_Min_Pos_Block, (s, 1, -0.0009f)), Set_Joint_Min_Pos_Cmd,
                 R"({"command": "set_joint_min_pos", "joint_min_pos": [1, 0]})",
                 R"({"command":"set_joint_min_pos","joint_min_pos":true})"),
    queued(CALL(Set_Joint_Min_Pos_NonBlock, (s, 1, -178.5f)),
           R"({"command": "set_joint_min_pos", "joint_min_pos": [1, -178500]})"),
    acknowledged(CALL(Set_Joint_Max_Pos, (s, 6, 0.251f, true)), Set_Joint_Max_Pos_Cmd,
                 R"({"command": "set_joint_max_pos", "joint_max_pos": [6, 250]})",
                 R"({"command":"set_joint_max_pos","joint_max_pos":true})")
        .followed_by(kHighest),
    queued("Unblocked_" CALL(Set_Joint_Max_Pos, (s, 6, 0.251f, false)),
           R"({"command": "set_joint_max_pos", "joint_max_pos": [6, 250]})")
        .followed_by(kHighest),
    acknowledged(CALL(Set_Joint_Max_Pos_Block, (s, 6, 0.251f)), Set_Joint_Max_Pos_Cmd,
                 R"({"command": "set_joint_max_pos", "joint_max_pos": [6, 250]})",
                 R"({"command":"set_joint_max_pos","joint_max_pos":true})"),
    queued(CALL(Set_Joint_Max_Pos_NonBlock, (s, 6, 12.3456f)),
           R"({"command": "set_joint_max_pos", "joint_max_pos": [6, 12345]})"),

    QUERY(Get_Joint_Speed, Joint_Max_Speed_Cmd, kSpeeds.wire, kSpeeds.reply, kTurns),
    answered("SevenJoints_" ASK(Get_Joint_Speed_Block), Joint_Max_Speed_Cmd, kSpeeds.wire,
             R"({"state":"joint_max_speed","joint_speed":[1000,2000,3000,4000,5000,6000,7000]})", "6 12 18 24 30 36 42")
        .on(75),
    QUERY(Get_Joint_Acc, Get_Joint_Max_Acc_Cmd, kAccelerations.wire, kAccelerations.reply, kTurns),
    QUERY(Get_Joint_Min_Pos, Get_Joint_Min_Pos_Cmd, kLowest.wire, kLowest.reply, kLowestDegrees),
    QUERY(Get_Joint_Max_Pos, Get_Joint_Max_Pos_Cmd, kHighest.wire, kHighest.reply, kHighestDegrees),

    // The drives' limits: the keys of the arm's, other commands.
    acknowledged(CALL(Set_Joint_Drive_Speed, (s, 2, 6.0f)), Set_Joint_Drive_Max_Speed_Cmd,
                 R"({"command": "set_joint_drive_max_speed", "joint_max_speed": [2, 1000]})",
                 R"({"command":"set_joint_drive_max_speed","joint_max_speed":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Speed_Block, (s, 2, 180.5f)), Set_Joint_Drive_Max_Speed_Cmd,
                 R"({"command": "set_joint_drive_max_speed", "joint_max_speed": [2, 30083]})",
                 R"({"command":"set_joint_max_drive_speed","joint_max_speed":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Acc, (s, 2, 6.0f)), Set_Joint_Drive_Max_Acc_Cmd,
                 R"({"command": "set_joint_drive_max_acc", "joint_max_acc": [2, 1000]})",
                 R"({"command":"set_joint_drive_max_acc","joint_max_acc":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Acc_Block, (s, 2, 180.5f)), Set_Joint_Drive_Max_Acc_Cmd,
                 R"({"command": "set_joint_drive_max_acc", "joint_max_acc": [2, 30083]})",
                 R"({"command":"set_joint_max_drive_acc","joint_max_acc":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Min_Pos, (s, 2, -1.5f)), Set_Joint_Drive_Min_Pos_Cmd,
                 R"({"command": "set_joint_drive_min_pos", "joint_min_pos": [2, -1500]})",
                 R"({"command":"set_joint_drive_min_pos","joint_min_pos":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Min_Pos_Block, (s, 2, 0.251f)), Set_Joint_Drive_Min_Pos_Cmd,
                 R"({"command": "set_joint_drive_min_pos", "joint_min_pos": [2, 250]})",
                 R"({"command":"set_joint_drive_min_pos","joint_min_pos":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Max_Pos, (s, 2, 1.5f)), Set_Joint_Drive_Max_Pos_Cmd,
                 R"({"command": "set_joint_drive_max_pos", "joint_max_pos": [2, 1500]})",
                 R"({"command":"set_joint_drive_max_pos","joint_max_pos":true})")
        .adding(),
    acknowledged(CALL(Set_Joint_Drive_Max_Pos_Block, (s, 2, 0.251f)), Set_Joint_Drive_Max_Pos_Cmd,
                 R"({"command": "set_joint_drive_max_pos", "joint_max_pos": [2, 250]})",
                 R"({"command":"set_joint_drive_max_pos","joint_max_pos":true})")
        .adding(),
    QUERY(Get_Joint_Drive_Speed, Get_Joint_Drive_Max_Speed_Cmd, R"({"command": "get_joint_drive_max_speed"})",
          R"({"state":"get_joint_drive_max_speed","joint_speed":[30000,37500,1000,1,0,-1000]})", kTurns),
    QUERY(Get_Joint_Drive_Acc, Get_Joint_Drive_Max_Acc_Cmd, R"({"command": "get_joint_drive_max_acc"})",
          R"({"state":"get_joint_drive_max_acc","joint_acc":[30000,37500,1000,1,0,-1000]})", kTurns),
    QUERY(Get_Joint_Drive_Min_Pos, Get_Joint_Drive_Min_Pos_Cmd, R"({"command": "get_joint_drive_min_pos"})",
          R"({"state":"get_joint_drive_min_pos","min_pos":[-178000,-130001,0,1,2,3]})", kLowestDegrees),
    QUERY(Get_Joint_Drive_Max_Pos, Get_Joint_Drive_Max_Pos_Cmd, R"({"command": "get_joint_drive_max_pos"})",
          R"({"state":"get_joint_drive_max_pos","max_pos":[178000,130001,0,1,2,3]})", kHighestDegrees),

    SETTER(Set_Joint_EN_State, Set_Joint_En_State_Cmd, R"({"command": "set_joint_en_state", "joint_en_state": [4, 1]})",
           R"({"command":"set_joint_en_state","joint_en_state":true})", 4, 1),
    answered(ASK(Get_Joint_EN_State), Get_Joint_En_State_Cmd, R"({"command": "get_joint_en_state"})",
             R"({"state":"joint_en_state","en_state":[1,0,1,true,false,257]})", "1 0 1 1 0 1"),
    answered(ASK(Get_Joint_EN_State_Block), Get_Joint_En_State_Cmd, R"({"command": "get_joint_en_state"})",
             R"({"state":"joint_en_state","en_state":[1,0,1,1,0,1,1]})", "1 0 1 1 0 1 1")
        .on(72),
    SETTER(Set_Joint_Err_Clear, Set_Joint_Clear_Err_Cmd, R"({"command": "set_joint_clear_err", "joint_clear_err": 4})",
           R"({"command":"set_joint_clear_err","joint_clear_err":true})", 4),
    answered(ASK(Get_Joint_Err_Flag), Get_Joint_Err_Flag_Cmd, R"({"command": "get_joint_err_flag"})",
             R"({"state":"joint_err_flag","err_flag":[0,1,2,65535,65536,5],"brake_state":[1,0,1,0,1,0]})",
             "0 1 2 65535 0 5; 1 0 1 0 1 0"),
    answered(ASK(Get_Joint_Err_Flag_Block), Get_Joint_Err_Flag_Cmd, R"({"command": "get_joint_err_flag"})",
             R"({"state":"joint_err_flag","err_flag":[0,1,2,3,4,5,6],"brake_state":[1,0,1,0,1,0,1]})",
             "0 1 2 3 4 5 6; 1 0 1 0 1 0 1")
        .on(75),
    QUERY(Get_Joint_Software_Version, Get_Joint_Software_Version_Cmd, R"({"command": "get_joint_software_version"})",
          R"({"state":"joint_software_version","version":[131072,1,2,3,4,2147483647]})", "131072 1 2 3 4 2147483647"),

    SETTER(Set_Joint_Zero_Pos, Set_Joint_Zero_Cmd, R"({"command": "set_joint_zero_pos", "joint_zero_pos": 5})",
           R"({"command":"set_joint_zero_pos","joint_zero_pos":true})", 5),

    // Nobody hears of the calibration.
    UNHEARD(Start_Calibrate, R"({"command": "start_calibrate"})",
            R"({"command":"start_calibrate","calibrate_state":true})"),
    UNHEARD(Stop_Calibrate, R"({"command": "stop_calibrate"})",
            R"({"command":"stop_calibrate","calibrate_state":true})"),
    unheard(ASK(Get_Calibrate_State), R"({"command": "get_calibrate_state"})",
            R"({"state":"calibrate_state","joint_state":[1,1,1,1,1,1],"err":[0,0,0,0,0,0]})"),
    unheard(ASK(Get_Calibrate_State_Block), R"({"command": "get_calibrate_state"})",
            R"({"state":"calibrate_state","joint_state":[1,1,1,1,1,1],"err":[0,0,0,0,0,0]})"),

    {CALL(Auto_Fix_Joint_Over_Soft_Limit, (s, true)), R"({"command": "auto_fix_joint_over_soft_limit"})",
     R"({"command":"auto_fix_joint_over_soft_limit","set_state":false})", 1},
    {CALL(Auto_Fix_Joint_Over_Soft_Limit_Block, (s)), R"({"command": "auto_fix_joint_over_soft_limit"})",
     R"({"command":"auto_fix_joint_over_soft_limit","set_state":0})", 11},
    acknowledged(CALL(Auto_Fix_Joint_Over_Soft_Limit_NonBlock, (s)), Auto_Fix_Joint_Over_Soft_Limit_Cmd,
                 R"({"command": "auto_fix_joint_over_soft_limit"})",
                 R"({"command":"auto_fix_joint_over_soft_limit","set_state":true})")
        .adding(),
    acknowledged(CALL(Auto_Set_Joint_Limit, (s, 200)), Auto_Set_Joint_Limit_Cmd,
                 R"({"command": "auto_set_joint_limit", "limit_mode": 200})",
                 R"({"command":"auto_set_joint_limit","limit_mode":true})"),
    acknowledged(CALL(Auto_Set_Joint_Limit_E, (s, 1)), Auto_Set_Joint_Limit_Cmd,
                 R"({"command": "auto_set_joint_limit", "limit_mode": 1})",
                 R"({"command":"auto_set_joint_limit","limit_mode":true})"),
    acknowledged(CALL(Auto_Set_Joint_Limit_Block_E, (s, 1)), Auto_Set_Joint_Limit_Cmd,
                 R"({"command": "auto_set_joint_limit", "limit_mode": 1})",
                 R"({"command":"auto_set_joint_limit","limit_mode":true})"),
};

class JointConfiguration : public testing::TestWithParam<CommandCase> {};
TEST_P(JointConfiguration, OnTheWire) { run(GetParam()); }
INSTANTIATE_TEST_SUITE_P(, JointConfiguration, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(JointConfigurationGuards, EveryCommandHasARow) {
    EXPECT_EQ(commands_without_row("joint_configuration.h", kRows), "");
}

TEST(JointConfigurationGuards, ThePageTellsTheWire) { expect_documented("Joint configuration", kRows); }

TEST(JointConfigurationGuards, PlainNamesDoNothingDuringAFileTransfer) { expect_nothing_during_a_file_transfer(kRows); }

TEST(JointConfigurationGuards, NullPointersAreToldAndNothingIsSent) {
    static float state[7];
    static uint16_t words[7];
    static int32_t value;
    expect_nothing_sent({{CALL(Get_Joint_Speed, (s, nullptr))},
                         {CALL(Get_Joint_Acc, (s, nullptr))},
                         {CALL(Get_Joint_Min_Pos, (s, nullptr))},
                         {CALL(Get_Joint_Max_Pos, (s, nullptr))},
                         {CALL(Get_Joint_EN_State, (s, nullptr))},
                         {CALL(Get_Joint_Err_Flag, (s, nullptr, words))},
                         {CALL(Get_Joint_Err_Flag, (s, words, nullptr))},
                         {CALL(Get_Joint_Software_Version, (s, nullptr))},
                         {CALL(Get_Calibrate_State, (s, nullptr, words, &value))},
                         {CALL(Get_Calibrate_State, (s, state, nullptr, &value))},
                         {CALL(Get_Calibrate_State, (s, state, words, nullptr))}});
}

TEST(JointConfigurationGuards, SuspendWhileTheyWait) {
    expect_suspension(
        {{CALL(Start_Calibrate, (s, true))},
         {CALL(Stop_Calibrate, (s, true))},
         {ASK(Get_Calibrate_State)},
         {CALL(Auto_Set_Joint_Limit, (s, 1)), R"({"command":"auto_set_joint_limit","limit_mode":true})"}});
}

// The three that look at the connection: first whether there is one, then whether the library runs.
TEST(JointConfigurationGuards, NoConnectionNoThreads) {
    EXPECT_EQ(Set_Joint_Speed(0, 1, 1, false), 5);
    EXPECT_EQ(Set_Joint_Acc(-1, 1, 1, false), 5);
    EXPECT_EQ(Set_Joint_Zero_Pos(0, 1, false), 5);
    EXPECT_EQ(Set_Joint_Speed(77, 1, 1, false), 2);
    EXPECT_EQ(Set_Joint_Acc(77, 1, 1, true), 2);
    EXPECT_EQ(Set_Joint_Zero_Pos(77, 1, true), 2);
    EXPECT_EQ(Set_Joint_Min_Pos(77, 1, 1, true), 5) << "who waits for a reply needs a slot";
    set_shared(IsSendFile, 1);
    EXPECT_EQ(Set_Joint_Speed(0, 1, 1, false), 18);
    EXPECT_EQ(Set_Joint_Zero_Pos(0, 1, false), 18);
}

TEST(JointConfigurationParsers, Acknowledgements) {
    for (const AckParser& parser : {
             AckParser{Parser_Joint_Zero_Pos, "joint_zero_pos", 8},
             {Parser_Joint_Speed, "joint_max_speed", 8},
             {Parser_Joint_Acc, "joint_max_acc", 8},
             {Parser_Joint_Min_Pos, "joint_min_pos", 8},
             {Parser_Joint_Max_Pos, "joint_max_pos", 8},
             {Parser_Joint_EN_State, "joint_en_state", 8},
             {Parser_Joint_Err_Clear, "joint_clear_err", 8},
             {Parser_Start_Calibrate, "calibrate_state", 8},
             {Parser_Set_Joint_Drive_Max_Speed, "joint_max_speed"},
             {Parser_Set_Joint_Drive_Max_Acc, "joint_max_acc"},
             {Parser_Set_Joint_Drive_Min_Pos, "joint_min_pos"},
             {Parser_Set_Joint_Drive_Max_Pos, "joint_max_pos"},
             {Parser_Set_Joint_Limit, "limit_mode"},
             {Parser_Set_IO_Mode, "set_state"},
         }) {
        expect_acknowledgement(parser);
    }
}

TEST(JointConfigurationParsers, JointArrays) {
    const JointArrayParser parsers[] = {
        {parsing(Parser_Get_Joint_Speed), "joint_speed", "6 -12 0.006 0 0.996 7.404", 10},
        {parsing(Parser_Get_Joint_Acc), "joint_acc", "6 -12 0.006 0 0.996 7.404"},
        {parsing(Parser_Get_Min_Pos), "min_pos", "1 -2 0.001 0 0.166 1.234"},
        {parsing(Parser_Get_Max_Pos), "max_pos", "1 -2 0.001 0 0.166 1.234"},
        {parsing(Parser_Get_Joint_Drive_Max_Speed), "joint_speed", "6 -12 0.006 0 0.996 7.404", 10},
        {parsing(Parser_Get_Joint_Drive_Max_Acc), "joint_acc", "6 -12 0.006 0 0.996 7.404"},
        {parsing(Parser_Get_Joint_Drive_Min_Pos), "min_pos", "1 -2 0.001 0 0.166 1.234"},
        {parsing(Parser_Get_Joint_Drive_Max_Pos), "max_pos", "1 -2 0.001 0 0.166 1.234"},
        {parsing(Parser_Get_Joint_EN_State), "en_state", "1000 -2000 1 0 166 1234"},
        {parsing(Parser_Get_Joint_Software_Version), "version", "1000 -2000 1 0 166 1234"},
    };
    for (const JointArrayParser& parser : parsers) expect_joint_array(parser);
}

// An array of another size leaves the outputs alone; the second array may fail behind a good first.
TEST(JointConfigurationParsers, TwoArrays) {
    const auto errors = parsing(Parser_Get_Joint_Err_Flag);
    expect_parsed(errors, {{R"({"err_flag":[1,2,3,4,5,6],"brake_state":[0,1,0,1,0,1]})", 0, "1 2 3 4 5 6; 0 1 0 1 0 1"},
                           {R"({"err_flag":[1,2,3,4,5,6]})", 9, "1 2 3 4 5 6; -"},
                           {R"({"err_flag":[1,2,3,4,5,6],"brake_state":1})", 11, "1 2 3 4 5 6; -"},
                           {R"({"err_flag":[1,2,3,4,5,6],"brake_state":[0,1]})", 10, "1 2 3 4 5 6; -"},
                           {R"({"brake_state":[0,1,0,1,0,1]})", 9, ""},
                           {R"({"err_flag":true,"brake_state":[0,1,0,1,0,1]})", 11, ""},
                           {R"({"err_flag":[1,2,3,4,5,6,7],"brake_state":[0,1,0,1,0,1]})", 10, ""},
                           {R"({"err_flag":[1,2,3,4,5,6],"brake_state":[0)", 9, ""}});
}

// The key of the errors is asked for a number as well, which it cannot be: the best reply gives 11, its arrays filled.
TEST(JointConfigurationParsers, CalibrationNeverSucceeds) {
    const auto state = parsing(Parser_Get_Calibrate_State);
    expect_parsed(state,
                  {{R"({"joint_state":[1,2,3,4,255,256],"err":[0,1,2,3,4,5]})", 11, "1 2 3 4 255 0; 0 1 2 3 4 5; -"},
                   {R"({"joint_state":[1,2,3,4,5,6],"err":7})", 9, "1 2 3 4 5 6; -; -"},
                   {R"({"joint_state":[1,2,3,4,5,6],"err":[0]})", 10, "1 2 3 4 5 6; -; -"},
                   {R"({"joint_state":[1,2,3,4,5,6]})", 9, "1 2 3 4 5 6; -; -"},
                   {R"({"joint_state":[1,2,3,4,5],"err":[0,1,2,3,4,5]})", 10, ""},
                   {R"({"joint_state":1,"err":[0,1,2,3,4,5]})", 9, ""},
                   {R"({"err":[0,1,2,3,4,5]})", 9, ""},
                   {R"(joint_state)", 9, ""}});
}

// ------------------------------------------------------------------------------------------------ The local model --

class LimitsInTheModel : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 60000);
        arm_ = connect_arm(controller_);
        Algo_Init_Sys_Data(0, 0);
        for (const Exchange& limits : {kSpeeds, kAccelerations, kLowest, kHighest}) {
            controller_.answer(command_name(limits.wire), limits.reply);
        }
    }

    // The model's limits of a kind, as Algo_ tells them: positions in degrees, the rest in what came from the wire.
    static std::string model(void (*limit)(float*)) {
        float values[6];
        float all[8] = {};
        limit(all);
        std::copy_n(all, 6, values);
        return text_of(values);
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
    float out_[7] = {};
};

TEST_F(LimitsInTheModel, FollowTheAnswers) {
    EXPECT_EQ(Get_Joint_Speed(arm_, out_), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Max_Speed), kTurns);
    EXPECT_EQ(Get_Joint_Acc(arm_, out_), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Max_Acc), kTurns);
    EXPECT_EQ(Get_Joint_Min_Pos(arm_, out_), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Min_Limit), kLowestDegrees);
    EXPECT_EQ(Get_Joint_Max_Pos(arm_, out_), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Max_Limit), kHighestDegrees);
}

// Not what was sent counts, but what the controller then holds.
TEST_F(LimitsInTheModel, FollowWhatASettingLedTo) {
    controller_.answer("set_joint_max_speed", R"({"command":"set_joint_max_speed","joint_max_speed":true})");
    controller_.answer("set_joint_min_pos", R"({"command":"set_joint_min_pos","joint_min_pos":true})");
    EXPECT_EQ(Set_Joint_Speed(arm_, 1, 1.0f, true), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Max_Speed), kTurns);
    EXPECT_EQ(Set_Joint_Acc(arm_, 1, 1.0f, false), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Max_Acc), kTurns);
    EXPECT_EQ(Set_Joint_Min_Pos(arm_, 1, 1.0f, true), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Min_Limit), kLowestDegrees);
    EXPECT_EQ(Set_Joint_Max_Pos(arm_, 1, 1.0f, false), 0);
    EXPECT_EQ(model(Algo_Get_Joint_Max_Limit), kHighestDegrees);
}

TEST_F(LimitsInTheModel, StayWhenAnythingFails) {
    const std::string before = model(Algo_Get_Joint_Min_Limit);
    EXPECT_EQ(Get_Joint_Min_Pos_Block(arm_, out_), 0);
    EXPECT_EQ(Get_Joint_Drive_Min_Pos(77, out_), 5);
    controller_.answer("set_joint_min_pos", R"({"command":"set_joint_min_pos","joint_min_pos":false})");
    EXPECT_EQ(Set_Joint_Min_Pos(arm_, 1, 1.0f, true), 1);
    controller_.answer("get_joint_min_pos", R"({"state":"joint_min_pos","min_pos":[1,2,3,4,5,6,7]})");
    EXPECT_EQ(Get_Joint_Min_Pos(arm_, out_), 10);
    controller_.answer("set_joint_min_pos", R"({"command":"set_joint_min_pos","joint_min_pos":true})");
    EXPECT_EQ(Set_Joint_Min_Pos(arm_, 1, 1.0f, true), 10) << "the question's failure is the setting's";
    EXPECT_EQ(Set_Joint_Min_Pos(arm_, 1, 1.0f, false), 10);
    controller_.ignore("get_joint_min_pos");
    set_shared(m_nOutTime, 200);
    EXPECT_EQ(Set_Joint_Min_Pos(arm_, 1, 1.0f, false), 7);
    EXPECT_EQ(model(Algo_Get_Joint_Min_Limit), before);
}

// A failed query delivers what the record of the mailbox held.
TEST_F(LimitsInTheModel, AnArrayOfAnotherSizeDeliversTheLastOne) {
    EXPECT_EQ(Get_Joint_Max_Pos(arm_, out_), 0);
    std::fill_n(out_, 7, -1.0f);
    controller_.answer("get_joint_max_pos", R"({"state":"joint_max_pos","max_pos":[1,2,3,4,5,6,7]})");
    EXPECT_EQ(Get_Joint_Max_Pos(arm_, out_), 10);
    EXPECT_EQ(text_of(out_), std::string(kHighestDegrees) + " -1");
}

// --------------------------------------------------------------------------------------- Joints beyond soft limits --

const char* const kAccepted = R"({"command":"auto_fix_joint_over_soft_limit","set_state":true})";
const char* const kArrived = R"({"state":"current_trajectory_state","trajectory_state":true,"device":0})";
const char* const kFailed = R"({"state":"current_trajectory_state","trajectory_state":false,"device":0})";

class SoftLimits : public LimitsInTheModel {
 protected:
    std::future<int> start() {
        return std::async(std::launch::async, [this] { return Auto_Fix_Joint_Over_Soft_Limit(arm_, true); });
    }
};

TEST_F(SoftLimits, EndWithTheReportOfTheMotion) {
    controller_.answer_bytes("auto_fix_joint_over_soft_limit", {line(kAccepted), line(kArrived)});
    FirstRecord(Move_Cmd).put(1, 5);  // of an earlier motion
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, true), 0);
    EXPECT_EQ(shared(Move_Cmd[0].count), 0);
    EXPECT_EQ(shared(Auto_Fix_Joint_Over_Soft_Limit_Cmd[0].count), 1) << "the acknowledgement is not taken";
    controller_.answer("auto_fix_joint_over_soft_limit", kFailed);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, true), 1) << "and serves the next call";
}

TEST_F(SoftLimits, WaitForTheReportWithoutALimit) {
    controller_.answer("auto_fix_joint_over_soft_limit", kAccepted);
    std::future<int> status = start();
    eventually([] { return shared(Auto_Fix_Joint_Over_Soft_Limit_Cmd[0].count) > 0; });
    set_shared(m_nOutTime, 1);
    const int32_t start_time = Get_Program_Runtime();
    eventually([&] { return Get_Program_Runtime() - start_time > 100; });
    controller_.say(kFailed);
    EXPECT_EQ(status.get(), 1);
}

TEST_F(SoftLimits, WaitForTheAcknowledgementWithOne) {
    set_shared(m_nOutTime, 30);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, true), 7);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, false), 7);
}

// --------------------------------------------------------------------------------------------------- A simulated arm
// --

TEST(JointConfigurationOfASimulatedArm, IsGotBackAsSet) {
    SimulatedArm arm;
    float out[6], limit[8];
    EXPECT_EQ(Set_Joint_Speed(arm, 2, 90, true), 0);
    EXPECT_EQ(Get_Joint_Speed(arm, out), 0);
    EXPECT_EQ(out[1], 90);
    Algo_Get_Joint_Max_Speed(limit);
    EXPECT_FLOAT_EQ(limit[1], 90);
    EXPECT_EQ(Set_Joint_Acc(arm, 2, 300, true), 0);
    EXPECT_EQ(Get_Joint_Acc(arm, out), 0);
    EXPECT_EQ(out[1], 300);
    EXPECT_EQ(Set_Joint_Min_Pos(arm, 3, -100, true), 0);
    EXPECT_EQ(Set_Joint_Max_Pos(arm, 3, 100.5f, true), 0);
    EXPECT_EQ(Get_Joint_Min_Pos(arm, out), 0);
    EXPECT_EQ(out[2], -100);
    EXPECT_EQ(Get_Joint_Max_Pos(arm, out), 0);
    EXPECT_EQ(out[2], 100.5f);
    Algo_Get_Joint_Max_Limit(limit);
    EXPECT_FLOAT_EQ(limit[2], 100.5f);
    EXPECT_EQ(Auto_Set_Joint_Limit(arm, 1), 0);
    EXPECT_EQ(Get_Joint_Max_Pos(arm, out), 0);
    EXPECT_EQ(out[2], 135);

    EXPECT_EQ(Set_Joint_Drive_Speed(arm, 1, 60), 0);
    EXPECT_EQ(Get_Joint_Drive_Speed(arm, out), 0);
    EXPECT_EQ(out[0], 60);
    EXPECT_EQ(Set_Joint_Drive_Acc(arm, 1, 60), 0);
    EXPECT_EQ(Get_Joint_Drive_Acc(arm, out), 0);
    EXPECT_EQ(out[0], 60);
    EXPECT_EQ(Set_Joint_Drive_Min_Pos(arm, 1, -60), 0);
    EXPECT_EQ(Get_Joint_Drive_Min_Pos(arm, out), 0);
    EXPECT_EQ(out[0], -60);
    EXPECT_EQ(Set_Joint_Drive_Max_Pos(arm, 1, 60), 0);
    EXPECT_EQ(Get_Joint_Drive_Max_Pos(arm, out), 0);
    EXPECT_EQ(out[0], 60);

    uint8_t enabled[6];
    EXPECT_EQ(Set_Joint_EN_State(arm, 4, 0, true), 0);
    EXPECT_EQ(Get_Joint_EN_State(arm, enabled), 0);
    EXPECT_EQ(text_of(enabled), "1 1 1 0 1 1");
    uint16_t errors[6], brakes[6];
    EXPECT_EQ(Get_Joint_Err_Flag(arm, errors, brakes), 0);
    EXPECT_EQ(text_of(brakes), "0 0 0 1 0 0");
    EXPECT_EQ(Set_Joint_Err_Clear(arm, 4, true), 0);
    int32_t versions[6];
    EXPECT_EQ(Get_Joint_Software_Version(arm, versions), 0);
    EXPECT_EQ(versions[5], 0x20005);
    EXPECT_EQ(Set_Joint_Zero_Pos(arm, 2, true), 0);
    EXPECT_EQ(Set_Joint_EN_State(arm, 4, 1, true), 0);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm, false), 0);
}

TEST(JointConfigurationOfASimulatedArm, WhatCannotBeIsRefused) {
    SimulatedArm arm;
    EXPECT_EQ(Set_Joint_Speed(arm, 1, 181, true), 1);
    EXPECT_EQ(Set_Joint_Speed(arm, 7, 10, true), 1) << "no such joint";
    EXPECT_EQ(Set_Joint_Acc(arm, 1, 0, true), 1);
    EXPECT_EQ(Set_Joint_Min_Pos(arm, 1, -179, true), 1);
    EXPECT_EQ(Set_Joint_Max_Pos(arm, 1, 179, true), 1);
    EXPECT_EQ(Set_Joint_Drive_Speed(arm, 1, 181), 1);
    EXPECT_EQ(Set_Joint_Drive_Max_Pos(arm, 1, 179), 1);
    EXPECT_EQ(Set_Joint_EN_State(arm, 0, 1, true), 1);
    EXPECT_EQ(Set_Joint_Err_Clear(arm, 9, true), 1);
    EXPECT_EQ(Set_Joint_EN_State(arm, 1, 0, true), 0);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm, true), 1) << "a disabled joint does not move";
}

TEST(JointConfigurationOfASimulatedArm, SoftLimitsAreReachedAgain) {
    SimulatedArm arm({"--joints", "0,0,90,0,90,0"});
    EXPECT_EQ(Set_Joint_Max_Pos(arm, 3, 89.5f, true), 0);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm, true), 0);
    float joints[6];
    EXPECT_EQ(Get_Joint_Degree(arm, joints), 0);
    EXPECT_EQ(joints[2], 89.5f);
}

}  // namespace
