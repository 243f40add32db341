// Configuration of the real-time stream.
#include <cstring>

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/connection.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/realtime.h"

using namespace zk;

namespace {

struct Custom {
    const char* key;
    int32_t RealtimePushConfig::*flag;
};

constexpr Custom kSetOrder[] = {{"joint_speed", &RealtimePushConfig::joint_speed},
                                {"lift_state", &RealtimePushConfig::lift_state},
                                {"expand_state", &RealtimePushConfig::expand_state},
                                {"arm_current_status", &RealtimePushConfig::arm_current_status},
                                {"hand", &RealtimePushConfig::hand},
                                {"aloha_state", &RealtimePushConfig::aloha_state}};

constexpr Custom kGetOrder[] = {{"expand_state", &RealtimePushConfig::expand_state},
                                {"joint_speed", &RealtimePushConfig::joint_speed},
                                {"lift_state", &RealtimePushConfig::lift_state},
                                {"arm_current_status", &RealtimePushConfig::arm_current_status},
                                {"hand", &RealtimePushConfig::hand},
                                {"aloha_state", &RealtimePushConfig::aloha_state}};

Request set_realtime_push(ArmSocket s, const RealtimePushConfig& config) {
    Request request(s, "set_realtime_push");
    if (config.cycle > 0) request.number("cycle", config.cycle);
    request.boolean("enable", config.enable);
    if (config.port > 0) request.number("port", config.port);
    if (read(Curr_Senser_Type) != 0 && config.force_coordinate >= 0)
        request.number("force_coordinate", config.force_coordinate);
    const size_t length = strnlen(config.ip, sizeof config.ip);
    if (length >= 7 && length <= 15) request.text("ip", config.ip);
    request.object("custom", [&](Object& custom) {
        for (const Custom& item : kSetOrder) {
            if (config.*item.flag >= 0) custom.boolean(item.key, config.*item.flag != 0);
        }
    });
    return request;
}

}  // namespace

AckReply Set_Realtime_Push_Cmd[ZK_SLOTS];
ZK_API int Set_Realtime_Push(ArmSocket s, RealtimePushConfig config) {
    return guarded(Set_Realtime_Push_Block, s, config);
}
ZK_API int Set_Realtime_Push_Block(ArmSocket s, RealtimePushConfig config) {
    return set(set_realtime_push(s, config), Set_Realtime_Push_Cmd);
}
ZK_API int Parser_Set_Realtime_Push(const char* text) { return acknowledgement(text, "state"); }

RealtimePushReply Get_Realtime_Push_Cmd[ZK_SLOTS];
ZK_API int Get_Realtime_Push(ArmSocket s, RealtimePushConfig* config) {
    return checked(Get_Realtime_Push_Block, s, config);
}
ZK_API int Get_Realtime_Push_Block(ArmSocket s, RealtimePushConfig* config) {
    return query({s, "get_realtime_push"}, Get_Realtime_Push_Cmd,
                 [&](const RealtimePushReply& reply) { *config = reply.config; }, {.wipes_first = true});
}
ZK_API int Parser_Get_Realtime_Push(const char* text, RealtimePushConfig* config) {
    Reply reply(text);
    if (const Item cycle = reply.number(reply.root(), "cycle")) config->cycle = cycle.integer();
    if (const Item enable = reply.boolean(reply.root(), "enable")) config->enable = enable.is_true();
    if (const Item port = reply.number(reply.root(), "port")) config->port = port.integer();
    if (!reply.good()) return reply.status();
    const Item coordinate = reply.find("force_coordinate");
    config->force_coordinate = -1;
    if (coordinate && reply.require(coordinate.is_number(), ZK_WRONG_TYPE))
        config->force_coordinate = coordinate.integer();
    copy_text(reply.text(reply.root(), "ip"), "ip", config->ip, sizeof config->ip);
    const Item custom = reply.object(reply.root(), "custom");
    for (const Custom& item : kGetOrder) {
        if (const Item flag = reply.boolean(custom, item.key)) config->*item.flag = flag.is_true();
    }
    return reply.status();
}
