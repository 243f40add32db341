// The bytes of a controller on a connection, through cut, classification and dispatch. An input is 6 or 7 for the
// joints, then the bytes. Control characters act: 0 is sent and ends a slice, 1 ends one, 2 is a silence of three
// seconds, 4 and a name is a call that waits while the rest comes.
#include <array>

#include "library.h"

namespace {

// The replies with a text that ends the process where it does not fit: replies_fuzz reads them.
bool may_end_the_process(const std::string& bytes) {
    constexpr std::array kLiterals{"get_high_ethernet", "get_wired_net",        "get_wifi_net",
                                   "arm_software_info", "arm_software_version", "get_realtime_push"};
    return std::any_of(kLiterals.begin(), kLiterals.end(),
                       [&](const char* literal) { return bytes.find(literal) != bytes.npos; });
}

// Gives a call the time to send its request, so that the next slice is the reply.
void await_request(zk::fuzz::Arm& arm) {
    constexpr int kTries = 50;
    for (int i = 0; i < kTries && arm.requests().empty() && !arm.has_ended(); ++i) zk::fuzz::let_others_run();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::string_view kActions("\0\1\2\4", 4);
    constexpr int kMostCalls = 4;
    zk::fuzz::Input input(data, size);
    zk::fuzz::Arm arm(input.byte() == '7' ? 75 : 65);
    std::string sent;
    for (int calls = 0; !input.at_end();) {
        std::string slice = input.up_to_any(kActions);
        sent += slice;
        if (may_end_the_process(sent)) break;
        const std::uint8_t action = input.at_end() ? std::uint8_t{1} : input.byte();
        if (action == 0) slice += '\0';
        arm.send(slice);
        if (action == 2) {
            arm.be_silent();
        } else if (action == 4 && ++calls <= kMostCalls) {
            arm.call(input.up_to_any(kActions), zk::fuzz::Input());
            await_request(arm);
        }
    }
    return 0;
}
