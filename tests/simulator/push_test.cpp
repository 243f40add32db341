// The content of the real-time push and the effect of its settings.
#include <gtest/gtest.h>

#include "simulator/talk.h"

namespace zk::test {
namespace {

// The first state that satisfies a condition. Settings take effect within a few datagrams.
template <typename Condition>
Json state_when(Talk& talk, Condition condition) {
    for (;;) {
        const Json state = talk.state();
        if (condition(state)) return state;
    }
}

void expect_status_arrays(const Json& state, size_t joints) {
    for (const char* key :
         {"joint_current", "joint_en_flag", "joint_err_code", "joint_position", "joint_temperature", "joint_voltage"})
        EXPECT_EQ(state.at("joint_status").at(key).size(), joints) << key;
}

TEST(Push, ReportsTheArmAtRest) {
    Talk talk({"--quiet"});
    const Json state = talk.state();
    expect_status_arrays(state, 6);
    EXPECT_EQ(state.at("waypoint").at("quat").size(), 4u);
    EXPECT_EQ(state.at("arm_current_status"), "idle");
    EXPECT_EQ(state.at("arm_err"), 0);
    EXPECT_EQ(state.at("sys_err"), 0);
    const Json asked = talk.ask("get_current_arm_state").at("arm_state");
    EXPECT_EQ(state.at("joint_status").at("joint_position"), asked.at("joint"));
    const std::vector<int> pose = asked.at("pose");
    EXPECT_EQ(state.at("waypoint").at("position"), Json(std::vector<int>(pose.begin(), pose.begin() + 3)));
    EXPECT_EQ(state.at("waypoint").at("euler"), Json(std::vector<int>(pose.begin() + 3, pose.end())));
    for (const char* key :
         {"lift_state", "expand_state", "hand", "aloha_state", "six_force_sensor", "one_force_sensor"})
        EXPECT_FALSE(state.contains(key)) << key;
    EXPECT_FALSE(state.at("joint_status").contains("joint_speed"));
}

TEST(Push, HasTheSensorOfTheModel) {
    Talk six({"--quiet", "--model", "ZK75-6F"});
    const Json state = six.state();
    expect_status_arrays(state, 7);
    EXPECT_EQ(state.at("six_force_sensor").at("force").size(), 6u);
    EXPECT_EQ(state.at("six_force_sensor").at("zero_force").size(), 6u);
    EXPECT_EQ(state.at("six_force_sensor").at("coordinate"), 0);
    EXPECT_EQ(six.ask("set_realtime_push", {{"enable", true}, {"force_coordinate", 2}}).at("state"), true);
    state_when(six, [](const Json& s) { return s.at("six_force_sensor").at("coordinate") == 2; });
    EXPECT_EQ(six.ask("get_realtime_push").at("force_coordinate"), 2);

    Talk one({"--quiet", "--model", "63-ZF"});
    EXPECT_TRUE(one.state().at("one_force_sensor").at("force").is_array());
}

// The longest datagram: every part is on, and the arm has seven joints.
TEST(Push, StaysWithinADatagramWithEverythingOn) {
    Talk talk({"--quiet", "--model", "ZK75-6F", "--work", "-1,-1,-1,0,0,0"});
    const char* parts[] = {"joint_speed", "lift_state", "expand_state", "arm_current_status", "hand", "aloha_state"};
    Json custom;
    for (const char* part : parts) custom[part] = true;
    ASSERT_EQ(talk.ask("set_realtime_push", {{"enable", true}, {"custom", custom}}).at("state"), true);
    ASSERT_TRUE(talk.movej({-178, -130, -178, -135, -178, -128, -360}, 100));
    size_t longest = 0;
    Json all;
    for (std::string text; text.find("\"idle\"") == std::string::npos || all.is_null();) {
        text = talk.push.receive();
        longest = std::max(longest, text.size());
        const Json state = Json::parse(text);
        if (state.at("arm_current_status") == "move_J") all = state;
    }
    EXPECT_LE(longest, 1024u);
    RecordProperty("longest", static_cast<int>(longest));
    for (const char* key : {"lift_state", "expand_state", "hand", "six_force_sensor", "aloha_state", "time"})
        EXPECT_TRUE(all.contains(key)) << key;
    EXPECT_EQ(all.at("joint_status").at("joint_speed").size(), 7u);
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_EQ(talk.ask("get_realtime_push").at("custom"), custom);
}

TEST(Push, ReportsTheSpeedOfTheJoints) {
    Talk talk({"--quiet"});
    ASSERT_EQ(talk.ask("set_realtime_push", {{"enable", true}, {"custom", {{"joint_speed", true}}}}).at("state"), true);
    std::vector<double> target = talk.joints();
    target[0] -= 90;
    ASSERT_TRUE(talk.movej(target, 10));
    // 18 degrees per second is 3 revolutions per minute.
    const Json state = state_when(
        talk, [](const Json& s) { return s.at("joint_status").value("joint_speed", std::vector<int>{0})[0] == -3000; });
    EXPECT_EQ(state.at("joint_status").at("joint_speed"), Json({-3000, 0, 0, 0, 0, 0}));
}

TEST(Push, FollowsItsSettingsForDestinationAndEnable) {
    Talk talk({"--quiet", "--no-push"});
    EXPECT_EQ(talk.ask("get_realtime_push").at("enable"), false);
    UdpReceiver elsewhere;
    const auto time = [&] { return Json::parse(elsewhere.receive()).at("time").get<int64_t>(); };
    const Json settings{{"cycle", 3}, {"enable", true}, {"port", elsewhere.port()}, {"ip", "127.0.0.1"}};
    ASSERT_EQ(talk.ask("set_realtime_push", settings).at("state"), true);
    int64_t last = 0;
    for (int i = 0; i < 10; ++i) EXPECT_EQ((last = time()) % 15, 0);
    const Json outputs = talk.ask("get_realtime_push");
    for (const auto& [key, value] : settings.items()) EXPECT_EQ(outputs.at(key), value);

    // Off during a move and on again after it: the samples have a gap as long as the move.
    ASSERT_EQ(talk.ask("set_realtime_push", {{"enable", false}}).at("state"), true);
    ASSERT_TRUE(talk.movej(std::vector<double>(6, 0), 20));
    EXPECT_TRUE(talk.read_arrival());
    ASSERT_EQ(talk.ask("set_realtime_push", {{"enable", true}}).at("state"), true);
    int64_t gap = 0;
    for (int i = 0; i < 200 && gap < 1000; ++i) {
        const int64_t next = time();
        gap = std::max(gap, next - last);
        last = next;
    }
    EXPECT_GE(gap, 1000);
}

TEST(Push, ComesFromTheAddressOnWhichTheControllerListens) {
    for (const char* address : {"127.0.0.1", "127.0.0.2"}) {
        const SimulatorProcess simulator({"--quiet", "--listen", address});
        UdpReceiver push(simulator.push_port());
        push.receive();
        EXPECT_EQ(push.sender(), address);
    }
}

TEST(Push, RefusesInvalidSettings) {
    Talk talk({"--quiet"});
    const Json before = talk.ask("get_realtime_push");
    const std::pair<const char*, Json> wrong[] = {
        {"cycle", 0},        {"cycle", "fast"}, {"port", 0},      {"port", 70000},           {"ip", "localhost"},
        {"ip", "1.2.3.4.5"}, {"enable", 1},     {"custom", true}, {"custom", {{"hand", 1}}}, {"custom", nullptr}};
    for (const auto& [key, value] : wrong) {
        Json settings{{"enable", false}, {"cycle", 7}};
        settings[key] = value;
        EXPECT_EQ(talk.ask("set_realtime_push", settings).at("state"), false) << settings;
    }
    EXPECT_EQ(talk.ask("get_realtime_push"), before);
}

TEST(Push, ReportsErrors) {
    Talk talk({"--quiet"});
    const Json fault{{"arm_err", 4099}, {"sys_err", 7}, {"joint_err", {0, 0, 12, 0, 0, 0}}};
    ASSERT_EQ(talk.ask("zk_sim_fault", fault).at("done"), true);
    const Json state = state_when(talk, [](const Json& s) { return s.at("arm_err") != 0; });
    EXPECT_EQ(state.at("arm_err"), 4099);
    EXPECT_EQ(state.at("sys_err"), 7);
    EXPECT_EQ(state.at("joint_status").at("joint_err_code"), Json({0, 0, 12, 0, 0, 0}));
    EXPECT_EQ(talk.ask("clear_system_err").at("clear_state"), true);
    EXPECT_EQ(talk.ask("get_current_arm_state").at("arm_state").at("arm_err"), 0);
    EXPECT_EQ(talk.ask("get_joint_err_flag").at("err_flag")[2], 12);
}

}  // namespace
}  // namespace zk::test
