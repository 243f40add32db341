// Threads: what a callback may call, what waits for its end, and which calls wait for nothing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>

#include "control/connected.h"
#include "support/arm.h"
#include "support/scaled_time.h"
#include "support/start_up.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

std::function<void()> body;  // of the next callback
std::atomic<bool> is_due{false};

void call_back() {
    if (is_due.exchange(false)) body();
}

struct Callback {
    const char* name;
    void (*set)();
    void (*cause)(ScriptedController&, ArmSocket);
    void (*remove)();
};

const Callback kCallbacks[] = {
    {"Report", [] { ZK_API_Init(65, [](ArmMotionReport) { call_back(); }); },
     [](ScriptedController& controller, ArmSocket) { controller.say_bytes({report_message(1)}); }, nullptr},
    {"Change",
     [] {
         ZK_Set_Connection_Callback([](void*, ArmSocket, ZK_ConnectionState, const char*) { call_back(); }, nullptr);
     },
     [](ScriptedController& controller, ArmSocket) { controller.close(); },
     [] { ZK_Set_Connection_Callback(nullptr, nullptr); }},
    {"Log", [] { ZK_Set_Log([](void*, ZK_LogLevel, ArmSocket, const char*) { call_back(); }, nullptr, ZK_LOG_FRAMES); },
     [](ScriptedController&, ArmSocket arm) { EXPECT_EQ(Move_Pause_Cmd_NonBlock(arm), 0); },
     [] { ZK_Set_Log(nullptr, nullptr, ZK_LOG_FRAMES); }}};

void PrintTo(const Callback& callback, std::ostream* out) { *out << callback.name; }

class ACallback : public testing::TestWithParam<Callback> {
 protected:
    void SetUp() override {
        GetParam().set();
        answer_start_up(controller_);
        arm_ = connected(controller_.port());
    }
    // Runs in a callback, which it returns from before the test ends.
    void in_the_callback(std::function<void()> what) {
        body = std::move(what);
        is_due = true;
        GetParam().cause(controller_, arm_);
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};
INSTANTIATE_TEST_SUITE_P(, ACallback, testing::ValuesIn(kCallbacks),
                         [](const auto& row) { return std::string(row.param.name); });

// One that runs under a lock hangs here.
TEST_P(ACallback, MayCallWhatDoesNotWait) {
    ScriptedController second;
    answer_start_up(second);
    const ArmSocket other = connected(second.port());
    set_time_factor(1000);
    std::atomic<bool> done{false};
    in_the_callback([&] {
        float speed[7];
        ZK_ConnectionRecord record;
        ZK_State state;
        ZK_Advice advice;
        EXPECT_EQ(ZK_Stop(other, ZK_STOP | ZK_DROP_QUEUED), 0);
        EXPECT_EQ(ZK_Cancel(other), 0);
        EXPECT_EQ(ZK_Connection(other, &record), 0);
        EXPECT_EQ(ZK_Get_State(other, &state, 0), ZK_NO_STATE);
        EXPECT_EQ(ZK_Explain(7, 0, 0, &advice), 0);
        ZK_Model_Free(ZK_Arm_Model(other));
        EXPECT_EQ(Get_Joint_Speed_Block(other, speed), ZK_TIMEOUT) << "the library's thread is here";
        EXPECT_EQ(Move_Pause_Cmd_NonBlock(other), 0);
        ZK_Set_Log(nullptr, nullptr, ZK_LOG_EVENTS);
        ZK_Set_Connection_Callback(nullptr, nullptr);
        EXPECT_EQ(ZK_Close(arm_), 0);
        done = true;
    });
    eventually([&] { return done.load(); });
    EXPECT_NE(second.wait_for_request("set_arm_pause"), "");
}

TEST_P(ACallback, HasEndedWhenTheCallThatEndsItReturns) {
    const auto has_ended_after = [&](const std::function<void()>& end) {
        std::atomic<bool> is_inside{false}, is_to_end{false};
        in_the_callback([&] {
            is_inside = true;
            while (!is_to_end) sleep_cp(1);
            sleep_cp(50);
            is_inside = false;
        });
        eventually([&] { return is_inside.load(); });
        is_to_end = true;
        end();
        return !is_inside;
    };
    if (GetParam().remove) {
        EXPECT_TRUE(has_ended_after(GetParam().remove));
        GetParam().set();
        arm_ = connected(controller_.port());
    }
    EXPECT_TRUE(has_ended_after([&] { EXPECT_EQ(ZK_Close(arm_), 0); }));
}

class Threads : public testing::Test {
 protected:
    void SetUp() override {
        set_time_factor(0);
        answer_start_up(controller_);
        arm_ = connected(controller_.port());
    }
    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

TEST_F(Threads, ASignalHandlerMayCancel) {
    static ArmSocket arm;
    arm = arm_;
    std::signal(SIGUSR1, [](int) { ZK_Cancel(arm); });
    controller_.forget_requests();
    auto wait = std::async(std::launch::async, [this] { return ZK_Wait_Idle(arm_, 1000); });
    controller_.wait_for_request("get_arm_current_trajectory");
    std::raise(SIGUSR1);
    EXPECT_EQ(wait.get(), ZK_CANCELLED);
}

// A file holds the line, this thread has the queue, and another one the model.
TEST_F(Threads, WhatWaitsForNothing) {
    ScriptedController silent;
    set_shared(m_nOutTime, INT32_MAX);
    auto start = std::async(std::launch::async, [&] { return Arm_Socket_Start("127.0.0.1", silent.port(), 0); });
    silent.wait_for_request("get_arm_software_info");
    set_shared(IsSendFile, 1);
    ZK_Mutex_Lock();
    Queue_Mutex_Lock();
    ZK_ConnectionRecord record;
    ZK_State state;
    EXPECT_EQ(ZK_Stop(arm_, ZK_STOP), 0);
    EXPECT_EQ(ZK_Cancel(arm_), 0);
    EXPECT_EQ(ZK_Set_Deadline(arm_, 100, 0), 0);
    EXPECT_EQ(ZK_Connection(arm_, &record), 0);
    EXPECT_EQ(ZK_Get_State(arm_, &state, 0), ZK_NO_STATE);
    EXPECT_NE(controller_.wait_for_request("set_arm_stop"), "");
    Queue_Mutex_UnLock();
    ZK_Mutex_UnLock();
    EXPECT_EQ(ZK_Close(arm_), 0);

    ZK_ConnectOptions options{};
    options.flags = ZK_KEEP_MODEL;
    EXPECT_EQ(ZK_Connect("127.0.0.1", controller_.port(), &options, &arm_), 0) << ZK_Failure();
    controller_.forget_requests();
    std::thread end([&] {
        controller_.wait_for_request("get_realtime_push");
        controller_.wait_until_read();
        set_time_factor(1000000);
    });
    EXPECT_EQ(connect_to(controller_.port(), arm_), ZK_NO_ANSWER);
    EXPECT_NE(std::string(ZK_Failure()).find("process-wide model"), std::string::npos) << ZK_Failure();
    end.join();
    Arm_Socket_Close(shared(SockInfo[1].socket));
    EXPECT_EQ(start.get(), 5);
}

// While this thread has the second lock, another one gets the first and waits.
TEST_F(Threads, WhatTakesBothLocks) {
    for (int (*call)(ArmSocket) : {Move_Pause_Cmd_NonBlock, Move_Stop_Cmd_Block,
                                   +[](ArmSocket s) { return ZK_Stop(s, ZK_STOP | ZK_DROP_QUEUED); }, ZK_Close}) {
        controller_.answer("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
        Queue_Mutex_Lock();
        auto status = std::async(std::launch::async, call, arm_);
        eventually([] {
            const bool is_taken = pthread_mutex_trylock(&m_hMutex) != 0;
            if (!is_taken) ZK_Mutex_UnLock();
            return is_taken;
        });
        Queue_Mutex_UnLock();
        EXPECT_EQ(status.get(), 0);
    }
}

// The disk takes no more until this thread reads, and then it is full.
TEST_F(Threads, ARecordingDelaysNobodyAndReports) {
    constexpr int kPoints = 30;
    int ends[2], total = 0;
    ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
    fcntl(ends[1], F_SETFL, 0);
    std::string points;
    for (int i = 0; i < kPoints; ++i) points += line(R"({"point":[")" + std::string(5000, 'x') + "\"]}");
    const std::string announcement = R"({"command":"save_trajectory","save_state":true,"total_num":)";
    controller_.answer_bytes("save_trajectory", {line(announcement + std::to_string(kPoints) + "}") + points});
    EXPECT_EQ(Save_Trajectory(arm_, ("/proc/self/fd/" + std::to_string(ends[1])).c_str(), &total), 0);
    float speed[7];
    eventually([&] {
        pollfd disk{ends[1], POLLOUT, 0};
        return poll(&disk, 1, 0) == 0;
    });
    EXPECT_EQ(Get_Joint_Speed_Block(arm_, speed), 0);
    eventually([&] {
        char bytes[4096];
        while (read(ends[0], bytes, sizeof bytes) > 0) continue;
        return shared(F_SaveDragTeach) == nullptr;
    });

    static ArmSocket arm;
    static std::atomic<bool> is_reported{false};
    arm = arm_;
    ZK_Set_Log(
        [](void*, ZK_LogLevel, ArmSocket, const char* text) {
            float joint[7];
            EXPECT_EQ(Get_Joint_Speed_Block(arm, joint), 0) << "neither under a lock nor on a thread of replies";
            if (std::string(text).find("recording") != std::string::npos) is_reported = true;
        },
        nullptr, ZK_LOG_EVENTS);
    controller_.answer_bytes("save_trajectory", {line(announcement + "1}") + line(R"({"point":[1]})")});
    EXPECT_EQ(Save_Trajectory(arm_, "/dev/full", &total), 0);
    eventually([] { return is_reported.load(); });
    ZK_Set_Log(nullptr, nullptr, ZK_LOG_EVENTS);
    for (const int end : ends) close(end);
}

TEST_F(Threads, ACallThatWaitsForItsTurnKeepsItsLimit) {
    controller_.ignore("get_arm_current_trajectory");
    set_shared(m_nOutTime, INT32_MAX);
    int32_t type;
    float joint[8];
    controller_.forget_requests();
    auto query = std::async(std::launch::async, [&] { return Get_Current_Trajectory(arm_, &type, joint); });
    controller_.wait_for_request("get_arm_current_trajectory");
    set_time_factor(1000);
    EXPECT_EQ(ZK_Wait_Idle(arm_, 100), ZK_BUSY);
    EXPECT_EQ(ZK_Cancel(arm_), 0);
    EXPECT_EQ(query.get(), ZK_CANCELLED);
}

}  // namespace
