#include <cmath>
#include <iostream>
#include <memory>
#include <thread>

#include "move/plan.h"
#include "recording/recording.h"

namespace tool {
namespace {

using namespace zk::literals;
using Clock = std::chrono::steady_clock;

struct ReplayRequest {
    std::string path;
    MoveRequest move;
};

constexpr auto kCycle = 10_ms;  // of the set-points

// A recording as set-points that keep the cycle, between its states where they were recorded less often.
std::vector<zk::Joints> set_points(const Recording& recording) {
    const auto& states = recording.states;
    const double cycle = std::chrono::duration<double>(kCycle).count(), end = recording.seconds(states.back());
    std::vector<zk::Joints> points;
    std::size_t next = 0;
    for (double at = 0; at <= end; at = cycle * static_cast<double>(points.size())) {
        while (next + 1 < states.size() && recording.seconds(states[next]) < at) ++next;
        const ArmRecord &after = states[next], &before = states[next == 0 ? 0 : next - 1];
        const double from = recording.seconds(before), span = recording.seconds(after) - from;
        const double share = span > 0 ? (at - from) / span : 0;
        std::vector<double> degree;
        for (std::size_t i = 0; i < after.position_deg.size(); ++i)
            degree.push_back(std::lerp<double>(before.position_deg[i], after.position_deg[i], share));
        points.push_back(zk::Joints::from_degrees(degree));
    }
    return points;
}

// Refuses what this arm cannot follow, before it moves.
void check(const std::vector<zk::Joints>& points, const zk::Model& model) {
    if (points.front().size() != model.joint_count()) {
        throw Failure(kUsage, "the recording is of an arm with " + std::to_string(points.front().size()) +
                                  " joints, this arm has " + std::to_string(model.joint_count()));
    }
    std::array<float, zk::Joints::kMost> speed{}, acceleration{};
    zk::call<ZK_Model_Get_Speed_Limits>(model.get(), speed, acceleration).value();
    const double seconds = std::chrono::duration<double>(kCycle).count();
    for (std::size_t n = 0; n < points.size(); ++n) {
        check_limits(model, points[n]);
        for (std::size_t i = 0; n > 0 && i < points[n].size(); ++i) {
            const double rate = std::abs((points[n][i] - points[n - 1][i]).degrees()) / seconds;
            if (rate > 1.05 * static_cast<double>(speed[i])) {
                throw Failure(kUsage, "joint " + std::to_string(i + 1) + " was faster at " +
                                          std::to_string(static_cast<double>(n) * seconds) +
                                          " s than this arm turns it");
            }
        }
    }
}

void stream(const zk::Arm& arm, const std::vector<zk::Joints>& points) {
    auto due = Clock::now();
    for (const zk::Joints& point : points) {
        arm.stream_joints(point).value();
        due += kCycle;
        std::this_thread::sleep_until(due);
    }
    arm.wait_idle(5_s).value();
}

void replay(const ReplayRequest& request) {
    const Recording recording = load_recording(request.path);
    if (!recording.is_whole) throw Failure(kUsage, request.path + " is cut short: nothing is moved");
    const std::vector<zk::Joints> points = set_points(recording);
    const zk::Arm arm = request.move.connect();
    const zk::Model model = arm.model().value();
    check(points, model);
    std::cout << "replays " << static_cast<double>(points.size()) * std::chrono::duration<double>(kCycle).count()
              << " s; first to its start:\n";
    if (!carry_out(arm, plan_joints(arm, model, points.front(), zk::degrees(request.move.max_step)), request.move))
        return;
    stream(arm, points);
    std::cout << "replayed\n";
}

}  // namespace

void add_replay(CLI::App& zk) {
    const auto request = std::make_shared<ReplayRequest>();
    CLI::App* command = zk.add_subcommand("replay", "move an arm through what was recorded, as fast as it was");
    command->add_option("FILE", request->path, "a recording")->required();
    request->move.add_to(*command);
    command->callback([request] { replay(*request); });
}

}  // namespace tool
