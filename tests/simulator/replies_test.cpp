// Every reply of the simulator: that a client takes it for what it is, and finds the keys it needs in it.
#include "simulator/replies.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "zk/dispatch.h"

namespace zk::test {

std::string under(const std::string& place, const std::string& told) {
    std::istringstream words(told);
    std::string text;
    for (std::string word; words >> word;) text += (word.back() == ':' ? "" : place) + word + " ";
    return text;
}

namespace {

const std::string kDone = "true: ";  // and the key of an action that was carried out

// The places that a row tells of, and what must stand at each.
std::map<std::string, std::string> places(const std::string& told) {
    std::map<std::string, std::string> kinds;
    std::istringstream words(told);
    std::string kind;
    for (std::string word; words >> word;) {
        if (word.back() == ':')
            kind = word.substr(0, word.size() - 1);
        else
            kinds[word] = kind;
    }
    return kinds;
}

bool fits(const Json& item, const std::string& kind, size_t joints) {
    if (kind == "true") return item.is_boolean() && item.get<bool>();
    if (kind == "boolean") return item.is_boolean();
    if (kind == "number") return item.is_number();
    if (kind == "string") return item.is_string();
    const std::map<std::string, size_t> sizes{{"joints", joints}, {"pose", 6}, {"triple", 3}};
    if (kind != "strings" && kind != "numbers" && sizes.count(kind) == 0) {
        ADD_FAILURE() << "no such kind: " << kind;
        return false;
    }
    if (!item.is_array() || (sizes.count(kind) != 0 && item.size() != sizes.at(kind))) return false;
    const auto is_element = [&](const Json& one) { return kind == "strings" ? one.is_string() : one.is_number(); };
    return std::all_of(item.begin(), item.end(), is_element);
}

std::set<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

// Carried out without an answer.
const std::set<std::string> kUnanswered = words(
    "set_wifi_ap set_wifi_sta set_usb set_RS485 set_ethernet movej_follow movep_follow manual_set_force_pose1 "
    "manual_set_force_pose2 manual_set_force_pose3");

// Reported when they have ended, or were refused.
const std::set<std::string> kReported = words(
    "movej movej_p movel moves movec auto_fix_joint_over_soft_limit set_joint_step set_pos_step set_ort_step "
    "set_lift_height set_lift expand_set_pos expand_set_speed");

// What an arm with this sensor at its end, "B", "ZF" or "6F", answers.
ReplyRows all_rows(size_t joints, const std::string& sensor) {
    ReplyRows all;
    if (sensor == "6F") all = six_force_rows(joints);
    if (sensor == "ZF") all = one_force_rows(joints);
    for (const ReplyRows& rows :
         {drag_rows(joints), joint_rows(joints), state_rows(joints), limit_rows(joints), frame_rows(),
          trajectory_rows(joints), streaming_rows(joints), teach_rows(), push_rows(), system_rows(), network_rows(),
          modbus_rows(), fence_rows(), io_rows(), gripper_rows(), axis_rows(), file_rows(), program_rows(joints)})
        all.insert(all.end(), rows.begin(), rows.end());
    return all;
}

// What is said unasked: the reports of moves, files and programs that end, and points.
bool is_report(const std::string& message) {
    const std::set<int> reports{64, 164, 240, 231};
    return reports.count(Get_Json_KeyCode(message.c_str())) != 0 && message.find("waypoint") == std::string::npos;
}

// The reply to a row's request, and the file that it asks for. Reports come in between.
std::string reply_of(Talk& talk, const ReplyRow& row) {
    talk.send(row.command, row.keys.is_null() ? Json::object() : row.keys);
    std::string reply;
    do {
        reply = talk.client.read_line();
    } while (is_report(reply));
    if (row.command == "update_software" && Json::parse(reply).at("update_state")) talk.client.send_bytes("{}");
    return reply;
}

class EveryReply : public testing::TestWithParam<const char*> {
 protected:
    std::string sensor() const { return std::string(GetParam()).substr(std::string(GetParam()).find('-') + 1); }
};
INSTANTIATE_TEST_SUITE_P(Simulator, EveryReply, testing::Values("ORB65-B", "ZK75-6F", "63-ZF"));

TEST_P(EveryReply, IsTakenForWhatItIs) {
    Talk talk({"--quiet", "--model", GetParam()});
    const size_t joints = talk.joints().size();
    for (const ReplyRow& row : all_rows(joints, sensor())) {
        const std::string text = reply_of(talk, row);
        EXPECT_EQ(Get_Json_KeyCode(text.c_str()), row.code) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        const Json reply = Json::parse(text);
        for (const auto& [place, kind] : places(row.told)) {
            const Json::json_pointer where("/" + place);
            ASSERT_TRUE(reply.contains(where)) << place << " in " << text;
            EXPECT_TRUE(fits(reply.at(where), kind, joints)) << place << " in " << text;
        }
    }
}

TEST_P(EveryReply, ThatRefusesIsTakenForWhatItIs) {
    Talk talk({"--quiet", "--model", GetParam()});
    for (const ReplyRow& row : all_rows(talk.joints().size(), sensor())) {
        if (row.told.rfind(kDone, 0) != 0 || row.command == "zk_sim_fault") continue;
        ASSERT_EQ(talk.ask("zk_sim_fault", {{"refuse_on", {row.command}}}).at("done"), true);
        const std::string text = reply_of(talk, row);
        EXPECT_EQ(Get_Json_KeyCode(text.c_str()), row.code) << text;
        EXPECT_EQ(Json::parse(text).at(row.told.substr(kDone.size())), false) << text;
        if (kReported.count(row.command.substr(0, row.command.find(' '))) != 0) {
            EXPECT_EQ(Get_Json_KeyCode(talk.client.read_line().c_str()), 64);
        }
    }
}

TEST_P(EveryReply, ThatReportsAnArrivalIsTakenForOne) {
    Talk talk({"--quiet", "--model", GetParam()});
    ASSERT_TRUE(talk.movej(talk.joints(), 10));
    const std::string text = talk.client.read_line();
    EXPECT_EQ(Get_Json_KeyCode(text.c_str()), 64);
    const Json expected{
        {"state", "current_trajectory_state"}, {"trajectory_state", true}, {"device", 0}, {"trajectory_connect", 0}};
    EXPECT_EQ(Json::parse(text), expected);
}

TEST(Replies, EveryCommandIsAmongTheRows) {
    std::set<std::string> rows = kUnanswered;
    for (const char* sensor : {"B", "ZF", "6F"}) {
        for (const ReplyRow& row : all_rows(6, sensor)) rows.insert(row.command);
    }
    std::set<std::string> commands;
    std::istringstream list(run_simulator("--commands").output);
    for (std::string command; std::getline(list, command);) commands.insert(command);
    EXPECT_EQ(commands, rows);
}

TEST(Replies, OrdersAreCarriedOutWithoutAnAnswer) {
    Talk talk({"--quiet"});
    talk.send("set_wifi_sta", {{"router_name", "hall"}, {"password", "secret"}});
    talk.send("set_RS485", {{"baudrate", 9600}});
    talk.send("set_usb", {{"baudrate", 9600}});
    talk.send("set_ethernet");
    const Json wifi = talk.ask("get_wifi_net");
    EXPECT_EQ(wifi.at("ssid"), "hall");
    EXPECT_EQ(wifi.at("mode"), "sta");
    EXPECT_EQ(talk.ask("get_controller_RS485_mode").at("baudrate"), 9600);
    talk.send("set_wifi_ap", {{"wifi_name", "own"}, {"password", "more than fifteen"}});  // clients keep 15
    EXPECT_EQ(talk.ask("get_wifi_net").at("mode"), "sta");
}

}  // namespace
}  // namespace zk::test
