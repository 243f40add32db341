// Moves of the simulated arm's tool along lines, circles and splines, joined and not, as the real-time push shows them.
#include <gtest/gtest.h>

#include <numbers>

#include "simulator/samples.h"

namespace zk::test {
namespace {

constexpr double kClose = 2e-4;  // metres and radians that a sample may lie beside its path

KDL::Frame moved(const KDL::Frame& from, const KDL::Vector& by, const KDL::Vector& turn = {}) {
    return KDL::addDelta(from, KDL::Twist(by, turn));
}

std::vector<int> wire(const KDL::Frame& pose) {
    double rx, ry, rz;
    pose.M.GetRPY(rx, ry, rz);
    std::vector<int> wire;
    for (const double metres : {pose.p.x(), pose.p.y(), pose.p.z()})
        wire.push_back(static_cast<int>(std::lround(metres * 1e6)));
    for (const double radians : {rx, ry, rz}) wire.push_back(static_cast<int>(std::lround(radians * 1e3)));
    return wire;
}

// The pose in the units of the wire.
KDL::Frame on_wire(const KDL::Frame& pose) {
    const std::vector<int> w = wire(pose);
    return {KDL::Rotation::RPY(w[3] / 1e3, w[4] / 1e3, w[5] / 1e3), KDL::Vector(w[0] / 1e6, w[1] / 1e6, w[2] / 1e6)};
}

Json to_pose(const Json& pose, int percent, int connect = 0, int blend = 0) {
    return {{"pose", pose}, {"v", percent}, {"r", blend}, {"trajectory_connect", connect}};
}

bool accepted(Talk& talk, const std::string& command, const Json& keys) {
    return talk.ask(command, keys).at("receive_state");
}

bool move_to(Talk& talk, const std::string& command, const KDL::Frame& target, int percent, int connect = 0,
             int blend = 0) {
    return accepted(talk, command, to_pose(wire(target), percent, connect, blend));
}

// The samples up to the end of the motion in progress.
std::vector<Sample> run(Talk& talk) {
    talk.samples_until([](const Sample& sample) { return sample.status != "idle"; });
    return talk.samples_until("idle");
}

void expect_report(Talk& talk, bool arrived, int connect = 0) {
    const Json expected{{"state", "current_trajectory_state"},
                        {"trajectory_state", arrived},
                        {"device", 0},
                        {"trajectory_connect", connect}};
    EXPECT_EQ(talk.read(), expected);
}

void expect_at(const KDL::Frame& actual, const KDL::Frame& expected, double tolerance = kClose) {
    const KDL::Twist beside = KDL::diff(expected, actual);
    EXPECT_LT(beside.vel.Norm(), tolerance);
    EXPECT_LT(beside.rot.Norm(), tolerance);
}

// The mean speeds between samples, with `way` as the distance between two poses.
std::vector<double> speeds(const std::vector<Sample>& samples,
                           double (*way)(const KDL::Frame& from, const KDL::Frame& to)) {
    std::vector<double> speeds;
    for (size_t i = 1; i < samples.size(); ++i)
        speeds.push_back(way(samples[i - 1].tool, samples[i].tool) / (samples[i].time - samples[i - 1].time) * 1000);
    return speeds;
}

double metres(const KDL::Frame& from, const KDL::Frame& to) { return (to.p - from.p).Norm(); }
double radians(const KDL::Frame& from, const KDL::Frame& to) { return KDL::diff(from.M, to.M).Norm(); }

double highest(const std::vector<double>& values) { return *std::max_element(values.begin(), values.end()); }

// The lowest speed between the first and the last sample at half the top speed.
double lowest_on_the_way(const std::vector<double>& speeds) {
    const auto fast = [half = highest(speeds) / 2](double speed) { return speed > half; };
    const auto first = std::find_if(speeds.begin(), speeds.end(), fast);
    const auto last = std::find_if(speeds.rbegin(), speeds.rend(), fast).base();
    return *std::min_element(first, last);
}

double nearest(const std::vector<Sample>& samples, const KDL::Frame& point) {
    double nearest = 1;
    for (const Sample& sample : samples) nearest = std::min(nearest, metres(sample.tool, point));
    return nearest;
}

class ToolMotion : public testing::TestWithParam<const char*> {
 protected:
    Talk talk{arguments(GetParam())};
    const KDL::Frame start = talk.tool();
    const double inward = start.p.x() > 0 ? -1 : 1;  // the direction along x in which the arm has room
};
INSTANTIATE_TEST_SUITE_P(Simulator, ToolMotion, testing::Values("ZK65-B", "ZK75-6F"));

TEST_P(ToolMotion, ALineIsStraightAndWithinTheToolSpeeds) {
    for (const KDL::Vector& turn : {KDL::Vector(0.05, 0, 0.05), KDL::Vector(-0.1, 0.5, 0.3)}) {
        const KDL::Frame from = talk.tool(),
                         target = on_wire(moved(from, KDL::Vector(inward * 0.05, 0.08, -0.06), turn));
        ASSERT_TRUE(move_to(talk, "movel", target, 40));
        const Json current = talk.ask("get_arm_current_trajectory");
        EXPECT_EQ(current.at("type"), "movel");
        EXPECT_EQ(current.at("data"), Json(wire(target)));
        const std::vector<Sample> samples = run(talk);
        expect_report(talk, true);
        EXPECT_EQ(samples.front().status, "move_L");
        const KDL::Twist whole = KDL::diff(from, target);
        for (const Sample& sample : samples) {
            const double share = KDL::dot(sample.tool.p - from.p, whole.vel) / KDL::dot(whole.vel, whole.vel);
            expect_at(sample.tool, KDL::addDelta(from, whole, share));
        }
        expect_at(talk.tool(), target, 1e-5);
        // 40 percent of 250 mm/s and 600 mrad/s; one of them sets the pace.
        const double line = highest(speeds(samples, metres)) / 0.1, turning = highest(speeds(samples, radians)) / 0.24;
        EXPECT_NEAR(std::max(line, turning), 1, 0.01);
    }
}

TEST_P(ToolMotion, ACirclePassesItsPointsOncePerLoop) {
    constexpr double kRadius = 0.03;
    const KDL::Vector centre = start.p + KDL::Vector(inward * kRadius, 0, 0);
    const auto point = [&](double angle, const KDL::Vector& turn) {
        const KDL::Vector at = centre + kRadius * KDL::Vector(-inward * std::cos(angle), std::sin(angle), 0);
        return on_wire(moved(start, at - start.p, turn));
    };
    const KDL::Frame via = point(2, {0.1, 0, 0}), to = point(3.5, {0.1, 0.1, 0});
    for (const int turns : {0, 1}) {
        ASSERT_TRUE(move_to(talk, "movej_p", start, 100));
        EXPECT_TRUE(talk.read_arrival());
        talk.push.forget();
        Json keys = to_pose({{"pose_via", wire(via)}, {"pose_to", wire(to)}}, 60);
        keys["loop"] = turns;
        ASSERT_TRUE(accepted(talk, "movec", keys));
        const std::vector<Sample> samples = run(talk);
        expect_report(talk, true);
        double way = 0;
        for (size_t i = 0; i < samples.size(); ++i) {
            EXPECT_NEAR((samples[i].tool.p - centre).Norm(), kRadius, kClose);
            EXPECT_NEAR(samples[i].tool.p.z(), centre.z(), kClose);
            if (i > 0) way += metres(samples[i - 1].tool, samples[i].tool);
        }
        EXPECT_NEAR(way, kRadius * (3.5 + 2 * std::numbers::pi * turns), 0.002);
        EXPECT_LT(nearest(samples, via), 0.001);
        expect_at(talk.tool(), to, 1e-5);
        EXPECT_LE(highest(speeds(samples, metres)), 0.15 * 1.02);
    }
}

TEST_P(ToolMotion, ASplinePassesItsPointsWithoutAHalt) {
    const KDL::Frame points[] = {on_wire(moved(start, {inward * 0.01, 0.05, 0}, {0.1, 0, 0})),
                                 on_wire(moved(start, {inward * 0.03, 0.08, -0.04}, {0.1, 0.1, 0})),
                                 on_wire(moved(start, {inward * 0.03, 0.05, -0.08}))};
    ASSERT_TRUE(move_to(talk, "moves", points[0], 40, 1));
    ASSERT_TRUE(move_to(talk, "moves", points[1], 40, 1));
    EXPECT_EQ(talk.ask("get_arm_current_trajectory").at("type"), "none") << "waits for its last point";
    ASSERT_TRUE(move_to(talk, "moves", points[2], 40));
    EXPECT_EQ(talk.ask("get_arm_current_trajectory").at("type"), "moves");
    const std::vector<Sample> samples = run(talk);
    expect_report(talk, true);
    for (const KDL::Frame& point : points) EXPECT_LT(nearest(samples, point), 0.001);
    expect_at(talk.tool(), points[2], 1e-5);
    const std::vector<double> speed = speeds(samples, metres);
    EXPECT_LE(highest(speed), 0.1 * 1.01);
    EXPECT_GT(lowest_on_the_way(speed), 0.02);
    for (size_t i = 1; i < speed.size(); ++i) EXPECT_LT(std::abs(speed[i] - speed[i - 1]), 0.02) << "a jolt";
}

TEST_P(ToolMotion, AJointMoveReachesItsPose) {
    const KDL::Frame target = on_wire(moved(start, {inward * 0.08, 0.1, -0.05}, {0.2, -0.1, 0.4}));
    ASSERT_TRUE(move_to(talk, "movej_p", target, 50));
    const Json current = talk.ask("get_arm_current_trajectory");
    const size_t joints = talk.joints().size();
    expect_report(talk, true);
    EXPECT_EQ(current.at("type"), "movej");
    EXPECT_EQ(current.at("data").size(), joints);
    expect_at(talk.tool(), target, 1e-5);
    const KDL::Frame back = on_wire(start);
    ASSERT_TRUE(move_to(talk, "moves", back, 50));  // a spline of one pose
    expect_report(talk, true);
    expect_at(talk.tool(), back, 1e-5);
}

TEST_P(ToolMotion, JoinedMovesHaltOnlyWithoutABlend) {
    const KDL::Frame corner = on_wire(moved(start, {0, 0.06, 0})), end = on_wire(moved(corner, {0, 0, -0.06}));
    for (const int blend : {0, 30, 100}) {
        ASSERT_TRUE(move_to(talk, "movej_p", start, 100));
        EXPECT_TRUE(talk.read_arrival());
        talk.push.forget();
        ASSERT_TRUE(move_to(talk, "movel", corner, 40, 1, blend));
        ASSERT_TRUE(move_to(talk, "movel", end, 40));
        const std::vector<Sample> samples = run(talk);
        expect_report(talk, true);
        expect_at(talk.tool(), end, 1e-5);
        const double lowest = lowest_on_the_way(speeds(samples, metres)), beside = nearest(samples, corner);
        if (blend == 0) {
            EXPECT_LT(lowest, 0.001);
            EXPECT_LT(beside, kClose);
        } else {
            EXPECT_GT(lowest, 0.1 * 0.5 * blend / 100);
            EXPECT_GT(beside, 1e-6);
            EXPECT_LT(beside, 0.03);
        }
    }
}

TEST_P(ToolMotion, MovesOfDifferentKindsAreJoined) {
    const KDL::Frame first = on_wire(moved(start, {0, 0.05, 0})),
                     second = on_wire(moved(first, {inward * 0.03, 0, -0.05})),
                     third = on_wire(moved(second, {0, -0.05, 0}));
    ASSERT_TRUE(move_to(talk, "movej_p", first, 30, 1, 100));
    ASSERT_TRUE(move_to(talk, "moves", second, 40, 1, 100));
    ASSERT_TRUE(move_to(talk, "movel", third, 40));
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 3);
    const std::vector<Sample> samples = run(talk);
    expect_report(talk, true);
    expect_at(talk.tool(), third, 1e-5);
    std::vector<std::string> statuses;
    for (const Sample& sample : samples) {
        if (statuses.empty() || statuses.back() != sample.status) statuses.push_back(sample.status);
    }
    EXPECT_EQ(statuses, (std::vector<std::string>{"move_J", "move_S", "move_L", "idle"}));
    EXPECT_GT(lowest_on_the_way(speeds(samples, metres)), 0.005);
}

TEST(ToolMotion, RefusesUnreachablePaths) {
    Talk talk(arguments("ZK65-B"));
    const KDL::Frame start = talk.tool();
    const auto away = [&](double x, double y, double z) { return wire(moved(start, {x, y, z})); };
    const Json straight{{"pose_via", away(0, 0.02, 0)}, {"pose_to", away(0, 0.04, 0)}};
    Json circle = to_pose(straight, 20);
    circle["loop"] = 0;
    Json back = circle;
    back["pose"]["pose_via"] = away(0, 0, 0);
    const std::tuple<const char*, Json, const char*> rows[] = {
        {"movel", to_pose(away(1, 0, 0), 20), "out of reach"},
        {"moves", to_pose(away(0, 0, 1), 20), "out of reach"},
        {"movej_p", to_pose(away(0, -1, 0), 20), "out of reach"},
        {"movel", to_pose({2000000000, 0, 0, 0, 0, 0}, 20), "two kilometres"},
        {"movel", to_pose({0, 0, 0, 0, 0}, 20), "five numbers"},
        {"movel", to_pose(away(0, 0.02, 0), 0), "no speed"},
        {"movel", to_pose(away(0, 0.02, 0), 20, 0, 101), "too large a blend"},
        {"movec", circle, "three points on a line"},
        {"movec", back, "a circle through its own start"},
        {"movec", to_pose(straight, 20), "no number of turns"},
    };
    for (const auto& [command, keys, why] : rows) {
        EXPECT_FALSE(accepted(talk, command, keys)) << why;
        expect_report(talk, false);
    }
    expect_at(talk.tool(), start, 1e-9);
}

TEST(ToolMotion, RefusesAPathOnWhichAJointLeavesItsLimitsOrIsTooFast) {
    Talk talk(arguments("ZK65-B"));
    const KDL::Frame start = talk.tool(), beside = moved(start, {0, 0.1, 0});
    const std::vector<double> joints = talk.joints();
    // Joint 1 has to move for the line, but not as far, or not as fast, as its limits allow.
    ASSERT_TRUE(talk.ask("set_joint_max_pos", {{"joint_max_pos", {1, 15000}}}).at("joint_max_pos"));
    EXPECT_FALSE(move_to(talk, "movel", beside, 100));
    expect_report(talk, false);
    ASSERT_TRUE(talk.ask("set_joint_max_pos", {{"joint_max_pos", {1, 178000}}}).at("joint_max_pos"));
    ASSERT_TRUE(talk.ask("set_joint_max_speed", {{"joint_max_speed", {1, 2000}}}).at("joint_max_speed"));  // 12 deg/s
    EXPECT_FALSE(move_to(talk, "movel", beside, 100));
    expect_report(talk, false);
    EXPECT_EQ(talk.joints(), joints);
    EXPECT_TRUE(move_to(talk, "movel", beside, 20));
    expect_report(talk, true);
}

TEST(ToolMotion, ARefusedMoveKeepsTheMovesItWouldJoin) {
    Talk talk(arguments("ZK65-B"));
    const KDL::Frame start = talk.tool(), corner = on_wire(moved(start, {0, 0.05, 0}));
    ASSERT_TRUE(move_to(talk, "moves", corner, 50, 1));
    EXPECT_FALSE(move_to(talk, "moves", moved(start, {1, 0, 0}), 50));
    expect_report(talk, false);
    const KDL::Frame end = on_wire(moved(corner, {0, 0, -0.05}));
    ASSERT_TRUE(move_to(talk, "moves", end, 50));
    EXPECT_LT(nearest(run(talk), corner), 0.002);
    expect_report(talk, true);
    expect_at(talk.tool(), end, 1e-5);
}

TEST(ToolMotion, APauseHaltsOnTheLineAndAStopDropsAllJoinedMoves) {
    Talk talk(arguments("ZK65-B"));
    const KDL::Frame start = talk.tool(), corner = on_wire(moved(start, {0, 0.1, 0})),
                     end = on_wire(moved(corner, {0, 0, -0.1}));
    ASSERT_TRUE(move_to(talk, "movel", corner, 30, 1, 50));
    ASSERT_TRUE(move_to(talk, "movel", end, 30));
    const auto beyond = [&](double way) {
        return [&, way](const Sample& sample) { return metres(start, sample.tool) > way; };
    };
    talk.samples_until(beyond(0.02));
    ASSERT_TRUE(talk.ask("set_arm_pause").at("arm_pause"));
    talk.samples_until("pause");
    ASSERT_TRUE(talk.ask("set_arm_continue").at("arm_continue"));
    for (const Sample& sample : talk.samples_until(beyond(0.05))) {
        EXPECT_NEAR(sample.tool.p.x(), start.p.x(), kClose);
        EXPECT_NEAR(sample.tool.p.z(), start.p.z(), kClose);
    }
    ASSERT_TRUE(talk.ask("set_arm_stop").at("arm_stop"));
    expect_report(talk, false, 1);
    expect_report(talk, false, 0);
    EXPECT_LT(talk.tool().p.y(), corner.p.y());
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
}

TEST(ToolMotion, ALineAfterADeletedMoveStartsAtTheCurrentPosition) {
    Talk talk(arguments("ZK65-B"));
    const KDL::Frame start = talk.tool(), target = on_wire(moved(start, {0, 0.1, -0.05}));
    ASSERT_TRUE(move_to(talk, "movel", moved(start, {0, 0.1, 0}), 10));
    ASSERT_TRUE(move_to(talk, "movel", target, 50));
    talk.samples_until([&](const Sample& sample) { return metres(start, sample.tool) > 0.01; });
    ASSERT_TRUE(talk.ask("set_delete_current_trajectory").at("delete_current_trajectory"));
    expect_report(talk, false);
    expect_report(talk, true);
    expect_at(talk.tool(), target, 1e-5);
}

// Near a singularity the joints bend sharply while the tool moves evenly.
TEST(ToolMotion, KeepsTheJointsWithinTheirAcceleration) {
    std::vector<std::string> options = arguments("ORB63-B");
    options.insert(options.end(), {"--joints", "179,44.787,116.964,52.248,179,-50.989"});
    Talk talk(options);
    const Limits limits = limits_of(talk);
    const Json pose{{"pose_via", {-248845, 167577, 25858, 1633, 1426, 3105}},
                    {"pose_to", {-196438, 145618, -51624, 2078, 1350, -2557}}};
    ASSERT_TRUE(accepted(talk, "movec", {{"pose", pose}, {"v", 54}, {"r", 0}, {"loop", 0}, {"trajectory_connect", 0}}));
    expect_within_limits(run(talk), limits, 1);
}

}  // namespace
}  // namespace zk::test
