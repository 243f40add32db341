// System and network: every command on the wire, its guards, and its parsers.
#include "zk/replies/system.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

const char* const kSoftwareInfo =
    R"({"state":"arm_software_info","Product_version":"ZK65-6F","algorithm_info":{"version":"1.4.8"},)"
    R"("ctrl_info":{"build_time":"2024/05/17 10:12:13","version":"V1.6.5"},"dynamic_info":{"model_version":"2"},)"
    R"("plan_info":{"build_time":"2024/05/17 10:14:15","version":"V1.6.6"}})";
const char* const kSoftwareInfoOutputs = "ZK65-6F, 1.4.8, 2024/05/17 10:12:13, V1.6.5, 2, 2024/05/17 10:14:15, V1.6.6";
const char* const kVersions =
    R"({"state":"arm_software_version","Plan_version":1048576,"Ctrl_version":43981,"Real-time_Kernal1":0,)"
    R"("Real-time_Kernal2":-1,"Product_version":"ZK65-B"})";
const char* const kWifi =
    R"({"state":"get_wifi_net","channel":6,"ip":"192.168.10.18","mac":"02:00:00:00:00:18","mask":"255.255.255.0",)"
    R"("mode":"sta","password":"secret","ssid":"hall"})";
const char* const kWifiOutputs = "6, 192.168.10.18, 02:00:00:00:00:18, 255.255.255.0, sta, secret, hall";

const char* const kSetMode = R"({"command": "set_arm_run_mode", "mode": -1})";
const char* const kModeSet = R"({"command":"set_arm_run_mode","mode":true})";
const char* const kGetMode = "get_arm_run_mode";
const char* const kMode = R"({"state":"get_arm_run_mode","mode":1})";

const Reading kProductOptional{{}, {{"/Product_version", {0}}}};

// Versions without a buffer for the product.
const auto kWithoutProduct = [](ArmSocket s, std::string& outputs) {
    const auto call = [](ArmSocket arm, char* plan, char* ctrl, char* kernel1, char* kernel2) {
        return Get_Arm_Software_Version(arm, plan, ctrl, kernel1, kernel2, nullptr);
    };
    return with_outputs<char, char, char, char>(outputs, call, s);
};

const std::vector<CommandCase> kSystemRows = {
    // 64 is off.
    SETTER(Set_Arm_Power, Set_Arm_Power_Cmd, R"({"command": "set_arm_power", "arm_power": 64})", "arm_power", 0),
    queued("On_" CALL(Set_Arm_Power, (s, 200, false)), R"({"command": "set_arm_power", "arm_power": 1})"),
    QUERY(Get_Arm_Power_State, Get_Arm_Power_State_Cmd, "get_arm_power_state",
          R"({"state":"arm_power_state","power_state":1})", "1"),
    SETTER(Clear_System_Err, Clear_System_Err_Cmd, "clear_system_err", "clear_state"),
    QUERY(Get_Controller_State, Get_Controller_State_Cmd, "get_controller_state",
          R"({"state":"controller_state","voltage":24001,"current":1200,"temperature":-38000,"err_flag":65537})",
          "24.001; 1.2; -38; 1", .setting_the_count()),

    no_reply(ASK(Get_Arm_Hardware_Version), "get_arm_hardware_version",
             R"({"state":"arm_hardware_version","version":"1.0"})"),
    no_reply(ASK(Get_Arm_Hardware_Version_Block), "get_arm_hardware_version",
             R"({"state":"arm_hardware_version","version":"1.0"})"),
    answered(ASK(Get_Arm_Software_Version), Get_Arm_Software_Version_Cmd, "get_arm_software_version", kVersions,
             "100000; ABCD; 0; FFFFFFFF; ZK65-B")
        .reads(kProductOptional),
    answered("WithoutProduct_Get_Arm_Software_Version", kWithoutProduct, Get_Arm_Software_Version_Cmd,
             "get_arm_software_version", kVersions, "100000; ABCD; 0; FFFFFFFF")
        .reads(kProductOptional),
    answered(ASK(Get_Arm_Software_Version_Block), Get_Arm_Software_Version_Cmd, "get_arm_software_version", kVersions,
             "100000; ABCD; 0; FFFFFFFF; ZK65-B"),
    QUERY(Get_Arm_Software_Info, Get_Arm_Software_Info_Cmd, "get_arm_software_info", kSoftwareInfo,
          kSoftwareInfoOutputs, .wiping().with_the_status_of_another()),
    QUERY(Get_Tool_Software_Version, Get_Tool_SoftWare_Version_Cmd, "get_tool_software_version",
          R"({"state":"tool_software_version","version":256})", "256"),

    NO_REPLY(Get_Log_File, "get_log_file", "set_state"),
    QUERY(Get_System_Runtime, Get_System_Runtime_Cmd, "get_system_runtime",
          R"({"state":"get_system_runtime","day":1,"hour":2,"min":3,"sec":4})", "1; 2; 3; 4"),
    SETTER(Clear_System_Runtime, Clear_System_Runtime_Cmd, "clear_system_runtime", "clear_state"),
    answered(ASK(Get_Joint_Odom), Get_Joint_Odom_Cmd, "get_joint_odom",
             R"({"state":"get_joint_odom","odom":[100,2,3,4,5,-6]})", "100 2 3 4 5 -6")
        .reads({{9, 11, 0}}),
    answered(ASK(Get_Joint_Odom_Block), Get_Joint_Odom_Cmd, "get_joint_odom",
             R"({"state":"get_joint_odom","odom":[100,2,3,4,5,6,7]})", "100 2 3 4 5 6 7")
        .on(75),
    answered("WithoutNumbers_" ASK(Get_Joint_Odom), Get_Joint_Odom_Cmd, "get_joint_odom",
             R"({"state":"get_joint_odom","sys_state":"error"})", ""),
    SETTER(Clear_Joint_Odom, Clear_Joint_Odom_Cmd, "clear_joint_odom", "clear_state"),

    queued(CALL(Set_High_Speed_Eth, (s, 1, false)), R"({"command": "set_high_speed_eth", "mode": 1})"),
    acknowledged(CALL(Set_High_Speed_Eth_Block, (s, 255)), Set_High_Speed_Eth_Cmd,
                 R"({"command": "set_high_speed_eth", "mode": 255})", "set_state"),
    queued(CALL(Set_High_Speed_Eth_NonBlock, (s, 0)), R"({"command": "set_high_speed_eth", "mode": 0})"),
    WAITING(Set_High_Ethernet, Set_High_Ethernet_Cmd,
            R"({"command": "set_high_ethernet", "ip": "192.168.1.18", "mask": "255.255.255.0", )"
            R"("gateway": "192.168.1.1"})",
            R"({"command":"set_high_ethernet","state":true})", "192.168.1.18", "255.255.255.0", "192.168.1.1"),
    QUERY(Get_High_Ethernet, Get_High_Ethernet_Cmd, "get_high_ethernet",
          R"({"state":"get_high_ethernet","ip":"192.168.1.18","mask":"255.255.255.0","gateway":"192.168.1.1",)"
          R"("mac":"02:00:00:00:00:18"})",
          "192.168.1.18; 255.255.255.0; 192.168.1.1; 02:00:00:00:00:18"),
    QUERY(Get_Wired_Net, Get_Wired_Net_Cmd, "get_wired_net",
          R"({"state":"get_wired_net","ip":"192.168.1.18","mask":"255.255.255.0","mac":"02:00:00:00:00:18"})",
          "192.168.1.18; 255.255.255.0; 02:00:00:00:00:18", .wiping()),
    QUERY(Get_Wifi_Net, Get_Wifi_Net_Cmd, "get_wifi_net", kWifi, kWifiOutputs, .wiping()),
    WAITING(Set_NetIP, Set_NetIP_Cmd, R"({"command": "set_NetIP", "ip": "192.168.1.19"})", "status", "192.168.1.19"),
    WAITING(Set_Net_Default, Set_Net_Default_Cmd, "set_net_default", "net_default_state"),
    // The same request under other names, whose mailbox nothing feeds.
    no_reply(CALL(Set_Controller_ResetIP_NC_E, (s)), "set_net_default", "net_default_state"),
    no_reply(CALL(Set_Controller_ResetIP_Block_NC_E, (s)), "set_net_default", "net_default_state"),
    WAITING(Save_Device_Info_All, Save_Device_Info_All_Cmd, "save_device_info_all", "model"),
    QUERY(Get_Controller_RS485_Mode, Get_Controller_RS485_Cmd, "get_controller_RS485_mode",
          R"({"state":"get_controller_RS485_mode","controller_RS485_mode":1,"baudrate":115200,"modbus_timeout":10})",
          "1; 115200; 10"),
    QUERY(Get_Tool_RS485_Mode, Get_Tool_RS485_Cmd, "get_tool_RS485_mode",
          R"({"state":"get_tool_RS485_mode","tool_RS485_mode":0,"baudrate":9600,"modbus_timeout":1})", "0; 9600; 1"),
    acknowledged(CALL(Set_Arm_Run_Mode, (s, -1)), of_any_type(Set_Arm_Run_Mode_NC_Cmd), kSetMode, kModeSet),
    acknowledged(CALL(Set_Arm_Run_Mode_Block_NC_E, (s, -1)), of_any_type(Set_Arm_Run_Mode_NC_Cmd), kSetMode, kModeSet),
    answered(ASK(Get_Arm_Run_Mode), Get_Arm_Run_Mode_NC_Cmd, kGetMode, kMode, "1").reads({{9, 8}}),
    answered(ASK(Get_Arm_Run_Mode_Block_NC_E), Get_Arm_Run_Mode_NC_Cmd, kGetMode, kMode, "1"),

    // Never answered, blocking by name only.
    queued(CALL(Set_WiFi_AP_Data, (s, "arm \"1\"", "secret")),
           R"({"command": "set_wifi_ap", "wifi_name": "arm \"1\"", "password": "secret"})"),
    queued(CALL(Set_WiFi_AP_Data_Blcok, (s, "", "")), R"({"command": "set_wifi_ap", "wifi_name": "", "password": ""})"),
    queued(CALL(Set_WiFI_STA_Data, (s, "hall", "secret")),
           R"({"command": "set_wifi_sta", "router_name": "hall", "password": "secret"})"),
    queued(CALL(Set_WiFI_STA_Data_Block, (s, "hall", "secret")),
           R"({"command": "set_wifi_sta", "router_name": "hall", "password": "secret"})"),
    queued(CALL(Set_USB_Data, (s, 921600)), R"({"command": "set_usb", "baudrate": 921600})"),
    queued(CALL(Set_USB_Data_Block, (s, -1)), R"({"command": "set_usb", "baudrate": -1})"),
    queued(CALL(Set_RS485, (s, 115200)), R"({"command": "set_RS485", "baudrate": 115200})"),
    queued(CALL(Set_RS485_Block, (s, 115200)), R"({"command": "set_RS485", "baudrate": 115200})"),
    queued(CALL(Set_Ethernet, (s)), "set_ethernet"),
    queued(CALL(Set_Ethernet_Block, (s)), "set_ethernet"),
};

ZK_WIRE_TESTS(System, "system.h", "System and network", kSystemRows)

TEST(SystemGuards, NonBlockingFormsNeedNoConnection) {
    ZK_API_Init(65, nullptr);
    EXPECT_EQ(Set_RS485(77, 9600), 0);
    EXPECT_EQ(Set_Ethernet(-1), 0);
    EXPECT_EQ(Clear_System_Err(77, true), 5);
}

// The record of the first connection is wiped before the status is read: there a broken reply returns 0.
TEST(SoftwareInfo, FailsOnOtherConnectionsOnly) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket first = connect_arm(controller), second = connect_arm(controller);
    controller.answer("get_arm_software_info", R"({"state":"arm_software_info","Product_version":"ZK65-B"})");
    ArmSoftwareInfo info{};
    EXPECT_EQ(Get_Arm_Software_Info(first, &info), 0);
    EXPECT_STREQ(info.product_version, "ZK65-B");
    EXPECT_EQ(Get_Arm_Software_Info(second, &info), 9);
}

// A reply without numbers leaves the outputs unchanged, even after an earlier reply with numbers.
TEST(Counters, AreNotRepeatedWhenTheReplyHasNone) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    controller.answer_in_turn("get_system_runtime",
                              {R"({"state":"get_system_runtime","day":1,"hour":2,"min":3,"sec":4})",
                               R"({"state":"get_system_runtime","sys_state":"error"})"});
    int32_t day = 9, hour = 9, min = 9, sec = 9;
    EXPECT_EQ(Get_System_Runtime(arm, &day, &hour, &min, &sec), 0);
    day = hour = min = sec = 9;
    EXPECT_EQ(Get_System_Runtime(arm, &day, &hour, &min, &sec), 0);
    EXPECT_EQ(text_of({day, hour, min, sec}), "9 9 9 9");
}

// ---------------------------------------------------------------------------------------------------------- Parsers --

// Only false is a refusal.
TEST(SystemParsers, RunMode) {
    const Parse parse = [](ArmSocket, const char* text, std::string&) { return Parser_Set_Arm_Run_Mode_NC_E(text); };
    expect_parsed(parse, {{R"({"mode":false})", 1, ""}, {R"({"mode":null})", 0, ""}, {R"({"state":true})", 8, ""}});
}

TEST(SystemParsers, HardwareVersionDeliversNothing) {
    expect_parsed(parsing(Parser_Get_Arm_Hardware_Version),
                  {{R"({"version":"1.0"})", 0, ""}, {R"({"version":1})", 11, ""}, {R"({"state":"1.0"})", 9, ""}});
}

// The reply may hold a state instead of the numbers.
TEST(SystemParsers, Counters) {
    expect_parsed(
        parsing(Parser_Get_System_Runtime),
        {{R"({"sys_state":"error"})", 0, ""}, {R"({"sys_state":7,"day":1,"hour":2,"min":3,"sec":4})", 11, ""}});
    expect_parsed(parsing(Parser_Get_Joint_Odom), {{R"({"odom":[1,2,3,4,5,6,7,8,9,10]})", 0, "1 2 3 4 5 6 7 8"},
                                                   {R"({"sys_state":"error","odom":[1]})", 0, ""},
                                                   {R"({"sys_state":null,"odom":[1]})", 11, ""}});
}

// A text that does not fit its field, its end included, ends the process.
void expect_room(const Parse& parse, const std::string& before, const std::string& after, size_t size) {
    const auto status = [&](size_t length) {
        std::string outputs;
        return parse(-1, (before + std::string(length, 'x') + after).c_str(), outputs);
    };
    EXPECT_EQ(status(size - 1), 0) << before;
    EXPECT_DEATH(status(size), "takes " + std::to_string(size) + " bytes, its field holds") << before;
}

TEST(SystemParsers, TextsFitTheirFields) {
    const auto in = [](const std::string& text, const std::string& hole, const Parse& parse, size_t size) {
        const size_t at = text.find(hole);
        ASSERT_NE(at, std::string::npos) << hole;
        const size_t value = at + hole.size();
        expect_room(parse, text.substr(0, value), text.substr(text.find('"', value)), size);
    };
    const Parse info = parsing(Parser_Get_Arm_Software_Info), wifi = parsing(Parser_Get_Wifi_Net);
    in(kSoftwareInfo, R"("Product_version":")", info, 10);
    in(kSoftwareInfo, R"("algorithm_info":{"version":")", info, 20);
    in(kSoftwareInfo, R"("ctrl_info":{"build_time":")", info, 20);
    in(kSoftwareInfo, R"("2024/05/17 10:12:13","version":")", info, 10);
    in(kSoftwareInfo, R"("model_version":")", info, 5);
    in(kSoftwareInfo, R"("plan_info":{"build_time":")", info, 20);
    in(kSoftwareInfo, R"("2024/05/17 10:14:15","version":")", info, 10);
    in(kWifi, R"("ip":")", wifi, 16);
    in(kWifi, R"("mac":")", wifi, 18);
    in(kWifi, R"("mask":")", wifi, 16);
    in(kWifi, R"("mode":")", wifi, 5);
    in(kWifi, R"("password":")", wifi, 16);
    in(kWifi, R"("ssid":")", wifi, 33);
}

}  // namespace
