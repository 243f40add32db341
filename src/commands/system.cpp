// System and network: power, errors, versions, counters, controller state, and the controller's network interfaces.
#include "zk/system.h"

#include <cstdio>
#include <cstring>

#include "commands/counters.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/arm_limits.h"
#include "zk/file_transfer.h"

using namespace zk;

namespace {

// A word about the system's state stands where the controller has no numbers: the reply ends well, with nothing stored.
bool tells_numbers(Reply& reply) {
    const Item state = reply.find("sys_state");
    if (state) reply.require(state.is_text(), ZK_WRONG_TYPE);
    return !state;
}

// A text of a reply into a field of the record, and from there, its length known to fit, to the caller.
template <size_t size>
void text_field(Reply& reply, const char* key, char (&field)[size]) {
    copy_text(reply.text(reply.root(), key), key, field, size);
}

}  // namespace

// 64 on the wire stands for off.
static Request power(ArmSocket s, uint8_t on) { return Request(s, "set_arm_power").number("arm_power", on ? 1 : 64); }
AckReply Set_Arm_Power_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Power(ArmSocket s, uint8_t on, bool block) {
    return guarded(block ? Set_Arm_Power_Block : Set_Arm_Power_NonBlock, s, on);
}
ZK_API int Set_Arm_Power_Block(ArmSocket s, uint8_t on) { return set(power(s, on), Set_Arm_Power_Cmd); }
ZK_API int Set_Arm_Power_NonBlock(ArmSocket s, uint8_t on) { return post(power(s, on)); }
ZK_API int Parser_Set_Arm_Power(const char* text) { return acknowledgement(text, "arm_power"); }

IntReply Get_Arm_Power_State_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Power_State(ArmSocket s, int32_t* on) { return checked(Get_Arm_Power_State_Block, s, on); }
ZK_API int Get_Arm_Power_State_Block(ArmSocket s, int32_t* on) {
    return query_value(s, "get_arm_power_state", Get_Arm_Power_State_Cmd, on);
}
ZK_API int Parser_Get_Arm_Power_State(const char* text, int32_t* on) { return integer_value(text, "power_state", on); }

AckReply Clear_System_Err_Cmd[ZK_SLOTS];
ZK_API int Clear_System_Err(ArmSocket s, bool block) {
    return guarded(block ? Clear_System_Err_Block : Clear_System_Err_NonBlock, s);
}
ZK_API int Clear_System_Err_Block(ArmSocket s) { return set({s, "clear_system_err"}, Clear_System_Err_Cmd); }
ZK_API int Clear_System_Err_NonBlock(ArmSocket s) { return post({s, "clear_system_err"}); }
ZK_API int Parser_Clear_System_Err(const char* text) { return acknowledgement(text, "clear_state"); }

ControllerStateReply Get_Controller_State_Cmd[ZK_SLOTS];
ZK_API int Get_Controller_State(ArmSocket s, float* voltage, float* current, float* temperature, uint16_t* err_flag) {
    return checked(Get_Controller_State_Block, s, voltage, current, temperature, err_flag);
}
ZK_API int Get_Controller_State_Block(ArmSocket s, float* voltage, float* current, float* temperature,
                                      uint16_t* err_flag) {
    return query({s, "get_controller_state"}, Get_Controller_State_Cmd, [&](const ControllerStateReply& reply) {
        *voltage = reply.voltage;
        *current = reply.current;
        *temperature = reply.temperature;
        *err_flag = static_cast<uint16_t>(reply.err_flag);
    });
}
ZK_API int Parser_Controller_State(const char* text, float* voltage, float* current, float* temperature,
                                   int32_t* err_flag) {
    Reply reply(text);
    const auto thousandth = [&](const char* key, float* value) {
        if (const Item number = reply.number(reply.root(), key))
            *value = static_cast<float>(number.integer()) / 1000.0f;
    };
    thousandth("voltage", voltage);
    thousandth("current", current);
    thousandth("temperature", temperature);
    if (const Item word = reply.number(reply.root(), "err_flag")) *err_flag = word.integer();
    return reply.status();
}

// The reply does not reach the pending list, and the parser delivers no text.
ZK_API int Get_Arm_Hardware_Version(ArmSocket s, char* version) {
    return settled_query(Get_Arm_Hardware_Version_Block, s, version);
}
ZK_API int Get_Arm_Hardware_Version_Block(ArmSocket s, char* version) {
    return pending({s, "get_arm_hardware_version"}, 89,
                   [&](const char* text) { return Parser_Get_Arm_Hardware_Version(text, version); });
}
ZK_API int Parser_Get_Arm_Hardware_Version(const char* text, char*) {
    Reply reply(text);
    reply.text(reply.root(), "version");
    return reply.status();
}

// The numbers are versions, told to the caller in hexadecimal digits.
SoftwareVersionReply Get_Arm_Software_Version_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Software_Version(ArmSocket s, char* plan, char* ctrl, char* kernel1, char* kernel2, char* product) {
    if (!sending_file() && any_null(plan, ctrl, kernel1, kernel2)) return ZK_BAD_ARGUMENT;
    return guarded(Get_Arm_Software_Version_Block, s, plan, ctrl, kernel1, kernel2, product);
}
ZK_API int Get_Arm_Software_Version_Block(ArmSocket s, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                          char* product) {
    return query({s, "get_arm_software_version"}, Get_Arm_Software_Version_Cmd, [&](const SoftwareVersionReply& reply) {
        std::strcpy(plan, reply.plan);
        std::strcpy(ctrl, reply.ctrl);
        std::strcpy(kernel1, reply.kernel1);
        std::strcpy(kernel2, reply.kernel2);
        if (product) std::strcpy(product, reply.product);
    });
}
ZK_API int Parser_Get_Arm_Software_Version(const char* text, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                           char* product) {
    Reply reply(text);
    const auto hexadecimal = [&](const char* key, char* field) {
        if (const Item number = reply.number(reply.root(), key)) {
            std::snprintf(field, sizeof(SoftwareVersionReply::plan), "%X", static_cast<unsigned>(number.integer()));
        }
    };
    hexadecimal("Plan_version", plan);
    hexadecimal("Ctrl_version", ctrl);
    hexadecimal("Real-time_Kernal1", kernel1);
    hexadecimal("Real-time_Kernal2", kernel2);
    if (const Item name = reply.find("Product_version");
        product && name && reply.require(name.is_text(), ZK_WRONG_TYPE)) {
        copy_text(name, "Product_version", product, sizeof(SoftwareVersionReply::product));
    }
    return reply.status();
}

ArmSoftwareInfoReply Get_Arm_Software_Info_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Software_Info(ArmSocket s, ArmSoftwareInfo* info) {
    return checked(Get_Arm_Software_Info_Block, s, info);
}
ZK_API int Get_Arm_Software_Info_Block(ArmSocket s, ArmSoftwareInfo* info) {
    return query({s, "get_arm_software_info"}, Get_Arm_Software_Info_Cmd,
                 [&](const ArmSoftwareInfoReply& reply) { *info = reply.info; },
                 {.wipes_first = true, .result_last = true});
}
ZK_API int Parser_Get_Arm_Software_Info(const char* text, ArmSoftwareInfo* info) {
    Reply reply(text);
    const auto take = [&](Item object, const char* key, auto& field) {
        copy_text(reply.text(object, key), key, field, sizeof field);
    };
    const auto part = [&](const char* key) { return reply.object(reply.root(), key); };
    take(reply.root(), "Product_version", info->product_version);
    take(part("algorithm_info"), "version", info->algorithm_version);
    take(part("ctrl_info"), "build_time", info->ctrl_build_time);
    take(part("ctrl_info"), "version", info->ctrl_version);
    take(part("dynamic_info"), "model_version", info->dynamic_model_version);
    take(part("plan_info"), "build_time", info->plan_build_time);
    take(part("plan_info"), "version", info->plan_version);
    return reply.status();
}

IntReply Get_Tool_SoftWare_Version_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_Software_Version(ArmSocket s, int32_t* version) {
    return checked(Get_Tool_Software_Version_Block, s, version);
}
ZK_API int Get_Tool_Software_Version_Block(ArmSocket s, int32_t* version) {
    return query_value(s, "get_tool_software_version", Get_Tool_SoftWare_Version_Cmd, version);
}
ZK_API int Parser_Get_Tool_Software_Version(const char* text, int32_t* version) {
    return integer_value(text, "version", version);
}

// The reply does not reach the pending list: the blocking form ends in 7.
ZK_API int Get_Log_File(ArmSocket s, bool block) {
    return settled(block, Get_Log_File_Block, Get_Log_File_NonBlock, s);
}
ZK_API int Get_Log_File_Block(ArmSocket s) { return pending({s, "get_log_file"}, 91, Parser_Set_Hand); }
ZK_API int Get_Log_File_NonBlock(ArmSocket s) { return post({s, "get_log_file"}); }

SystemRuntimeReply Get_System_Runtime_Cmd[ZK_SLOTS];
ZK_API int Get_System_Runtime(ArmSocket s, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    return checked(Get_System_Runtime_Block, s, day, hour, min, sec);
}
ZK_API int Get_System_Runtime_Block(ArmSocket s, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    return query({s, "get_system_runtime"}, Get_System_Runtime_Cmd, [&](const SystemRuntimeReply& reply) {
        if (!reply.told) return;
        *day = reply.day;
        *hour = reply.hour;
        *min = reply.min;
        *sec = reply.sec;
    });
}
ZK_API int Parser_Get_System_Runtime(const char* text, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    int32_t told;
    return read_system_runtime(text, &told, day, hour, min, sec);
}
int zk::read_system_runtime(const char* text, int32_t* told, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    Reply reply(text);
    *told = tells_numbers(reply);
    if (!*told) return reply.status();
    const auto take = [&](const char* key, int32_t* value) {
        if (const Item number = reply.number(reply.root(), key)) *value = number.integer();
    };
    take("day", day);
    take("hour", hour);
    take("min", min);
    take("sec", sec);
    return reply.status();
}

AckReply Clear_System_Runtime_Cmd[ZK_SLOTS];
ZK_API int Clear_System_Runtime(ArmSocket s, bool block) {
    return guarded(block ? Clear_System_Runtime_Block : Clear_System_Runtime_NonBlock, s);
}
ZK_API int Clear_System_Runtime_Block(ArmSocket s) {
    return set({s, "clear_system_runtime"}, Clear_System_Runtime_Cmd);
}
ZK_API int Clear_System_Runtime_NonBlock(ArmSocket s) { return post({s, "clear_system_runtime"}); }

JointOdomReply Get_Joint_Odom_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Odom(ArmSocket s, float* odom) { return checked(Get_Joint_Odom_Block, s, odom); }
ZK_API int Get_Joint_Odom_Block(ArmSocket s, float* odom) {
    return query({s, "get_joint_odom"}, Get_Joint_Odom_Cmd, [&](const JointOdomReply& reply) {
        if (reply.told) copy_joints(s, reply.value, odom);
    });
}
ZK_API int Parser_Get_Joint_Odom(const char* text, float* odom) {
    int32_t told;
    return read_joint_odom(text, &told, odom);
}
int zk::read_joint_odom(const char* text, int32_t* told, float* odom) {
    Reply reply(text);
    *told = tells_numbers(reply);
    if (!*told) return reply.status();
    const Item array = reply.array(reply.root(), "odom");
    for (int i = 0; i < array.size() && i < 8; ++i) odom[i] = static_cast<float>(array[i].integer());
    return reply.status();
}

AckReply Clear_Joint_Odom_Cmd[ZK_SLOTS];
ZK_API int Clear_Joint_Odom(ArmSocket s, bool block) {
    return guarded(block ? Clear_Joint_Odom_Block : Clear_Joint_Odom_NonBlock, s);
}
ZK_API int Clear_Joint_Odom_Block(ArmSocket s) { return set({s, "clear_joint_odom"}, Clear_Joint_Odom_Cmd); }
ZK_API int Clear_Joint_Odom_NonBlock(ArmSocket s) { return post({s, "clear_joint_odom"}); }

// The interface takes a second to come up.
static Request high_speed(ArmSocket s, uint8_t mode) { return Request(s, "set_high_speed_eth").number("mode", mode); }
AckReply Set_High_Speed_Eth_Cmd[ZK_SLOTS];
ZK_API int Set_High_Speed_Eth(ArmSocket s, uint8_t mode, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (!block) return Set_High_Speed_Eth_NonBlock(s, mode);
    const int status = Set_High_Speed_Eth_Block(s, mode);
    sleep_cp(1000);
    return status;
}
ZK_API int Set_High_Speed_Eth_Block(ArmSocket s, uint8_t mode) {
    return set(high_speed(s, mode), Set_High_Speed_Eth_Cmd);
}
ZK_API int Set_High_Speed_Eth_NonBlock(ArmSocket s, uint8_t mode) { return post(high_speed(s, mode)); }
ZK_API int Parser_Set_High_Speed_Eth(const char* text) { return Parser_Set_DH_Data(text); }

AckReply Set_High_Ethernet_Cmd[ZK_SLOTS];
ZK_API int Set_High_Ethernet(ArmSocket s, const char* ip, const char* mask, const char* gateway) {
    return checked(Set_High_Ethernet_Block, s, ip, mask, gateway);
}
ZK_API int Set_High_Ethernet_Block(ArmSocket s, const char* ip, const char* mask, const char* gateway) {
    return set(Request(s, "set_high_ethernet").text("ip", ip).text("mask", mask).text("gateway", gateway),
               Set_High_Ethernet_Cmd);
}
ZK_API int Parser_Set_High_Ethernet(const char* text) { return Parser_Set_Online_Start(text); }

HighEthernetReply Get_High_Ethernet_Cmd[ZK_SLOTS];
ZK_API int Get_High_Ethernet(ArmSocket s, char* ip, char* mask, char* gateway, char* mac) {
    return checked(Get_High_Ethernet_Block, s, ip, mask, gateway, mac);
}
ZK_API int Get_High_Ethernet_Block(ArmSocket s, char* ip, char* mask, char* gateway, char* mac) {
    return query({s, "get_high_ethernet"}, Get_High_Ethernet_Cmd, [&](const HighEthernetReply& reply) {
        std::strcpy(ip, reply.ip);
        std::strcpy(mask, reply.mask);
        std::strcpy(gateway, reply.gateway);
        std::strcpy(mac, reply.mac);
    });
}
ZK_API int Parser_Get_High_Ethernet(const char* text, char* ip, char* mask, char* gateway, char* mac) {
    Reply reply(text);
    const auto take = [&](const char* key, char* field, size_t size) {
        copy_text(reply.text(reply.root(), key), key, field, size);
    };
    take("ip", ip, sizeof(HighEthernetReply::ip));
    take("mask", mask, sizeof(HighEthernetReply::mask));
    take("gateway", gateway, sizeof(HighEthernetReply::gateway));
    take("mac", mac, sizeof(HighEthernetReply::mac));
    return reply.status();
}

WiredNetReply Get_Wired_Net_Cmd[ZK_SLOTS];
ZK_API int Get_Wired_Net(ArmSocket s, char* ip, char* mask, char* mac) {
    return checked(Get_Wired_Net_Block, s, ip, mask, mac);
}
ZK_API int Get_Wired_Net_Block(ArmSocket s, char* ip, char* mask, char* mac) {
    const auto deliver = [&](const WiredNetReply& reply) {
        std::strcpy(ip, reply.ip);
        std::strcpy(mask, reply.mask);
        std::strcpy(mac, reply.mac);
    };
    return query({s, "get_wired_net"}, Get_Wired_Net_Cmd, deliver, {.wipes_first = true});
}
ZK_API int Parser_Get_Wired_Net(const char* text, char* ip, char* mask, char* mac) {
    Reply reply(text);
    const auto take = [&](const char* key, char* field, size_t size) {
        copy_text(reply.text(reply.root(), key), key, field, size);
    };
    take("ip", ip, sizeof(WiredNetReply::ip));
    take("mask", mask, sizeof(WiredNetReply::mask));
    take("mac", mac, sizeof(WiredNetReply::mac));
    return reply.status();
}

WifiNetReply Get_Wifi_Net_Cmd[ZK_SLOTS];
ZK_API int Get_Wifi_Net(ArmSocket s, WifiNet* net) { return checked(Get_Wifi_Net_Block, s, net); }
ZK_API int Get_Wifi_Net_Block(ArmSocket s, WifiNet* net) {
    return query({s, "get_wifi_net"}, Get_Wifi_Net_Cmd, [&](const WifiNetReply& reply) { *net = reply.net; },
                 {.wipes_first = true});
}
ZK_API int Parser_Get_Wifi_Net(const char* text, WifiNet* net) {
    Reply reply(text);
    if (const Item channel = reply.number(reply.root(), "channel")) net->channel = channel.integer();
    text_field(reply, "ip", net->ip);
    text_field(reply, "mac", net->mac);
    text_field(reply, "mask", net->mask);
    text_field(reply, "mode", net->mode);
    text_field(reply, "password", net->password);
    text_field(reply, "ssid", net->ssid);
    return reply.status();
}

AckReply Set_NetIP_Cmd[ZK_SLOTS];
ZK_API int Set_NetIP(ArmSocket s, const char* ip) { return checked(Set_NetIP_Block, s, ip); }
ZK_API int Set_NetIP_Block(ArmSocket s, const char* ip) {
    return set(Request(s, "set_NetIP").text("ip", ip), Set_NetIP_Cmd);
}
ZK_API int Parser_Set_NetIP(const char* text) { return acknowledgement(text, "status"); }

AckReply Set_Net_Default_Cmd[ZK_SLOTS];
ZK_API int Set_Net_Default(ArmSocket s) { return guarded(Set_Net_Default_Block, s); }
ZK_API int Set_Net_Default_Block(ArmSocket s) { return set({s, "set_net_default"}, Set_Net_Default_Cmd); }
ZK_API int Parser_Set_Net_Default_Cmd(const char* text) { return acknowledgement(text, "net_default_state"); }

// The same request, waiting where no reply is put: it ends in 7.
AckReply Set_Controller_ResetIP_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Controller_ResetIP_NC_E(ArmSocket s) { return briefly_settled(Set_Controller_ResetIP_Block_NC_E, s); }
ZK_API int Set_Controller_ResetIP_Block_NC_E(ArmSocket s) {
    return set({s, "set_net_default"}, Set_Controller_ResetIP_NC_Cmd);
}

AckReply Save_Device_Info_All_Cmd[ZK_SLOTS];
ZK_API int Save_Device_Info_All(ArmSocket s) { return guarded(Save_Device_Info_All_Block, s); }
ZK_API int Save_Device_Info_All_Block(ArmSocket s) {
    return set({s, "save_device_info_all"}, Save_Device_Info_All_Cmd);
}
ZK_API int Parser_Save_Device_Info_All(const char* text) { return acknowledgement(text, "model"); }

static int rs485_query(ArmSocket s, const char* command, Rs485Reply (&mailbox)[ZK_SLOTS], int32_t* mode,
                       int32_t* baudrate, int32_t* timeout) {
    return query({s, command}, mailbox, [&](const Rs485Reply& reply) {
        *mode = reply.mode;
        *baudrate = reply.baudrate;
        *timeout = reply.timeout;
    });
}
static int rs485_mode(const char* text, const char* key, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    Reply reply(text);
    const auto take = [&](const char* name, int32_t* value) {
        if (const Item number = reply.number(reply.root(), name)) *value = number.integer();
    };
    take(key, mode);
    take("baudrate", baudrate);
    take("modbus_timeout", timeout);
    return reply.status();
}

Rs485Reply Get_Controller_RS485_Cmd[ZK_SLOTS];
ZK_API int Get_Controller_RS485_Mode(ArmSocket s, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    return checked(Get_Controller_RS485_Mode_Block, s, mode, baudrate, timeout);
}
ZK_API int Get_Controller_RS485_Mode_Block(ArmSocket s, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    return rs485_query(s, "get_controller_RS485_mode", Get_Controller_RS485_Cmd, mode, baudrate, timeout);
}
ZK_API int Parser_Get_Controller_RS485_Mode(const char* text, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    return rs485_mode(text, "controller_RS485_mode", mode, baudrate, timeout);
}

Rs485Reply Get_Tool_RS485_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_RS485_Mode(ArmSocket s, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    return checked(Get_Tool_RS485_Mode_Block, s, mode, baudrate, timeout);
}
ZK_API int Get_Tool_RS485_Mode_Block(ArmSocket s, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    return rs485_query(s, "get_tool_RS485_mode", Get_Tool_RS485_Cmd, mode, baudrate, timeout);
}
ZK_API int Parser_Get_Tool_RS485_Mode(const char* text, int32_t* mode, int32_t* baudrate, int32_t* timeout) {
    return rs485_mode(text, "tool_RS485_mode", mode, baudrate, timeout);
}

AckReply Set_Arm_Run_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Run_Mode(ArmSocket s, int32_t mode) { return briefly_settled(Set_Arm_Run_Mode_Block_NC_E, s, mode); }
ZK_API int Set_Arm_Run_Mode_Block_NC_E(ArmSocket s, int32_t mode) {
    return set(Request(s, "set_arm_run_mode").number("mode", mode), Set_Arm_Run_Mode_NC_Cmd);
}
ZK_API int Parser_Set_Arm_Run_Mode_NC_E(const char* text) {  // only false is a refusal
    Reply reply(text);
    const Item mode = reply.find("mode");
    reply.require(bool(mode), ZK_NOT_BOOLEAN);
    reply.require(!mode.is_false(), ZK_REFUSED);
    return reply.status();
}

IntReply Get_Arm_Run_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Run_Mode(ArmSocket s, int32_t* mode) {
    return briefly_settled(Get_Arm_Run_Mode_Block_NC_E, s, mode);
}
ZK_API int Get_Arm_Run_Mode_Block_NC_E(ArmSocket s, int32_t* mode) {
    return query_value(s, "get_arm_run_mode", Get_Arm_Run_Mode_NC_Cmd, mode);
}
ZK_API int Parser_Get_Arm_Run_Mode_NC_E(const char* text, int32_t* mode) { return integer_value(text, "mode", mode); }

// Requests without a reply, blocking by name only.
ZK_API int Set_WiFi_AP_Data(ArmSocket s, const char* name, const char* password) {
    return checked(Set_WiFi_AP_Data_Blcok, s, name, password);
}
ZK_API int Set_WiFi_AP_Data_Blcok(ArmSocket s, const char* name, const char* password) {
    return post(Request(s, "set_wifi_ap").text("wifi_name", name).text("password", password));
}
ZK_API int Set_WiFI_STA_Data(ArmSocket s, const char* name, const char* password) {
    return checked(Set_WiFI_STA_Data_Block, s, name, password);
}
ZK_API int Set_WiFI_STA_Data_Block(ArmSocket s, const char* name, const char* password) {
    return post(Request(s, "set_wifi_sta").text("router_name", name).text("password", password));
}
ZK_API int Set_USB_Data(ArmSocket s, int32_t baudrate) { return guarded(Set_USB_Data_Block, s, baudrate); }
ZK_API int Set_USB_Data_Block(ArmSocket s, int32_t baudrate) {
    return post(Request(s, "set_usb").number("baudrate", baudrate));
}
ZK_API int Set_RS485(ArmSocket s, int32_t baudrate) { return guarded(Set_RS485_Block, s, baudrate); }
ZK_API int Set_RS485_Block(ArmSocket s, int32_t baudrate) {
    return post(Request(s, "set_RS485").number("baudrate", baudrate));
}
ZK_API int Set_Ethernet(ArmSocket s) { return guarded(Set_Ethernet_Block, s); }
ZK_API int Set_Ethernet_Block(ArmSocket s) { return post({s, "set_ethernet"}); }
