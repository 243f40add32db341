// Drag teaching: every command on the wire, its guards, and its parsers.
#include "zk/drag_teach.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"
#include "zk/dispatch.h"
#include "zk/motion.h"

namespace {

using namespace zk::test;

const char* const kReport =
    R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,"trajectory_connect":0})";
const MultiDragTeachParam kParam{{1, 0, 1, 0, 0, 1}, 2, 1};
const char* const kParamWire =
    R"({"command": "start_multi_drag_teach", "frame": 2, "singular_wall": 1, "free_axes": [1, 0, 1, 0, 0, 1]})";

// The replay is asked after, whatever its reply says.
CommandCase replayed(const std::string& name, Call call) {
    CommandCase row = acknowledged(name, call, Run_Drag_Trajectory_Cmd, R"({"command": "run_drag_trajectory"})",
                                   R"({"command":"run_drag_trajectory","run_state":true})");
    row.refusable = false;
    return row.followed_by({R"({"command": "get_arm_current_trajectory"})",
                            R"({"state":"arm_current_trajectory","type":"re_trajectory","data":[0,0,0,0,0,0]})"});
}

const char* const kStart = R"({"command": "start_drag_teach", "trajectory_record": 1})";
const char* const kMulti = R"({"command": "start_multi_drag_teach", "mode": 3, "singular_wall": 0})";
const char* const kMultiStarted = R"({"command":"start_multi_drag_teach","set_state":true})";

const std::vector<CommandCase> kRows = {
    SETTER(Start_Drag_Teach, Start_Drag_Teach_Cmd, kStart, R"({"command":"start_drag_teach","drag_teach":true})"),
    SETTER(Stop_Drag_Teach, Stop_Drag_Teach_Cmd, R"({"command": "stop_drag_teach"})",
           R"({"command":"stop_drag_teach","drag_teach":true})"),
    SETTER(Start_Multi_Drag_Teach, Start_Multi_Drag_Teach_Cmd, kMulti, kMultiStarted, 3, 0),
    WAITING(Start_Multi_Drag_Teach_New, Start_Multi_Drag_Teach_Cmd, kParamWire, kMultiStarted, kParam),
    WAITING(Set_Drag_Teach_Sensitivity, Set_Drag_Teach_Sensitivity_Cmd,
            R"({"command": "set_drag_teach_sensitivity", "grade": -4})",
            R"({"command":"set_drag_teach_sensitivity","set_state":true})", -4),
    QUERY(Get_Drag_Teach_Sensitivity, Get_Drag_Teach_Sensitivity_Cmd, R"({"command": "get_drag_teach_sensitivity"})",
          R"({"state":"get_drag_teach_sensitivity","grade":70})", "70", .absorbing()),

    replayed(CALL(Run_Drag_Trajectory, (s, true))),
    replayed(CALL(Run_Drag_Trajectory_Block, (s))),
    queued("Unwaited_" CALL(Run_Drag_Trajectory, (s, false)), R"({"command": "run_drag_trajectory"})"),
    queued(CALL(Run_Drag_Trajectory_NonBlock, (s)), R"({"command": "run_drag_trajectory"})"),
    SETTER(Pause_Drag_Trajectory, Pause_Drag_Trajectory_Cmd, R"({"command": "pause_drag_trajectory"})",
           R"({"command":"pause_drag_trajectory","pause_state":true})"),
    SETTER(Continue_Drag_Trajectory, Continue_Drag_Trajectory_Cmd, R"({"command": "continue_drag_trajectory"})",
           R"({"command":"continue_drag_trajectory","continue_state":true})"),
    SETTER(Stop_Drag_Trajectory, Stop_Drag_Trajectory_Cmd, R"({"command": "stop_drag_trajectory"})",
           R"({"command":"stop_drag_trajectory","stop_state":true})"),
    SETTER(Drag_Trajectory_Origin, Move_Cmd, R"({"command": "drag_trajectory_origin"})", kReport),
};

class DragTeach : public testing::TestWithParam<CommandCase> {};
TEST_P(DragTeach, OnTheWire) { run(GetParam()); }
INSTANTIATE_TEST_SUITE_P(, DragTeach, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

TEST(DragTeachGuards, EveryCommandHasARow) { EXPECT_EQ(commands_without_row("drag_teach.h", kRows), ""); }

TEST(DragTeachGuards, ThePageTellsTheWire) { expect_documented("Drag teaching", kRows); }

TEST(DragTeachGuards, PlainNamesDoNothingDuringAFileTransfer) { expect_nothing_during_a_file_transfer(kRows); }

TEST(DragTeachGuards, TheLongWaitsNeedAConnection) {
    ZK_API_Init(65, nullptr);
    EXPECT_EQ(Run_Drag_Trajectory(77, true), 5);
    EXPECT_EQ(Drag_Trajectory_Origin(77, true), 5);
    EXPECT_EQ(Drag_Trajectory_Origin(77, false), 0);
}

TEST(DragTeachParsers, Acknowledgements) {
    for (const AckParser& parser : {AckParser{Parser_Drag_Teach, "drag_teach"},
                                    {Parser_Run_Drag_Trajectory, "run_state"},
                                    {Parser_Pause_Drag_Trajectory, "pause_state"},
                                    {Parser_Continue_Drag_Trajectory, "continue_state"},
                                    {Parser_Stop_Drag_Trajectory, "stop_state"}}) {
        expect_acknowledgement(parser);
    }
}

TEST(DragTeachParsers, Sensitivity) { expect_number({parsing(Parser_Get_Drag_Teach_Sensitivity), "grade", "1234"}); }

TEST(DragTeachParsers, Origin) {
    expect_parsed(parsing(Parser_Drag_Trajectory_Origin), {{R"({"trajectory_state":true,"device":3})", 0, "3"},
                                                           {R"({"trajectory_state":true})", 0, ""},
                                                           {R"({"trajectory_state":true,"device":"3"})", 0, ""},
                                                           {R"({"trajectory_state":false,"device":3})", 1, ""},
                                                           {R"({"trajectory_state":1,"device":3})", 11, ""},
                                                           {R"({"device":3})", 9, ""},
                                                           {R"({"trajectory_state":true)", 9, ""}});
}

// The acknowledgement of the way to the origin has a mailbox of its own.
TEST(DragTeachRoutes, TheOriginsAcknowledgementIsKeptApart) {
    std::string message = R"({"command":"drag_trajectory_origin","trajectory_state":true,"device":2})";
    handle_Recv_Json(3, message.data());
    EXPECT_EQ(Drag_Trajectory_Origin_Cmd[3].count, 1);
    EXPECT_EQ(Drag_Trajectory_Origin_Cmd[3].result, 0);
    EXPECT_EQ(Drag_Trajectory_Origin_Cmd[3].device, 2);
    EXPECT_EQ(Move_Cmd[3].count, 0);
}

}  // namespace
