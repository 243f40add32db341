// What surrounds the arm, changed by requests and by scenarios.
#include <gtest/gtest.h>

#include <filesystem>

#include "simulator/talk.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

TEST(World, InputsAndRegistersAreSetFromOutside) {
    Talk talk({"--quiet"});
    const auto done = [&](const char* command, const Json& keys) { return talk.ask(command, keys).at("done"); };
    EXPECT_EQ(done("zk_sim_input", {{"kind", "DI"}, {"IO_Num", 3}, {"value", 1}}), true);
    EXPECT_EQ(done("zk_sim_input", {{"kind", "AI"}, {"IO_Num", 2}, {"value", 4200}}), true);
    EXPECT_EQ(done("zk_sim_input", {{"kind", "tool_DI"}, {"IO_Num", 1}, {"value", 1}}), true);
    EXPECT_EQ(talk.ask("get_IO_input"), Json({{"state", "IO_input"}, {"DI", {0, 0, 1, 0}}, {"AI", {0, 4200, 0, 0}}}));
    EXPECT_EQ(talk.ask("get_IO_output"), Json({{"state", "IO_output"}, {"DO", {0, 0, 0, 0}}, {"AO", {0, 0, 0, 0}}}));
    EXPECT_EQ(talk.ask("get_tool_IO_state").at("IO_State"), Json({0, 0})) << "an output shows what it puts out";
    EXPECT_EQ(talk.ask("set_tool_IO_mode", {{"IO_Num", 1}, {"state", 0}}).at("set_state"), true);
    EXPECT_EQ(talk.ask("get_tool_IO_state").at("IO_State"), Json({1, 0}));
    EXPECT_EQ(done("zk_sim_input", {{"kind", "DI"}, {"IO_Num", 3}}), true);
    EXPECT_EQ(talk.ask("get_DI_state", {{"IO_Num", 3}}).at("IO_state"), 0) << "wired to its output again";
    EXPECT_EQ(done("zk_sim_input", {{"kind", "DO"}, {"IO_Num", 3}, {"value", 1}}), false);

    const Json registers{
        {"port", 0}, {"device", 1}, {"kind", "input_register"}, {"address", 7}, {"values", {300, 301}}};
    EXPECT_EQ(done("zk_sim_modbus", registers), true);
    EXPECT_EQ(talk.ask("set_modbus_mode", {{"port", 0}, {"baudrate", 115200}, {"timeout", 1}}).at("set_state"), true);
    EXPECT_EQ(talk.ask("read_input_registers", {{"port", 0}, {"address", 8}, {"device", 1}}).at("data"), 301);
    Json beyond = registers;
    beyond["address"] = 65535;
    EXPECT_EQ(done("zk_sim_modbus", beyond), false);
}

TEST(World, WhatCannotBeIsRefusedWithTheReason) {
    const Json zeros{0, 0, 0, 0, 0, 0};
    const std::tuple<const char*, Json, const char*> rows[] = {
        {"zk_sim_input", {{"kind", "DI"}, {"IO_Num", 3}, {"valu", 1}}, "no key 'valu'"},
        {"zk_sim_wall", {{"plce", {0, 0, 1}}}, "no key 'plce'"},
        {"zk_sim_object", {{"width", 300}, {"kg", 1}}, "no key 'kg'"},
        {"zk_sim_object", {{"width", 300}}, "until grip_loss ends"},
        {"zk_sim_hand", {{"seconds", 1}, {"joint", zeros}}, "in drag teaching only"}};
    Talk talk({"--quiet", "--speed", "max", "--fault", "grip_loss=1"});
    const auto expect_refusal = [&](const char* command, const Json& keys, const char* reason) {
        const Json reply = talk.ask(command, keys);
        EXPECT_NE(reply.value("reason", "").find(reason), std::string::npos) << reply;
    };
    for (const auto& [command, keys, reason] : rows) expect_refusal(command, keys, reason);
    ASSERT_EQ(talk.ask("zk_sim_fault", {{"grip_loss", 0}}).at("done"), true);
    talk.ask("set_gripper_position", {{"position", 200}});
    expect_refusal("zk_sim_object", {{"width", 300}}, "above the opening of the gripper, 200");
}

TEST(Scenario, EventsMakeRequests) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("scenario.json", R"({
        "options": {"model": "ZK75-6F", "joints": [0, 0, 0, 0, 0, 0, 0], "speed": "max"},
        "events": [
            {"at": 0.1, "do": [{"command": "zk_sim_input", "kind": "DI", "IO_Num": 1, "value": 1}]},
            {"when": {"joint": 1, "above": 45}, "after": 3, "again": true,
             "do": [{"command": "zk_sim_input", "kind": "AI", "IO_Num": 1, "value": 700}]},
            {"when": {"joint": 1, "below": 45}, "do": [{"command": "set_DO_state", "IO_Num": 2, "state": 1}]},
            {"when": {"output": 2, "is": 1}, "do": [{"command": "zk_sim_input", "kind": "DI", "IO_Num": 4, "value": 1}]}
        ]})");
    Talk talk({"--quiet", "--scenario", file});
    const auto inputs = [&] { return talk.ask("get_IO_input"); };
    EXPECT_EQ(talk.joints().size(), 7u);
    talk.move_to({40, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(inputs().at("DI"), Json({1, 1, 0, 1})) << "by time; by a joint below; by the output that it set";
    EXPECT_EQ(inputs().at("AI"), Json({0, 0, 0, 0}));
    const int64_t before = talk.ask("zk_sim_time").at("time");
    talk.move_to({50, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(inputs().at("AI"), Json({700, 0, 0, 0}));
    EXPECT_GT(talk.ask("zk_sim_time").at("time").get<int64_t>(), before + 3000)
        << "the event comes three seconds later";
}

TEST(Scenario, TheShippedOnesRunAndWrongOnesAreRefused) {
    const std::string scenarios = std::string(kSourceFolder) + "/simulator/scenarios/";
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(scenarios)) {
        if (entry.path().filename() == "schema.json") continue;
        Talk talk({"--quiet", "--scenario", entry.path().string(), "--speed", "max"});
        talk.move_to({90, 0, 0, 0, 0, 0});
        ++count;
    }
    EXPECT_GE(count, 4);
    const TemporaryDirectory folder;
    for (const std::string event :
         {R"({"at":1})", R"({"at":1,"every":2,"do":[]})", R"({"at":-1,"do":[]})", R"({"every":0,"do":[]})",
          R"({"at":1,"do":[{"command":"make_coffee"}]})", R"({"when":{"joint":7,"above":1},"do":[]})",
          R"({"when":{"lift":1},"do":[]})", R"({"at":1,"then":[],"do":[]})", R"({"at":1,"again":true,"do":[]})",
          R"({"when":{"joint":1,"is":1},"do":[]})", R"({"when":{"output":1,"above":1},"do":[]})",
          R"({"when":{"joint":1},"do":[]})", R"({"when":{"joint":1.5,"above":1},"do":[]})",
          R"({"when":{"joint":1,"above":2,"below":1},"do":[]})", R"({"when":{"output":1,"is":2},"do":[]})"}) {
        const Finished run =
            run_simulator("--port 0 --scenario " + folder.file("wrong.json", R"({"events":[)" + event + "]}"));
        EXPECT_EQ(run.status, 2) << event;
        EXPECT_NE(run.output.find("event 1"), std::string::npos) << run.output;
    }
    const std::string itself = folder.file("itself.json", R"({"options":{"scenario":"itself.json"}})");
    for (const std::string& path : {itself, folder.path() + "/missing.json"})
        EXPECT_EQ(run_simulator("--port 0 --scenario " + path).status, 2);
}

}  // namespace
}  // namespace zk::test
