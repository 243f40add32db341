// Fences, walls, the envelope of a tool, and the check of the arm against itself.
#include "zk/replies/safety_geometry.h"

#include <algorithm>
#include <span>

#include "commands/fields.h"
#include "commands/name_list.h"
#include "connection/exchange.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/system.h"

using namespace zk;

namespace {

// A length of a record: metres in its field, thousandths under its key.
template <class Record>
struct Length {
    const char* key;
    float Record::*field;
};

constexpr Length<FenceConfig> kCuboidLengths[] = {
    {"x_min_limit", &FenceConfig::x_min_limit}, {"x_max_limit", &FenceConfig::x_max_limit},
    {"y_min_limit", &FenceConfig::y_min_limit}, {"y_max_limit", &FenceConfig::y_max_limit},
    {"z_min_limit", &FenceConfig::z_min_limit}, {"z_max_limit", &FenceConfig::z_max_limit}};
constexpr Length<FenceConfig> kPlaneLengths[] = {
    {"x1", &FenceConfig::x1}, {"y1", &FenceConfig::y1}, {"z1", &FenceConfig::z1},
    {"x2", &FenceConfig::x2}, {"y2", &FenceConfig::y2}, {"z2", &FenceConfig::z2},
    {"x3", &FenceConfig::x3}, {"y3", &FenceConfig::y3}, {"z3", &FenceConfig::z3}};
constexpr Length<FenceConfig> kSphereLengths[] = {
    {"radius", &FenceConfig::radius}, {"x", &FenceConfig::x}, {"y", &FenceConfig::y}, {"z", &FenceConfig::z}};
constexpr Length<ToolSphere> kToolSphere[] = {
    {"radius", &ToolSphere::radius}, {"x", &ToolSphere::x}, {"y", &ToolSphere::y}, {"z", &ToolSphere::z}};

std::span<const Length<FenceConfig>> lengths_of(int32_t form) {
    if (form == ZK_FENCE_CUBOID) return kCuboidLengths;
    if (form == ZK_FENCE_PLANE) return kPlaneLengths;
    if (form == ZK_FENCE_SPHERE) return kSphereLengths;
    return {};
}

template <class Fields, class Record>
Fields& put_lengths(Fields& fields, const Record& record, std::span<const Length<Record>> lengths) {
    for (const auto& [key, field] : lengths) fields.number(key, thousandths(record.*field));
    return fields;
}

template <class Record>
void read_lengths(Reply& reply, Item object, Record& record, std::span<const Length<Record>> lengths) {
    for (const auto& [key, field] : lengths) {
        if (const Item number = reply.number(object, key))
            record.*field = static_cast<float>(number.integer() / 1000.0);
    }
}

Request fence_request(ArmSocket s, const char* command, const FenceConfig& fence, bool named = false) {
    Request request(s, command);
    request.number("form", fence.form);
    if (named) request.text("form_name", ended(fence.form_name).c_str());
    return put_lengths(request, fence, lengths_of(fence.form));
}

// Reads a fence with a name. All keys of its form are required; the other lengths become zero.
void read_named_fence(Reply& reply, Item object, FenceConfig& fence) {
    if (!reply.good()) return;
    fence = {};
    reply.take(object, "form", fence.form);
    if (const Item name = reply.text(object, "form_name"))
        copy_name(name.text(), fence.form_name, sizeof fence.form_name);
    read_lengths(reply, object, fence, lengths_of(fence.form));
}

Request enable_request(ArmSocket s, const char* command, uint8_t enable, int32_t in_out_side,
                       int32_t effective_region) {
    return Request(s, command)
        .boolean("set_enable", enable != 0)
        .number("in_out_side", in_out_side)
        .number("effective_region", effective_region);
}

// An output with a null pointer is dropped.
template <class Value, class Out>
void copy_if_wanted(const Value& value, Out* out) {
    if (out) *out = static_cast<Out>(value);
}

int enable_query(ArmSocket s, const char* command, FenceEnableReply (&mailbox)[ZK_SLOTS], uint8_t* enable,
                 int32_t* in_out_side, int32_t* effective_region, const QueryForm& form = {}) {
    const auto deliver = [&](const FenceEnableReply& reply) {
        copy_if_wanted(reply.enable, enable);
        copy_if_wanted(reply.in_out_side, in_out_side);
        copy_if_wanted(reply.effective_region, effective_region);
    };
    return query({s, command}, mailbox, deliver, form);
}

int fence_query(const Request& request, FenceConfigReply (&mailbox)[ZK_SLOTS], FenceConfig* fence,
                const QueryForm& form = {}) {
    return query(
        request, mailbox, [&](const FenceConfigReply& reply) { copy_if_wanted(reply.fence, fence); }, form);
}

// The query of a list: its entries and their number.
template <class Record, class Entry>
int list_query(ArmSocket s, const char* command, Record (&mailbox)[ZK_SLOTS], int32_t Record::*received,
               Entry (Record::*entries)[ZK_FENCES], Entry* out, int32_t* count) {
    const auto deliver = [&](const Record& reply) {
        copy_if_wanted(reply.*received, count);
        if (out) std::copy_n(reply.*entries, reply.*received, out);
    };
    return query({s, command}, mailbox, deliver, {.wipes_first = true});
}

}  // namespace

AckReply Set_Electronic_Fence_Enable_Cmd[ZK_SLOTS];
ZK_API int Set_Electronic_Fence_Enable(ArmSocket s, uint8_t enable, int32_t in_out_side, int32_t effective_region) {
    return guarded(Set_Electronic_Fence_Enable_Block, s, enable, in_out_side, effective_region);
}
ZK_API int Set_Electronic_Fence_Enable_Block(ArmSocket s, uint8_t enable, int32_t in_out_side,
                                             int32_t effective_region) {
    return set(enable_request(s, "set_electronic_fence_enable", enable, in_out_side, effective_region),
               Set_Electronic_Fence_Enable_Cmd);
}
ZK_API int Parser_Set_Electronic_Fence_Enable(const char* text) { return acknowledgement(text, "set_state"); }

FenceEnableReply Get_Electronic_Fence_Enable_Cmd[ZK_SLOTS];
ZK_API int Get_Electronic_Fence_Enable(ArmSocket s, uint8_t* enable, int32_t* in_out_side, int32_t* effective_region) {
    return guarded(Get_Electronic_Fence_Enable_Block, s, enable, in_out_side, effective_region);
}
ZK_API int Get_Electronic_Fence_Enable_Block(ArmSocket s, uint8_t* enable, int32_t* in_out_side,
                                             int32_t* effective_region) {
    return enable_query(s, "get_electronic_fence_enable", Get_Electronic_Fence_Enable_Cmd, enable, in_out_side,
                        effective_region, {.wipes_first = true});
}
ZK_API int Parser_Get_Electronic_Fence_Enable(const char* text, int32_t* enable, int32_t* in_out_side,
                                              int32_t* effective_region) {
    Reply reply(text);
    if (const Item state = reply.boolean(reply.root(), "enable_state")) *enable = state.is_true();
    reply.take("effective_region", *effective_region);
    reply.take("in_out_side", *in_out_side);
    return reply.status();
}

AckReply Set_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Set_Electronic_Fence_Config(ArmSocket s, FenceConfig fence) {
    return guarded(Set_Electronic_Fence_Config_Block, s, fence);
}
ZK_API int Set_Electronic_Fence_Config_Block(ArmSocket s, FenceConfig fence) {
    return set(fence_request(s, "set_electronic_fence_config", fence), Set_Electronic_Fence_Config_Cmd);
}
ZK_API int Parser_Set_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "set_config"); }

FenceConfigReply Get_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Get_Electronic_Fence_Config(ArmSocket s, FenceConfig* fence) {
    return guarded(Get_Electronic_Fence_Config_Block, s, fence);
}
ZK_API int Get_Electronic_Fence_Config_Block(ArmSocket s, FenceConfig* fence) {
    return fence_query({s, "get_electronic_fence_config"}, Get_Electronic_Fence_Config_Cmd, fence,
                       {.wipes_first = true});
}
// Only the lengths of a cuboid are read.
ZK_API int Parser_Get_Electronic_Fence_Config(const char* text, FenceConfig* fence) {
    Reply reply(text);
    const Item form = reply.number(reply.root(), "form");
    if (!form) return reply.status();
    *fence = {};
    fence->form = form.integer();
    if (fence->form == ZK_FENCE_CUBOID) read_lengths<FenceConfig>(reply, reply.root(), *fence, kCuboidLengths);
    return reply.status();
}

AckReply Add_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Add_Electronic_Fence_Config(ArmSocket s, FenceConfig fence) {
    return guarded(Add_Electronic_Fence_Config_Block, s, fence);
}
ZK_API int Add_Electronic_Fence_Config_Block(ArmSocket s, FenceConfig fence) {
    return set(fence_request(s, "add_electronic_fence_config", fence, true), Add_Electronic_Fence_Config_Cmd);
}
ZK_API int Parser_Add_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "add_config"); }

AckReply Update_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Update_Electronic_Fence_Config(ArmSocket s, FenceConfig fence) {
    return guarded(Update_Electronic_Fence_Config_Block, s, fence);
}
ZK_API int Update_Electronic_Fence_Config_Block(ArmSocket s, FenceConfig fence) {
    return set(fence_request(s, "update_electronic_fence_config", fence, true), Update_Electronic_Fence_Config_Cmd);
}
ZK_API int Parser_Update_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "update_config"); }

AckReply Delete_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Delete_Electronic_Fence_Config(ArmSocket s, const char* name) {
    return guarded(Delete_Electronic_Fence_Config_Block, s, name);
}
ZK_API int Delete_Electronic_Fence_Config_Block(ArmSocket s, const char* name) {
    return set(Request(s, "delete_electronic_fence_config").text("form_name", name),
               Delete_Electronic_Fence_Config_Cmd);
}
ZK_API int Parser_delete_Electronic_Fence_Config(const char* text) { return acknowledgement(text, "delete_config"); }

FenceConfigReply Given_Electronic_Fence_Config_Cmd[ZK_SLOTS];
ZK_API int Given_Electronic_Fence_Config(ArmSocket s, const char* name, FenceConfig* fence) {
    return guarded(Given_Electronic_Fence_Config_Block, s, name, fence);
}
ZK_API int Given_Electronic_Fence_Config_Block(ArmSocket s, const char* name, FenceConfig* fence) {
    return fence_query(Request(s, "given_electronic_fence_config").text("form_name", name),
                       Given_Electronic_Fence_Config_Cmd, fence, {.wipes_first = true});
}
ZK_API int Parser_Given_Electronic_Fence_Config(const char* text, FenceConfig* fence) {
    Reply reply(text);
    if (const Item state = reply.find("given_state"))
        reply.require(false, state.is_false() ? ZK_REFUSED : ZK_WRONG_TYPE);
    read_named_fence(reply, reply.root(), *fence);
    return reply.status();
}

FenceNamesReply Get_Electronic_Fence_List_Name_Cmd[ZK_SLOTS];
ZK_API int Get_Electronic_Fence_List_Names(ArmSocket s, FenceName* names, int32_t* count) {
    return guarded(Get_Electronic_Fence_List_Names_Block, s, names, count);
}
ZK_API int Get_Electronic_Fence_List_Names_Block(ArmSocket s, FenceName* names, int32_t* count) {
    return list_query(s, "get_electronic_fence_list_names", Get_Electronic_Fence_List_Name_Cmd, &FenceNamesReply::names,
                      &FenceNamesReply::name, names, count);
}
ZK_API int Parser_Get_Electronic_Fence_List_Names(const char* text, FenceName* names, int32_t* count) {
    return name_list(text, "name_list", names, ZK_FENCES, count);
}

FenceListReply Get_Electronic_Fence_List_Info_Cmd[ZK_SLOTS];
ZK_API int Get_Electronic_Fence_List_Info(ArmSocket s, FenceConfig* fences, int32_t* count) {
    return guarded(Get_Electronic_Fence_List_Info_Block, s, fences, count);
}
ZK_API int Get_Electronic_Fence_List_Info_Block(ArmSocket s, FenceConfig* fences, int32_t* count) {
    return list_query(s, "get_electronic_fence_list_infos", Get_Electronic_Fence_List_Info_Cmd, &FenceListReply::fences,
                      &FenceListReply::fence, fences, count);
}
ZK_API int Parser_Get_Electronic_Fence_List_Info(const char* text, FenceConfig* fences, int32_t* count) {
    Reply reply(text);
    const Item list = reply.array(reply.root(), "info_list");
    if (!reply.good()) return reply.status();
    *count = 0;
    for (const Item fence : list) {
        if (*count == ZK_FENCES) break;
        read_named_fence(reply, fence, fences[*count]);
        if (!reply.good()) break;
        ++*count;
    }
    return reply.status();
}

AckReply Set_Virtual_Wall_Enable_Cmd[ZK_SLOTS];
ZK_API int Set_Virtual_Wall_Enable(ArmSocket s, uint8_t enable, int32_t in_out_side, int32_t effective_region) {
    return guarded(Set_Virtual_Wall_Enable_Block, s, enable, in_out_side, effective_region);
}
ZK_API int Set_Virtual_Wall_Enable_Block(ArmSocket s, uint8_t enable, int32_t in_out_side, int32_t effective_region) {
    return set(enable_request(s, "set_virtual_wall_enable", enable, in_out_side, effective_region),
               Set_Virtual_Wall_Enable_Cmd);
}

FenceEnableReply Get_Virtual_Wall_Enable_Cmd[ZK_SLOTS];
ZK_API int Get_Virtual_Wall_Enable(ArmSocket s, uint8_t* enable, int32_t* in_out_side, int32_t* effective_region) {
    return guarded(Get_Virtual_Wall_Enable_Block, s, enable, in_out_side, effective_region);
}
ZK_API int Get_Virtual_Wall_Enable_Block(ArmSocket s, uint8_t* enable, int32_t* in_out_side,
                                         int32_t* effective_region) {
    return enable_query(s, "get_virtual_wall_enable", Get_Virtual_Wall_Enable_Cmd, enable, in_out_side,
                        effective_region);
}

// A plane is no wall: only its form is sent.
AckReply Set_Virtual_Wall_Config_Cmd[ZK_SLOTS];
ZK_API int Set_Virtual_Wall_Config(ArmSocket s, FenceConfig wall) {
    return guarded(Set_Virtual_Wall_Config_Block, s, wall);
}
ZK_API int Set_Virtual_Wall_Config_Block(ArmSocket s, FenceConfig wall) {
    return set(wall.form == ZK_FENCE_PLANE ? Request(s, "set_virtual_wall_config").number("form", wall.form)
                                           : fence_request(s, "set_virtual_wall_config", wall),
               Set_Virtual_Wall_Config_Cmd);
}
ZK_API int Parser_Set_Config(const char* text) { return acknowledgement(text, "set_config"); }

FenceConfigReply Get_Virtual_Wall_Config_Cmd[ZK_SLOTS];
ZK_API int Get_Virtual_Wall_Config(ArmSocket s, FenceConfig* wall) {
    return guarded(Get_Virtual_Wall_Config_Block, s, wall);
}
ZK_API int Get_Virtual_Wall_Config_Block(ArmSocket s, FenceConfig* wall) {
    return fence_query({s, "get_virtual_wall_config"}, Get_Virtual_Wall_Config_Cmd, wall);
}

AckReply Set_Self_Collision_Enable_Cmd[ZK_SLOTS];
ZK_API int Set_Self_Collision_Enable(ArmSocket s, uint8_t enable) {
    return guarded(Set_Self_Collision_Enable_Block, s, enable);
}
ZK_API int Set_Self_Collision_Enable_Block(ArmSocket s, uint8_t enable) {
    return set(Request(s, "set_self_collision_enable").boolean("set_enable", enable != 0),
               Set_Self_Collision_Enable_Cmd);
}
ZK_API int Parser_Set_Self_Collision_Enable(const char* text) { return acknowledgement(text, "set_state"); }

IntReply Get_Self_Collision_Enable_Cmd[ZK_SLOTS];
ZK_API int Get_Self_Collision_Enable(ArmSocket s, uint8_t* enable) {
    return guarded(Get_Self_Collision_Enable_Block, s, enable);
}
ZK_API int Get_Self_Collision_Enable_Block(ArmSocket s, uint8_t* enable) {
    return query({s, "get_self_collision_enable"}, Get_Self_Collision_Enable_Cmd,
                 [&](const IntReply& reply) { copy_if_wanted(reply.value, enable); });
}
ZK_API int Parser_Get_Self_Collision_Enable(const char* text, int32_t* enable) {
    Reply reply(text);
    if (const Item state = reply.number(reply.root(), "enable_state")) *enable = state.integer() != 0;
    return reply.status();
}

// Five spheres need more than the usual frame.
static constexpr int kEnvelopeFrame = 500;
AckReply Set_Tool_Envelope_Cmd[ZK_SLOTS];
ZK_API int Set_Tool_Envelope(ArmSocket s, ToolEnvelope envelope) {
    return guarded(Set_Tool_Envelope_Block, s, envelope);
}
ZK_API int Set_Tool_Envelope_Block(ArmSocket s, ToolEnvelope envelope) {
    if (envelope.count > ZK_ENVELOPE_SPHERES) return ZK_BAD_ARGUMENT;
    Request request(s, "set_tool_envelope", kEnvelopeFrame);
    request.text("tool_name", ended(envelope.tool_name).c_str());
    request.objects("list", envelope.count, [&](Object& object, int i) {
        const ToolSphere& ball = envelope.spheres[i];
        put_lengths<Object, ToolSphere>(object.text("name", ended(ball.name).c_str()), ball, kToolSphere);
    });
    return set(request, Set_Tool_Envelope_Cmd);
}

ToolEnvelopeReply Get_Tool_Envelope_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_Envelope(ArmSocket s, const char* name, ToolEnvelope* envelope) {
    return guarded(Get_Tool_Envelope_Block, s, name, envelope);
}
ZK_API int Get_Tool_Envelope_Block(ArmSocket s, const char* name, ToolEnvelope* envelope) {
    return query(Request(s, "get_tool_envelope").text("tool_name", name), Get_Tool_Envelope_Cmd,
                 [&](const ToolEnvelopeReply& reply) { copy_if_wanted(reply.envelope, envelope); },
                 {.wipes_first = true, .result_last = true});
}
ZK_API int Parser_Get_Tool_Envelope(const char* text, ToolEnvelope* envelope) {
    Reply reply(text);
    reply.require(!reply.find("get_state").is_false(), ZK_REFUSED);
    const Item name = reply.text(reply.root(), "tool_name");
    if (!name) return reply.status();
    *envelope = {};
    copy_name(name.text(), envelope->tool_name, sizeof envelope->tool_name - 1);
    const Item list = reply.array(reply.root(), "list");
    for (const Item sphere : list) {
        if (envelope->count == ZK_ENVELOPE_SPHERES) break;
        ToolSphere& ball = envelope->spheres[envelope->count++];
        if (reply.require(sphere.key("name").is_text(), ZK_WRONG_TYPE))
            copy_name(sphere.key("name").text(), ball.name, sizeof ball.name - 1);
        for (const auto& [key, field] : kToolSphere) reply.require(sphere.key(key).is_number(), ZK_WRONG_TYPE);
        read_lengths<ToolSphere>(reply, sphere, ball, kToolSphere);
    }
    return reply.status();
}
