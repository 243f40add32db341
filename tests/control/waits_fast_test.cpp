// Waiting for an arm and for its programs.
#include <gtest/gtest.h>

#include <cmath>
#include <future>

#include "control/connected.h"
#include "support/arm.h"
#include "support/datagram.h"
#include "support/scaled_time.h"
#include "support/simulator_process.h"
#include "support/start_up.h"
#include "support/udp.h"
#include "zk/arm_state.h"
#include "zk/control.h"
#include "zk/motion.h"
#include "zk/programs.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

constexpr int kLong = 60000;

TEST(Waiting, FollowsAMotionToItsEnd) {
    const SimulatorProcess simulator({"--joints", "0,0,0,0,0,0"});
    const ArmSocket arm = connected(simulator.port());
    float share = -1;
    EXPECT_EQ(ZK_Wait_Idle(arm, kLong), 0);
    EXPECT_EQ(ZK_Move_Progress(arm, &share), 0);
    EXPECT_EQ(share, 1.0f) << "at rest";
    ZK_State state{};
    eventually([&] { return ZK_Get_State(arm, &state, 0) == ZK_OK; });

    float there[7] = {60, 0, 0, 0, 0, 0}, joint[7];
    ASSERT_EQ(Movej_Cmd(arm, there, 20, 0, 0, false), 0);
    float last = 0;
    int looks = 0;
    for (; last < 1; ++looks) {
        ASSERT_EQ(ZK_Get_State(arm, &state, 0), 0);
        const float before = state.status.joint_position[0];
        if (ZK_Move_Progress(arm, &share) != 0) continue;  // a starved stream
        ASSERT_EQ(ZK_Get_State(arm, &state, 0), 0);
        EXPECT_GE(share, last);
        EXPECT_GE(share * 60, before - 0.1f);
        if (share < 1) {
            EXPECT_LE(share * 60, state.status.joint_position[0] + 0.1f);
        }
        last = share;
    }
    EXPECT_GT(looks, 1);
    EXPECT_EQ(ZK_Wait_Idle(arm, kLong), 0);
    ASSERT_EQ(Get_Joint_Degree(arm, joint), 0);
    EXPECT_NEAR(joint[0], 60, 0.01);

    float back[7] = {};
    ASSERT_EQ(Movej_Cmd(arm, back, 1, 0, 0, false), 0);
    auto wait = std::async(std::launch::async, [&] { return ZK_Wait_Idle(arm, kLong); });
    eventually([&] { return ZK_Move_Progress(arm, &share) == 0 && share < 0.5f; });
    EXPECT_LT(share, 0.5f) << "the second motion starts where the first one ended";
    while (wait.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) ZK_Cancel(arm);
    EXPECT_EQ(wait.get(), ZK_CANCELLED);
    EXPECT_EQ(ZK_Stop(arm, ZK_STOP), 0);
    EXPECT_EQ(ZK_Wait_Idle(arm, kLong), 0);
}

TEST(Waiting, ForMotionsThatWereStartedWithoutWaiting) {
    const SimulatorProcess simulator({"--joints", "0,0,0,0,0,0"});
    const ArmSocket arm = connected(simulator.port());
    float there[7] = {20, 0, 0, 0, 0, 0}, back[7] = {10, 0, 0, 0, 0, 0}, beyond[7] = {1000}, nowhere[7] = {NAN},
          joint[7];
    EXPECT_EQ(ZK_Wait_Move(arm, kLong), ZK_NO_TRAJECTORY) << "none was started";
    ASSERT_EQ(Movej_Cmd(arm, there, 50, 0, 0, false), 0);
    ASSERT_EQ(Movej_Cmd(arm, back, 50, 0, 0, false), 0);
    EXPECT_EQ(Movej_Cmd(arm, beyond, 50, 0, 0, false), ZK_REFUSED);
    EXPECT_EQ(ZK_Wait_Move(arm, 1), ZK_TIMEOUT);
    EXPECT_EQ(ZK_Wait_Move(arm, kLong), 0) << "the motion before the refused one ends last";
    ASSERT_EQ(Get_Joint_Degree(arm, joint), 0);
    EXPECT_NEAR(joint[0], 10, 0.01) << "the end of the first one is not the end";
    EXPECT_EQ(ZK_Wait_Move(arm, kLong), 0) << "again";
    EXPECT_EQ(Movej_Cmd(arm, nowhere, 50, 0, 0, false), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Wait_Move(arm, kLong), 0) << "what was not sent is no motion";
    EXPECT_EQ(Movej_Cmd(arm, beyond, 50, 0, 0, false), ZK_REFUSED);
    EXPECT_EQ(ZK_Wait_Move(arm, kLong), ZK_REFUSED);
    ASSERT_EQ(Movej_Cmd(arm, there, 50, 0, 1, false), 0);
    EXPECT_EQ(Movej_Cmd(arm, there, 50, 0, 0, true), 0);
    EXPECT_EQ(ZK_Wait_Move(arm, kLong), 0) << "a motion that was waited for counts as well";

    ASSERT_EQ(Movej_Cmd(arm, back, 1, 0, 0, false), 0);
    ASSERT_EQ(Movej_Cmd(arm, there, 1, 0, 0, false), 0);
    auto wait = std::async(std::launch::async, [&] { return ZK_Wait_Move(arm, kLong); });
    EXPECT_EQ(ZK_Stop(arm, ZK_STOP | ZK_DROP_QUEUED), 0);
    EXPECT_EQ(wait.get(), ZK_REFUSED);
}

class ScriptedWaits : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        answer_start_up(controller_);
        arm_ = connected(controller_.port());
    }
    static std::string trajectory(const std::string& type) {
        return R"({"state":"arm_current_trajectory","type":")" + type + R"(","data":[0,0,0,0,0,0]})";
    }
    static std::string program(int state, int id, int line) {
        return R"({"state":"get_program_run_state","run_state":)" + std::to_string(state) + R"(,"id":)" +
               std::to_string(id) + R"(,"plan_num":)" + std::to_string(line) +
               R"(,"loop_num":[],"loop_cont":[],"plan_speed":20,"step_mode":0})";
    }
    // The status of a wait whose time runs out after some requests.
    int status_in_time(const std::function<int()>& wait, const std::string& request) {
        controller_.forget_requests();
        std::thread end([&] {
            for (int i = 0; i < 3; ++i) controller_.wait_for_request(request);
            set_time_factor(1000000);
        });
        const int status = wait();
        end.join();
        set_time_factor(0);
        return status;
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

constexpr char kProgram[] = "get_program_run_state", kTrajectory[] = "get_arm_current_trajectory";

TEST_F(ScriptedWaits, AProgramRunsUntilTheControllerSaysNone) {
    const std::string none = R"({"state":"get_program_run_state","run_state":0})";
    ZK_ProgramOutcome outcome{-2, -2, -2};
    controller_.answer_in_turn(kProgram, {program(1, 7, 3), program(2, 7, 5), none});
    EXPECT_EQ(ZK_Wait_Program(arm_, kLong, &outcome), 0);
    EXPECT_EQ(outcome.program, 7);
    EXPECT_EQ(outcome.line, 5);
    EXPECT_EQ(outcome.run_state, ZK_PROGRAM_NONE);
    controller_.answer(kProgram, none);
    EXPECT_EQ(ZK_Wait_Program(arm_, kLong, &outcome), 0);
    EXPECT_EQ(outcome.program, 0);
    controller_.answer(kProgram, R"({"state":"get_program_run_state","run_state":1})");
    EXPECT_EQ(ZK_Wait_Program(arm_, kLong, nullptr), 9) << "a broken reply ends the wait";
    controller_.answer(kProgram, program(1, 8, 2));
    EXPECT_EQ(status_in_time([&] { return ZK_Wait_Program(arm_, kLong, &outcome); }, kProgram), ZK_TIMEOUT);
    EXPECT_EQ(outcome.program, 8);
    EXPECT_EQ(outcome.run_state, ZK_PROGRAM_RUNNING);
}

// The reply to a query that was cancelled comes for the first one of the next wait.
TEST_F(ScriptedWaits, ALateReplyDoesNotEndTheNextWait) {
    controller_.answer_in_turn(kTrajectory,
                               {trajectory("none"), trajectory("movej"), trajectory("none"), trajectory("none")});
    EXPECT_EQ(ZK_Wait_Idle(arm_, kLong), 0);
    controller_.answer_in_turn(kProgram, {R"({"state":"get_program_run_state","run_state":0})", program(1, 7, 3),
                                          R"({"state":"get_program_run_state","run_state":0})"});
    ZK_ProgramOutcome outcome{};
    EXPECT_EQ(ZK_Wait_Program(arm_, kLong, &outcome), 0);
    EXPECT_EQ(outcome.program, 7);
    for (int i = 0; i < 4; ++i) EXPECT_NE(controller_.wait_for_request(kTrajectory), "");
}

// From where the arm stood still, and then from the target before when it does not stand still.
TEST_F(ScriptedWaits, AProgressHasItsStart) {
    const int port = reserve_udp_port();
    controller_.answer("get_realtime_push", realtime_push_on(port));
    const ArmSocket arm = connected(controller_.port());
    uint32_t sent = 0;
    const auto share_at = [&](int degrees, int target, int records = 1) {
        nlohmann::json datagram = full_datagram();
        datagram["joint_status"]["joint_position"] = std::vector<int>(6, 1000 * degrees);
        ZK_State state;
        for (int i = 0; i < records; ++i) {
            send_datagram(port, datagram.dump());
            ++sent;
            eventually([&] { return ZK_Get_State(arm, &state, 0) == ZK_OK && state.sequence == sent; });
        }
        const nlohmann::json joints(std::vector<int>(6, 1000 * target));
        controller_.answer(kTrajectory,
                           R"({"state":"arm_current_trajectory","type":"movej","data":)" + joints.dump() + "}");
        float share = -1;
        EXPECT_EQ(ZK_Move_Progress(arm, &share), 0) << ZK_Failure();
        return share;
    };
    share_at(1, 5);
    EXPECT_FLOAT_EQ(share_at(0, 5, 6), 0);  // at rest
    EXPECT_FLOAT_EQ(share_at(5, 10), 0.5f) << "seen first on its way";
    EXPECT_FLOAT_EQ(share_at(8, 10), 0.8f);
    EXPECT_FLOAT_EQ(share_at(15, 20), 0.5f) << "joined to the motion before";
    EXPECT_FLOAT_EQ(share_at(30, 20), 1.0f);
}

TEST_F(ScriptedWaits, ALookWithoutAReplyFindsNothing) {
    set_time_factor(1);
    set_shared(m_nOutTime, 50);
    controller_.answer_with(kTrajectory, [looks = 0](const std::string&) mutable {
        return ++looks == 1 ? Pieces{} : Pieces{line(trajectory("none"))};
    });
    EXPECT_EQ(ZK_Wait_Idle(arm_, kLong), 0);
}

// The arm is idle at the end of the time, and the second question gets no reply.
TEST_F(ScriptedWaits, AWaitKeepsItsTimeWhateverItAsks) {
    constexpr int kTime = 2000;
    set_time_factor(10);
    controller_.answer_with(kTrajectory, [end = Get_Program_Runtime() + kTime * 9 / 10, looks = 0](auto&) mutable {
        if (++looks > 1) return Pieces{};
        while (Get_Program_Runtime() < end) std::this_thread::yield();
        return Pieces{line(trajectory("none"))};
    });
    const int64_t before = slept();
    EXPECT_EQ(ZK_Wait_Idle(arm_, kTime), ZK_TIMEOUT);
    EXPECT_LE(slept() - before, kTime);
}

// The controller has lost the report of the motion.
TEST_F(ScriptedWaits, AnIdleArmSendsNoReport) {
    float joint[7] = {};
    controller_.answer("movej", R"({"command":"movej","receive_state":true})");
    ASSERT_EQ(Movej_Cmd(arm_, joint, 20, 0, 0, false), 0);
    controller_.answer_in_turn(kTrajectory, {trajectory("none"), trajectory("none"), trajectory("movej"),
                                             trajectory("none"), trajectory("none")});
    int status;
    while ((status = ZK_Wait_Move(arm_, 1)) == ZK_TIMEOUT) continue;
    EXPECT_EQ(status, ZK_NO_TRAJECTORY);
    for (int i = 0; i < 5; ++i) EXPECT_NE(controller_.wait_for_request(kTrajectory), "") << "not idle before it moved";
    EXPECT_EQ(ZK_Wait_Move(arm_, 0), 19);
}

TEST_F(ScriptedWaits, EndAsTheyAreAsked) {
    float share;
    controller_.answer(kTrajectory, trajectory("movel"));
    EXPECT_EQ(status_in_time([&] { return ZK_Wait_Idle(arm_, kLong); }, kTrajectory), ZK_TIMEOUT);
    EXPECT_EQ(ZK_Move_Progress(arm_, &share), ZK_NO_STATE);
    controller_.answer(kTrajectory, trajectory("hop"));
    EXPECT_EQ(ZK_Wait_Idle(arm_, kLong), 11);
    EXPECT_EQ(ZK_Wait_Idle(arm_, 0), 19);
    EXPECT_EQ(ZK_Wait_Program(arm_, -1, nullptr), 19);
    EXPECT_EQ(ZK_Move_Progress(arm_, nullptr), 19);
    controller_.ignore(kTrajectory);
    controller_.forget_requests();
    auto wait = std::async(std::launch::async, [&] { return ZK_Wait_Idle(arm_, kLong); });
    controller_.wait_for_request(kTrajectory);
    controller_.close();
    EXPECT_EQ(wait.get(), ZK_LOST);
    EXPECT_EQ(ZK_Wait_Idle(arm_, kLong), ZK_LOST);
    EXPECT_STREQ(ZK_Failure(), ZK_Status_Text(ZK_LOST));
    EXPECT_EQ(ZK_Close(arm_), 0);
    EXPECT_EQ(ZK_Wait_Idle(arm_, kLong), ZK_STALE_HANDLE);
    EXPECT_EQ(ZK_Wait_Program(arm_, kLong, nullptr), ZK_STALE_HANDLE);
    EXPECT_EQ(ZK_Wait_Move(arm_, kLong), ZK_STALE_HANDLE);
    EXPECT_EQ(ZK_Move_Progress(arm_, &share), ZK_STALE_HANDLE);
}

}  // namespace
