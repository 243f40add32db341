#include "support/scripted_controller.h"

#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include "support/line_client.h"

namespace {

using zk::test::line;
using zk::test::LineClient;
using zk::test::ScriptedController;

const std::string kQuestion = "{\n\t\"command\":\t\"get_joint_degree\"\n}";

// What one recv call of a patient reader finds.
std::string one_read(const LineClient& client) {
    char bytes[4096];
    const ssize_t count = recv(client.descriptor(), bytes, sizeof bytes, 0);
    return std::string(bytes, count > 0 ? count : 0);
}

TEST(ScriptedController, KeepsTheExactTextOfRequestsOfManyLines) {
    ScriptedController controller;
    LineClient client(controller.port());
    client.send_bytes("{\n\t\"command\":\t\"movej\",\n\t\"joint\":\t[1, 2]\n}\r");
    client.send_bytes("\n" + line(kQuestion));
    EXPECT_EQ(controller.wait_for_request("get_joint_degree"), kQuestion);
    EXPECT_EQ(controller.next_request(), "{\n\t\"command\":\t\"movej\",\n\t\"joint\":\t[1, 2]\n}");
    EXPECT_EQ(controller.received(), "{\n\t\"command\":\t\"movej\",\n\t\"joint\":\t[1, 2]\n}\r\n" + line(kQuestion));
}

TEST(ScriptedController, TheLastWordAboutACommandHolds) {
    ScriptedController controller;
    LineClient client(controller.port());
    controller.answer("get_joint_degree", "first");
    EXPECT_EQ(client.ask(kQuestion), "first");
    controller.answer_in_turn("get_joint_degree", {"second", "third"});
    EXPECT_EQ(client.ask(kQuestion), "second");
    EXPECT_EQ(client.ask(kQuestion), "third");
    EXPECT_EQ(client.ask(kQuestion), "third");
    controller.ignore("get_joint_degree");
    controller.forget_requests();
    client.send_line(kQuestion);
    EXPECT_EQ(controller.next_request(), kQuestion);
    controller.say("late");
    EXPECT_EQ(client.read_line(), "late");
}

TEST(ScriptedController, EveryPieceIsAReadOfItsOwn) {
    ScriptedController controller;
    LineClient client(controller.port());
    controller.answer_bytes("get_joint_degree", {"{\"state\":", "\"joint_degree\"", "}\r\nmore"});
    client.send_line(kQuestion);
    EXPECT_EQ(one_read(client), "{\"state\":");
    EXPECT_EQ(one_read(client), "\"joint_degree\"");
    EXPECT_EQ(one_read(client), "}\r\nmore");
}

TEST(ScriptedController, TellsConnectionsApart) {
    ScriptedController controller;
    LineClient first(controller.port());
    controller.wait_for_connections(1);
    LineClient second(controller.port());
    controller.wait_for_connections(2);
    controller.answer_with("get_joint_degree", [](const std::string& request) {
        return zk::test::Pieces{line(std::to_string(request.size()))};
    });
    EXPECT_EQ(second.ask(kQuestion), std::to_string(kQuestion.size()));
    EXPECT_EQ(first.ask(kQuestion + " "), std::to_string(kQuestion.size() + 1));
    EXPECT_EQ(controller.wait_for_request("get_joint_degree", 0), kQuestion + " ");
    EXPECT_EQ(controller.wait_for_request("get_joint_degree", 1), kQuestion);
    controller.say("the last word", 0);
    EXPECT_EQ(first.read_line(), "the last word");
    controller.close(0);
    EXPECT_TRUE(first.wait_for_close());
    EXPECT_EQ(second.ask(kQuestion), std::to_string(kQuestion.size()));
}

TEST(ScriptedController, SeesThePeerClose) {
    ScriptedController controller;
    {
        LineClient client(controller.port());
        client.send_bytes("half a request");
    }
    controller.wait_for_connections(1);
    controller.wait_for_close();
    EXPECT_EQ(controller.received(1), "half a request");
}

}  // namespace
