// The pending list, and the commands that wait on it until their limit.
#include <gtest/gtest.h>

#include <future>

#include "support/command_case.h"
#include "support/scaled_time.h"
#include "zk/queue.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

struct PendingCommand {
    const char* name;
    int (*call)(ArmSocket);
    const char* wire;
    const char* reply;
    int code;
};

const float kJoints[6] = {1, 2, 3, 4, 5, 6};

const PendingCommand kCommands[] = {
    {"AddWaypoint", [](ArmSocket s) { return Add_Waypoint(s, kJoints, true); },
     "{\n\t\"command\":\t\"add_waypoint\",\n\t\"joint\":\t[1000, 2000, 3000, 4000, 5000, 6000]\n}",
     R"({"command":"add_waypoint","waypoint_state":true})", 73},
    {"StartWaypoint", [](ArmSocket s) { return Start_Waypoint(s, 50, true); },
     "{\n\t\"command\":\t\"start_waypoint\",\n\t\"frequency\":\t50\n}",
     R"({"command":"start_waypoint","waypoint_state":true})", 74},
    {"ClearWaypoint", [](ArmSocket s) { return Clear_Waypoint(s, true); }, "{\n\t\"command\":\t\"clear_waypoint\"\n}",
     R"({"command":"clear_waypoint","waypoint_state":true})", 75},
    {"StopWaypoint", [](ArmSocket s) { return Stop_Waypoint(s, true); }, "{\n\t\"command\":\t\"stop_waypoint\"\n}",
     R"({"command":"stop_waypoint","waypoint_state":true})", 76},
    {"Timer", [](ArmSocket s) { return Timer(s, 10, true); }, "{\n\t\"command\":\t\"timer\",\n\t\"wait_time\":\t10\n}",
     R"({"command":"timer","wait_time":true})", 77}};

int32_t list_length() {
    ZK_Mutex_Lock();
    const int32_t length = m_nSockeRIinfosLen;
    ZK_Mutex_UnLock();
    return length;
}

class PendingCommands : public testing::TestWithParam<PendingCommand> {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        arm_ = connect_arm(controller_);
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};
INSTANTIATE_TEST_SUITE_P(, PendingCommands, testing::ValuesIn(kCommands),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(PendingCommands, ReachTheControllerAndTimeOutWithTheirRecordRemoved) {
    const PendingCommand& row = GetParam();
    int code = 0, flag = 0;
    controller_.answer_with(command_name(row.wire), [&, row](const std::string&) {
        ZK_Mutex_Lock();
        code = m_nSockeRIinfosLen == 1 ? SockeRIinfos[0].key_code : -1;
        ZK_Mutex_UnLock();
        flag = shared(SuspendQueue);
        return Pieces{line(row.reply)};
    });
    const int32_t start = Get_Program_Runtime();
    set_time_factor(50);
    EXPECT_EQ(row.call(arm_), 7);
    EXPECT_GE(Get_Program_Runtime() - start, 3000);
    EXPECT_EQ(controller_.next_request(), row.wire);
    EXPECT_EQ(code, row.code);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(shared(SuspendQueue), 0);
    EXPECT_EQ(list_length(), 0);
}

TEST_P(PendingCommands, GoAheadOfTheQueue) {
    for (int i = 0; i < 400; ++i) Move_Stop_Cmd_NonBlock(arm_);  // eight seconds' worth
    std::future<int> status = std::async(std::launch::async, [&] { return GetParam().call(arm_); });
    EXPECT_EQ(controller_.wait_for_request(command_name(GetParam().wire)), GetParam().wire);
    EXPECT_FALSE(ZK_Queue_Empty(&Socket_Tx_Buffer));
    set_time_factor(100);
    EXPECT_EQ(status.get(), 7);
}

// After a failed write these commands clear the record past the last one, and their own stays.
TEST_P(PendingCommands, AFailedWriteGives6) {
    EXPECT_EQ(GetParam().call(100000), 6);
    EXPECT_EQ(list_length(), 0) << "a list of one is cleared whatever the index";
    EXPECT_EQ(Add_List(SockeRIinfos, 0, 1, 1, 0, 1), 0);
    m_nSockeRIinfosLen = 1;
    EXPECT_EQ(GetParam().call(100000), 6);
    EXPECT_EQ(list_length(), 2);
    EXPECT_EQ(SockeRIinfos[1].key_code, GetParam().code);
}

TEST_P(PendingCommands, The201stRecordGives20) {
    m_nSockeRIinfosLen = 199;
    std::future<int> last = std::async(std::launch::async, [&] { return GetParam().call(arm_); });
    eventually([] { return list_length() == 200; });
    EXPECT_EQ(GetParam().call(arm_), 20);
    EXPECT_EQ(list_length(), 200);
    set_time_factor(100);
    EXPECT_EQ(last.get(), 7);
    EXPECT_EQ(list_length(), 199);
}

TEST(PendingList, HoldsTwoHundredRecords) {
    std::fill_n(SockeRIinfos[199].reply_text, 299, 'x');
    EXPECT_EQ(Add_List(SockeRIinfos, 199, 11, 12, 13, 14), 0);
    EXPECT_STREQ(SockeRIinfos[199].reply_text, "");
    EXPECT_EQ(SockeRIinfos[199].socket, 11);
    EXPECT_EQ(SockeRIinfos[199].key_code, 12);
    EXPECT_EQ(SockeRIinfos[199].arrived, 13);
    EXPECT_EQ(SockeRIinfos[199].in_use, 14);
    EXPECT_EQ(Add_List(SockeRIinfos, 200, 1, 1, 1, 1), 20);
}

class ListOfThree : public testing::Test {
 protected:
    void SetUp() override {
        for (int i = 0; i < 3; ++i) {
            Add_List(list_, i, 10 + i, 20 + i, i, i);
            std::string(3 - i, static_cast<char>('a' + i)).copy(list_[i].reply_text, 3);
        }
    }

    std::string row(int i) const {
        return std::to_string(list_[i].socket) + " " + std::to_string(list_[i].key_code) + " " +
               std::to_string(list_[i].arrived) + " " + std::to_string(list_[i].in_use) + " " + list_[i].reply_text;
    }

    PendingReply list_[4] = {};
    int32_t count_ = 3;
};

TEST_F(ListOfThree, TheLaterRecordsMoveDown) {
    ClearList(list_, &count_, 0);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(row(0), "11 21 1 1 bb");
    EXPECT_EQ(row(1), "12 22 2 2 c");
}

TEST_F(ListOfThree, OfTheLastOnlyTheCountFalls) {
    ClearList(list_, &count_, 2);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(row(1), "11 21 1 1 bb");
    EXPECT_EQ(row(2), "12 22 2 2 c");
}

TEST_F(ListOfThree, AnIndexOutsideChangesNothing) {
    for (const int index : {-1, 3, 200}) ClearList(list_, &count_, index);
    EXPECT_EQ(count_, 3);
    EXPECT_EQ(row(0), "10 20 0 0 aaa");
    count_ = 0;
    ClearList(list_, &count_, 0);
    EXPECT_EQ(count_, 0);
    EXPECT_EQ(row(0), "10 20 0 0 aaa");
    count_ = -1;
    ClearList(list_, &count_, 0);
    EXPECT_EQ(count_, -1);
}

TEST_F(ListOfThree, AListOfOneIsClearedWhateverTheIndex) {
    list_[0].in_use = 7;
    count_ = 1;
    ClearList(list_, &count_, 100);
    EXPECT_EQ(count_, 0);
    EXPECT_EQ(row(0), "0 0 0 1 ");
}

}  // namespace
