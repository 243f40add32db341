// The simulator as a program: its options, its first line, its exit status.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cmath>

#include "simulator/talk.h"
#include "support/paths.h"
#include "support/pattern.h"
#include "support/temporary_file.h"
#include "zk/export.h"

namespace zk::test {
namespace {

TEST(Program, FirstLineNamesModelAndPorts) {
    Talk talk({"--quiet", "--model", "ORB63-ZF", "--push-port", "0"});
    const char* const form = R"(zk_simulator model=ORB63-ZF port=\d+ push_port=[1-9]\d*)";
    EXPECT_TRUE(matches(talk.simulator.first_line(), form)) << talk.simulator.first_line();
}

TEST(Program, EndsWithZeroOnASignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Talk talk({"--quiet"});
        ASSERT_TRUE(talk.movej({0, 0, 0, 0, 0, 0}, 1));
        kill(talk.simulator.id(), signal);
        EXPECT_EQ(talk.simulator.wait_for_exit(), 0);
    }
}

TEST(Program, HelpNamesEveryModelAndTheCycle) {
    const Finished run = run_simulator("--help");
    EXPECT_EQ(run.status, 0);
    for (const char* text : {"ZK65-B", "ZK75-6F", "72-B", "ORB63-ZF", "--push-port", "units of 5 ms"})
        EXPECT_NE(run.output.find(text), std::string::npos) << text;
    EXPECT_EQ(run_simulator("--version").output, "zk_simulator " ZK_VERSION_STRING "\n");
}

TEST(Program, WrongOptionsEndWithTwoAndAMessage) {
    const std::pair<const char*, const char*> cases[] = {
        {"--modl ZK65-B --wrong", "--modl"},
        {"--model ZK66-B", "ZK66-B"},
        {"--model 62-ZF", "62-ZF"},
        {"--model", "--model"},
        {"--port eighty", "eighty"},
        {"--port 65536", "--port"},
        {"--port -1", "--port"},
        {"--port 80x", "80x"},
        {"--listen localhost", "localhost"},
        {"--push-cycle 0", "--push-cycle"},
        {"--tool 1,2,3", "--tool"},
        {"--tool 1,2,3,4,5,nan", "--tool"},
        {"--tool 1e9,0,0,0,0,0", "--tool"},
        {"--install 1,2,", "--install"},
        {"--joints 0,0,0,0,0", "--joints"},
        {"--joints 179,0,0,0,0,0", "joint 1"},
        {"--speed 0", "--speed"},
        {"--fault drop=101", "drop"},
        {"--fault brake=1", "brake"},
        {"--arms 0", "--arms"},
        {"--arms none.json", "none.json"},
        {"--silent-on make_coffee", "make_coffee"},
        {"--refuse-on get_joint_degree", "get_joint_degree"},
        {"--state ''", "--state"},
        {"--files /none", "'/none' is no directory"},
        {"--fault max_clients=0", "max_clients=0"},
        {"--state /", "is a directory"},
        {"now", "now"},
    };
    for (const auto& [arguments, mentioned] : cases) {
        const Finished run = run_simulator(arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_NE(run.output.find(mentioned), std::string::npos) << arguments << "\n" << run.output;
    }
}

TEST(Program, WrongValuesInAFileAreNamed) {
    const TemporaryDirectory folder;
    const std::pair<const char*, const char*> cases[] = {
        {R"("quiet":1)", "--quiet: in a file, it is true or false"},
        {R"("help":true)", "--help: in a file, it means nothing"},
        {R"("state":5)", "--state: in a file, it is a text"},
        {R"("port":[1])", "--port: in a file, it is a number"},
        {R"("tool":{"x":1})", "--tool: in a file, it is a list of numbers"},
        {R"("tool":[[1],2,3,4,5,6])", "--tool: '[1]' is no number"},
        {R"("silent-on":["movej",1])", "--silent-on: in a file, it is a text or a list of texts"},
        {R"("fault":["drop"])", "--fault: in a file, it is a text or an object"},
        {R"("fault":{"drop":true})", "--fault drop: 'true' is no number"},
        {R"("arms":2)", "--arms: an arm of a list has no arms"},
        {R"("colour":"red")", "unknown option 'colour'"},
    };
    for (const auto& [key, reason] : cases) {
        const Finished run = run_simulator("--arms " + folder.file("arms.json", "[{" + std::string(key) + "}]"));
        EXPECT_EQ(run.status, 2) << key;
        EXPECT_NE(run.output.find(reason), std::string::npos) << key << "\n" << run.output;
    }
}

TEST(Program, APortInUseIsAnError) {
    Talk talk({"--quiet"});
    const Finished run = run_simulator("--port " + std::to_string(talk.simulator.port()));
    EXPECT_EQ(run.status, 1);
    const std::string place = "127.0.0.1:" + std::to_string(talk.simulator.port());
    EXPECT_NE(run.output.find(place), std::string::npos) << run.output;
}

TEST(Helper, RefusesWhatTheSimulatorWouldIgnore) {
    SimulatorProcess simulator({"--quiet"});
    for (const char* keys : {"", "drop:10", "\"drop\"", "\"drop\":10}", "\"silent_on\":[", "\"drop:10"})
        EXPECT_THROW(simulator.set_faults(keys), std::invalid_argument) << keys;
    EXPECT_THROW(simulator.set_speed(std::nan("")), std::invalid_argument);
    simulator.set_faults(R"( "silent_on":["movej"],"transfer":{"kind":""})");
}

TEST(Helper, WaitsForAnAnswerForATime) {
    SimulatorProcess simulator({"--quiet"});
    simulator.set_patience(50);
    EXPECT_THROW(simulator.ask(R"({"command":"make_coffee"})"), std::runtime_error);
    kill(simulator.id(), SIGSTOP);
    EXPECT_THROW(simulator.ask(R"({"command":"zk_sim_time"})"), std::runtime_error);
    kill(simulator.id(), SIGCONT);
    simulator.set_patience(10'000);
    simulator.set_speed(2);
    const TemporaryDirectory folder;
    const std::string mute = folder.file("mute", "#!/bin/sh\nexec sleep 1000\n");
    std::filesystem::permissions(mute, std::filesystem::perms::owner_all);
    EXPECT_THROW(Simulator({}, mute, 50), std::runtime_error);
}

TEST(Helper, IsNotLockedOut) {
    SimulatorProcess simulator({"--quiet"});
    simulator.set_faults(R"("max_clients":0,"refuse_ms":60000)");
    simulator.set_faults(R"("max_clients":1000,"refuse_ms":0)");
    EXPECT_NE(simulator.ask(R"({"command":"zk_sim_restart"})").find("true"), std::string::npos);
    while (true) {
        try {
            return simulator.set_faults(R"("drop":1)");
        } catch (const std::runtime_error&) {  // it does not listen yet
        }
    }
}

TEST(Helper, StartsWithoutStandardInput) {
    const int kept = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    EXPECT_NO_THROW(SimulatorProcess({"--quiet"}).set_speed(2));
    dup2(kept, STDIN_FILENO);
    close(kept);
}

TEST(Helper, NamesAMissingProgram) {
    try {
        const Simulator simulator({}, "/none/zk_simulator");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "cannot run '/none/zk_simulator': No such file or directory");
    }
}

}  // namespace
}  // namespace zk::test
