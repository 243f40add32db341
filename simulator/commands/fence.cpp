// Fences, walls, the envelopes of tools and the self-collision check.

#include "commands/commands.h"
#include "motion/frames.h"
#include "wire/command_table.h"
#include "wire/memory.h"
#include "world/safety.h"

namespace sim {
namespace {

Fence requested_fence(const Request& request) {
    Fence fence;
    fence.form = request.integer("form", 1, Fence::kForms);
    for (const std::string& key : Fence::keys(fence.form)) fence.lengths[key] = request.integer(key.c_str());
    if (!fence.has_extent()) throw BadRequest(request.command() + ": a form without extent");
    return fence;
}

Json fence_reply(const Fence& fence) {
    Json reply{{"form", fence.form}};
    for (const auto& [key, length] : fence.lengths) reply[key] = length;
    return reply;
}

Json named_reply(const std::string& name, const Fence& fence) {
    Json reply = fence_reply(fence);
    reply["form_name"] = name;
    return reply;
}

void set_switch(Barrier& barrier, const Request& request) {
    const bool enabled = request.flag("set_enable");
    const int side = request.integer("in_out_side");
    barrier.region = request.integer("effective_region");
    barrier.side = side;
    barrier.enabled = enabled;
}

void keep_barrier(Memory& memory, const char* section, Barrier& barrier) {
    const auto save = [&barrier] {
        Json saved = fence_reply(barrier.shape);
        saved.update(
            {{"set_enable", barrier.enabled}, {"in_out_side", barrier.side}, {"effective_region", barrier.region}});
        return saved;
    };
    memory.keep(section, save, [&barrier](const Request& saved) {
        if (saved.integer("form") != 0) barrier.shape = requested_fence(saved);
        set_switch(barrier, saved);
    });
}

// The four commands that fences and walls share. A plane wall has no lengths on the wire.
void add_barrier(CommandTable& table, const std::string& kind, Barrier& barrier) {
    table.set("set_" + kind + "_config", "set_config", [&barrier](const Call& call) {
        barrier.shape = requested_fence(call.request);
        return true;
    });
    table.query("get_" + kind + "_config", "get_" + kind + "_config",
                [&barrier](const Call&) { return fence_reply(barrier.shape); });
    table.set("set_" + kind + "_enable", "set_state", [&barrier](const Call& call) {
        set_switch(barrier, call.request);
        return true;
    });
    table.query("get_" + kind + "_enable", "get_" + kind + "_enable", [&barrier](const Call&) {
        return Json{
            {"enable_state", barrier.enabled}, {"in_out_side", barrier.side}, {"effective_region", barrier.region}};
    });
}

void add_named_fences(CommandTable& table, Memory& memory, FenceStore& fences) {
    table.set("add_electronic_fence_config", "add_config", [&fences](const Call& call) {
        return fences.add(call.request.text("form_name"), requested_fence(call.request));
    });
    table.set("update_electronic_fence_config", "update_config", [&fences](const Call& call) {
        return fences.update(call.request.text("form_name"), requested_fence(call.request));
    });
    table.set("delete_electronic_fence_config", "delete_config",
              [&fences](const Call& call) { return fences.remove(call.request.text("form_name")); });
    table.query("given_electronic_fence_config", "given_electronic_fence_config", [&fences](const Call& call) {
        const std::string name = call.request.text("form_name");
        const Fence* fence = fences.find(name);
        return fence ? named_reply(name, *fence) : Json{{"given_state", false}};
    });
    table.query("get_electronic_fence_list_names", "get_electronic_fence_list_names", [&fences](const Call&) {
        Json names = Json::array();
        for (const auto& [name, fence] : fences.all()) names.push_back(name);
        return Json{{"name_list", names}};
    });
    const auto infos = [&fences] {
        Json list = Json::array();
        for (const auto& [name, fence] : fences.all()) list.push_back(named_reply(name, fence));
        return Json{{"info_list", list}};
    };
    table.query("get_electronic_fence_list_infos", "get_electronic_fence_list_infos",
                [infos](const Call&) { return infos(); });
    memory.keep("fences", infos, [&fences](const Request& saved) {
        for (const Request& fence : saved.objects("info_list")) {
            const std::string name = fence.text("form_name");
            if (!fences.add(name, requested_fence(fence))) throw Refusal("a fence '" + name + "' that cannot be");
        }
    });
}

void add_self_collision(CommandTable& table, Memory& memory, bool& enabled) {
    memory.keep(
        "self_collision",
        [&enabled] {
            return Json{{"set_enable", enabled}};
        },
        [&enabled](const Request& saved) { enabled = saved.flag("set_enable"); });
    table.set("set_self_collision_enable", "set_state", [&enabled](const Call& call) {
        enabled = call.request.flag("set_enable");
        return true;
    });
    table.query("get_self_collision_enable", "get_self_collision_enable", [&enabled](const Call&) {
        return Json{{"enable_state", enabled ? 1 : 0}};
    });
}

Envelope requested_envelope(const Request& request) {
    constexpr size_t kMostBalls = 5, kMaxName = 11;
    Envelope balls;
    for (const Request& ball : request.objects("list")) {
        balls.push_back(
            {ball.text("name"), ball.integer("radius", 0), ball.integer("x"), ball.integer("y"), ball.integer("z")});
        if (balls.back().name.size() > kMaxName) throw BadRequest(request.command() + ": a name that is too long");
    }
    if (balls.size() > kMostBalls) throw BadRequest(request.command() + ": too many spheres");
    return balls;
}

Json envelope_reply(const std::string& tool, const Envelope& envelope) {
    Json list = Json::array();
    for (const EnvelopeBall& ball : envelope)
        list.push_back({{"name", ball.name}, {"radius", ball.radius}, {"x", ball.x}, {"y", ball.y}, {"z", ball.z}});
    return {{"tool_name", tool}, {"list", list}};
}

void keep_envelopes(Memory& memory, std::map<std::string, Envelope>& envelopes) {
    const auto save = [&envelopes] {
        Json list = Json::array();
        for (const auto& [tool, envelope] : envelopes) list.push_back(envelope_reply(tool, envelope));
        return Json{{"envelopes", list}};
    };
    memory.keep("tool_envelopes", save, [&envelopes](const Request& saved) {
        for (const Request& envelope : saved.objects("envelopes"))
            envelopes[envelope.text("tool_name")] = requested_envelope(envelope);
    });
}

// An envelope belongs to an existing tool.
void add_envelopes(CommandTable& table, std::map<std::string, Envelope>& envelopes, const FrameStore& tools) {
    table.set("set_tool_envelope", "set_state", [&envelopes, &tools](const Call& call) {
        const std::string tool = call.request.text("tool_name");
        if (!tools.find(tool)) return false;
        envelopes[tool] = requested_envelope(call.request);
        return true;
    });
    table.query("get_tool_envelope", "get_tool_envelope", [&envelopes, &tools](const Call& call) {
        const std::string tool = call.request.text("tool_name");
        const auto found = envelopes.find(tool);
        if (found == envelopes.end() || !tools.find(tool)) return Json{{"get_state", false}};
        return envelope_reply(tool, found->second);
    });
}

}  // namespace

void add_fence_commands(CommandTable& table, Memory& memory, Safety& safety, const FrameStore& tools) {
    add_barrier(table, "electronic_fence", safety.fence);
    add_barrier(table, "virtual_wall", safety.wall);
    add_named_fences(table, memory, safety.fences);
    add_self_collision(table, memory, safety.self_collision);
    add_envelopes(table, safety.envelopes, tools);
    keep_barrier(memory, "fence_in_use", safety.fence);
    keep_barrier(memory, "virtual_wall", safety.wall);
    keep_envelopes(memory, safety.envelopes);
}

}  // namespace sim
