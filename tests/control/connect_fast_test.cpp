// Connecting: to peers that are no controller, and to each arm.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "control/connected.h"
#include "support/arm.h"
#include "support/scaled_time.h"
#include "support/simulator_process.h"
#include "support/start_up.h"
#include "zk/arm_state.h"
#include "zk/control.h"
#include "zk/model.h"

// A name with commas has the addresses that it lists; "slow" has none until its resolver is let go.
static std::atomic<bool> is_slow{true}, has_resolver_ended{false};
static std::atomic<std::thread::id> resolver;

extern "C" [[gnu::visibility("default")]] int getaddrinfo(const char* host, const char* port, const addrinfo* wanted,
                                                          addrinfo** list) {
    static const auto resolve = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    std::string names = host;
    if (names == "slow" && !(wanted->ai_flags & AI_NUMERICHOST)) {
        thread_local struct AtEnd {
            ~AtEnd() { has_resolver_ended = true; }
        } at_end;
        (void)&at_end;
        resolver = std::this_thread::get_id();
        while (is_slow) std::this_thread::yield();
        names = "127.0.0.1";
        return resolve(names.c_str(), port, wanted, list);
    }
    if (names.find(',') == names.npos || wanted->ai_flags & AI_NUMERICHOST) return resolve(host, port, wanted, list);
    for (std::istringstream each(names); std::getline(each, names, ','); list = &(*list)->ai_next) {
        if (const int error = resolve(names.c_str(), port, wanted, list)) return error;
    }
    return 0;
}

namespace {

using namespace zk::test;

long open_sockets() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::count_if(begin(all), end(all), [](const auto& entry) {
        std::error_code gone;  // the iterator's own descriptor, or another thread's
        return read_symlink(entry, gone).string().starts_with("socket:");
    });
}

// What a connecting program must find as it was after a failure.
struct Surroundings {
    RobotModel model = robot;
    int32_t slots = shared(m_nSockInfoLen), stream = shared(listener.socket);
    long sockets = open_sockets();
};

void expect_same(const Surroundings& before) {
    const Surroundings now;
    EXPECT_EQ(now.slots, before.slots);
    EXPECT_EQ(now.stream, before.stream);
    EXPECT_EQ(now.sockets, before.sockets);
    EXPECT_EQ(std::memcmp(&now.model, &before.model, sizeof robot), 0);
}

int status_of(int port, int arm_mode = 0, const char* host = "127.0.0.1") {
    ArmSocket arm;
    return connect_to(port, arm, arm_mode, host);
}

// A peer that answers the first question, or all of them, in its own way.
struct OddPeer {
    const char* name;
    const char* command;
    const char* bytes;  // "": silence; "close", "reset", "half-close": ends in this way
    int status;
    const char* failure;  // a part of what ZK_Failure says
};

std::ostream& operator<<(std::ostream& out, const OddPeer& peer) { return out << peer.name; }

class StrangePeer : public testing::TestWithParam<OddPeer> {};

TEST_P(StrangePeer, IsNamedAndLeavesNoTrace) {
    const OddPeer& peer = GetParam();
    using End = ScriptedController::End;
    static const std::map<std::string, End> kEnds{
        {"close", End::kClose}, {"reset", End::kReset}, {"half-close", End::kHalfClose}};
    const std::string bytes = peer.bytes;
    const auto how = kEnds.find(bytes);
    const bool ends = how != kEnds.end();
    ZK_API_Init(65, nullptr);
    ScriptedController controller;
    answer_start_up(controller);
    controller.ignore(peer.command);
    if (bytes.ends_with('\n')) controller.answer_bytes(peer.command, {bytes});
    set_time_factor(0);
    const Surroundings before;
    std::thread end([&] {  // only the limit of the question in hand is let run out
        controller.wait_for_request(peer.command);
        if (ends) return controller.close(ScriptedController::kLatest, how->second);
        controller.wait_until_read();
        set_time_factor(1000000);
    });
    EXPECT_EQ(status_of(controller.port()), peer.status);
    EXPECT_NE(std::string(ZK_Failure()).find(peer.failure), std::string::npos) << ZK_Failure();
    end.join();
    set_time_factor(1);
    if (!ends || how->second == End::kHalfClose) {
        controller.wait_for_close();
        controller.close();
    }
    expect_same(before);
}

INSTANTIATE_TEST_SUITE_P(
    Connecting, StrangePeer,
    testing::Values(
        OddPeer{"Silent", "get_arm_software_info", "", ZK_NO_ANSWER, "get_arm_software_info"},
        OddPeer{"SilentLater", "get_joint_max_pos", "", ZK_NO_ANSWER, "get_joint_max_pos"},
        OddPeer{"SendsOtherJson", "get_arm_software_info", "{\"hello\":1}\r\n", ZK_NO_CONTROLLER, "no reply"},
        OddPeer{"Closes", "get_arm_software_info", "close", ZK_LOST, "closed"},
        OddPeer{"ClosesLater", "get_realtime_push", "close", ZK_LOST, "closed"},
        OddPeer{"Resets", "get_arm_software_info", "reset", ZK_LOST, "reset"},
        OddPeer{"HalfCloses", "get_joint_max_acc", "half-close", ZK_LOST, "closed"},
        OddPeer{"SpeaksHttp", "get_arm_software_info", "HTTP/1.1 400 Bad Request\r\n\r\n", ZK_NO_CONTROLLER,
                "HTTP/1.1"},
        OddPeer{"SpeaksInOtherLines", "get_arm_software_info", "SSH-2.0-x\n", ZK_NO_CONTROLLER, "SSH-2.0-x"},
        OddPeer{"SendsBrokenJson", "get_install_pose", "{\"state\":\"install_pose\",\r\n", ZK_NO_CONTROLLER, "install"},
        OddPeer{"LacksAKey", "get_joint_min_pos", "{\"state\":\"joint_min_pos\"}\r\n", ZK_NO_CONTROLLER, "key"},
        OddPeer{"HasOtherJoints", "get_joint_max_acc",
                "{\"state\":\"joint_max_acc\",\"joint_acc\":[1,2,3,4,5,6,7]}\r\n", ZK_NO_CONTROLLER,
                "get_joint_max_acc"}),
    [](const auto& row) { return row.param.name; });

TEST(Connecting, FailuresHaveNamesAndLeaveEverythingAsItWas) {
    ZK_API_Init(65, nullptr);
    ScriptedController controller;
    answer_start_up(controller, 7);
    const int closed_port = ScriptedController().port();
    const Surroundings before;
    EXPECT_EQ(status_of(closed_port), ZK_CONNECTION_REFUSED);
    EXPECT_NE(std::string(ZK_Failure()).find("127.0.0.1 port " + std::to_string(closed_port)), std::string::npos);
    EXPECT_EQ(status_of(8080, 0, std::string(70, 'x').c_str()), ZK_UNKNOWN_HOST);
    EXPECT_EQ(status_of(controller.port(), 65), ZK_WRONG_JOINT_COUNT);
    EXPECT_NE(std::string(ZK_Failure()).find("65 has 6 joints, the controller's arm has 7"), std::string::npos);
    controller.wait_for_close();
    EXPECT_EQ(status_of(0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(status_of(8080, 64), ZK_BAD_ARGUMENT);
    controller.close();
    expect_same(before);
}

TEST(Connecting, AResolverOutlivesTheCallOnAThreadOfItsOwn) {
    ZK_ConnectOptions options{};
    options.timeout_ms = 20;
    ArmSocket arm;
    const Surroundings before;
    EXPECT_EQ(ZK_Connect("slow", 8080, &options, &arm), ZK_NO_ANSWER);
    EXPECT_NE(std::string(ZK_Failure()).find("\"slow\" was not resolved"), std::string::npos) << ZK_Failure();
    eventually([] { return resolver.load() != std::thread::id(); });
    EXPECT_NE(resolver.load(), std::this_thread::get_id());
    EXPECT_FALSE(has_resolver_ended);
    is_slow = false;
    eventually([] { return has_resolver_ended.load(); });
    expect_same(before);
}

// The listener has 127.0.0.1 alone.
TEST(Connecting, TriesEveryAddressOfAName) {
    ScriptedController controller;
    answer_start_up(controller);
    for (const auto& [name, status] : {std::pair{"::1,127.0.0.1", 0},
                                       {"127.0.0.2,127.0.0.1", 0},
                                       {"255.255.255.255,127.0.0.1", 0},
                                       {"127.0.0.2,255.255.255.255", int{ZK_CONNECTION_REFUSED}},
                                       {"255.255.255.255", int{ZK_NO_ROUTE}}}) {
        EXPECT_EQ(status_of(controller.port(), 0, name), status) << name << ": " << ZK_Failure();
    }
    EXPECT_EQ(ZK_Close_All(), 3);
}

// A report between, a reply in single bytes, texts that are too long for their fields, and the start of a message after
// the last reply do not disturb.
TEST(Connecting, TakesRepliesAsTheyCome) {
    ReportLog reports;
    ZK_API_Init(65, ReportLog::callback);
    ScriptedController controller;
    answer_start_up(controller, 6, "unknown and long");
    const std::string frame = R"({"state":"current_work_frame","frame_name":"point","pose":[0,0,0,0,0,0]})";
    Pieces pieces{report_message(1)};
    for (const char byte : line(frame)) pieces.emplace_back(1, byte);
    controller.answer_bytes("get_current_work_frame", pieces);
    const std::string report = report_message(2), address(40, '1');
    controller.answer_bytes(
        "get_realtime_push",
        {line(R"({"state":"get_realtime_push","cycle":1,"enable":true,"port":9,"ip":")" + address + R"("})") +
         report.substr(0, 9)});
    ArmSocket arm;
    ASSERT_EQ(connect_to(controller.port(), arm, 0, "localhost"), 0) << ZK_Failure();
    controller.say_bytes({report.substr(9)});
    EXPECT_EQ(reports.results(1), std::vector<int>{2});
    ZK_ConnectionRecord record;
    EXPECT_EQ(ZK_Connection(arm, &record), 0);
    EXPECT_EQ(record.model, -1);
    EXPECT_EQ(record.arm_mode, 65);
    EXPECT_EQ(ZK_Arm_Model(arm), nullptr);
    EXPECT_EQ(ZK_Close(arm), 0);
}

// Nobody waits for another's controller.
TEST(Connecting, SeveralConnectAtOnce) {
    ScriptedController silent, healthy;
    answer_start_up(healthy);
    healthy.ignore("get_realtime_push");  // a controller may have no stream
    std::thread other([&] { EXPECT_EQ(status_of(silent.port()), ZK_LOST); });
    silent.wait_for_request("get_arm_software_info");
    EXPECT_EQ(status_of(healthy.port()), 0);
    silent.close();
    other.join();
    EXPECT_EQ(ZK_Close_All(), 1);
}

struct Model {
    const char* text;
    int arm_mode, joints, model, sensor;
};

std::ostream& operator<<(std::ostream& out, const Model& model) { return out << model.text; }

class EachModel : public testing::TestWithParam<Model> {};

TEST_P(EachModel, IsKnownByItsControllersWord) {
    const SimulatorProcess simulator({"--model", GetParam().text, "--tool", "0.01,-0.02,0.15,0.1,0.2,-0.3", "--work",
                                      "0.1,0.2,-0.05,0,0.1,0.5", "--install", "0,30,90"});
    const ArmSocket arm = connected(simulator.port());
    ZK_ConnectionRecord record;
    ASSERT_EQ(ZK_Connection(arm, &record), 0);
    EXPECT_EQ(record.arm_mode, GetParam().arm_mode);
    EXPECT_EQ(record.joint_count, GetParam().joints);
    EXPECT_EQ(record.model, GetParam().model);
    EXPECT_EQ(record.sensor, GetParam().sensor);

    float joint[7] = {};
    Pose reported{}, computed{};
    uint16_t arm_err, sys_err;
    ASSERT_EQ(Get_Current_Arm_State(arm, joint, &reported, &arm_err, &sys_err), 0);
    ZK_Model* model = ZK_Arm_Model(arm);
    ASSERT_EQ(ZK_Model_Forward(model, joint, &computed), 0);
    ZK_Model_Free(model);
    EXPECT_NEAR(computed.position.x, reported.position.x, 1e-5);
    EXPECT_NEAR(computed.position.y, reported.position.y, 1e-5);
    EXPECT_NEAR(computed.position.z, reported.position.z, 1e-5);
    EXPECT_NEAR(computed.euler.rz, reported.euler.rz, 1e-3);
    EXPECT_EQ(libalgo_get_robot_type(), GetParam().model) << "the process-wide model is this arm's";
}

INSTANTIATE_TEST_SUITE_P(Connecting, EachModel,
                         testing::Values(Model{"ZK65-B", 65, 6, 0, 0}, Model{"ZK75-6F", 75, 7, 1, 2},
                                         Model{"63-ZF", 631, 6, 3, 1}, Model{"ORB65-B", 651, 6, 5, 0},
                                         Model{"62-B", 62, 6, 6, 0}, Model{"72-B", 72, 7, 7, 0},
                                         Model{"ORB63-6F", 634, 6, 8, 2}),
                         [](const auto& row) { return "Mode" + std::to_string(row.param.arm_mode); });

}  // namespace
