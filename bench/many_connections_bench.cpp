// All 20 connections, each with a thread that sends one query after the other: counts the replies, and checks that each
// thread gets its own. The shared queue sends one request every 20 ms.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "support/simulator_process.h"
#include "zk_base.h"

namespace {

using namespace std::chrono_literals;
constexpr auto kWatched = 15s;

// Tells its arm by the angle of joint 1.
struct Asker {
    ArmSocket arm;
    float angle;
    int answers = 0, wrong = 0, failed = 0;

    void ask(const std::atomic<bool>& running) {
        while (running) {
            float joint[7] = {};
            if (Get_Joint_Degree(arm, joint) != ZK_OK) {
                ++failed;
            } else {
                ++(joint[0] == angle ? answers : wrong);
            }
        }
    }
};

void ask_for_a_while(std::vector<Asker>& askers) {
    std::atomic<bool> running{true};
    std::vector<std::thread> threads;
    for (Asker& asker : askers) threads.emplace_back([&] { asker.ask(running); });
    std::this_thread::sleep_for(kWatched);
    running = false;
    for (std::thread& thread : threads) thread.join();
}

void twenty_connections(benchmark::State& state) {
    ZK_API_Init(65, nullptr);
    std::deque<zk::test::SimulatorProcess> simulators;
    std::vector<Asker> askers;
    for (int i = 1; i <= ZK_SLOTS; ++i) {
        simulators.emplace_back(
            std::vector<std::string>{"--quiet", "--no-push", "--joints", std::to_string(i) + ",0,0,0,0,0"});
        const ArmSocket arm = Arm_Socket_Start("127.0.0.1", simulators.back().port(), 0);
        if (arm <= ZK_LARGEST_STATUS) return state.SkipWithError(ZK_Status_Text(arm));
        askers.push_back({arm, static_cast<float>(i)});
    }
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        ask_for_a_while(askers);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        int answers = 0, wrong = 0, failed = 0, fewest = INT_MAX;
        for (const Asker& asker : askers) {
            answers += asker.answers;
            wrong += asker.wrong;
            failed += asker.failed;
            fewest = std::min(fewest, asker.answers);
        }
        state.counters["frames_per_second"] = answers / taken.count();
        state.counters["fewest_of_one"] = fewest;
        state.counters["wrong"] = wrong;
        state.counters["failed"] = failed;
        if (wrong + failed > 0) state.SkipWithError("answers were wrong or did not come");
    }
    for (const Asker& asker : askers) Arm_Socket_Close(asker.arm);
}
BENCHMARK(twenty_connections)->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
