#include "wire/disturbance.h"

namespace sim {
namespace {

constexpr std::chrono::milliseconds kOvertaken{50};

}  // namespace

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
