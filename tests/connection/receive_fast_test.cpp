// A peer that falls silent in the middle of a message.
#include <gtest/gtest.h>

#include "support/arm.h"
#include "support/scaled_time.h"
#include "zk/replies/trajectory.h"

namespace {

using namespace zk::test;

class SilentPeer : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, ReportLog::callback);
        dead_ = connect_arm(controller_);
        live_ = connect_arm(controller_);
        controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    }

    // Lets the silence last for its limit. The other arm works before and after.
    void outlast_the_silence() {
        EXPECT_EQ(Move_Stop_Cmd_Block(live_), 0);
        const int32_t start = Get_Program_Runtime();
        set_time_factor(200);
        eventually([&] { return Get_Program_Runtime() - start > 4000; });
        set_time_factor(0);
        for (int passes = 0; passes < 2; ++passes) EXPECT_EQ(Move_Stop_Cmd_Block(live_), 0);
    }

    ReportLog log_;
    ScriptedController controller_;
    ArmSocket dead_ = 0, live_ = 0;
};

TEST_F(SilentPeer, LosesWhatItSentAndTheOtherArmsWork) {
    testing::internal::CaptureStderr();
    const std::string message = report_message(1);
    controller_.say_bytes({report_message(2) + message.substr(0, 30)}, 0);
    // The whole message before the cut one goes with it: nothing of a visit is cut before its last message is whole.
    outlast_the_silence();
    controller_.say_bytes({report_message(3)}, 0);
    EXPECT_EQ(log_.results(1), std::vector<int>{3});
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_NE(said.find("socket " + std::to_string(dead_)), std::string::npos) << said;
}

// What is too long is dropped without making the other arms wait: up to its line feed, or until a silence.
TEST_F(SilentPeer, AStreamWithoutEndIsDroppedWhileTheOtherArmsWork) {
    testing::internal::CaptureStderr();
    set_time_factor(0);
    controller_.say_bytes({std::string(50000, 'x')}, 0);
    EXPECT_EQ(Move_Stop_Cmd_Block(live_), 0);
    controller_.say_bytes({std::string(50000, 'x') + line("") + report_message(2)}, 0);
    EXPECT_EQ(log_.results(1), std::vector<int>{2});

    controller_.say_bytes({std::string(50000, 'x')}, 0);
    EXPECT_EQ(Move_Stop_Cmd_Block(live_), 0);
    outlast_the_silence();
    controller_.say_bytes({report_message(3)}, 0);
    EXPECT_EQ(log_.results(2), (std::vector<int>{2, 3}));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;
}

TEST_F(SilentPeer, ThatContinuesInTimeLosesNothing) {
    const std::string message = report_message(1);
    for (int i = 0; i < 4; ++i) {
        controller_.say_bytes({message.substr(i * 5, 5)}, 0);
        const int32_t start = Get_Program_Runtime();
        set_time_factor(50);
        eventually([&] { return Get_Program_Runtime() - start > 1000; });
        set_time_factor(1);
    }
    controller_.say_bytes({message.substr(20)}, 0);
    EXPECT_EQ(log_.results(1), std::vector<int>{1});
}

TEST_F(SilentPeer, IsLeftAloneWhenItsConnectionCloses) {
    testing::internal::CaptureStderr();
    controller_.say_bytes({"half a message"}, 0);
    Arm_Socket_Close(dead_);
    EXPECT_EQ(Get_Socket_Idx(dead_), -1);
    EXPECT_EQ(Init_Socket_Joint(65, live_), 0);  // the close has forgotten the later connection
    EXPECT_EQ(Move_Stop_Cmd_Block(live_), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
