// Files that a client sends between its requests.
#include <gtest/gtest.h>

#include "simulator/talk.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

Json update(const std::string& name, size_t size) { return {{"update_name", name}, {"file_size", size}}; }
Json program(size_t size) {
    return {{"project_name", "p"}, {"file_size", size}, {"plan_speed", 20}, {"save_id", 1}, {"only_save", 1}};
}

TEST(Files, MayHoldAnyBytesAndRequestsFollow) {
    const TemporaryDirectory directory;
    Talk talk({"--quiet", "--files", directory.path()});
    const std::string content = std::string("\r\n{\"command\":\"set_arm_stop\"}\r\n\0\xff", 32);
    talk.client.send_bytes(request_text("update_software", update("u", content.size())) + "\r\n" + content +
                           request_text("get_arm_power_state") + "\r\n");
    EXPECT_EQ(talk.read().at("update_state"), true);
    EXPECT_EQ(talk.read().at("project_state"), true);
    EXPECT_EQ(talk.read().at("power_state"), 1);
    EXPECT_EQ(content_of(directory / "u"), content);

    uint64_t digest = 0xcbf29ce484222325;
    for (const char byte : content) digest = (digest ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    char text[17];
    snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(digest));
    const Json expected{{"kind", "update"}, {"name", "u"}, {"size", content.size()}, {"fnv1a", text}};
    EXPECT_EQ(talk.ask("zk_sim_files").at("files"), Json::array({expected}));
}

TEST(Files, AreRefusedWithAnInvalidName) {
    const TemporaryDirectory directory;
    Talk talk({"--quiet", "--files", directory.path()});
    const std::string long_name(300, 'x');
    for (const char* name : {"", ".", "..", "../x", "/x", "no/such/place", long_name.c_str()}) {
        EXPECT_EQ(talk.ask("update_software", update(name, 1)).at("update_state"), false) << name;
    }
}

TEST(Files, FailWhenAFaultIsInjected) {
    Talk talk({"--quiet"});
    talk.ask("zk_sim_fault", {{"transfer", {{"kind", "error_line"}, {"at", 9}}}});
    EXPECT_EQ(talk.ask("run_project", program(2)).at("project_state"), true);
    talk.client.send_bytes("{}");
    EXPECT_EQ(talk.read().at("err_line"), 9);
    EXPECT_EQ(talk.ask("zk_sim_fault", {{"transfer", {{"kind", "explode"}}}}).at("done"), false);
    talk.ask("zk_sim_fault", {{"transfer", {{"kind", "close"}, {"at", 1}}}});
    EXPECT_EQ(talk.ask("run_project", program(2)).at("project_state"), true);
    talk.client.send_bytes("{}");
    EXPECT_TRUE(talk.client.wait_for_close());
}

TEST(Files, OfProgramsAreCheckedLineByLine) {
    Talk talk({"--quiet"});
    const std::pair<std::string, int> texts[] = {
        {"", 0},
        {"{\"a\":1}\r\n\r\n \n{\"command\":\"timer\",\"wait_time\":1}", 0},
        {"{}\n[]\n", 2},
        {"{}\nmovej", 2},
        {"{\"a\":" + std::string(100'000, '[') + std::string(100'000, ']') + "}", 1},
        {"{\"command\":\"set_arm_power\"}", 1},
        {"{\"loop\":0}\n{\"end_loop\":true}", 1},
        {"{\"end_loop\":true}", 1},
        {"{}\n{\"loop\":2}\n{}", 3},
        {"{\"command\":\"movej\",\"trajectory_connect\":1}\n{\"command\":\"timer\",\"wait_time\":1}", 0},
        {"{\"command\":\"timer\",\"wait_time\":1}\n{\"command\":\"movej\",\"trajectory_connect\":1}\n{}", 2},
    };
    for (const auto& [text, line] : texts) {
        EXPECT_EQ(talk.ask("run_project", program(text.size())).at("project_state"), true);
        talk.client.send_bytes(text);
        const Json verdict = talk.read();
        EXPECT_EQ(verdict.at("project_state"), line == 0) << text;
        EXPECT_EQ(verdict.value("err_line", 0), line) << text;
    }
}

}  // namespace
}  // namespace zk::test
