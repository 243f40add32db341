// Routes that do more than fill a mailbox.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "zk/algorithm.h"
#include "zk/dispatch.h"
#include "zk/queue.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/force_control.h"
#include "zk/replies/frames.h"
#include "zk/replies/motion.h"
#include "zk/startup.h"
#include "zk/trajectory.h"

namespace {

constexpr int kSlot = 2;

std::vector<ArmMotionReport> reports;

class SpecialRoutes : public testing::Test {
 protected:
    void SetUp() override {
        for (int i = 0; i < 3; ++i) Init_Socket_Joint(65, 1000 + i);
        Init_Socket_Joint(75, 1003);
        callback1 = [](ArmMotionReport report) { reports.push_back(report); };
        reports.clear();
    }
    void dispatch(std::string message, int slot = kSlot) { EXPECT_EQ(handle_Recv_Json(slot, message.data()), 0); }
};

TEST_F(SpecialRoutes, TheToolFrameBecomesAMatrixWithItsAnglesForPosition) {
    dispatch(
        R"({"state":"current_tool_frame","tool_name":"t","pose":[1,2,3,100,200,300],"payload":0,"position":[0,0,0]})");
    EXPECT_EQ(Current_Tool_Cmd[kSlot].count, 1);
    EXPECT_EQ(Current_Tool_Cmd[kSlot].result, 0);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[0][3], 0.1f);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[1][3], 0.2f);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[2][3], 0.3f);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[2][0], -std::sin(0.2f));
    EXPECT_FLOAT_EQ(Current_Tool_Cmd[kSlot].frame.pose.position.x, 1e-6f) << "the record holds the true position";

    dispatch(R"({"state":"current_tool_frame","tool_name":"t","pose":[0,0,0,0,0,0]})");
    EXPECT_EQ(Current_Tool_Cmd[kSlot].count, 2) << "whatever the parser gave";
    EXPECT_EQ(Current_Tool_Cmd[kSlot].result, 9);
    EXPECT_FLOAT_EQ(Tool_Matrix.m[0][3], 0.1f);
}

TEST_F(SpecialRoutes, TheWorkFrameBecomesAMatrixWithItsTruePosition) {
    dispatch(R"({"state":"current_work_frame","frame_name":"w","pose":[1000000,2000000,3000000,100,200,300]})");
    EXPECT_EQ(Current_Work_Cmd[kSlot].count, 1);
    EXPECT_FLOAT_EQ(Frame_Matrix.m[0][3], 1.0f);
    EXPECT_FLOAT_EQ(Frame_Matrix.m[2][3], 3.0f);
    EXPECT_FLOAT_EQ(Frame_Matrix.m[2][0], -std::sin(0.2f));
    dispatch(R"({"state":"current_work_frame","pose":[0,0,0,0,0,0]})");
    EXPECT_EQ(Current_Work_Cmd[kSlot].count, 2);
    EXPECT_FLOAT_EQ(Frame_Matrix.m[0][3], 1.0f);
}

TEST_F(SpecialRoutes, TheModelFollowsTheMounting) {
    Algo_Init_Sys_Data(0, 0);
    dispatch(R"({"state":"install_pose","pose":[0.5,90.0,-45.0]})");
    float x, y, z;
    Algo_Get_Angle(&x, &y, &z);
    EXPECT_NEAR(x, 0.5f, 1e-6);
    EXPECT_NEAR(y, 90.0f, 1e-5);
    EXPECT_NEAR(z, -45.0f, 1e-5);
    EXPECT_EQ(Get_Install_Pose_Cmd[kSlot].count, 1);
    dispatch(R"({"state":"install_pose","pose":"flat"})");
    EXPECT_EQ(Get_Install_Pose_Cmd[kSlot].count, 2);
    EXPECT_EQ(Get_Install_Pose_Cmd[kSlot].result, 11);
    Algo_Get_Angle(&x, &y, &z);
    EXPECT_NEAR(y, 90.0f, 1e-5);
}

TEST_F(SpecialRoutes, ForceSensorRepliesReachBothMailboxes) {
    for (const char* literal : {"set_force_sensor", "auto_set_Fz", "manual_set_Fz"}) {
        Set_Force_Sensor_Cmd[kSlot] = Auto_Set_Fz_Cmd[kSlot] = {7, 7};
        dispatch(std::string("{\"command\":\"") + literal + "\",\"set_state\":false}");
        for (const AckReply& record : {Set_Force_Sensor_Cmd[kSlot], Auto_Set_Fz_Cmd[kSlot]}) {
            EXPECT_EQ(record.count, 1) << literal;
            EXPECT_EQ(record.result, 1) << literal;
        }
    }
}

TEST_F(SpecialRoutes, AMovesAcknowledgementTellsItsType) {
    const std::pair<const char*, int> types[] = {
        {"movej", 1}, {"movel", 2}, {"movec", 3}, {"movej_p", 0}, {"moves", 5}};
    for (const auto& [command, type] : types) {
        Move_Receive_Cmd[kSlot] = {4, 4, 4};
        dispatch(std::string("{\"command\":\"") + command + "\",\"receive_state\":true}");
        EXPECT_EQ(Move_Receive_Cmd[kSlot].count, 1) << command;
        EXPECT_EQ(Move_Receive_Cmd[kSlot].result, 0) << command;
        EXPECT_EQ(Move_Receive_Cmd[kSlot].move_type, type) << command;
    }
}

// A missing device counts as the arm, whatever the last report contained.
TEST_F(SpecialRoutes, AnArrivalTellsDeviceAndSegment) {
    struct Row {
        const char* rest;
        int result, device, connect;
    };
    for (const Row& row : {Row{R"("trajectory_state":true,"device":1,"trajectory_connect":2)", 0, 1, 2},
                           Row{R"("trajectory_state":true,"device":1)", 0, 1, -1},
                           Row{R"("trajectory_state":true,"device":"x","trajectory_connect":true)", 0, 0, -1},
                           Row{R"("trajectory_state":true,"trajectory_connect":1)", 9, 0, 0},
                           Row{R"("trajectory_state":false,"device":1,"trajectory_connect":2)", 1, 1, 0},
                           Row{R"("trajectory_state":false)", 1, 0, 0},
                           Row{R"("trajectory_state":1,"device":1)", 11, 0, 0}, Row{R"("device":1)", 9, 0, 0}}) {
        Move_Cmd[kSlot] = {5, 5, 77, 88};
        dispatch(std::string(R"({"state":"current_trajectory_state",)") + row.rest + "}");
        EXPECT_EQ(Move_Cmd[kSlot].count, 1) << row.rest;
        EXPECT_EQ(Move_Cmd[kSlot].result, row.result) << row.rest;
        EXPECT_EQ(Move_Cmd[kSlot].device, row.device) << row.rest;
        EXPECT_EQ(Move_Cmd[kSlot].trajectory_connect, row.connect) << row.rest;
    }
}

TEST_F(SpecialRoutes, ReportsOfSetPointsReachTheCallback) {
    dispatch(R"({"state":"joint_state","joint":[1.5,2,3,4,5,6,7],"pose":[0.1,0.2,0.3,1,2,3],"arm_err":4099})");
    dispatch(R"({"state":"pose_state","joint":[1.5,2,3,4,5,6,7],"pose":[1,2,3],"arm_err":0})", 3);
    dispatch(R"({"state":"joint_state","joint":[1,2]})");
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_EQ(reports[0].socket, 1002);
    EXPECT_EQ(reports[0].report_type, 1);
    EXPECT_EQ(reports[0].result, 4099);
    EXPECT_EQ(reports[0].arm_err, 4099);
    EXPECT_EQ(reports[0].joint[0], 1.5f);
    EXPECT_EQ(reports[0].joint[6], 0.0f) << "six joints on this connection";
    EXPECT_EQ(reports[0].pose.position.z, 0.3f);
    EXPECT_EQ(reports[0].pose.euler.rx, 1.0f);
    EXPECT_EQ(reports[0].pose.quaternion.w, 0.0f);
    EXPECT_EQ(reports[1].socket, 1003);
    EXPECT_EQ(reports[1].report_type, 2);
    EXPECT_EQ(reports[1].result, 0);
    EXPECT_EQ(reports[1].joint[6], 7.0f);
    EXPECT_EQ(reports[1].pose.position.x, 0.0f) << "a pose has six elements";
    EXPECT_EQ(reports[2].result, 9);
    EXPECT_EQ(reports[2].arm_err, 8) << "the report has none";
    EXPECT_EQ(reports[2].joint[0], 0.0f) << "nothing of an earlier report";
}

TEST_F(SpecialRoutes, ReportsOfForceMovesReachTheCallback) {
    dispatch(R"({"state":"Force_Position_State","joint":[1,2,3,4,5,6.5],"force":125,"arm_err":3,)"
             R"("all_direction_force":[1,2,3,4,5,6,7,8]})");
    dispatch(R"({"state":"Force_Position_State","joint":5,"force":-19})");
    dispatch(R"({"is":"Force_Position_State","joint":[1]})");
    dispatch(R"({"state":"Force_Position_State","joint":[1,2,3,4,5,6,7],"all_direction_force":[1,2,3,4,5,6,7,8]})", 3);
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_EQ(reports[0].report_type, 3);
    EXPECT_EQ(reports[0].result, 0);
    EXPECT_EQ(reports[0].force, 12);
    EXPECT_EQ(reports[0].arm_err, 3);
    EXPECT_EQ(reports[0].joint[5], 6.5f);
    EXPECT_EQ(reports[0].all_direction_force[5], 6.0f);
    EXPECT_EQ(reports[0].all_direction_force[6], 0.0f) << "six joints on this connection";
    EXPECT_EQ(reports[3].joint[6], 7.0f);
    EXPECT_EQ(reports[3].all_direction_force[6], 7.0f);
    EXPECT_EQ(reports[1].result, 11);
    EXPECT_EQ(reports[1].force, -1);
    EXPECT_EQ(reports[2].result, 9);
    EXPECT_EQ(reports[2].arm_err, 8);
}

TEST_F(SpecialRoutes, WithoutACallbackReportsAreDropped) {
    callback1 = nullptr;
    for (const char* literal : {"joint_state", "pose_state", "Force_Position_State"}) {
        dispatch(std::string("{\"state\":\"") + literal + "\",\"arm_err\":0,\"joint\":[]}");
    }
    EXPECT_TRUE(reports.empty());
}

TEST_F(SpecialRoutes, StreamedPointsGoToTheFileUntilAllHaveCome) {
    const std::string path = testing::TempDir() + "points_of_" + std::to_string(getpid());
    const auto content = [&] {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    };
    dispatch(R"({"point":[0]})");  // no save in progress
    for (int round = 0; round < 2; ++round) {
        F_SaveDragTeach = std::fopen(path.c_str(), "w");
        ASSERT_NE(F_SaveDragTeach, nullptr);
        Save_Trajectory_Cmd[kSlot].value = 2;
        dispatch(R"({"point":[1]})");
        EXPECT_EQ(content(), "{\"point\":[1]}\n") << "every point is on the disk at once";
        EXPECT_NE(F_SaveDragTeach, nullptr);
        dispatch(R"({"point":[2]})");
        EXPECT_EQ(F_SaveDragTeach, nullptr);
        dispatch(R"({"point":[3]})");
        EXPECT_EQ(content(), "{\"point\":[1]}\n{\"point\":[2]}\n");
    }
    std::remove(path.c_str());
}

}  // namespace
