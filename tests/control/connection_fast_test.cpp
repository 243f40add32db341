// Connections of ZK_Connect: how their calls end, who may call while another does, and what they report.
#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <future>
#include <map>
#include <mutex>
#include <set>

#include "connection/waits.h"
#include "support/scaled_time.h"
#include "support/start_up.h"
#include "support/temporary_file.h"

namespace {

using namespace zk::test;

const char* const kStopRequest = R"({
	"command":	"set_arm_stop"
})";

ArmSocket connect(ScriptedController& controller, const ZK_ConnectOptions* options = nullptr) {
    ArmSocket arm = 0;
    answer_start_up(controller);
    EXPECT_EQ(ZK_Connect("127.0.0.1", controller.port(), options, &arm), 0) << ZK_Failure();
    EXPECT_GT(arm, ZK_LARGEST_STATUS);
    controller.forget_requests();
    return arm;
}

ZK_ConnectionRecord look_at(ArmSocket arm) {
    ZK_ConnectionRecord record;
    EXPECT_EQ(ZK_Connection(arm, &record), 0);
    return record;
}

float first_speed(ArmSocket arm) {
    float speed[7] = {};
    EXPECT_EQ(Get_Joint_Speed_Block(arm, speed), 0);
    return speed[0];
}

const char kWaitMove[] = "ZK_Wait_Move";

// Calls that connections of Arm_Socket_Start have too, and one that waits for a motion that was started before.
std::vector<WaitingCall> all_waits() {
    std::vector<WaitingCall> all(std::begin(kWaits), std::end(kWaits));
    all.push_back({kWaitMove,
                   [](ArmSocket s) { return ZK_Wait_Move(s, INT32_MAX); },
                   "get_arm_current_trajectory",
                   {kReport},
                   &Move_Cmd[0].count});
    return all;
}

class EveryWait : public testing::TestWithParam<WaitingCall> {
 protected:
    // A new connection, on which a motion has been started.
    static ArmSocket connect_and_move(ScriptedController& controller) {
        const ArmSocket arm = connect(controller);
        controller.answer("movej", done("movej", "receive_state"));
        EXPECT_EQ(Movej_Cmd(arm, kJoints, 20, 0, 0, false), 0);
        controller.ignore("movej");
        controller.ignore("get_joint_max_speed");
        controller.forget_requests();
        return arm;
    }
    // Starts the call on a new connection, ends it, and returns its status.
    template <class End>
    int status_after(End end) {
        ScriptedController controller;
        const ArmSocket arm = connect_and_move(controller);
        keep_waiting(controller, GetParam());
        set_time_factor(0);
        std::future<int> status = std::async(std::launch::async, [arm] { return GetParam().call(arm); });
        controller.wait_for_request(GetParam().request);
        end(controller, arm);
        const int result = status.get();
        ZK_Close(arm);
        return result;
    }
};
INSTANTIATE_TEST_SUITE_P(, EveryWait, testing::ValuesIn(all_waits()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(EveryWait, EndsAtOnceWhenItIsToEnd) {
    EXPECT_EQ(status_after([](ScriptedController&, ArmSocket arm) { EXPECT_EQ(ZK_Cancel(arm), 0); }), ZK_CANCELLED);
    EXPECT_EQ(status_after([](ScriptedController&, ArmSocket arm) { EXPECT_EQ(ZK_Close(arm), 0); }), ZK_NOT_CONNECTED);
    using End = ScriptedController::End;
    for (const End end : {End::kClose, End::kReset, End::kHalfClose}) {
        const auto lose = [end](ScriptedController& controller, ArmSocket) {
            controller.close(ScriptedController::kLatest, end);
        };
        EXPECT_EQ(status_after(lose), ZK_LOST) << static_cast<int>(end);
    }
}

struct Sharing {
    std::string excludes;       // calls of its kind; "": none
    std::string reply;          // of calls that have it in turn; "": its own
    std::string first_request;  // where the call waits after a later one
};
Sharing sharing_of(const std::string& name) {
    static const std::map<std::string, Sharing> all = {
        {"Movej_Cmd", {"motion", "acceptance", "movej"}},
        {"Movel_Cmd", {"", "acceptance", ""}},
        {"Pos_Step_Cmd_Block", {"motion", "", ""}},
        {"Set_Lift_Height", {"motion", "", "set_lift_height"}},
        {"Expand_Set_Pos", {"motion", "", ""}},
        {"Set_Gripper_Pick", {"motion", "", ""}},
        {"Auto_Fix_Joint_Over_Soft_Limit", {"motion", "", ""}},
        {"Set_Program_ID_Start", {"program", "", "set_program_id_start"}},
        {"Run_Drag_Trajectory", {"replay", "", "run_drag_trajectory"}},
        {"save_trajectory", {"recording", "", ""}},
        {"send_project", {"file", "", ""}},
        {"ask_speed", {"", "speed", ""}},
        {"Arm_Socket_State_Block", {"", "speed", ""}}};
    const auto found = all.find(name);
    return found == all.end() ? Sharing{} : found->second;
}

// Each pair, in both orders.
TEST_P(EveryWait, SharesTheConnectionByTheRule) {
    ScriptedController controller;
    const ArmSocket arm = connect_and_move(controller);
    keep_waiting(controller, GetParam());
    set_time_factor(0);
    const Sharing held = sharing_of(GetParam().name);
    for (const WaitingCall& other : all_waits()) {
        const std::string name = other.name;
        if (held.excludes == "file" && name == kWaitMove) continue;  // AWaitOutlastsAFile
        const Sharing wanted = sharing_of(name);
        EXPECT_EQ(Move_Pause_Cmd_NonBlock(arm), 0);  // after what the pair before has queued
        controller.wait_for_request("set_arm_pause");
        controller.forget_requests();
        std::future<int> first = std::async(std::launch::async, [arm] { return GetParam().call(arm); });
        controller.wait_for_request(GetParam().request);
        std::future<int> second = std::async(std::launch::async, [&] { return other.call(arm); });
        if (!held.excludes.empty() && held.excludes == wanted.excludes) {
            EXPECT_EQ(second.get(), ZK_BUSY) << name;
        } else if (held.excludes == "file") {
            const bool is_written_at_once = name == "Arm_Socket_State_Block" || name == "Set_Lift";
            EXPECT_EQ(second.get(), is_written_at_once ? ZK_SEND_FAILED : ZK_SENDING_FILE) << name;
        } else if (name != GetParam().name && (held.reply.empty() || held.reply != wanted.reply)) {
            controller.wait_for_request(wanted.first_request.empty() ? other.request : wanted.first_request);
        }
        // A cancel does not end a call that begins after it.
        while (second.valid() && second.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
            ZK_Cancel(arm);
        }
        ZK_Cancel(arm);
        EXPECT_EQ(first.get(), ZK_CANCELLED) << name;
    }
    ZK_Close(arm);
}

TEST_P(EveryWait, EndsAtItsDeadlineAndStopsTheArm) {
    ScriptedController controller;
    const ArmSocket arm = connect_and_move(controller);
    keep_waiting(controller, GetParam());
    EXPECT_EQ(ZK_Set_Deadline(arm, 300, ZK_ALL_THREADS), 0);
    EXPECT_EQ(ZK_Set_Deadline(arm, 100, ZK_STOP_AT_DEADLINE), 0);
    EXPECT_EQ(GetParam().call(arm), ZK_DEADLINE);
    EXPECT_NE(controller.wait_for_request("set_arm_stop"), "");
    EXPECT_EQ(ZK_Set_Deadline(arm, 0, 0), 0);
    EXPECT_EQ(ZK_Set_Deadline(arm, 0, ZK_ALL_THREADS), 0);
}

class Connections : public testing::Test {
 protected:
    void SetUp() override { set_time_factor(0); }
    ScriptedController controller_;
};

TEST_F(Connections, SecondMotionIsRefusedAndQueriesAreServed) {
    const ArmSocket arm = connect(controller_);
    controller_.answer("get_arm_current_trajectory", kMoving);
    const auto move = [arm] { return Movej_Cmd(arm, kJoints, 20, 0, 0, true); };
    std::future<int> first = std::async(std::launch::async, move);
    controller_.wait_for_request("get_arm_current_trajectory");
    EXPECT_EQ(move(), ZK_BUSY);
    EXPECT_EQ(Set_Lift_Height(arm, 300, 20, true), ZK_BUSY);
    std::vector<std::future<float>> queries;
    for (int i = 0; i < 4; ++i) queries.push_back(std::async(std::launch::async, first_speed, arm));
    for (std::future<float>& speed : queries) EXPECT_EQ(speed.get(), 180);
    controller_.say(
        R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,"trajectory_connect":0})");
    EXPECT_EQ(first.get(), 0);
}

TEST_F(Connections, AStopOvertakesAllQueuedFramesAndDropsThoseOfItsArm) {
    ScriptedController second;
    const ArmSocket arm = connect(controller_), other = connect(second);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Move_Continue_Cmd_NonBlock(arm), 0);
        EXPECT_EQ(Move_Pause_Cmd_NonBlock(other), 0);
    }
    EXPECT_EQ(ZK_Stop(arm, ZK_STOP | ZK_DROP_QUEUED), 0);
    EXPECT_EQ(controller_.wait_for_request("set_arm_stop"), kStopRequest);
    for (int i = 0; i < 100; ++i) EXPECT_NE(second.wait_for_request("set_arm_pause"), "");
    first_speed(arm);
    const std::string all = controller_.received();
    EXPECT_EQ(all.find("set_arm_continue", all.find("set_arm_stop")), std::string::npos);
}

TEST_F(Connections, AStopDuringATransferTakesASecondConnection) {
    const ArmSocket arm = connect(controller_);
    std::future<int> transfer = std::async(std::launch::async, [arm] { return send_project(arm); });
    controller_.wait_for_request("file");
    EXPECT_EQ(ZK_Stop(arm, ZK_EMERGENCY_STOP), 0);
    EXPECT_EQ(controller_.wait_for_request("set_arm_stop", 1), kStopRequest);
    EXPECT_NE(controller_.wait_for_request("set_arm_power", 1), "");
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(arm), ZK_SENDING_FILE);
    Movej_CANFD(arm, kJoints, false, 0);
    EXPECT_EQ(controller_.received(0, 0).find("canfd"), std::string::npos);
    ZK_Cancel(arm);
    EXPECT_EQ(transfer.get(), ZK_CANCELLED);
}

TEST_F(Connections, AStaleHandleReachesNobody) {
    const ArmSocket old = connect(controller_);
    EXPECT_EQ(ZK_Close(old), 0);
    const ArmSocket arm = connect(controller_);
    EXPECT_NE(old, arm);
    EXPECT_EQ(Get_Socket_Idx(old), -1);
    EXPECT_EQ(Movej_Cmd(old, kJoints, 20, 0, 0, true), ZK_NOT_CONNECTED);
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(old), ZK_NOT_CONNECTED);
    Movej_CANFD(old, kJoints, false, 0);
    Add_Queue(old, "{}\r\n", 4);
    Arm_Socket_Close(old);
    ZK_ConnectionRecord record;
    for (const int status : {ZK_Close(old), ZK_Cancel(old), ZK_Stop(old, ZK_STOP), ZK_Set_Deadline(old, 10, 0),
                             ZK_Connection(old, &record), ZK_Cancel(3), ZK_Close(ZK_LARGEST_STATUS + 1)}) {
        EXPECT_EQ(status, ZK_STALE_HANDLE);
    }
    EXPECT_EQ(first_speed(arm), 180);
    const std::string all = controller_.received();
    EXPECT_EQ(std::count(all.begin(), all.end(), '{'), 10) << "nine questions and the speed";
}

TEST_F(Connections, AClosedConnectionLeavesTheOthersAlone) {
    ScriptedController second, third;
    const ArmSocket first_arm = connect(controller_), second_arm = connect(second);
    const ArmSocket plain = connect_arm(third), third_arm = connect(third);
    EXPECT_EQ(ZK_Close(first_arm), 0);
    EXPECT_EQ(first_speed(second_arm), 180);
    EXPECT_EQ(first_speed(plain), 180);
    Arm_Socket_Close(plain);
    EXPECT_EQ(first_speed(third_arm), 180);
    EXPECT_EQ(ZK_Close_All(), 2);
    EXPECT_EQ(shared(m_nSockInfoLen), 0);
}

// The wire has no number for a request: what the controller says to the first call ends the second.
TEST_F(Connections, WhatHasEndedEarlyMayEndTheNextOfItsKind) {
    const ArmSocket arm = connect(controller_);
    for (const WaitingCall& wait : kWaits) {
        const std::string name = wait.name;
        if (name != "ask_speed" && name != "Expand_Set_Pos") continue;
        controller_.ignore("get_joint_max_speed");
        std::future<int> first = std::async(std::launch::async, wait.call, arm);
        controller_.wait_for_request(wait.request);
        ZK_Cancel(arm);
        EXPECT_EQ(first.get(), ZK_CANCELLED);
        std::future<int> second = std::async(std::launch::async, wait.call, arm);
        controller_.wait_for_request(wait.request);
        for (const std::string& message : wait.messages) controller_.say(message);
        EXPECT_EQ(second.get(), name == "ask_speed" ? ZK_OK : ZK_OTHER_DEVICE) << name;
    }
}

// What asks the controller meanwhile cannot do so while a file is sent.
TEST_F(Connections, AWaitOutlastsAFile) {
    const ArmSocket arm = connect(controller_);
    keep_waiting(controller_, kWaits[0]);
    controller_.answer_with("get_current_arm_state", [angle = 0](const std::string&) mutable {
        const std::string joint = std::to_string(angle += 1000) + ",0,0,0,0,0";
        return Pieces{line(R"({"state":"current_arm_state","arm_state":{"joint":[)" + joint +
                           R"(],"pose":[0,0,0,0,0,0],"arm_err":0,"sys_err":0}})")};
    });
    set_shared(m_nOutTime, INT32_MAX);
    struct Polling {
        int (*call)(ArmSocket);
        const char* request;
    };
    for (const auto& [call, request] :
         {Polling{[](ArmSocket s) { return Movej_Cmd(s, kJoints, 20, 0, 0, true); }, "get_arm_current_trajectory"},
          {[](ArmSocket s) { return Set_Program_ID_Start(s, 3, 20, true); }, "get_program_run_state"},
          {[](ArmSocket s) { return Drag_Trajectory_Origin(s, true); }, "get_current_arm_state"},
          {[](ArmSocket s) { return ZK_Wait_Idle(s, INT32_MAX); }, "get_arm_current_trajectory"}}) {
        set_time_factor(100);
        controller_.forget_requests();
        std::future<int> wait = std::async(std::launch::async, call, arm);
        controller_.wait_for_request(request);
        std::future<int> file = std::async(std::launch::async, send_project, arm);
        controller_.wait_for_request("file");
        for (const int32_t start = Get_Program_Runtime(); Get_Program_Runtime() < start + 3000;) sleep_cp(10);
        set_time_factor(0);
        controller_.say(done("download_project", "project_state"));
        EXPECT_EQ(file.get(), 0) << request;
        ZK_Cancel(arm);
        EXPECT_EQ(wait.get(), ZK_CANCELLED) << request;
    }
}

// Half a message, a flood and a silence on one arm, while the clock stands still.
TEST_F(Connections, OneArmDoesNotDelayAnother) {
    ScriptedController second;
    const ArmSocket bad = connect(controller_), good = connect(second);
    controller_.say_bytes({R"({"state":"joint_max_)"});
    controller_.wait_until_read();
    EXPECT_EQ(first_speed(good), 180);
    controller_.say_bytes({R"(speed","joint_speed":[1000,2,3,4,5,6]})"
                           "\r\n" +
                           std::string(300000, 'x')});
    EXPECT_EQ(first_speed(good), 180);
    controller_.wait_until_read();
    controller_.say_bytes({"\r\n"});
    EXPECT_EQ(first_speed(bad), 180);
    EXPECT_EQ(look_at(bad).dropped, 1);
}

// Three of them outlast what a loaded machine keeps a thread waiting.
constexpr int kBeatMs = 300;

TEST_F(Connections, AHeartbeatFindsASilentController) {
    ZK_ConnectOptions options{};
    options.heartbeat_ms = kBeatMs;
    const ArmSocket arm = connect(controller_, &options);
    for (int beats = 0; beats < 3; ++beats) EXPECT_NE(controller_.wait_for_request("get_joint_max_speed"), "");
    EXPECT_EQ(first_speed(arm), 180);
    EXPECT_EQ(shared(Joint_Max_Speed_Cmd[0].count), 0) << "no reply to a heartbeat stays";
    controller_.ignore("get_joint_max_speed");
    eventually([&] { return look_at(arm).state == ZK_CONNECTION_LOST; });
    EXPECT_EQ(Move_Stop_Cmd(arm, true), ZK_LOST);
    EXPECT_EQ(ZK_Stop(arm, ZK_STOP), ZK_LOST);
}

// The reply to the heartbeat is still to come.
TEST_F(Connections, AHeartbeatTakesNoAcknowledgement) {
    ZK_ConnectOptions options{};
    options.heartbeat_ms = kBeatMs;
    const ArmSocket arm = connect(controller_, &options);
    controller_.ignore("get_joint_max_speed");
    controller_.answer("set_joint_max_speed", done("set_joint_max_speed", "joint_max_speed"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_NE(controller_.wait_for_request("get_joint_max_speed"), "");
        EXPECT_EQ(Set_Joint_Speed_Block(arm, 1, 100), 0);
    }
}

TEST_F(Connections, ATransferThatOutlivesItsConnectionLeavesTheNextAlone) {
    const ArmSocket old = connect(controller_);
    std::future<int> transfer = std::async(std::launch::async, [old] { return send_project(old); });
    controller_.wait_for_request("file");
    EXPECT_EQ(ZK_Close(old), 0);
    const ArmSocket arm = connect(controller_);
    EXPECT_EQ(transfer.get(), ZK_NOT_CONNECTED);
    EXPECT_EQ(ZK_Stop(arm, ZK_STOP), 0);
    EXPECT_EQ(first_speed(arm), 180);
}

TEST_F(Connections, WhatEndsTheProcessElsewhereIsRefusedOrCut) {
    const ArmSocket arm = connect(controller_);
    const std::string name(300, 'n'), missing = "/nowhere/at_all.txt", quoted = "a\",\"b";
    const auto announce = [arm](const std::string& text) {
        return Run_Update_Software_Block_E(arm, text.c_str(), static_cast<int32_t>(text.size()), 1);
    };
    add_lines_to_file(arm, nullptr, nullptr);
    EXPECT_EQ(Send_TrajectoryFile_Block(arm, 0, 0, missing.c_str(), 100, 20, 0, 0, nullptr, 1), ZK_FILE_UNREADABLE);
    EXPECT_EQ(Run_Project_Block(arm, 0, 0, name.c_str(), 300, 1, 20, 0, 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(announce(name), ZK_BAD_ARGUMENT);
    EXPECT_EQ(announce(quoted), ZK_BAD_ARGUMENT);
    controller_.answer("get_wired_net", R"({"state":"get_wired_net","ip":"1234567890123456","mask":"","mac":""})");
    char ip[16], mask[16], mac[18];
    EXPECT_EQ(Get_Wired_Net(arm, ip, mask, mac), 0);
    EXPECT_STREQ(ip, "123456789012345");

    static std::string log;
    ZK_Set_Log([](void*, ZK_LogLevel, ArmSocket, const char* text) { log += text; }, nullptr, ZK_LOG_EVENTS);
    const std::string frame(517, 'x');
    for (const int32_t length : {517, 501, 0, -1}) Add_Queue(arm, frame.data(), length);
    ZK_Set_Log(nullptr, nullptr, ZK_LOG_EVENTS);
    EXPECT_EQ(look_at(arm).dropped, 4);
    EXPECT_NE(log.find("517"), std::string::npos) << log;
    cJSON_Hooks full{[](size_t) -> void* { return nullptr; }, std::free};
    cJSON_InitHooks(&full);
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(arm), 0) << "a request takes no memory";
    cJSON_InitHooks(nullptr);
    ZK_API_UnInit();
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(arm), ZK_NOT_RUNNING);
    Add_Queue(arm, "{}\r\n", 4);
    EXPECT_EQ(look_at(arm).dropped, 5);
}

TEST_F(Connections, ANumberThatTheWireCannotCarryIsNotSent) {
    answer_start_up(controller_, 7);
    ArmSocket arm = 0;
    ASSERT_EQ(ZK_Connect("127.0.0.1", controller_.port(), nullptr, &arm), 0);
    controller_.forget_requests();
    const float nan = NAN, far = 3e6f, degrees[][7] = {{0, 0, 0, 0, 0, 0, nan}, {far}, {0, 0, 0, 0, 0, 0, far}};
    ForcePositionNew force{};
    force.desired_force[5] = -INFINITY;
    for (const int status :
         {Movej_Cmd(arm, degrees[0], 20, 0, 0, true), Movej_Cmd(arm, degrees[1], 20, 0, 1, false),
          Movel_Cmd(arm, {{3000, 0, 0}, {}, {}}, 20, 0, 0, false),
          Movec_Cmd(arm, {}, {{}, {}, {nan, 0, 0}}, 20, 0, 0, 0, true), Movej_CANFD(arm, degrees[2], 1, 0),
          Movej_CANFD_Block(arm, degrees[0]), Movej_CANFD(arm, kJoints, 1, nan),
          Movep_Follow(arm, {{0, INFINITY, 0}, {}, {}}), Force_Position_Move_Joint(arm, degrees[0], 1, 0, 2, 1, 0),
          Force_Position_Move_Joint(arm, degrees[2], 1, 0, 2, 1, 0), Set_Force_Postion_New(arm, force),
          Joint_Step_Cmd(arm, 1, 20, nan, true)}) {
        EXPECT_EQ(status, ZK_BAD_ARGUMENT);
    }
    EXPECT_EQ(Move_Stop_Cmd_NonBlock(arm), 0);
    EXPECT_EQ(controller_.next_request(), kStopRequest);
}

// The controller acknowledges late; the arm moves all the same.
TEST_F(Connections, AMoveThatDoesNotWaitForItsEndWaitsForItsAcknowledgement) {
    const ArmSocket arm = connect(controller_);
    set_shared(m_nOutTime, 60000);
    controller_.answer_with("movej", [](const std::string&) {
        const int32_t start = Get_Program_Runtime();
        set_time_factor(20);
        while (Get_Program_Runtime() < start + 300) std::this_thread::yield();
        set_time_factor(0);
        return Pieces{line(done("movej", "receive_state"))};
    });
    EXPECT_EQ(Movej_Cmd(arm, kJoints, 20, 0, 0, false), 0);
}

struct Journal {
    std::thread::id caller = std::this_thread::get_id();
    std::mutex lock;
    std::vector<ZK_ConnectionState> changes;
    std::string log;
};

TEST_F(Connections, ReportEachChangeOnceAndEachFrame) {
    Journal journal;
    ZK_Set_Connection_Callback(
        [](void* context, ArmSocket, ZK_ConnectionState state, const char*) {
            auto& seen = *static_cast<Journal*>(context);
            const std::lock_guard guard(seen.lock);
            seen.changes.push_back(state);
            EXPECT_EQ(std::this_thread::get_id() == seen.caller, state != ZK_CONNECTION_LOST);
        },
        &journal);
    ZK_Set_Log(
        [](void* context, ZK_LogLevel, ArmSocket, const char* text) {
            auto& seen = *static_cast<Journal*>(context);
            const std::lock_guard guard(seen.lock);
            seen.log += std::string(text) + "\n";
        },
        &journal, ZK_LOG_FRAMES);
    const ArmSocket arm = connect(controller_);
    first_speed(arm);
    eventually([&] {  // the transmit thread may be late to report
        const std::lock_guard guard(journal.lock);
        return journal.log.find("\n> { \"command\": \"get_joint_max_speed\" }\n") != std::string::npos;
    });
    const ZK_ConnectionRecord record = look_at(arm);
    EXPECT_EQ(record.frames_sent, 1);
    EXPECT_EQ(record.messages_received, 1);
    EXPECT_GT(record.round_trip_worst_ms, 0);
    EXPECT_STREQ(record.address, "127.0.0.1");
    EXPECT_EQ(record.joint_count, 6);
    controller_.close();
    eventually([&] {  // a close that comes first would report the loss
        const std::lock_guard guard(journal.lock);
        return journal.changes.size() == 2;
    });
    EXPECT_EQ(look_at(arm).state, ZK_CONNECTION_LOST);
    ZK_Close(arm);
    ZK_Set_Log(nullptr, nullptr, ZK_LOG_EVENTS);
    ZK_Set_Connection_Callback(nullptr, nullptr);
    EXPECT_EQ(journal.changes, (std::vector{ZK_CONNECTION_UP, ZK_CONNECTION_LOST, ZK_CONNECTION_CLOSED}));
    EXPECT_TRUE(journal.log.starts_with("> { \"command\": \"get_arm_software_info\" }\n< {")) << journal.log;
    EXPECT_NE(journal.log.find("}\nup\n"), std::string::npos) << journal.log;
    EXPECT_NE(journal.log.find("\n< {"), std::string::npos) << journal.log;
    EXPECT_NE(journal.log.find("lost: the controller closed the connection\nclosed\n"), std::string::npos)
        << journal.log;
}

}  // namespace
