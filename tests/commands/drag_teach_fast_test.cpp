// The long waits of drag teaching: the replay, and the way to its origin.
#include "zk/replies/drag_teach.h"

#include <gtest/gtest.h>

#include <future>

#include "commands/limits.h"
#include "commands/wire.h"
#include "support/arm.h"

namespace {

using namespace zk::test;

std::string trajectory_named(const std::string& type) {
    return R"({"state":"arm_current_trajectory","type":")" + type + R"(","data":[0,0,0,0,0,0]})";
}
std::string replayed(bool whole) {
    return std::string(R"({"command":"run_drag_trajectory","run_state":)") + (whole ? "true}" : "false}");
}
class Waits : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        arm_ = connect_arm(controller_);
        m_nOutTime_max = 1000;
    }
    std::future<int> start_replay() {
        return std::async(std::launch::async, [this] { return Run_Drag_Trajectory(arm_, true); });
    }
    void wait_for_polls(int count) {
        controller_.forget_requests();
        for (int i = 0; i < count; ++i) controller_.wait_for_request("get_arm_current_trajectory");
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(Waits, AReplayHasNoLimitWhileItRuns) {
    controller_.answer("get_arm_current_trajectory", trajectory_named("re_trajectory"));
    std::future<int> status = start_replay();
    wait_for_polls(2);
    const int32_t start = Get_Program_Runtime();
    set_time_factor(1000);
    while (Get_Program_Runtime() - start < 2 * (3000 + 29999)) sleep_cp(1000);
    set_time_factor(0);
    controller_.say(replayed(false));
    EXPECT_EQ(status.get(), 1);
    EXPECT_EQ(shared(Run_Drag_Trajectory_Cmd[0].count), 0);
}

TEST_F(Waits, AReplayWaitsForTheMoveBeforeIt) {
    controller_.answer("run_drag_trajectory", replayed(true));
    controller_.answer("get_arm_current_trajectory", trajectory_named("movej"));
    std::future<int> status = start_replay();
    wait_for_polls(3);
    EXPECT_EQ(shared(Run_Drag_Trajectory_Cmd[0].count), 1);
    EXPECT_EQ(status.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    controller_.answer("get_arm_current_trajectory", trajectory_named("none"));
    EXPECT_EQ(status.get(), 0);
}

TEST_F(Waits, AReplayThatNeverStartsReturns7) {
    controller_.answer("get_arm_current_trajectory", trajectory_named("none"));
    m_nOutTime = 5000;
    EXPECT_GT(time_to_give_up(200, [this] { return Run_Drag_Trajectory(arm_, true); }), 5000 + 29999);
}

TEST_F(Waits, TheMoveToTheOriginEndsWithItsReport) {
    for (const auto& [message, status] :
         {std::pair(report(0, true), 0), std::pair(report(0, false), 1), std::pair(report(2, true), 12)}) {
        std::future<int> way = std::async(std::launch::async, [this] { return Drag_Trajectory_Origin(arm_, true); });
        controller_.wait_for_request("drag_trajectory_origin");
        controller_.say(done("drag_trajectory_origin", "trajectory_state"));  // does not end it
        controller_.say(message);
        EXPECT_EQ(way.get(), status) << message;
    }
}

TEST_F(Waits, TheSensitivityHasTheShortLimit) {
    m_nOutTime = 2000000000;
    EXPECT_GE(time_to_give_up(100, [this] { return Set_Drag_Teach_Sensitivity(arm_, 50); }), 1000);
}

}  // namespace
