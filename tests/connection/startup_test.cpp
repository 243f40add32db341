// The start-up of a connection.
#include "zk/connection.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>

#include "support/arm.h"
#include "support/start_up.h"
#include "support/udp.h"
#include "zk/algorithm.h"
#include "zk/arm_state.h"
#include "zk/realtime.h"
#include "zk/replies/joint_configuration.h"
#include "zk/status.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

bool is_open(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

// The number of a closed descriptor may already be that of something else of this process.
bool is_udp_socket(int descriptor) {
    int type = 0;
    socklen_t size = sizeof type;
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_DGRAM;
}

long open_descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

class StartUp : public testing::Test {
 protected:
    void SetUp() override { init(65); }
    void init(int arm_mode, int joints = 6) {
        ZK_API_Init(arm_mode, nullptr);
        answer_start_up(controller_, joints);
    }
    ArmSocket start() { return Arm_Socket_Start("127.0.0.1", controller_.port(), 1000); }

    ScriptedController controller_;
};

TEST_F(StartUp, AsksItsQuestionsInTurn) {
    const ArmSocket arm = start();
    EXPECT_GT(arm, ZK_LARGEST_STATUS);
    EXPECT_EQ(Get_Socket_Idx(arm), 0);
    for (const char* command :
         {"get_arm_software_info", "get_current_tool_frame", "get_current_work_frame", "get_install_pose",
          "get_joint_max_speed", "get_joint_max_acc", "get_joint_min_pos", "get_joint_max_pos", "get_realtime_push"}) {
        EXPECT_EQ(controller_.next_request(), std::string("{\n\t\"command\":\t\"") + command + "\"\n}");
    }
    EXPECT_EQ(shared(g_is_robot_type_i), 1);
    EXPECT_EQ(shared(m_nSockInfoLen), 1);
    EXPECT_EQ(shared(listener.socket), 0) << "the push is off";
    EXPECT_EQ(shared(listener.cycle), 1);
}

// The local model holds the limits that the controller reported.
void expect_limits(const std::vector<float>& lowest, const std::vector<float>& highest) {
    float low[8] = {}, high[8] = {};
    Algo_Get_Joint_Min_Limit(low);
    Algo_Get_Joint_Max_Limit(high);
    for (size_t i = 0; i < lowest.size(); ++i) {
        EXPECT_NEAR(low[i], lowest[i], 1e-4) << i;
        EXPECT_NEAR(high[i], highest[i], 1e-4) << i;
    }
}

TEST_F(StartUp, PutsTheArmIntoTheModel) {
    controller_.answer(
        "get_current_tool_frame",
        R"({"state":"current_tool_frame","tool_name":"gripper","pose":[10000,-20000,150000,100,200,300],)"
        R"("payload":1500,"position":[1000,2000,3000]})");
    controller_.answer("get_current_work_frame",
                       R"({"state":"current_work_frame","frame_name":"table","pose":[400000,0,-50000,0,0,1570]})");
    controller_.answer("get_install_pose", R"({"state":"install_pose","pose":[0.0,180.0,45.5]})");
    controller_.answer("get_joint_min_pos",
                       R"({"state":"joint_min_pos","min_pos":[-10000,-20000,-30000,-40500,-50000,-60000]})");
    controller_.answer("get_joint_max_pos",
                       R"({"state":"joint_max_pos","max_pos":[11000,22000,33000,44500,55000,66000]})");
    ASSERT_GT(start(), ZK_LARGEST_STATUS);

    FrameRec tool{}, work{};
    Algo_Get_Curr_ToolFrame(&tool);
    EXPECT_FLOAT_EQ(tool.pose.position.y, -0.02f);
    EXPECT_FLOAT_EQ(tool.pose.position.z, 0.15f);
    EXPECT_NEAR(tool.pose.euler.rz, 0.3f, 1e-6);
    EXPECT_FLOAT_EQ(tool.payload, 1.5f);
    EXPECT_FLOAT_EQ(tool.z, 0.003f);
    Algo_Get_Curr_WorkFrame(&work);
    EXPECT_FLOAT_EQ(work.pose.position.x, 0.4f);
    EXPECT_NEAR(work.pose.euler.rz, 1.57f, 1e-6);
    EXPECT_FLOAT_EQ(g_tool_pose.position.z, 0.15f);
    EXPECT_FLOAT_EQ(g_work_pose.position.z, -0.05f);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[0][3], 0.01f) << "the position, and not the angles in its place";
    EXPECT_FLOAT_EQ(Tool_Matrix.m[1][3], -0.02f);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[2][3], 0.15f);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[2][0], -std::sin(0.2f));
    EXPECT_FLOAT_EQ(Frame_Matrix.m[0][3], 0.4f);
    EXPECT_FLOAT_EQ(Frame_Matrix.m[1][0], std::sin(1.57f));
    float x, y, z;
    Algo_Get_Angle(&x, &y, &z);
    EXPECT_EQ(x, 0.0f);
    EXPECT_EQ(y, 180.0f);
    EXPECT_EQ(z, 45.5f);
    expect_limits({-10, -20, -30, -40.5, -50, -60}, {11, 22, 33, 44.5, 55, 66});
}

TEST_F(StartUp, StoresTheDataOfASevenJointArm) {
    init(75, 7);
    const ArmSocket arm = start();
    ASSERT_GT(arm, ZK_LARGEST_STATUS);
    EXPECT_EQ(shared(SockInfo[0].joint_count), 7);
    EXPECT_EQ(shared(SockInfo[0].arm_mode), 75);
    EXPECT_EQ(Curr_Robot_Type, 1);
    EXPECT_EQ(Curr_Senser_Type, 2);
    expect_limits({-178, -130, -178, -135, -178, -128, -360}, {178, 130, 178, 135, 178, 128, 360});
}

// The model keeps mounting angles in radians of single precision.
TEST_F(StartUp, AMountingThatDoesNotReadBackReturnsMinus1) {
    struct Row {
        const char* angles;
        bool connects;
    };
    for (const Row& row :
         {Row{"0.1,0.2,0.3", true}, Row{"180,-180,90", true}, Row{"31,-62,117", true}, Row{"33.3,-77.7,123.456", true},
          Row{"0,0,30000.2", false}, Row{"0,30000.2,0", false}, Row{"30000.2,0,0", false}}) {
        controller_.answer("get_install_pose", R"({"state":"install_pose","pose":[)" + std::string(row.angles) + "]}");
        const ArmSocket arm = start();
        EXPECT_EQ(arm > ZK_LARGEST_STATUS, row.connects) << row.angles;
        EXPECT_TRUE(row.connects || arm == -1) << row.angles;
        Arm_Socket_Close(arm);
    }
    EXPECT_EQ(Get_Socket_Idx(0), 0) << "every slot is free again";
}

// The next connection gets the slot of the closed one.
TEST_F(StartUp, NothingOfTheLastConnectionReachesTheNext) {
    const ArmSocket old = start();
    controller_.say(R"({"command":"set_arm_slow_stop","arm_slow_stop":false})");
    controller_.say(R"({"state":"joint_max_speed","joint_speed":[1,1,1,1,1,1]})");
    eventually([] { return shared(Joint_Max_Speed_Cmd[0].count) == 1; });
    set_shared(IsSendFile, 1);  // holds the queue
    Move_Stop_Cmd_NonBlock(old);
    Arm_Socket_Close(old);
    set_shared(IsSendFile, 0);
    controller_.forget_requests();

    const ArmSocket arm = start();
    ASSERT_EQ(Get_Socket_Idx(arm), 0);
    EXPECT_NE(controller_.next_request().find("get_arm_software_info"), std::string::npos)
        << "no frame of the last one";
    EXPECT_EQ(shared(Joint_Max_Speed_Cmd[0].count), 0);
    controller_.answer("set_arm_slow_stop", R"({"command":"set_arm_slow_stop","arm_slow_stop":true})");
    EXPECT_EQ(Move_Slow_Stop_Cmd_Block(arm), 0);
}

TEST_F(StartUp, SetsModelAndSensorFromTheModelText) {
    struct Row {
        const char* text;
        int robot, sensor;
    };
    // A row without a mark keeps what the one before it left.
    for (const Row& row :
         {Row{"unknown", 0, 0}, Row{"ZK65-B", 0, 0}, Row{"ZK75-6F", 1, 2}, Row{"ZK63-ZF", 3, 1}, Row{"ORB65-6F", 5, 2},
          Row{"ZK62-B", 6, 0}, Row{"ZK72-6F", 7, 2}, Row{"ORB63-B", 8, 0}, Row{"unknown", 8, 0}, Row{"ZK6563", 3, 0},
          Row{"ZK75ORB65", 5, 0}, Row{"63ORB65", 3, 0}, Row{"ORB63ZK65", 8, 0}, Row{"6272", 6, 0},
          Row{"ZK65-6F-B", 0, 0}, Row{"zk75-zf", 0, 0}, Row{"-ZF-6F", 0, 1}, Row{"", 0, 1}}) {
        answer_start_up(controller_, 6, *row.text ? row.text : "?");
        const ArmSocket arm = start();
        ASSERT_GT(arm, ZK_LARGEST_STATUS) << row.text;
        EXPECT_EQ(Curr_Robot_Type, row.robot) << row.text;
        EXPECT_EQ(Curr_Senser_Type, row.sensor) << row.text;
        Arm_Socket_Close(arm);
    }
}

TEST_F(StartUp, ARefusedConnectionReturns5AndClosesTheListener) {
    ASSERT_TRUE(is_open(0));
    const int port = ScriptedController().port();  // gone by now
    EXPECT_EQ(Arm_Socket_Start("127.0.0.1", port, 1000), 5);
    EXPECT_EQ(shared(listener.socket), -1);
    EXPECT_FALSE(is_open(0)) << "a listener that was never set up counts as descriptor 0";
    const int null = open("/dev/null", O_RDONLY);
    ASSERT_EQ(null, 0);
    EXPECT_EQ(Arm_Socket_Start("127.0.0.1", port, 1000), 5);
    EXPECT_TRUE(is_open(0)) << "and that only once";
}

TEST_F(StartUp, OnlyDottedAddressesAreAccepted) {
    for (const char* address : {"localhost", "256.0.0.1", "127.0.0", "", "127.0.0.1 ", "::1"}) {
        EXPECT_EQ(Arm_Socket_Start(address, controller_.port(), 1000), 5) << address;
    }
    EXPECT_EQ(Arm_Socket_Start(nullptr, controller_.port(), 1000), 5);
}

TEST_F(StartUp, AFullTableReturnsMinus1) {
    for (int i = 0; i < 20; ++i) EXPECT_EQ(Init_Socket_Joint(65, 90000 + i), 0);
    EXPECT_EQ(Init_Socket_Joint(65, 91000), -1);
    EXPECT_EQ(start(), -1);
    controller_.wait_for_connections(1);
    controller_.wait_for_close();
    for (int i = 0; i < 20; ++i) EXPECT_EQ(Get_Socket_Idx(90000 + i), i);
}

TEST_F(StartUp, AnArmOfAnotherJointCountReturns10) {
    answer_start_up(controller_, 7);
    EXPECT_EQ(start(), 10);
    controller_.wait_for_close();
    init(75, 6);
    EXPECT_EQ(start(), 10);
    EXPECT_EQ(Get_Socket_Idx(0), 0) << "the slot is free again";
}

TEST_F(StartUp, AFailedPushQueryLeavesTheConnectionUsable) {
    controller_.answer("get_realtime_push", R"({"state":"get_realtime_push","cycle":5,"enable":true,"port":8089})");
    const ArmSocket arm = start();
    ASSERT_GT(arm, ZK_LARGEST_STATUS);
    EXPECT_EQ(shared(listener.socket), 0);
    controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    EXPECT_EQ(Move_Stop_Cmd(arm, true), 0);
}

void some_callback(RobotStatus) {}

TEST_F(StartUp, ASecondConnectionKeepsTheListenerAndClearsTheCallback) {
    controller_.answer("get_realtime_push", realtime_push_on(reserve_udp_port(), 3));
    ASSERT_GT(start(), ZK_LARGEST_STATUS);
    const int32_t socket = shared(listener.socket);
    EXPECT_TRUE(is_udp_socket(socket));
    EXPECT_EQ(shared(listener.cycle), 3);
    Realtime_Arm_Joint_State(some_callback);
    set_shared(listener.receiving, uint8_t{1});

    controller_.answer("get_realtime_push", realtime_push_on(reserve_udp_port(), 7));
    const ArmSocket second = start();
    ASSERT_GT(second, ZK_LARGEST_STATUS);
    EXPECT_EQ(shared(listener.socket), socket);
    EXPECT_EQ(shared(listener.callback), nullptr);
    EXPECT_EQ(shared(listener.receiving), 0);
    EXPECT_EQ(shared(listener.cycle), 7);

    Arm_Socket_Close(second);
    EXPECT_EQ(shared(listener.socket), -1);
    EXPECT_FALSE(is_udp_socket(socket));
}

// Neither by a start that succeeds nor by one that fails.
TEST_F(StartUp, NoDescriptorIsLeftOver) {
    Arm_Socket_Close(start());  // and descriptor 0
    controller_.close();
    const int port = reserve_udp_port();
    const long before = open_descriptors();
    for (int i = 0; i < 10; ++i) {
        answer_start_up(controller_, i % 2 ? 7 : 6);
        controller_.answer("get_realtime_push", realtime_push_on(port));
        const ArmSocket arm = start();
        EXPECT_EQ(arm > ZK_LARGEST_STATUS, i % 2 == 0);
        Arm_Socket_Close(i % 2 ? -1 : arm);
        controller_.wait_for_close();
        controller_.close();
    }
    EXPECT_EQ(open_descriptors(), before);
}

// Closing a connection forgets those in the slots above it, whose descriptors stay open.
TEST_F(StartUp, ClosingForgetsTheLaterConnections) {
    const ArmSocket first = start(), second = start(), third = start();
    EXPECT_EQ(shared(m_nSockInfoLen), 3);
    EXPECT_EQ(Get_Socket_Idx(third), 2);
    Arm_Socket_Close(second);
    EXPECT_EQ(Get_Socket_Idx(first), 0);
    EXPECT_EQ(Get_Socket_Idx(second), -1);
    EXPECT_EQ(Get_Socket_Idx(third), -1);
    EXPECT_FALSE(is_open(second));
    EXPECT_TRUE(is_open(third));
    EXPECT_EQ(shared(m_nSockInfoLen), 2);
    EXPECT_EQ(Move_Stop_Cmd_Block(third), 5);

    controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    EXPECT_EQ(Move_Stop_Cmd_Block(first), 0);
    Arm_Socket_Close(third);
    EXPECT_FALSE(is_open(third)) << "an unknown socket is closed all the same";
    EXPECT_EQ(shared(m_nSockInfoLen), 2);
    Arm_Socket_Close(0);
    Arm_Socket_Close(-1);
    EXPECT_TRUE(is_open(first));
}

// A failed attempt closes as Arm_Socket_Close does: the stream of the first arm ends with it.
TEST_F(StartUp, AFailedAttemptEndsTheStreamOfTheOthers) {
    controller_.answer("get_realtime_push", realtime_push_on(reserve_udp_port()));
    const ArmSocket first = start();
    const int32_t socket = shared(listener.socket);
    EXPECT_TRUE(is_udp_socket(socket));
    controller_.answer("get_joint_max_pos", R"({"state":"joint_max_pos","max_pos":[]})");
    EXPECT_EQ(start(), 10);
    EXPECT_EQ(shared(listener.socket), -1);
    EXPECT_FALSE(is_udp_socket(socket));
    EXPECT_EQ(Get_Socket_Idx(first), 0);
}

}  // namespace
