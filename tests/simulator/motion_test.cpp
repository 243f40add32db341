// How the simulated arm moves, as the real-time push shows it. All times are the simulator's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "simulator/samples.h"

namespace zk::test {
namespace {

// The samples of one move, from the last one at rest before it to the first at rest after it.
std::vector<Sample> moved_samples(Talk& talk) {
    std::vector<Sample> samples{talk.sample(), talk.sample()};
    while (samples.back().status == "idle") samples = {samples.back(), talk.sample()};
    const std::vector<Sample> rest = talk.samples_until("idle");
    samples.insert(samples.end(), rest.begin(), rest.end());
    return samples;
}

double seconds_of(const std::vector<Sample>& samples) { return (samples.back().time - samples.front().time) / 1000.0; }

class EveryArm : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Simulator, EveryArm, testing::Values("ZK65-B", "ZK75-6F", "72-B"));

TEST_P(EveryArm, MovesWithinItsLimitsAtTwentyAndAtHundredPercent) {
    constexpr double kTurn = 80;  // degrees, on every joint
    Talk talk(arguments(GetParam()));
    const Limits limits = limits_of(talk);
    const std::vector<double> start = talk.joints(), target = plus(start, kTurn);
    const double slowest = *std::min_element(limits.speed.begin(), limits.speed.end());

    ASSERT_TRUE(talk.movej(target, 20));
    const std::vector<Sample> slow = moved_samples(talk);
    EXPECT_TRUE(talk.read_arrival());
    expect_near(talk.joints(), target);
    ASSERT_TRUE(talk.movej(start, 100));
    const std::vector<Sample> fast = moved_samples(talk);
    EXPECT_TRUE(talk.read_arrival());
    expect_near(talk.joints(), start);

    expect_within_limits(slow, limits, 0.2);
    expect_within_limits(fast, limits, 1);
    // The slowest joint moves at its speed limit, and its ramps at its acceleration limit.
    const size_t pacing = std::min_element(limits.speed.begin(), limits.speed.end()) - limits.speed.begin();
    EXPECT_GE(peaks_of(slow, pacing).speed, 0.99 * 0.2 * slowest);
    EXPECT_GE(peaks_of(fast, pacing).acc, 0.8 * limits.acc[pacing]);
    EXPECT_GE(seconds_of(slow), kTurn / (0.2 * slowest));
    EXPECT_GE(seconds_of(fast), kTurn / slowest);
    EXPECT_GT(seconds_of(slow), 2.5 * seconds_of(fast));
    EXPECT_LT(seconds_of(slow), 5 * seconds_of(fast));
}

TEST(Motion, JointsStartAndEndTogether) {
    Talk talk(kCycleOption);
    const std::vector<double> start = talk.joints();
    std::vector<double> target = start;
    for (size_t i = 0; i < target.size(); ++i) target[i] += 10.0 * (i + 1) * (i % 2 ? -1 : 1);
    ASSERT_TRUE(talk.movej(target, 100));
    for (const Sample& sample : moved_samples(talk)) {
        const double share = (sample.joints[0] - start[0]) / (target[0] - start[0]);
        for (size_t i = 1; i < target.size(); ++i) {
            const double straight = start[i] + share * (target[i] - start[i]);
            // Joint 1 moves least, so its rounding has the largest effect on the ratios.
            EXPECT_NEAR(sample.joints[i], straight, 0.0005 + 0.0005 * (i + 1) + 1e-9) << "joint " << i + 1;
        }
    }
}

TEST(Motion, LowerLimitsOfAJointHold) {
    Talk talk(kCycleOption);
    ASSERT_TRUE(talk.ask("set_joint_max_speed", {{"joint_max_speed", {1, 5000}}}).at("joint_max_speed"));  // 30 deg/s
    ASSERT_TRUE(talk.ask("set_joint_max_acc", {{"joint_max_acc", {1, 20000}}}).at("joint_max_acc"));  // 120 deg/s^2
    ASSERT_TRUE(talk.ask("auto_set_joint_limit", {{"limit_mode", 1}}).at("limit_mode"));  // of the positions alone
    const Limits limits = limits_of(talk);
    EXPECT_NEAR(limits.speed[0], 30, 1e-9);
    ASSERT_TRUE(talk.movej(plus(talk.joints(), 20), 100));
    const std::vector<Sample> samples = moved_samples(talk);
    expect_within_limits(samples, limits, 1);
    EXPECT_GE(peaks_of(samples, 0).speed, 0.99 * 30);
}

// A move of at least half a minute, and the samples of its start.
std::vector<double> start_long_move(Talk& talk) {
    std::vector<double> target = talk.joints();
    target[0] = 170;
    EXPECT_TRUE(talk.movej(target, 5));
    const double start = talk.joints()[0];
    talk.samples_until([&](const Sample& sample) { return sample.joints[0] > start + 1; });
    return target;
}

std::vector<Sample> stop_samples(Talk& talk, const std::string& command, const std::string& key) {
    EXPECT_TRUE(talk.ask(command).at(key));
    EXPECT_FALSE(talk.read_arrival());
    return talk.samples_until("idle");
}

TEST(Motion, StopEndsAMoveBeforeItsTarget) {
    Talk talk(kCycleOption);
    const Limits limits = limits_of(talk);
    const std::vector<double> target = start_long_move(talk);
    const std::vector<Sample> samples = stop_samples(talk, "set_arm_stop", "arm_stop");
    expect_within_limits(samples, limits, 0.05);
    EXPECT_LT(talk.joints()[0], target[0] - 10);
    EXPECT_EQ(talk.ask("get_arm_current_trajectory").at("type"), "none");
    const std::vector<double> rest = talk.joints();
    talk.push.forget();
    expect_near(talk.sample().joints, rest);
}

double braking_seconds(const std::vector<Sample>& samples, const std::string& status) {
    const auto first =
        std::find_if(samples.begin(), samples.end(), [&](const Sample& s) { return s.status == status; });
    EXPECT_NE(first, samples.end()) << "no sample has the status " << status;
    return first == samples.end() ? 0 : (samples.back().time - first->time) / 1000.0;
}

TEST(Motion, SlowStopIsGentler) {
    Talk talk({"--quiet", "--push-cycle", "1"});
    const auto brake = [&](const std::string& command, const std::string& key, const std::string& status) {
        std::vector<double> target = talk.joints();
        const double start = target[0];
        target[0] = start > 0 ? -170 : 170;
        EXPECT_TRUE(talk.movej(target, 50));
        talk.samples_until([&](const Sample& sample) { return std::abs(sample.joints[0] - start) > 20; });
        return braking_seconds(stop_samples(talk, command, key), status);
    };
    const double hard = brake("set_arm_stop", "arm_stop", "stop");
    const double gentle = brake("set_arm_slow_stop", "arm_slow_stop", "slow_stop");
    EXPECT_GT(gentle, 3 * hard);
    EXPECT_LT(gentle, 5 * hard);
}

TEST(Motion, RepeatedStopsDoNotProlongTheBraking) {
    Talk talk(kCycleOption);
    start_long_move(talk);
    for (int i = 0; i < 20; ++i) talk.send("set_arm_stop");
    int acknowledged = 0, reports = 0;
    while (acknowledged < 20 || reports < 1) {
        const Json reply = talk.read();
        reply.contains("arm_stop") ? ++acknowledged : ++reports;
    }
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
}

TEST(Motion, PauseHaltsOnThePathAndContinueCompletesTheMove) {
    Talk talk(kCycleOption);
    const Limits limits = limits_of(talk);
    std::vector<double> start = talk.joints(), target = start;
    target[0] += 60;
    target[1] -= 30;
    ASSERT_TRUE(talk.movej(target, 30));
    std::vector<Sample> samples =
        talk.samples_until([&](const Sample& sample) { return sample.joints[0] > start[0] + 20; });
    ASSERT_TRUE(talk.ask("set_arm_pause").at("arm_pause"));
    const auto still = [last = samples.back()](const Sample& sample) mutable {
        return std::exchange(last, sample).joints == sample.joints && sample.status == "pause";
    };
    const std::vector<Sample> braking = talk.samples_until(still);
    samples.insert(samples.end(), braking.begin(), braking.end());
    expect_within_limits(samples, limits, 0.3);
    const std::vector<double> halted = talk.joints();
    EXPECT_LT(halted[0], target[0] - 10);
    EXPECT_NEAR((halted[0] - start[0]) / 60, (halted[1] - start[1]) / -30, 1e-3);
    EXPECT_EQ(talk.ask("get_arm_current_trajectory").at("type"), "movej");
    EXPECT_FALSE(talk.ask("set_arm_pause").at("arm_pause"));  // nothing moves that could be paused

    ASSERT_TRUE(talk.ask("set_arm_continue").at("arm_continue"));
    EXPECT_TRUE(talk.read_arrival());
    expect_within_limits(talk.samples_until("idle"), limits, 0.3);
    expect_near(talk.joints(), target);
    EXPECT_FALSE(talk.ask("set_arm_continue").at("arm_continue"));
}

TEST(Motion, MovesQueueAndEachReportsItsArrival) {
    Talk talk(kCycleOption);
    const std::vector<double> start = talk.joints();
    ASSERT_TRUE(talk.movej(plus(start, 20), 50));
    ASSERT_TRUE(talk.movej(plus(start, -5), 50));
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 2);
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_TRUE(talk.read_arrival());
    expect_near(talk.joints(), plus(start, -5));
}

// Moves to the current position arrive, up to the maximum number of joined ones.
TEST(Motion, TooManyMovesAreRefused) {
    Talk talk(kCycleOption);
    const std::vector<double> here = talk.joints();
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(talk.movej(here, 20, 1)) << i;
    EXPECT_FALSE(talk.movej(here, 20, 1));
    EXPECT_FALSE(talk.read_arrival());
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 200);
    ASSERT_TRUE(talk.movej(here, 20));
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
}

TEST(Motion, DeletingAllTrajectoriesReportsEachOfThem) {
    Talk talk(kCycleOption);
    const std::vector<double> target = start_long_move(talk);
    ASSERT_TRUE(talk.movej(plus(talk.joints(), -10), 100, 1));
    ASSERT_TRUE(talk.movej(target, 100));
    ASSERT_TRUE(talk.ask("set_arm_delete_trajectory").at("arm_delete_trajectory"));
    std::vector<int> connects;
    for (int i = 0; i < 3; ++i) {
        const Json report = talk.read();
        EXPECT_EQ(report.at("trajectory_state"), false);
        connects.push_back(report.at("trajectory_connect"));
    }
    // The joined one first: a client has room for one report, and waits for that of a move of its own.
    EXPECT_EQ(connects, (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
}

TEST(Motion, AStopAlsoEndsAPausedMove) {
    Talk talk(kCycleOption);
    start_long_move(talk);
    ASSERT_TRUE(talk.ask("set_arm_pause").at("arm_pause"));
    talk.samples_until("pause");
    ASSERT_TRUE(talk.ask("set_arm_stop").at("arm_stop"));
    EXPECT_FALSE(talk.read_arrival());
    ASSERT_TRUE(talk.movej(plus(talk.joints(), 1), 100));
    EXPECT_TRUE(talk.read_arrival());
}

TEST(Motion, PowerOffStopsTheArm) {
    Talk talk(kCycleOption);
    const std::vector<double> target = start_long_move(talk);
    ASSERT_TRUE(talk.ask("set_arm_power", {{"arm_power", 64}}).at("arm_power"));
    EXPECT_FALSE(talk.read_arrival());
    EXPECT_LT(talk.joints()[0], target[0] - 10);
    EXPECT_EQ(talk.ask("get_arm_power_state").at("power_state"), 0);
}

TEST(Motion, TheTimerDelaysTheNextMove) {
    Talk talk(kCycleOption);
    ASSERT_TRUE(talk.ask("timer", {{"wait_time", 1000}}).at("wait_time"));
    const std::vector<double> target = plus(talk.joints(), 1);
    const int64_t asked = talk.sample().time;
    ASSERT_TRUE(talk.movej(target, 100));
    const Json coming = talk.ask("get_arm_current_trajectory");
    EXPECT_EQ(coming.at("type"), "movej");
    EXPECT_EQ(coming.at("data"), thousandths(target));
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_GE(talk.samples_until([&](const Sample& s) { return s.joints[0] > target[0] - 0.001; }).back().time,
              asked + 980);
}

// Of joint 1, in thousandths.
void set_limit(Talk& talk, const std::string& name, int limit) {
    ASSERT_TRUE(talk.ask("set_" + name, {{name, {1, limit}}}).at(name));
}

const Joints kHome{0, -20, -60, 15, -40, 20}, kNear{10, -20, -60, 15, -40, 20}, kFar{120, -20, -60, 15, -40, 20};
const std::vector<std::string> kAtHome{"--quiet", "--joints", "0,-20,-60,15,-40,20"};

bool add_waypoint(Talk& talk, const Joints& point) {
    return talk.ask("add_waypoint", {{"joint", thousandths(point)}}).at("waypoint_state");
}

TEST(Motion, NoneLeavesTheLimitsThatHoldWhenItMoves) {
    const auto to = [](const Joints& target, int connect = 0) {
        return Json{{"joint", thousandths(target)}, {"v", 100}, {"trajectory_connect", connect}};
    };
    const Json far = to(kFar), lead{{"seconds", 0}, {"joint", {45, -20, -60, 15, -40, 20}}};
    const std::vector<std::pair<const char*, Json>> motions[] = {
        {{"movej", far}},
        {{"movej", to(kNear)}, {"movej", far}},
        {{"movej", to(kNear, 1)}, {"movej", far}},
        {{"add_waypoint", far}, {"start_waypoint", {{"frequency", 1}}}},
        {{"set_joint_teach", {{"teach_joint", 1}, {"direction", "pos"}, {"v", 100}}}},
        {{"movej_follow", far}},
        {{"start_multi_drag_teach", {{"mode", 0}, {"singular_wall", 0}}}, {"zk_sim_hand", lead}},
    };
    for (const auto& requests : motions) {
        Talk talk(kAtHome);
        set_limit(talk, "joint_max_speed", 4500);  // 27 degrees per second
        for (const auto& [command, keys] : requests) talk.send(command, keys);
        const Sample first = talk.samples_until([](const Sample& sample) { return sample.joints[0] > 0.1; }).back();
        talk.send("set_joint_max_pos", {{"joint_max_pos", {1, 30000}}});
        for (const Sample& sample : talk.samples_until([&](const Sample& s) { return s.time > first.time + 2800; }))
            ASSERT_LE(sample.joints[0], 30) << requests.back().first;
    }
}

TEST(Motion, LimitsHoldForWhatWasStoredOrQueuedBefore) {
    Talk talk(kAtHome);
    ASSERT_TRUE(add_waypoint(talk, kFar));
    set_limit(talk, "joint_max_pos", 30000);
    EXPECT_FALSE(talk.ask("start_waypoint", {{"frequency", 100}}).at("waypoint_state"));
    set_limit(talk, "joint_max_pos", 170000);
    ASSERT_TRUE(talk.ask("timer", {{"wait_time", 1500}}).at("wait_time"));
    ASSERT_TRUE(talk.movej(kFar, 100));
    set_limit(talk, "joint_max_speed", 10000);
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_LE(peaks_of(talk.samples_until([](const Sample& s) { return s.joints == kFar; }), 0).speed, 60.3);

    std::vector<int> pose = talk.pose();
    pose[2] -= 50000;
    ASSERT_TRUE(talk.ask("timer", {{"wait_time", 1500}}).at("wait_time"));
    const Json down{{"pose", pose}, {"v", 100}, {"r", 0}, {"trajectory_connect", 0}};
    ASSERT_TRUE(talk.ask("movel", down).at("receive_state"));
    ASSERT_TRUE(talk.ask("set_arm_max_line_speed", {{"arm_line_speed", 50}}).at("arm_line_speed"));
    const double height = talk.tool().p.z();
    const Sample start = talk.samples_until([&](const Sample& s) { return s.tool.p.z() < height; }).back();
    EXPECT_TRUE(talk.read_arrival());
    EXPECT_GE(talk.samples_until("idle").back().time - start.time, 1000) << "5 cm at 5 cm/s";
}

TEST(Motion, AStopOfTheWaypointsLeavesOtherMoves) {
    Talk talk(kAtHome);
    ASSERT_TRUE(add_waypoint(talk, kFar));
    ASSERT_TRUE(talk.movej(kNear, 20));
    ASSERT_TRUE(talk.ask("start_waypoint", {{"frequency", 1}}).at("waypoint_state"));
    ASSERT_TRUE(talk.ask("stop_waypoint").at("waypoint_state"));
    EXPECT_TRUE(talk.read_arrival());
    ASSERT_TRUE(talk.ask("start_waypoint", {{"frequency", 1}}).at("waypoint_state"));
    ASSERT_TRUE(talk.movej(kHome, 100));
    talk.samples_until([](const Sample& sample) { return sample.joints[0] > kNear[0] + 1; });
    ASSERT_TRUE(talk.ask("stop_waypoint").at("waypoint_state"));
    EXPECT_TRUE(talk.read_arrival());
    expect_near(talk.joints(), kHome);
}

TEST(Motion, WaypointsRunInOrder) {
    Talk talk(kCycleOption);
    const std::vector<double> start = talk.joints();
    EXPECT_FALSE(talk.ask("start_waypoint", {{"frequency", 10}}).at("waypoint_state"));
    for (const double turn : {8.0, -4.0}) {
        ASSERT_TRUE(talk.ask("add_waypoint", {{"joint", thousandths(plus(start, turn))}}).at("waypoint_state"));
    }
    ASSERT_TRUE(talk.ask("start_waypoint", {{"frequency", 10}}).at("waypoint_state"));
    const auto at = [&](double turn) {
        return [&, turn](const Sample& sample) { return std::abs(sample.joints[2] - start[2] - turn) < 0.001; };
    };
    talk.samples_until(at(8));
    EXPECT_EQ(talk.ask("get_arm_current_trajectory").at("type"), "re_trajectory");
    talk.samples_until(at(-4));
    talk.samples_until("idle");
    expect_near(talk.joints(), plus(start, -4));
}

}  // namespace
}  // namespace zk::test
