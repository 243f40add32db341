// The speed of simulated time, from the start and while the simulator runs.
#include <gtest/gtest.h>

#include "simulator/talk.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

// What a simulator pushes at full speed, up to the end of two moves and a motion of the gripper.
std::vector<std::string> pushed_bytes() {
    Talk talk({"--quiet", "--speed", "max", "--model", "ZK65-6F", "--seed", "3", "--push-cycle", "10"});
    talk.move_to({10, -20, -60, 15, -40, 20});
    EXPECT_EQ(talk.ask("set_gripper_position", {{"position", 200}, {"block", true}}).at("state"), true);
    EXPECT_EQ(talk.read().at("device"), 1);
    talk.move_to({0, 0, 0, 0, 0, 0});
    const int64_t end = talk.ask("zk_sim_time").at("time");
    std::vector<std::string> all;
    do all.push_back(talk.push.receive());
    while (Json::parse(all.back()).at("time").get<int64_t>() + 50 <= end);
    return all;
}

TEST(Time, AtFullSpeedTheSameRequestsPushTheSameBytes) {
    const std::vector<std::string> first = pushed_bytes();
    EXPECT_GT(first.size(), 20u);
    EXPECT_EQ(first, pushed_bytes());
}

TEST(Time, AtFullSpeedItStandsBetweenTheRequests) {
    Talk talk({"--quiet", "--speed", "max"});
    const int64_t start = talk.ask("zk_sim_time").at("time");
    talk.move_to({30, 0, 0, 0, 0, 0});
    const int64_t arrived = talk.ask("zk_sim_time").at("time");
    EXPECT_GT(arrived, start + 100);
    EXPECT_EQ(talk.ask("zk_sim_time").at("time"), arrived + 5) << "a request takes one step";

    // A program runs to its end without a further request.
    const std::string program = R"({"command":"timer","wait_time":30000})";
    ASSERT_EQ(talk.ask("run_project", {{"project_name", "wait"}, {"file_size", program.size()}, {"plan_speed", 100}})
                  .at("project_state"),
              true);
    talk.client.send_bytes(program);
    EXPECT_EQ(talk.read().at("command"), "download_project");
    EXPECT_EQ(talk.read().at("state"), "program_run_finish");
    EXPECT_GE(talk.ask("zk_sim_time").at("time").get<int64_t>(), arrived + 30'000);
}

TEST(Time, AtFullSpeedAMinuteIsTheMostForARequestAndAStepForThoseAfterIt) {
    Talk talk({"--quiet", "--speed", "max"});
    const auto times_after_driving = [&](int speed) {
        std::string batch = request_text("set_vehicle", {{"speed", speed}, {"angular", 0}}) + "\r\n";
        for (int i = 0; i < 3; ++i) batch += request_text("zk_sim_time") + "\r\n";
        talk.client.send_bytes(batch);
        talk.read();
        return std::vector<int64_t>{talk.read().at("time"), talk.read().at("time"), talk.read().at("time")};
    };
    EXPECT_EQ(times_after_driving(100), std::vector<int64_t>({60'000, 60'005, 60'010}));
    const std::vector<int64_t> stopped = times_after_driving(0);
    EXPECT_EQ(stopped[2] - stopped[0], 10);
}

TEST(Time, StandsAtOnceWhenAScenarioSetsFullSpeed) {
    const TemporaryDirectory folder;
    const std::string file =
        folder.file("fast.json", R"({"events":[{"at":0.1,"do":[{"command":"zk_sim_speed","speed":"max"}]}]})");
    Talk talk({"--quiet", "--scenario", file});
    Json now;
    do now = talk.ask("zk_sim_time");
    while (now.at("speed") != "max");
    EXPECT_EQ(now.at("time"), 100);
}

TEST(Time, ChangesItsSpeedWhileTheArmMoves) {
    Talk talk({"--quiet", "--speed", "0.1"});
    EXPECT_EQ(talk.ask("zk_sim_time").at("speed"), 0.1);
    ASSERT_TRUE(talk.movej({90, 0, 0, 0, 0, 0}, 1));  // minutes
    for (const Json& speed : {Json(0.05), Json(101), Json("fast"), Json(true)})
        EXPECT_EQ(talk.ask("zk_sim_speed", {{"speed", speed}}).at("done"), false) << speed;
    EXPECT_EQ(talk.ask("zk_sim_speed", {{"speed", 100}}).at("done"), true);
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_EQ(talk.ask("zk_sim_time").at("speed"), 100);
    EXPECT_EQ(talk.ask("zk_sim_speed", {{"speed", "max"}}).at("done"), true);
    EXPECT_EQ(talk.ask("zk_sim_time").at("speed"), "max");
}

}  // namespace
}  // namespace zk::test
