// Files to a controller: a project of 5 MB, ten bytes a write, and an update of 100 MB, 2000 bytes a write. The
// simulator keeps neither; what is measured lasts from the call to the verdict.
#include <benchmark/benchmark.h>

#include <string>

#include "commands/project.h"
#include "support/simulated_arm.h"
#include "support/temporary_file.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

void project_of_5_megabytes(benchmark::State& state) {
    const TemporaryDirectory directory;
    const std::string content = program_of_size(5'000'000);
    ProjectSendParams params = project(directory.file("a.txt", content));
    params.only_save = 1;
    SimulatedArm arm({"--quiet"});
    for (auto _ : state) {
        if (Send_TrajectoryFile(arm, nullptr, params) != 0) state.SkipWithError("refused");
    }
    state.SetBytesProcessed(static_cast<int64_t>(content.size()) * state.iterations());
}
BENCHMARK(project_of_5_megabytes)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void update_of_100_megabytes(benchmark::State& state) {
    constexpr size_t size = 100'000'000;
    const TemporaryDirectory directory;
    const std::string path = directory.file("a.bin", std::string(size, '\x5a'));
    SimulatedArm arm({"--quiet"});
    for (auto _ : state) {
        if (UpdataSoftWare_Block_E(arm, path.c_str(), static_cast<int32_t>(path.size())) != 0)
            state.SkipWithError("refused");
    }
    state.SetBytesProcessed(static_cast<int64_t>(size) * state.iterations());
}
BENCHMARK(update_of_100_megabytes)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}  // namespace
