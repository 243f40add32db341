// One datagram of the real-time stream.
#include <gtest/gtest.h>

#include <cstring>

#include "support/datagram.h"
#include "zk/replies/realtime.h"

namespace {

using nlohmann::json;
using zk::test::full_datagram;

int parse(const json& datagram, RobotStatus& status) {
    return Parser_Realtime_Arm_Joint_State(datagram.dump().c_str(), &status);
}

template <class Value, size_t size>
void expect_values(const Value (&values)[size], const std::vector<Value>& expected) {
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(values[i], expected[i]) << i;
}

TEST(RealtimeParser, ReadsEveryPart) {
    RobotStatus s{};
    EXPECT_EQ(parse(full_datagram(), s), 0);
    EXPECT_EQ(s.arm_err, 4097);
    EXPECT_EQ(s.sys_err, 8194);
    expect_values(s.joint_current, {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f});
    expect_values<uint8_t>(s.joint_en_flag, {1, 0, 1, 0, 1, 0});
    expect_values<uint16_t>(s.joint_err_code, {1, 2, 3, 4, 5, 65535});
    expect_values(s.joint_position, {1.5f, -2.5f, 3.5f, 4.5f, 5.5f, 6.5f});
    expect_values(s.joint_temperature, {30.0f, 31.0f, 32.0f, 33.0f, 34.0f, 35.0f});
    expect_values(s.joint_voltage, {24.0f, 24.1f, 24.2f, 24.3f, 24.4f, 24.5f});
    expect_values(s.joint_speed, {6.0f, 12.0f, 18.0f, 24.0f, 30.0f, 36.0f});
    expect_values(s.force, {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f});
    expect_values(s.zero_force, {0.01f, 0.02f, 0.03f, 0.04f, 0.05f, 0.06f});
    EXPECT_EQ(s.coordinate, 2);
    expect_values(s.position, {0.5f, -0.25f, 0.125f});
    expect_values(s.quat, {1.0f, 0.002f, 0.003f, 0.004f});
    expect_values(s.euler, {0.1f, 0.2f, -0.3f});
    EXPECT_EQ(s.lift_pos, 28.0f);
    EXPECT_EQ(s.expand_pos, 35.5f);
    const int32_t numbers[] = {s.lift_height,       s.lift_current, s.lift_err_flag,  s.lift_en_flag,
                               s.expand_joint_id,   s.expand_mode,  s.expand_current, s.expand_err_flag,
                               s.expand_en_flag,    s.hand_err,     s.io1_state,      s.io2_state,
                               s.arm_current_status};
    expect_values(numbers, {29, 30, 31, 32, 33, 34, 36, 37, 38, 25, 26, 27, 1});
    expect_values(s.hand_pos, {1, 2, 3, 4, 5, 6});
    expect_values(s.hand_angle, {7, 8, 9, 10, 11, 12});
    expect_values(s.hand_force, {13, 14, 15, 16, 17, 18});
    expect_values(s.hand_state, {19, 20, 21, 22, 23, 24});
}

TEST(RealtimeParser, NamesWhatTheArmDoes) {
    // clang-format off
    const char* const texts[] = {
        "idle", "move_L", "move_J", "move_C", "move_S", "move_through_joint", "move_through_pose",
        "move_through_force_pose", "move_through_current", "stop", "slow_stop", "pause", "current_drag",
        "sensor_drag", "tech_demonstration",
    };
    // clang-format on
    for (int i = 0; i < 15; ++i) EXPECT_EQ(get_arm_status_from_string(texts[i]), i);
    for (const char* text : {"", "Idle", "move", "move_L ", "stopped"}) EXPECT_EQ(get_arm_status_from_string(text), 0);
}

// A part of a datagram: the status when it is missing, of another type, or has a key that is missing or of another
// type.
struct Part {
    const char* key;
    int missing, wrong, key_missing = 0, key_wrong = 0;
};
constexpr Part kParts[] = {{"hand", 0, 9, 9, 9},
                           {"aloha_state", 0, 11, 11, 11},
                           {"arm_current_status", 0, 11},
                           {"lift_state", 0, 9, 9, 11},
                           {"expand_state", 0, 9, 9, 11},
                           {"joint_status", 9, 11, 9, 11},
                           {"waypoint", 9, 11, 9, 11},
                           {"arm_err", 9, 11},
                           {"sys_err", 9, 11},
                           {"six_force_sensor", 0, 9, 9, 11}};

bool same_type(const json& a, const json& b) { return a.type() == b.type() || (a.is_number() && b.is_number()); }

void expect_status(const json& datagram, int status) {
    RobotStatus record{};
    EXPECT_EQ(parse(datagram, record), status) << datagram;
}

void expect_refused(const json::json_pointer& path, int missing, int wrong) {
    json datagram = full_datagram();
    const json good = datagram[path];
    datagram[path.parent_pointer()].erase(path.back());
    expect_status(datagram, missing);
    for (const json& other : {json(nullptr), json(true), json(1), json("1"), json::array(), json{{"key", 1}}}) {
        datagram[path] = other;
        if (!same_type(other, good)) expect_status(datagram, wrong);
    }
}

TEST(RealtimeParser, AKeyThatIsMissingOrOfAnotherTypeIsRefused) {
    for (const auto& [part, missing, wrong, key_missing, key_wrong] : kParts) {
        const json::json_pointer path = json::json_pointer() / part;
        expect_refused(path, missing, wrong);
        const json datagram = full_datagram();
        if (!datagram[path].is_object()) continue;
        for (const auto& [key, value] : datagram[path].items()) {
            expect_refused(path / key, key == "joint_speed" ? 0 : key_missing, key_wrong);
        }
    }
    for (const char* text : {"", "nonsense", "{\"hand\":", "[]", "7"}) {
        RobotStatus status{};
        EXPECT_EQ(Parser_Realtime_Arm_Joint_State(text, &status), 9) << text;
    }
}

TEST(RealtimeParser, AnArrayOfAnotherSizeIsRefused) {
    for (const char* part : {"joint_status", "waypoint"}) {
        json datagram = full_datagram();
        for (auto& [key, good] : datagram[part].items()) {
            const json before = good;
            for (const int size : {0, 2, 5, 8}) {
                good = std::vector<int>(size);
                expect_status(datagram, 10);
            }
            good = before;
        }
    }
}

// The forces of a one-axis sensor may be of any type.
TEST(RealtimeParser, AOneAxisSensorNeedsAllItsKeys) {
    for (const auto& [sensor, status] : {std::pair{R"({"force":[1],"zero_force":[2],"coordinate":1})", 0},
                                         {R"({"force":1,"zero_force":{},"coordinate":1})", 0},
                                         {R"({"zero_force":[2],"coordinate":1})", 9},
                                         {R"({"force":[2],"coordinate":1})", 9},
                                         {R"({"force":[1],"zero_force":[2]})", 9},
                                         {R"({"force":[1],"zero_force":[2],"coordinate":"1"})", 11}}) {
        json datagram = full_datagram();
        datagram["one_force_sensor"] = json::parse(sensor);
        expect_status(datagram, status);
    }
}

// Of two broken parts the one that is parsed first sets the status; only the parts before it are stored.
TEST(RealtimeParser, PartsAreReadInTheirOrder) {
    for (size_t i = 0; i < 8; ++i) {
        json datagram = full_datagram();
        for (size_t j = i; j < std::size(kParts); ++j) datagram[kParts[j].key] = true;
        RobotStatus s{};
        const char* const part = kParts[i].key;
        EXPECT_EQ(parse(datagram, s), kParts[i].wrong) << part;
        EXPECT_EQ(s.hand_err, i > 0 ? 25 : 0) << part;
        EXPECT_EQ(s.io2_state, i > 1 ? 27 : 0) << part;
        EXPECT_EQ(s.arm_current_status, i > 2 ? 1 : 0) << part;
        EXPECT_EQ(s.lift_en_flag, i > 3 ? 32 : 0) << part;
        EXPECT_EQ(s.expand_en_flag, i > 4 ? 38 : 0) << part;
        EXPECT_EQ(s.joint_voltage[0], i > 5 ? 24.0f : 0.0f) << part;
        EXPECT_EQ(s.position[0], i > 6 ? 0.5f : 0.0f) << part;
        EXPECT_EQ(s.sys_err, 0) << part;
    }
}

TEST(RealtimeParser, WhatADatagramDoesNotCarryKeepsItsValue) {
    RobotStatus s{};
    ASSERT_EQ(parse(full_datagram(), s), 0);
    json bare = full_datagram();
    for (const char* key :
         {"hand", "aloha_state", "arm_current_status", "lift_state", "expand_state", "six_force_sensor"}) {
        bare.erase(key);
    }
    bare["joint_status"].erase("joint_speed");
    bare["arm_err"] = 1;
    EXPECT_EQ(parse(bare, s), 0);
    EXPECT_EQ(s.arm_err, 1);
    EXPECT_EQ(s.joint_speed[5], 36.0f);
    EXPECT_EQ(s.hand_state[5], 24);
    EXPECT_EQ(s.io1_state, 26);
    EXPECT_EQ(s.arm_current_status, 1);
    EXPECT_EQ(s.lift_height, 29);
    EXPECT_EQ(s.expand_mode, 34);
    EXPECT_EQ(s.force[5], 6.0f);
}

TEST(RealtimeParser, SevenJointsFillSevenEntriesAndSixLeaveTheSeventh) {
    RobotStatus s{};
    json seven = full_datagram();
    for (auto& array : seven["joint_status"]) array.push_back(7000);
    ASSERT_EQ(parse(seven, s), 0);
    EXPECT_EQ(s.joint_position[6], 7.0f);
    EXPECT_EQ(s.joint_en_flag[6], 7000 % 256);
    ASSERT_EQ(parse(full_datagram(), s), 0);
    EXPECT_EQ(s.joint_position[6], 7.0f);
    EXPECT_EQ(s.joint_speed[6], 42.0f);
}

TEST(RealtimeParser, TheSecondOfTwoForceSensorsIsStored) {
    RobotStatus s{};
    json both = full_datagram();
    both["one_force_sensor"] = {{"force", {7000}}, {"zero_force", {8000, 9000}}, {"coordinate", 1}};
    EXPECT_EQ(parse(both, s), 0);
    expect_values(s.force, {7.0f, 2.0f});
    expect_values(s.zero_force, {8.0f, 9.0f, 0.03f});
    EXPECT_EQ(s.coordinate, 1);
}

// Arrays without a length check continue into the next fields, up to the end of the record.
TEST(RealtimeParser, OverlongArraysEndWithTheRecord) {
    struct Guarded {
        RobotStatus status;
        unsigned char guard[4096];
    } record;
    std::memset(&record, 0x5a, sizeof record);
    json datagram = full_datagram();
    datagram["hand"]["hand_pos"] = std::vector<int>(8, 77);
    datagram["hand"]["hand_state"] = std::vector<int>(1000, 99);
    datagram["six_force_sensor"]["zero_force"] = std::vector<int>(1000, 0);
    datagram["six_force_sensor"]["coordinate"] = 3;
    EXPECT_EQ(parse(datagram, record.status), 0);
    EXPECT_EQ(record.status.hand_pos[5], 0) << "the forces, read last, ran over it";
    EXPECT_EQ(record.status.coordinate, 3);
    for (const unsigned char byte : record.guard) ASSERT_EQ(byte, 0x5a);

    datagram["six_force_sensor"]["zero_force"] = {1, 2};
    EXPECT_EQ(parse(datagram, record.status), 0);
    expect_values(record.status.hand_pos, {77, 77, 77, 77, 77, 77});
    expect_values(record.status.hand_angle, {7, 8, 9});
    EXPECT_EQ(record.status.hand_err, 25);
    EXPECT_EQ(record.status.io2_state, 27);
    for (const unsigned char byte : record.guard) ASSERT_EQ(byte, 0x5a);
}

}  // namespace
