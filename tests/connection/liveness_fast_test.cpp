// The probe of a connection.
#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/scaled_time.h"
#include "zk/replies/joint_configuration.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

const char* const kSpeeds = R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6]})";

class Liveness : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        arm_ = connect_arm(controller_);
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST(LivenessBeforeInit, ReturnsThatNothingRuns) {
    EXPECT_EQ(Arm_Socket_State(0), 5);
    EXPECT_EQ(Arm_Socket_State(-1), 5);
    EXPECT_EQ(Arm_Socket_State(100), 2);
}

TEST_F(Liveness, TheStatusIsThatOfTheReply) {
    controller_.answer("get_joint_max_speed", kSpeeds);
    EXPECT_EQ(Arm_Socket_State(arm_), 0);
    EXPECT_EQ(shared(Joint_Max_Speed_Cmd[0].count), 0);
    controller_.answer("get_joint_max_speed", R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6,7]})");
    set_shared(IsSendFile, 1);
    EXPECT_EQ(Arm_Socket_State_Block(arm_), 10) << "has no guard";
    set_shared(IsSendFile, 0);
}

TEST(LivenessGuards, TheProbeSuspendsTheQueueWhileItWaits) {
    set_time_factor(0);
    run({CALL(Arm_Socket_State, (s)), "get_joint_max_speed", kSpeeds});
}

TEST_F(Liveness, SilenceReturns5AfterHalfASecond) {
    const int32_t start = Get_Program_Runtime();
    set_time_factor(20);
    EXPECT_EQ(Arm_Socket_State(arm_), 5);
    const int32_t passed = Get_Program_Runtime() - start;
    EXPECT_GE(passed, 500);
    EXPECT_LT(passed, 3000) << "the limit of other commands";
}

TEST_F(Liveness, AnOldReplySatisfiesIt) {
    controller_.say(kSpeeds);
    eventually([] { return shared(Joint_Max_Speed_Cmd[0].count) == 1; });
    EXPECT_EQ(Arm_Socket_State(arm_), 0);
}

TEST_F(Liveness, TheProbeIsSentAheadOfTheQueue) {
    set_shared(IsSendFile, 1);  // holds the queue
    Move_Stop_Cmd_NonBlock(arm_);
    EXPECT_EQ(Arm_Socket_State_nBlock(arm_), 0);
    EXPECT_EQ(controller_.next_request(), "{\n\t\"command\":\t\"get_joint_max_speed\"\n}");
    EXPECT_EQ(Arm_Socket_State(arm_), 18);
    set_shared(IsSendFile, 0);
    EXPECT_EQ(controller_.next_request(), "{\n\t\"command\":\t\"set_arm_stop\"\n}");
}

TEST_F(Liveness, AFailedWriteReturns6) {
    EXPECT_EQ(Arm_Socket_State_nBlock(100000), 6);
    EXPECT_EQ(Init_Socket_Joint(65, 100000), 0);
    EXPECT_EQ(Arm_Socket_State(100000), 6);
    EXPECT_EQ(Arm_Socket_State(99999), 5) << "not in the table";
}

}  // namespace
