// What the simulated arm refuses, and the reports of refused moves.
#include <gtest/gtest.h>

#include "simulator/talk.h"

namespace zk::test {
namespace {

const Json kGoodMove{{"joint", {1000, 2000, 3000, 4000, 5000, 6000}}, {"v", 100}, {"r", 0}, {"trajectory_connect", 0}};

Json changed(const std::string& key, const Json& value) {
    Json move = kGoodMove;
    move[key] = value;
    return move;
}

Json without(const std::string& key) {
    Json move = kGoodMove;
    move.erase(key);
    return move;
}

void expect_refused(Talk& talk, const Json& move, const std::string& why) {
    EXPECT_EQ(talk.ask("movej", move), Json({{"command", "movej"}, {"receive_state", false}})) << why;
    EXPECT_FALSE(talk.read_arrival()) << why;
}

TEST(Refusals, InvalidMoves) {
    Talk talk({"--quiet"});
    const std::vector<double> rest = talk.joints();
    expect_refused(talk, changed("joint", {178001, 0, 0, 0, 0, 0}), "beyond the upper limit");
    expect_refused(talk, changed("joint", {0, -130001, 0, 0, 0, 0}), "beyond the lower limit");
    expect_refused(talk, changed("joint", {0, 0, 0, 0, 0}), "five joints");
    expect_refused(talk, changed("joint", {0, 0, 0, 0, 0, 0, 0}), "seven joints");
    expect_refused(talk, changed("joint", "home"), "joints that are no array");
    for (const int percent : {-1, 0, 101, 255}) expect_refused(talk, changed("v", percent), "v out of range");
    for (const char* key : {"joint", "v", "trajectory_connect"}) expect_refused(talk, without(key), key);
    EXPECT_EQ(talk.joints(), rest);
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);
    EXPECT_TRUE(talk.movej({178, 130, 135, 178, 128, 360}, 100));  // the limits themselves
}

TEST(Refusals, MovesOfAnArmThatMayNotMove) {
    Talk talk({"--quiet"});
    struct Obstacle {
        const char* set;
        Json set_keys;
        const char* clear;
        Json clear_keys;
    };
    const Obstacle obstacles[] = {
        {"set_arm_power", {{"arm_power", 64}}, "set_arm_power", {{"arm_power", 1}}},
        {"set_joint_en_state", {{"joint_en_state", {3, 0}}}, "set_joint_en_state", {{"joint_en_state", {3, 1}}}},
        {"zk_sim_fault", {{"sys_err", 4}}, "clear_system_err", Json::object()},
        {"zk_sim_fault", {{"joint_err", {0, 9, 0, 0, 0, 0}}}, "set_joint_clear_err", {{"joint_clear_err", 2}}},
        {"set_joint_max_pos", {{"joint_max_pos", {6, 5000}}}, "auto_set_joint_limit", {{"limit_mode", 1}}},
    };
    for (const Obstacle& obstacle : obstacles) {
        talk.ask(obstacle.set, obstacle.set_keys);
        expect_refused(talk, kGoodMove, obstacle.set);
        talk.ask(obstacle.clear, obstacle.clear_keys);
        EXPECT_EQ(talk.ask("movej", kGoodMove).at("receive_state"), true) << obstacle.clear;
        EXPECT_TRUE(talk.read_arrival()) << obstacle.clear;
    }
}

TEST(Refusals, ARefusedReturnIntoTheLimitsHasNoReport) {
    Talk talk({"--quiet"});
    talk.ask("set_arm_power", {{"arm_power", 64}});
    EXPECT_FALSE(talk.ask("auto_fix_joint_over_soft_limit").at("set_state"));
    EXPECT_TRUE(talk.ask("get_arm_plan_num").contains("plan_num")) << "the next message";
}

TEST(Refusals, FramesWithInvalidNames) {
    Talk talk({"--quiet"});
    const auto store = [&](const std::string& command, const std::string& key, const std::string& name) {
        return talk.ask(command, {{"frame_name", name}, {"frame_pose", {1, 2, 3, 4, 5, 6}}}).at(key).get<bool>();
    };
    const auto named = [&](const std::string& what, const std::string& name) {
        return talk.ask("set_" + what, {{"frame_name", name}}).at(what).get<bool>();
    };
    EXPECT_TRUE(store("set_manual_work_frame", "manual_work_frame", "ten_bytes_"));
    EXPECT_FALSE(store("set_manual_work_frame", "manual_work_frame", "ten_bytes_"));   // there already
    EXPECT_FALSE(store("set_manual_work_frame", "manual_work_frame", "elevenbytes"));  // longer than clients keep
    EXPECT_FALSE(store("set_manual_work_frame", "manual_work_frame", ""));
    EXPECT_FALSE(store("set_manual_work_frame", "manual_work_frame", "NULL"));
    EXPECT_FALSE(store("update_work_frame", "update_state", "nobody"));
    EXPECT_FALSE(store("update_work_frame", "update_state", "Base"));
    EXPECT_TRUE(store("update_work_frame", "update_state", "ten_bytes_"));
    EXPECT_FALSE(named("change_work_frame", "nobody"));
    EXPECT_TRUE(named("change_work_frame", "ten_bytes_"));
    EXPECT_EQ(talk.ask("get_current_work_frame").at("frame_name"), "ten_bytes_");
    EXPECT_EQ(talk.ask("get_total_work_frame").at("frame_names"), Json({"Base", "ten_bytes_"}));
    EXPECT_EQ(talk.ask("get_work_frame", {{"frame_name", "nobody"}}).at("get_state"), false);
    EXPECT_FALSE(named("delete_work_frame", "Base"));
    EXPECT_TRUE(named("delete_work_frame", "ten_bytes_"));
    EXPECT_EQ(talk.ask("get_current_work_frame").at("frame_name"), "Base");
    for (int i = 1; i < 11; ++i)
        EXPECT_TRUE(store("set_manual_work_frame", "manual_work_frame", "w" + std::to_string(i)));
    EXPECT_FALSE(store("set_manual_work_frame", "manual_work_frame", "w11"));  // clients have room for eleven names
}

TEST(Refusals, SettingsThatMakeNoSense) {
    Talk talk({"--quiet"});
    const auto cuboid = [](int low, int high) {
        Json fence{{"form", 1}};
        for (const std::string axis : {"x", "y", "z"}) {
            fence[axis + "_min_limit"] = low;
            fence[axis + "_max_limit"] = high;
        }
        return fence;
    };
    Json flat = cuboid(-100, 100);
    flat["z_max_limit"] = -100;
    const std::tuple<const char*, Json, const char*, bool> rows[] = {
        {"set_electronic_fence_config", cuboid(-100, 100), "set_config", true},
        {"set_electronic_fence_config", cuboid(100, -100), "set_config", false},
        {"set_electronic_fence_config", flat, "set_config", false},
        {"set_arm_servo", {{"arm_servo", 0}}, "arm_servo", true},
        {"set_arm_servo", {{"arm_servo", 2}}, "arm_servo", false},
        {"get_tool_envelope", {{"tool_name", "Arm_Tip"}}, "get_state", false},  // it has none
    };
    for (const auto& [command, keys, key, good] : rows) EXPECT_EQ(talk.ask(command, keys).at(key), good) << keys;
}

TEST(Refusals, OnDemand) {
    Talk talk({"--quiet", "--refuse-on", "movej", "--silent-on", "get_joint_degree"});
    expect_refused(talk, kGoodMove, "--refuse-on");
    talk.send("get_joint_degree");
    EXPECT_EQ(talk.ask("get_arm_plan_num").at("plan_num"), 0);  // the first thing that comes
    EXPECT_EQ(talk.ask("zk_sim_fault", {{"silent_on", Json::array()}, {"refuse_on", {"set_arm_stop"}}}).at("done"),
              true);
    EXPECT_EQ(talk.joints().size(), 6u);
    EXPECT_EQ(talk.ask("zk_sim_fault", {{"refuse_on", Json::array()}, {"delay_ms", -1}}).at("done"), false);
    EXPECT_EQ(talk.ask("set_arm_stop").at("arm_stop"), false);
    EXPECT_EQ(talk.ask("movej", kGoodMove).at("receive_state"), true);
}

TEST(Refusals, DelayedRepliesKeepTheirOrder) {
    Talk talk({"--quiet", "--delay-ms", "30"});
    talk.send("get_arm_plan_num");
    talk.send("zk_sim_fault", {{"delay_ms", 0}});
    talk.send("get_arm_power_state");
    EXPECT_TRUE(talk.read().contains("plan_num"));
    EXPECT_TRUE(talk.read().contains("done"));
    EXPECT_TRUE(talk.read().contains("power_state"));
}

}  // namespace
}  // namespace zk::test
