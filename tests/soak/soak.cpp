// Twenty connections to simulated controllers that fail in every way they know, from many threads, for as long as
// asked. Prints what each call returned and how long it took, and fails for a call beyond its limit, a status that its
// header does not name, or memory and descriptors that are not returned.
#include <dirent.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "support/simulator_process.h"
#include "support/temporary_file.h"
#include "zk_base.h"

namespace {

using namespace zk::test;
using Clock = std::chrono::steady_clock;
using Random = std::mt19937;

constexpr int kConnections = ZK_SLOTS, kSimulators = 5;
constexpr int kConnectMs = 3000, kDeadlineMs = 3000;
constexpr int kSlackMs = 5000;  // a loaded machine runs a thread late

int one_of(Random& random, int count) { return std::uniform_int_distribution(0, count - 1)(random); }

// ------------------------------------------------------------------------------------------- What headers name --

using Statuses = std::set<int>;
const Statuses kNone = {ZK_OK}, kHandle = {ZK_OK, ZK_STALE_HANDLE};
const Statuses kConnect = {ZK_OK,        ZK_TABLE_FULL, ZK_UNKNOWN_HOST,  ZK_CONNECTION_REFUSED, ZK_NO_ROUTE,
                           ZK_NO_ANSWER, ZK_LOST,       ZK_NO_CONTROLLER, ZK_WRONG_JOINT_COUNT,  ZK_NO_SOCKET,
                           ZK_NO_MEMORY, ZK_TIMEOUT};
const Statuses kStop = {ZK_OK, ZK_SEND_FAILED, ZK_LOST, ZK_STALE_HANDLE};
const Statuses kStream = {ZK_OK, ZK_SENDING_FILE};
const Statuses kPost = {ZK_OK, ZK_NOT_CONNECTED, ZK_SEND_FAILED, ZK_SENDING_FILE, ZK_LOST};

Statuses with(Statuses some, std::initializer_list<int> others) {
    some.insert(others);
    return some;
}
const Statuses kReply = with(kPost, {ZK_REFUSED, ZK_TIMEOUT, ZK_NOT_BOOLEAN, ZK_BAD_REPLY, ZK_WRONG_SIZE, ZK_WRONG_TYPE,
                                     ZK_CANCELLED, ZK_DEADLINE, ZK_BUSY});
const Statuses kMove = with(kReply, {ZK_NO_TRAJECTORY}), kFile = with(kReply, {ZK_BAD_PATH});

// ------------------------------------------------------------------------------------------------- What was seen --

struct Seen {
    std::map<int, long> statuses;
    double slowest_ms = 0;
};

class Report {
 public:
    // Makes the call and notes it.
    template <class Call>
    int operator()(const char* name, int limit_ms, const Statuses& named, Call call) {
        const auto start = Clock::now();
        const int status = call();
        const double took = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        const std::lock_guard guard(lock_);
        Seen& seen = seen_[name];
        ++seen.statuses[status];
        seen.slowest_ms = std::max(seen.slowest_ms, took);
        if (took > limit_ms + kSlackMs) complain("%s took %.0f ms, its limit is %d ms\n", name, took, limit_ms);
        if (!named.contains(status)) complain("%s returned %d\n", name, status);
        return status;
    }

    template <class... Arguments>
    void complain(const char* format, Arguments... arguments) {
        ++complaints_;
        std::fprintf(stderr, format, arguments...);
    }

    int print() {
        const std::lock_guard guard(lock_);
        std::printf("%-22s %9s  %s\n", "call", "slowest", "status: count");
        for (const auto& [name, seen] : seen_) {
            std::printf("%-22s %6.0f ms ", name.c_str(), seen.slowest_ms);
            for (const auto& [status, count] : seen.statuses) std::printf(" %d: %ld", status, count);
            std::printf("\n");
        }
        return complaints_;
    }

 private:
    std::mutex lock_;
    std::map<std::string, Seen> seen_;
    std::atomic<int> complaints_{0};
};
Report report;

int open_descriptors() {
    int count = 0;
    DIR* directory = opendir("/proc/self/fd");
    while (readdir(directory)) ++count;
    closedir(directory);
    return count;
}

long resident_kilobytes() {
    std::ifstream status("/proc/self/statm");
    long pages = 0, resident = 0;
    status >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE) / 1024;
}

// ---------------------------------------------------------------------------------------------------- The actors --

std::atomic<bool> over{false};
std::atomic<int> started{0};  // simulators
std::array<std::atomic<int>, kSimulators> ports;
std::array<std::atomic<ArmSocket>, kConnections> arms;

// One connection: whatever an application does on it, in random order.
class Worker {
 public:
    explicit Worker(int number) : number_(number), random_(static_cast<unsigned>(number)) {}

    void run() {
        while (!over) {
            if (arm_ == 0) {
                connect();
            } else {
                act();
            }
        }
        close();
    }

 private:
    void connect() {
        ZK_ConnectOptions options{};
        options.timeout_ms = kConnectMs;
        options.heartbeat_ms = one_of(random_, 2) ? 200 : 0;
        options.flags = ZK_KEEP_MODEL;
        const int port = ports[static_cast<size_t>(number_ % kSimulators)];
        report("ZK_Connect", kConnectMs, kConnect, [&] { return ZK_Connect("localhost", port, &options, &arm_); });
        if (arm_ == 0) return std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ZK_Set_Deadline(arm_, kDeadlineMs, ZK_ALL_THREADS | (one_of(random_, 2) ? ZK_STOP_AT_DEADLINE : 0));
        arms[static_cast<size_t>(number_)] = arm_;
    }

    void close() {
        if (arm_ == 0) return;
        arms[static_cast<size_t>(number_)] = 0;
        report("ZK_Close", 0, kHandle, [&] { return ZK_Close(arm_); });
        arm_ = 0;
    }

    void act() {
        using Act = void (Worker::*)();
        static constexpr Act kActs[] = {&Worker::query, &Worker::query, &Worker::move, &Worker::stream, &Worker::stop,
                                        &Worker::state, &Worker::bound, &Worker::send, &Worker::queue,  &Worker::look};
        if (one_of(random_, 60) == 0) return close();
        (this->*kActs[one_of(random_, std::size(kActs))])();
        ZK_ConnectionRecord record;
        if (ZK_Connection(arm_, &record) == 0 && record.state == ZK_CONNECTION_LOST) close();
    }

    void query() {
        float joint[7];
        Pose pose{};
        uint16_t arm_err, sys_err;
        report("Get_Current_Arm_State", kDeadlineMs, kReply,
               [&] { return Get_Current_Arm_State(arm_, joint, &pose, &arm_err, &sys_err); });
        report("Get_Joint_Speed_Block", kDeadlineMs, kReply, [&] { return Get_Joint_Speed_Block(arm_, joint); });
    }
    void move() {
        float joint[7];
        for (float& angle : joint) angle = static_cast<float>(one_of(random_, 30));
        const bool waits = one_of(random_, 2);
        report("Movej_Cmd", kDeadlineMs, kMove, [&] { return Movej_Cmd(arm_, joint, 60, 0, 0, waits); });
    }
    void stream() {
        float joint[7] = {};
        for (int i = 0; i < 20; ++i) report("Movej_CANFD", 0, kStream, [&] { return Movej_CANFD(arm_, joint, 0, 0); });
    }
    void stop() {
        constexpr int kKinds[] = {ZK_STOP, ZK_SLOW_STOP, ZK_PAUSE, ZK_STOP | ZK_DROP_QUEUED};
        report("ZK_Stop", 1000, kStop, [&] { return ZK_Stop(arm_, kKinds[one_of(random_, 4)]); });
    }
    void state() {
        report("Move_Continue_Cmd", kDeadlineMs, kReply, [&] { return Move_Continue_Cmd(arm_, true); });
    }
    void bound() {
        ZK_Set_Deadline(arm_, 20 + one_of(random_, 200), 0);
        query();
        ZK_Set_Deadline(arm_, 0, 0);
    }
    void send() {
        static const std::string text(20000, 'x');
        int32_t line = 0;
        report("Send_Project_Block", kDeadlineMs, kFile,
               [&] { return Send_Project_Block(arm_, text.c_str(), static_cast<int32_t>(text.size()), &line); });
    }
    void queue() {
        report("Move_Pause_Cmd_NonBlock", 0, kPost, [&] { return Move_Pause_Cmd_NonBlock(arm_); });
    }
    void look() {
        ZK_Advice advice;
        report("ZK_Explain", 0, kNone, [&] { return ZK_Explain(ZK_LOST, 0, 0, &advice); });
    }

    int number_;
    Random random_;
    ArmSocket arm_ = 0;
};

void cancel_at_random() {
    Random random(1000);
    while (!over) {
        const ArmSocket arm = arms[static_cast<size_t>(one_of(random, kConnections))];
        if (arm) report("ZK_Cancel", 0, kHandle, [&] { return ZK_Cancel(arm); });
        std::this_thread::sleep_for(std::chrono::milliseconds(one_of(random, 100)));
    }
}

void inject_fault(int port, Random& random) {
    constexpr const char* kFaults[] = {
        R"("silent_on":["get_joint_max_speed"])",
        R"("refuse_on":["movej"])",
        R"("delay_ms":300)",
        R"("transfer":{"kind":"stall","at":5000})",
        R"("transfer":{"kind":"close","at":5000})",
        R"("arm_err":4102)",
        R"("silent_on":[],"refuse_on":[],"delay_ms":0,"arm_err":0,"transfer":{"kind":""})"};
    ArmSocket arm = 0;
    if (ZK_Connect("localhost", port, nullptr, &arm) != 0) return;
    const std::string text =
        std::string(R"({"command":"zk_sim_fault",)") + kFaults[one_of(random, std::size(kFaults))] + "}\r\n";
    Add_Queue(arm, text.c_str(), static_cast<int32_t>(text.size()));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    ZK_Close(arm);
}

// Kills, halts and disturbs the controllers.
void disturb(std::array<std::unique_ptr<SimulatorProcess>, kSimulators>& simulators) {
    Random random(2000);
    const auto start = [&](size_t i) {
        simulators[i] = std::make_unique<SimulatorProcess>(std::vector<std::string>{"--quiet"});
        ports[i] = simulators[i]->port();
        ++started;
    };
    while (!over) {
        const size_t i = static_cast<size_t>(one_of(random, kSimulators));
        switch (one_of(random, 6)) {
            case 0:
                kill(simulators[i]->id(), SIGKILL);
                std::this_thread::sleep_for(std::chrono::milliseconds(one_of(random, 500)));
                start(i);
                break;
            case 1:
                kill(simulators[i]->id(), SIGSTOP);
                std::this_thread::sleep_for(std::chrono::milliseconds(one_of(random, 2000)));
                kill(simulators[i]->id(), SIGCONT);
                break;
            default:
                inject_fault(ports[i], random);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(one_of(random, 1000)));
    }
}

}  // namespace

int main(int count, char** arguments) {
    const double minutes = count > 1 ? std::atof(arguments[1]) : 2;
    std::array<std::unique_ptr<SimulatorProcess>, kSimulators> simulators;
    for (size_t i = 0; i < kSimulators; ++i) {
        simulators[i] = std::make_unique<SimulatorProcess>(std::vector<std::string>{"--quiet"});
        ports[i] = simulators[i]->port();
    }
    const auto end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(minutes * 60));
    std::vector<std::thread> threads;
    std::vector<Worker> workers;
    for (int i = 0; i < kConnections - 1; ++i) workers.emplace_back(i);  // the last is for the faults
    for (Worker& worker : workers) threads.emplace_back([&worker] { worker.run(); });
    threads.emplace_back(cancel_at_random);
    threads.emplace_back([&] { disturb(simulators); });

    std::this_thread::sleep_until(end - (end - Clock::now()) * 3 / 4);
    const long memory = resident_kilobytes();
    std::this_thread::sleep_until(end);
    over = true;
    for (std::thread& thread : threads) thread.join();

    const long grown = resident_kilobytes() - memory;
    const int left = ZK_Close_All();
    std::printf("memory grew by %ld kB in the last three quarters; %d descriptors are open\n", grown,
                open_descriptors());
    if (grown > 8192) report.complain("memory grew by %ld kB\n", grown);
    if (left != 0) report.complain("%d connections were left\n", left);
    // Each simulator keeps the port reserved that it pushes to.
    if (open_descriptors() > 30 + started) report.complain("%d descriptors are open\n", open_descriptors());
    return report.print() > 0;
}
