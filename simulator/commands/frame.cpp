// Tool frames, work frames and the payload.

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "commands/commands.h"
#include "motion/tool.h"
#include "wire/command_table.h"
#include "wire/memory.h"

namespace sim {
namespace {

template <size_t N>
std::array<int, N> array_of(const std::vector<int>& values) {
    std::array<int, N> array;
    std::copy_n(values.begin(), N, array.begin());
    return array;
}

// Tool and work frames differ in the names of their keys and in the payload of a tool.
struct Kind {
    FrameStore& store;
    const char* name_key;
    const char* pose_key;
    bool payload;
};

Frame requested_frame(const Request& request, const Kind& kind) {
    Frame frame;
    frame.pose = array_of<6>(request.integers(kind.pose_key, 6));
    if (kind.payload) {
        frame.payload = request.number("payload");
        frame.position = array_of<3>(request.integers("position", 3));
    }
    return frame;
}

Action store_frame(Kind kind, bool (FrameStore::*act)(const std::string&, const Frame&)) {
    return [=](const Call& call) {
        const std::string name = call.request.text(kind.name_key);
        return (kind.store.*act)(name, requested_frame(call.request, kind));
    };
}

Action name_frame(Kind kind, bool (FrameStore::*act)(const std::string&)) {
    return [=](const Call& call) { return (kind.store.*act)(call.request.text(kind.name_key)); };
}

Json frame_reply(const Kind& kind, const std::string& name, const Frame& frame, const char* pose_key = "pose") {
    Json reply{{kind.name_key, name}, {pose_key, frame.pose}};
    if (kind.payload) {
        reply["payload"] = frame.payload;
        reply["position"] = frame.position;
    }
    return reply;
}

Query current_frame(Kind kind) {
    return [=](const Call&) { return frame_reply(kind, kind.store.current_name(), kind.store.current()); };
}

Query given_frame(Kind kind) {
    return [=](const Call& call) {
        const std::string name = call.request.text(kind.name_key);
        const Frame* frame = kind.store.find(name);
        return frame ? frame_reply(kind, name, *frame) : Json{{"get_state", false}};
    };
}

Query frame_names(const FrameStore& store, const char* key) {
    return [&store, key](const Call&) { return Json{{key, store.names()}}; };
}

void keep_frames(Memory& memory, const char* section, const Kind& kind) {
    const auto save = [kind] {
        Json frames = Json::array();
        for (const std::string& name : kind.store.names())
            frames.push_back(frame_reply(kind, name, *kind.store.find(name), kind.pose_key));
        return Json{{"current", kind.store.current_name()}, {"frames", frames}};
    };
    memory.keep(section, save, [kind](const Request& saved) {
        for (const Request& frame : saved.objects("frames")) {
            const std::string name = frame.text(kind.name_key);
            const bool built_in = name == kind.store.names().front();
            if (!built_in && !kind.store.add(name, requested_frame(frame, kind)))
                throw Refusal("a frame '" + name + "' that cannot be");
        }
        if (!kind.store.select(saved.text("current"))) throw Refusal("an unknown frame in use");
    });
}

// The poses that a client has recorded for an automatic calibration.
using Points = std::map<int, KDL::Frame>;

// The tool x of a flange whose tool tip was at one point in several orientations: R_i x + p_i is the same for all.
// Least squares over the differences to the first; Cramer's rule solves the 3 by 3 normal equations.
std::optional<KDL::Vector> common_tip(const Points& flanges) {
    if (flanges.size() < 3) return std::nullopt;
    const KDL::Frame& first = flanges.begin()->second;
    KDL::Vector column[3], right;
    for (const auto& [number, flange] : flanges) {
        const KDL::Vector difference = first.p - flange.p;
        KDL::Vector turned[3];
        for (int i = 0; i < 3; ++i) {
            KDL::Vector unit;
            unit[i] = 1;
            turned[i] = flange.M * unit - first.M * unit;
        }
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) column[i][j] += KDL::dot(turned[i], turned[j]);
            right[i] += KDL::dot(turned[i], difference);
        }
    }
    const double determinant = KDL::dot(column[0], column[1] * column[2]);
    if (std::abs(determinant) < 1e-6) return std::nullopt;  // the orientations are too similar
    return KDL::Vector(KDL::dot(right, column[1] * column[2]), KDL::dot(column[0], right * column[2]),
                       KDL::dot(column[0], column[1] * right)) /
           determinant;
}

// The work frame of an origin, a point on the x axis and a point on the side of positive y.
std::optional<KDL::Frame> plane_frame(const Points& tips) {
    if (tips.size() < 3) return std::nullopt;
    const KDL::Vector origin = tips.at(1).p;
    KDL::Vector x = tips.at(2).p - origin;
    KDL::Vector z = x * (tips.at(3).p - origin);
    constexpr double kClose = 1e-3;
    if (x.Normalize() < kClose || z.Normalize() < kClose * kClose) return std::nullopt;
    return KDL::Frame(KDL::Rotation(x, z * x, z), origin);
}

void add_automatic_tool(CommandTable& table, const Arm& arm, FrameStore& tools) {
    const auto points = std::make_shared<Points>();
    table.set("set_auto_tool_frame", "auto_tool_frame", [points, &arm](const Call& call) {
        constexpr int kMaxPoints = 6;
        const int number = call.request.integer("point_num", 1, kMaxPoints);
        if (number == 1) points->clear();
        (*points)[number] = arm.flange();
        return true;
    });
    table.set("generate_auto_tool_frame", "auto_tool_frame", [points, &tools](const Call& call) {
        const std::optional<KDL::Vector> tip = common_tip(*points);
        Frame frame;
        frame.payload = call.request.number("payload");
        frame.position = array_of<3>(call.request.integers("position", 3));
        if (!tip) return false;
        frame.pose = wire_pose(KDL::Frame(*tip));
        return tools.add(call.request.text("tool_name"), frame);
    });
}

// Numbers 1 to 3 record the position of the tool tip, 4 computes the frame.
void add_automatic_work(CommandTable& table, Tool& tool) {
    const auto points = std::make_shared<Points>();
    table.set("set_auto_work_frame", "auto_work_frame", [points, &tool](const Call& call) {
        constexpr int kGenerate = 4;
        const int number = call.request.integer("point_num", 1, kGenerate);
        const std::string name = call.request.text("frame_name");
        if (number != kGenerate) {
            if (number == 1) points->clear();
            (*points)[number] = tool.mounted_flange() * frame_of(tool.tools.current().pose);
            return true;
        }
        const std::optional<KDL::Frame> frame = plane_frame(*points);
        return frame && tool.works.add(name, {.pose = wire_pose(*frame), .payload = 0, .position = {}});
    });
}

void set_payload(Frame& payload, const Request& request) {
    constexpr int kMaxPayload = 50'000;
    payload.payload = request.integer("payload", 0, kMaxPayload);
    payload.position = array_of<3>(request.integers("position", 3));
}

void add_payload(CommandTable& table, Memory& memory, Frame& payload) {
    table.set("set_payload", "set_state", [&payload](const Call& call) {
        set_payload(payload, call.request);
        return true;
    });
    memory.keep(
        "payload",
        [&payload] {
            return Json{{"payload", payload.payload}, {"position", payload.position}};
        },
        [&payload](const Request& saved) { set_payload(payload, saved); });
    table.set("set_none_payload", "set_state", [&payload](const Call&) {
        payload = {};
        return true;
    });
}

}  // namespace

void add_frame_commands(CommandTable& table, Memory& memory, const Arm& arm, Tool& tool) {
    const Kind tools{tool.tools, "tool_name", "tool_pose", true};
    const Kind works{tool.works, "frame_name", "frame_pose", false};
    table.set("set_manual_tool_frame", "manual_tool_frame", store_frame(tools, &FrameStore::add));
    table.set("update_tool_frame", "update_state", store_frame(tools, &FrameStore::update));
    table.set("set_change_tool_frame", "change_tool_frame", name_frame(tools, &FrameStore::select));
    table.set("set_delete_tool_frame", "delete_tool_frame", name_frame(tools, &FrameStore::remove));
    table.query("get_current_tool_frame", "current_tool_frame", current_frame(tools));
    table.query("get_tool_frame", "given_tool_frame", given_frame(tools));
    table.query("get_total_tool_frame", "total_tool_frame", frame_names(tools.store, "tool_names"));
    table.set("set_manual_work_frame", "manual_work_frame", store_frame(works, &FrameStore::add));
    table.set("update_work_frame", "update_state", store_frame(works, &FrameStore::update));
    table.set("set_change_work_frame", "change_work_frame", name_frame(works, &FrameStore::select));
    table.set("set_delete_work_frame", "delete_work_frame", name_frame(works, &FrameStore::remove));
    table.query("get_current_work_frame", "current_work_frame", current_frame(works));
    table.query("get_work_frame", "given_work_frame", given_frame(works));
    table.query("get_total_work_frame", "total_work_frame", frame_names(works.store, "frame_names"));
    add_automatic_tool(table, arm, tool.tools);
    add_automatic_work(table, tool);
    add_payload(table, memory, tool.payload);
    keep_frames(memory, "tool_frames", tools);
    keep_frames(memory, "work_frames", works);
}

}  // namespace sim
