// Motion: every command on the wire, its guards and its parsers. The clock is stopped, since the commands wait only a
// hundred milliseconds for an acknowledgement. arrival_fast_test covers how the waits end.
#include "zk/replies/motion.h"

#include <gtest/gtest.h>

#include <cmath>

#include <nlohmann/json.hpp>

#include "support/command_case.h"
#include "support/kdl_frames.h"
#include "support/parser_case.h"
#include "support/scaled_time.h"
#include "support/wire_protocol.h"
#include "zk/algorithm.h"
#include "zk/connection.h"

namespace {

using namespace zk::test;

// Products are single-precision and truncated toward zero: 0.251 degrees are 250.99998 thousandths.
const float kWireJoints[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};
const float kNoIntegers[6] = {NAN, INFINITY, -INFINITY, 3e6f, -3e6f, 2147483.5f};
constexpr Pose kPose{{0.3f, -0.2f, 0.0000019f}, {9, 9, 9, 9}, {3.1415f, -0.5f, -0.0009f}};
constexpr Pose kVia{{0.25f, 0.5f, -3000.0f}, {}, {0.5f, 0.25f, 1.0f}};

// The report of its arrival follows the reply to the first poll.
CommandCase arriving(const std::string& name, Call call, const std::string& wire, const std::string& type) {
    return CommandCase{name, call, wire, R"({"command":")" + command_name(wire) + R"(","receive_state":true})"}
        .followed_by({"get_arm_current_trajectory",
                      R"({"state":"arm_current_trajectory","type":")" + type + "\",\"data\":[0,0,0,0,0,0]}\r\n" +
                          R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,)"
                          R"("trajectory_connect":0})"});
}
CommandCase accepted(const std::string& name, Call call, const std::string& wire) {
    return acknowledged(name, call, Move_Receive_Cmd, wire,
                        R"({"command":")" + command_name(wire) + R"(","receive_state":true})");
}

#define MOVE(command, type, wire, ...)                                                  \
    arriving(#command, ZK_FORM(command, __VA_ARGS__, true), wire, type),                \
        arriving(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__), wire, type), \
        accepted("Unarrived_" #command, ZK_FORM(command, __VA_ARGS__, false), wire),    \
        accepted(#command "_NonBlock", ZK_FORM(command##_NonBlock, __VA_ARGS__), wire)

const std::vector<CommandCase> kMotionRows = {
    MOVE(Movej_Cmd, "movej",
         R"({"command": "movej", "joint": [250, -90000, 1500, 0, 178000, 12345], "v": 255, "r": 7, )"
         R"("trajectory_connect": 0})",
         kWireJoints, 255, 7, 0),
    MOVE(Movel_Cmd, "movel",
         R"({"command": "movel", "pose": [300000, -200000, 1, 3141, -500, 0], "v": 100, "r": 50, )"
         R"("trajectory_connect": 0})",
         kPose, 100, 50, 0),
    MOVE(Moves_Cmd, "moves",
         R"({"command": "moves", "pose": [300000, -200000, 1, 3141, -500, 0], "v": 1, "r": 0, )"
         R"("trajectory_connect": 0})",
         kPose, 1, 0, 0),
    MOVE(Movej_P_Cmd, "movej",
         R"({"command": "movej_p", "pose": [300000, -200000, 1, 3141, -500, 0], "v": 20, "r": 1, )"
         R"("trajectory_connect": 0})",
         kPose, 20, 1, 0),
    MOVE(Movec_Cmd, "movec",
         R"({"command": "movec", "pose": {"pose_via": [250000, 500000, -2147483648, 500, 250, 1000], )"
         R"("pose_to": [300000, -200000, 1, 3141, -500, 0]}, "v": 20, "r": 3, "loop": 255, "trajectory_connect": 0})",
         kVia, kPose, 20, 3, 255, 0),

    accepted("OfSevenJoints_" CALL(Movej_Cmd_NonBlock, (s, kWireJoints, 20, 0, 2147483647)),
             R"({"command": "movej", "joint": [250, -90000, 1500, 0, 178000, 12345, -7250], "v": 20, "r": 0, )"
             R"("trajectory_connect": 2147483647})")
        .on(75),
    accepted("OfWhatNoIntegerHolds_" CALL(Movej_Cmd_NonBlock, (s, kNoIntegers, 0, 0, 0)),
             R"({"command": "movej", "joint": [-2147483648, -2147483648, -2147483648, -2147483648, -2147483648, )"
             R"(2147483520], "v": 0, "r": 0, "trajectory_connect": 0})"),
    // A move that is joined to the next does not wait.
    queued("Joined_" CALL(Movel_Cmd, (s, kPose, 20, 0, -3, true)),
           R"({"command": "movel", "pose": [300000, -200000, 1, 3141, -500, 0], "v": 20, "r": 0, )"
           R"("trajectory_connect": -3})"),

    // An arm with an unknown position is not moved.
    CommandCase{CALL(MoveCartesianTool_Cmd, (s, 100, 0, 0, true, 0.02f, 0, 0)), "get_current_arm_state",
                R"({"state":"current_arm_state","arm_state":7})"}
        .returning(11),
    CommandCase{CALL(MoveRotate_Cmd, (s, 1, 100, 0, 0, true, kPose, 10)), "get_current_arm_state",
                R"({"state":"current_arm_state"})"}
        .returning(9),
};

ZK_WIRE_ROWS(Motion, kMotionRows, set_time_factor(0); set_shared(g_is_robot_type_i, uint8_t{1}));

// The page lists the query under the state of the arm.
std::vector<CommandCase> moves() {
    std::vector<CommandCase> rows = kMotionRows;
    for (CommandCase& row : rows) {
        if (row.wire == "get_current_arm_state") row.wire = "";
    }
    return rows;
}
ZK_WIRE_GUARDS(Motion, "motion.h", "Motion", moves())

TEST(MotionGuards, MovesWithoutAConnectionReturnFive) {
    expect_nothing_sent({{CALL(Movej_Cmd_Block, (s + 1, kWireJoints, 20, 0, 0))},
                         {CALL(Movel_Cmd_NonBlock, (s + 1, kPose, 20, 0, 0))},
                         {CALL(MoveCartesianTool_Cmd, (s + 1, 20, 0, 0, true, 0, 0, 0))}},
                        5);
}

// ---------------------------------------------------------------------------------------------------------- Parsers --

TEST(MotionParsers, ReadAcknowledgements) {
    expect_parsed(parsing(Parser_Receive_State), {{R"({"command":"movej","receive_state":true})", 0, "1"},
                                                  {R"({"command":"movel","receive_state":false})", 1, "2"},
                                                  {R"({"command":"movec","receive_state":true})", 0, "3"},
                                                  {R"({"command":"movej_p","receive_state":true})", 0, "0"},
                                                  {R"({"command":"moves","receive_state":1})", 11, "5"},
                                                  {R"({"command":"moves"})", 9, "5"},
                                                  {R"({"command":"movejp","receive_state":true})", 11, ""},
                                                  {R"({"command":7,"also":"movej","receive_state":true})", 11, ""},
                                                  {R"({"state":"movej","receive_state":true})", 9, ""}});
}

// The report of a failure needs no device.
TEST(MotionParsers, ReadReportsOfArrival) {
    expect_parsed(parsing(Parser_Plan_Feedback),
                  {{R"({"trajectory_state":true,"device":1,"trajectory_connect":2})", 0, "1; 2"},
                   {R"({"trajectory_state":true,"device":3})", 0, "3; -1"},
                   {R"({"trajectory_state":true,"device":"0","trajectory_connect":"0"})", 0, "-; -1"},
                   {R"({"trajectory_state":true,"trajectory_connect":0})", 9, ""},
                   {R"({"trajectory_state":false})", 1, ""},
                   {R"({"trajectory_state":0,"device":0})", 11, ""},
                   {R"({"device":0,"trajectory_connect":0})", 9, ""}});
}

// ---------------------------------------------------------------------------------------------------- Derived moves --

struct DerivedMove {
    const char* name;
    int (*call)(ArmSocket arm);
    KDL::Frame (*target)(const KDL::Frame& here);
};

constexpr Pose kReference{{7, 7, 7}, {7, 7, 7, 7}, {0.2f, -0.4f, 1.1f}};
KDL::Frame turned(const KDL::Frame& here, KDL::Vector (KDL::Rotation::*axis)() const) {
    return {KDL::Rotation::Rot2((to_kdl(kReference.euler).*axis)(), 30 * M_PI / 180) * here.M, here.p};
}

const DerivedMove kDerived[] = {
    {"AlongTheTool", [](ArmSocket s) { return MoveCartesianTool_Cmd(s, 33, 7, 5, true, 0.05f, -0.02f, 0.01f); },
     [](const KDL::Frame& here) { return here * KDL::Frame(KDL::Vector(0.05, -0.02, 0.01)); }},
    {"AboutX", [](ArmSocket s) { return MoveRotate_Cmd(s, 1, 33, 7, 5, false, kReference, 30); },
     [](const KDL::Frame& here) { return turned(here, &KDL::Rotation::UnitX); }},
    {"AboutY", [](ArmSocket s) { return MoveRotate_Cmd(s, 2, 33, 7, 5, false, kReference, 30); },
     [](const KDL::Frame& here) { return turned(here, &KDL::Rotation::UnitY); }},
    {"AboutZ", [](ArmSocket s) { return MoveRotate_Cmd(s, 3, 33, 7, 5, false, kReference, 30); },
     [](const KDL::Frame& here) { return turned(here, &KDL::Rotation::UnitZ); }}};

class DerivedMoves : public testing::TestWithParam<DerivedMove> {};
INSTANTIATE_TEST_SUITE_P(, DerivedMoves, testing::ValuesIn(kDerived),
                         [](const auto& row) { return std::string(row.param.name); });

// The target comes from the joints of the answer, not from its pose.
TEST_P(DerivedMoves, MoveOnALineToTheComputedTarget) {
    ScriptedController controller;
    set_time_factor(0);
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_shared(g_is_robot_type_i, uint8_t{1});
    Algo_Init_Sys_Data(0, 0);
    controller.answer("get_current_arm_state",
                      R"({"state":"current_arm_state","arm_state":{"joint":[10000,-20000,-60000,15000,-40000,20000],)"
                      R"("pose":[1,2,3,4,5,6],"arm_err":0,"sys_err":0}})");
    controller.answer("movel", R"({"command":"movel","receive_state":true})");
    EXPECT_EQ(GetParam().call(arm), 0);
    EXPECT_EQ(controller.next_request(), "{\n\t\"command\":\t\"get_current_arm_state\"\n}");
    const nlohmann::json request = nlohmann::json::parse(controller.next_request());
    EXPECT_EQ(request.size(), 5u);
    EXPECT_EQ(request["command"], "movel");
    EXPECT_EQ(request["v"], 33);
    EXPECT_EQ(request["r"], 7);
    EXPECT_EQ(request["trajectory_connect"], 5);

    const float joints[6] = {10, -20, -60, 15, -40, 20};
    const KDL::Frame target = GetParam().target(to_kdl(Algo_Forward_Kinematics(joints)));
    double rx, ry, rz;
    target.M.GetRPY(rx, ry, rz);
    const double expected[] = {target.p.x() * 1e6, target.p.y() * 1e6, target.p.z() * 1e6,
                               rx * 1e3,           ry * 1e3,           rz * 1e3};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(request["pose"][i].get<int>(), expected[i], 2) << i;
}

}  // namespace
