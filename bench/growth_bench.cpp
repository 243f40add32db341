// How the library's processor time grows: that of the receive thread with the connections and with the length of a
// message, that of the sender with the set-points of a second. bench/growth.py draws it.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <ctime>
#include <deque>
#include <string>
#include <thread>

#include "zk_base.h"

namespace {

double seconds_of(clockid_t clock) {
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

clockid_t clock_of_receive_thread() {
    clockid_t clock;
    pthread_getcpuclockid(m_hRThread, &clock);
    return clock;
}

// A connection whose other end is here.
class Arm {
 public:
    Arm() {
        std::array<int, 2> ends;
        socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
        for (size_t i = 0; i < 2; ++i) {
            ends_[i] = fcntl(ends[i], F_DUPFD, ZK_LARGEST_STATUS + 1);  // no socket of an arm lies below
            close(ends[i]);
        }
        Init_Socket_Joint(65, ends_[0]);
        slot_ = static_cast<size_t>(Get_Socket_Idx(ends_[0]));
    }
    ~Arm() {
        Arm_Socket_Close(ends_[0]);
        close(ends_[1]);
    }
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;

    ArmSocket socket() const { return ends_[0]; }
    void say(const std::string& message) const { send(ends_[1], message.data(), message.size(), 0); }
    void wait_for_message() const {
        while (count().load() == 0) sched_yield();
        count() = 0;
    }
    void read_all() const {
        char bytes[4096];
        while (recv(ends_[1], bytes, sizeof bytes, MSG_DONTWAIT) > 0) continue;
    }

 private:
    std::atomic_ref<int32_t> count() const { return std::atomic_ref(Joint_Max_Speed_Cmd[slot_].count); }

    std::array<int, 2> ends_;
    size_t slot_;
};

std::string message_of(int64_t bytes) {
    std::string text = R"({"state":"joint_max_speed)";
    text.append(static_cast<size_t>(bytes) - text.size() - 4, 'x');
    return text + "\"}\r\n";
}

// One message on each of the arms, again and again.
void receive(benchmark::State& state, int64_t arms, int64_t bytes) {
    ZK_API_Init(65, nullptr);
    std::deque<Arm> open(static_cast<size_t>(arms));
    const std::string message = message_of(bytes);
    const clockid_t clock = clock_of_receive_thread();
    for (auto _ : state) {
        const double before = seconds_of(clock);
        for (const Arm& arm : open) arm.say(message);
        for (const Arm& arm : open) arm.wait_for_message();
        state.SetIterationTime(seconds_of(clock) - before);
    }
    while (!open.empty()) open.pop_back();  // a close closes the later ones as well
}

void connections(benchmark::State& state) { receive(state, state.range(0), 300); }
void bytes_of_a_message(benchmark::State& state) { receive(state, 1, state.range(0)); }

// The time of a second's set-points and of the sleeps between them.
void set_points_a_second(benchmark::State& state) {
    ZK_API_Init(65, nullptr);
    const Arm arm;
    const auto period = std::chrono::nanoseconds(std::chrono::seconds(1)) / state.range(0);
    const float joints[6] = {};
    for (auto _ : state) {
        const double before = seconds_of(CLOCK_THREAD_CPUTIME_ID);
        auto due = std::chrono::steady_clock::now();
        double reading = 0;  // the other end's time
        for (int64_t i = 0; i < state.range(0); ++i) {
            std::this_thread::sleep_until(due += period);
            Movej_CANFD(arm.socket(), joints, 1, 0);
            const double start = seconds_of(CLOCK_THREAD_CPUTIME_ID);
            arm.read_all();
            reading += seconds_of(CLOCK_THREAD_CPUTIME_ID) - start;
        }
        state.SetIterationTime(seconds_of(CLOCK_THREAD_CPUTIME_ID) - before - reading);
    }
}

BENCHMARK(connections)->DenseRange(1, ZK_SLOTS)->UseManualTime()->Iterations(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bytes_of_a_message)
    ->ArgsProduct({{30, 100, 300, 1000, 2000, 4000, 6000, 8000, 10000}})
    ->UseManualTime()
    ->Iterations(1000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(set_points_a_second)
    ->ArgsProduct({{1, 50, 100, 200, 400, 600, 800, 1000}})
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
