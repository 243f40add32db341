// The pose that the simulator reports: of the tool in the work frame, with the mounting of the arm.
#include <gtest/gtest.h>

#include <array>
#include <kdl/frames.hpp>
#include <numbers>

#include "simulator/talk.h"

namespace zk::test {
namespace {

// The product of the arm's joint transforms at 10, 20, 30... degrees, not computed by this project's code.
struct Expected {
    const char* model;
    std::array<int, 6> pose;  // millionths of a metre, thousandths of a radian
};

constexpr Expected kPoses[] = {
    {"ZK65-B", {-355661, -134713, 610811, 1607, 8, -881}},   {"ZK65-ZF", {-361828, -139800, 610520, 1607, 8, -881}},
    {"ZK65-6F", {-377631, -152837, 609775, 1607, 8, -881}},  {"ZK75-B", {256481, 252442, 580097, 1667, -496, 2959}},
    {"ZK75-ZF", {257570, 260338, 579422, 1667, -496, 2959}}, {"ZK75-6F", {260361, 280574, 577692, 1667, -496, 2959}},
    {"63-B", {481165, 142342, 732374, 1607, 8, 2261}},       {"63-ZF", {487332, 147430, 732083, 1607, 8, 2261}},
    {"63-6F", {503136, 160466, 731338, 1607, 8, 2261}},      {"ORB65-B", {293618, 43874, 621990, 628, 327, 2900}},
    {"ORB65-ZF", {292725, 48939, 628118, 628, 327, 2900}},   {"ORB65-6F", {290437, 61916, 643822, 628, 327, 2900}},
    {"62-B", {155701, 14198, 416653, 628, 327, 2900}},       {"72-B", {34751, -111667, 788999, -64, -215, -451}},
    {"ORB63-B", {449762, 71386, 852934, 628, 327, 2900}},    {"ORB63-ZF", {448869, 76451, 859062, 628, 327, 2900}},
    {"ORB63-6F", {446581, 89428, 874766, 628, 327, 2900}}};

TEST(Pose, EveryModelHasItsGeometry) {
    for (const Expected& expected : kPoses) {
        const std::string model = expected.model;
        const bool seven = model.find("75") != std::string::npos || model.find("72") != std::string::npos;
        Talk talk({"--quiet", "--model", model, "--joints", seven ? "10,20,30,40,50,60,70" : "10,20,30,40,50,60"});
        EXPECT_EQ(talk.ask("get_arm_software_info").at("Product_version"), model);
        EXPECT_EQ(talk.joints().size(), seven ? 7u : 6u);
        const Json pose = talk.ask("get_current_arm_state").at("arm_state").at("pose");
        EXPECT_EQ(pose, Json(expected.pose)) << model;
    }
}

KDL::Frame wire_frame(const std::vector<double>& pose) {
    return {KDL::Rotation::RPY(pose[3], pose[4], pose[5]), KDL::Vector(pose[0], pose[1], pose[2])};
}

constexpr double kClose = 5e-6;

const std::vector<double> kTool{0.02, -0.03, 0.15, 0.3, -0.2, 0.5};
const std::vector<double> kWork{0.4, 0.1, -0.2, -0.1, 0.4, 1.2};
const std::vector<double> kInstall{30, -45, 100};  // degrees

KDL::Frame expected_pose(const KDL::Frame& flange) {
    const double radians = std::numbers::pi / 180;
    const KDL::Frame mounting(KDL::Rotation::RPY(kInstall[0] * radians, kInstall[1] * radians, kInstall[2] * radians));
    return wire_frame(kWork).Inverse() * mounting * flange * wire_frame(kTool);
}

std::vector<int> wire(const std::vector<double>& pose) {
    std::vector<int> wire;
    for (size_t i = 0; i < 6; ++i) wire.push_back(static_cast<int>(std::lround(pose[i] * (i < 3 ? 1e6 : 1e3))));
    return wire;
}

TEST(Pose, FramesAndMountingFromTheCommandLine) {
    const KDL::Frame flange = [] {
        Talk talk({"--quiet"});
        return talk.tool();
    }();
    Talk talk({"--quiet", "--tool", "0.02,-0.03,0.15,0.3,-0.2,0.5", "--work", "0.4,0.1,-0.2,-0.1,0.4,1.2", "--install",
               "30,-45,100"});
    EXPECT_TRUE(KDL::Equal(talk.tool(), expected_pose(flange), kClose));
    EXPECT_EQ(talk.ask("get_current_tool_frame").at("pose"), Json(wire(kTool)));
    EXPECT_EQ(talk.ask("get_current_work_frame").at("pose"), Json(wire(kWork)));
    EXPECT_EQ(talk.ask("get_install_pose").at("pose"), Json(kInstall));
}

TEST(Pose, FramesAndMountingFromTheWire) {
    Talk talk({"--quiet"});
    const KDL::Frame flange = talk.tool();
    const Json tool{{"tool_name", "probe"}, {"tool_pose", wire(kTool)}, {"payload", 1250.5}, {"position", {1, 2, 3}}};
    ASSERT_TRUE(talk.ask("set_manual_tool_frame", tool).at("manual_tool_frame"));
    EXPECT_TRUE(KDL::Equal(talk.tool(), flange, kClose));  // stored, not yet in use
    ASSERT_TRUE(talk.ask("set_change_tool_frame", {{"tool_name", "probe"}}).at("change_tool_frame"));
    ASSERT_TRUE(talk.ask("set_manual_work_frame", {{"frame_name", "bench"}, {"frame_pose", wire(kWork)}})
                    .at("manual_work_frame"));
    ASSERT_TRUE(talk.ask("set_change_work_frame", {{"frame_name", "bench"}}).at("change_work_frame"));
    ASSERT_TRUE(talk.ask("set_install_pose", {{"pose", kInstall}}).at("set_state"));
    EXPECT_TRUE(KDL::Equal(talk.tool(), expected_pose(flange), kClose));
}

TEST(Pose, ValuesBeyondTheWireAreClamped) {
    Talk talk({"--quiet", "--joints", "10,20,30,40,50,60", "--tool", "0,0,2000,0,0,0", "--work", "2000,0,0,0,0,0"});
    EXPECT_EQ(talk.ask("get_current_arm_state").at("arm_state").at("pose")[0], -2147483648);
}

TEST(Pose, EulerAnglesAndQuaternionAgree) {
    Talk talk({"--quiet", "--joints", "33,-20,-60,15,-40,20"});
    const Json waypoint = Json::parse(talk.push.receive()).at("waypoint");
    const std::vector<double> e = waypoint.at("euler"), q = waypoint.at("quat");
    const KDL::Rotation euler = KDL::Rotation::RPY(e[0] / 1e3, e[1] / 1e3, e[2] / 1e3);
    const KDL::Rotation quaternion = KDL::Rotation::Quaternion(q[1] / 1e6, q[2] / 1e6, q[3] / 1e6, q[0] / 1e6);
    EXPECT_TRUE(KDL::Equal(euler, quaternion, 1.5e-3));
    EXPECT_EQ(talk.ask("get_current_arm_state").at("arm_state").at("pose")[3], waypoint.at("euler")[0]);
}

}  // namespace
}  // namespace zk::test
