// The classification of a message of 300 bytes that only the last literal of the table matches, of one that the first
// does, and of short ones.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "zk_base.h"

namespace {

std::string message_of_300_bytes(const std::string& literal) {
    std::string text = R"({"command":")" + literal + R"(","filler":")";
    text.append(298 - text.size(), 'x');
    return text + "\"}";
}

void classify(benchmark::State& state, const char* literal, int code) {
    const std::string message = message_of_300_bytes(literal);
    if (message.size() != 300 || Get_Json_KeyCode(message.c_str()) != code)
        return state.SkipWithError("not that message");
    for (auto _ : state) benchmark::DoNotOptimize(Get_Json_KeyCode(message.c_str()));
}
// What most frames are: the acknowledgement of a setter, of a move, and the report of its arrival.
void classify_short(benchmark::State& state, const char* message, int code) {
    if (Get_Json_KeyCode(message) != code) return state.SkipWithError("not that message");
    for (auto _ : state) benchmark::DoNotOptimize(Get_Json_KeyCode(message));
}
BENCHMARK_CAPTURE(classify_short, move, R"({"command":"movej","receive_state":true})", 189);
BENCHMARK_CAPTURE(classify_short, arrival,
                  R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,"trajectory_connect":0})",
                  64);
BENCHMARK_CAPTURE(classify_short, joint_speed, R"({"command":"set_joint_max_speed","joint_speed":true})", 2);
BENCHMARK_CAPTURE(classify_short, stop, R"({"command":"set_arm_stop","arm_stop":true})", 67);

BENCHMARK_CAPTURE(classify, last_literal, "update_program_trajectory", 262);
BENCHMARK_CAPTURE(classify, first_literal, "add_global_waypoint", 265);

// What a search cannot do without: one word is looked for, and not found.
void one_search(benchmark::State& state) {
    const std::string message = message_of_300_bytes("update_program_trajectory");
    for (auto _ : state) benchmark::DoNotOptimize(std::strstr(message.c_str(), "set_arm_stop"));
}
BENCHMARK(one_search);

}  // namespace
