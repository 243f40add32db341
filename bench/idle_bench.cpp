// Processor time and context switches of an idle library with 20 connections, beside those of a bare loop of 20
// non-blocking reads and a sleep of a millisecond. Both run for the same wall time; what counts is the whole process.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

#include "zk_base.h"

namespace {

using namespace std::chrono_literals;
constexpr auto kWatched = 10s;

// Twenty connections of this process to itself.
std::array<int, ZK_SLOTS> connections() {
    const int server = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(server, reinterpret_cast<sockaddr*>(&address), length);
    listen(server, ZK_SLOTS);
    getsockname(server, reinterpret_cast<sockaddr*>(&address), &length);
    std::array<int, ZK_SLOTS> clients;
    for (int& client : clients) {
        client = socket(AF_INET, SOCK_STREAM, 0);
        connect(client, reinterpret_cast<sockaddr*>(&address), length);
        accept(server, nullptr, nullptr);
    }
    return clients;
}

struct Cost {
    double seconds, switches;
};

Cost cost_so_far() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), static_cast<double>(usage.ru_nvcsw + usage.ru_nivcsw)};
}

// Of a second.
Cost cost_of_waiting() {
    const Cost before = cost_so_far();
    std::this_thread::sleep_for(kWatched);
    const Cost after = cost_so_far();
    const double watched = std::chrono::duration<double>(kWatched).count();
    return {(after.seconds - before.seconds) / watched, (after.switches - before.switches) / watched};
}

Cost cost_of_bare_loop(const std::array<int, ZK_SLOTS>& sockets) {
    std::atomic<bool> running{true};
    std::thread loop([&] {
        char buffer[2048];
        while (running) {
            for (const int descriptor : sockets)
                benchmark::DoNotOptimize(recv(descriptor, buffer, sizeof buffer, MSG_DONTWAIT));
            usleep(1000);
        }
    });
    const Cost cost = cost_of_waiting();
    running = false;
    loop.join();
    return cost;
}

// The bare loop runs first, since the library's threads cannot be stopped.
void idle_library(benchmark::State& state) {
    const auto sockets = connections();
    for (auto _ : state) {
        const Cost bare = cost_of_bare_loop(sockets);
        ZK_API_Init(65, nullptr);
        for (const int descriptor : sockets) Init_Socket_Joint(65, descriptor);
        const Cost idle = cost_of_waiting();
        state.SetIterationTime(idle.seconds);
        state.counters["peer_ms"] = 1000 * bare.seconds;
        state.counters["ratio"] = idle.seconds / bare.seconds;
        state.counters["switches"] = idle.switches;
        state.counters["peer_switches"] = bare.switches;
    }
}
BENCHMARK(idle_library)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
