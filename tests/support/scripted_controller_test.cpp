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

TEST(ScriptedController, EveryPieceIsAReadOfItsOwn) {
    ScriptedController controller;
    LineClient client(controller.port());
    controller.answer_bytes("get_joint_degree", {"{\"state\":", "\"joint_degree\"", "}\r\nmore"});
    client.send_line(kQuestion);
    EXPECT_EQ(one_read(client), "{\"state\":");
    EXPECT_EQ(one_read(client), "\"joint_degree\"");
    EXPECT_EQ(one_read(client), "}\r\nmore");
}

}  // namespace
