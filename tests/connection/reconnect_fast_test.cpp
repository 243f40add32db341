// A connection that is closed, and another that is opened in its place.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <future>
#include <set>
#include <thread>

#include "connection/waits.h"
#include "support/arm.h"
#include "support/scaled_time.h"
#include "support/start_up.h"
#include "support/udp.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

class Waits : public testing::TestWithParam<WaitingCall> {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        set_shared(g_is_robot_type_i, uint8_t{1});
        arm_ = connect_arm(controller_);
        keep_waiting(controller_, GetParam());
    }
    std::future<int> start() {
        std::future<int> status = std::async(std::launch::async, [this] { return GetParam().call(arm_); });
        controller_.wait_for_request(GetParam().request);
        return status;
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};
INSTANTIATE_TEST_SUITE_P(, Waits, testing::ValuesIn(kWaits),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Waits, EndIn5WhenTheConnectionIsClosed) {
    std::future<int> status = start();
    Arm_Socket_Close(arm_);
    EXPECT_EQ(status.get(), 5);
    EXPECT_EQ(shared(m_nSockeRIinfosLen), 0);
}

TEST_P(Waits, LeaveTheRepliesOfTheNextConnection) {
    std::future<int> status = start();
    reconnect_arm(controller_, arm_);
    for (const std::string& message : GetParam().messages) controller_.say(message, 1);
    EXPECT_EQ(status.get(), 5);
    eventually([] { return shared(*GetParam().count) == 1; });
}

TEST(Reconnection, NoHalfMessageJoinsTheNextConnection) {
    ReportLog log;
    ScriptedController controller;
    set_time_factor(0);
    ZK_API_Init(65, ReportLog::callback);
    const ArmSocket arm = connect_arm(controller);
    for (const char* half : {"half a message", R"({"state":"joint_state","arm_err":9)"}) {
        controller.say_bytes({half});
        controller.wait_until_read();
        reconnect_arm(controller, arm);
        controller.say_bytes({report_message(1)});
        EXPECT_EQ(log.wait_for(1).back().result, 1);
    }
    EXPECT_EQ(log.results(2), (std::vector<int>{1, 1}));
}

// A report's callback closes the connection: the rest of the read is of no connection any more.
TEST(Reconnection, MessagesThatWereReadBeforeACloseAreDropped) {
    static ArmSocket arm;
    static std::atomic<int> reports;
    static ScriptedController& controller = *new ScriptedController;
    set_time_factor(0);
    ZK_API_Init(65, [](ArmMotionReport) {
        if (++reports == 1) reconnect_arm(controller, arm);
    });
    arm = connect_arm(controller);
    controller.say_bytes(
        {report_message(1) + line(R"({"command":"set_arm_stop","arm_stop":true})") + report_message(2)});
    eventually([] { return reports == 1; });
    controller.wait_for_connections(2);
    controller.say(R"({"command":"set_arm_pause","arm_pause":true})", 1);
    eventually([] { return shared(Set_Arm_Pause_Cmd[0].count) == 1; });
    EXPECT_EQ(shared(Set_Arm_Stop_Cmd[0].count), 0);
    EXPECT_EQ(reports, 1);
}

class Starts : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        answer_start_up(controller_);
        set_time_factor(0);
    }
    ArmSocket start() { return Arm_Socket_Start("127.0.0.1", controller_.port(), 1000); }

    ScriptedController controller_;
};

TEST_F(Starts, ANumberComesBackOnlyAfterAllOthers) {
    std::set<ArmSocket> numbers;
    ArmSocket last = ZK_LARGEST_STATUS;
    for (int i = 0; i < 5; ++i) {
        const ArmSocket arm = start();
        EXPECT_GT(arm, last);
        EXPECT_TRUE(fcntl(arm, F_GETFD) & FD_CLOEXEC);
        int no_delay = 0;
        socklen_t size = sizeof no_delay;
        EXPECT_EQ(getsockopt(arm, IPPROTO_TCP, TCP_NODELAY, &no_delay, &size), 0);
        EXPECT_NE(no_delay, 0);
        Arm_Socket_Close(last = arm);
    }
    const int port = ScriptedController().port();  // refuses from now on
    for (int i = 0; i < 1100; ++i) EXPECT_EQ(Arm_Socket_Start("127.0.0.1", port, 1000), 5);
    EXPECT_GT(start(), ZK_LARGEST_STATUS) << "the search has started again";
}

TEST_F(Starts, TheStreamArrivesAfterARefusedStart) {
    const int nobody = ScriptedController().port();
    EXPECT_EQ(Arm_Socket_Start("127.0.0.1", nobody, 1000), 5);  // closes descriptor 0
    const int port = reserve_udp_port();
    controller_.answer("get_realtime_push", realtime_push_on(port));
    ASSERT_GT(start(), ZK_LARGEST_STATUS);
    EXPECT_GT(shared(listener.socket), ZK_LARGEST_STATUS);
    send_datagram(port, "{}");
    eventually([] { return shared(listener.receiving) == 1; });
}

// One talks to its controller while the other waits, so that the first one sets up the listener for both.
TEST_F(Starts, FromTwoThreadsGetSlotsOfTheirOwnAndTheStream) {
    const int port = reserve_udp_port();
    controller_.answer("get_realtime_push", realtime_push_on(port));
    std::future<ArmSocket> other = std::async(std::launch::async, [this] { return start(); });
    const ArmSocket first = start(), second = other.get();
    ASSERT_GT(first, ZK_LARGEST_STATUS);
    ASSERT_GT(second, ZK_LARGEST_STATUS);
    EXPECT_EQ(Get_Socket_Idx(first) + Get_Socket_Idx(second), 1);
    const std::string first_question = controller_.next_request();
    for (int questions = 1; questions < 9; ++questions) EXPECT_NE(controller_.next_request(), first_question);
    EXPECT_EQ(controller_.next_request(), first_question);
    send_datagram(port, "{}");
    eventually([] { return shared(listener.receiving) == 1; });
}

// Sockets are only numbers to the table.
TEST(Table, SlotsAreTakenAndFreedFromManyThreads) {
    constexpr int kThreads = 4;
    std::atomic<bool> whole = true;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const int32_t socket = 90000 + t;
            for (int i = 0; i < 20000 && whole; ++i) {
                if (Init_Socket_Joint(75, socket) != 0) whole = false;
                // Another thread's close may forget this connection too.
                const auto good = [&] {
                    const int slot = Get_Socket_Idx(socket);
                    return slot < 0 || shared(SockInfo[slot].joint_count) == 7;
                };
                for (int tries = 0; whole && !good(); std::this_thread::yield()) {
                    if (++tries == 10000) whole = false;
                }
                Arm_Socket_Close(socket);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(whole);
    for (const SocketSlot& slot : SockInfo) {
        EXPECT_EQ(shared(slot.socket), 0);
        EXPECT_EQ(shared(slot.joint_count), 0);
        EXPECT_EQ(shared(slot.arm_mode), 0);
    }
}

TEST(Closing, WhileAnotherThreadQueuesHarmsNothing) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    std::atomic<bool> closed = false;
    std::thread queueing([&] {
        while (!closed) Move_Stop_Cmd_NonBlock(arm);
    });
    EXPECT_NE(controller.next_request(), "");
    Arm_Socket_Close(arm);
    closed = true;
    queueing.join();
    controller.wait_for_close();
}

}  // namespace
