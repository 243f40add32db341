// The library and a simulated arm, from the connection to the move.
#include <gtest/gtest.h>

#include <cmath>
#include <future>

#include "support/arm.h"
#include "support/kdl_frames.h"
#include "support/scaled_time.h"
#include "support/simulator_process.h"
#include "zk/algorithm.h"
#include "zk/arm_state.h"
#include "zk/connection.h"
#include "zk/motion.h"
#include "zk/realtime.h"
#include "zk/status.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

class LiveArm {
 public:
    explicit LiveArm(const std::string& model, std::vector<std::string> more = {})
        : joints_(model.find("75") != model.npos || model.find("72") != model.npos ? 7 : 6),
          simulator_(with_model(model, std::move(more))) {
        set_time_factor(0);  // the arm may take its time
        ZK_API_Init(joints_ == 7 ? 75 : 65, nullptr);
        socket_ = Arm_Socket_Start("127.0.0.1", simulator_.port(), 1000);
        EXPECT_GT(socket_, ZK_LARGEST_STATUS) << model;
    }
    ~LiveArm() { Arm_Socket_Close(socket_); }

    ArmSocket socket() const { return socket_; }
    int joints() const { return joints_; }

    Pose state(float (&joint)[7]) const {
        Pose pose{};
        uint16_t arm_err = 1, sys_err = 1;
        EXPECT_EQ(Get_Current_Arm_State(socket_, joint, &pose, &arm_err, &sys_err), 0);
        EXPECT_EQ(arm_err, 0);
        EXPECT_EQ(sys_err, 0);
        return pose;
    }

 private:
    static std::vector<std::string> with_model(const std::string& model, std::vector<std::string> more) {
        more.insert(more.end(), {"--quiet", "--model", model});
        return more;
    }

    int joints_;
    SimulatorProcess simulator_;
    ArmSocket socket_ = 0;
};

// The wire carries micrometres and milliradians.
void expect_model_agrees(const LiveArm& arm) {
    float joint[7] = {};
    const Pose reported = arm.state(joint);
    const Pose computed = Algo_Forward_Kinematics(joint);
    EXPECT_LT((to_kdl(computed.position) - to_kdl(reported.position)).Norm(), 2e-5);
    EXPECT_LT(angle_between(to_kdl(computed.euler), to_kdl(reported.euler)), 2e-3);
}

class EveryModel : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(, EveryModel,
                         testing::Values("ZK65-B", "ZK65-ZF", "ZK65-6F", "ZK75-B", "ZK75-ZF", "ZK75-6F", "63-B",
                                         "63-ZF", "63-6F", "ORB65-B", "ORB65-ZF", "ORB65-6F", "62-B", "72-B", "ORB63-B",
                                         "ORB63-ZF", "ORB63-6F"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::erase(name, '-');
                             return name;
                         });

TEST_P(EveryModel, TheLocalModelReturnsThePoseThatTheControllerReports) {
    const std::string model = GetParam();
    const bool seven = model.find("75") != model.npos || model.find("72") != model.npos;
    const LiveArm arm(model, {"--joints", seven ? "10,20,30,40,50,60,70" : "10,20,30,40,50,60", "--tool",
                              "0.02,-0.03,0.15,0.3,-0.2,0.5", "--work", "0.4,0.1,-0.2,-0.1,0.4,1.2", "--install",
                              "30,-45,90", "--no-push"});
    expect_model_agrees(arm);
}

TEST_P(EveryModel, ABlockingMoveEndsAtItsTarget) {
    const LiveArm arm(GetParam());
    const float target[7] = {5, -10, 15, 20, -25, 30, 35};
    EXPECT_EQ(Movej_Cmd(arm.socket(), target, 100, 0, 0, true), 0);
    float joint[7] = {};
    arm.state(joint);
    for (int i = 0; i < arm.joints(); ++i) EXPECT_NEAR(joint[i], target[i], 1e-3) << i;
    expect_model_agrees(arm);
}

TEST(EndToEnd, AStopFromASecondThreadEndsTheMoveThatThePollSees) {
    const LiveArm arm("ZK65-B", {"--push-cycle", "1"});
    RobotStatus status{};
    eventually([&] { return Get_Realtime_Arm_Joint_State(&status) == 0 && status.errCode == 0; });
    const float start = status.joint_position[0];
    const float target[6] = {start + 90, 20, 30, 0, 0, 0};
    std::future<int> move =
        std::async(std::launch::async, [&] { return Movej_Cmd(arm.socket(), target, 1, 0, 0, true); });
    eventually([&] {
        return Get_Realtime_Arm_Joint_State(&status) == 0 && std::fabs(status.joint_position[0] - start) > 0.5f;
    });
    EXPECT_EQ(Move_Stop_Cmd(arm.socket(), true), 0);
    EXPECT_EQ(move.get(), 1);
    float joint[7] = {};
    arm.state(joint);
    EXPECT_LT(joint[0], target[0] - 1);
    EXPECT_GT(joint[0], start);
}

TEST(EndToEnd, ARefusedMoveReturns1) {
    const LiveArm arm("ZK65-B");
    const float beyond[6] = {500, 0, 0, 0, 0, 0};
    for (const bool block : {true, false}) {
        EXPECT_EQ(Movej_Cmd(arm.socket(), beyond, 20, 0, 0, block), 1);
        float joint[7] = {};
        arm.state(joint);  // after this reply the report of the refused move has arrived
    }
    const float target[6] = {1, 1, 1, 1, 1, 1};
    EXPECT_EQ(Movej_Cmd(arm.socket(), target, 100, 0, 0, true), 0) << "the arm works afterwards";
}

}  // namespace
