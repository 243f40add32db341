// Trajectory control: every command on the wire, its guards and its parsers.
#include "zk/replies/trajectory.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

const float kTargetJoints[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};
const char* const kCircle =
    R"({"state":"arm_current_trajectory","type":"movec","data":[300000,-200000,1,3141,-500,1]})";

const std::vector<CommandCase> kTrajectoryRows = {
    SETTER(Move_Stop_Cmd, Set_Arm_Stop_Cmd, "set_arm_stop", "arm_stop"),
    SETTER(Move_Pause_Cmd, Set_Arm_Pause_Cmd, "set_arm_pause", "arm_pause"),
    SETTER(Move_Continue_Cmd, Set_Arm_Continue_Cmd, "set_arm_continue", "arm_continue"),
    SETTER(Clear_Current_Trajectory, Clear_Current_Trajectory_Cmd, "set_delete_current_trajectory",
           "delete_current_trajectory"),
    SETTER(Clear_All_Trajectory, Clear_All_Trajectory_Cmd, "set_arm_delete_trajectory", "arm_delete_trajectory"),
    // A gentle stop clears the count of the other stop, not its own.
    SETTER_WITH(.taking_old_replies(), Move_Slow_Stop_Cmd, Set_Arm_Slow_Stop_Cmd, "set_arm_slow_stop", "arm_slow_stop"),

    answered(ASK(Get_Current_Trajectory), Get_Arm_Current_Trajectory_Cmd, "get_arm_current_trajectory",
             R"({"state":"arm_current_trajectory","type":"none","data":[1000,-90001,1,0,5,6]})",
             "0; 1 -90.001 0.001 0 0.005 0.006")
        .setting_the_count()
        .clearing_old_replies()
        .reads({{9, 11, 0}}),
    // A pose has no seventh value: the call returns the one that the record held.
    answered(ASK(Get_Current_Trajectory_Block), Get_Arm_Current_Trajectory_Cmd, "get_arm_current_trajectory", kCircle,
             "3; 0.3 -0.2 1e-06 3.141 -0.5 0.001 0")
        .setting_the_count()
        .clearing_old_replies()
        .on(75),

    // A reply to a waypoint command is routed as a streamed point; the timer waits on the pending list.
    NO_REPLY(Add_Waypoint, R"({"command": "add_waypoint", "joint": [250, -90000, 1500, 0, 178000, 12345]})",
             "waypoint_state", kTargetJoints),
    queued("OfSevenJoints_" CALL(Add_Waypoint, (s, kTargetJoints, false)),
           R"({"command": "add_waypoint", "joint": [250, -90000, 1500, 0, 178000, 12345, -7250]})", 72),
    NO_REPLY(Start_Waypoint, R"({"command": "start_waypoint", "frequency": -2147483648})", "waypoint_state",
             -2147483647 - 1),
    NO_REPLY(Clear_Waypoint, "clear_waypoint", "waypoint_state"),
    NO_REPLY(Stop_Waypoint, "stop_waypoint", "waypoint_state"),
    NO_REPLY(Timer, R"({"command": "timer", "wait_time": 2147483647})", "wait_time", 2147483647),
};

ZK_WIRE_TESTS(Trajectory, "trajectory.h", "Trajectories", kTrajectoryRows)

TEST(TrajectoryParsers, TheTrajectoryInProgress) {
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
                                                           {reply("movej_p"), 11, ""}});
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

}  // namespace
