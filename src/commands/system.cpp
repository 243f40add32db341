// System and network.
#include "zk/system.h"

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/arm_limits.h"
#include "zk/file_transfer.h"

using namespace zk;

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

AckReply Set_Arm_Power_Cmd[ZK_SLOTS];
AckReply Clear_System_Err_Cmd[ZK_SLOTS];
AckReply Clear_System_Runtime_Cmd[ZK_SLOTS];
AckReply Clear_Joint_Odom_Cmd[ZK_SLOTS];
AckReply Set_High_Speed_Eth_Cmd[ZK_SLOTS];
AckReply Set_High_Ethernet_Cmd[ZK_SLOTS];
AckReply Save_Device_Info_All_Cmd[ZK_SLOTS];
AckReply Set_NetIP_Cmd[ZK_SLOTS];
AckReply Set_Net_Default_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Arm_Power(const char* text) { return acknowledgement(text, "arm_power"); }
ZK_API int Parser_Clear_System_Err(const char* text) { return acknowledgement(text, "clear_state"); }
ZK_API int Parser_Set_High_Speed_Eth(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Set_High_Ethernet(const char* text) { return Parser_Set_Online_Start(text); }
ZK_API int Parser_Save_Device_Info_All(const char* text) { return acknowledgement(text, "model"); }
ZK_API int Parser_Set_NetIP(const char* text) { return acknowledgement(text, "status"); }
ZK_API int Parser_Set_Net_Default_Cmd(const char* text) { return acknowledgement(text, "net_default_state"); }
