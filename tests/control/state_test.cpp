// The real-time state of several arms.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "control/connected.h"
#include "support/arm.h"
#include "support/datagram.h"
#include "support/start_up.h"
#include "support/udp.h"
#include "zk/control.h"

namespace {

using namespace zk::test;
using nlohmann::json;

json datagram_of(int position, int joints = 6) {
    json datagram = full_datagram();
    for (auto& [key, array] : datagram["joint_status"].items()) array = std::vector<int>(joints, position);
    return datagram;
}

class State : public testing::Test {
 protected:
    ArmSocket connect(int joints = 6) { return connect_with_push_to(port_, joints); }
    ArmSocket connect_with_push_to(int port, int joints) {
        answer_start_up(controller_, joints);
        controller_.answer("get_realtime_push", realtime_push_on(port));
        return connected(controller_.port());
    }
    // Sends a datagram and waits until the arm's state has it.
    static ZK_State state_after(ArmSocket arm, int port, const json& datagram) {
        ZK_State state{};
        const uint32_t before = ZK_Get_State(arm, &state, 0) == ZK_OK ? state.sequence : 0;
        send_datagram(port, datagram.dump());
        eventually([&] { return ZK_Get_State(arm, &state, 0) == ZK_OK && state.sequence > before; });
        return state;
    }

    ScriptedController controller_;
    int port_ = reserve_udp_port();
};

TEST_F(State, IsTheLastRecordWithItsAge) {
    const ArmSocket arm = connect(7);
    ZK_State state{};
    EXPECT_EQ(ZK_Get_State(arm, &state, 0), ZK_NO_STATE);
    json datagram = datagram_of(1500, 7);
    datagram["time"] = 5000000000;
    const ZK_State first = state_after(arm, port_, datagram);
    EXPECT_EQ(first.status.joint_position[6], 1.5f);
    EXPECT_EQ(first.status.arm_ip, nullptr);
    EXPECT_EQ(first.joint_count, 7);
    EXPECT_EQ(first.sequence, 1u);
    EXPECT_EQ(first.controller_ms, 5000000000);
    EXPECT_EQ(first.clock_offset_ms, static_cast<double>(first.host_ns) / 1e6 - 5e9);
    EXPECT_GE(first.age_ms, 0);

    datagram["time"] = 5000001000;  // a second later in no time: it travelled faster
    EXPECT_NEAR(state_after(arm, port_, datagram).clock_offset_ms, first.clock_offset_ms - 1000, 60000);
    datagram["time"] = 4000000000;  // a slow one changes nothing
    const ZK_State slow = state_after(arm, port_, datagram);
    EXPECT_LT(slow.clock_offset_ms, first.clock_offset_ms + 60000);
    datagram.erase("time");
    datagram.erase("lift_state");
    const ZK_State untimed = state_after(arm, port_, datagram);
    EXPECT_EQ(untimed.controller_ms, -1);
    EXPECT_EQ(untimed.status.lift_height, 29) << "a field that a datagram lacks keeps its value";
    eventually([&] { return ZK_Get_State(arm, &state, 1) == ZK_STATE_TOO_OLD; });
    EXPECT_EQ(state.sequence, 4u);
    EXPECT_EQ(ZK_Get_State(arm, &state, 3600000), 0);
    EXPECT_EQ(ZK_Get_State(arm, &state, -1), 19);
    EXPECT_EQ(ZK_Get_State(arm, nullptr, 0), 19);
    EXPECT_EQ(ZK_Close(arm), 0);
    EXPECT_EQ(ZK_Get_State(arm, &state, 0), ZK_STALE_HANDLE);
}

TEST_F(State, EachRecordIsReadInItsTurn) {
    const ArmSocket arm = connect();
    ZK_State state{};
    EXPECT_EQ(ZK_Get_State_After(arm, 0, &state), ZK_NO_STATE);
    for (int n = 1; n <= 3; ++n) state_after(arm, port_, datagram_of(1000 * n, 6));
    for (uint32_t n = 1; n <= 3; ++n) {
        ASSERT_EQ(ZK_Get_State_After(arm, n - 1, &state), 0);
        EXPECT_EQ(state.sequence, n);
        EXPECT_EQ(state.status.joint_position[0], static_cast<float>(n));
    }
    EXPECT_EQ(ZK_Get_State_After(arm, 3, &state), ZK_NO_STATE);
    EXPECT_EQ(ZK_Get_State_After(arm, 1000, &state), ZK_NO_STATE);
    const uint32_t last = 2 * ZK_STATES_KEPT + 10;
    for (uint32_t n = 4; n <= last; ++n) state_after(arm, port_, datagram_of(0, 6));
    ASSERT_EQ(ZK_Get_State_After(arm, 3, &state), 0);
    EXPECT_EQ(state.sequence, last - ZK_STATES_KEPT + 1) << "the oldest that is kept";
    EXPECT_EQ(ZK_Get_State_After(arm, 0, nullptr), 19);
    EXPECT_EQ(ZK_Close(arm), 0);
    EXPECT_EQ(ZK_Get_State_After(arm, 0, &state), ZK_STALE_HANDLE);
}

// 127.0.0.2 is no arm of ours.
void send_from_a_stranger(int port, const std::string& text) {
    const int descriptor = checked(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0), "socket");
    sockaddr_in own = loopback(0), to = loopback(port);
    own.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
    checked(bind(descriptor, reinterpret_cast<sockaddr*>(&own), sizeof own), "bind");
    checked(
        static_cast<int>(sendto(descriptor, text.data(), text.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to)),
        "sendto");
    close(descriptor);
}

TEST_F(State, StrangersAndBrokenDatagramsAreDroppedAndCounted) {
    const ArmSocket arm = connect();
    send_from_a_stranger(port_, datagram_of(9000).dump());
    json broken = datagram_of(8000);
    broken.erase("arm_err");
    send_datagram(port_, broken.dump());
    const ZK_State state = state_after(arm, port_, datagram_of(1000));
    EXPECT_EQ(state.sequence, 1u);
    EXPECT_EQ(state.status.joint_position[0], 1.0f);
    ZK_ConnectionRecord record;
    EXPECT_EQ(ZK_Connection(arm, &record), 0);
    EXPECT_EQ(record.datagrams, 1);
    EXPECT_EQ(record.datagrams_dropped, 2);
}

TEST_F(State, StreamsOfOneAddressAreToldApartByTheirPorts) {
    const int other_port = reserve_udp_port();
    const ArmSocket six = connect(), seven = connect_with_push_to(other_port, 7);
    EXPECT_EQ(state_after(six, port_, datagram_of(6000)).status.joint_position[5], 6.0f);
    EXPECT_EQ(state_after(seven, other_port, datagram_of(7000, 7)).status.joint_position[6], 7.0f);
    EXPECT_EQ(state_after(six, port_, datagram_of(6001)).sequence, 2u);
    EXPECT_EQ(ZK_Close(six), 0);
    EXPECT_EQ(UdpReceiver(port_).port(), port_) << "the port is free";
    EXPECT_EQ(state_after(seven, other_port, datagram_of(7001, 7)).sequence, 2u) << "closing one leaves the other";

    const ArmSocket again = connect();
    ZK_State state;
    EXPECT_EQ(ZK_Get_State(again, &state, 0), ZK_NO_STATE) << "nothing of the last connection of the slot";
    EXPECT_EQ(ZK_Get_State_After(again, 0, &state), ZK_NO_STATE);
    EXPECT_EQ(state_after(again, port_, datagram_of(6002)).sequence, 1u) << "the port is free again";
}

TEST_F(State, OfTwoConnectionsWithOneSenderAndPortTheFirstHasTheStream) {
    const ArmSocket first = connect(), second = connect();
    state_after(first, port_, datagram_of(1000));
    ZK_State state;
    EXPECT_EQ(ZK_Get_State(second, &state, 0), ZK_NO_STATE);
    EXPECT_EQ(ZK_Close(first), 0);
    EXPECT_EQ(state_after(second, port_, datagram_of(2000)).sequence, 1u);
}

TEST_F(State, APortThatIsTakenIsReported) {
    const int taken = UdpReceiver().port();
    static std::string log;
    ZK_Set_Log([](void*, ZK_LogLevel, ArmSocket, const char* text) { log += text; }, nullptr, ZK_LOG_EVENTS);
    const UdpReceiver receiver(taken);
    const ArmSocket arm = connect_with_push_to(taken, 6);
    ZK_Set_Log(nullptr, nullptr, ZK_LOG_EVENTS);
    EXPECT_NE(log.find("port " + std::to_string(taken)), std::string::npos) << log;
    ZK_State state;
    EXPECT_EQ(ZK_Get_State(arm, &state, 0), ZK_NO_STATE);
}

// Readers on other threads see whole records, while streams open and close beside them.
TEST_F(State, IsNeverHalfADatagram) {
    const ArmSocket arm = connect(7);
    state_after(arm, port_, datagram_of(0, 7));
    std::atomic<bool> done{false};
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i) {
        readers.emplace_back([&] {
            for (uint32_t last = 0; !done;) {
                ZK_State state;
                ASSERT_EQ(ZK_Get_State(arm, &state, 0), 0);
                ASSERT_GE(state.sequence, last);
                last = state.sequence;
                const RobotStatus& status = state.status;
                for (int joint = 0; joint < 7; ++joint) {
                    ASSERT_EQ(status.joint_position[joint], status.joint_position[0]);
                    ASSERT_EQ(status.joint_voltage[joint], status.joint_position[0]);
                }
            }
        });
    }
    for (int i = 1; i <= 300; ++i) {
        send_datagram(port_, datagram_of(1000 * i, 7).dump());
        if (i % 100 == 0) ZK_Close(connect_with_push_to(reserve_udp_port(), 6));
    }
    EXPECT_EQ(state_after(arm, port_, datagram_of(7, 7)).status.joint_position[3], 0.007f);
    done = true;
    for (std::thread& reader : readers) reader.join();
}

}  // namespace
