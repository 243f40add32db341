#include "look/push.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <filesystem>
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

int port_of(int datagram_socket) {
    sockaddr_in6 own{};
    socklen_t size = sizeof own;
    int type = 0;
    socklen_t type_size = sizeof type;
    const bool known = getsockopt(datagram_socket, SOL_SOCKET, SO_TYPE, &type, &type_size) == 0 && type == SOCK_DGRAM &&
                       getsockname(datagram_socket, reinterpret_cast<sockaddr*>(&own), &size) == 0;
    return known && (own.sin6_family == AF_INET6 || own.sin6_family == AF_INET) ? ntohs(own.sin6_port) : -1;
}

// Whether a program of this host, and not this one, receives on a port.
bool is_taken_by_another(int port) {
    for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd")) {
        if (port_of(std::stoi(file.path().filename())) == port) return false;
    }
    const int probe = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_port = htons(static_cast<std::uint16_t>(port));
    const bool is_taken = bind(probe, reinterpret_cast<sockaddr*>(&any), sizeof any) != 0 && errno == EADDRINUSE;
    close(probe);
    return is_taken;
}

}  // namespace

Finding why_no_state(const zk::Arm& arm) {
    RealtimePushConfig push{};
    if (const auto asked = arm.call<Get_Realtime_Push>(&push); !asked)
        return {"unknown", "The controller does not say whether it pushes its state, and none comes.", ""};
    if (!push.enable) {
        return {"warn", "The controller pushes no state: zk watch, view and record need it.",
                "Enable the push, with this host's address as its destination (Set_Realtime_Push)."};
    }
    const std::string sentence =
        "The controller pushes its state to " + std::string(push.ip) + " port " + std::to_string(push.port);
    if (is_taken_by_another(push.port)) {
        const ZK_ConnectionRecord record = arm.connection().value();
        return {"fault", sentence + ", where another program of this host receives it.",
                "Close that program, or connect both to zk proxy " + std::string(record.address) + ":" +
                    std::to_string(record.port) + ", which shares the arm."};
    }
    return {"fault", sentence + ", but none arrives here.",
            "Set the destination to this host (Set_Realtime_Push), and let the firewall pass UDP."};
}

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
