#include <cmath>
#include <iostream>
#include <memory>
#include <sstream>
#include <thread>
#include <utility>

#include "move/following.h"
#include "move/plan.h"
#include "recording/recording.h"
#include "report.h"

namespace tool {
namespace {

using namespace zk::literals;
using Clock = std::chrono::steady_clock;

struct ReplayRequest {
    std::string path;
    MoveRequest move;
};

constexpr auto kCycle = 10_ms;  // of the set-points

std::string in_seconds(double time) {
    std::ostringstream text;
    text << rounded(time, 3) << " s";
    return text.str();
}

// Between states that are further apart nobody knows how the arm went.
void check_times(const Recording& recording) {
    constexpr double kLongest = 1;
    double before = 0;
    for (const ArmRecord& state : recording.states) {
        const double at = recording.seconds(state), gap = at - std::exchange(before, at);
        if (gap < 0) throw Failure(kUsage, "the times of the recording run backwards after " + in_seconds(at - gap));
        if (gap > kLongest) {
            throw Failure(kUsage, "the recording has no state for " + in_seconds(gap) + " after " +
                                      in_seconds(at - gap) + ": nothing is moved");
        }
    }
}

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
                                          in_seconds(static_cast<double>(n) * seconds) + " than this arm turns it");
            }
        }
    }
}

void stream(const zk::Arm& arm, const std::vector<zk::Joints>& points) {
    const Following following(arm);
    auto due = Clock::now();
    for (const zk::Joints& point : points) {
        following.check();
        arm.stream_joints(point).value();
        due += kCycle;
        std::this_thread::sleep_until(due);
    }
    arm.wait_idle(5_s).value();
    following.check();
    if (!is_near(arm.joints().value(), points.back(), 0.5_deg))
        throw Failure(kFailed, "the arm did not come to the end of the recording: see zk doctor");
}

void replay(const ReplayRequest& request) {
    const Recording recording = load_recording(request.path);
    if (!recording.is_whole) throw Failure(kUsage, request.path + " is cut short: nothing is moved");
    check_times(recording);
    const std::vector<zk::Joints> points = set_points(recording);
    const zk::Arm arm = request.move.connect();
    const zk::Model model = arm.model().value();
    check(points, model);
    if (const auto recorded = model_of(recording.arm); recorded && recorded->name() != model.name())
        std::cout << "recorded with a " << recorded->name() << ", this arm is a " << model.name()
                  << ": the joints go the same way, the tool does not\n";
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
