// How the stream of a connection becomes messages.
#include <gtest/gtest.h>

#include <random>

#include "support/arm.h"
#include "zk/programs.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/motion.h"
#include "zk/replies/trajectory.h"

namespace {

using namespace zk::test;

class Receive : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, ReportLog::callback);
        arm_ = connect_arm(controller_);
    }

    ReportLog log_;
    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

using Results = std::vector<int>;

TEST_F(Receive, ACutInsideTheLineEndIsJoined) {
    const std::string message = report_message(7);
    controller_.say_bytes({message.substr(0, message.size() - 1), message.substr(message.size() - 1)});
    EXPECT_EQ(log_.results(1), Results{7});
}

// What an earlier, longer message left in the buffer must never join a later one, wherever that one ends.
TEST_F(Receive, NothingOfALongMessageStays) {
    Results expected;
    for (const size_t size : {5000, 2048, 5000, 2047, 9000, 2049, 4096, 10239, 2048, 100}) {
        expected.push_back(static_cast<int>(size));
        controller_.say_bytes({report_message(static_cast<int>(size), size)});
    }
    EXPECT_EQ(log_.results(expected.size()), expected);
}

TEST_F(Receive, AReadOfSixBytesIsDroppedAndOneOfSevenIsNot) {
    controller_.say_bytes({"movej\n"});
    controller_.say_bytes({"popup\r\n"});
    eventually([] { return shared(Set_Popup_Cmd[0].count) == 1; });
    EXPECT_EQ(shared(Set_Popup_Cmd[0].result), 9);
    EXPECT_EQ(shared(Move_Receive_Cmd[0].count), 0);
}

TEST_F(Receive, ABareLineFeedCutsTheMessageShort) {
    const std::string message = report_message(1);
    controller_.say_bytes({message.substr(0, message.size() - 2) + "\n"});
    controller_.say_bytes({report_message(2)});
    EXPECT_EQ(log_.results(2), (Results{9, 2}));
}

TEST_F(Receive, ABrokenMessageDoesNotHarmTheNext) {
    controller_.say_bytes({"{\"state\":\"joint_state\",\"arm_err\":1\r\n" + report_message(2) +
                           "joint_state is not JSON\r\n" + report_message(3)});
    EXPECT_EQ(log_.results(4), (Results{9, 2, 9, 3}));
}

TEST_F(Receive, AZeroByteEndsARead) {
    controller_.say_bytes({report_message(1) + std::string(1, '\0') + report_message(2)});
    controller_.say_bytes({report_message(3)});
    EXPECT_EQ(log_.results(2), (Results{1, 3}));
}

TEST_F(Receive, LineEndsAloneAreNoMessages) {
    controller_.say_bytes({"\r\n\r\n\r\n\r\n\r\n"});
    controller_.say_bytes({"\n\n\n\n\n\n\n\n"});
    controller_.say_bytes({report_message(1) + "\r\n\r\n" + report_message(2) + "\n"});
    EXPECT_EQ(log_.results(2), (Results{1, 2}));
}

TEST_F(Receive, AMessageThatIsTooLongTakesNoOtherWithIt) {
    testing::internal::CaptureStderr();
    Results expected;
    int number = 0;
    for (const size_t size : {10240, 10241, 11000, 12287, 12288, 14336, 20480, 40000}) {
        controller_.say_bytes({report_message(number) + report_message(99, size) + report_message(number + 1) +
                               report_message(number + 2)});
        expected.insert(expected.end(), {number, number + 1, number + 2});
        number += 3;
    }
    EXPECT_EQ(log_.results(expected.size()), expected);

    controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    EXPECT_EQ(Move_Stop_Cmd_Block(arm_), 0);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 8) << said;
    EXPECT_NE(said.find("10240"), std::string::npos) << said;
}

// Messages of every length, cut anywhere: each arrives once and in order, and the ones that are too long do not arrive.
TEST_F(Receive, AStreamCutAnywhereArrivesAsItsMessages) {
    std::mt19937 random(20);
    const auto below = [&](size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random); };
    std::string stream;
    Results expected;
    for (int i = 0; i < 150; ++i) {
        const size_t size = 60 + below(i % 10 == 9 ? 14000 : i % 5 == 4 ? 5000 : 300);
        stream += report_message(i, size);
        if (size < 10240) expected.push_back(i);
    }
    testing::internal::CaptureStderr();
    Pieces pieces;
    for (size_t at = 0; at < stream.size();) {
        const size_t size = 1 + below(below(2) ? 3000 : 40000);
        pieces.push_back(stream.substr(at, size));
        at += size;
    }
    controller_.say_bytes(pieces);
    const Results results = log_.results(expected.size());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(results, expected);
}

TEST_F(Receive, APeerThatClosesEndsItsMessage) {
    const std::string message = report_message(5);
    controller_.say_bytes({message.substr(0, message.size() - 2) + "??"});
    controller_.close();
    EXPECT_EQ(log_.results(1), Results{5});
}

TEST_F(Receive, APeerThatIsGoneLeavesTheOthersWorking) {
    const ArmSocket other = connect_arm(controller_);
    controller_.say_bytes({report_message(1).substr(0, 20)}, 0);
    controller_.close(0);
    controller_.say_bytes({report_message(2)}, 1);
    const std::vector<ArmMotionReport> reports = log_.wait_for(1);
    EXPECT_EQ(reports.back().result, 2);
    EXPECT_EQ(reports.back().socket, other);
}

}  // namespace
