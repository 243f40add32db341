// What a client sees of the faults of the arm and its devices, and how they end.
#include <gtest/gtest.h>

#include <sstream>

#include "simulator/talk.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

const Joints kFolded{10, -20, -60, 15, -40, 20}, kElsewhere{60, 20, -30, 15, -40, 20};

bool done(Talk& talk, const std::string& command, const Json& keys) {
    return talk.ask(command, keys).dump().find(":true") != std::string::npos;
}
bool set(Talk& talk, const Json& faults) { return done(talk, "zk_sim_fault", faults); }

// The state after all that the simulator has done.
Json pushed(Talk& talk) {
    talk.ask("get_arm_power_state");
    talk.push.forget();
    talk.ask("get_arm_power_state");
    return talk.state();
}

Joints joints_pushed(Talk& talk) { return pushed(talk).at("joint_status").at("joint_position"); }

TEST(ArmFaults, StopTheArmUntilTheyEndAndAreCleared) {
    struct Row {
        const char* fault;
        int number;
        const char* clear;
        Json keys;
        bool cleared_early;
        int arm_err, sys_err, joint_err;  // of joint 2
    };
    const Json joint{{"joint_clear_err", 2}}, none = Json::object();
    const Row rows[] = {{"over_temperature", 2, "set_joint_clear_err", joint, false, 0, 0, 1},
                        {"following_error", 2, "set_joint_clear_err", joint, true, 0, 0, 2},
                        {"collision", 30, "clear_system_err", none, true, 4100, 0, 0},
                        {"emergency_stop", 1, "clear_system_err", none, false, 0, 1, 0},
                        {"power_loss", 1, "set_arm_power", {{"arm_power", 1}}, false, 0, 0, 0}};
    Talk talk({"--quiet", "--speed", "20"});
    ASSERT_TRUE(done(talk, "set_collision_stage", {{"collision_stage", 7}}));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        talk.move_to(kFolded);
        ASSERT_TRUE(talk.movej(kElsewhere, 2));
        while (talk.joints()[0] < kFolded[0] + 0.1) continue;
        ASSERT_TRUE(set(talk, {{row.fault, row.number}}));
        EXPECT_FALSE(talk.read_arrival());
        EXPECT_LT(talk.joints()[0], kElsewhere[0] - 1);
        const Json state = pushed(talk), joints = state.at("joint_status");
        EXPECT_EQ(state.at("arm_err"), row.arm_err);
        EXPECT_EQ(state.at("sys_err"), row.sys_err);
        EXPECT_EQ(joints.at("joint_err_code"), Json({0, row.joint_err, 0, 0, 0, 0}));
        EXPECT_EQ(joints.at("joint_temperature")[1] >= 80000, row.joint_err == 1);
        EXPECT_EQ(joints.at("joint_voltage")[1] == 0, row.fault == std::string("power_loss"));
        EXPECT_EQ(done(talk, row.clear, row.keys), row.cleared_early);
        EXPECT_EQ(talk.movej(kElsewhere, 100), row.cleared_early);
        EXPECT_FALSE(talk.read_arrival()) << "it fails again";
        const Joints stopped = joints_pushed(talk);
        ASSERT_TRUE(set(talk, {{row.fault, 0}}));
        while (!done(talk, row.clear, row.keys)) continue;  // a joint cools in seconds
        EXPECT_EQ(joints_pushed(talk), stopped);
    }
    ASSERT_TRUE(done(talk, "set_collision_stage", {{"collision_stage", 6}}) && set(talk, {{"collision", 30}}));
    talk.move_to(kElsewhere);  // the blow is too weak for this stage
}

TEST(ArmFaults, AJointSinksWhenItsBrakeSlips) {
    Talk talk({"--quiet", "--speed", "max", "--fault", "delay_ms=1,brake_slip=2"});
    talk.move_to(kFolded);
    ASSERT_TRUE(done(talk, "set_arm_power", {{"arm_power", 0}}));
    EXPECT_EQ(joints_pushed(talk), Joints({10000, -130000, -60000, 15000, -40000, 20000}))
        << "to its end; the other brakes hold";
    ASSERT_TRUE(done(talk, "set_arm_power", {{"arm_power", 1}}));
    talk.move_to(kFolded);
    ASSERT_TRUE(set(talk, {{"brake_slip", 0}}));
    ASSERT_TRUE(done(talk, "set_arm_power", {{"arm_power", 0}}));
    EXPECT_EQ(talk.joints(), kFolded);
}

TEST(ArmFaults, AStuckDeviceHasAnErrorAndGoesOnWhenItIsFree) {
    const std::tuple<const char*, const char*, Json, int, const char*, const char*, int> rows[] = {
        {"jam_lift", "set_lift_height", {{"height", 50}, {"speed", 50}}, 3, "lift_state", "err_flag", 50000},
        {"jam_expansion", "expand_set_pos", {{"pos", 90}, {"speed", 50}}, 4, "expand_state", "err_flag", 90},
        {"jam_hand", "set_hand_posture", {{"posture_num", 2}, {"block", true}}, 2, "hand", "hand_err", 1000}};
    Talk talk({"--quiet", "--speed", "max"});
    const Json custom{{"lift_state", true}, {"expand_state", true}, {"hand", true}};
    ASSERT_TRUE(done(talk, "set_realtime_push", {{"enable", true}, {"custom", custom}}));
    for (const auto& [fault, order, keys, device, part, error_key, target] : rows) {
        const auto expect = [&, part = part, error_key = error_key](int error, int position) {
            const Json state = pushed(talk).at(part);
            EXPECT_EQ(state.at(error_key), error) << state;
            EXPECT_EQ(state.contains("pos") ? state.at("pos") : state.at("hand_pos")[0], position) << state;
        };
        ASSERT_TRUE(set(talk, {{fault, 1}}) && done(talk, order, keys));
        expect(1, 0);
        ASSERT_TRUE(set(talk, {{fault, 0}}));
        EXPECT_EQ(talk.read().at("device"), device) << "the first report";
        expect(0, target);
    }
    ASSERT_TRUE(set(talk, {{"jam_gripper", 1}}) && done(talk, "set_gripper_position", {{"position", 200}}));
    EXPECT_EQ(talk.ask("get_gripper_state").at("error"), 1);
}

TEST(ArmFaults, AFullDiskRefusesFiles) {
    const Json file{{"project_name", "p"}, {"file_size", 2}, {"plan_speed", 20}, {"save_id", 1}, {"only_save", 1}};
    Talk talk({"--quiet", "--fault", "full_disk=1"});
    EXPECT_FALSE(done(talk, "run_project", file));
    EXPECT_FALSE(done(talk, "update_software", {{"update_name", "u"}, {"file_size", 1}}));
    ASSERT_TRUE(set(talk, {{"full_disk", 0}}) && done(talk, "run_project", file));
    LineClient(talk.simulator.port()).ask(request_text("zk_sim_fault", {{"full_disk", 1}}));
    talk.client.send_bytes("{}");
    EXPECT_EQ(talk.read(), Json({{"command", "download_project"}, {"project_state", false}}));
}

TEST(ArmFaults, AGrippedObjectIsCarriedUntilItIsLostOrReleased) {
    Talk talk({"--quiet", "--speed", "max", "--model", "ZK65-6F", "--force-noise", "0"});
    const auto measured = [&] { return talk.ask("get_force_data").at("force_data").get<std::vector<double>>(); };
    const std::vector<double> empty = measured();
    const auto expect_weight_of = [&](double mass) {
        const std::vector<int> p = talk.pose();
        const KDL::Rotation flange = KDL::Rotation::RPY(p[3] / 1e3, p[4] / 1e3, p[5] / 1e3);
        const KDL::Vector force = flange.Inverse(KDL::Vector(0, 0, -mass * 9.81));
        const KDL::Wrench wrench(force, KDL::Vector(0, 0, 0.15) * force);
        const std::vector<double> now = measured();
        for (int i = 0; i < 6; ++i) EXPECT_NEAR((now[i] - empty[i]) / 1e3, wrench(i), 0.02) << i;
    };
    for (const Json& loss : {Json{{"command", "zk_sim_fault"}, {"grip_loss", 1}},
                             Json{{"command", "set_gripper_release"}, {"speed", 500}}}) {
        ASSERT_TRUE(set(talk, {{"grip_loss", 0}}) && done(talk, "set_gripper_release", {{"speed", 500}}));
        ASSERT_TRUE(done(talk, "zk_sim_object", {{"width", 300}, {"mass", 1.2}}));
        ASSERT_TRUE(done(talk, "set_gripper_pick_on", {{"speed", 500}, {"force", 200}}));
        for (const Joints& posture : {kFolded, kElsewhere, Joints{-90, 30, -60, 80, 50, -100}}) {
            talk.move_to(posture);
            expect_weight_of(1.2);
        }
        ASSERT_TRUE(done(talk, loss.at("command"), loss));
        expect_weight_of(0);
        EXPECT_EQ(talk.ask("get_gripper_state").at("actpos"), loss.contains("speed") ? 1000 : 0);
    }
}

TEST(ArmFaults, ImpossibleOnesAreRefusedWithTheReason) {
    const std::pair<Json, const char*> rows[] = {
        {{{"over_temperature", 7}}, "the arm has 6 joints"},
        {{{"brake_slip", 2}, {"following_error", 2}}, "does not sink"},
        {{{"power_loss", 1}, {"collision", 30}}, "does not move"},
        {{{"power_loss", 1}, {"following_error", 1}}, "follows no path"},
        {{{"jam_gripper", 1}, {"grip_loss", 1}}, "does not close"},
        {{{"cut_at", 3}, {"slice_bytes", 1}}, "in pieces already"},
        {{{"push_drop", 100}, {"push_double", 1}}, "always lost"},
        {{{"emergency_stop", 1}, {"sys_err", 0}}, "release it first"},
        {{{"full_disk", 1}, {"transfer", {{"kind", "silent"}}}}, "no transfer begins"},
        {{{"silent_on", {"movej"}}, {"refuse_on", {"movej"}}}, "not answered"},
        {{{"refuse_on", {"get_joint_degree"}}}, "no command that is acknowledged"},
        {{{"joint_err", {0, 70000, 0, 0, 0, 0}}}, "no error word"},
        {{{"over_temprature", 3}}, "there is no key 'over_temprature'"}};
    Talk talk({"--quiet"});
    for (const auto& [faults, reason] : rows) {
        const Json reply = talk.ask("zk_sim_fault", faults);
        EXPECT_NE(reply.value("reason", "").find(reason), std::string::npos) << reply;
    }
    EXPECT_EQ(pushed(talk).at("sys_err"), 0) << "none of them has an effect";
}

TEST(ArmFaults, TheirPageListsThem) {
    Talk talk({"--quiet"});
    std::string page = content_of(std::string(kSourceFolder) + "/docs/simulator.md"), line;
    std::istringstream help(run_simulator("--help").output), table(page.substr(page.find("| fault |")));
    while (std::getline(help, line) && line != "Faults:") continue;
    while (std::getline(help, line) && !line.empty())
        EXPECT_NE(page.find('`' + line.substr(2, line.find(' ', 2) - 2) + '`'), std::string::npos) << line;
    while (std::getline(table, line) && !line.empty()) {
        std::istringstream cell(line.substr(0, line.find('|', 1)));
        for (std::string name; std::getline(cell, name, '`') && std::getline(cell, name, '`');)
            EXPECT_TRUE(set(talk, {{name, 0}})) << name;
    }
}

}  // namespace
}  // namespace zk::test
