// The pose that the simulator reports: of the tool in the work frame, with the mounting of the arm.
#include <gtest/gtest.h>

#include <array>
#include <kdl/frames.hpp>
#include <numbers>

#include "simulator/talk.h"

namespace zk::test {
namespace {

KDL::Frame wire_frame(const std::vector<double>& pose) {
    return {KDL::Rotation::RPY(pose[3], pose[4], pose[5]), KDL::Vector(pose[0], pose[1], pose[2])};
}

constexpr double kRounding = 5e-6;

const std::vector<double> kTool{0.02, -0.03, 0.15, 0.3, -0.2, 0.5};
const std::vector<double> kWork{0.4, 0.1, -0.2, -0.1, 0.4, 1.2};
const std::vector<double> kInstall{30, -45, 100};  // degrees

KDL::Frame expected_pose(const KDL::Frame& flange) {
    const double radians = std::numbers::pi / 180;
    const KDL::Frame mounting(KDL::Rotation::RPY(kInstall[0] * radians, kInstall[1] * radians, kInstall[2] * radians));
    return wire_frame(kWork).Inverse() * mounting * flange * wire_frame(kTool);
}

std::vector<int> wire_pose(const std::vector<double>& pose) {
    std::vector<int> wire;
    for (size_t i = 0; i < 6; ++i) wire.push_back(static_cast<int>(std::lround(pose[i] * (i < 3 ? 1e6 : 1e3))));
    return wire;
}

TEST(Pose, FramesAndMountingFromTheWire) {
    Talk talk({"--quiet"});
    const KDL::Frame flange = talk.tool();
    const Json tool{
        {"tool_name", "probe"}, {"tool_pose", wire_pose(kTool)}, {"payload", 1250.5}, {"position", {1, 2, 3}}};
    ASSERT_TRUE(talk.ask("set_manual_tool_frame", tool).at("manual_tool_frame"));
    EXPECT_TRUE(KDL::Equal(talk.tool(), flange, kRounding));  // stored, not yet in use
    ASSERT_TRUE(talk.ask("set_change_tool_frame", {{"tool_name", "probe"}}).at("change_tool_frame"));
    ASSERT_TRUE(talk.ask("set_manual_work_frame", {{"frame_name", "bench"}, {"frame_pose", wire_pose(kWork)}})
                    .at("manual_work_frame"));
    ASSERT_TRUE(talk.ask("set_change_work_frame", {{"frame_name", "bench"}}).at("change_work_frame"));
    ASSERT_TRUE(talk.ask("set_install_pose", {{"pose", kInstall}}).at("set_state"));
    EXPECT_TRUE(KDL::Equal(talk.tool(), expected_pose(flange), kRounding));
}

TEST(Pose, ValuesBeyondTheWireAreClamped) {
    Talk talk({"--quiet", "--joints", "10,20,30,40,50,60", "--tool", "0,0,2000,0,0,0", "--work", "2000,0,0,0,0,0"});
    EXPECT_EQ(talk.pose()[0], -2147483648);
}

TEST(Pose, EulerAnglesAndQuaternionAgree) {
    Talk talk({"--quiet", "--joints", "33,-20,-60,15,-40,20"});
    const Json waypoint = talk.state().at("waypoint");
    const std::vector<double> e = waypoint.at("euler"), q = waypoint.at("quat");
    const KDL::Rotation euler = KDL::Rotation::RPY(e[0] / 1e3, e[1] / 1e3, e[2] / 1e3);
    const KDL::Rotation quaternion = KDL::Rotation::Quaternion(q[1] / 1e6, q[2] / 1e6, q[3] / 1e6, q[0] / 1e6);
    EXPECT_TRUE(KDL::Equal(euler, quaternion, 1.5e-3));
    EXPECT_EQ(talk.pose()[3], waypoint.at("euler")[0]);
}

}  // namespace
}  // namespace zk::test
