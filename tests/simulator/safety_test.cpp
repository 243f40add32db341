// What the simulated arm keeps clear of: a fence, a wall, itself.
#include <gtest/gtest.h>

#include "simulator/samples.h"

namespace zk::test {
namespace {

// The tool swings about the base, from the first through the second to the third.
const Joints kStart{0, -20, -60, 15, -40, 20}, kNear{3, -20, -60, 15, -40, 20}, kFar{40, -20, -60, 15, -40, 20};
const std::vector<std::string> kAtStart{"--quiet", "--push-cycle", "2", "--joints", "0,-20,-60,15,-40,20"};

int millimetres(double metres) { return static_cast<int>(std::lround(metres * 1000)); }

Json cuboid(const KDL::Vector& centre, double half_side) {
    Json fence{{"form", 1}};
    for (int i = 0; i < 3; ++i) {
        const std::string axis(1, "xyz"[i]);
        fence[axis + "_min_limit"] = millimetres(centre(i) - half_side);
        fence[axis + "_max_limit"] = millimetres(centre(i) + half_side);
    }
    return fence;
}

Json sphere(const KDL::Vector& centre, double radius) {
    return {{"form", 3},
            {"radius", millimetres(radius)},
            {"x", millimetres(centre.x())},
            {"y", millimetres(centre.y())},
            {"z", millimetres(centre.z())}};
}

// Through a place, upright or level, with its front toward `normal`.
Json plane(const KDL::Vector& place, const KDL::Vector& normal) {
    const KDL::Vector up = std::abs(normal.z()) > 0.5 ? KDL::Vector(0, 1, 0) : KDL::Vector(0, 0, 1);
    const KDL::Vector points[] = {place, place + up * normal, place + up};
    Json fence{{"form", 2}};
    for (int point = 0; point < 3; ++point) {
        for (int i = 0; i < 3; ++i)
            fence[std::string(1, "xyz"[i]) + std::to_string(point + 1)] = millimetres(points[point](i));
    }
    return fence;
}

void enable(Talk& talk, const std::string& barrier, const Json& shape, int side = 0, int region = 0) {
    ASSERT_TRUE(talk.ask("set_" + barrier + "_config", shape).at("set_config"));
    const Json keys{{"set_enable", true}, {"in_out_side", side}, {"effective_region", region}};
    ASSERT_TRUE(talk.ask("set_" + barrier + "_enable", keys).at("set_state"));
}

// Whether the arm takes the move, which arrives then.
bool goes(Talk& talk, const Joints& target) {
    const bool taken = talk.movej(target, 100);
    EXPECT_EQ(talk.read_arrival(), taken);
    return taken;
}

int arm_error(Talk& talk) { return talk.ask("get_current_arm_state").at("arm_state").at("arm_err"); }

TEST(Safety, MovesStayOnTheirSideOfAFenceAndOfAWall) {
    Talk talk(kAtStart);
    const KDL::Vector here = talk.tool().p, there = KDL::Rotation::RotZ(40 * M_PI / 180) * here;
    const KDL::Vector back = (here - there) / (here - there).Norm();
    constexpr int kInside = 0, kOutside = 1;
    const std::tuple<const char*, Json, int> rows[] = {
        {"electronic_fence", cuboid(here, 0.1), kInside},
        {"electronic_fence", cuboid(there, 0.05), kOutside},
        {"electronic_fence", sphere(here, 0.1), kInside},
        {"virtual_wall", sphere(there, 0.05), kOutside},
        {"virtual_wall", plane((here + there) / 2, back), kInside},
        {"virtual_wall", plane((here + there) / 2, -back), kOutside},
    };
    for (const auto& [barrier, shape, side] : rows) {
        enable(talk, barrier, shape, side);
        EXPECT_TRUE(goes(talk, kNear)) << barrier << shape;
        EXPECT_FALSE(goes(talk, kFar)) << barrier << shape;
        EXPECT_EQ(talk.ask("movej_follow", {{"joint", thousandths(kFar)}}).at("arm_err"), 258) << "as a set-point";
        EXPECT_TRUE(goes(talk, kStart));
        const Json off{{"set_enable", false}, {"in_out_side", side}, {"effective_region", 0}};
        ASSERT_TRUE(talk.ask("set_" + std::string(barrier) + "_enable", off).at("set_state"));
        EXPECT_TRUE(goes(talk, kFar));
        EXPECT_TRUE(goes(talk, kStart));
    }
    EXPECT_EQ(arm_error(talk), 0);
}

TEST(Safety, TheEnvelopeCountsAndInTheOtherRegionTheLinks) {
    Talk talk(kAtStart);
    enable(talk, "electronic_fence", cuboid(talk.tool().p, 0.1));
    EXPECT_TRUE(goes(talk, kNear));
    EXPECT_TRUE(goes(talk, kStart));
    const Json ball{{"name", "all"}, {"radius", 95}, {"x", 0}, {"y", 0}, {"z", 0}};
    ASSERT_TRUE(talk.ask("set_tool_envelope", {{"tool_name", "Arm_Tip"}, {"list", {ball}}}).at("set_state"));
    EXPECT_FALSE(goes(talk, kNear));

    // The elbow rises above the ceiling, the tool does not.
    const Joints low{0, -60, -120, 0, 0, 0}, high{0, 0, -120, 0, 0, 0};
    Talk other({"--quiet", "--joints", "0,-60,-120,0,0,0"});
    const Json ceiling = plane({0, 0, 0.45}, {0, 0, -1});
    enable(other, "electronic_fence", ceiling, 0, 1);
    EXPECT_FALSE(goes(other, high));
    enable(other, "electronic_fence", ceiling, 0, 0);
    EXPECT_TRUE(goes(other, high));
}

TEST(Safety, MovesKeepTheLinksApart) {
    Talk talk({"--quiet", "--joints", "0,0,-135,0,0,0"});
    const Joints folded{0, 0, -135, 0, -128, 0};
    ASSERT_TRUE(talk.ask("set_self_collision_enable", {{"set_enable", true}}).at("set_state"));
    EXPECT_FALSE(goes(talk, folded));
    ASSERT_TRUE(talk.ask("set_self_collision_enable", {{"set_enable", false}}).at("set_state"));
    EXPECT_TRUE(goes(talk, folded));
}

// A posture that every model takes at its start is clear of itself.
TEST(Safety, NoModelCollidesWithItselfAtItsStart) {
    for (const char* model : {"ZK65-B", "ZK75-6F", "63-ZF", "ORB65-6F", "62-B", "72-B", "ORB63-6F"}) {
        Talk talk({"--quiet", "--model", model});
        const Joints start = talk.joints();
        ASSERT_TRUE(talk.movej(plus(start, 30), 100));
        ASSERT_TRUE(talk.read_arrival());
        ASSERT_TRUE(talk.ask("set_self_collision_enable", {{"set_enable", true}}).at("set_state"));
        EXPECT_TRUE(goes(talk, start)) << model;
        EXPECT_TRUE(goes(talk, plus(start, 10))) << model;
    }
}

TEST(Safety, MotionIntoAHazardStopsWithItsErrorWordAndMayLeadBack) {
    const std::pair<const char*, std::function<void(Talk&)>> motions[] = {
        {"a move", [](Talk& talk) { talk.movej(kFar, 10); }},
        {"a hand",
         [](Talk& talk) {
             talk.ask("start_drag_teach", {{"trajectory_record", 0}});
             talk.ask("zk_sim_hand", {{"seconds", 6}, {"joint", kFar}});
         }},
    };
    for (const auto& [barrier, word] : {std::pair{"electronic_fence", 4097}, {"virtual_wall", 4098}}) {
        for (const auto& [what, start] : motions) {
            Talk talk(kAtStart);
            const KDL::Vector here = talk.tool().p, there = KDL::Rotation::RotZ(20 * M_PI / 180) * here;
            start(talk);
            talk.samples_until([](const Sample& sample) { return sample.joints[0] > 0.1; });
            enable(talk, barrier, plane(there, {0, -1, 0}));
            while (talk.state().at("arm_err") != word) continue;
            talk.samples_until("idle");
            EXPECT_LT(talk.tool().p.y(), there.y()) << what;
            LineClient client(talk.simulator.port());
            const Json back{{"joint", thousandths(kStart)}, {"v", 100}, {"r", 0}, {"trajectory_connect", 0}};
            const auto taken = [&] { return Json::parse(client.ask(request_text("movej", back))).at("receive_state"); };
            EXPECT_FALSE(taken()) << "before the error is cleared";
            client.read_line();
            client.ask(request_text("clear_system_err"));
            EXPECT_TRUE(taken()) << what;
        }
    }
}

TEST(Safety, AJogEndsBeforeAHazard) {
    const std::pair<const char*, Json> jogs[] = {
        {"set_joint_teach", {{"teach_joint", 1}, {"direction", "pos"}, {"v", 50}}},
        {"set_pos_teach", {{"teach_type", "y"}, {"direction", "pos"}, {"v", 50}}}};
    for (const auto& [command, keys] : jogs) {
        Talk talk(kAtStart);
        const double start = talk.tool().p.y();
        enable(talk, "virtual_wall", plane({0, start + 0.1, 0}, {0, -1, 0}));
        talk.ask(command, keys);
        talk.samples_until("tech_demonstration");
        talk.samples_until("idle");
        EXPECT_NEAR(talk.tool().p.y(), start + 0.097, 0.003) << command;
        EXPECT_EQ(arm_error(talk), 0);
    }
}

}  // namespace
}  // namespace zk::test
