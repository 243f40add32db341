// The forms of waiting, with a reply that is early, late, double, broken or missing.
#include <gtest/gtest.h>

#include <future>

#include "support/arm.h"
#include "support/scaled_time.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

std::string speeds(int each) {
    std::string array;
    for (int i = 0; i < 6; ++i) array += (i ? "," : "") + std::to_string(each);
    return R"({"state":"joint_max_speed","joint_speed":[)" + array + "]}";
}

class Forms : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        arm_ = connect_arm(controller_);
    }

    // Sends a message and waits until the next one has been dispatched.
    void say_and_wait(const std::string& message, int connection = 0) {
        const int32_t before = shared(Clear_All_Trajectory_Cmd[connection].count);
        EXPECT_EQ(before, 0);
        controller_.say(message, connection);
        controller_.say(R"({"command":"set_arm_delete_trajectory","arm_delete_trajectory":true})", connection);
        eventually([&] { return shared(Clear_All_Trajectory_Cmd[connection].count) == 1; });
        set_shared(Clear_All_Trajectory_Cmd[connection].count, 0);
    }

    int speed(float& value) {
        float out[7] = {};
        const int status = Get_Joint_Speed_Block(arm_, out);
        value = out[5];
        return status;
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(Forms, ABlockingFormTimesOutAfterThreeSeconds) {
    const int32_t start = Get_Program_Runtime();
    set_time_factor(100);
    EXPECT_EQ(Move_Stop_Cmd_Block(arm_), 7);
    EXPECT_GE(Get_Program_Runtime() - start, 3000);
}

TEST_F(Forms, AnUnknownSocketReturns5AndNothingIsQueued) {
    set_shared(IsSendFile, 1);  // holds the queue
    for (const ArmSocket unknown : {arm_ + 1, 0, -1}) EXPECT_EQ(Move_Stop_Cmd_Block(unknown), 5) << unknown;
    EXPECT_TRUE(ZK_Queue_Empty(&Socket_Tx_Buffer));
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(arm_ + 1), 0) << "forms that only send do not check the socket";
}

// The pause comes before the check of the socket.
TEST_F(Forms, SomeCommandsSleepFirst) {
    const auto sleeps = [](auto call) {
        const int64_t before = slept();
        EXPECT_EQ(call(), 5);
        return slept() - before;
    };
    EXPECT_EQ(sleeps([] { return Arm_Socket_State(0); }), 20);
    EXPECT_EQ(sleeps([] { return Expand_Set_Pos(0, 1, 2, true); }), 20);
    EXPECT_EQ(sleeps([] { return Set_Joint_Err_Clear(0, 1, true); }), 20);
    EXPECT_EQ(sleeps([] { return Set_Joint_Zero_Pos(0, 1, true); }), 20);
    EXPECT_EQ(sleeps([] { return Clear_Force_Data(0, true); }), 20);
    EXPECT_EQ(sleeps([] { return Set_Arm_Run_Mode(0, 1); }), 2);
    int32_t total;
    EXPECT_EQ(sleeps([&] { return Save_Trajectory(0, "a/b", &total); }), 2);
    EXPECT_EQ(sleeps([] { return Move_Stop_Cmd(0, true); }), 0);
}

TEST_F(Forms, AGentleStopTakesAnOldReplyAndClearsTheOtherStops) {
    say_and_wait(R"({"command":"set_arm_slow_stop","arm_slow_stop":false})");
    say_and_wait(R"({"command":"set_arm_stop","arm_stop":true})");
    EXPECT_EQ(Move_Slow_Stop_Cmd_Block(arm_), 1);
    EXPECT_EQ(shared(Set_Arm_Stop_Cmd[0].count), 0);
    EXPECT_EQ(shared(Set_Arm_Slow_Stop_Cmd[0].count), 0);
}

// A query that timed out leaves its reply to the next one, and so on: the pairing is shifted by one.
TEST_F(Forms, ALateReplyShiftsThePairingOfAQuery) {
    float value = 0;
    set_time_factor(100);
    EXPECT_EQ(speed(value), 7);
    EXPECT_EQ(value, 0);
    set_time_factor(0);
    controller_.wait_for_request("get_joint_max_speed");
    say_and_wait(speeds(1000));
    EXPECT_EQ(shared(Joint_Max_Speed_Cmd[0].count), 1);
    EXPECT_EQ(speed(value), 0);
    EXPECT_FLOAT_EQ(value, 6.0f) << "the older reply, at once";
    controller_.wait_for_request("get_joint_max_speed");
    say_and_wait(speeds(2000));
    EXPECT_EQ(speed(value), 0);
    EXPECT_FLOAT_EQ(value, 12.0f);
}

TEST_F(Forms, RepliesQueueUpInTheCountAndTheLastPayloadIsTheirs) {
    say_and_wait(speeds(1000));
    say_and_wait(speeds(3000));
    EXPECT_EQ(shared(Joint_Max_Speed_Cmd[0].count), 2);
    for (int left = 1; left >= 0; --left) {
        float value = 0;
        EXPECT_EQ(speed(value), 0);
        EXPECT_FLOAT_EQ(value, 18.0f);
        EXPECT_EQ(shared(Joint_Max_Speed_Cmd[0].count), left);
    }
}

TEST_F(Forms, APayloadIsHandedOverWithABadStatus) {
    say_and_wait(speeds(1000));
    float value = 0;
    EXPECT_EQ(speed(value), 0);
    controller_.answer("get_joint_max_speed", R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6,7]})");
    EXPECT_EQ(speed(value), 10);
    EXPECT_FLOAT_EQ(value, 6.0f) << "what the mailbox held";
}

TEST_F(Forms, EachConnectionGetsItsOwnReply) {
    const ArmSocket second = connect_arm(controller_);
    controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    controller_.answer("set_arm_pause", R"({"command":"set_arm_pause","arm_pause":false})");
    std::future<int> stop = std::async(std::launch::async, [&] { return Move_Stop_Cmd_Block(second); });
    EXPECT_EQ(Move_Pause_Cmd_Block(arm_), 1);
    EXPECT_EQ(stop.get(), 0);
    EXPECT_NE(controller_.wait_for_request("set_arm_stop", 1), "");
    EXPECT_NE(controller_.wait_for_request("set_arm_pause", 0), "");
}

}  // namespace
