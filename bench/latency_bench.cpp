// From the last byte of a reply to the return of the call that waits for it: on a connection of ZK_Connect, whose calls
// are woken, and on one of Arm_Socket_Start, whose calls look every 10 ms.
#include <benchmark/benchmark.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "percentile.h"
#include "support/simulator_process.h"
#include "support/socket.h"
#include "zk/control.h"
#include "zk_base.h"

namespace {

using Clock = std::chrono::steady_clock;
using zk::test::checked;

// Stands between the library and the simulator, and notes when it passes a reply on.
class Relay {
 public:
    explicit Relay(int simulator) : listener_(checked(socket(AF_INET, SOCK_STREAM, 0), "socket")) {
        port_ = zk::test::bind_loopback(listener_, 0);
        checked(listen(listener_, 1), "listen");
        std::thread([this, simulator] { run(simulator); }).detach();
    }
    int port() const { return port_; }
    Clock::time_point replied() const { return Clock::time_point(Clock::duration(replied_)); }

 private:
    void run(int simulator) {
        const sockaddr_in address = zk::test::loopback(simulator);
        const int library = checked(accept(listener_, nullptr, nullptr), "accept");
        const int arm = checked(socket(AF_INET, SOCK_STREAM, 0), "socket");
        checked(connect(arm, reinterpret_cast<const sockaddr*>(&address), sizeof address), "connect");
        const int on = 1;
        for (const int end : {library, arm}) setsockopt(end, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        while (pass(arm, library) && pass(library, arm)) {
            pollfd both[] = {{arm, POLLIN, 0}, {library, POLLIN, 0}};
            poll(both, 2, -1);
        }
    }
    bool pass(int from, int to) {
        char bytes[4096];
        const ssize_t got = recv(from, bytes, sizeof bytes, MSG_DONTWAIT);
        if (got > 0) {
            replied_ = Clock::now().time_since_epoch().count();
            send(to, bytes, static_cast<size_t>(got), MSG_NOSIGNAL);
        }
        return got != 0;
    }

    int listener_, port_;
    std::atomic<Clock::rep> replied_{0};
};

enum class Kind { kHandle, kSocket };

ArmSocket opened(Kind kind, int port) {
    if (kind == Kind::kSocket) return Arm_Socket_Start("127.0.0.1", port, 0);
    ArmSocket arm = -1;
    return ZK_Connect("127.0.0.1", port, nullptr, &arm) == ZK_OK ? arm : -1;
}

void reply_to_return(benchmark::State& state, Kind kind) {
    const zk::test::SimulatorProcess simulator({"--quiet", "--no-push"});
    Relay& relay = *new Relay(simulator.port());  // its thread ends with the process
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = opened(kind, relay.port());
    if (arm <= ZK_LARGEST_STATUS) return state.SkipWithError("no connection");
    std::vector<double> latencies;
    for (auto _ : state) {
        float joint[7];
        if (const int status = Get_Joint_Degree(arm, joint)) return state.SkipWithError(ZK_Status_Text(status));
        const std::chrono::duration<double, std::milli> taken = Clock::now() - relay.replied();
        latencies.push_back(taken.count());
        state.SetIterationTime(1e-3 * taken.count());
    }
    state.counters["p50_ms"] = percentile(latencies, 0.5);
    state.counters["p99_ms"] = percentile(latencies, 0.99);
    state.counters["max_ms"] = percentile(latencies, 1);
    Arm_Socket_Close(arm);
}
void on_a_handle(benchmark::State& state) { reply_to_return(state, Kind::kHandle); }
void on_a_socket(benchmark::State& state) { reply_to_return(state, Kind::kSocket); }
BENCHMARK(on_a_handle)->UseManualTime()->Iterations(500)->Unit(benchmark::kMillisecond);
BENCHMARK(on_a_socket)->UseManualTime()->Iterations(500)->Unit(benchmark::kMillisecond);

}  // namespace
