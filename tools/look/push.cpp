#include "look/push.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace tool {
namespace {

std::vector<ZK_State> pushed_states(const zk::Arm& arm) {
    using Clock = std::chrono::steady_clock;
    zk::StateStream states = arm.states();
    std::vector<ZK_State> taken;
    for (const auto end = Clock::now() + std::chrono::milliseconds(1500); Clock::now() < end;) {
        const zk::Result<zk::State> state = states.next(std::chrono::milliseconds(100));
        if (state) taken.push_back(state->record);
    }
    return taken;
}

// Sorts the values. share: 0 to 1.
double quantile(std::vector<double>& values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(static_cast<double>(values.size() - 1) * share)];
}

}  // namespace

PushSample PushSample::take(const zk::Arm& arm) {
    const std::vector<ZK_State> states = pushed_states(arm);
    PushSample sample;
    sample.states = states.size();
    if (states.size() < 2) return sample;
    // Between states that came one after the other: some may have come while this thread did not look.
    std::vector<double> gaps, cycles;
    for (std::size_t i = 1; i < states.size(); ++i) {
        if (states[i].sequence - states[i - 1].sequence != 1) continue;
        gaps.push_back(static_cast<double>(states[i].host_ns - states[i - 1].host_ns) / 1e6);
        cycles.push_back(static_cast<double>(states[i].controller_ms - states[i - 1].controller_ms));
    }
    const ZK_State &first = states.front(), &last = states.back();
    const double host_ms = static_cast<double>(last.host_ns - first.host_ns) / 1e6;
    const double received = last.sequence - first.sequence;
    sample.rate_Hz = received / host_ms * 1000;
    if (!gaps.empty()) {
        const double usual = quantile(gaps, 0.5);
        sample.longest_gap_ms = gaps.back();
        for (double& gap : gaps) gap = std::abs(gap - usual);
        sample.jitter_ms = quantile(gaps, 0.95);
    }
    if (first.controller_ms < 0 || last.controller_ms <= first.controller_ms || cycles.empty()) return sample;
    const double controller_ms = static_cast<double>(last.controller_ms - first.controller_ms);
    const double sent = controller_ms / std::max(quantile(cycles, 0.5), 1.0);
    sample.lost_percent = std::max(0.0, 100 * (std::round(sent) - received) / sent);
    sample.clock_pace = controller_ms / host_ms;
    sample.clock_offset_ms = last.clock_offset_ms;
    return sample;
}

}  // namespace tool
