// Drag teaching: every command on the wire, its guards, and its parsers.
#include "zk/replies/drag_teach.h"

#include <gtest/gtest.h>

#include "commands/wire.h"
#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"
#include "zk/replies/motion.h"

namespace {

using namespace zk::test;

const MultiDragTeachParam kParam{{1, 0, 1, 0, 0, 1}, 2, 1};
const char* const kParamWire =
    R"({"command": "start_multi_drag_teach", "frame": 2, "singular_wall": 1, "free_axes": [1, 0, 1, 0, 0, 1]})";

// The replay is polled, whatever its reply.
CommandCase replayed(const std::string& name, Call call) {
    CommandCase row = acknowledged(name, call, Run_Drag_Trajectory_Cmd, "run_drag_trajectory", "run_state");
    row.refusable = false;
    return row.followed_by({"get_arm_current_trajectory",
                            R"({"state":"arm_current_trajectory","type":"re_trajectory","data":[0,0,0,0,0,0]})"});
}

const char* const kStart = R"({"command": "start_drag_teach", "trajectory_record": 1})";
const char* const kMulti = R"({"command": "start_multi_drag_teach", "mode": 3, "singular_wall": 0})";

const std::vector<CommandCase> kDragTeachRows = {
    SETTER(Start_Drag_Teach, Start_Drag_Teach_Cmd, kStart, "drag_teach"),
    SETTER(Stop_Drag_Teach, Stop_Drag_Teach_Cmd, "stop_drag_teach", "drag_teach"),
    SETTER(Start_Multi_Drag_Teach, Start_Multi_Drag_Teach_Cmd, kMulti, "set_state", 3, 0),
    WAITING(Start_Multi_Drag_Teach_New, Start_Multi_Drag_Teach_Cmd, kParamWire, "set_state", kParam),
    WAITING(Set_Drag_Teach_Sensitivity, Set_Drag_Teach_Sensitivity_Cmd,
            R"({"command": "set_drag_teach_sensitivity", "grade": -4})", "set_state", -4),
    QUERY(Get_Drag_Teach_Sensitivity, Get_Drag_Teach_Sensitivity_Cmd, "get_drag_teach_sensitivity",
          R"({"state":"get_drag_teach_sensitivity","grade":70})", "70", .setting_the_count()),

    replayed(CALL(Run_Drag_Trajectory, (s, true))),
    replayed(CALL(Run_Drag_Trajectory_Block, (s))),
    queued("Unwaited_" CALL(Run_Drag_Trajectory, (s, false)), "run_drag_trajectory"),
    queued(CALL(Run_Drag_Trajectory_NonBlock, (s)), "run_drag_trajectory"),
    SETTER(Pause_Drag_Trajectory, Pause_Drag_Trajectory_Cmd, "pause_drag_trajectory", "pause_state"),
    SETTER(Continue_Drag_Trajectory, Continue_Drag_Trajectory_Cmd, "continue_drag_trajectory", "continue_state"),
    SETTER(Stop_Drag_Trajectory, Stop_Drag_Trajectory_Cmd, "stop_drag_trajectory", "stop_state"),
    SETTER(Drag_Trajectory_Origin, Move_Cmd, "drag_trajectory_origin", report(0)),
};

ZK_WIRE_TESTS(DragTeach, "drag_teach.h", "Drag teaching", kDragTeachRows)

TEST(DragTeachParsers, ReadTheReportOfTheOrigin) {
    expect_parsed(parsing(Parser_Drag_Trajectory_Origin), {{R"({"trajectory_state":true,"device":3})", 0, "3"},
                                                           {R"({"trajectory_state":true})", 0, ""},
                                                           {R"({"trajectory_state":true,"device":"3"})", 0, ""},
                                                           {R"({"trajectory_state":false,"device":3})", 1, ""},
                                                           {R"({"trajectory_state":1,"device":3})", 11, ""},
                                                           {R"({"device":3})", 9, ""},
                                                           {R"({"trajectory_state":true)", 9, ""}});
}

}  // namespace
