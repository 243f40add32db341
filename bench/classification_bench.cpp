// The classification of a message of 300 bytes that only the last literal of the table matches, and of one that the
// first does.
#include <benchmark/benchmark.h>

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
BENCHMARK_CAPTURE(classify, last_literal, "update_program_trajectory", 262);
BENCHMARK_CAPTURE(classify, first_literal, "add_global_waypoint", 265);

}  // namespace
