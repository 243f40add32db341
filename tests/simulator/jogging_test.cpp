// How the simulated arm jogs and steps.
#include <gtest/gtest.h>

#include "simulator/samples.h"

namespace zk::test {
namespace {

const char* const kJogging = "tech_demonstration";

bool ask_joint_teach(Talk& talk, int joint, const char* direction, int percent) {
    return talk.ask("set_joint_teach", {{"teach_joint", joint}, {"direction", direction}, {"v", percent}})
        .at("joint_teach");
}

Json joint_step(double joint, double degrees, int percent = 50) {
    return {{"joint_step", {joint, degrees * 1000}}, {"v", percent}};
}

bool is_idle(const Sample& sample) { return sample.status == "idle"; }

TEST(Jogging, OneJointMovesAtItsShareOfTheSpeedUntilItIsStopped) {
    Talk talk(kCycleOption);
    const Limits limits = limits_of(talk);
    const std::vector<double> start = talk.joints();
    ASSERT_TRUE(ask_joint_teach(talk, 2, "neg", 20));
    std::vector<Sample> samples =
        talk.samples_until([&](const Sample& sample) { return sample.joints[1] < start[1] - 20; });
    EXPECT_EQ(samples.back().status, kJogging);
    ASSERT_TRUE(talk.ask("set_stop_teach").at("stop_teach"));
    const std::vector<Sample> rest = talk.samples_until(is_idle);
    samples.insert(samples.end(), rest.begin(), rest.end());
    expect_within_limits(samples, limits, 0.2);
    EXPECT_GE(peaks_of(samples, 1).speed, 0.99 * 0.2 * limits.speed[1]);
    std::vector<double> others = talk.joints();  // and no report of an arrival came before
    EXPECT_GT(others[1], -130);
    others[1] = start[1];
    expect_near(others, start);
}

TEST(Jogging, EndsAtALimit) {
    Talk talk(kCycleOption);
    ASSERT_TRUE(talk.ask("set_joint_max_pos", {{"joint_max_pos", {1, 30000}}}).at("joint_max_pos"));
    ASSERT_TRUE(ask_joint_teach(talk, 1, "pos", 100));
    talk.samples_until([](const Sample& sample) { return is_idle(sample) && sample.joints[0] == 30; });
}

TEST(Jogging, TheToolJogsStraightToTheEndOfItsReach) {
    struct Row {
        const char* model;
        const char* command;
        const char* key;
        const char* axis;
        int fixed[2];  // what of the pose stays as it was
    };
    const Row rows[] = {{"ZK65-B", "set_pos_teach", "pos_teach", "x", {1, 2}},
                        {"ZK75-6F", "set_ort_teach", "ort_teach", "rz", {0, 1}}};
    for (const auto& [model, command, key, axis, fixed] : rows) {
        Talk talk(arguments(model));
        const Limits limits = limits_of(talk);
        const std::vector<int> start = talk.pose();
        ASSERT_TRUE(talk.ask(command, {{"teach_type", axis}, {"direction", "pos"}, {"v", 100}}).at(key));
        talk.samples_until(kJogging);
        expect_within_limits(talk.samples_until(is_idle), limits, 1);
        const std::vector<int> end = talk.pose();
        EXPECT_NE(start, end);
        for (const int i : fixed) EXPECT_NEAR(start[i], end[i], 100) << command;
    }
}

TEST(Jogging, ANewJogReplacesTheOldOne) {
    Talk talk(kCycleOption);
    const std::vector<double> start = talk.joints();
    ASSERT_TRUE(ask_joint_teach(talk, 1, "pos", 20));
    talk.samples_until([&](const Sample& sample) { return sample.joints[0] > start[0] + 10; });
    ASSERT_TRUE(ask_joint_teach(talk, 1, "neg", 20));
    talk.samples_until([&](const Sample& sample) { return sample.joints[0] < start[0]; });
    // A jog that waits for the arm to stop is stopped with it.
    talk.send("set_joint_teach", {{"teach_joint", 1}, {"direction", "pos"}, {"v", 20}});
    talk.send("set_stop_teach");
    EXPECT_TRUE(talk.read().at("joint_teach"));
    EXPECT_TRUE(talk.read().at("stop_teach"));
    talk.samples_until(is_idle);
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
}

TEST(Jogging, IsRefusedWhenTheArmMayNotMoveOrHasMovesQueued) {
    Talk talk({"--quiet"});
    for (const int joint : {0, 7}) EXPECT_FALSE(ask_joint_teach(talk, joint, "pos", 20));
    for (const int percent : {0, 101}) EXPECT_FALSE(ask_joint_teach(talk, 1, "pos", percent));
    EXPECT_FALSE(ask_joint_teach(talk, 1, "up", 20));
    talk.ask("set_arm_power", {{"arm_power", 64}});
    EXPECT_FALSE(ask_joint_teach(talk, 1, "pos", 20));
    talk.ask("set_arm_power", {{"arm_power", 1}});
    ASSERT_TRUE(talk.movej({100, 0, 0, 0, 0, 0}, 5));
    EXPECT_FALSE(ask_joint_teach(talk, 1, "pos", 20));
    EXPECT_TRUE(talk.ask("set_stop_teach").at("stop_teach"));  // a move is not its to stop
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 1);
}

TEST(Jogging, AStepMovesByItsAmountAndReportsItsEnd) {
    Talk talk({"--quiet"});
    std::vector<double> expected = talk.joints();
    for (const auto& [joint, degrees] : {std::pair{1, 10.0}, {6, -0.5}, {1, 0.0}}) {
        ASSERT_TRUE(talk.ask("set_joint_step", joint_step(joint, degrees)).at("joint_step"));
        EXPECT_TRUE(talk.read_arrival());
        expected[joint - 1] += degrees;
        expect_near(talk.joints(), expected);
    }
    // After a move it starts at the end of that move.
    ASSERT_TRUE(talk.movej({20, 0, 0, 0, 0, 0}, 100));
    ASSERT_TRUE(talk.ask("set_joint_step", joint_step(1, 10)).at("joint_step"));
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_TRUE(talk.read_arrival());
    expect_near(talk.joints(), {30, 0, 0, 0, 0, 0});
}

TEST(Jogging, ARefusedStepIsReported) {
    Talk talk({"--quiet"});
    for (const Json& keys : {Json{{"step_type", "x_step"}, {"step", 3000000}, {"v", 20}},
                             Json{{"step_type", "rx_step"}, {"step", 10}, {"v", 20}}, Json::object()}) {
        EXPECT_FALSE(talk.ask("set_pos_step", keys).at("pos_step")) << keys;
        EXPECT_FALSE(talk.read_arrival());
    }
    for (const Json& keys : {joint_step(2, -120), joint_step(8, 1), joint_step(1, 1, 0), Json::object()}) {
        EXPECT_FALSE(talk.ask("set_joint_step", keys).at("joint_step")) << keys;
        EXPECT_FALSE(talk.read_arrival());
    }
}

}  // namespace
}  // namespace zk::test
