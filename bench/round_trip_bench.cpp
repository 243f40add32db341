// What one blocking command costs on an idle library, against the simulated controller on loopback. The 20 ms pace of
// the queue and the 10 ms poll are the design; the rest is the library's cost.
#include <benchmark/benchmark.h>

#include <chrono>
#include <vector>

#include "percentile.h"
#include "support/simulator_process.h"
#include "zk_base.h"

namespace {

void blocking_setter(benchmark::State& state) {
    const zk::test::SimulatorProcess simulator({"--model", "ZK65-B"});
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = Arm_Socket_Start("127.0.0.1", simulator.port(), 0);
    if (arm <= ZK_LARGEST_STATUS) return state.SkipWithError(ZK_Status_Text(arm));

    std::vector<double> milliseconds;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const int status = Move_Continue_Cmd_Block(arm);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        if (status != ZK_OK && status != ZK_REFUSED) return state.SkipWithError(ZK_Status_Text(status));
        state.SetIterationTime(taken.count());
        milliseconds.push_back(1000 * taken.count());
    }
    state.counters["median_ms"] = percentile(milliseconds, 0.5);
    state.counters["p95_ms"] = percentile(milliseconds, 0.95);
    Arm_Socket_Close(arm);
}
BENCHMARK(blocking_setter)->UseManualTime()->Iterations(500)->Unit(benchmark::kMillisecond);

}  // namespace
