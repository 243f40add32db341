// Gripper, hand and PWM: every command on the wire, its guards, and its parser.
#include <gtest/gtest.h>

#include "commands/wire.h"
#include "support/command_case.h"
#include "support/wire_protocol.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/joint_configuration.h"

namespace {

using namespace zk::test;

const int32_t kFingers[6] = {0, 1000, -1, 2147483647, -2147483647 - 1, 5};

// An acknowledgement, immediately followed by the report of the device's arrival.
const std::string kGripperAccepted = done("set_gripper", "state");
const std::string kGripped = kGripperAccepted + "\r\n" + report(1);
std::string posed(const std::string& command) { return done(command) + "\r\n" + report(2); }

const char* const kGripperState =
    R"({"state":"get_gripper_state","enable":2,"status":0,"error":-1,"mode":3,"current_force":4,"temperature":5,)"
    R"("actpos":1000})";
const char* const kStateOutputs = "1 0, -1 3 4 5 1000";
const char* const kPosture = R"({"command": "set_hand_posture", "posture_num": 3, "block": true})";
const char* const kSequence = R"({"command": "set_hand_seq", "seq_num": 4, "block": true})";
const char* const kAngles = R"({"command": "set_hand_angle", "hand_angle": [0, 1000, -1, 2147483647, -2147483648, 5]})";
const char* const kNextAngles =
    R"({"command": "hand_follow_angle", "hand_angle": [0, 1000, -1, 2147483647, -2147483648, 5]})";
const char* const kNextPositions =
    R"({"command": "hand_follow_pos", "hand_pos": [0, 1000, -1, 2147483647, -2147483648, 5]})";
const char* const kPwm = R"({"command": "set_PWM", "PWM_Frq": 1000, "PWM_Dpulse": -5})";

// The two forms of a move that wait for the gripper's report.
#define GRIPPING(command, wire, ...)                                                     \
    acknowledged(#command, ZK_FORM(command, __VA_ARGS__, true, 60), {}, wire, kGripped), \
        acknowledged(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__, 60), {}, wire, kGripped)

const std::vector<CommandCase> kGripperRows = {
    SETTER(Set_Gripper_Route, Set_Gripper_Route_Cmd, R"({"command": "set_gripper_route", "min": -1, "max": 1000})",
           "state", -1, 1000),

    GRIPPING(Set_Gripper_Release, R"({"command": "set_gripper_release", "speed": -1, "block": true})", -1),
    acknowledged(CALL(Set_Gripper_Release_NonBlock, (s, 500, 1)), Set_Gripper_Release_Cmd,
                 R"({"command": "set_gripper_release", "speed": 500, "block": 0})", kGripperAccepted)
        .taking_old_replies(),
    queued("AtOnce_" CALL(Set_Gripper_Release, (s, 500, false, 0)),
           R"({"command": "set_gripper_release", "speed": 500, "block": 0})"),
    GRIPPING(Set_Gripper_Pick, R"({"command": "set_gripper_pick", "speed": 500, "force": 200, "block": true})", 500,
             200),
    queued(CALL(Set_Gripper_Pick_NonBlock, (s, 500, 200, 0)),
           R"({"command": "set_gripper_pick", "speed": 500, "force": 200, "block": 0})"),
    GRIPPING(Set_Gripper_Pick_On, R"({"command": "set_gripper_pick_on", "speed": 500, "force": 200, "block": true})",
             500, 200),
    acknowledged(CALL(Set_Gripper_Pick_On_NonBlock, (s, 500, 200, -1)), Set_Gripper_Release_Cmd,
                 R"({"command": "set_gripper_pick_on", "speed": 500, "force": 200, "block": 0})", kGripperAccepted)
        .taking_old_replies(),
    GRIPPING(Set_Gripper_Position, R"({"command": "set_gripper_position", "position": 300, "block": true})", 300),
    queued(CALL(Set_Gripper_Position_NonBlock, (s, 300, 0)), R"({"command": "set_gripper_position", "position": 300})"),
    QUERY(Get_Gripper_State, Get_Gripper_State_Cmd, "get_gripper_state", kGripperState, kStateOutputs,
          .with_the_status_of_another()),

    acknowledged(CALL(Set_Hand_Posture, (s, 3, true)), {}, kPosture, posed("set_hand_posture")),
    acknowledged(CALL(Set_Hand_Posture_Block, (s, 3)), {}, kPosture, posed("set_hand_posture")),
    acknowledged(CALL(Set_Hand_Posture_NonBlock, (s, 3)), Set_Hand_Posture_Cmd,
                 R"({"command": "set_hand_posture", "posture_num": 3})", "set_state"),
    acknowledged(CALL(Set_Hand_Seq, (s, 4, true)), {}, kSequence, posed("set_hand_seq")),
    acknowledged(CALL(Set_Hand_Seq_Block, (s, 4)), {}, kSequence, posed("set_hand_seq")),
    acknowledged(CALL(Set_Hand_Seq_NonBlock, (s, 4)), Set_Hand_Seq_Cmd, R"({"command": "set_hand_seq", "seq_num": 4})",
                 "set_state"),

    SETTER(Set_Hand_Angle, Set_Hand_Angle_Cmd, kAngles, "set_state", kFingers),
    queued(CALL(Set_Hand_Follow_Angle, (s, kFingers, false)), kNextAngles),
    queued(CALL(Set_Hand_Follow_Angle_NonBlock, (s, kFingers)), kNextAngles),
    queued(CALL(Set_Hand_Follow_Pos, (s, kFingers, false)), kNextPositions),
    queued(CALL(Set_Hand_Follow_Pos_NonBlock, (s, kFingers)), kNextPositions),
    SETTER(Set_Hand_Speed, Set_Hand_Speed_Cmd, R"({"command": "set_hand_speed", "hand_speed": -8})", "set_state", -8),
    SETTER(Set_Hand_Force, Set_Hand_Force_Cmd, R"({"command": "set_hand_force", "hand_force": 800})", "set_state", 800),

    no_reply(CALL(Set_PWM, (s, 1000, -5, true)), kPwm, "set_state"),
    no_reply(CALL(Set_PWM_Block, (s, 1000, -5)), kPwm, "set_state"),
    queued(CALL(Set_PWM_NoBlock, (s, 1000, -5)), kPwm),
};

ZK_WIRE_ROWS(Gripper, kGripperRows, static_cast<void>(0));

// Those that send nothing, and those of gripper_fast_test.cpp, whose limit cannot be raised.
std::vector<CommandCase> all_gripper_rows() {
    std::vector<CommandCase> rows = kGripperRows;
    rows.insert(rows.end(), {{CALL(Stop_PWM, (s, true)), "", ""},
                             {CALL(Stop_PWM_Block, (s)), "", ""},
                             {CALL(Stop_PWM_NonBlock, (s)), "", ""},
                             {CALL(Set_Hand_Follow_Angle_Block, (s, kFingers)), "", ""},
                             {CALL(Set_Hand_Follow_Pos_Block, (s, kFingers)), "", ""}});
    return rows;
}

ZK_WIRE_GUARDS(Gripper, "gripper_and_hand.h", "Gripper and hand", all_gripper_rows())

TEST(GripperGuards, PwmCannotBeStopped) {
    expect_nothing_sent({{CALL(Stop_PWM, (s, true))},
                         {CALL(Stop_PWM, (s, false))},
                         {CALL(Stop_PWM_Block, (s))},
                         {CALL(Stop_PWM_NonBlock, (s))}},
                        8);
}

// A broken reply is not seen: the status is that of the joint drives' upper limits.
TEST(GripperState, HasTheStatusOfAnotherQuery) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    controller.answer("get_gripper_state", R"({"state":"get_gripper_state","status":1})");
    GripperState state{};
    EXPECT_EQ(Get_Gripper_State(arm, &state), 0);
    set_shared(Get_Joint_Drive_Max_Pos_Cmd[0].result, int32_t{10});
    EXPECT_EQ(Get_Gripper_State(arm, &state), 10);
}

}  // namespace
