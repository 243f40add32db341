// The system: power, errors, versions, counters, the controller's state. Its network is in network.cpp.
#include "zk/replies/system.h"

#include <cstdio>
#include <cstring>

#include "commands/counters.h"
#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/pending.h"

using namespace zk;

namespace {

// A reply with "sys_state" has no numbers: its status is 0, and nothing is stored.
bool has_numbers(Reply& reply) {
    const Item state = reply.find("sys_state");
    if (state) reply.require(state.is_text(), ZK_WRONG_TYPE);
    return !state;
}

}  // namespace

// On the wire 64 means off.
static Request power(ArmSocket s, uint8_t on) { return Request(s, "set_arm_power").number("arm_power", on ? 1 : 64); }
AckReply Set_Arm_Power_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Power(ArmSocket s, uint8_t on, bool block) {
    return guarded(block ? Set_Arm_Power_Block : Set_Arm_Power_NonBlock, s, on);
}
ZK_API int Set_Arm_Power_Block(ArmSocket s, uint8_t on) { return set(power(s, on), Set_Arm_Power_Cmd); }
ZK_API int Set_Arm_Power_NonBlock(ArmSocket s, uint8_t on) { return post(power(s, on)); }
ZK_API int Parser_Set_Arm_Power(const char* text) { return acknowledgement(text, "arm_power"); }
ZK_TWIN(Parser_Set_Arm_Power);

IntReply Get_Arm_Power_State_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Power_State(ArmSocket s, int32_t* on) { return checked(Get_Arm_Power_State_Block, s, on); }
ZK_API int Get_Arm_Power_State_Block(ArmSocket s, int32_t* on) {
    return query_value(s, "get_arm_power_state", Get_Arm_Power_State_Cmd, on);
}
ZK_API int Parser_Get_Arm_Power_State(const char* text, int32_t* on) { return integer_value(text, "power_state", on); }
ZK_TWIN(Parser_Get_Arm_Power_State);

AckReply Clear_System_Err_Cmd[ZK_SLOTS];
ZK_API int Clear_System_Err(ArmSocket s, bool block) {
    return guarded(block ? Clear_System_Err_Block : Clear_System_Err_NonBlock, s);
}
ZK_API int Clear_System_Err_Block(ArmSocket s) { return set({s, "clear_system_err"}, Clear_System_Err_Cmd); }
ZK_API int Clear_System_Err_NonBlock(ArmSocket s) { return post({s, "clear_system_err"}); }
ZK_API int Parser_Clear_System_Err(const char* text) { return acknowledgement(text, "clear_state"); }
ZK_TWIN(Parser_Clear_System_Err);

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
    reply.take("err_flag", *err_flag);
    return reply.status();
}
ZK_TWIN(Parser_Controller_State);

// The reply never reaches the pending list, and the parser delivers no text.
ZK_API int Get_Arm_Hardware_Version(ArmSocket s, char* version) {
    return query_after_20_ms(Get_Arm_Hardware_Version_Block, s, version);
}
ZK_API int Get_Arm_Hardware_Version_Block(ArmSocket s, char* version) {
    return pending({s, "get_arm_hardware_version"}, ZK_KEY_HARDWARE_VERSION,
                   [&](const char* text) { return Parser_Get_Arm_Hardware_Version(text, version); });
}
ZK_API int Parser_Get_Arm_Hardware_Version(const char* text, char*) {
    Reply reply(text);
    reply.text(reply.root(), "version");
    return reply.status();
}

// The versions are numbers; the caller gets them as hexadecimal digits.
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
ZK_TWIN(Parser_Get_Arm_Software_Version);

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
ZK_TWIN(Parser_Get_Tool_Software_Version);

// The reply never reaches the pending list, so the blocking form ends in 7.
ZK_API int Get_Log_File(ArmSocket s, bool block) {
    return after_20_ms(block, Get_Log_File_Block, Get_Log_File_NonBlock, s);
}
ZK_API int Get_Log_File_Block(ArmSocket s) { return pending({s, "get_log_file"}, ZK_KEY_LOG_FILE, Parser_Set_Hand); }
ZK_API int Get_Log_File_NonBlock(ArmSocket s) { return post({s, "get_log_file"}); }

SystemRuntimeReply Get_System_Runtime_Cmd[ZK_SLOTS];
ZK_API int Get_System_Runtime(ArmSocket s, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    return checked(Get_System_Runtime_Block, s, day, hour, min, sec);
}
ZK_API int Get_System_Runtime_Block(ArmSocket s, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    return query({s, "get_system_runtime"}, Get_System_Runtime_Cmd, [&](const SystemRuntimeReply& reply) {
        if (!reply.known) return;
        *day = reply.day;
        *hour = reply.hour;
        *min = reply.min;
        *sec = reply.sec;
    });
}
ZK_API int Parser_Get_System_Runtime(const char* text, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    int32_t known;
    return read_system_runtime(text, &known, day, hour, min, sec);
}
ZK_TWIN(Parser_Get_System_Runtime);
int zk::read_system_runtime(const char* text, int32_t* known, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    Reply reply(text);
    *known = has_numbers(reply);
    if (!*known) return reply.status();
    reply.take("day", *day);
    reply.take("hour", *hour);
    reply.take("min", *min);
    reply.take("sec", *sec);
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
        if (reply.known) copy_joints(s, reply.value, odom);
    });
}
ZK_API int Parser_Get_Joint_Odom(const char* text, float* odom) {
    int32_t known;
    return read_joint_odom(text, &known, odom);
}
ZK_TWIN(Parser_Get_Joint_Odom);
int zk::read_joint_odom(const char* text, int32_t* known, float* odom) {
    Reply reply(text);
    *known = has_numbers(reply);
    if (!*known) return reply.status();
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

AckReply Save_Device_Info_All_Cmd[ZK_SLOTS];
ZK_API int Save_Device_Info_All(ArmSocket s) { return guarded(Save_Device_Info_All_Block, s); }
ZK_API int Save_Device_Info_All_Block(ArmSocket s) {
    return set({s, "save_device_info_all"}, Save_Device_Info_All_Cmd);
}
ZK_API int Parser_Save_Device_Info_All(const char* text) { return acknowledgement(text, "model"); }

AckReply Set_Arm_Run_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Run_Mode(ArmSocket s, int32_t mode) { return after_2_ms(Set_Arm_Run_Mode_Block_NC_E, s, mode); }
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
ZK_API int Get_Arm_Run_Mode(ArmSocket s, int32_t* mode) { return after_2_ms(Get_Arm_Run_Mode_Block_NC_E, s, mode); }
ZK_API int Get_Arm_Run_Mode_Block_NC_E(ArmSocket s, int32_t* mode) {
    return query_value(s, "get_arm_run_mode", Get_Arm_Run_Mode_NC_Cmd, mode);
}
ZK_API int Parser_Get_Arm_Run_Mode_NC_E(const char* text, int32_t* mode) {
    return integer_value(text, "mode", mode, ZK_NOT_BOOLEAN);
}
