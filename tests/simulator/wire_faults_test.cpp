// What a client sees of each fault of the wire, and of several arms in one simulator.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>

#include "simulator/talk.h"
#include "support/pattern.h"
#include "support/socket.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

const std::string kPower = R"({"state":"arm_power_state","power_state":1})";

class WireFaults : public testing::Test {
 protected:
    void set(const Json& faults) { ASSERT_EQ(talk_.ask("zk_sim_fault", faults).at("done"), true) << faults; }
    void ask_power() { talk_.send("get_arm_power_state"); }

    // What one read returns.
    static std::string bytes_at_once(const LineClient& client) {
        char bytes[4096];
        if (!wait_readable(client.descriptor())) return {};
        const ssize_t got = recv(client.descriptor(), bytes, sizeof bytes, 0);
        return got < 0 ? std::string() : std::string(bytes, static_cast<size_t>(got));
    }

    Talk talk_{{"--quiet", "--speed", "max", "--seed", "2"}};
};

TEST_F(WireFaults, DropDoubleAndSpoilReplies) {
    set({{"drop", 100}});
    ask_power();
    EXPECT_EQ(talk_.ask("zk_sim_time").at("state"), "zk_sim_time") << "the reply before it is lost";
    set({{"drop", 0}, {"double", 100}});
    ask_power();
    EXPECT_EQ(talk_.client.read_line(), kPower);
    EXPECT_EQ(talk_.client.read_line(), kPower);
    set({{"double", 0}, {"garbage", 100}});
    ask_power();
    EXPECT_NE(talk_.client.read_line(), kPower);
    std::string line;
    while ((line = talk_.client.read_line()) != kPower && !line.empty()) {  // a carriage return may end a line early
    }
    EXPECT_EQ(line, kPower);
    EXPECT_EQ(talk_.ask("zk_sim_fault", {{"drop", 101}}).at("done"), false);
}

TEST_F(WireFaults, ReorderReplies) {
    set({{"reorder", 50}});
    std::string asked, answered;
    for (int i = 0; i < 20; ++i) {
        asked += i % 2 ? 'j' : 'p';
        talk_.send(i % 2 ? "get_joint_degree" : "get_arm_power_state");
    }
    for (int i = 0; i < 20; ++i) answered += talk_.client.read_line() == kPower ? 'p' : 'j';
    EXPECT_NE(answered, asked);
    EXPECT_EQ(std::count(answered.begin(), answered.end(), 'p'), 10);
}

TEST_F(WireFaults, SliceJoinAndDelayReplies) {
    const std::string two =
        R"({"command":"get_arm_power_state"})" + std::string("\r\n") + R"({"command":"get_arm_power_state"})" + "\r\n";
    set({{"slice_bytes", 1}, {"slice_delay_ms", 5}});
    ask_power();
    EXPECT_LT(bytes_at_once(talk_.client).size(), kPower.size());
    talk_.client.read_line();
    set({{"slice_delay_ms", 60'000}});  // answered at once
    set({{"slice_delay_ms", 5}});
    set({{"slice_bytes", 0}, {"join_ms", 200}});
    talk_.client.send_bytes(two);
    EXPECT_EQ(bytes_at_once(talk_.client), kPower + "\r\n" + kPower + "\r\n");

    set({{"join_ms", 0}, {"delay_ms", 200}, {"jitter_ms", 50}});
    const auto start = std::chrono::steady_clock::now();
    ask_power();
    talk_.client.read_line();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
    set({{"delay_ms", 0}, {"jitter_ms", 0}, {"silence_ms", 300}});
    ask_power();
    talk_.client.read_line();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
}

TEST_F(WireFaults, CutReplies) {
    for (size_t bytes = 1; bytes <= kPower.size(); ++bytes) {
        set({{"cut_at", bytes}, {"slice_delay_ms", 60'000}});
        LineClient other(talk_.simulator.port());
        other.send_line(request_text("get_arm_power_state"));
        EXPECT_EQ(bytes_at_once(other).size(), bytes);
        set({{"slice_delay_ms", 1}});
        ask_power();
        EXPECT_EQ(talk_.client.read_line(), kPower);
    }
}

TEST_F(WireFaults, RefuseNewClientsForATime) {
    set({{"arm_err", 5}, {"refuse_ms", 60'000}});
    EXPECT_THROW(LineClient(talk_.simulator.port()), std::exception);
    ask_power();
    EXPECT_EQ(talk_.client.read_line(), kPower);
    set({{"refuse_ms", 0}});
    const Json state = Json::parse(talk_.new_client()->ask(request_text("get_current_arm_state"))).at("arm_state");
    EXPECT_EQ(state.at("arm_err"), 5) << "no state is lost";
}

TEST_F(WireFaults, EndConnections) {
    for (const bool reset : {false, true}) {
        LineClient other(talk_.simulator.port());
        EXPECT_EQ(other.ask(request_text("get_arm_power_state")), kPower);
        EXPECT_EQ(talk_.ask("zk_sim_disconnect", {{"reset", reset}}).at("done"), true);
        char byte;
        ASSERT_TRUE(wait_readable(other.descriptor()));
        EXPECT_EQ(recv(other.descriptor(), &byte, 1, 0), reset ? -1 : 0);
    }
    set({{"max_clients", 1}});
    EXPECT_TRUE(LineClient(talk_.simulator.port()).wait_for_close());
    ask_power();
    EXPECT_EQ(talk_.client.read_line(), kPower);
}

// A request takes one step of time, and each step pushes once.
TEST_F(WireFaults, DisturbDatagrams) {
    const auto time_pushed = [&] { return talk_.state().at("time").get<int64_t>(); };
    set({{"push_drop", 100}});
    talk_.push.forget();
    talk_.ask("get_arm_power_state");
    set({{"push_drop", 0}, {"push_double", 100}});
    const int64_t now = talk_.ask("zk_sim_time").at("time");
    EXPECT_EQ(time_pushed(), now);
    EXPECT_EQ(time_pushed(), now);
    set({{"push_double", 0}, {"push_reorder", 30}});
    for (int i = 0; i < 20; ++i) talk_.ask("get_arm_power_state");
    int64_t before = 0, time = 0;
    while ((time = time_pushed()) >= before && time > 0) before = time;
    EXPECT_LT(time, before) << "an older datagram comes later";
}

TEST(SeveralArms, AreApartInOneSimulator) {
    const TemporaryDirectory folder;
    const std::string list = R"([{"joints":[1,2,3,4,5,6],"quiet":true,"no-push":false,"$schema":"s",)"
                             R"("fault":{"drop":0,"max_clients":2},"silent-on":["movej","get_arm_power_state"]},)"
                             R"({"model":"ZK75-6F","listen":"127.0.0.2"}])";
    Talk talk({"--arms", folder.file("arms.json", list)});
    talk.send("get_arm_power_state");
    EXPECT_EQ(talk.joints(), Joints({1, 2, 3, 4, 5, 6}));
    EXPECT_TRUE(LineClient(talk.simulator.port()).wait_for_close());
    const char* const form =
        R"(zk_simulator model=ZK65-B port=\d+ push_port=\d+ address=127.0.0.1 model=ZK75-6F port=\d+ push_port=\d+ address=127.0.0.2)";
    EXPECT_TRUE(matches(talk.simulator.first_line(), form)) << talk.simulator.first_line();

    const Talk three({"--quiet", "--arms", "3"});
    const std::string& line = three.simulator.first_line();
    LineClient third(std::stoi(line.substr(line.rfind(" port=") + 6)));
    EXPECT_EQ(third.ask(request_text("get_arm_power_state")), kPower);
}

}  // namespace
}  // namespace zk::test
