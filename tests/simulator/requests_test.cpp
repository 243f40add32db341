// How the simulator handles the bytes that its clients send, good and bad.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>

#include "simulator/talk.h"
#include "support/socket.h"

namespace zk::test {
namespace {

const std::string kPowerState = R"({"state":"arm_power_state","power_state":1})";

struct Bad {
    const char* what;
    std::string bytes;
    bool answered;  // with false
};

std::string nested(const std::string& open, const std::string& close, int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += open;
    text += "1";
    for (int i = 0; i < depth; ++i) text += close;
    return text;
}

std::vector<Bad> bad_requests() {
    const auto command = [](const std::string& name, const std::string& keys) {
        return R"({"command":")" + name + "\"" + (keys.empty() ? "" : ",") + keys + "}\r\n";
    };
    return {
        {"no JSON", "hello\r\n", false},
        {"half a JSON", "{\"command\":\r\n", false},
        {"bytes that are no text", "\x01\xff\xfe\x80{}\r\n", false},
        {"a zero byte", std::string("{\"command\":\"get_arm_power_state\0\"}\r\n", 36), false},
        {"a bare number", "17\r\n", false},
        {"an array", "[{\"command\":\"get_arm_power_state\"}]\r\n", false},
        {"no command", "{\"state\":\"idle\"}\r\n", false},
        {"a command that is no string", "{\"command\":5}\r\n", false},
        {"an unknown command", command("make_coffee", ""), false},
        {"deep arrays", nested("[", "]", 30'000) + "\r\n", false},
        {"deep objects", command("set_install_pose", "\"pose\":" + nested("{\"a\":", "}", 9'000)), true},
        {"a line beyond the limit", std::string(300'000, ' ') + "\r\n", false},
        {"a line beyond the limit that ends in two reads", std::string(300'000, '\r') + "\r\n", false},
        {"a missing key", command("set_install_pose", ""), true},
        {"a wrong type", command("set_install_pose", "\"pose\":\"up\""), true},
        {"a short array", command("set_install_pose", "\"pose\":[1,2]"), true},
        {"a wrong element", command("set_install_pose", "\"pose\":[1,2,null]"), true},
        {"a huge number", command("set_init_pose", "\"init_pose\":[1e300,0,0,0,0,0]"), true},
        {"a number for a text", command("set_change_tool_frame", "\"tool_name\":7"), true},
        {"a joint that is not there", command("set_joint_en_state", "\"joint_en_state\":[7,1]"), true},
        {"a query without its key", command("get_tool_frame", ""), false},
    };
}

TEST(Requests, BadOnesDisturbNoClientAndAreNotedInOneLine) {
    for (const Bad& bad : bad_requests()) {
        testing::internal::CaptureStderr();
        Talk talk;
        LineClient other(talk.simulator.port());
        talk.client.send_bytes(bad.bytes);
        if (bad.answered) {
            EXPECT_NE(talk.client.read_line().find(":false}"), std::string::npos) << bad.what;
        }
        EXPECT_EQ(talk.client.ask(request_text("get_arm_power_state")), kPowerState) << bad.what;
        EXPECT_EQ(other.ask(request_text("get_arm_power_state")), kPowerState) << bad.what;
        const std::string notes = testing::internal::GetCapturedStderr();
        // One line for each connection, that of the helper too, and one for the request.
        EXPECT_EQ(std::count(notes.begin(), notes.end(), '\n'), 4) << bad.what << "\n" << notes;
    }
}

TEST(Requests, EndAtCarriageReturnAndLineFeedOnly) {
    Talk talk({"--quiet"});
    const std::string request = "{\n\t\"command\":\t\"get_arm_power_state\"\n}";
    for (const char byte : request + "\r\n") talk.client.send_bytes(std::string(1, byte));
    EXPECT_EQ(talk.client.read_line(), kPowerState);
    talk.client.send_bytes(request + "\r\n\r\n" + request + "\r\n" + request.substr(0, 9));
    EXPECT_EQ(talk.client.read_line(), kPowerState);
    EXPECT_EQ(talk.client.read_line(), kPowerState);
    talk.client.send_bytes(request.substr(9) + "\r\n");
    EXPECT_EQ(talk.client.read_line(), kPowerState);
}

TEST(Requests, AnOverlongLineIsDroppedUpToItsEnd) {
    Talk talk({"--quiet"});
    talk.client.send_bytes(std::string(200'000, 'x'));
    talk.client.send_bytes(request_text("get_arm_power_state") + "\r\n" + request_text("get_arm_plan_num") + "\r\n");
    EXPECT_EQ(talk.client.read_line(), R"({"state":"arm_plan_num","plan_num":0})");
}

TEST(Requests, VanishedClientsDisturbNoOther) {
    Talk talk({"--quiet"});
    for (const std::string& last :
         {std::string("{\"comm"),
          request_text("movej", {{"joint", {0, 0, 0, 0, 0, 0}}, {"v", 100}, {"trajectory_connect", 0}}) + "\r\n"}) {
        LineClient gone(talk.simulator.port());
        gone.send_bytes(last);
    }
    EXPECT_EQ(talk.client.ask(request_text("get_arm_power_state")), kPowerState);
    // The move of the vanished client is executed.
    talk.samples_until([](const Sample& sample) { return sample.joints == std::vector<double>(6, 0.0); });
}

TEST(Requests, AClientThatDoesNotReadIsDisconnectedAndDisturbsNoOther) {
    Talk talk({"--quiet"});
    LineClient deaf(talk.simulator.port());
    std::string requests;
    for (int i = 0; i < 1000; ++i) requests += request_text("get_arm_all_state") + "\r\n";
    bool cut = false;
    for (int i = 0; i < 1000 && !cut; ++i)
        cut = send(deaf.descriptor(), requests.data(), requests.size(), MSG_NOSIGNAL) < 0;
    EXPECT_TRUE(cut);
    EXPECT_EQ(talk.client.ask(request_text("get_arm_power_state")), kPowerState);
}

TEST(Requests, AReplyStillReachesAClientThatHasClosedItsHalf) {
    Talk talk({"--quiet"});
    talk.send("get_arm_power_state");
    shutdown(talk.client.descriptor(), SHUT_WR);
    EXPECT_EQ(talk.client.read_line(), kPowerState);
    EXPECT_TRUE(talk.client.wait_for_close());
}

TEST(Requests, EveryClientGetsItsOwnRepliesAndReports) {
    Talk talk({"--quiet"});
    LineClient second(talk.simulator.port()), third(talk.simulator.port());
    ASSERT_TRUE(talk.movej({20, 0, 0, 0, 0, 0}, 100));
    for (int i = 0; i < 20; ++i) {
        second.send_line(request_text("get_arm_plan_num"));
        third.send_line(request_text("get_arm_power_state"));
    }
    for (int i = 0; i < 20; ++i) {
        EXPECT_NE(second.read_line().find("arm_plan_num"), std::string::npos);
        EXPECT_EQ(third.read_line(), kPowerState);
    }
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_NE(second.ask(request_text("get_arm_plan_num")).find("arm_plan_num"), std::string::npos);
    EXPECT_EQ(third.ask(request_text("get_arm_power_state")), kPowerState);
}

}  // namespace
}  // namespace zk::test
