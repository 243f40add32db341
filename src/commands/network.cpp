// The network and the serial ports of the controller.
#include <cstring>

#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/system.h"

using namespace zk;

// Copies a text of a reply into a field of the record.
static void text_field(Reply& reply, const char* key, char* field, size_t size) {
    copy_text(reply.text(reply.root(), key), key, field, size);
}

// The interface takes a second to come up.
static Request high_speed(ArmSocket s, uint8_t mode) { return Request(s, "set_high_speed_eth").number("mode", mode); }
AckReply Set_High_Speed_Eth_Cmd[ZK_SLOTS];
ZK_API int Set_High_Speed_Eth(ArmSocket s, uint8_t mode, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (!block) return Set_High_Speed_Eth_NonBlock(s, mode);
    const Wait call(s);
    const int status = Set_High_Speed_Eth_Block(s, mode);
    const int ended = sleep_before(call, 1000);
    return status ? status : ended;
}
ZK_API int Set_High_Speed_Eth_Block(ArmSocket s, uint8_t mode) {
    return set(high_speed(s, mode), Set_High_Speed_Eth_Cmd);
}
ZK_API int Set_High_Speed_Eth_NonBlock(ArmSocket s, uint8_t mode) { return post(high_speed(s, mode)); }
ZK_API int Parser_Set_High_Speed_Eth(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_High_Speed_Eth);

AckReply Set_High_Ethernet_Cmd[ZK_SLOTS];
ZK_API int Set_High_Ethernet(ArmSocket s, const char* ip, const char* mask, const char* gateway) {
    return checked(Set_High_Ethernet_Block, s, ip, mask, gateway);
}
ZK_API int Set_High_Ethernet_Block(ArmSocket s, const char* ip, const char* mask, const char* gateway) {
    return set(Request(s, "set_high_ethernet").text("ip", ip).text("mask", mask).text("gateway", gateway),
               Set_High_Ethernet_Cmd);
}
ZK_API int Parser_Set_High_Ethernet(const char* text) { return acknowledgement(text, "state"); }

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
    text_field(reply, "ip", ip, sizeof(HighEthernetReply::ip));
    text_field(reply, "mask", mask, sizeof(HighEthernetReply::mask));
    text_field(reply, "gateway", gateway, sizeof(HighEthernetReply::gateway));
    text_field(reply, "mac", mac, sizeof(HighEthernetReply::mac));
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
    text_field(reply, "ip", ip, sizeof(WiredNetReply::ip));
    text_field(reply, "mask", mask, sizeof(WiredNetReply::mask));
    text_field(reply, "mac", mac, sizeof(WiredNetReply::mac));
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
    reply.take("channel", net->channel);
    text_field(reply, "ip", net->ip, sizeof net->ip);
    text_field(reply, "mac", net->mac, sizeof net->mac);
    text_field(reply, "mask", net->mask, sizeof net->mask);
    text_field(reply, "mode", net->mode, sizeof net->mode);
    text_field(reply, "password", net->password, sizeof net->password);
    text_field(reply, "ssid", net->ssid, sizeof net->ssid);
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

// The same request under another name. Nothing fills this mailbox, so it ends in 7.
AckReply Set_Controller_ResetIP_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Controller_ResetIP_NC_E(ArmSocket s) { return after_2_ms(Set_Controller_ResetIP_Block_NC_E, s); }
ZK_API int Set_Controller_ResetIP_Block_NC_E(ArmSocket s) {
    return set({s, "set_net_default"}, Set_Controller_ResetIP_NC_Cmd);
}

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
    reply.take(key, *mode);
    reply.take("baudrate", *baudrate);
    reply.take("modbus_timeout", *timeout);
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

// Requests without a reply; they block in name only.
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
