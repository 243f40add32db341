// Power, errors, versions, counters and the network.

#include "commands/commands.h"
#include "devices/modbus.h"
#include "motion/arm.h"
#include "wire/command_table.h"
#include "wire/memory.h"
#include "world/time.h"

namespace sim {
namespace {

// 0 and 64 both mean off: clients send 64.
bool set_arm_power(Arm& arm, const Call& call) {
    constexpr int kOff = 64;
    const int power = call.request.integer("arm_power");
    if (power != 0 && power != 1 && power != kOff) return false;
    return arm.set_power(power == 1);
}

Json controller_state(const Arm& arm, const Call&) {
    return {{"voltage", 24000}, {"current", 1200}, {"temperature", 38000}, {"err_flag", arm.system_error()}};
}

Json software_info(const Arm& arm, const Call&) {
    return {{"Product_version", arm.model().name},
            {"algorithm_info", {{"version", "1.0.0"}}},
            {"ctrl_info", {{"build_time", "2024/01/15 10:00:00"}, {"version", "V1.0.0"}}},
            {"dynamic_info", {{"model_version", "2"}}},
            {"plan_info", {{"build_time", "2024/01/15 10:00:00"}, {"version", "V1.0.0"}}}};
}

Json software_version(const Arm& arm, const Call&) {
    return {{"Plan_version", 0x100000},
            {"Ctrl_version", 0x100000},
            {"Real-time_Kernal1", 0x1000},
            {"Real-time_Kernal2", 0x1000},
            {"Product_version", arm.model().name}};
}

Json runtime(int64_t seconds) {
    return {{"day", seconds / 86400}, {"hour", seconds / 3600 % 24}, {"min", seconds / 60 % 60}, {"sec", seconds % 60}};
}

Json odometers(const Arm& arm, const Call&) {
    std::vector<int> degrees;
    for (const JointState& state : arm.states()) degrees.push_back(static_cast<int>(state.odometer));
    return {{"odom", degrees}};
}

void add_power_and_errors(CommandTable& table, Arm& arm) {
    table.set("set_arm_power", "arm_power", with(set_arm_power, arm));
    table.query("get_arm_power_state", "arm_power_state", [&arm](const Call&) {
        return Json{{"power_state", arm.powered() ? 1 : 0}};
    });
    table.set("clear_system_err", "clear_state", [&arm](const Call&) {
        arm.set_errors(0, 0);
        return !arm.emergency_stop_pressed();
    });
    table.query("get_controller_state", "controller_state", with(controller_state, arm));
}

void add_versions(CommandTable& table, const Arm& arm) {
    table.query("get_arm_software_info", "arm_software_info", with(software_info, arm));
    table.query("get_arm_software_version", "arm_software_version", with(software_version, arm));
    table.query("get_arm_hardware_version", "arm_hardware_version", [](const Call&) {
        return Json{{"version", "1.0"}};
    });
    table.query("get_tool_software_version", "tool_software_version", [](const Call&) {
        return Json{{"version", 0x100}};
    });
}

void add_counters(CommandTable& table, const SimulatedTime& time, Arm& arm) {
    const auto start = std::make_shared<int64_t>(0);  // milliseconds
    table.query("get_system_runtime", "get_system_runtime",
                [&time, start](const Call&) { return runtime((time.milliseconds - *start) / 1000); });
    table.set("clear_system_runtime", "clear_state", [&time, start](const Call&) {
        *start = time.milliseconds;
        return true;
    });
    table.query("get_joint_odom", "get_joint_odom", with(odometers, arm));
    table.set("clear_joint_odom", "clear_state", [&arm](const Call&) {
        arm.clear_odometers();
        return true;
    });
    table.set("get_log_file", "set_state", [](const Call&) { return true; });
}

// The network settings of clients, stored and returned. They do not change the host's interfaces.
struct Card {
    std::string ip, mac, gateway;
    std::string mask = "255.255.255.0";
};

struct Network {
    Card wired{"192.168.1.18", "02:00:00:00:00:18", "192.168.1.1"};
    Card high_speed{"192.168.2.18", "02:00:00:00:00:28", "192.168.2.1"};
    Card wifi{"192.168.3.18", "02:00:00:00:00:38", "192.168.3.1"};
    int wifi_channel = 0;
    std::string wifi_mode = "off";
    std::string ssid, password;
    int baudrate = 115200;
};

// Clients store such a text in 16 bytes.
std::string address(const Request& request, const char* key) { return request.text(key, 15); }

struct Text {
    const char* key;
    std::string& value;
    size_t most;  // bytes
};

std::vector<Text> texts_of(Network& net) {
    return {{"wired_ip", net.wired.ip, 15},
            {"high_speed_ip", net.high_speed.ip, 15},
            {"high_speed_mask", net.high_speed.mask, 15},
            {"high_speed_gateway", net.high_speed.gateway, 15},
            {"wifi_mode", net.wifi_mode, 15},
            {"ssid", net.ssid, 32},
            {"password", net.password, 15}};
}

Json saved_network(Network& net) {
    Json saved{{"wifi_channel", net.wifi_channel}, {"baudrate", net.baudrate}};
    for (const Text& text : texts_of(net)) saved[text.key] = text.value;
    return saved;
}

void load_network(Network& net, const Request& saved) {
    net.wifi_channel = saved.integer("wifi_channel");
    net.baudrate = saved.integer("baudrate", 1);
    for (const Text& text : texts_of(net)) text.value = saved.text(text.key, text.most);
}

void add_ethernet(CommandTable& table, const std::shared_ptr<Network>& net) {
    table.set("set_high_speed_eth", "set_state", [](const Call& call) {
        call.request.integer("mode", 0, 1);
        return true;
    });
    table.set("set_high_ethernet", "state", [net](const Call& call) {
        const std::string ip = address(call.request, "ip"), mask = address(call.request, "mask");
        net->high_speed.gateway = address(call.request, "gateway");
        net->high_speed.ip = ip;
        net->high_speed.mask = mask;
        return true;
    });
    table.query("get_high_ethernet", "get_high_ethernet", [net](const Call&) {
        const Card& card = net->high_speed;
        return Json{{"ip", card.ip}, {"mask", card.mask}, {"gateway", card.gateway}, {"mac", card.mac}};
    });
    table.query("get_wired_net", "get_wired_net", [net](const Call&) {
        return Json{{"ip", net->wired.ip}, {"mask", net->wired.mask}, {"mac", net->wired.mac}};
    });
    table.set("set_NetIP", "status", [net](const Call& call) {
        net->wired.ip = address(call.request, "ip");
        return true;
    });
    table.set("set_net_default", "net_default_state", [net](const Call&) {
        *net = {};
        return true;
    });
    table.set("save_device_info_all", "model", [](const Call&) { return true; });
}

void add_wireless_and_serial(CommandTable& table, const std::shared_ptr<Network>& net, ModbusMaster& modbus) {
    const auto set_wifi = [net](const Call& call, const char* name_key, const char* mode) {
        const std::string ssid = call.request.text(name_key, 32);
        net->password = call.request.text("password", 15);
        net->ssid = ssid;
        net->wifi_mode = mode;
        net->wifi_channel = 6;
    };
    table.order("set_wifi_ap", [set_wifi](const Call& call) { set_wifi(call, "wifi_name", "ap"); });
    table.order("set_wifi_sta", [set_wifi](const Call& call) { set_wifi(call, "router_name", "sta"); });
    table.query("get_wifi_net", "get_wifi_net", [net](const Call&) {
        return Json{{"channel", net->wifi_channel},
                    {"ip", net->wifi.ip},
                    {"mac", net->wifi.mac},
                    {"mask", net->wifi.mask},
                    {"mode", net->wifi_mode},
                    {"password", net->password},
                    {"ssid", net->ssid}};
    });
    table.order("set_usb", [](const Call& call) { call.request.integer("baudrate"); });
    table.order("set_RS485", [net](const Call& call) { net->baudrate = call.request.integer("baudrate", 1); });
    table.order("set_ethernet", [](const Call&) {});
    // Mode 1 is a Modbus master, with the baud rate of its port.
    const auto serial_mode = [net, &modbus](int number, const char* key) {
        const ModbusPort& port = modbus.port(number);
        return Json{{key, port.open ? 1 : 0},
                    {"baudrate", port.open ? port.baudrate : net->baudrate},
                    {"modbus_timeout", port.open ? port.timeout : 0}};
    };
    table.query("get_controller_RS485_mode", "get_controller_RS485_mode",
                [=](const Call&) { return serial_mode(ModbusMaster::ZK_K_CONTROLLER, "controller_RS485_mode"); });
    table.query("get_tool_RS485_mode", "get_tool_RS485_mode",
                [=](const Call&) { return serial_mode(ModbusMaster::ZK_K_TOOL, "tool_RS485_mode"); });
}

void add_run_mode(CommandTable& table) {
    const auto mode = std::make_shared<int>(1);
    table.set("set_arm_run_mode", "mode", [mode](const Call& call) {
        *mode = call.request.integer("mode", 0, 1);
        return true;
    });
    table.query("get_arm_run_mode", "get_arm_run_mode", [mode](const Call&) { return Json{{"mode", *mode}}; });
}

}  // namespace

void add_system_commands(CommandTable& table, Memory& memory, const SimulatedTime& time, Arm& arm,
                         ModbusMaster& modbus) {
    const auto net = std::make_shared<Network>();
    memory.keep(
        "network", [net] { return saved_network(*net); }, [net](const Request& saved) { load_network(*net, saved); });
    add_power_and_errors(table, arm);
    add_versions(table, arm);
    add_counters(table, time, arm);
    add_ethernet(table, net);
    add_wireless_and_serial(table, net, modbus);
    add_run_mode(table);
}

}  // namespace sim
