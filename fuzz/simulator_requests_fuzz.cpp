// The simulated controller's requests. An input is a digit for the model, then what a client sends. Control characters
// act: 1 and a byte let simulated time pass, 2 reconnects, 3 sends more blanks than a request may have.
#include "simulated.h"

namespace {

constexpr int kMostSteps = 400;  // two seconds of simulated time for each input

void expect_messages(const std::string& replies) {
    for (std::size_t begin = 0, end; begin < replies.size(); begin = end + 2) {
        end = replies.find("\r\n", begin);
        zk::fuzz::expect(end != replies.npos, "a reply ends with CRLF");
        zk::fuzz::expect(sim::Json::parse(replies.substr(begin, end - begin)).has_value(), "a reply is JSON");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zk::fuzz::Input input(data, size);
    zk::fuzz::Simulated controller(static_cast<std::uint8_t>(input.byte() - '0'));
    int steps = 0;
    while (!input.at_end()) {
        controller.write(input.up_to_any("\x01\x02\x03"));
        expect_messages(controller.replies());
        switch (input.byte()) {
            case 1:
                for (int left = input.byte() + 1; left > 0 && steps < kMostSteps; --left, ++steps) controller.step();
                break;
            case 2:
                controller.connect();
                break;
            case 3:
                controller.write(std::string(70'000, ' '));
                break;
        }
        expect_messages(controller.replies());
    }
    return 0;
}
