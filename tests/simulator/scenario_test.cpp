// What surrounds the arm, changed by requests and by scenarios.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "simulator/talk.h"
#include "support/pattern.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

TEST(World, InputsAreSetFromOutside) {
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
}

TEST(World, WhatCannotBeIsRefusedWithTheReason) {
    const Json zeros{0, 0, 0, 0, 0, 0};
    const auto coils = [](int address, const Json& values) {
        return Json{{"port", 0}, {"device", 1}, {"kind", "coil"}, {"address", address}, {"values", values}};
    };
    const std::tuple<const char*, Json, const char*> rows[] = {
        {"zk_sim_modbus", coils(65535, {1, 1}), "\"address\" is out of range"},
        {"zk_sim_modbus", coils(0, Json::array()), "\"values\" holds nothing"},
        {"zk_sim_fault", {{"transfer", {{"kind", "close"}, {"att", 1}}}}, "no key 'att'"},
        {"zk_sim_disconnect", {{"reset", 1}}, "is no boolean"},
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
    const std::vector<std::string> commands = found_in(run_simulator("--commands").output, "(zk_sim_\\w+)");
    EXPECT_GE(commands.size(), 12u);
    for (const std::string& command : commands) expect_refusal(command.c_str(), {{"plce", 1}}, "no key 'plce'");
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

TEST(Scenario, GoesOnAfterARestart) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("restart.json", R"({"$schema": "schema.json", "events": [
        {"at": 0.1, "do": [{"command": "zk_sim_restart"}, {"command": "zk_sim_restart"}]},
        {"at": 0.2, "do": [{"command": "zk_sim_input", "kind": "DI", "IO_Num": 1, "value": 1}]}]})");
    const SimulatorProcess simulator({"--quiet", "--scenario", file});
    for (std::string reply; reply.find(R"("IO_state":1)") == std::string::npos;) {
        try {
            reply = simulator.ask(R"({"command":"get_DI_state","IO_Num":1})");
        } catch (const std::runtime_error&) {  // it does not listen
        }
    }
}

TEST(Scenario, TheSchemaHasTheKeysThatTheLoaderKnows) {
    const TemporaryDirectory folder;
    using Keys = std::set<std::string>;
    const auto words = [](const std::string& text, const char* pattern) {
        const std::vector<std::string> all = found_in(text, pattern);
        return Keys(all.begin(), all.end());
    };
    // The loader lists them when one is wrong.
    const auto known = [&](const std::string& scenario) {
        const Finished run = run_simulator("--port 0 --scenario " + folder.file("wrong.json", scenario));
        return words(run.output.substr(run.output.find("there are ") + 10), "([$\\w]+)(?=,|\n)");
    };
    const Json schema = Json::parse(content_of(std::string(kSourceFolder) + "/simulator/scenarios/schema.json"));
    const auto listed = [&](const std::string& place) {
        Keys keys;
        for (const auto& property : schema.at(Json::json_pointer(place + "/properties")).items())
            keys.insert(property.key());
        return keys;
    };
    Keys options = words(run_simulator("--help").output, "  --([\\w-]+) ");
    for (const char* other : {"scenario", "help", "version", "commands"}) options.erase(other);
    options.insert("$schema");
    EXPECT_EQ(listed("/properties/options"), options);
    EXPECT_EQ(listed(""), known(R"({"x":1})"));
    EXPECT_EQ(listed("/properties/events/items"), known(R"({"events":[{"x":1}]})"));
    Keys conditions = known(R"({"events":[{"when":{"joint":1,"x":1},"do":[]}]})");
    conditions.merge(known(R"({"events":[{"when":{"x":1},"do":[]}]})"));
    EXPECT_EQ(listed("/properties/events/items/properties/when"), conditions);
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
    const SimulatorProcess kept({"--quiet", "--scenario",
                                 folder.file("kept.json", R"({"options":{"state":")" + folder.path() + R"(/kept"}})")});
    EXPECT_TRUE(std::filesystem::exists(folder / "kept"));
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
