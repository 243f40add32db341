// Teaching and stepping: every command on the wire, and its guards. The clock is stopped, so that a step's report is
// never late. stillness_fast_test covers how the wait of a step ends.
#include "zk/replies/motion.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/scaled_time.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

const char* const kTeachArrived = R"({"state":"current_trajectory_state","trajectory_state":true,"device":0})";

const std::vector<CommandCase> kTeachRows = {
    SETTER(Joint_Teach_Cmd, Joint_Teach_Cmd_Cmd,
           R"({"command": "set_joint_teach", "teach_joint": 6, "direction": "pos", "v": 20})", "joint_teach", 6, 1, 20),
    SETTER(Pos_Teach_Cmd, Pos_Teach_Cmd_Cmd,
           R"({"command": "set_pos_teach", "teach_type": "x", "direction": "neg", "v": 255})", "pos_teach", 0, 0, 255),
    SETTER(Ort_Teach_Cmd, Ort_Teach_Cmd_Cmd,
           R"({"command": "set_ort_teach", "teach_type": "ry", "direction": "pos", "v": 1})", "ort_teach", 1, 255, 1),
    queued("Y_" CALL(Pos_Teach_Cmd, (s, 1, 1, 20, false)),
           R"({"command": "set_pos_teach", "teach_type": "y", "direction": "pos", "v": 20})"),
    queued("Z_" CALL(Pos_Teach_Cmd, (s, 7, 1, 20, false)),
           R"({"command": "set_pos_teach", "teach_type": "z", "direction": "pos", "v": 20})"),
    queued("Rx_" CALL(Ort_Teach_Cmd, (s, 0, 0, 20, false)),
           R"({"command": "set_ort_teach", "teach_type": "rx", "direction": "neg", "v": 20})"),
    queued("Rz_" CALL(Ort_Teach_Cmd, (s, -1, 0, 20, false)),
           R"({"command": "set_ort_teach", "teach_type": "rz", "direction": "neg", "v": 20})"),

    acknowledged(CALL(Teach_Stop_Cmd, (s, true)), Teach_Stop_Cmd_Cmd, "set_stop_teach", "stop_teach"),
    acknowledged(CALL(Teach_Stop_Cmd_Blcok, (s)), Teach_Stop_Cmd_Cmd, "set_stop_teach", "stop_teach"),
    queued("Unwaited_" CALL(Teach_Stop_Cmd, (s, false)), "set_stop_teach"),
    queued(CALL(Teach_Stop_Cmd_NonBlcok, (s)), "set_stop_teach"),

    // The reply to a step is the report of its end. The step of a joint is sent untruncated.
    SETTER(Joint_Step_Cmd, Move_Cmd, R"({"command": "set_joint_step", "joint_step": [2, 500], "v": 20})", kTeachArrived,
           2, 20, 0.5f),
    queued("Untruncated_" CALL(Joint_Step_Cmd, (s, 7, 100, -0.0625f, false)),
           R"({"command": "set_joint_step", "joint_step": [7, -62.500000], "v": 100})"),
    SETTER(Pos_Step_Cmd, Move_Cmd, R"({"command": "set_pos_step", "step_type": "x_step", "step": -1, "v": 20})",
           kTeachArrived, 0, 20, -0.0000019f),
    SETTER(Ort_Step_Cmd, Move_Cmd, R"({"command": "set_ort_step", "step_type": "rz_step", "step": 3141, "v": 1})",
           kTeachArrived, 2, 1, 3.1415f),
    queued("Y_" CALL(Pos_Step_Cmd, (s, 1, 20, 0.3f, false)),
           R"({"command": "set_pos_step", "step_type": "y_step", "step": 300000, "v": 20})"),
    queued("Z_" CALL(Pos_Step_Cmd, (s, 2, 20, 5000, false)),
           R"({"command": "set_pos_step", "step_type": "z_step", "step": -2147483648, "v": 20})"),
    queued("Rx_" CALL(Ort_Step_Cmd, (s, 0, 20, 1, false)),
           R"({"command": "set_ort_step", "step_type": "rx_step", "step": 1000, "v": 20})"),
    queued("Ry_" CALL(Ort_Step_Cmd, (s, 1, 20, -0.5f, false)),
           R"({"command": "set_ort_step", "step_type": "ry_step", "step": -500, "v": 20})"),
};

ZK_WIRE_ROWS(Teach, kTeachRows, set_time_factor(0));
ZK_WIRE_GUARDS(Teach, "teach.h", "Teaching and steps", kTeachRows)

TEST(TeachGuards, BlockingFormsNeedAConnection) {
    expect_nothing_sent(
        {{CALL(Pos_Teach_Cmd_Block, (s + 1, 0, 1, 20))}, {CALL(Joint_Step_Cmd, (s + 1, 1, 20, 1, true))}}, 5);
}

TEST(TeachGuards, JoggingWithoutAReplyReturns7) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_time_factor(100);
    for (const auto teach : {Pos_Teach_Cmd_Block, Ort_Teach_Cmd_Block}) {
        const int32_t start = Get_Program_Runtime();
        EXPECT_EQ(teach(arm, 0, 1, 20), 7);
        EXPECT_GE(Get_Program_Runtime() - start, 3000);
    }
}

}  // namespace
