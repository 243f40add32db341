// The pending list, and the commands that wait on it until their limit.
#include <gtest/gtest.h>

#include <future>

#include "support/arm.h"
#include "support/scaled_time.h"
#include "zk/queue.h"
#include "zk/replies/pending.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

struct PendingCommand {
    const char* request;
    int (*call)(ArmSocket);
    int code;
};

const float kJoints[6] = {1, 2, 3, 4, 5, 6};

const PendingCommand kCommands[] = {
    {"add_waypoint", [](ArmSocket s) { return Add_Waypoint(s, kJoints, true); }, ZK_KEY_ADD_WAYPOINT},
    {"start_waypoint", [](ArmSocket s) { return Start_Waypoint(s, 50, true); }, ZK_KEY_START_WAYPOINT},
    {"clear_waypoint", [](ArmSocket s) { return Clear_Waypoint(s, true); }, ZK_KEY_CLEAR_WAYPOINT},
    {"stop_waypoint", [](ArmSocket s) { return Stop_Waypoint(s, true); }, ZK_KEY_STOP_WAYPOINT},
    {"timer", [](ArmSocket s) { return Timer(s, 10, true); }, ZK_KEY_TIMER}};

int32_t list_length() {
    ZK_Mutex_Lock();
    const int32_t length = m_nSockeRIinfosLen;
    ZK_Mutex_UnLock();
    return length;
}

class PendingCommands : public ConnectedArm {};

TEST_F(PendingCommands, KeepTheirRecordUntilTheyTimeOut) {
    for (const auto& [request, call, code] : kCommands) {
        int seen = 0;
        controller_.answer_with(request, [&](const std::string&) {
            ZK_Mutex_Lock();
            seen = m_nSockeRIinfosLen == 1 ? SockeRIinfos[0].key_code : -1;
            ZK_Mutex_UnLock();
            return Pieces{};
        });
        const int32_t start = Get_Program_Runtime();
        set_time_factor(50);
        EXPECT_EQ(call(arm_), 7) << request;
        EXPECT_GE(Get_Program_Runtime() - start, 3000) << request;
        EXPECT_EQ(seen, code) << request;
        EXPECT_EQ(list_length(), 0) << request;
    }
}

// After a failed write these commands clear the record past the last one, and their own stays.
TEST_F(PendingCommands, AFailedWriteReturns6) {
    for (const auto& [request, call, code] : kCommands) {
        m_nSockeRIinfosLen = 0;
        EXPECT_EQ(call(100000), 6) << request;
        EXPECT_EQ(list_length(), 0) << "a list of one is cleared whatever the index";
        EXPECT_EQ(Add_List(SockeRIinfos, 0, 1, 1, 0, 1), 0);
        m_nSockeRIinfosLen = 1;
        EXPECT_EQ(call(100000), 6) << request;
        EXPECT_EQ(list_length(), 2) << request;
        EXPECT_EQ(SockeRIinfos[1].key_code, code) << request;
    }
}

TEST_F(PendingCommands, The201stRecordReturns20) {
    m_nSockeRIinfosLen = 199;
    std::future<int> last = std::async(std::launch::async, [&] { return Timer(arm_, 10, true); });
    eventually([] { return list_length() == 200; });
    EXPECT_EQ(Timer(arm_, 10, true), 20);
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
    ClearList(list_, &count_, 2);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(row(1), "11 21 1 1 bb");
    EXPECT_EQ(row(2), "12 22 2 2 c") << "nothing is below it";
    count_ = 3;
    ClearList(list_, &count_, 0);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(row(0), "11 21 1 1 bb");
    EXPECT_EQ(row(1), "12 22 2 2 c");
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
