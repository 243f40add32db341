// The devices of the arm: they move in finite time, report their motion and appear in the push.
#include <gtest/gtest.h>

#include "simulator/talk.h"

namespace zk::test {
namespace {

Json arrival(int device, bool arrived) {
    return {{"state", "current_trajectory_state"},
            {"trajectory_state", arrived},
            {"device", device},
            {"trajectory_connect", 0}};
}

void push_all(Talk& talk) {
    const Json custom{{"lift_state", true}, {"expand_state", true}, {"hand", true}};
    ASSERT_EQ(talk.ask("set_realtime_push", {{"enable", true}, {"custom", custom}}).at("state"), true);
    while (!talk.state().contains("hand")) continue;
}

// A moving value in the push never reverses and takes at least `samples` different values.
void expect_steady_way(Talk& talk, const Json::json_pointer& where, int to, int samples) {
    int last = talk.state().at(where), different = 0;
    const bool up = to > last;
    while (last != to) {
        const int now = talk.state().at(where);
        EXPECT_TRUE(up ? now >= last : now <= last) << where << ": " << last << " then " << now;
        different += now != last;
        last = now;
    }
    EXPECT_GE(different, samples) << where;
}

TEST(Devices, MoveInTheirOwnTimeAndReportWhoMoved) {
    Talk talk({"--quiet"});
    push_all(talk);
    EXPECT_EQ(talk.ask("set_lift_height", {{"height", 100}, {"speed", 50}}).at("set_state"), true);
    EXPECT_EQ(talk.ask("get_lift_state").at("mode"), 1);
    expect_steady_way(talk, "/lift_state/height"_json_pointer, 100, 20);
    EXPECT_EQ(talk.read(), arrival(3, true));
    EXPECT_EQ(talk.ask("get_lift_state").at("mode"), 0);

    EXPECT_EQ(talk.ask("expand_set_pos", {{"pos", -20000}, {"speed", 100}}).at("set_state"), true);
    expect_steady_way(talk, "/expand_state/pos"_json_pointer, -20000, 20);
    EXPECT_EQ(talk.read(), arrival(4, true));

    EXPECT_EQ(talk.ask("set_hand_posture", {{"posture_num", 4}, {"block", true}}).at("set_state"), true);
    expect_steady_way(talk, "/hand/hand_angle/3"_json_pointer, 600, 20);
    EXPECT_EQ(talk.read(), arrival(2, true));
    Json hand;
    do {
        hand = talk.state().at("hand");
    } while (hand.at("hand_state") != Json({0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(hand.at("hand_angle"), Json({0, 0, 0, 600, 600, 1000}));

    EXPECT_EQ(talk.ask("set_gripper_position", {{"position", 400}, {"block", true}}).at("state"), true);
    EXPECT_EQ(talk.read(), arrival(1, true));
    EXPECT_EQ(talk.ask("get_gripper_state").at("actpos"), 400);
}

// Each order of these streams comes long before the device has reached the target of the one before.
TEST(Devices, GoOnFromTheirSpeedWhenTheNextOrderComes) {
    Talk talk({"--quiet"});
    push_all(talk);
    Json state = talk.state();
    for (int i = 1; i <= 40; ++i) {
        talk.ask("hand_follow_angle", {{"hand_angle", {20 * i, -1, -1, -1, -1, -1}}});
        talk.ask("set_gripper_position", {{"position", 1000 - 20 * i}});
        talk.ask("set_lift_speed", {{"speed", 100}});
        for (const int64_t next = state.at("time").get<int64_t>() + 20; state.at("time") < next;) state = talk.state();
    }
    EXPECT_GE(state.at("hand").at("hand_angle")[0], 500);
    EXPECT_GE(state.at("lift_state").at("height"), 100);
    EXPECT_LE(talk.ask("get_gripper_state").at("actpos"), 500);
}

TEST(Devices, ReportOnlyToClientsThatWait) {
    Talk talk({"--quiet"});
    EXPECT_EQ(talk.ask("set_gripper_release", {{"speed", 1000}, {"block", 0}}).at("state"), true);
    EXPECT_EQ(talk.ask("set_hand_seq", {{"seq_num", 2}}).at("set_state"), true);
    EXPECT_EQ(talk.ask("set_lift_speed", {{"speed", 100}}).at("set_state"), true);
    // A replaced motion is reported to another client, not to the one that replaced it.
    LineClient other(talk.simulator.port());
    other.send_line(request_text("expand_set_speed", {{"speed", 10}}));
    EXPECT_EQ(Json::parse(other.read_line()).at("set_state"), true);
    EXPECT_EQ(talk.ask("expand_set_speed", {{"speed", -10}}).at("set_state"), true);
    EXPECT_EQ(Json::parse(other.read_line()), arrival(4, false));
    EXPECT_EQ(talk.ask("expand_set_speed", {{"speed", 0}}).at("set_state"), true);
    EXPECT_EQ(talk.read(), arrival(4, true)) << "braked: the first thing that is reported";
}

TEST(Devices, BaseTravelsToItsStationAndCharges) {
    Talk talk({"--quiet"});
    EXPECT_EQ(talk.ask("set_car_speed", {{"station", 1}, {"speed", 2000}}).at("navigation_state"), true);
    EXPECT_EQ(talk.ask("get_car_state").at("car_state"), 2);
    Json state;
    do {
        state = talk.ask("get_car_state");
    } while (state.at("car_state") == 2);
    EXPECT_EQ(state.at("station_num"), 1);
    EXPECT_EQ(talk.ask("set_car_charge", {{"charge_state", 1}}).at("navigation_state"), true);
    const int battery = state.at("battery_volume");
    while (talk.ask("get_car_state").at("battery_volume") == battery) continue;
    EXPECT_EQ(talk.ask("set_car_move", {{"linear_speed", 1}, {"angular_speed", 0}}).at("set_state"), true);
    EXPECT_EQ(talk.ask("set_car_charge", {{"charge_state", 0}}).at("navigation_state"), true);
    EXPECT_EQ(talk.ask("get_car_state").at("car_state"), 1) << "it does not charge, and drives on";
    EXPECT_EQ(talk.ask("set_car_move", {{"linear_speed", 0}, {"angular_speed", 0}}).at("set_state"), true);
    EXPECT_EQ(talk.ask("get_car_state").at("car_state"), 0);
}

TEST(Devices, BaseReturnsAfterAFreeDrive) {
    Talk talk({"--quiet"});
    const auto now = [&] {
        talk.push.forget();
        return talk.sample().time;
    };
    const auto drive = [&](int linear) {
        return talk.ask("set_car_move", {{"linear_speed", linear}, {"angular_speed", 0}}).at("set_state") == true;
    };
    EXPECT_FALSE(drive(2001)) << "faster than it is";
    ASSERT_TRUE(drive(-2000));
    for (const int64_t end = now() + 500; now() < end;) continue;
    ASSERT_TRUE(drive(0));
    const int64_t start = now();
    ASSERT_TRUE(talk.ask("set_car_speed", {{"station", 0}, {"speed", 2000}}).at("navigation_state"));
    while (talk.ask("get_car_state").at("car_state") == 2) continue;
    EXPECT_GE(now() - start, 500) << "a metre at the most it can";
}

}  // namespace
}  // namespace zk::test
