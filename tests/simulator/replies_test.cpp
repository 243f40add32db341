// Replies that no command of the library reads. coverage_test.cpp proves all others.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "simulator/talk.h"
#include "support/paths.h"
#include "zk/mailboxes.h"

namespace zk::test {
namespace {

struct ReplyRow {
    std::string command;
    Json keys;
    int code;         // of its literal; 0 for none
    std::string key;  // in the reply
    Json::value_t type = Json::value_t::boolean;
};

const ReplyRow kReplies[] = {
    {"start_calibrate", {}, 9, "calibrate_state"},
    {"stop_calibrate", {}, 10, "calibrate_state"},
    {"get_calibrate_state", {}, 11, "joint_state", Json::value_t::array},
    {"set_system_state_servo", {{"servo_state", 1}}, 36, "servo_state"},
    {"timer", {{"wait_time", 1}}, 77, "wait_time"},
    {"set_joint_step", {{"joint_step", {1, 10}}, {"v", 1}}, 82, "joint_step"},
    {"set_pos_step", {{"step_type", "z_step"}, {"step", -1}, {"v", 1}}, 83, "pos_step"},
    {"set_ort_step", {{"step_type", "rz_step"}, {"step", 1}, {"v", 1}}, 84, "ort_step"},
    {"get_arm_hardware_version", {}, 89, "version", Json::value_t::string},
    {"get_log_file", {}, 91, "set_state"},
    {"set_PWM", {{"PWM_Frq", 1000}, {"PWM_Dpulse", 50}}, 132, "set_state"},
    {"get_IO_state", {{"IO_Num", 1}}, 105, "IO_Mode", Json::value_t::number_unsigned},
    {"set_IO_mode", {{"IO_Num", 1}, {"IO_mode", 1}}, 212, "set_state"},
    {"popup", {{"popup_result", true}}, 197, "popup_result"},
    {"online_next", {}, 184, "state"},
    {"set_lift_version", {{"lift_version", 1}}, 148, "lift_version"},  // its literal contains that of another command
    {"set_sale_version", {{"sale_version", 1}}, 192, "sale_version"},
    {"get_tool_hardware_version", {}, 193, "version", Json::value_t::number_unsigned},
    // These contain the literal of a streamed point.
    {"add_waypoint", {{"joint", {0, 0, 0, 0, 0, 0}}}, 231, "waypoint_state"},
    {"start_waypoint", {{"frequency", 50}}, 231, "waypoint_state"},
    {"stop_waypoint", {}, 231, "waypoint_state"},
    {"clear_waypoint", {}, 231, "waypoint_state"},
    {"zk_sim_stream", {}, 0, "received", Json::value_t::number_unsigned},
    {"zk_sim_files", {}, 0, "files", Json::value_t::array},
    {"zk_sim_speed", {{"speed", 1}}, 0, "done"},
    {"zk_sim_time", {}, 0, "time", Json::value_t::number_unsigned},
    {"zk_sim_hand", {{"seconds", 1}, {"joint", {0, 0, 0, 0, 0, 0}}}, 0, "done"},
};

TEST(Replies, ThatNoCommandReadsHaveTheirLiteralAndKey) {
    Talk talk({"--quiet"});
    for (const auto& [command, keys, code, key, type] : kReplies) {
        talk.send(command, keys.is_null() ? Json::object() : keys);
        std::string reply;
        do {
            reply = talk.client.read_line();
        } while (Get_Json_KeyCode(reply.c_str()) == 64);  // the arrival of a step
        EXPECT_EQ(Get_Json_KeyCode(reply.c_str()), code) << reply;
        EXPECT_EQ(Json::parse(reply).value(key, Json()).type(), type) << reply;
    }
}

TEST(Replies, EveryCommandIsOnTheProtocolPage) {
    std::ostringstream page;
    page << std::ifstream(std::string(kSourceFolder) + "/docs/wire-protocol.md").rdbuf();
    std::istringstream commands(run_simulator("--commands").output);
    for (std::string command; std::getline(commands, command);) {
        const std::string name = command.substr(0, command.find(' '));  // one is also known with a trailing blank
        const bool own = name.rfind("zk_sim_", 0) == 0;
        EXPECT_TRUE(own || page.str().find('`' + name + '`') != std::string::npos) << name;
    }
}

TEST(Replies, SettingsWithoutAnAnswerTakeEffect) {
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
