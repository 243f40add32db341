// What the simulated arm keeps clear of: a fence, a wall, itself.
#include <gtest/gtest.h>

#include "simulator/samples.h"

namespace zk::test {
namespace {

// The tool swings about the base, from the first through the second to the third, by a metre and more along y.
const Joints kStart{0, -20, -60, 15, -40, 20}, kShort{3, -20, -60, 15, -40, 20}, kLong{40, -20, -60, 15, -40, 20};
const std::vector<std::string> kAtStart{"--quiet", "--push-cycle", "2", "--joints", "0,-20,-60,15,-40,20"};

Json fence(int form, const std::map<std::string, double>& metres) {
    Json fence{{"form", form}};
    for (const auto& [key, length] : metres) fence[key] = std::lround(length * 1000);
    return fence;
}
Json cuboid(const KDL::Vector& c, double half_side) {
    std::map<std::string, double> limits;
    for (int i = 0; i < 3; ++i) {
        limits[std::string(1, "xyz"[i]) + "_min_limit"] = c(i) - half_side;
        limits[std::string(1, "xyz"[i]) + "_max_limit"] = c(i) + half_side;
    }
    return fence(1, limits);
}
Json sphere(const KDL::Vector& c, double radius) {
    return fence(3, {{"radius", radius}, {"x", c.x()}, {"y", c.y()}, {"z", c.z()}});
}
// Upright across y. Its front is toward larger y with 1, toward smaller y with -1.
Json plane(double y, int front) {
    return fence(
        2, {{"x1", 0}, {"y1", y}, {"z1", 0}, {"x2", 0}, {"y2", y}, {"z2", front}, {"x3", 1}, {"y3", y}, {"z3", 0}});
}

void enable(Talk& talk, const std::string& barrier, const Json& shape, int side = 0, int region = 0, bool on = true) {
    ASSERT_TRUE(talk.ask("set_" + barrier + "_config", shape).at("set_config"));
    const Json keys{{"set_enable", on}, {"in_out_side", side}, {"effective_region", region}};
    ASSERT_TRUE(talk.ask("set_" + barrier + "_enable", keys).at("set_state"));
}

// Whether the arm takes the move, which arrives then.
bool goes(Talk& talk, const Joints& target) {
    const bool taken = talk.movej(target, 100);
    EXPECT_EQ(talk.read_arrival(), taken);
    return taken;
}

TEST(Safety, MovesStayOnTheirSideOfAFenceAndOfAWall) {
    Talk talk(kAtStart);
    const KDL::Vector here = talk.tool().p, there = KDL::Rotation::RotZ(40 * M_PI / 180) * here;
    const double between = (here.y() + there.y()) / 2;
    constexpr int kInside = 0, kOutside = 1;
    const std::tuple<const char*, Json, int> rows[] = {
        {"electronic_fence", cuboid(here, 0.1), kInside}, {"electronic_fence", cuboid(there, 0.05), kOutside},
        {"electronic_fence", sphere(here, 0.1), kInside}, {"virtual_wall", sphere(there, 0.05), kOutside},
        {"virtual_wall", plane(between, -1), kInside},    {"virtual_wall", plane(between, 1), kOutside},
    };
    for (const auto& [barrier, shape, side] : rows) {
        enable(talk, barrier, shape, side);
        EXPECT_TRUE(goes(talk, kShort)) << barrier << shape;
        EXPECT_FALSE(goes(talk, kLong)) << barrier << shape;
        EXPECT_EQ(talk.ask("movej_follow", {{"joint", thousandths(kLong)}}).at("arm_err"), 258) << "as a set-point";
        EXPECT_TRUE(goes(talk, kStart));
        enable(talk, barrier, shape, side, 0, false);
        EXPECT_TRUE(goes(talk, kLong));
        EXPECT_TRUE(goes(talk, kStart));
    }
}

TEST(Safety, TheEnvelopeCountsAndInTheOtherRegionTheLinks) {
    Talk talk(kAtStart);
    enable(talk, "electronic_fence", cuboid(talk.tool().p, 0.1));
    const Json ball{{"name", "all"}, {"radius", 95}, {"x", 0}, {"y", 0}, {"z", 0}};
    ASSERT_TRUE(talk.ask("set_tool_envelope", {{"tool_name", "Arm_Tip"}, {"list", {ball}}}).at("set_state"));
    EXPECT_FALSE(goes(talk, kShort));

    // The elbow rises above the ceiling, the tool does not.
    const Joints high{0, 0, -120, 0, 0, 0};
    Talk other({"--quiet", "--joints", "0,-60,-120,0,0,0"});
    const Json ceiling = cuboid({0, 0, -0.55}, 1);
    enable(other, "electronic_fence", ceiling, 0, 1);
    EXPECT_FALSE(goes(other, high));
    enable(other, "electronic_fence", ceiling, 0, 0);
    EXPECT_TRUE(goes(other, high));
}

TEST(Safety, TheLinksKeepApartAndNoModelIsInItsOwnWayAtItsStart) {
    for (const char* model : {"ZK65-B", "ZK75-6F", "63-ZF", "ORB65-6F", "62-B", "72-B", "ORB63-6F"}) {
        Talk talk({"--quiet", "--model", model});
        const Joints start = talk.joints();
        ASSERT_TRUE(talk.ask("set_self_collision_enable", {{"set_enable", true}}).at("set_state"));
        EXPECT_TRUE(goes(talk, plus(start, 10))) << model;
        if (model != std::string("ZK65-B")) continue;
        const Joints open{0, 0, -135, 0, 0, 0}, folded{0, 0, -135, 0, -128, 0};
        EXPECT_TRUE(goes(talk, open));
        EXPECT_FALSE(goes(talk, folded));
        ASSERT_TRUE(talk.ask("set_self_collision_enable", {{"set_enable", false}}).at("set_state"));
        EXPECT_TRUE(goes(talk, folded));
    }
}

TEST(Safety, MotionIntoAHazardStopsWithItsErrorWordAndMayLeadBack) {
    const Json move{{"joint", thousandths(kLong)}, {"v", 10}, {"trajectory_connect", 0}};
    const std::tuple<const char*, int, std::vector<std::pair<const char*, Json>>> rows[] = {
        {"electronic_fence", 4097, {{"movej", move}}},
        {"virtual_wall",
         4098,
         {{"start_multi_drag_teach", {{"mode", 0}, {"singular_wall", 0}}},
          {"zk_sim_hand", {{"seconds", 6}, {"joint", kLong}}}}},
    };
    for (const auto& [barrier, word, requests] : rows) {
        Talk talk(kAtStart);
        LineClient other(talk.simulator.port());
        for (const auto& [command, keys] : requests) other.ask(request_text(command, keys));
        talk.samples_until([](const Sample& sample) { return sample.joints[0] > 0.1; });
        enable(talk, barrier, plane(0.2, -1));
        while (talk.state().at("arm_err") != word) continue;
        talk.samples_until("idle");
        EXPECT_LT(talk.tool().p.y(), 0.2) << barrier;
        EXPECT_FALSE(goes(talk, kStart)) << "before the error is cleared";
        ASSERT_TRUE(talk.ask("clear_system_err").at("clear_state"));
        EXPECT_TRUE(goes(talk, kStart)) << barrier;
    }
}

TEST(Safety, AJogEndsBeforeAHazard) {
    for (const char* axis : {"joint", "pos"}) {
        Talk talk(kAtStart);
        const double wall = talk.tool().p.y() + 0.1;
        enable(talk, "virtual_wall", plane(wall, -1));
        talk.ask(std::string("set_") + axis + "_teach",
                 {{"teach_joint", 1}, {"teach_type", "y"}, {"direction", "pos"}, {"v", 50}});
        talk.samples_until("tech_demonstration");
        talk.samples_until("idle");
        EXPECT_NEAR(talk.tool().p.y(), wall - 0.003, 0.003) << axis;
    }
}

}  // namespace
}  // namespace zk::test
