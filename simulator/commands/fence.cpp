// Fences, walls, the envelopes of tools and the self-collision check. All are stored and returned, not enforced.

#include "commands/commands.h"
#include "motion/frames.h"
#include "wire/command_table.h"
#include "world/fences.h"

namespace sim {
namespace {

// The fence or wall in use and its switch.
struct Barrier {
    Fence shape;
    bool enabled = false;
    int side = 0;
    int region = 0;
};

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

// The four commands that fences and walls share. A plane wall has no lengths on the wire.
void add_barrier(CommandTable& table, const std::string& kind) {
    const auto barrier = std::make_shared<Barrier>();
    table.set("set_" + kind + "_config", "set_config", [barrier](const Call& call) {
        barrier->shape = requested_fence(call.request);
        return true;
    });
    table.query("get_" + kind + "_config", "get_" + kind + "_config",
                [barrier](const Call&) { return fence_reply(barrier->shape); });
    table.set("set_" + kind + "_enable", "set_state", [barrier](const Call& call) {
        const bool enabled = call.request.flag("set_enable");
        const int side = call.request.integer("in_out_side");
        barrier->region = call.request.integer("effective_region");
        barrier->side = side;
        barrier->enabled = enabled;
        return true;
    });
    table.query("get_" + kind + "_enable", "get_" + kind + "_enable", [barrier](const Call&) {
        return Json{
            {"enable_state", barrier->enabled}, {"in_out_side", barrier->side}, {"effective_region", barrier->region}};
    });
}

void add_named_fences(CommandTable& table) {
    const auto fences = std::make_shared<FenceStore>();
    table.set("add_electronic_fence_config", "add_config", [fences](const Call& call) {
        return fences->add(call.request.text("form_name"), requested_fence(call.request));
    });
    table.set("update_electronic_fence_config", "update_config", [fences](const Call& call) {
        return fences->update(call.request.text("form_name"), requested_fence(call.request));
    });
    table.set("delete_electronic_fence_config", "delete_config",
              [fences](const Call& call) { return fences->remove(call.request.text("form_name")); });
    table.query("given_electronic_fence_config", "given_electronic_fence_config", [fences](const Call& call) {
        const std::string name = call.request.text("form_name");
        const Fence* fence = fences->find(name);
        return fence ? named_reply(name, *fence) : Json{{"given_state", false}};
    });
    table.query("get_electronic_fence_list_names", "get_electronic_fence_list_names", [fences](const Call&) {
        Json names = Json::array();
        for (const auto& [name, fence] : fences->all()) names.push_back(name);
        return Json{{"name_list", names}};
    });
    table.query("get_electronic_fence_list_infos", "get_electronic_fence_list_infos", [fences](const Call&) {
        Json infos = Json::array();
        for (const auto& [name, fence] : fences->all()) infos.push_back(named_reply(name, fence));
        return Json{{"info_list", infos}};
    });
}

void add_self_collision(CommandTable& table) {
    const auto enabled = std::make_shared<bool>(false);
    table.set("set_self_collision_enable", "set_state", [enabled](const Call& call) {
        *enabled = call.request.flag("set_enable");
        return true;
    });
    table.query("get_self_collision_enable", "get_self_collision_enable", [enabled](const Call&) {
        return Json{{"enable_state", *enabled ? 1 : 0}};
    });
}

Json requested_spheres(const Request& request) {
    constexpr size_t kMostSpheres = 5, kMaxName = 11;
    Json spheres = Json::array();
    for (const Request& sphere : request.objects("list")) {
        spheres.push_back({{"name", sphere.text("name")},
                           {"radius", sphere.integer("radius", 0)},
                           {"x", sphere.integer("x")},
                           {"y", sphere.integer("y")},
                           {"z", sphere.integer("z")}});
        if (sphere.text("name").size() > kMaxName) throw BadRequest(request.command() + ": a name that is too long");
    }
    if (spheres.items().size() > kMostSpheres) throw BadRequest(request.command() + ": too many spheres");
    return spheres;
}

// An envelope belongs to an existing tool.
void add_envelopes(CommandTable& table, const FrameStore& tools) {
    const auto envelopes = std::make_shared<std::map<std::string, Json>>();
    table.set("set_tool_envelope", "set_state", [envelopes, &tools](const Call& call) {
        const std::string tool = call.request.text("tool_name");
        if (!tools.find(tool)) return false;
        (*envelopes)[tool] = requested_spheres(call.request);
        return true;
    });
    table.query("get_tool_envelope", "get_tool_envelope", [envelopes, &tools](const Call& call) {
        const std::string tool = call.request.text("tool_name");
        const auto found = envelopes->find(tool);
        if (found == envelopes->end() || !tools.find(tool)) return Json{{"get_state", false}};
        return Json{{"tool_name", tool}, {"list", found->second}};
    });
}

}  // namespace

void add_fence_commands(CommandTable& table, const FrameStore& tools) {
    add_barrier(table, "electronic_fence");
    add_barrier(table, "virtual_wall");
    add_named_fences(table);
    add_self_collision(table);
    add_envelopes(table, tools);
}

}  // namespace sim
