// Power, errors, versions, counters and the network.

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

// 0 and 64 both mean off: clients send 64.
bool set_arm_power(Call& call) {
    constexpr int kOff = 64;
    const int power = call.request.integer("arm_power");
    if (power != 0 && power != 1 && power != kOff) return false;
    call.controller.arm.set_power(power == 1);
    return true;
}

Json controller_state(Call& call) {
    return {{"voltage", 24000},
            {"current", 1200},
            {"temperature", 38000},
            {"err_flag", call.controller.arm.system_error()}};
}

Json software_info(Call& call) {
    return {{"Product_version", call.controller.arm.model().name},
            {"algorithm_info", {{"version", "1.0.0"}}},
            {"ctrl_info", {{"build_time", "2024/01/15 10:00:00"}, {"version", "V1.0.0"}}},
            {"dynamic_info", {{"model_version", "2"}}},
            {"plan_info", {{"build_time", "2024/01/15 10:00:00"}, {"version", "V1.0.0"}}}};
}

Json software_version(Call& call) {
    return {{"Plan_version", 0x100000},
            {"Ctrl_version", 0x100000},
            {"Real-time_Kernal1", 0x1000},
            {"Real-time_Kernal2", 0x1000},
            {"Product_version", call.controller.arm.model().name}};
}

Json runtime(Call& call) {
    const int64_t seconds = (call.controller.milliseconds() - call.controller.runtime_start) / 1000;
    return {{"day", seconds / 86400}, {"hour", seconds / 3600 % 24}, {"min", seconds / 60 % 60}, {"sec", seconds % 60}};
}

Json odometers(Call& call) {
    std::vector<int> degrees;
    for (const JointState& state : call.controller.arm.states()) degrees.push_back(static_cast<int>(state.odometer));
    return {{"odom", degrees}};
}

void add_power_and_errors(CommandTable& table) {
    table.set("set_arm_power", "arm_power", set_arm_power);
    table.query("get_arm_power_state", "arm_power_state", [](Call& call) {
        return Json{{"power_state", call.controller.arm.powered() ? 1 : 0}};
    });
    table.set("clear_system_err", "clear_state", [](Call& call) {
        call.controller.arm.set_errors(0, 0);
        return true;
    });
    table.query("get_controller_state", "controller_state", controller_state);
}

void add_versions(CommandTable& table) {
    table.query("get_arm_software_info", "arm_software_info", software_info);
    table.query("get_arm_software_version", "arm_software_version", software_version);
    table.query("get_arm_hardware_version", "arm_hardware_version", [](Call&) { return Json{{"version", "1.0"}}; });
    table.query("get_tool_software_version", "tool_software_version", [](Call&) { return Json{{"version", 0x100}}; });
}

void add_counters(CommandTable& table) {
    table.query("get_system_runtime", "get_system_runtime", runtime);
    table.set("clear_system_runtime", "clear_state", [](Call& call) {
        call.controller.runtime_start = call.controller.milliseconds();
        return true;
    });
    table.query("get_joint_odom", "get_joint_odom", odometers);
    table.set("clear_joint_odom", "clear_state", [](Call& call) {
        call.controller.arm.clear_odometers();
        return true;
    });
    table.set("get_log_file", "set_state", [](Call&) { return true; });
}

// The network settings of clients, stored and returned. They do not change the host's interfaces.
struct Network {
    std::string ip = "192.168.1.18";
    std::string mask = "255.255.255.0";
    std::string gateway = "192.168.1.1";
    std::string mac = "02:00:00:00:00:18";
    int wifi_channel = 0;
    std::string wifi_mode = "off";
    std::string ssid, password;
    int baudrate = 115200;
};

std::string short_text(const Request& request, const char* key, size_t most) {
    const std::string text = request.text(key);
    if (text.size() > most) throw BadRequest(request.command() + ": \"" + key + "\" is too long");
    return text;
}

// Clients store such a text in 16 bytes.
std::string address(const Request& request, const char* key) { return short_text(request, key, 15); }

void add_ethernet(CommandTable& table, const std::shared_ptr<Network>& net) {
    table.set("set_high_speed_eth", "set_state", [](Call& call) {
        call.request.integer("mode", 0, 1);
        return true;
    });
    table.set("set_high_ethernet", "state", [net](Call& call) {
        const std::string ip = address(call.request, "ip"), mask = address(call.request, "mask");
        net->gateway = address(call.request, "gateway");
        net->ip = ip;
        net->mask = mask;
        return true;
    });
    table.query("get_high_ethernet", "get_high_ethernet", [net](Call&) {
        return Json{{"ip", net->ip}, {"mask", net->mask}, {"gateway", net->gateway}, {"mac", net->mac}};
    });
    table.query("get_wired_net", "get_wired_net", [net](Call&) {
        return Json{{"ip", net->ip}, {"mask", net->mask}, {"mac", net->mac}};
    });
    table.set("set_NetIP", "status", [net](Call& call) {
        net->ip = address(call.request, "ip");
        return true;
    });
    table.set("set_net_default", "net_default_state", [net](Call&) {
        *net = {};
        return true;
    });
    table.set("save_device_info_all", "model", [](Call&) { return true; });
}

void add_wireless_and_serial(CommandTable& table, const std::shared_ptr<Network>& net) {
    const auto set_wifi = [net](Call& call, const char* name_key, const char* mode) {
        const std::string ssid = short_text(call.request, name_key, 32);
        net->password = short_text(call.request, "password", 15);
        net->ssid = ssid;
        net->wifi_mode = mode;
        net->wifi_channel = 6;
    };
    table.order("set_wifi_ap", [set_wifi](Call& call) { set_wifi(call, "wifi_name", "ap"); });
    table.order("set_wifi_sta", [set_wifi](Call& call) { set_wifi(call, "router_name", "sta"); });
    table.query("get_wifi_net", "get_wifi_net", [net](Call&) {
        return Json{{"channel", net->wifi_channel},
                    {"ip", net->ip},
                    {"mac", net->mac},
                    {"mask", net->mask},
                    {"mode", net->wifi_mode},
                    {"password", net->password},
                    {"ssid", net->ssid}};
    });
    table.order("set_usb", [](Call& call) { call.request.integer("baudrate"); });
    table.order("set_RS485", [net](Call& call) { net->baudrate = call.request.integer("baudrate", 1); });
    table.order("set_ethernet", [](Call&) {});
    // Mode 1 is a Modbus master, with the baud rate of its port.
    const auto serial_mode = [net](Call& call, int number, const char* key) {
        const ModbusPort& port = call.controller.modbus.port(number);
        return Json{{key, port.open ? 1 : 0},
                    {"baudrate", port.open ? port.baudrate : net->baudrate},
                    {"modbus_timeout", port.open ? port.timeout : 0}};
    };
    table.query("get_controller_RS485_mode", "get_controller_RS485_mode",
                [=](Call& call) { return serial_mode(call, ModbusMaster::ZK_K_CONTROLLER, "controller_RS485_mode"); });
    table.query("get_tool_RS485_mode", "get_tool_RS485_mode",
                [=](Call& call) { return serial_mode(call, ModbusMaster::ZK_K_TOOL, "tool_RS485_mode"); });
}

void add_run_mode(CommandTable& table) {
    const auto mode = std::make_shared<int>(1);
    table.set("set_arm_run_mode", "mode", [mode](Call& call) {
        *mode = call.request.integer("mode", 0, 1);
        return true;
    });
    table.query("get_arm_run_mode", "get_arm_run_mode", [mode](Call&) { return Json{{"mode", *mode}}; });
}

}  // namespace

void add_system_commands(CommandTable& table) {
    const auto net = std::make_shared<Network>();
    add_power_and_errors(table);
    add_versions(table);
    add_counters(table);
    add_ethernet(table, net);
    add_wireless_and_serial(table, net);
    add_run_mode(table);
}

}  // namespace sim
