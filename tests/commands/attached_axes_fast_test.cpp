// Lift, expansion axis and mobile base: every command on the wire, its guards, its waits, and its parser. Time is
// scaled, for one of the limits is two minutes.
#include "zk/replies/attached_axes.h"

#include <gtest/gtest.h>

#include <future>

#include "commands/limits.h"
#include "commands/wire.h"
#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"
#include "zk/gripper_and_hand.h"
#include "zk/queue.h"
#include "zk/replies/motion.h"
#include "zk/replies/pending.h"
#include "zk/replies/system.h"

namespace {

using namespace zk::test;

const char* const kLift = R"({"state":"lift_state","height":-5,"current":1500,"err_flag":65537,"mode":1})";
const char* const kAxis = R"({"state":"expand_state","pos":-5,"current":800,"err_flag":65537,"mode":1})";
const char* const kConfig =
    R"({"state":"expand_get_config","rpm_max":1,"rpm_acc":2,"conversin_coe":3,"limit_min":-4,"limit_max":5})";
const char* const kVersion = R"({"state":"expand_get_version","expand_version":7})";
const char* const kCar =
    R"({"state":"get_car_state","battery_volume":80,"voltage":1,"current":2,"car_err":0,"car_state":1,"station_num":3})";

const char* const kSetLift = R"({"command": "set_lift", "height": 300, "speed": 20})";
const char* const kLiftSpeed = R"({"command": "set_lift_speed", "speed": 20})";
const char* const kSetVersion = R"({"command": "expand_set_version", "expand_version": -7})";
const char* const kSetConfig = R"({"command": "expand_config", "rpm_max": 3000, "rpm_acc": 200, "conversin_coe": -3})";

const std::vector<CommandCase> kAttachedAxesRows = {
    queued(CALL(Set_Lift_Height_NonBLock, (s, 300, 20)),
           R"({"command": "set_lift_height", "height": 300, "speed": 20})"),
    QUERY(Get_Lift_State, Get_Lift_State_Cmd, "get_lift_state", kLift, "-5; 1500; 1; 1", .setting_the_count()),
    queued(CALL(Set_Lift_Speed, (s, -20)), R"({"command": "set_lift_speed", "speed": -20})"),
    no_reply(CALL(Set_Lift_Speed_Block, (s, 20)), kLiftSpeed, "set_state"),
    queued(CALL(Set_Lift_Speed_NonBlock, (s, 20)), kLiftSpeed),
    no_reply(CALL(Set_Lift, (s, 300, 20, true)), kSetLift, "set_state"),
    no_reply(CALL(Set_Lift_Block, (s, 300, 20)), kSetLift, "set_state"),
    queued(CALL(Set_Lift_NonBlock, (s, 300, 20)), R"({"command": "set_lift ", "height": 300, "speed": 20})"),

    queued(CALL(Expand_Set_Speed_NonBlock, (s, -30)), R"({"command": "expand_set_speed", "speed": -30})"),
    queued(CALL(Expand_Set_Pos_NonBlock, (s, -9000, 30)),
           R"({"command": "expand_set_pos", "pos": -9000, "speed": 30})"),
    answered(ASK(Expand_Get_State), Expand_Get_State_Cmd, "expand_get_state", kAxis, "-5; 1; 800; 1")
        .setting_the_count(),
    answered(ASK(Expand_Get_State_BLock), Expand_Get_State_Cmd, "expand_get_state", kAxis, "-5; 1; 800; 1")
        .setting_the_count(),
    acknowledged(CALL(Expand_Set_Version, (s, -7)), Expand_Set_Version_Cmd, kSetVersion, "expand_version")
        .taking_old_replies(),
    acknowledged(CALL(Expand_Set_Version_BLock, (s, -7)), Expand_Set_Version_Cmd, kSetVersion, "expand_version")
        .taking_old_replies(),
    answered(ASK(Expand_Get_Version), Expand_Get_Version_Cmd, "expand_get_version", kVersion, "7").setting_the_count(),
    answered(ASK(Expand_Get_Version_BLock), Expand_Get_Version_Cmd, "expand_get_version", kVersion, "7")
        .setting_the_count(),
    acknowledged(CALL(Expand_Config, (s, 3000, 200, -3)), Expand_Config_Cmd, kSetConfig, "config_state")
        .taking_old_replies(),
    acknowledged(CALL(Expand_Config_Block, (s, 3000, 200, -3)), Expand_Config_Cmd, kSetConfig, "config_state")
        .taking_old_replies(),
    QUERY(Expand_Get_Config, Expand_Get_Config_Cmd, "expand_get_config", kConfig, "1; 2; 3; -4; 5",
          .setting_the_count()),

    NO_REPLY(Set_Vehicle, R"({"command": "set_vehicle", "speed": 1, "angular": -2})", "set_state", 1, -2),
    NO_REPLY(Set_Car_Move, R"({"command": "set_car_move", "linear_speed": 1, "angular_speed": -2})", "set_state", 1,
             -2),
    NO_REPLY(Set_Car_Station, R"({"command": "set_car_speed", "station": 4, "speed": 500})", "navigation_state", 4,
             500),
    NO_REPLY(Set_Car_Navigation_Speed, R"({"command": "set_car_navigation_speed", "speed": 500})", "navigation_state",
             500),
    NO_REPLY(Set_Car_Navigation_Mode, R"({"command": "set_car_navigation_mode", "mode": 2})", "navigation_state", 2),
    NO_REPLY(Set_Car_Charge, R"({"command": "set_car_charge", "charge_state": 1})", "navigation_state", 1),
    NO_REPLY(Set_Car_Station_Num, R"({"command": "set_car_station_num", "station_num": 6})", "navigation_state", 6),
    no_reply(ASK(Get_Car_State), "get_car_state", kCar),
    no_reply(ASK(Get_Car_State_Block), "get_car_state", kCar),
};

// The clock runs only where the call ends at its limit.
ZK_WIRE_ROWS(AttachedAxes, kAttachedAxesRows, set_time_factor(GetParam().status == 7 ? 500 : 0));

// The moves that end with a report. `reply` is the number of the device in it.
const std::vector<CommandCase> kMoves = {
    {CALL(Set_Lift_Height, (s, 300, 20, true)), R"({"command": "set_lift_height", "height": 300, "speed": 20})", "3"},
    {CALL(Set_Lift_Height_BLock, (s, -1, 20)), R"({"command": "set_lift_height", "height": -1, "speed": 20})", "3"},
    {CALL(Expand_Set_Speed, (s, 30, true)), R"({"command": "expand_set_speed", "speed": 30})", "4"},
    {CALL(Expand_Set_Speed_Block, (s, -30)), R"({"command": "expand_set_speed", "speed": -30})", "4"},
    {CALL(Expand_Set_Pos, (s, 9000, 30, true)), R"({"command": "expand_set_pos", "pos": 9000, "speed": 30})", "4"},
    {CALL(Expand_Set_Pos_Block, (s, -9000, 30)), R"({"command": "expand_set_pos", "pos": -9000, "speed": 30})", "4"},
};

// The page does not list "set_lift " with its space.
std::vector<CommandCase> all_rows() {
    std::vector<CommandCase> rows = kAttachedAxesRows;
    std::erase_if(rows, [](const CommandCase& row) { return row.name == "Set_Lift_NonBlock"; });
    for (const CommandCase& move : kMoves) rows.push_back({move.name, move.call, "", ""});
    rows.push_back({CALL(Set_Lift_NonBlock, (s, 300, 20)), "", ""});
    return rows;
}

ZK_WIRE_GUARDS(AttachedAxes, "attached_axes.h", "Lift, expansion axis and mobile base", all_rows())

std::string lift_state(int mode) {
    return R"({"state":"lift_state","height":0,"current":0,"err_flag":0,"mode":)" + std::to_string(mode) + "}";
}

TEST(AttachedAxesGuards, PutTheCodeOfTheirReplyOnThePendingList) {
    const std::pair<int, Call> calls[] = {
        {132, [](ArmSocket s) { return Set_PWM_Block(s, 1, 1); }},
        {147, [](ArmSocket s) { return Set_Vehicle_Block(s, 1, 1); }},
        {148, [](ArmSocket s) { return Set_Lift_Block(s, 1, 1); }},
        {149, [](ArmSocket s) { return Set_Lift_Speed_Block(s, 1); }},
        {152, [](ArmSocket s) { return Set_Car_Move_Block(s, 1, 1); }},
        {153, [](ArmSocket s) { return Set_Car_Station_Block(s, 1, 1); }},
        {154, [](ArmSocket s) { return Set_Car_Navigation_Speed_Block(s, 1); }},
        {155, [](ArmSocket s) { return Set_Car_Navigation_Mode_Block(s, 1); }},
        {156, asking(Get_Car_State_Block)},
        {157, [](ArmSocket s) { return Set_Car_Charge_Block(s, 1); }},
        {158, [](ArmSocket s) { return Set_Car_Station_Num_Block(s, 1); }},
        {161, [](ArmSocket s) { return Force_Position_Move_Pose_Block(s, 1, 0, 2, Pose{}, 5); }},
    };
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    for (const auto& [code, call] : calls) {
        set_time_factor(0);
        std::string outputs;
        std::future<int> status = std::async(std::launch::async, [&, &call = call] { return call(arm, outputs); });
        controller.next_request();
        ZK_Mutex_Lock();
        EXPECT_EQ(SockeRIinfos[0].key_code, code);
        ZK_Mutex_UnLock();
        EXPECT_GE(time_to_give_up(500, [&] { return status.get(); }), 3000) << code;
    }
}

class Moves : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 60000);
        set_shared(m_nOutTime_max, 60000);
        arm_ = connect_arm(controller_);
        controller_.answer("get_lift_state", lift_state(1));
    }

    std::future<int> start(const CommandCase& move) {
        std::future<int> status = std::async(std::launch::async, [this, &move] {
            std::string outputs;
            return move.call(arm_, outputs);
        });
        EXPECT_EQ(controller_.wait_for_request(command_name(move.wire)), formatted(move.wire)) << move.name;
        return status;
    }
    int lift() { return Set_Lift_Height(arm_, 300, 20, true); }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(Moves, EndWithTheReportOfTheirDevice) {
    for (const CommandCase& move : kMoves) {
        for (const bool arrived : {true, false}) {
            std::future<int> status = start(move);
            controller_.say(report(std::stoi(move.reply), arrived));
            EXPECT_EQ(status.get(), arrived ? 0 : 1) << move.name;
            EXPECT_EQ(shared(Move_Cmd[0].count), 0) << move.name;
        }
    }
}

TEST_F(Moves, OfTheAxisEndWithAnyReportEvenAnEarlierOne) {
    for (const CommandCase& move : kMoves) {
        if (move.reply != "4") continue;
        std::future<int> status = start(move);
        controller_.say(report(1));
        EXPECT_EQ(status.get(), 12) << move.name;
        controller_.say(report(3));
        eventually([] { return shared(Move_Cmd[0].count) == 1; });
        EXPECT_EQ(start(move).get(), 12) << move.name;
    }
}

TEST_F(Moves, OfTheAxisEndAfterTwoMinutes) {
    set_shared(m_nOutTime, 1000);
    EXPECT_GE(time_to_give_up(500, [this] { return Expand_Set_Pos(arm_, 1, 1, true); }), 121000);
}

TEST_F(Moves, OfTheLiftIgnoreOtherReports) {
    controller_.say(report(3, false));
    eventually([] { return shared(Move_Cmd[0].count) == 1; });
    std::future<int> status = start(kMoves[0]);
    const char* const joined =
        R"({"state":"current_trajectory_state","trajectory_state":true,"device":3,"trajectory_connect":1})";
    for (const std::string& other : {report(0), std::string(joined)}) {
        controller_.say(other);
        controller_.forget_requests();
        controller_.wait_for_request("get_lift_state");
        controller_.wait_for_request("get_lift_state");
        EXPECT_EQ(status.wait_for(std::chrono::seconds(0)), std::future_status::timeout) << other;
    }
    controller_.say(report(3));
    EXPECT_EQ(status.get(), 0);
}

TEST_F(Moves, OfTheLiftReturn14WhenItRests) {
    set_time_factor(20);
    set_shared(m_nOutTime, 2000000000);
    int polls = 0;
    controller_.answer_with("get_lift_state", [&](const std::string&) {
        ++polls;
        return Pieces{line(lift_state(0))};
    });
    EXPECT_EQ(lift(), 14);
    EXPECT_EQ(polls, 50);
    controller_.answer_in_turn("get_lift_state", {lift_state(0), lift_state(1), lift_state(0), lift_state(1)});
    EXPECT_EQ(lift(), 14) << "it was seen moving";
}

TEST_F(Moves, OfTheLiftReturnTheStatusOfTheSixthFailedPoll) {
    int polls = 0;
    controller_.answer_with("get_lift_state", [&](const std::string&) {
        ++polls;
        return Pieces{line(R"({"state":"lift_state","height":0})")};
    });
    EXPECT_EQ(lift(), 9);
    EXPECT_EQ(polls, 6);
    Arm_Socket_Close(arm_);
    EXPECT_EQ(lift(), 5);
    EXPECT_EQ(Expand_Set_Speed(arm_, 1, true), 5);
}

TEST_F(Moves, OfTheOlderLiftCommandEndAfterTwoMinutes) {
    set_shared(m_nOutTime, 1000);
    std::future<int> status = std::async(std::launch::async, [this] { return Set_Lift(arm_, 300, 20, true); });
    EXPECT_NE(controller_.wait_for_request("set_lift"), "");
    EXPECT_EQ(shared(SuspendQueue), 1);
    EXPECT_GE(time_to_give_up(500, [&] { return status.get(); }), 121000);
    EXPECT_EQ(shared(SuspendQueue), 0);
}

TEST_F(Moves, SettingsOfTheAxisClearTheReplyToAPowerCommand) {
    controller_.answer("expand_config", done("expand_config", "config_state"));
    controller_.answer("expand_set_version", done("expand_set_version", "expand_version"));
    set_shared(Set_Arm_Power_Cmd[0].count, 1);
    EXPECT_EQ(Expand_Config(arm_, 1, 2, 3), 0);
    EXPECT_EQ(shared(Set_Arm_Power_Cmd[0].count), 0);
    set_shared(Set_Arm_Power_Cmd[0].count, 1);
    EXPECT_EQ(Expand_Set_Version(arm_, 1), 0);
    EXPECT_EQ(shared(Set_Arm_Power_Cmd[0].count), 0);
}

TEST_F(Moves, TheStateOfTheLiftIsReadWithoutItsMode) {
    int32_t height = 0, current = 0;
    uint16_t err_flag = 0;
    EXPECT_EQ(Get_Lift_State(arm_, &height, &current, &err_flag, nullptr), 0);
}

// No mailbox keeps the state of the base.
TEST(AttachedAxesParsers, ReadTheStateOfTheBase) {
    expect_parsed(parsing(Parser_Get_Car_State),
                  {{kCar, 0, "80; 1; 2; 0; 1; 3"}, {R"({"battery_volume":80})", 9, "80; -; -; -; -; -"}});
}

}  // namespace
