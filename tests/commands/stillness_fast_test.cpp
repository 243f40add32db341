// How the wait of a step ends: by its report, or by an arm at rest.
#include <gtest/gtest.h>

#include <future>

#include "support/arm.h"
#include "support/scaled_time.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/motion.h"

namespace {

using namespace zk::test;

std::string state(const std::vector<int>& joints) {
    std::string array;
    for (const int joint : joints) array += (array.empty() ? "" : ",") + std::to_string(joint);
    return R"({"state":"current_arm_state","arm_state":{"joint":[)" + array +
           R"(],"pose":[0,0,0,0,0,0],"arm_err":0,"sys_err":0}})";
}

class Stillness : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        m_nOutTime = 2000000000;
        m_nOutTime_max = 1;
        set_time_factor(20);
    }

    // Returns the status of a step while the controller reports these states in turn, the last one again and again.
    int step_among(const std::vector<std::string>& states, int arm_mode = 65) {
        const ArmSocket arm = connect_arm(controller_, arm_mode);
        polls_ = 0;
        controller_.answer_with("get_current_arm_state", [&, states](const std::string&) {
            return Pieces{line(states[std::min<size_t>(polls_++, states.size() - 1)])};
        });
        return Joint_Step_Cmd(arm, 1, 20, 5, true);
    }

    ScriptedController controller_;
    size_t polls_ = 0;
};

TEST_F(Stillness, EndsWithAReport) {
    const std::pair<const char*, int> rows[] = {{R"("trajectory_state":true,"device":0,"trajectory_connect":1)", 0},
                                                {R"("trajectory_state":true,"device":1)", 12},
                                                {R"("trajectory_state":false,"device":1)", 12},
                                                {R"("trajectory_state":false)", 1},
                                                {R"("trajectory_state":true)", 9},
                                                {R"("trajectory_state":"true","device":0)", 11}};
    set_time_factor(0);
    const ArmSocket arm = connect_arm(controller_);
    for (const auto& [report, status] : rows) {
        controller_.answer("set_joint_step", std::string(R"({"state":"current_trajectory_state",)") + report + "}");
        EXPECT_EQ(Joint_Step_Cmd(arm, 1, 20, 5, true), status) << report;
        EXPECT_EQ(shared(Move_Cmd[0].count), 0) << report;
    }
}

// The first poll is compared with zero, so an arm at another position counts as moving once.
TEST_F(Stillness, Returns14AfterFivePollsOfAnArmAtRest) {
    EXPECT_EQ(step_among({state({0, 0, 0, 0, 0, 0})}), 14);
    EXPECT_EQ(polls_, 5u);
    EXPECT_EQ(step_among({state({10000, 0, 0, 0, 0, 0})}), 14);
    EXPECT_EQ(polls_, 6u);
}

// Motion begins the limit anew.
TEST_F(Stillness, PollsAfterTheLimitOfTheReport) {
    m_nOutTime_max = 1000;
    for (const auto& [angle, limits] : {std::pair{0, 1}, {10000, 2}}) {
        const int32_t start = Get_Program_Runtime();
        EXPECT_EQ(step_among({state({angle, 0, 0, 0, 0, 0})}), 14);
        EXPECT_GE(Get_Program_Runtime() - start, limits * 1000 + 200) << angle;
    }
}

// Motion begins the count anew, whichever joint moves; a tenth of a degree is none.
TEST_F(Stillness, WaitsForAnArmThatMoves) {
    EXPECT_EQ(step_among({state({0, 0, 0, 0, 0, 99}), state({0, 0, 0, 0, 0, 0}), state({0, 0, 0, 0, 0, 0}),
                          state({0, 0, 0, 0, 0, 0}), state({0, 0, 0, 0, 0, 101}), state({0, 0, 0, 0, 0, 0})}),
              14);
    EXPECT_EQ(polls_, 4u + 2u + 5u);
    EXPECT_EQ(step_among({state({0, 0, 0, 0, 0, 0, 101}), state({0, 0, 0, 0, 0, 0, 0})}, 75), 14);
    EXPECT_EQ(polls_, 2u + 5u);
}

TEST_F(Stillness, ReturnsTheStatusOfTheSeventhFailedPoll) {
    const std::string broken = R"({"state":"current_arm_state"})";
    EXPECT_EQ(step_among({broken}), 9);
    EXPECT_EQ(polls_, 7u);
    EXPECT_EQ(step_among({broken, broken, broken, state({0, 0, 0, 0, 0, 0}), broken}), 9);
    EXPECT_EQ(polls_, 8u) << "they add up";
}

TEST_F(Stillness, ReadsAnEarlierReplyWithoutTakingIt) {
    set_shared(Arm_Current_State_Cmd[0].count, 1);
    EXPECT_EQ(step_among({state({0, 0, 0, 0, 0, 0})}), 14);
    EXPECT_EQ(polls_, 0u);
    EXPECT_EQ(shared(Arm_Current_State_Cmd[0].count), 1);
}

}  // namespace
