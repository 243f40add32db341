// The simulated force sensors and the force hold.
#include <gtest/gtest.h>

#include <kdl/frames.hpp>

#include "simulator/talk.h"

namespace zk::test {
namespace {

constexpr double kGravity = 9.81;
const std::vector<std::string> kSixAxes{"--quiet", "--model", "ZK65-6F", "--force-noise", "0"};

std::vector<std::string> with(std::vector<std::string> arguments, const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

// Newtons and newton metres.
std::vector<double> forces(Talk& talk, const char* key) {
    std::vector<double> values = talk.ask("get_force_data").at(key);
    for (double& value : values) value /= 1000;
    return values;
}

// Of the flange, in the room: the simulator's tool and work frames are the built-in ones.
KDL::Rotation orientation(Talk& talk) {
    const std::vector<int> pose = talk.pose();
    return KDL::Rotation::RPY(pose[3] / 1e3, pose[4] / 1e3, pose[5] / 1e3);
}

double most_of(const std::vector<double>& values) {
    double most = 0;
    for (const double value : values) most = std::max(most, std::abs(value));
    return most;
}

TEST(ForceSensor, WeightTurnsWithTheFlange) {
    constexpr double kMass = 1.5;
    Talk talk(with(kSixAxes, {"--load", "1.5,0.01,-0.02,0.05"}));
    const KDL::Vector centre(0.01, -0.02, 0.05);
    const auto weight = [&] { return orientation(talk).Inverse(KDL::Vector(0, 0, -kMass * kGravity)); };
    const std::vector<double> at_home = forces(talk, "force_data");
    const KDL::Vector weight_at_home = weight();
    talk.move_to({40, 30, -60, 80, 50, -100});
    const std::vector<double> turned = forces(talk, "force_data");
    // The difference between two orientations does not contain the sensor's zero.
    const KDL::Vector change = weight() - weight_at_home, moment = centre * change;
    ASSERT_GT(change.Norm(), 5);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(turned[i] - at_home[i], change(i), 0.03) << i;
        EXPECT_NEAR(turned[i + 3] - at_home[i + 3], moment(i), 0.003) << i;
    }
}

TEST(ForceSensor, IsZeroAtTheZeroingPoseAndEverywhereAfterCalibration) {
    Talk talk(with(kSixAxes, {"--load", "1.5,0.01,-0.02,0.05"}));
    const std::vector<double> home = talk.joints(), elsewhere{40, 30, -60, 80, 50, -100};
    EXPECT_GT(most_of(forces(talk, "zero_force_data")), 1);
    ASSERT_TRUE(talk.ask("clear_force_data").at("clear_state"));
    EXPECT_LT(most_of(forces(talk, "zero_force_data")), 0.01);
    talk.move_to(elsewhere);
    EXPECT_GT(most_of(forces(talk, "zero_force_data")), 1) << "the weight has turned";

    EXPECT_TRUE(talk.ask("set_force_sensor").at("set_state"));
    EXPECT_LT(most_of(forces(talk, "zero_force_data")), 0.01);
    talk.move_to(home);
    for (const char* key : {"zero_force_data", "work_zero_force_data", "tool_zero_force_data"})
        EXPECT_LT(most_of(forces(talk, key)), 0.01) << key;
}

TEST(ForceSensor, IsCalibratedAtFourPosesOfTheClient) {
    Talk talk({"--quiet", "--model", "ZK65-6F", "--load", "0.8,0,0,0.06"});
    const std::vector<std::vector<double>> poses{{10, -20, -60, 15, -40, 20},
                                                 {10, -20, -60, 15, 40, 20},
                                                 {10, -20, -60, 15, 40, 110},
                                                 {10, -20, -60, 80, -30, 0}};
    for (size_t i = 0; i < poses.size(); ++i) {
        talk.send("manual_set_force_pose" + std::to_string(i + 1), {{"joint", thousandths(poses[i])}});
    }
    EXPECT_TRUE(talk.read().at("set_state"));
    talk.move_to({40, 30, -60, 80, 50, -100});
    EXPECT_LT(most_of(forces(talk, "zero_force_data")), 0.3) << "noise alone";
}

TEST(ForceSensor, CalibrationCanBeStopped) {
    Talk talk(kSixAxes);
    EXPECT_FALSE(talk.ask("stop_set_force_sensor").at("stop_state")) << "nothing to stop";
    talk.send("set_force_sensor");
    talk.samples_until("move_J");
    EXPECT_TRUE(talk.ask("stop_set_force_sensor").at("stop_state"));
    EXPECT_FALSE(talk.read().at("set_state"));

    talk.send("manual_set_force_pose1", {{"joint", Json(std::vector<int>(6, 0))}});
    EXPECT_TRUE(talk.ask("stop_set_force_sensor").at("stop_state"));
    EXPECT_FALSE(talk.ask("stop_set_force_sensor").at("stop_state")) << "stopped already";

    talk.send("manual_set_force_pose4", {{"joint", Json(std::vector<int>(6, 0))}});
    EXPECT_TRUE(talk.ask("stop_set_force_sensor").at("stop_state"));
    EXPECT_FALSE(talk.read().at("set_state"));
}

TEST(ForceSensor, OneAxisSensorMeasuresItsAxisOnly) {
    Talk talk({"--quiet", "--model", "ZK75-ZF", "--force-noise", "0", "--load", "1,0,0,0.05"});
    const auto fz = [&](const char* key) { return talk.ask("get_Fz").at(key).get<double>() / 1000; };
    const double before = fz("Fz"), weight_before = orientation(talk).Inverse(KDL::Vector(0, 0, -kGravity)).z();
    std::vector<double> joints = talk.joints();
    joints[5] += 60;
    talk.move_to(joints);
    const double weight = orientation(talk).Inverse(KDL::Vector(0, 0, -kGravity)).z();
    EXPECT_NEAR(fz("Fz") - before, weight - weight_before, 0.03);
    EXPECT_EQ(talk.ask("get_Fz").at("set_state"), false);
    talk.push.forget();
    talk.samples_until([&, count = 0](const Sample&) mutable { return ++count == 30; });  // zero is a mean of 100 ms
    ASSERT_TRUE(talk.ask("clear_Fz").at("set_state"));
    EXPECT_NEAR(fz("zero_Fz"), 0, 0.01);

    // The seventh joint of the second pose follows the first pose.
    const Json poses{{"pose1", {10000, -30000, 15000, -60000, 20000, -40000, 10000, 10000}},
                     {"pose2", {10000, -30000, 15000, -60000, 20000, 50000}}};
    Json beyond_limits = poses;
    beyond_limits["pose2"][5] = 999000;
    EXPECT_FALSE(talk.ask("manual_set_Fz", beyond_limits).at("set_state"));
    EXPECT_TRUE(talk.ask("manual_set_Fz", poses).at("set_state"));
    EXPECT_EQ(talk.joints()[6], 10);
    talk.move_to(joints);
    EXPECT_NEAR(fz("zero_Fz"), 0, 0.01);
}

// The same seed repeats the noise, which also appears in the push.
TEST(ForceSensor, NoiseIsReproducible) {
    const auto force_at = [](const char* seed, int64_t time) {
        Talk talk({"--quiet", "--model", "ZK65-6F", "--force-noise", "0.5", "--seed", seed});
        for (;;) {
            const Json state = talk.state();
            if (state.at("time") < time) continue;
            EXPECT_EQ(state.at("time"), time);
            return state.at("six_force_sensor").at("force").get<std::vector<int>>();
        }
    };
    const std::vector<int> first = force_at("7", 500);
    EXPECT_EQ(first, force_at("7", 500));
    EXPECT_NE(first, force_at("8", 500));
}

// A table two millimetres below the tool.
class Table : public testing::Test {
 protected:
    static std::vector<std::string> arguments() {
        Talk talk(kSixAxes);
        const std::vector<int> pose = talk.pose();
        const std::string height = std::to_string(pose[2] / 1e6 - 0.002);
        return with(kSixAxes, {"--wall", "0,0," + height + ",0,0,1,8000", "--load", "1,0,0,0.05"});
    }
    double height() { return talk.pose()[2] / 1e6; }
    double felt() { return forces(talk, "work_zero_force_data")[2]; }
    // Waits until the table presses with this force for a while.
    void press(double newtons) {
        for (int steady = 0; steady < 20;) steady = std::abs(felt() - newtons) < 0.2 ? steady + 1 : 0;
    }
    Talk talk{arguments()};
};

TEST_F(Table, IsPressedWithTheOrderedForce) {
    ASSERT_TRUE(talk.ask("clear_force_data").at("clear_state"));
    const double start = height();
    const Json down{{"sensor", 1}, {"mode", 0}, {"direction", 2}, {"N", -100}};
    ASSERT_TRUE(talk.ask("set_force_position", down).at("set_state"));
    EXPECT_FALSE(talk.ask("start_drag_teach", {{"trajectory_record", 1}}).at("drag_teach"));
    press(10);
    EXPECT_NEAR(start - height(), 0.002 + 10.0 / 8000, 2e-4);
    // The other axes hold their position while the arm moves.
    const Json softer{{"sensor", 1},
                      {"mode", 0},
                      {"control_mode", {0, 0, 3, 0, 0, 0}},
                      {"desired_force", {0, 0, -40, 0, 0, 0}},
                      {"limit_vel", {100, 100, 100, 10000, 10000, 10000}}};
    ASSERT_TRUE(talk.ask("set_force_position", softer).at("set_state"));
    press(4);
    ASSERT_TRUE(talk.ask("stop_force_position").at("stop_state"));
    EXPECT_FALSE(talk.ask("stop_force_position").at("stop_state"));
    const double end = height();
    talk.push.forget();
    talk.samples_until([&, count = 0](const Sample&) mutable { return ++count == 20; });
    EXPECT_NEAR(height(), end, 2e-6) << "it stays where it was brought";
}

// The joints follow the set-points while the tool presses.
TEST_F(Table, IsPressedByAStreamOfSetPoints) {
    ASSERT_TRUE(talk.ask("clear_force_data").at("clear_state"));
    std::vector<double> joints = talk.joints();
    const double start = joints[0];
    const auto stream = [&] {
        return talk.ask(
            "Force_Position_Move",
            {{"joint", thousandths(joints)}, {"sensor", 1}, {"mode", 0}, {"dir", 2}, {"force", -80}, {"follow", true}});
    };
    EXPECT_EQ(stream().at("arm_err"), 261) << "not begun";
    ASSERT_TRUE(talk.ask("Start_Force_Position_Move").at("set_state"));
    for (int steady = 0; steady < 20;) {
        const Json report = stream();
        ASSERT_EQ(report.at("arm_err"), 0);
        steady = std::abs(report.at("force").get<int>() + 80) <= 3 ? steady + 1 : 0;
    }
    talk.push.forget();
    while (joints[0] < start + 3) {
        joints[0] += 0.02;
        const Json report = stream();
        ASSERT_EQ(report.at("arm_err"), 0);
        EXPECT_NEAR(report.at("all_direction_force").at(2), -8, 3);
        talk.sample();  // a set-point for each step
    }
    const Json report = stream();
    EXPECT_NEAR(report.at("joint").at(0), start + 3, 0.5);
    ASSERT_TRUE(talk.ask("Stop_Force_Position_Move").at("set_state"));
    EXPECT_FALSE(talk.ask("Stop_Force_Position_Move").at("set_state"));
}

TEST_F(Table, YieldsWithinItsSpeedLimit) {
    ASSERT_TRUE(talk.ask("clear_force_data").at("clear_state"));
    const double start = height();
    const Json up{{"sensor", 1},
                  {"mode", 0},
                  {"control_mode", {0, 0, 1, 0, 0, 0}},
                  {"desired_force", {0, 0, 500, 0, 0, 0}},
                  {"limit_vel", {10, 10, 10, 0, 0, 0}}};
    talk.push.forget();
    ASSERT_TRUE(talk.ask("set_force_position", up).at("set_state"));
    const int64_t begin = talk.sample().time;
    const int64_t end =
        talk.samples_until([&](const Sample& sample) { return sample.time >= begin + 400; }).back().time;
    EXPECT_GT(height(), start + 0.001) << "nothing resists it";
    EXPECT_LT(height(), start + 0.010 * (end - begin + 2000) / 1000);
    EXPECT_FALSE(
        talk.ask("set_force_position", {{"sensor", 0}, {"mode", 1}, {"direction", 2}, {"N", 1}}).at("set_state"))
        << "no such sensor";
}

}  // namespace
}  // namespace zk::test
