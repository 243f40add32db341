// The waits for gripper and hand: their limits and the reports that end them.
#include <gtest/gtest.h>

#include <future>

#include "commands/limits.h"
#include "commands/wire.h"
#include "support/command_case.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/motion.h"

namespace {

using namespace zk::test;

const int32_t kFingers[6] = {1, 2, 3, 4, 5, 6};

class DeviceWaits : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 2000000000);
        set_shared(m_nOutTime_max, 2000000000);
        arm_ = connect_arm(controller_);
        controller_.answer("set_gripper_pick", done("set_gripper_pick", "state"));
        for (const char* command : {"set_hand_posture", "set_hand_seq"}) controller_.answer(command, done(command));
    }

    int pick(int timeout) { return Set_Gripper_Pick(arm_, 500, 200, true, timeout); }

    // A report that came before the request.
    void leave_report(int device) {
        controller_.say(report(device));
        eventually([] { return shared(Move_Cmd[0].count) == 1; });
    }

    // The status of a call, when a report comes after its acknowledgement.
    template <class Function>
    int status_after(int device, bool arrived, const char* command, Function call) {
        std::future<int> status = std::async(std::launch::async, call);
        controller_.wait_for_request(command);
        controller_.say(report(device, arrived));
        return status.get();
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(DeviceWaits, TheGripperEndsWithTheNextReport) {
    const auto call = [this] { return pick(60); };
    EXPECT_EQ(status_after(1, true, "set_gripper_pick", call), 0);
    EXPECT_EQ(status_after(1, false, "set_gripper_pick", call), 1);
    EXPECT_EQ(status_after(2, true, "set_gripper_pick", call), 12);
    EXPECT_EQ(status_after(0, true, "set_gripper_pick", call), 12);
    leave_report(0);
    EXPECT_EQ(status_after(1, true, "set_gripper_pick", call), 0) << "an old report is not taken";
    EXPECT_EQ(shared(Move_Cmd[0].count), 0);
    EXPECT_EQ(shared(Set_Gripper_Release_Cmd[0].count), 0);
}

TEST_F(DeviceWaits, TheGripperHasTheLimitOfItsArgument) {
    EXPECT_GE(time_to_give_up(100, [this] { return pick(30); }), 30000);
    controller_.ignore("set_gripper_pick");
    EXPECT_EQ(pick(0), 7) << "at the first look";
    EXPECT_EQ(pick(-1), 7);
    set_shared(m_nOutTime_max, 5000);
    EXPECT_GE(time_to_give_up(20, [this] { return Set_Gripper_Pick(arm_, 500, 200, false, 1); }), 5000);
}

TEST_F(DeviceWaits, TheHandIgnoresOtherReports) {
    const auto posture = [this] { return Set_Hand_Posture(arm_, 1, true); };
    const auto sequence = [this] { return Set_Hand_Seq(arm_, 1, true); };
    EXPECT_EQ(status_after(2, true, "set_hand_posture", posture), 0);
    EXPECT_EQ(status_after(2, true, "set_hand_seq", sequence), 0);
    leave_report(2);
    EXPECT_EQ(posture(), 0) << "an old report counts";

    set_shared(m_nOutTime, 100);
    set_shared(m_nOutTime_max, 1000);
    for (const int device : {0, 1}) {
        leave_report(device);
        EXPECT_GE(time_to_give_up(200, posture), 30100) << device;
        leave_report(device);
        EXPECT_GE(time_to_give_up(200, sequence), 31000) << device;
    }
}

TEST_F(DeviceWaits, SetPointsOfTheHandHaveAShortLimit) {
    const auto angle = [this] { return Set_Hand_Follow_Angle(arm_, kFingers, true); };
    const auto position = [this] { return Set_Hand_Follow_Pos(arm_, kFingers, true); };
    for (const auto& [state, status] : {std::pair{"true", 0}, {"false", 1}, {"7", 11}}) {
        for (const char* command : {"hand_follow_angle", "hand_follow_pos"}) {
            controller_.answer(command, std::string(R"({"command":")") + command + R"(","set_state":)" + state + "}");
        }
        EXPECT_EQ(angle(), status);
        EXPECT_EQ(position(), status);
    }
    EXPECT_EQ(controller_.next_request(),
              formatted(R"({"command": "hand_follow_angle", "hand_angle": [1, 2, 3, 4, 5, 6]})"));
    EXPECT_EQ(controller_.next_request(),
              formatted(R"({"command": "hand_follow_pos", "hand_pos": [1, 2, 3, 4, 5, 6]})"));
    for (const char* command : {"hand_follow_angle", "hand_follow_pos"}) controller_.ignore(command);
    set_shared(Set_Hand_Follow_Pos_Cmd[0].count, 1);  // of a reply that came too late
    for (const std::function<int()>& call : {std::function<int()>(angle), std::function<int()>(position)}) {
        const int32_t taken = time_to_give_up(5, call);
        EXPECT_GE(taken, 100);
        EXPECT_LT(taken, 1000000) << "the limit of other commands";
    }
}

}  // namespace
