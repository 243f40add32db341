#include "view/queries.h"

#include <algorithm>
#include <string>
#include <utility>

namespace zk::view {
namespace {

constexpr int kMostFailures = 3;

Json joints_of(const Result<Joints>& joints) { return joints ? numbers(*joints) : Json(); }

// Where a tool is that these six numbers describe.
Pose pose_of(const float* data) {
    ::Pose c{};
    c.position = {data[0], data[1], data[2]};
    c.euler = {data[3], data[4], data[5]};
    return Pose(c);
}

// The settings of a fence or a wall. Lengths that the controller does not report are absent.
Json fence_of(const FenceConfig& fence) {
    switch (fence.form) {
        case ZK_FENCE_CUBOID:
            return {{"form", "cuboid"},
                    {"min", {fence.x_min_limit, fence.y_min_limit, fence.z_min_limit}},
                    {"max", {fence.x_max_limit, fence.y_max_limit, fence.z_max_limit}}};
        case ZK_FENCE_PLANE:
            return {{"form", "plane"},
                    {"points",
                     {{fence.x1, fence.y1, fence.z1}, {fence.x2, fence.y2, fence.z2}, {fence.x3, fence.y3, fence.z3}}}};
        case ZK_FENCE_SPHERE:
            return {{"form", "sphere"}, {"centre", {fence.x, fence.y, fence.z}}, {"radius", fence.radius}};
        default:
            return Json::object();
    }
}

// A fence or wall in use; null when it is off.
template <auto kEnabled, auto kSettings>
Result<Json> in_use(const Arm& arm) {
    std::uint8_t on = 0;
    std::int32_t side = 0, region = 0;
    if (const auto asked = arm.call<kEnabled>(&on, &side, &region); !asked) return Unexpected(asked.error());
    if (on == 0) return Json();
    FenceConfig settings{};
    if (const auto asked = arm.call<kSettings>(&settings); !asked) return Unexpected(asked.error());
    Json fence = fence_of(settings);
    fence["inside"] = side == 0;
    // Of these forms the reply holds the form alone.
    fence["known"] = settings.form == ZK_FENCE_CUBOID;
    return fence;
}

Json named_fences(const Arm& arm) {
    std::array<FenceConfig, ZK_FENCES> fences{};
    std::int32_t count = 0;
    Json named = Json::array();
    if (!arm.call<Get_Electronic_Fence_List_Info>(fences, &count)) return named;
    for (std::int32_t i = 0; i < std::clamp(count, 0, ZK_FENCES); ++i) {
        const FenceConfig& fence = fences[static_cast<std::size_t>(i)];
        Json item = fence_of(fence);
        item["name"] = std::string(fence.form_name, strnlen(fence.form_name, sizeof fence.form_name));
        named.push_back(item);
    }
    return named;
}

}  // namespace

Queries::Queries(std::size_t number, const Arm& arm, Feed& feed)
    : number_(number),
      arm_(arm),
      feed_(feed),
      model_(arm.model()),
      items_{{{"target", &Queries::target, 0},
              {"signals", &Queries::signals, 0},
              {"frames", &Queries::frames, 0},
              {"gripper", &Queries::gripper, 0},
              {"fences", &Queries::fences, 0}}} {
    RealtimePushConfig push{};
    const bool known = arm_.call<Get_Realtime_Push>(&push).has_value();
    Json facts = description(model_ ? &*model_ : nullptr, arm_.joint_count());
    facts["pushesSpeed"] = known && push.joint_speed == 1;
    facts["pushesStatus"] = known && push.arm_current_status == 1;
    tell("arm", std::move(facts));
}

void Queries::tell(const char* name, Json fact) {
    fact["arm"] = number_;
    feed_.set_fact(number_, name, fact.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Queries::ask_next() {
    // Where the arm goes changes fastest: every second question is that.
    const std::size_t turn = turn_++;
    Item& item = items_[turn % 2 == 0 ? 0 : 1 + turn / 2 % (items_.size() - 1)];
    if (item.failures >= kMostFailures) return;
    Result<Json> answer = (this->*item.ask)();
    if (answer) {
        item.failures = 0;
        tell(item.name, *std::move(answer));
    } else if (++item.failures == kMostFailures) {
        tell(item.name, {{"unknown", answer.error().message()}});
    }
}

Result<Json> Queries::target() {
    std::int32_t kind = 0;
    std::array<float, Joints::kMost> data{};
    if (const auto asked = arm_.call<Get_Current_Trajectory>(&kind, data); !asked) return Unexpected(asked.error());
    Json target{{"kind", kind}};
    if (kind == ZK_TRAJECTORY_NONE) return target;
    const bool by_pose = kind == ZK_TRAJECTORY_LINE || kind == ZK_TRAJECTORY_CIRCLE || kind == ZK_TRAJECTORY_SPLINE;
    if (!by_pose) {
        target["joints"] = numbers(Joints::from_c(data.data(), arm_.joint_count()));
        return target;
    }
    const Pose there = pose_of(data.data());
    const Result<State> now = arm_.states().latest();
    target["pose"] = pose(there);
    if (model_ && now) target["joints"] = joints_of(model_->inverse(there, now->joints()));
    return target;
}

Result<Json> Queries::signals() {
    const Result<Signals> in = arm_.io().inputs();
    if (!in) return Unexpected(in.error());
    const Result<Signals> out = arm_.io().outputs();
    if (!out) return Unexpected(out.error());
    Json signals{{"in", in->digital},
                 {"out", out->digital},
                 {"inVolts", numbers(in->volts.data(), 4, 2)},
                 {"outVolts", numbers(out->volts.data(), 4, 2)}};
    if (const auto tool = arm_.io().tool_digital()) signals["tool"] = *tool;
    return signals;
}

Result<Json> Queries::frames() {
    const Result<Frame> tool = arm_.tool_frames().current();
    if (!tool) return Unexpected(tool.error());
    const Result<Frame> work = arm_.work_frames().current();
    if (!work) return Unexpected(work.error());
    if (model_) (void)model_->set_tool(tool->pose), (void)model_->set_work_frame(work->pose);
    return Json{{"tool", pose(tool->pose)},
                {"toolName", tool->name},
                {"kilograms", tool->load.kilograms},
                {"work", pose(work->pose)},
                {"workName", work->name}};
}

Result<Json> Queries::gripper() {
    GripperState state{};
    if (const auto asked = arm_.call<Get_Gripper_State>(&state); !asked) return Unexpected(asked.error());
    return Json{{"on", state.enable_state == 1},
                {"error", state.error},
                {"mode", state.mode},
                {"force", state.current_force},
                {"opening", state.actpos}};
}

Result<Json> Queries::fences() {
    const auto fence = in_use<Get_Electronic_Fence_Enable, Get_Electronic_Fence_Config>(arm_);
    if (!fence) return Unexpected(fence.error());
    const auto wall = in_use<Get_Virtual_Wall_Enable, Get_Virtual_Wall_Config>(arm_);
    if (!wall) return Unexpected(wall.error());
    return Json{{"fence", *fence}, {"wall", *wall}, {"named", named_fences(arm_)}};
}

}  // namespace zk::view
