// Trajectory control: every command on the wire, its guards and its parsers.
#include "zk/replies/trajectory.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/simulated_rows.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

const float kJoints[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};
const char* const kSlowStop = R"({"command":"set_arm_slow_stop","arm_slow_stop":true})";
const char* const kCircle =
    R"({"state":"arm_current_trajectory","type":"movec","data":[300000,-200000,1,3141,-500,1]})";

const std::vector<CommandCase> kRows = {
    SETTER(Move_Stop_Cmd, Set_Arm_Stop_Cmd, R"({"command": "set_arm_stop"})",
           R"({"command":"set_arm_stop","arm_stop":true})"),
    SETTER(Move_Pause_Cmd, Set_Arm_Pause_Cmd, R"({"command": "set_arm_pause"})",
           R"({"command":"set_arm_pause","arm_pause":true})"),
    SETTER(Move_Continue_Cmd, Set_Arm_Continue_Cmd, R"({"command": "set_arm_continue"})",
           R"({"command":"set_arm_continue","arm_continue":true})"),
    SETTER(Clear_Current_Trajectory, Clear_Current_Trajectory_Cmd, R"({"command": "set_delete_current_trajectory"})",
           R"({"command":"set_delete_current_trajectory","delete_current_trajectory":true})"),
    SETTER(Clear_All_Trajectory, Clear_All_Trajectory_Cmd, R"({"command": "set_arm_delete_trajectory"})",
           R"({"command":"set_arm_delete_trajectory","arm_delete_trajectory":true})"),
    // A gentle stop clears the count of the other stop, not its own.
    acknowledged(CALL(Move_Slow_Stop_Cmd, (s, true)), Set_Arm_Slow_Stop_Cmd, R"({"command": "set_arm_slow_stop"})",
                 kSlowStop)
        .taking_old_replies(),
    acknowledged(CALL(Move_Slow_Stop_Cmd_Block, (s)), Set_Arm_Slow_Stop_Cmd, R"({"command": "set_arm_slow_stop"})",
                 kSlowStop)
        .taking_old_replies(),
    queued("Unwaited_" CALL(Move_Slow_Stop_Cmd, (s, false)), R"({"command": "set_arm_slow_stop"})"),
    queued(CALL(Move_Slow_Stop_Cmd_NonBlock, (s)), R"({"command": "set_arm_slow_stop"})"),

    answered(ASK(Get_Current_Trajectory), Get_Arm_Current_Trajectory_Cmd,
             R"({"command": "get_arm_current_trajectory"})",
             R"({"state":"arm_current_trajectory","type":"none","data":[1000,-90001,1,0,5,6]})",
             "0; 1 -90.001 0.001 0 0.005 0.006")
        .absorbing()
        .clearing_old_replies(),
    // A pose has no seventh value: what the record held is told.
    answered(ASK(Get_Current_Trajectory_Block), Get_Arm_Current_Trajectory_Cmd,
             R"({"command": "get_arm_current_trajectory"})", kCircle, "3; 0.3 -0.2 1e-06 3.141 -0.5 0.001 0")
        .absorbing()
        .clearing_old_replies()
        .on(75),

    // The reply to a waypoint command is taken for a streamed point, and that of the timer is waited for on the list.
    UNHEARD(Add_Waypoint, R"({"command": "add_waypoint", "joint": [250, -90000, 1500, 0, 178000, 12345]})",
            R"({"command":"add_waypoint","waypoint_state":true})", kJoints),
    queued("OfSevenJoints_" CALL(Add_Waypoint, (s, kJoints, false)),
           R"({"command": "add_waypoint", "joint": [250, -90000, 1500, 0, 178000, 12345, -7250]})", 72),
    UNHEARD(Start_Waypoint, R"({"command": "start_waypoint", "frequency": -2147483648})",
            R"({"command":"start_waypoint","waypoint_state":true})", -2147483647 - 1),
    UNHEARD(Clear_Waypoint, R"({"command": "clear_waypoint"})",
            R"({"command":"clear_waypoint","waypoint_state":true})"),
    UNHEARD(Stop_Waypoint, R"({"command": "stop_waypoint"})", R"({"command":"stop_waypoint","waypoint_state":true})"),
    UNHEARD(Timer, R"({"command": "timer", "wait_time": 2147483647})", R"({"command":"timer","wait_time":true})",
            2147483647),
};

ZK_WIRE_TESTS(Trajectory, "trajectory.h", "Trajectories", kRows)

TEST(TrajectoryGuards, NullPointersAreToldAndNothingIsSent) {
    expect_nulls_refused({NULLS(Get_Current_Trajectory), NULLS(Add_Waypoint)});
}

TEST(TrajectoryGuards, SuspendWhileTheyWait) {
    expect_suspension({{ASK(Get_Current_Trajectory), kCircle},
                       {CALL(Add_Waypoint, (s, kJoints, true))},
                       {CALL(Start_Waypoint, (s, 1, true))},
                       {CALL(Clear_Waypoint, (s, true))},
                       {CALL(Stop_Waypoint, (s, true))},
                       {CALL(Timer, (s, 1, true))}});
}

TEST(TrajectoryParsers, WhatTheArmIsDoing) {
    const std::string joints = "1 0.002 0.003 0.004 0.005 0.006", pose = "0.001 2e-06 3e-06 0.004 0.005 0.006";
    const auto reply = [](const char* type) {
        return R"({"type":")" + std::string(type) + R"(","data":[1000,2,3,4,5,6]})";
    };
    expect_parsed(parsing(Parser_Get_Current_Trajectory), {{reply("none"), 0, "0; " + joints},
                                                           {reply("movej"), 0, "1; " + joints},
                                                           {reply("movel"), 0, "2; " + pose},
                                                           {reply("movec"), 0, "3; " + pose},
                                                           {reply("re_trajectory"), 0, "4; " + joints},
                                                           {reply("moves"), 0, "5; " + pose},
                                                           {reply("blend"), 0, "6; " + joints},
                                                           {reply("movej_p"), 11, ""},
                                                           {R"({"type":"movej","data":7})", 11, ""},
                                                           {R"({"type":1,"data":[1000,2,3,4,5,6]})", 11, ""},
                                                           {R"({"data":[1000,2,3,4,5,6]})", 9, ""},
                                                           {R"({"type":"movej"})", 9, ""},
                                                           {R"({"type":"movej","data":[1000,2)", 9, ""}});
}

// Only false is a refusal.
TEST(TrajectoryParsers, Waypoint) {
    const Parse parse = [](ArmSocket, const char* text, std::string&) { return Parser_Add_Waypoint(text); };
    expect_parsed(parse, {{R"({"waypoint_state":true})", 0, ""},
                          {R"({"waypoint_state":1})", 0, ""},
                          {R"({"waypoint_state":false})", 1, ""},
                          {R"({"state":true})", 9, ""},
                          {"", 9, ""}});
}

TEST(TrajectoryOnASimulatedArm, EveryRowIsAnswered) {
    expect_simulated(kRows);
    expect_simulated(kRows, "ZK75-6F");
}

}  // namespace
