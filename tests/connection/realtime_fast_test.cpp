// The listener of the real-time stream.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>

#include "support/arm.h"
#include "support/datagram.h"
#include "support/scaled_time.h"
#include "support/start_up.h"
#include "support/udp.h"
#include "zk/connection.h"
#include "zk/realtime.h"
#include "zk/status.h"

namespace {

using namespace zk::test;
using nlohmann::json;

constexpr int kLongCycle = 2147483647;  // no datagram is ever late

class Realtime : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        ZK_API_Init(65, nullptr);
        answer_start_up(controller_);
        const std::lock_guard lock(mutex_);
        latest_ = {};
        calls_ = 0;
    }
    void start(int cycle = kLongCycle) {
        controller_.answer("get_realtime_push", realtime_push_on(port_, cycle));
        arm_ = Arm_Socket_Start("127.0.0.1", controller_.port(), 1000);
        ASSERT_GT(arm_, ZK_LARGEST_STATUS);
        Realtime_Arm_Joint_State(callback);
    }
    void send(const json& datagram) { send_text(datagram.dump()); }
    void send_text(const std::string& text) {
        const int before = calls_;
        send_datagram(port_, text);
        eventually([&] { return calls_ > before; });
    }

    static void callback(RobotStatus status) {
        const std::lock_guard lock(mutex_);
        latest_ = status;
        ++calls_;
    }
    static RobotStatus latest() {
        const std::lock_guard lock(mutex_);
        return latest_;
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
    int port_ = reserve_udp_port();
    static inline std::mutex mutex_;
    static inline RobotStatus latest_;
    static inline std::atomic<int> calls_{0};
};

TEST_F(Realtime, EveryDatagramReachesCallbackAndPoll) {
    start();
    send(full_datagram());
    EXPECT_EQ(latest().errCode, 0);
    EXPECT_EQ(latest().joint_position[0], 1.5f);
    EXPECT_STREQ(latest().arm_ip, "127.0.0.1");
    RobotStatus polled{};
    EXPECT_EQ(Get_Realtime_Arm_Joint_State(&polled), 0);
    EXPECT_EQ(polled.joint_position[0], 1.5f);
    EXPECT_EQ(polled.io2_state, 27);
    EXPECT_STREQ(polled.arm_ip, "127.0.0.1");
}

TEST_F(Realtime, BrokenDatagramsAreHandedOnWithTheirStatus) {
    start();
    send(full_datagram());
    json without_joints = full_datagram();
    without_joints.erase("joint_status");
    without_joints["hand"]["hand_err"] = 99;
    send(without_joints);
    EXPECT_EQ(latest().errCode, 9);
    EXPECT_EQ(latest().hand_err, 99) << "stored before the failure";
    EXPECT_EQ(latest().joint_position[0], 1.5f) << "from the datagram before";
    send_text("nonsense");
    EXPECT_EQ(latest().errCode, 9);
    send_text("");
    EXPECT_EQ(latest().errCode, 9);
    json too_long = full_datagram();
    too_long["pad"] = std::string(1500, 'x');
    send(too_long);
    EXPECT_EQ(latest().errCode, 9) << "at most 1024 bytes are read";
    RobotStatus polled{};
    EXPECT_EQ(Get_Realtime_Arm_Joint_State(&polled), 0);
    EXPECT_EQ(polled.errCode, 9);
}

TEST_F(Realtime, APollWithoutAStreamReturns25AfterASecond) {
    RobotStatus status{};
    EXPECT_EQ(Get_Realtime_Arm_Joint_State(nullptr), 19);
    start();
    const int32_t before = Get_Program_Runtime();
    set_time_factor(50);
    EXPECT_EQ(Get_Realtime_Arm_Joint_State(&status), 25);
    EXPECT_GE(Get_Program_Runtime() - before, 1000);
}

TEST_F(Realtime, APollWaitsForTheFirstDatagram) {
    start();
    set_shared(listener.receiving, uint8_t{0});
    std::thread late([&] { send_datagram(port_, full_datagram().dump()); });
    RobotStatus status{};
    EXPECT_EQ(Get_Realtime_Arm_Joint_State(&status), 0);
    EXPECT_EQ(status.hand_err, 25);
    late.join();
}

// The limit between two datagrams is the cycle times 100, plus 199 milliseconds.
TEST_F(Realtime, ALateDatagramClearsTheFlagUntilTheNext) {
    start(1);
    send(full_datagram());
    send(full_datagram());
    eventually([] { return shared(listener.receiving) == 1; });
    const int32_t last = Get_Program_Runtime();
    set_time_factor(10);
    eventually([&] { return Get_Program_Runtime() - last > 310; });
    set_time_factor(0);
    EXPECT_EQ(shared(listener.receiving), 1) << "it falls only when a datagram comes";
    send(full_datagram());
    eventually([] { return shared(listener.receiving) == 0; });
    send(full_datagram());
    eventually([] { return shared(listener.receiving) == 1; });
}

TEST_F(Realtime, AStreamThatStoppedLeavesItsLastState) {
    start();
    send(full_datagram());
    set_time_factor(1000);
    const int32_t last = Get_Program_Runtime();
    eventually([&] { return Get_Program_Runtime() - last > 10000; });
    RobotStatus status{};
    EXPECT_EQ(Get_Realtime_Arm_Joint_State(&status), 0);
    EXPECT_EQ(status.hand_err, 25);
}

// Every field of a datagram holds the same number; a poll that finds two numbers copied half a datagram.
TEST_F(Realtime, APollNeverSeesHalfADatagram) {
    start();
    const auto numbered = [](int number) {
        json datagram = full_datagram();
        for (auto& array : datagram["joint_status"]) array = std::vector<int>(6, number * 1000);
        datagram["arm_err"] = datagram["sys_err"] = number;
        datagram["aloha_state"]["io2_state"] = number;
        return datagram.dump();
    };
    const std::string datagrams[] = {numbered(1), numbered(2)};
    send_text(datagrams[0]);
    std::atomic<bool> enough{false};
    std::thread sender([&] {
        for (int i = 0; !enough; ++i) send_datagram(port_, datagrams[i % 2]);
    });
    int changes = 0;
    float last = 0;
    while (changes < 200) {
        std::this_thread::yield();
        RobotStatus status{};
        ASSERT_EQ(Get_Realtime_Arm_Joint_State(&status), 0);
        const float number = status.joint_position[0];
        changes += number != last;
        last = number;
        if (status.arm_err != number || status.joint_voltage[5] != number || status.sys_err != number ||
            status.joint_current[3] != number || status.io2_state != number) {
            ADD_FAILURE() << "half a datagram: " << number << " " << status.arm_err << " " << status.io2_state;
            break;
        }
    }
    enough = true;
    sender.join();
}

TEST_F(Realtime, TheStreamComesBackOnItsPort) {
    for (int i = 0; i < 3; ++i) {
        start();
        send(full_datagram());
        Arm_Socket_Close(arm_);
        EXPECT_EQ(shared(listener.socket), -1);
        const int before = calls_;
        send_datagram(port_, full_datagram().dump());
        EXPECT_EQ(calls_, before);
    }
}

TEST_F(Realtime, ACloseFromTheCallbackIsSafe) {
    start();
    static ArmSocket arm;
    arm = arm_;
    Realtime_Arm_Joint_State([](RobotStatus status) {
        Arm_Socket_Close(arm);
        callback(status);
    });
    send(full_datagram());
    EXPECT_EQ(shared(listener.socket), -1);
    EXPECT_EQ(Get_Socket_Idx(arm_), -1);
    start();
    send(full_datagram());
    EXPECT_EQ(latest().errCode, 0);
}

}  // namespace
