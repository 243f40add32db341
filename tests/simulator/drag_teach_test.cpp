// Drag teaching of the simulated arm: it follows a hand, records, and replays the recording.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "simulator/talk.h"

namespace zk::test {
namespace {

double distance(const Joints& a, const Joints& b) {
    double most = 0;
    for (size_t i = 0; i < a.size(); ++i) most = std::max(most, std::abs(a[i] - b[i]));
    return most;
}

class DragTeach : public testing::Test {
 protected:
    bool lead(const Joints& joints, double seconds) {
        return talk.ask("zk_sim_hand", {{"seconds", seconds}, {"joint", joints}}).at("done");
    }
    void stand_at(const Joints& target) {
        talk.samples_until([&](const Sample& sample) { return distance(sample.joints, target) < 0.002; });
    }
    // Half a second to a target and half a second half the way back.
    void record() {
        ASSERT_TRUE(talk.ask("start_drag_teach", {{"trajectory_record", 1}}).at("drag_teach"));
        ASSERT_TRUE(lead(far, 0.5));
        ASSERT_TRUE(lead(half, 0.5));
        talk.push.forget();
        stand_at(far);
        stand_at(half);
        ASSERT_TRUE(talk.ask("stop_drag_teach").at("drag_teach"));
    }
    void return_to_origin() {
        ASSERT_TRUE(talk.ask("drag_trajectory_origin").at("trajectory_state"));
        ASSERT_TRUE(talk.read_arrival());
    }

    Talk talk{{"--quiet", "--push-cycle", "2"}};
    const Joints home = talk.joints(), far = plus(home, 20), half = plus(home, 10);
};

TEST_F(DragTeach, ReplaysARecordingAtItsPace) {
    record();
    EXPECT_FALSE(talk.ask("run_drag_trajectory").at("run_state")) << "not at the origin";
    return_to_origin();
    EXPECT_LT(distance(talk.joints(), home), 0.002);
    talk.push.forget();
    talk.send("run_drag_trajectory");
    const std::vector<Sample> samples = talk.samples_until([&, there = false](const Sample& sample) mutable {
        there = there || distance(sample.joints, far) < 0.1;
        return there && distance(sample.joints, half) < 0.002;
    });
    EXPECT_TRUE(talk.read().at("run_state"));
    EXPECT_LT(distance(talk.joints(), half), 0.002);
    double furthest = 0;
    int64_t set_out = samples.back().time;
    for (const Sample& sample : samples) {
        furthest = std::max(furthest, sample.joints[0] - home[0]);
        if (sample.status == "move_through_joint") set_out = std::min(set_out, sample.time);
        // All joints moved in proportion.
        for (size_t i = 1; i < home.size(); ++i)
            EXPECT_NEAR(sample.joints[i] - home[i], sample.joints[0] - home[0], 0.01);
    }
    EXPECT_NEAR(furthest, 20, 0.1);
    EXPECT_GE(samples.back().time - set_out, 900) << "as long as the recording";
}

TEST_F(DragTeach, AReplayCanBePausedContinuedAndStopped) {
    record();
    return_to_origin();
    talk.push.forget();
    talk.send("run_drag_trajectory");
    talk.samples_until([&](const Sample& sample) { return sample.joints[0] > home[0] + 2; });
    EXPECT_TRUE(talk.ask("pause_drag_trajectory").at("pause_state"));
    talk.samples_until("pause");
    EXPECT_EQ(talk.ask("get_arm_current_trajectory").at("type"), "re_trajectory") << "it is not over";
    EXPECT_TRUE(talk.ask("continue_drag_trajectory").at("continue_state"));
    talk.push.forget();
    talk.samples_until("move_through_joint");
    EXPECT_TRUE(talk.ask("stop_drag_trajectory").at("stop_state"));
    EXPECT_FALSE(talk.read().at("run_state"));
    EXPECT_FALSE(talk.ask("stop_drag_trajectory").at("stop_state")) << "nothing to stop";
}

TEST_F(DragTeach, ADraggedArmRejectsMoves) {
    EXPECT_FALSE(lead(far, 0)) << "an arm that does not yield";
    ASSERT_TRUE(talk.ask("start_multi_drag_teach", {{"mode", 0}, {"singular_wall", 0}}).at("set_state"));
    EXPECT_FALSE(talk.movej(far, 50));
    EXPECT_FALSE(talk.read_arrival());
    EXPECT_FALSE(talk.ask("start_drag_teach", {{"trajectory_record", 1}}).at("drag_teach"));
    talk.push.forget();
    EXPECT_EQ(talk.sample().status, "current_drag");
    ASSERT_TRUE(talk.ask("stop_drag_teach").at("drag_teach"));
    EXPECT_FALSE(talk.ask("stop_drag_teach").at("drag_teach"));
    EXPECT_FALSE(talk.ask("start_multi_drag_teach", {{"mode", 1}, {"singular_wall", 0}}).at("set_state"))
        << "no six-axis sensor";
    EXPECT_TRUE(talk.movej(home, 50));
}

TEST_F(DragTeach, EndsWhenTheArmBrakes) {
    const std::pair<const char*, Json> brakes[] = {{"set_arm_power", {{"arm_power", 64}}},
                                                   {"zk_sim_fault", {{"joint_err", {0, 0, 7, 0, 0, 0}}}}};
    for (const auto& [command, keys] : brakes) {
        ASSERT_TRUE(talk.ask("start_drag_teach", {{"trajectory_record", 1}}).at("drag_teach"));
        const Joints start = talk.joints();
        ASSERT_TRUE(lead(plus(start, 10), 10));
        talk.samples_until([&](const Sample& sample) { return distance(sample.joints, start) > 0.1; });
        talk.ask(command, keys);
        talk.push.forget();
        const Sample held = talk.sample();
        EXPECT_FALSE(talk.ask("stop_drag_teach").at("drag_teach")) << command;
        talk.samples_until([&](const Sample& sample) { return sample.time > held.time + 200; });
        EXPECT_EQ(talk.joints(), held.joints) << command;
        talk.ask("set_arm_power", {{"arm_power", 1}});
    }
}

TEST(DragTeachByFile, FollowsTheScript) {
    const std::string path = testing::TempDir() + "hand_" + std::to_string(getpid());
    std::ofstream(path) << "# seconds, joints\n0.2, 0 0 0 0 0 0\n\n0, 5,5,5,5,5,5  # as soon as it can\n";
    Talk talk({"--quiet", "--push-cycle", "2", "--joints", "1,1,1,1,1,1", "--hand", path});
    ASSERT_TRUE(talk.ask("start_drag_teach", {{"trajectory_record", 0}}).at("drag_teach"));
    talk.samples_until([&](const Sample& sample) { return distance(sample.joints, Joints(6, 5.0)) < 0.002; });
    ASSERT_TRUE(talk.ask("stop_drag_teach").at("drag_teach"));
    EXPECT_FALSE(talk.ask("drag_trajectory_origin").at("trajectory_state")) << "nothing was recorded";
    for (const char* wrong : {"1 2 3\n", "-1 0 0 0 0 0 0\n", "1 0 0 0 0 0 x\n", "1 0 0 0 0 0 999\n", "7\n"}) {
        std::ofstream(path) << wrong;
        EXPECT_EQ(run_simulator("--port 0 --hand " + path).status, 2) << wrong;
    }
    std::remove(path.c_str());
    EXPECT_EQ(run_simulator("--port 0 --hand " + path).status, 2) << "no such file";
}

}  // namespace
}  // namespace zk::test
