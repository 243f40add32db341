// The wait for a program's end, in scaled time.
#include "zk/programs.h"

#include <gtest/gtest.h>

#include "support/arm.h"
#include "support/scaled_time.h"

namespace {

using namespace zk::test;

const char* const kIdle = R"({"state":"get_program_run_state","run_state":0})";
const char* const kStarted = R"({"command":"set_program_id_start","start_state":true})";
const char* const kFinished = R"({"state":"program_run_finish","finish_id":3})";
std::string runs(int state) {
    return R"({"state":"get_program_run_state","run_state":)" + std::to_string(state) +
           R"(,"id":3,"plan_num":1,"loop_num":[],"loop_cont":[],"plan_speed":20,"step_mode":0})";
}

struct Watch {
    const char* name;
    std::vector<std::string> states;  // the replies to the polls in turn
    std::string finish;               // sent with the last of them
    int status;
    int asked;  // times
};

class ProgramWatch : public testing::TestWithParam<Watch> {};
TEST_P(ProgramWatch, ReturnsItsStatus) {
    const Watch& watch = GetParam();
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    controller.answer("set_program_id_start", kStarted);
    size_t asked = 0;
    int32_t last_asked = 0;
    controller.answer_with("get_program_run_state", [&](const std::string&) {
        const bool last = ++asked == static_cast<size_t>(watch.asked);
        if (last && watch.finish.empty()) {
            last_asked = Get_Program_Runtime();
            set_time_factor(50);
        }
        zk::test::Pieces pieces{line(watch.states[std::min(asked, watch.states.size()) - 1])};
        if (last && !watch.finish.empty()) pieces.insert(pieces.begin(), line(watch.finish));
        return pieces;
    });
    EXPECT_EQ(Set_Program_ID_Start(arm, 3, 20, true), watch.status);
    EXPECT_EQ(asked, static_cast<size_t>(watch.asked));
    if (watch.status == 7) {
        EXPECT_GE(Get_Program_Runtime() - last_asked, 61000);
    }
}
INSTANTIATE_TEST_SUITE_P(
    , ProgramWatch,
    testing::Values(Watch{"FinishWhileRunning", {runs(1), runs(2), runs(1)}, kFinished, 0, 3},
                    Watch{"FinishAfterTheRun", {runs(1), kIdle}, kFinished, 0, 2},
                    Watch{"BrokenFinish", {runs(1), kIdle}, R"({"state":"program_run_finish"})", 9, 2},
                    Watch{"NeverSeenRunning", {kIdle}, kFinished, 0, 15}, Watch{"NoFinish", {kIdle}, "", 7, 15},
                    Watch{"FailedPolls", {"{\"state\":\"get_program_run_state\"}"}, kFinished, 9, 6}),
    [](const auto& row) { return row.param.name; });

}  // namespace
