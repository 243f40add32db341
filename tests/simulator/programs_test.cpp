// What the simulated controller reports of a program, and what a program leaves when it ends early.
#include <gtest/gtest.h>

#include "simulator/talk.h"

namespace zk::test {
namespace {

// Runs a program and waits until the controller has begun it.
void run(Talk& talk, const std::string& text) {
    const Json keys{{"project_name", "p"}, {"file_size", text.size()}, {"plan_speed", 100}};
    ASSERT_EQ(talk.ask("run_project", keys).at("project_state"), true);
    talk.client.send_bytes(text);
    ASSERT_EQ(talk.read().at("project_state"), true);
    talk.push.forget();
    talk.sample();
}

// Other messages may come first, but no report that the program has finished.
Json state_of_unfinished(Talk& talk) {
    talk.send("get_program_run_state");
    Json message;
    do {
        message = talk.read();
        EXPECT_NE(message.value("state", ""), "program_run_finish");
    } while (message.value("state", "") != "get_program_run_state");
    return message;
}

TEST(RunningPrograms, WaitForEachTimerAndDoNotFinishWhenTheyAreStopped) {
    const std::pair<const char*, Json> interruptions[] = {
        {"set_arm_stop", Json::object()}, {"zk_sim_fault", {{"arm_err", 1}}}, {"set_arm_power", {{"arm_power", 64}}}};
    for (const auto& [command, keys] : interruptions) {
        Talk talk({"--quiet"});
        run(talk, "{\"loop\":3}\n{\"command\":\"timer\",\"wait_time\":60000}\n{\"end_loop\":true}\n");
        const Json state = state_of_unfinished(talk);
        EXPECT_EQ(state.at("run_state"), 1);
        EXPECT_EQ(state.value("plan_num", 0), 2);
        EXPECT_EQ(state.value("loop_cont", Json()), Json({1}));
        talk.send(command, keys);
        while (state_of_unfinished(talk).at("run_state") != 0) continue;
    }
}

TEST(RunningPrograms, AreAtTheirFirstLineAtOnce) {
    Talk talk({"--quiet", "--speed", "0.1"});
    const std::string text = "{\"command\":\"timer\",\"wait_time\":60000}";
    const Json keys{{"project_name", "p"}, {"file_size", text.size()}, {"plan_speed", 100}};
    talk.client.send_bytes(request_text("run_project", keys) + "\r\n" + text + request_text("get_program_run_state") +
                           "\r\n");
    talk.read(), talk.read();
    EXPECT_EQ(talk.read().value("plan_num", 0), 1);
}

TEST(RunningPrograms, LeaveNoMoveToBeJoined) {
    Talk talk({"--quiet"});
    run(talk,
        "{\"command\":\"movej\",\"joint\":[0,0,0,0,0,0],\"trajectory_connect\":1}\n"
        "{\"command\":\"movej\",\"joint\":[999000,0,0,0,0,0]}\n");
    while (state_of_unfinished(talk).at("run_state") != 0) continue;
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
}

}  // namespace
}  // namespace zk::test
