// Streaming: what a set-point costs its caller, beside what writing such a message cannot do without; and a stream of a
// thousand set-points a second against the simulated controller, of which none may get lost, alone and beside busy
// arms.
#include <benchmark/benchmark.h>
#include <cjson/cJSON.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <deque>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "percentile.h"
#include "support/line_client.h"
#include "support/simulator_process.h"
#include "zk_base.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Joints = std::array<float, 6>;

// Both ends of a connection within this process: the cheapest that there is, so that the system hides little.
struct SocketPair {
    int client, server;

    SocketPair() {
        int ends[2];
        socketpair(AF_UNIX, SOCK_STREAM, 0, ends);
        client = ends[0];
        server = ends[1];
    }

    std::string received() const {
        char bytes[512];
        const ssize_t size = recv(server, bytes, sizeof bytes, 0);
        return std::string(bytes, static_cast<size_t>(std::max<ssize_t>(size, 0)));
    }
};

template <class Act>
double microseconds(Act act) {
    const auto start = Clock::now();
    act();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// The same message by the plainest means.
void bare_set_point(int socket, const Joints& joints) {
    int wire[6];
    for (size_t i = 0; i < joints.size(); ++i) wire[i] = static_cast<int>(joints[i] * 1000);
    cJSON* const object = cJSON_CreateObject();
    cJSON_AddStringToObject(object, "command", "movej_canfd");
    cJSON_AddItemToObject(object, "joint", cJSON_CreateIntArray(wire, 6));
    cJSON_AddBoolToObject(object, "follow", true);
    cJSON_AddNumberToObject(object, "expand", 0);
    char* const text = cJSON_Print(object);
    char message[512];
    const size_t length = std::strlen(text);
    std::memcpy(message, text, length);
    std::memcpy(message + length, "\r\n", 2);
    send(socket, message, length + 2, MSG_DONTWAIT);
    cJSON_free(text);
    cJSON_Delete(object);
}

// The call, its peer and the floor, the sending of a text that is ready, take turns, so that whatever else the machine
// does strikes all.
void cost_of_a_set_point(benchmark::State& state) {
    ZK_API_Init(65, nullptr);
    const SocketPair library, bare, ready;
    Init_Socket_Joint(65, library.client);
    std::vector<double> calls, bares, floors;
    Joints joints{};
    for (auto _ : state) {
        for (size_t i = 0; i < joints.size(); ++i) joints[i] += 0.001f * static_cast<float>(i + 1);
        calls.push_back(microseconds([&] { Movej_CANFD(library.client, joints.data(), 1, 0); }));
        const std::string sent = library.received();
        bares.push_back(microseconds([&] { bare_set_point(bare.client, joints); }));
        if (bare.received() != sent) return state.SkipWithError("the two messages are not the same");
        floors.push_back(microseconds([&] { send(ready.client, sent.data(), sent.size(), MSG_DONTWAIT); }));
        (void)ready.received();
        state.SetIterationTime(1e-6 * calls.back());
    }
    state.counters["call_us"] = percentile(calls, 0.5);
    state.counters["peer_us"] = percentile(bares, 0.5);
    state.counters["floor_us"] = percentile(floors, 0.5);
    state.counters["ratio"] = percentile(calls, 0.5) / percentile(bares, 0.5);
    Arm_Socket_Close(library.client);
    for (const int end : {library.server, bare.client, bare.server, ready.client, ready.server}) close(end);
}
BENCHMARK(cost_of_a_set_point)->UseManualTime()->Iterations(20000)->Unit(benchmark::kMicrosecond);

std::atomic<int64_t> reports{0};

// Acts at absolute deadlines, as a control loop does; the milliseconds between the ends of two acts. A loop that has a
// core of its own may read the clock until its time has come: that spares it the time a processor takes to wake up.
template <class Act>
std::vector<double> periods_of(int count, bool spins, Act act) {
    std::vector<double> periods;
    periods.reserve(static_cast<size_t>(count));
    Clock::time_point due = Clock::now(), before = due;
    for (int i = 1; i <= count; ++i) {
        due += 1ms;
        if (!spins) std::this_thread::sleep_until(due);
        while (Clock::now() < due) {
        }
        act(i);
        const Clock::time_point now = Clock::now();
        periods.push_back(std::chrono::duration<double, std::milli>(now - before).count());
        before = now;
    }
    return periods;
}

nlohmann::json counts_of(int port) {
    return nlohmann::json::parse(zk::test::LineClient(port).ask(R"({"command":"zk_sim_stream"})"));
}

// The set-points that the simulator has got once no more come.
nlohmann::json final_counts(int port) {
    nlohmann::json counts = counts_of(port), before;
    do {
        std::this_thread::sleep_for(200ms);
        before = std::exchange(counts, counts_of(port));
    } while (before != counts);
    return counts;
}

// An arm with a thread that queries its state without a pause.
class BusyArm {
 public:
    BusyArm() : arm_(Arm_Socket_Start("127.0.0.1", simulator_.port(), 0)), thread_([this] { ask(); }) {}
    ~BusyArm() {
        running_ = false;
        thread_.join();
        Arm_Socket_Close(arm_);
    }

    int answers() const { return answers_; }

 private:
    void ask() {
        Pose pose;
        Joints joints;
        uint16_t arm_err, sys_err;
        while (running_) answers_ += Get_Current_Arm_State(arm_, joints.data(), &pose, &arm_err, &sys_err) == ZK_OK;
    }

    const zk::test::SimulatorProcess simulator_{std::vector<std::string>{"--quiet"}};
    const ArmSocket arm_;
    std::atomic<bool> running_{true};
    std::atomic<int> answers_{0};
    std::thread thread_;
};

void thousand_a_second(benchmark::State& state) {
    constexpr int kCount = 30'000;
    const zk::test::SimulatorProcess simulator({"--model", "ZK65-B"});
    ZK_API_Init(65, [](ArmMotionReport) { ++reports; });
    const ArmSocket arm = Arm_Socket_Start("127.0.0.1", simulator.port(), 0);
    if (arm <= ZK_LARGEST_STATUS) return state.SkipWithError(ZK_Status_Text(arm));
    Joints start;
    if (const int status = Get_Joint_Degree(arm, start.data())) return state.SkipWithError(ZK_Status_Text(status));
    std::deque<BusyArm> others(static_cast<size_t>(state.range(0)));
    const bool spins = state.range(1);
    for (auto _ : state) {
        std::vector<double> floors = periods_of(kCount, spins, [](int) {});
        std::vector<double> calls;
        calls.reserve(kCount);
        std::vector<double> periods = periods_of(kCount, spins, [&](int i) {
            Joints joints = start;
            joints[0] += 5 * std::sin(1e-3f * static_cast<float>(i));
            calls.push_back(microseconds([&] { Movej_CANFD(arm, joints.data(), 1, 0); }));
        });
        for (const BusyArm& other : others) state.counters["answers_of_others"] += other.answers();
        state.counters["period_p50_ms"] = percentile(periods, 0.5);
        state.counters["period_p99_ms"] = percentile(periods, 0.99);
        state.counters["period_p99.9_ms"] = percentile(periods, 0.999);
        state.counters["period_max_ms"] = percentile(periods, 1);
        state.counters["floor_p99.9_ms"] = percentile(floors, 0.999);
        state.counters["call_p99.9_us"] = percentile(calls, 0.999);
        const nlohmann::json counts = final_counts(simulator.port());
        state.counters["lost"] = kCount - counts.at("received").get<int>();
        state.counters["refused"] = counts.at("refused").get<int>();
        state.counters["reports"] = static_cast<double>(reports);
        if (counts.at("received") != kCount) state.SkipWithError("set-points were lost");
    }
    Arm_Socket_Close(arm);
}
BENCHMARK(thousand_a_second)
    ->ArgNames({"busy_arms", "spins"})
    ->ArgsProduct({{0, 3}, {0, 1}})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace
