// How the waits of a move end: the one for its acknowledgement, and the one for its arrival.
#include "zk/replies/motion.h"

#include <gtest/gtest.h>

#include <future>

#include "support/arm.h"
#include "support/scaled_time.h"
#include "zk/connection.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

const char* const kAccepted = R"({"command":"movej","receive_state":true})";
const float kJoints[6] = {1, 2, 3, 4, 5, 6};
const char* const kArrived =
    R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,"trajectory_connect":0})";

std::string trajectory(const std::string& type) {
    return R"({"state":"arm_current_trajectory","type":")" + type + R"(","data":[0,0,0,0,0,0]})";
}

class Arrival : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        arm_ = connect_arm(controller_);
        set_shared(g_is_robot_type_i, uint8_t{1});
        controller_.answer("movej", kAccepted);
    }

    // Polls run fast, and no reply is too late.
    void let_only_the_polls_run_fast() {
        m_nOutTime = 2000000000;
        set_time_factor(20);
    }

    int move_nonblock() { return Movej_Cmd_NonBlock(arm_, kJoints, 20, 0, 0); }
    int move(int connect = 0) { return Movej_Cmd(arm_, kJoints, 20, 0, connect, true); }
    std::future<int> start_move(int connect = 0) {
        return std::async(std::launch::async, [this, connect] { return move(connect); });
    }
    void wait_for_poll() { controller_.wait_for_request("get_arm_current_trajectory"); }

    // Says a report that does not end the move, and returns when the move has read it: the answer to the next poll
    // comes after the report, and the poll after that goes out after both.
    void say_in_vain(const char* report) {
        controller_.say(report);
        controller_.forget_requests();
        wait_for_poll();
        wait_for_poll();
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(Arrival, WaitsAHundredMillisecondsForTheAcknowledgement) {
    controller_.ignore("movej");
    const int32_t start = Get_Program_Runtime();
    set_time_factor(5);
    EXPECT_EQ(move_nonblock(), 7);
    EXPECT_GE(Get_Program_Runtime() - start, 100);
    EXPECT_LT(Get_Program_Runtime() - start, 3000) << "the limit of other commands";
}

TEST_F(Arrival, DoesNotWaitForTheAcknowledgementOfAnUnknownArm) {
    set_shared(g_is_robot_type_i, uint8_t{0});
    controller_.ignore("movej");
    EXPECT_EQ(move_nonblock(), 0);
    EXPECT_NE(controller_.wait_for_request("movej"), "");
}

TEST_F(Arrival, WaitsForTheArrivalOfAJoinedMoveOfAnUnknownArm) {
    set_shared(g_is_robot_type_i, uint8_t{0});
    controller_.answer("get_arm_current_trajectory", trajectory("movej"));
    std::future<int> status = start_move(1);
    wait_for_poll();
    wait_for_poll();
    controller_.say(kArrived);
    EXPECT_EQ(status.get(), 0);
}

TEST_F(Arrival, IgnoresTheReportOfAnEarlierMove) {
    controller_.say(R"({"state":"current_trajectory_state","trajectory_state":false,"device":0})");
    eventually([] { return shared(Move_Cmd[0].count) == 1; });
    controller_.answer("get_arm_current_trajectory", trajectory("movej"));
    std::future<int> status = start_move();
    wait_for_poll();
    controller_.say(kArrived);
    EXPECT_EQ(status.get(), 0);
}

TEST_F(Arrival, EndsWithItsOwnReportAndIgnoresOthers) {
    controller_.answer("get_arm_current_trajectory", trajectory("movej"));
    const std::string report = R"({"state":"current_trajectory_state","trajectory_state":)";
    for (const auto& [last, expected_status] :
         {std::pair{std::string(kArrived), 0}, {report + "false}", 1}, {report + R"(true,"devi)", 9}}) {
        std::future<int> status = start_move();
        wait_for_poll();
        for (const char* other :
             {R"(true,"device":1,"trajectory_connect":0})", R"(true,"device":0,"trajectory_connect":1})",
              R"(true,"device":0,"trajectory_connect":"0"})", R"(true,"device":0})"}) {
            say_in_vain((report + other).c_str());
            EXPECT_EQ(status.wait_for(std::chrono::seconds(0)), std::future_status::timeout) << other;
        }
        controller_.say(last);
        EXPECT_EQ(status.get(), expected_status);
        EXPECT_EQ(shared(Move_Cmd[0].count), 0);
    }
}

TEST_F(Arrival, ReturnsOneAfterTheReportOfARefusal) {
    controller_.answer_bytes("movej",
                             {line(R"({"command":"movej","receive_state":false})") +
                              line(R"({"state":"current_trajectory_state","trajectory_state":false,"device":0})")});
    controller_.answer("get_arm_current_trajectory", trajectory("none"));
    EXPECT_EQ(move(), 1);
}

struct MoveType {
    const char* name;
    int (*move)(ArmSocket arm);
};

const MoveType kMoveTypes[] = {{"movej", [](ArmSocket s) { return Movej_Cmd_Block(s, kJoints, 20, 0, 0); }},
                               {"movel", [](ArmSocket s) { return Movel_Cmd_Block(s, {}, 20, 0, 0); }},
                               {"movec", [](ArmSocket s) { return Movec_Cmd_Block(s, {}, {}, 20, 0, 0, 0); }},
                               {"moves", [](ArmSocket s) { return Moves_Cmd_Block(s, {}, 20, 0, 0); }},
                               {"movej", [](ArmSocket s) { return Movej_P_Cmd_Block(s, {}, 20, 0, 0); }}};

TEST_F(Arrival, Returns14WhenTheArmMovedAndIsIdle) {
    let_only_the_polls_run_fast();
    for (const MoveType& type : kMoveTypes) {
        int polls = 0;
        controller_.answer_with("get_arm_current_trajectory", [&](const std::string&) {
            return Pieces{line(trajectory(++polls == 2 ? type.name : "none"))};
        });
        EXPECT_EQ(type.move(arm_), 14) << type.name;
        EXPECT_EQ(polls, 3) << type.name;
    }
    EXPECT_EQ(shared(SuspendQueue), 0);
}

TEST_F(Arrival, Returns14WhenTheArmIsIdleInFiftyPolls) {
    let_only_the_polls_run_fast();
    int polls = 0;
    controller_.answer_with("get_arm_current_trajectory", [&](const std::string&) {
        ++polls;
        return Pieces{line(trajectory("none"))};
    });
    EXPECT_EQ(move(), 14);
    EXPECT_EQ(polls, 50);
}

TEST_F(Arrival, IgnoresATrajectoryOfAnotherType) {
    let_only_the_polls_run_fast();
    int polls = 0;
    controller_.answer_with("get_arm_current_trajectory", [&](const std::string&) {
        return Pieces{line(trajectory(++polls <= 5 ? "movel" : "none"))};
    });
    EXPECT_EQ(move(), 14);
    EXPECT_EQ(polls, 55);
}

TEST_F(Arrival, ReturnsTheStatusOfTheSixthFailedPoll) {
    set_time_factor(200);
    EXPECT_EQ(move(), 7);
    for (int i = 0; i < 6; ++i) wait_for_poll();
}

TEST_F(Arrival, CountsFailedPollsThatAreNotInARow) {
    let_only_the_polls_run_fast();
    int polls = 0;
    controller_.answer_with("get_arm_current_trajectory", [&](const std::string&) {
        return Pieces{line(++polls % 2 ? R"({"state":"arm_current_trajectory","type":"movej"})" : trajectory("movej"))};
    });
    EXPECT_EQ(move(), 9);
    EXPECT_EQ(polls, 11);
}

TEST_F(Arrival, CountsAPollDuringAFileTransferAsFailed) {
    controller_.answer("get_arm_current_trajectory", trajectory("movej"));
    std::future<int> status = start_move();
    wait_for_poll();
    set_shared(IsSendFile, 1);
    EXPECT_EQ(status.get(), 18);
}

}  // namespace
