// Datagrams of the real-time stream: parsed twice into a record of exactly its size.
#include <cstring>
#include <memory>

#include "input.h"
#include "zk/replies/realtime.h"
#include "zk/status.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using zk::fuzz::expect;
    constexpr std::size_t kLongestDatagram = 1024;
    const std::string text(reinterpret_cast<const char*>(data), std::min(size, kLongestDatagram));
    const auto state = std::make_unique<RobotStatus>();
    char address[] = "192.168.1.18";
    state->arm_ip = address;
    const int status = Parser_Realtime_Arm_Joint_State(text.c_str(), state.get());
    expect(status == ZK_OK || (status >= ZK_BAD_REPLY && status <= ZK_WRONG_TYPE), "a datagram gets 0, 9, 10 or 11");
    expect(state->arm_ip == address, "a datagram leaves the sender's address as it is");

    RobotStatus again = *state;
    expect(Parser_Realtime_Arm_Joint_State(text.c_str(), &again) == status, "a status depends on the datagram alone");
    expect(std::memcmp(&again, state.get(), sizeof again) == 0, "a datagram sets the same fields every time");
    return 0;
}
