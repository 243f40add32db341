// The transmit queue.
#include "zk/queue.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/arm.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

TxFrame numbered(int number) {
    TxFrame frame{};
    frame.length = static_cast<int32_t>(std::to_string(number).copy(frame.data, sizeof frame.data));
    frame.socket = number;
    return frame;
}

void expect_next(TxQueue& queue, int number) {
    TxFrame frame{};
    ASSERT_EQ(ZK_Dequeue(&queue, &frame), 1);
    EXPECT_EQ(frame.socket, number);
    EXPECT_EQ(std::string(frame.data, frame.length), std::to_string(number));
}

class Ring : public testing::Test {
 protected:
    void TearDown() override { ZK_Queue_Deleate(&queue_); }
    void enqueue(int number) {
        TxFrame frame = numbered(number);
        EXPECT_EQ(ZK_Enqueu(&queue_, &frame), 1);
    }

    TxQueue queue_{};
};

TEST_F(Ring, HoldsOneFrameLessThanItsCapacity) {
    ASSERT_EQ(ZK_Queue_Create(&queue_, 600), 1);
    EXPECT_EQ(ZK_Queue_Empty(&queue_), 1);
    for (int i = 0; i < 599; ++i) enqueue(i);
    EXPECT_EQ(ZK_Queue_Full(&queue_), 1);
    TxFrame frame = numbered(599);
    EXPECT_EQ(ZK_Enqueu(&queue_, &frame), 0);
    for (int i = 0; i < 599; ++i) expect_next(queue_, i);
    EXPECT_EQ(ZK_Dequeue(&queue_, &frame), 0);
}

TEST_F(Ring, KeepsTheOrderAcrossItsEnd) {
    ASSERT_EQ(ZK_Queue_Create(&queue_, 4), 1);
    int in = 0, out = 0;
    for (int round = 0; round < 10; ++round) {
        while (!ZK_Queue_Full(&queue_)) enqueue(in++);
        for (int i = 0; i < 2; ++i) expect_next(queue_, out++);
    }
    EXPECT_EQ(in - out, 1);
}

TEST_F(Ring, ClearDropsAllFrames) {
    ASSERT_EQ(ZK_Queue_Create(&queue_, 4), 1);
    enqueue(1);
    enqueue(2);
    ZK_Queue_Clear(&queue_);
    EXPECT_EQ(ZK_Queue_Empty(&queue_), 1);
    EXPECT_EQ(std::string(queue_.base[0].data, 1), "1") << "the elements stay as they are";
    enqueue(3);
    expect_next(queue_, 3);
}

TEST_F(Ring, IsFullAndEmptyWithoutCapacity) {
    TxFrame frame = numbered(1);
    for (const int capacity : {0, -5}) {
        EXPECT_EQ(ZK_Queue_Create(&queue_, capacity), 1);
        EXPECT_EQ(queue_.capacity, capacity);
        EXPECT_EQ(ZK_Queue_Full(&queue_), 1);
        EXPECT_EQ(ZK_Queue_Empty(&queue_), 1);
        EXPECT_EQ(ZK_Enqueu(&queue_, &frame), 0);
        EXPECT_EQ(ZK_Dequeue(&queue_, &frame), 0);
        ZK_Queue_Deleate(&queue_);
    }
}

TEST_F(Ring, AnEmptyFrameKeepsItsSocket) {
    ASSERT_EQ(ZK_Queue_Create(&queue_, 4), 1);
    for (const int length : {0, -3}) {
        TxFrame frame = numbered(9), out = numbered(8);
        frame.length = length;
        EXPECT_EQ(ZK_Enqueu(&queue_, &frame), 1);
        EXPECT_EQ(ZK_Dequeue(&queue_, &out), 1);
        EXPECT_EQ(out.length, length);
        EXPECT_EQ(out.socket, 9);
        EXPECT_EQ(out.data[0], '8');
    }
    EXPECT_EQ(ZK_Queue_Empty(&queue_), 1);
}

using RingDeathTest = Ring;

TEST_F(RingDeathTest, AFrameBeyondItsElementEndsTheProcess) {
    ASSERT_EQ(ZK_Queue_Create(&queue_, 4), 1);
    TxFrame frame{};
    frame.length = 516;
    EXPECT_EQ(ZK_Enqueu(&queue_, &frame), 1);
    frame.length = 517;
    EXPECT_DEATH(ZK_Enqueu(&queue_, &frame), "517");
}

class Transmit : public ConnectedArm {
 protected:
    void add(const std::string& frame, int socket = -1) {
        Add_Queue(socket < 0 ? arm_ : socket, frame.data(), static_cast<int32_t>(frame.size()));
    }
};

TEST_F(Transmit, FramesLeaveInTheOrderOfTheQueue) {
    const ArmSocket second = connect_arm(controller_);
    std::string first_all, second_all;
    for (int i = 0; i < 10; ++i) {
        const std::string frame = "frame " + std::to_string(i) + "\r\n";
        add(frame, i % 3 ? arm_ : second);
        (i % 3 ? first_all : second_all) += frame;
    }
    EXPECT_EQ(controller_.received(first_all.size(), 0), first_all);
    EXPECT_EQ(controller_.received(second_all.size(), 1), second_all);
}

TEST_F(Transmit, AFileTransferHoldsTheFramesBack) {
    set_shared(IsSendFile, 1);
    add("first\r\n");
    add("second\r\n");
    EXPECT_EQ(Arm_Socket_State_nBlock(arm_), 0);  // written at once, ahead of both
    EXPECT_NE(controller_.next_request().find("get_joint_max_speed"), std::string::npos);
    EXPECT_EQ(ZK_Queue_Empty(&Socket_Tx_Buffer), 0);
    set_shared(IsSendFile, 0);
    EXPECT_EQ(controller_.next_request(), "first");
    EXPECT_EQ(controller_.next_request(), "second");
}

TEST_F(Transmit, AFullQueueDropsTheFrameWithALine) {
    set_shared(IsSendFile, 1);
    for (int i = 0; i < 599; ++i) add(std::to_string(i) + "\r\n");
    testing::internal::CaptureStdout();
    add("one too many\r\n");
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(arm_), 0) << "a form that only sends does not notice";
    const std::string said = "enqueue socket:" + std::to_string(arm_) + "\r\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), said + said);
    ZK_Queue_Clear(&Socket_Tx_Buffer);
}

TEST_F(Transmit, ALongFrameContainsTheSocketsNumber) {
    for (const size_t length : {500, 501, 504, 505, 516}) {
        std::string frame(length, '.');
        for (size_t i = 0; i < length; ++i) frame[i] = static_cast<char>('a' + i % 26);
        const size_t before = controller_.received().size();
        add(frame);
        const int32_t number = arm_;
        std::string expected = frame;
        for (size_t i = 500; i < std::min<size_t>(length, 504); ++i) {
            expected[i] = reinterpret_cast<const char*>(&number)[i - 500];
        }
        EXPECT_EQ(controller_.received(before + length).substr(before), expected) << length;
    }
}

TEST_F(Transmit, FramesAfterAnEmptyOneAreSent) {
    add("");
    Add_Queue(arm_, nullptr, 0);
    Add_Queue(arm_, "abc", -1);
    add("after\r\n", 99999);  // nobody's socket
    add("last\r\n");
    EXPECT_EQ(controller_.next_request(), "last");
}

TEST_F(Transmit, ASecondInitEmptiesTheQueueAndResetsTheLimit) {
    set_shared(IsSendFile, 1);
    add("lost\r\n");
    m_nOutTime = 5;
    const pthread_t thread = m_hWThread;
    EXPECT_EQ(ZK_API_Init(75, nullptr), 0);
    EXPECT_EQ(m_nOutTime, 3000);
    EXPECT_EQ(CUR_ARM_MODE, 75);
    EXPECT_EQ(m_nThreadIsRun, 1);
    EXPECT_TRUE(pthread_equal(thread, m_hWThread));
    EXPECT_EQ(ZK_Queue_Empty(&Socket_Tx_Buffer), 1);
    set_shared(IsSendFile, 0);
    add("kept\r\n");
    EXPECT_EQ(controller_.next_request(), "kept");
}

TEST_F(Transmit, AfterUnInitAnotherInitRevivesTheLibrary) {
    EXPECT_EQ(ZK_API_UnInit(), 0);
    EXPECT_EQ(m_nThreadIsRun, 1);
    EXPECT_EQ(ZK_API_UnInit(), 0);
    ZK_API_Init(65, nullptr);
    controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    EXPECT_EQ(Move_Stop_Cmd(arm_, true), 0);
}

TEST(TransmitDeathTest, ACommandWithoutTheLibraryEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(Move_Stop_Cmd_NonBlock(5), "\"set_arm_stop\" needs ZK_API_Init");
    EXPECT_DEATH(
        {
            ZK_API_Init(65, nullptr);
            ZK_API_UnInit();
            Move_Stop_Cmd_NonBlock(5);
        },
        "ZK_API_Init");
    const std::string frame(517, 'x');
    EXPECT_DEATH(
        {
            ZK_API_Init(65, nullptr);
            Add_Queue(5, frame.data(), 517);
        },
        "517");
    EXPECT_EQ(ZK_Queue_Full(&Socket_Tx_Buffer), 1);
}

TEST(Lifecycle, StartsFromItsSettings) {
    EXPECT_EQ(m_nOutTime, 200);
    EXPECT_EQ(m_nOutTime_max, 1000);
    EXPECT_EQ(m_nmodbusrtu_OutTime, 1000);
    EXPECT_EQ(CUR_ARM_MODE, 65);
    EXPECT_EQ(m_nThreadIsRun, 0);
    EXPECT_EQ(g_is_robot_type_i, 0);
    EXPECT_STREQ(API_Version(), "4.3.6");
    EXPECT_EQ(Get_Socket_Idx(77), -1);
    EXPECT_EQ(Get_Socket_Idx(0), 0) << "the first free slot";
}

TEST(Lifecycle, TheArmModeDecidesTheJoints) {
    const std::pair<int, int> modes[] = {{65, 6},  {62, 6}, {631, 6}, {632, 6}, {634, 6},
                                         {651, 6}, {75, 7}, {72, 7},  {0, 6}};
    int socket = 500;
    for (const auto& [mode, joints] : modes) {
        EXPECT_EQ(Init_Socket_Joint(mode, ++socket), 0);
        const SocketSlot& slot = SockInfo[Get_Socket_Idx(socket)];
        EXPECT_EQ(slot.joint_count, joints) << mode;
        EXPECT_EQ(slot.arm_mode, mode);
    }
    EXPECT_EQ(m_nSockInfoLen, 9);
}

}  // namespace
