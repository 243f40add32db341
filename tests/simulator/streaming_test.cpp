// How the simulated arm follows streamed set-points.
#include <gtest/gtest.h>

#include "simulator/samples.h"
#include "support/socket.h"

namespace zk::test {
namespace {

Json joints(const Joints& degrees) { return {{"joint", thousandths(degrees)}}; }

Json joints(const Joints& degrees, bool follow) {
    Json keys = joints(degrees);
    keys["follow"] = follow;
    keys["expand"] = 0;
    return keys;
}

// The samples up to the first one at rest at these joints.
std::vector<Sample> samples_to(Talk& talk, const std::vector<double>& target) {
    return talk.samples_until([&](const Sample& sample) {
        double distance = 0;
        for (size_t i = 0; i < target.size(); ++i)
            distance = std::max(distance, std::abs(sample.joints[i] - target[i]));
        return sample.status == "idle" && distance < 0.001;
    });
}

int verdict(const Json& report) {
    EXPECT_EQ(report.value("state", ""), "joint_state") << report;
    return report.at("arm_err");
}

TEST(Streaming, ADistantSetPointIsPursuedWithinSpeedAndAcceleration) {
    Talk talk(kCycleOption);
    const Limits limits = limits_of(talk);
    const std::vector<double> start = talk.joints(), away = plus(start, 60), back = plus(start, -10);
    talk.send("movej_follow", joints(away));
    std::vector<Sample> samples =
        talk.samples_until([&](const Sample& sample) { return sample.joints[0] > start[0] + 30; });
    talk.send("movej_follow", joints(back));
    const std::vector<Sample> rest = samples_to(talk, back);
    samples.insert(samples.end(), rest.begin(), rest.end());
    expect_within_limits(samples, limits, 1);
    EXPECT_GE(peaks_of(samples, 0).speed, 0.9 * limits.speed[0]);
    EXPECT_GE(peaks_of(samples, 0).acc, 0.9 * limits.acc[0]);
    EXPECT_TRUE(talk.ask("get_arm_plan_num").contains("plan_num"));  // the first thing that comes
}

TEST(Streaming, SetPointsAreReportedOneByOneAndTheArmRestsAtTheLast) {
    for (const bool follow : {true, false}) {
        Talk talk(kCycleOption);
        const Limits limits = limits_of(talk);
        const std::vector<double> start = talk.joints();
        constexpr int kCount = 300;
        for (int i = 1; i <= kCount; ++i) {
            Json keys = joints(plus(start, 0.05 * i), follow);
            keys["expand"] = i;
            EXPECT_EQ(verdict(talk.ask("movej_canfd", keys)), 0);
        }
        while (talk.ask("expand_get_state").at("pos") != kCount) continue;
        samples_to(talk, plus(start, 0.05 * kCount));
        EXPECT_EQ(talk.ask("zk_sim_stream"), Json({{"state", "zk_sim_stream"}, {"received", kCount}, {"refused", 0}}));
        const std::vector<double> last = plus(talk.joints(), 20);
        talk.send("movej_canfd", joints(last, follow));
        const std::vector<Sample> samples = samples_to(talk, last);
        for (size_t joint = 0; joint < last.size(); ++joint)
            EXPECT_LE(peaks_of(samples, joint).speed, limits.speed[joint] + kSpeedRounding) << "joint " << joint + 1;
        const double acc = peaks_of(samples, 0).acc;
        EXPECT_EQ(acc > limits.acc[0] + kAccRounding, follow) << acc;
    }
}

TEST(Streaming, ReportsHoldTheCurrentPosition) {
    Talk talk({"--quiet", "--joints", "10.5,-20,-60,15,-40,20"});
    const Json report = talk.ask("movej_canfd", joints({10.5, -20, -60, 15, -40, 20}));
    EXPECT_EQ(report.at("joint"), Json({10.5, -20.0, -60.0, 15.0, -40.0, 20.0}));
}

TEST(Streaming, RefusedSetPointsAreReportedAndNotFollowed) {
    Talk talk({"--quiet"});
    const std::vector<double> start = talk.joints();
    const Json good = joints(start, true);
    const auto changed = [&](const char* key, const Json& value) {
        Json keys = good;
        keys[key] = value;
        return keys;
    };
    std::vector<double> beyond = start;
    beyond[1] = -130.1;
    const std::pair<Json, int> rows[] = {
        {joints({1, 2, 3, 4, 5}), 257},   {changed("joint", "home"), 257},       {changed("follow", 1), 257},
        {joints(beyond, true), 258},      {joints(plus(start, 37), false), 259}, {changed("expand", "far"), 257},
        {changed("expand", 200001), 258},
    };
    for (const auto& [keys, error] : rows) EXPECT_EQ(verdict(talk.ask("movej_canfd", keys)), error) << keys;
    EXPECT_EQ(verdict(talk.ask("movej_follow", joints(beyond))), 258);

    talk.ask("set_arm_power", {{"arm_power", 64}});
    EXPECT_EQ(verdict(talk.ask("movej_canfd", good)), 261);
    talk.ask("set_arm_power", {{"arm_power", 1}});
    EXPECT_EQ(verdict(talk.ask("movej_canfd", good)), 0);
    EXPECT_EQ(talk.joints(), start);
    EXPECT_EQ(talk.ask("zk_sim_stream").at("refused"), 9);
}

TEST(Streaming, AMoveWaitsForTheLastSetPointAndLaterOnesAreRefused) {
    Talk talk(kCycleOption);
    const std::vector<double> start = talk.joints(), streamed = plus(start, 20);
    talk.send("movej_follow", joints(streamed));
    ASSERT_TRUE(talk.movej(start, 100));
    EXPECT_EQ(verdict(talk.ask("movej_canfd", joints(streamed))), 261);
    talk.samples_until([&](const Sample& sample) { return std::abs(sample.joints[0] - streamed[0]) < 0.001; });
    EXPECT_TRUE(talk.read_arrival());
    expect_near(talk.joints(), start);
}

TEST(Streaming, AStopBrakesAndOutlastsTheStream) {
    Talk talk(kCycleOption);
    const Limits limits = limits_of(talk);
    const std::vector<double> start = talk.joints(), target = plus(start, 100);
    talk.send("movej_follow", joints(target));
    std::vector<Sample> samples =
        talk.samples_until([&](const Sample& sample) { return sample.joints[0] > start[0] + 30; });
    talk.client.send_bytes(line(request_text("set_arm_stop")) + line(request_text("movej_follow", joints(target))));
    EXPECT_TRUE(talk.read().at("arm_stop"));
    EXPECT_EQ(verdict(talk.read()), 261);
    const std::vector<Sample> rest = talk.samples_until("idle");
    samples.insert(samples.end(), rest.begin(), rest.end());
    expect_within_limits(samples, limits, 1);
    EXPECT_LT(talk.joints()[0], target[0] - 20);
    // After these samples the stream has paused long enough.
    talk.samples_until([&](const Sample& sample) { return sample.time > rest.back().time + 200; });
    talk.send("movej_follow", joints(target));
    samples_to(talk, target);
}

TEST(Streaming, PosesAreFollowedAsEulerAnglesAndAsQuaternionsOfEitherScale) {
    Talk talk({"--quiet", "--speed", "max", "--tool", "0.02,-0.03,0.15,0,0,0"});
    talk.ask("zk_sim_time");
    const Json waypoint = Json::parse(talk.push.receive()).at("waypoint");
    std::vector<int> pose = waypoint.at("position"), quaternion = waypoint.at("quat");
    const std::vector<int> euler = waypoint.at("euler"), position = pose;
    const auto turned = [&](int divisor) {
        std::vector<int> all = pose;
        for (const int part : quaternion) all.push_back(part / divisor);
        return Json{{"pose_quat", all}};
    };
    const auto by_angles = [&] { return Json{{"pose", {pose[0], pose[1], pose[2], euler[0], euler[1], euler[2]}}}; };
    for (int i = 1; i <= 90; ++i) {
        pose[2] = position[2] + 500 * i;
        Json keys = i % 3 == 0 ? by_angles() : turned(i % 3 == 1 ? 1 : 1000);
        keys["follow"] = i % 2 == 0;
        const Json report = talk.ask("movep_canfd", keys);
        EXPECT_EQ(report.at("state"), "pose_state");
        EXPECT_EQ(report.at("arm_err"), 0);
        const double height = report.at("pose").at(2);
        EXPECT_NEAR(height, position[2] / 1e6, 0.05);
    }
    pose[1] -= 40000;
    talk.send("movep_follow", by_angles());
    const std::vector<int> reached = talk.pose();
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(reached[i], pose[i], 5) << i;
    for (int i = 3; i < 6; ++i) EXPECT_NEAR(reached[i], euler[i - 3], 1) << i;
}

TEST(Streaming, InvalidPosesAreRefused) {
    Talk talk({"--quiet"});
    const std::vector<int> start = talk.pose();
    const std::pair<Json, int> rows[] = {
        {{{"pose", {3000000, 0, 0, 0, 0, 0}}}, 260},
        {{{"pose", {0, 0, 0}}}, 257},
        {{{"pose_quat", {0, 0, 500000, 0, 0, 0, 0}}}, 257},
        {{{"pose_quat", {0, 0, 500000, 800000, 0, 0, 0}}}, 257},
    };
    for (const char* command : {"movep_canfd", "movep_follow"}) {
        for (const auto& [keys, error] : rows) EXPECT_EQ(talk.ask(command, keys).at("arm_err"), error) << keys;
    }
    EXPECT_EQ(talk.pose(), start);
}

}  // namespace
}  // namespace zk::test
