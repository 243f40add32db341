#include "wire/disturbance.h"

namespace sim {
namespace {

constexpr std::chrono::milliseconds kOvertaken{50};
constexpr int kAll = 100;
constexpr int kMinuteMs = 60'000;

}  // namespace

const std::vector<WireFaultRow>& wire_fault_rows() {
    static const std::vector<WireFaultRow> kRows{
        {"delay_ms", kMinuteMs, [](WireFaults& f) -> int& { return f.replies.delay_ms; }, "delay of each reply"},
        {"jitter_ms", kMinuteMs, [](WireFaults& f) -> int& { return f.replies.jitter_ms; }, "up to this much more"},
        {"drop", kAll, [](WireFaults& f) -> int& { return f.replies.drop; }, "percent of replies that are lost"},
        {"double", kAll, [](WireFaults& f) -> int& { return f.replies.twice; }, "percent sent twice"},
        {"reorder", kAll, [](WireFaults& f) -> int& { return f.replies.overtaken; },
         "percent sent 50 ms late, after later ones"},
        {"garbage", kAll, [](WireFaults& f) -> int& { return f.garbage; },
         "percent that a line of other bytes precedes"},
        {"slice_bytes", kMinuteMs, [](WireFaults& f) -> int& { return f.slice_bytes; },
         "replies leave in pieces of this size"},
        {"slice_delay_ms", kMinuteMs, [](WireFaults& f) -> int& { return f.slice_delay_ms; },
         "pause between the pieces (1)"},
        {"join_ms", kMinuteMs, [](WireFaults& f) -> int& { return f.join_ms; },
         "replies leave together, once in this time"},
        {"max_clients", 1000, [](WireFaults& f) -> int& { return f.max_clients; },
         "further clients are disconnected at once (1000)"},
        {"push_delay_ms", kMinuteMs, [](WireFaults& f) -> int& { return f.push.delay_ms; }, "delay of each datagram"},
        {"push_jitter_ms", kMinuteMs, [](WireFaults& f) -> int& { return f.push.jitter_ms; },
         "up to this much more, so that they overtake one another"},
        {"push_drop", kAll, [](WireFaults& f) -> int& { return f.push.drop; }, "percent of datagrams that are lost"},
        {"push_double", kAll, [](WireFaults& f) -> int& { return f.push.twice; }, "percent sent twice"},
        {"push_reorder", kAll, [](WireFaults& f) -> int& { return f.push.overtaken; }, "percent sent 50 ms late"},
    };
    return kRows;
}

std::vector<Sending> Disturbance::sendings(const std::string& message, const Disorder& disorder) {
    if (strikes(disorder.drop)) return {};
    std::chrono::milliseconds delay(disorder.delay_ms + below(disorder.jitter_ms + 1));
    const bool overtaken = strikes(disorder.overtaken);
    if (overtaken) delay += kOvertaken;
    std::vector<Sending> copies(strikes(disorder.twice) ? 2 : 1, {message, delay, !overtaken});
    return copies;
}

std::string Disturbance::garbage(int percent) {
    if (!strikes(percent)) return {};
    std::string bytes(static_cast<size_t>(1 + below(80)), ' ');
    for (char& byte : bytes) {
        do byte = static_cast<char>(below(256));
        while (byte == '\n' || byte == '\0');
    }
    return bytes + "\r\n";
}

}  // namespace sim
