// What the library makes of a message, beside cJSON's tree of the same text: a state, an acknowledgement, and a
// datagram of the real-time stream.
#include <benchmark/benchmark.h>
#include <cjson/cJSON.h>

#include <string>

#include "messages.h"
#include "zk_base.h"

namespace {

using namespace zk::bench;

void cjson_tree(benchmark::State& state, const char* text) {
    for (auto _ : state) {
        cJSON* const tree = cJSON_Parse(text);
        benchmark::DoNotOptimize(tree);
        cJSON_Delete(tree);
    }
}

// With the classification, and the mailbox that a call then reads.
void handle_reply(benchmark::State& state, const char* text) {
    std::string message = text;
    for (auto _ : state) benchmark::DoNotOptimize(handle_Recv_Json(0, message.data()));
}
BENCHMARK_CAPTURE(handle_reply, state, kState);
BENCHMARK_CAPTURE(cjson_tree, state, kState);
BENCHMARK_CAPTURE(handle_reply, acknowledgement, kAcknowledgement);
BENCHMARK_CAPTURE(cjson_tree, acknowledgement, kAcknowledgement);

void read_datagram(benchmark::State& state) {
    RobotStatus status{};
    if (Parser_Realtime_Arm_Joint_State(kDatagram, &status) != ZK_OK) return state.SkipWithError("not a datagram");
    for (auto _ : state) benchmark::DoNotOptimize(Parser_Realtime_Arm_Joint_State(kDatagram, &status));
}
BENCHMARK(read_datagram);
BENCHMARK_CAPTURE(cjson_tree, datagram, kDatagram);

}  // namespace
