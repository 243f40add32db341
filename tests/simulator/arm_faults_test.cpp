// What a client sees of the faults of the arm and its devices, and how they end.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "simulator/talk.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

const Joints kHome{10, -20, -60, 15, -40, 20}, kElsewhere{60, 20, -30, 15, -40, 20};

bool set(Talk& talk, const Json& faults) { return talk.ask("zk_sim_fault", faults).at("done"); }

// The state after all that the simulator has done.
Json pushed(Talk& talk) {
    talk.ask("get_arm_power_state");
    talk.push.forget();
    talk.ask("get_arm_power_state");
    return talk.state();
}

struct ArmFault {
    Json set, end;
    const char* clear;
    Json clear_keys;
    const char* clear_key;
    bool cleared_before_its_end;
    int arm_err, sys_err, joint_err;  // of joint 2
};

TEST(ArmFaults, StopTheArmUntilTheyEndAndAreCleared) {
    const Json none = Json::object(), joint{{"joint_clear_err", 2}};
    const ArmFault rows[] = {
        {{{"over_temperature", 2}},
         {{"over_temperature", 0}},
         "set_joint_clear_err",
         joint,
         "joint_clear_err",
         false,
         0,
         0,
         1},
        {{{"following_error", 2}},
         {{"following_error", 0}},
         "set_joint_clear_err",
         joint,
         "joint_clear_err",
         true,
         0,
         0,
         2},
        {{{"collision", 30}}, {{"collision", 0}}, "clear_system_err", none, "clear_state", true, 4100, 0, 0},
        {{{"emergency_stop", 1}}, {{"emergency_stop", 0}}, "clear_system_err", none, "clear_state", false, 0, 1, 0},
        {{{"power_loss", 1}}, {{"power_loss", 0}}, "set_arm_power", {{"arm_power", 1}}, "arm_power", false, 0, 0, 0},
    };
    Talk talk({"--quiet", "--speed", "20"});
    ASSERT_EQ(talk.ask("set_collision_stage", {{"collision_stage", 7}}).at("collision_state"), true);
    for (const ArmFault& row : rows) {
        SCOPED_TRACE(row.set);
        const auto clear = [&] { return talk.ask(row.clear, row.clear_keys).at(row.clear_key).get<bool>(); };
        talk.move_to(kHome);
        ASSERT_TRUE(talk.movej(kElsewhere, 2));
        while (talk.joints()[0] < kHome[0] + 0.1) continue;
        ASSERT_TRUE(set(talk, row.set));
        EXPECT_FALSE(talk.read_arrival());
        const double stopped = talk.joints()[0];
        EXPECT_TRUE(stopped > kHome[0] && stopped < kElsewhere[0]) << stopped;
        const Json state = pushed(talk);
        EXPECT_EQ(state.at("arm_err"), row.arm_err);
        EXPECT_EQ(state.at("sys_err"), row.sys_err);
        EXPECT_EQ(state.at("joint_status").at("joint_err_code"), Json({0, row.joint_err, 0, 0, 0, 0}));
        EXPECT_EQ(state.at("joint_status").at("joint_temperature").at(1) >= 80000, row.joint_err == 1);
        EXPECT_EQ(state.at("joint_status").at("joint_voltage").at(1) == 0, row.set.contains("power_loss"));
        EXPECT_EQ(clear(), row.cleared_before_its_end);
        EXPECT_EQ(talk.movej(kElsewhere, 100), row.cleared_before_its_end);
        EXPECT_FALSE(talk.read_arrival()) << "it fails again";
        ASSERT_TRUE(set(talk, row.end));
        while (!clear()) continue;  // a joint cools in seconds
    }
    talk.move_to(kElsewhere);
    EXPECT_EQ(talk.ask("set_collision_stage", {{"collision_stage", 6}}).at("collision_state"), true);
    ASSERT_TRUE(set(talk, {{"collision", 30}}));
    talk.move_to(kHome);  // too weak for this stage
}

TEST(ArmFaults, AScenarioStartsAndEndsThem) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("scenario.json", R"({
        "options": {"speed": "max", "fault": ["delay_ms=1", "over_temperature=6"]},
        "events": [
            {"at": 0.1, "do": [{"command": "zk_sim_fault", "over_temperature": 0}]},
            {"when": {"joint": 1, "above": 30}, "do": [{"command": "zk_sim_fault", "emergency_stop": 1}]},
            {"when": {"joint": 1, "above": 30}, "after": 3, "do": [
                {"command": "zk_sim_fault", "emergency_stop": 0}, {"command": "clear_system_err"}]}
        ]})");
    Talk talk({"--quiet", "--scenario", file});
    talk.move_to(kHome);
    ASSERT_TRUE(talk.movej(kElsewhere, 100));
    EXPECT_FALSE(talk.read_arrival());
    const double stopped = talk.joints()[0];
    EXPECT_TRUE(stopped > 30 && stopped < kElsewhere[0]) << stopped;
    talk.move_to(kElsewhere);
}

TEST(ArmFaults, AJointSinksWhenItsBrakeSlips) {
    Talk talk({"--quiet", "--speed", "max", "--fault", "brake_slip=2"});
    const auto power = [&](int on) { EXPECT_EQ(talk.ask("set_arm_power", {{"arm_power", on}}).at("arm_power"), true); };
    talk.move_to(kHome);
    const int height = talk.pose()[2];
    power(0);
    const Json after = pushed(talk);
    Joints sunk = after.at("joint_status").at("joint_position");
    EXPECT_LT(sunk[1], -60'000) << "the arm leans that way";
    EXPECT_LT(talk.pose()[2], height - 100'000);
    EXPECT_EQ(after.at("joint_status").at("joint_err_code"), Json({0, 0, 0, 0, 0, 0}));
    power(1);
    EXPECT_EQ(pushed(talk).at("joint_status").at("joint_position"), Json(sunk)) << "the drive holds it";
    sunk[1] = kHome[1] * 1000;
    EXPECT_EQ(sunk, Joints({10000, -20000, -60000, 15000, -40000, 20000})) << "the other brakes hold";
    talk.move_to(kHome);
    set(talk, {{"brake_slip", 0}});
    power(0);
    EXPECT_EQ(talk.joints(), kHome);
}

TEST(ArmFaults, AStuckDeviceHasAnErrorAndGoesOnWhenItIsFree) {
    struct Device {
        const char* fault;
        const char* order;
        Json keys;
        const char* key;
        int number;
        const char *error, *position;  // in the push
        int target;
    };
    const Device rows[] = {
        {"jam_lift",
         "set_lift_height",
         {{"height", 500}, {"speed", 50}},
         "set_state",
         3,
         "/lift_state/err_flag",
         "/lift_state/height",
         500},
        {"jam_expansion",
         "expand_set_pos",
         {{"pos", 9000}, {"speed", 50}},
         "set_state",
         4,
         "/expand_state/err_flag",
         "/expand_state/pos",
         9000},
        {"jam_hand",
         "set_hand_posture",
         {{"posture_num", 2}, {"block", true}},
         "set_state",
         2,
         "/hand/hand_err",
         "/hand/hand_angle/0",
         1000},
        {"jam_gripper",
         "set_gripper_position",
         {{"position", 200}, {"block", true}},
         "state",
         1,
         "/error",
         "/actpos",
         200},
    };
    Talk talk({"--quiet", "--speed", "max"});
    const Json custom{{"lift_state", true}, {"expand_state", true}, {"hand", true}};
    ASSERT_EQ(talk.ask("set_realtime_push", {{"enable", true}, {"custom", custom}}).at("state"), true);
    for (const Device& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto state = [&] { return row.number == 1 ? talk.ask("get_gripper_state") : pushed(talk); };
        const auto value = [&](const char* where) { return state().at(Json::json_pointer(where)).get<int>(); };
        const int start = value(row.position);
        ASSERT_TRUE(set(talk, {{row.fault, 1}}));
        EXPECT_EQ(value(row.error), 0);
        EXPECT_EQ(talk.ask(row.order, row.keys).at(row.key), true);
        EXPECT_EQ(value(row.error), 1);
        EXPECT_EQ(value(row.position), start);
        ASSERT_TRUE(set(talk, {{row.fault, 0}}));
        EXPECT_EQ(talk.read().at("device"), row.number) << "the first report";
        EXPECT_EQ(value(row.error), 0);
        EXPECT_EQ(value(row.position), row.target);
    }
}

TEST(ArmFaults, AFullDiskRefusesFiles) {
    const Json file{{"project_name", "p"}, {"file_size", 2}, {"plan_speed", 20}, {"save_id", 1}, {"only_save", 1}};
    Talk talk({"--quiet", "--fault", "full_disk=1"});
    EXPECT_EQ(talk.ask("run_project", file).at("project_state"), false);
    EXPECT_EQ(talk.ask("update_software", {{"update_name", "u"}, {"file_size", 1}}).at("update_state"), false);
    ASSERT_TRUE(set(talk, {{"full_disk", 0}}));
    EXPECT_EQ(talk.ask("run_project", file).at("project_state"), true);
    LineClient other(talk.simulator.port());
    other.ask(request_text("zk_sim_fault", {{"full_disk", 1}}));
    talk.client.send_bytes("{}");
    EXPECT_EQ(talk.read(), Json({{"command", "download_project"}, {"project_state", false}}));
    EXPECT_EQ(talk.ask("zk_sim_files").at("files"), Json::array());
}

// The weight on the sensor is that of the object while the gripper holds it, at every posture.
TEST(ArmFaults, AGrippedObjectIsCarriedUntilItIsReleasedOrLost) {
    constexpr double kMass = 1.2, kGravity = 9.81;
    Talk talk({"--quiet", "--speed", "max", "--model", "ZK65-6F", "--force-noise", "0"});
    const auto measured = [&] { return talk.ask("get_force_data").at("force_data").get<std::vector<double>>(); };
    const std::vector<double> empty = measured();
    const auto expect_weight_of = [&](double mass) {
        const std::vector<int> p = talk.pose();
        const KDL::Rotation flange = KDL::Rotation::RPY(p[3] / 1e3, p[4] / 1e3, p[5] / 1e3);
        const KDL::Vector force = flange.Inverse(KDL::Vector(0, 0, -mass * kGravity));
        const KDL::Vector moment = KDL::Vector(0, 0, 0.15) * force;
        const std::vector<double> now = measured();
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR((now[i] - empty[i]) / 1e3, force(i), 0.02) << i;
            EXPECT_NEAR((now[i + 3] - empty[i + 3]) / 1e3, moment(i), 0.004) << i;
        }
    };
    const auto pick = [&] {
        talk.ask("zk_sim_object", {{"width", 300}, {"mass", kMass}});
        EXPECT_EQ(talk.ask("set_gripper_pick_on", {{"speed", 500}, {"force", 200}}).at("state"), true);
        EXPECT_EQ(talk.ask("get_gripper_state").at("current_force"), 200);
    };
    pick();
    for (const Joints& posture : {kHome, kElsewhere, Joints{-90, 30, -60, 80, 50, -100}}) {
        talk.move_to(posture);
        expect_weight_of(kMass);
    }
    ASSERT_TRUE(set(talk, {{"grip_loss", 1}}));
    expect_weight_of(0);
    const Json lost = talk.ask("get_gripper_state");
    EXPECT_EQ(lost.at("current_force"), 0);
    EXPECT_EQ(lost.at("actpos"), 0) << "the fingers close further";
    ASSERT_TRUE(set(talk, {{"grip_loss", 0}}));
    talk.ask("set_gripper_release", {{"speed", 500}});
    pick();
    expect_weight_of(kMass);
    talk.ask("set_gripper_release", {{"speed", 500}});
    expect_weight_of(0);
}

TEST(ArmFaults, ImpossibleOnesAreRefusedWithTheReason) {
    const std::tuple<Json, const char*> rows[] = {
        {{{"over_temperature", 7}}, "the arm has 6 joints"},
        {{{"brake_slip", 2}, {"following_error", 2}}, "does not sink"},
        {{{"cut_at", 3}, {"slice_bytes", 1}}, "in pieces already"},
        {{{"push_drop", 100}, {"push_double", 1}}, "always lost"},
        {{{"emergency_stop", 1}, {"sys_err", 0}}, "release it first"},
        {{{"full_disk", 1}, {"transfer", {{"kind", "silent"}}}}, "no transfer begins"},
        {{{"silent_on", {"movej"}}, {"refuse_on", {"movej"}}}, "not answered"},
        {{{"refuse_on", {"get_joint_degree"}}}, "no command that is acknowledged"},
        {{{"joint_err", {0, 70000, 0, 0, 0, 0}}}, "no error word"},
        {{{"over_temprature", 3}}, "there is no fault 'over_temprature'"},
    };
    Talk talk({"--quiet"});
    for (const auto& [faults, reason] : rows) {
        const Json reply = talk.ask("zk_sim_fault", faults);
        EXPECT_EQ(reply.at("done"), false);
        EXPECT_NE(reply.at("reason").get<std::string>().find(reason), std::string::npos) << reply;
    }
    const Json state = pushed(talk);
    EXPECT_EQ(state.at("sys_err"), 0) << "none of them has an effect";
    const Finished run = run_simulator("--port 0 --fault brake_slip=7");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find("brake_slip: the arm has 6 joints"), std::string::npos) << run.output;
}

std::vector<std::string> lines_between(const std::string& text, const std::string& first, const std::string& last) {
    std::istringstream part(text.substr(text.find(first), text.find(last) - text.find(first)));
    std::vector<std::string> lines;
    for (std::string line; std::getline(part, line);) lines.push_back(line);
    return lines;
}

TEST(ArmFaults, TheirPageListsThem) {
    std::set<std::string> helped, listed;
    for (const std::string& line : lines_between(run_simulator("--help").output, "Faults:", "\nModels:"))
        if (line.starts_with("  ")) helped.insert(line.substr(2, line.find(' ', 2) - 2));
    const std::string page = content_of(std::string(kSourceFolder) + "/docs/simulator.md");
    for (const std::string& line : lines_between(page, "| fault |", "These faults need")) {
        if (!line.starts_with("| `")) continue;
        std::istringstream cell(line.substr(0, line.find('|', 1)));
        for (std::string name; std::getline(cell, name, '`') && std::getline(cell, name, '`');) listed.insert(name);
    }
    EXPECT_EQ(listed, helped);
    EXPECT_GT(listed.size(), 25u);
}

}  // namespace
}  // namespace zk::test
