// Joint configuration: every command on the wire, its guards, its parsers, and what goes into the local model.
#include "zk/replies/joint_configuration.h"

#include <gtest/gtest.h>

#include <future>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"
#include "zk/algorithm.h"
#include "zk/replies/motion.h"

namespace {

using namespace zk::test;

// What a limit that was set is followed by.
const Exchange kSpeeds{"get_joint_max_speed",
                       R"({"state":"joint_max_speed","joint_speed":[30000,37500,1000,1,0,-1000]})"};
const Exchange kAccelerations{"get_joint_max_acc",
                              R"({"state":"joint_max_acc","joint_acc":[30000,37500,1000,1,0,-1000]})"};
const Exchange kLowest{"get_joint_min_pos", R"({"state":"joint_min_pos","min_pos":[-178000,-130001,0,1,2,3]})"};
const Exchange kHighest{"get_joint_max_pos", R"({"state":"joint_max_pos","max_pos":[178000,130001,0,1,2,3]})"};
const char* const kCalibrating = R"({"state":"calibrate_state","joint_state":[1,1,1,1,1,1],"err":[0,0,0,0,0,0]})";
const char* const kLimitMode = R"({"command": "auto_set_joint_limit", "limit_mode": 200})";
const char* const kLimitModeSet = R"({"command":"auto_set_joint_limit","limit_mode":true})";
const char* const kTurns = "180 225 6 0.006 0 -6";  // 6 degrees per second for 1000 on the wire
const char* const kLowestDegrees = "-178 -130.001 0 0.001 0.002 0.003";
const char* const kHighestDegrees = "178 130.001 0 0.001 0.002 0.003";

// A drive's setter, whose reply may have either of two names.
#define DRIVE_LIMIT(command, mailbox, wire, reply, other_reply, ...)                      \
    acknowledged(#command, ZK_FORM(command, __VA_ARGS__), mailbox, wire, reply).adding(), \
        acknowledged(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__), mailbox, wire, other_reply).adding()

const std::vector<CommandCase> kJointConfigurationRows = {
    // Speed and acceleration go out in thousandths of a revolution per minute, in the non-blocking form without the
    // division by 6.
    FOLLOWED(Set_Joint_Speed, or_8(Set_Joint_Max_Speed_Cmd),
             R"({"command": "set_joint_max_speed", "joint_max_speed": [3, 30083]})",
             R"({"command": "set_joint_max_speed", "joint_max_speed": [3, 180500]})", "joint_max_speed", kSpeeds, 3,
             180.5f),
    FOLLOWED(Set_Joint_Acc, or_8(Set_Joint_Max_Acc_Cmd),
             R"({"command": "set_joint_max_acc", "joint_max_acc": [255, -1283]})",
             R"({"command": "set_joint_max_acc", "joint_max_acc": [255, -7700]})", "joint_max_acc", kAccelerations, 255,
             -7.7f),
    FOLLOWED(Set_Joint_Min_Pos, or_8(Set_Joint_Min_Pos_Cmd),
             R"({"command": "set_joint_min_pos", "joint_min_pos": [1, -178500]})",
             R"({"command": "set_joint_min_pos", "joint_min_pos": [1, -178500]})", "joint_min_pos", kLowest, 1,
             -178.5f),
    FOLLOWED(Set_Joint_Max_Pos, or_8(Set_Joint_Max_Pos_Cmd),
             R"({"command": "set_joint_max_pos", "joint_max_pos": [6, 250]})",
             R"({"command": "set_joint_max_pos", "joint_max_pos": [6, 250]})", "joint_max_pos", kHighest, 6, 0.251f),

    QUERY(Get_Joint_Speed, Joint_Max_Speed_Cmd, kSpeeds.wire, kSpeeds.reply, kTurns, .reads({{9, 10}})),
    answered("SevenJoints_" ASK(Get_Joint_Speed_Block), Joint_Max_Speed_Cmd, kSpeeds.wire,
             R"({"state":"joint_max_speed","joint_speed":[1000,2000,3000,4000,5000,6000,7000]})", "6 12 18 24 30 36 42")
        .on(75),
    QUERY(Get_Joint_Acc, Get_Joint_Max_Acc_Cmd, kAccelerations.wire, kAccelerations.reply, kTurns),
    QUERY(Get_Joint_Min_Pos, Get_Joint_Min_Pos_Cmd, kLowest.wire, kLowest.reply, kLowestDegrees),
    QUERY(Get_Joint_Max_Pos, Get_Joint_Max_Pos_Cmd, kHighest.wire, kHighest.reply, kHighestDegrees),

    // The drives' limits: the keys of the arm's, other commands.
    DRIVE_LIMIT(Set_Joint_Drive_Speed, Set_Joint_Drive_Max_Speed_Cmd,
                R"({"command": "set_joint_drive_max_speed", "joint_max_speed": [2, 30083]})", "joint_max_speed",
                R"({"command":"set_joint_max_drive_speed","joint_max_speed":true})", 2, 180.5f),
    DRIVE_LIMIT(Set_Joint_Drive_Acc, Set_Joint_Drive_Max_Acc_Cmd,
                R"({"command": "set_joint_drive_max_acc", "joint_max_acc": [2, 1000]})", "joint_max_acc",
                R"({"command":"set_joint_max_drive_acc","joint_max_acc":true})", 2, 6.0f),
    DRIVE_LIMIT(Set_Joint_Drive_Min_Pos, Set_Joint_Drive_Min_Pos_Cmd,
                R"({"command": "set_joint_drive_min_pos", "joint_min_pos": [2, -1500]})", "joint_min_pos",
                R"({"command":"set_joint_drive_min_pos","joint_min_pos":true})", 2, -1.5f),
    DRIVE_LIMIT(Set_Joint_Drive_Max_Pos, Set_Joint_Drive_Max_Pos_Cmd,
                R"({"command": "set_joint_drive_max_pos", "joint_max_pos": [2, 250]})", "joint_max_pos",
                R"({"command":"set_joint_drive_max_pos","joint_max_pos":true})", 2, 0.251f),
    QUERY(Get_Joint_Drive_Speed, Get_Joint_Drive_Max_Speed_Cmd, "get_joint_drive_max_speed",
          R"({"state":"get_joint_drive_max_speed","joint_speed":[30000,37500,1000,1,0,-1000]})", kTurns,
          .reads({{9, 10}})),
    QUERY(Get_Joint_Drive_Acc, Get_Joint_Drive_Max_Acc_Cmd, "get_joint_drive_max_acc",
          R"({"state":"get_joint_drive_max_acc","joint_acc":[30000,37500,1000,1,0,-1000]})", kTurns),
    QUERY(Get_Joint_Drive_Min_Pos, Get_Joint_Drive_Min_Pos_Cmd, "get_joint_drive_min_pos",
          R"({"state":"get_joint_drive_min_pos","min_pos":[-178000,-130001,0,1,2,3]})", kLowestDegrees),
    QUERY(Get_Joint_Drive_Max_Pos, Get_Joint_Drive_Max_Pos_Cmd, "get_joint_drive_max_pos",
          R"({"state":"get_joint_drive_max_pos","max_pos":[178000,130001,0,1,2,3]})", kHighestDegrees),

    SETTER(Set_Joint_EN_State, or_8(Set_Joint_En_State_Cmd),
           R"({"command": "set_joint_en_state", "joint_en_state": [4, 1]})", "joint_en_state", 4, 1),
    answered(ASK(Get_Joint_EN_State), Get_Joint_En_State_Cmd, "get_joint_en_state",
             R"({"state":"joint_en_state","en_state":[1,0,1,true,false,257]})", "1 0 1 1 0 1"),
    answered(ASK(Get_Joint_EN_State_Block), Get_Joint_En_State_Cmd, "get_joint_en_state",
             R"({"state":"joint_en_state","en_state":[1,0,1,1,0,1,1]})", "1 0 1 1 0 1 1")
        .on(72),
    SETTER(Set_Joint_Err_Clear, or_8(Set_Joint_Clear_Err_Cmd),
           R"({"command": "set_joint_clear_err", "joint_clear_err": 4})", "joint_clear_err", 4),
    answered(ASK(Get_Joint_Err_Flag), Get_Joint_Err_Flag_Cmd, "get_joint_err_flag",
             R"({"state":"joint_err_flag","err_flag":[0,1,2,65535,65536,5],"brake_state":[1,0,1,0,1,0]})",
             "0 1 2 65535 0 5; 1 0 1 0 1 0"),
    answered(ASK(Get_Joint_Err_Flag_Block), Get_Joint_Err_Flag_Cmd, "get_joint_err_flag",
             R"({"state":"joint_err_flag","err_flag":[0,1,2,3,4,5,6],"brake_state":[1,0,1,0,1,0,1]})",
             "0 1 2 3 4 5 6; 1 0 1 0 1 0 1")
        .on(75),
    QUERY(Get_Joint_Software_Version, Get_Joint_Software_Version_Cmd, "get_joint_software_version",
          R"({"state":"joint_software_version","version":[131072,1,2,3,4,2147483647]})", "131072 1 2 3 4 2147483647"),

    SETTER(Set_Joint_Zero_Pos, or_8(Set_Joint_Zero_Cmd), R"({"command": "set_joint_zero_pos", "joint_zero_pos": 5})",
           "joint_zero_pos", 5),

    NO_REPLY(Start_Calibrate, "start_calibrate", "calibrate_state"),
    NO_REPLY(Stop_Calibrate, "stop_calibrate", "calibrate_state"),
    no_reply(ASK(Get_Calibrate_State), "get_calibrate_state", kCalibrating),
    no_reply(ASK(Get_Calibrate_State_Block), "get_calibrate_state", kCalibrating),

    {CALL(Auto_Fix_Joint_Over_Soft_Limit, (s, true)), "auto_fix_joint_over_soft_limit",
     R"({"command":"auto_fix_joint_over_soft_limit","set_state":false})", 1},
    {CALL(Auto_Fix_Joint_Over_Soft_Limit_Block, (s)), "auto_fix_joint_over_soft_limit",
     R"({"command":"auto_fix_joint_over_soft_limit","set_state":0})", 11},
    acknowledged(CALL(Auto_Fix_Joint_Over_Soft_Limit_NonBlock, (s)), Auto_Fix_Joint_Over_Soft_Limit_Cmd,
                 "auto_fix_joint_over_soft_limit", "set_state")
        .adding(),
    acknowledged(CALL(Auto_Set_Joint_Limit, (s, 200)), Auto_Set_Joint_Limit_Cmd, kLimitMode, kLimitModeSet),
    acknowledged(CALL(Auto_Set_Joint_Limit_E, (s, 200)), Auto_Set_Joint_Limit_Cmd, kLimitMode, kLimitModeSet),
    acknowledged(CALL(Auto_Set_Joint_Limit_Block_E, (s, 200)), Auto_Set_Joint_Limit_Cmd, kLimitMode, kLimitModeSet),
};

ZK_WIRE_TESTS(JointConfiguration, "joint_configuration.h", "Joint configuration", kJointConfigurationRows)

// The three that look at the connection: first whether there is one, then whether the library runs.
TEST(JointConfigurationGuards, ThreeCommandsCheckTheConnectionThenTheThreads) {
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

// The key of the errors is also read as a number, which fails: a good reply fills the arrays and returns 11.
TEST(JointConfigurationParsers, CalibrationNeverSucceeds) {
    const auto state = parsing(Parser_Get_Calibrate_State);
    expect_parsed(state,
                  {{R"({"joint_state":[1,2,3,4,255,256],"err":[0,1,2,3,4,5]})", 11, "1 2 3 4 255 0; 0 1 2 3 4 5; -"},
                   {R"({"joint_state":[1,2,3,4,5,6],"err":7})", 9, "1 2 3 4 5 6; -; -"},
                   {R"({"joint_state":[1,2,3,4,5,6],"err":[0]})", 10, "1 2 3 4 5 6; -; -"}});
}

// -------------------------------------------------------------------------------------------------- The local model --

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

    // The model's limits of a kind: positions in degrees, the rest as the Algo_ getters return them.
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

// The reply changes the model, not the argument of the setting.
TEST_F(LimitsInTheModel, ChangeWithTheReplies) {
    controller_.answer("set_joint_max_speed", R"({"command":"set_joint_max_speed","joint_max_speed":true})");
    controller_.answer("set_joint_min_pos", R"({"command":"set_joint_min_pos","joint_min_pos":true})");
    const struct {
        int (*ask)(ArmSocket, float*);
        int (*set)(ArmSocket, uint8_t, float, bool);
        bool waits;
        void (*limit)(float*);
        const char* outputs;
    } rows[] = {{Get_Joint_Speed, Set_Joint_Speed, true, Algo_Get_Joint_Max_Speed, kTurns},
                {Get_Joint_Acc, Set_Joint_Acc, false, Algo_Get_Joint_Max_Acc, kTurns},
                {Get_Joint_Min_Pos, Set_Joint_Min_Pos, true, Algo_Get_Joint_Min_Limit, kLowestDegrees},
                {Get_Joint_Max_Pos, Set_Joint_Max_Pos, false, Algo_Get_Joint_Max_Limit, kHighestDegrees}};
    for (const auto& row : rows) {
        EXPECT_NE(model(row.limit), row.outputs);
        EXPECT_EQ(row.ask(arm_, out_), 0);
        EXPECT_EQ(model(row.limit), row.outputs);
        Algo_Init_Sys_Data(0, 0);
        EXPECT_EQ(row.set(arm_, 1, 1.0f, row.waits), 0);
        EXPECT_EQ(model(row.limit), row.outputs);
    }
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

// ---------------------------------------------------------------------------------------- Joints beyond soft limits --

const char* const kJointAccepted = R"({"command":"auto_fix_joint_over_soft_limit","set_state":true})";
const char* const kArrived = R"({"state":"current_trajectory_state","trajectory_state":true,"device":0})";
const char* const kFailed = R"({"state":"current_trajectory_state","trajectory_state":false,"device":0})";

class SoftLimits : public LimitsInTheModel {
 protected:
    std::future<int> start() {
        return std::async(std::launch::async, [this] { return Auto_Fix_Joint_Over_Soft_Limit(arm_, true); });
    }
};

TEST_F(SoftLimits, EndWithTheReportOfTheMotion) {
    controller_.answer_bytes("auto_fix_joint_over_soft_limit", {line(kJointAccepted), line(kArrived)});
    FirstRecord(Move_Cmd).put(1, 5);  // of an earlier motion
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, true), 0);
    EXPECT_EQ(shared(Move_Cmd[0].count), 0);
    EXPECT_EQ(shared(Auto_Fix_Joint_Over_Soft_Limit_Cmd[0].count), 1) << "the acknowledgement is not taken";
    controller_.answer("auto_fix_joint_over_soft_limit", kFailed);
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, true), 1) << "and serves the next call";
    controller_.answer("auto_fix_joint_over_soft_limit",
                       R"({"command":"auto_fix_joint_over_soft_limit","set_state":false})");
    EXPECT_EQ(Auto_Fix_Joint_Over_Soft_Limit(arm_, true), 1) << "but a later refusal counts";
}

TEST_F(SoftLimits, WaitForTheReportWithoutALimit) {
    controller_.answer("auto_fix_joint_over_soft_limit", kJointAccepted);
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

}  // namespace
