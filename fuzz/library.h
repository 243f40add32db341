// The library with a connection on a socket pair, and any command by its name. To be included once in a program: it
// defines the library's clock and sleep.
#pragma once

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

#include "input.h"
#include "interface.h"

namespace zk::fuzz {

inline std::atomic<std::int32_t> now{0};  // moved by the fuzzer alone

inline void pass(std::int32_t milliseconds) { now += milliseconds; }
inline void let_others_run() { std::this_thread::sleep_for(std::chrono::microseconds(20)); }

// A wait without an end is a finding: the engine ends it.
template <class Condition>
void wait_until(Condition holds) {
    while (!holds()) let_others_run();
}

// ---------------------------------------------------------------------------------------------------------- Commands
// --

// An argument of a command: small numbers, short texts, and room for what a pointer may point to.
template <class T>
T argument(Input& input, std::deque<std::vector<char>>& memory) {
    if constexpr (std::is_pointer_v<T>) {
        using Element = std::remove_const_t<std::remove_pointer_t<T>>;
        constexpr std::size_t kRoom = 4096 + 16 * sizeof(Element), kLongestText = 8, kFilled = 16;
        std::vector<char>& room = memory.emplace_back(kRoom);
        auto* const elements = reinterpret_cast<Element*>(room.data());
        if constexpr (std::is_const_v<std::remove_pointer_t<T>> && std::is_arithmetic_v<Element>) {
            const std::size_t filled = std::is_same_v<Element, char> ? input.byte() % (kLongestText + 1) : kFilled;
            for (std::size_t i = 0; i < filled; ++i) elements[i] = static_cast<Element>(input.byte());
        }
        return elements;
    } else if constexpr (std::is_same_v<T, bool>) {
        return input.byte() % 2 == 1;
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(input.byte() % 16);
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(static_cast<std::int8_t>(input.byte()));
    } else {
        static_cast<void>(input);
        return T{};
    }
}

using Command = std::function<void(ArmSocket, Input)>;

template <class... Arguments>
Command command(int (*function)(ArmSocket, Arguments...)) {
    return [function](ArmSocket socket, Input input) {
        std::deque<std::vector<char>> memory;
        function(socket, argument<Arguments>(input, memory)...);
    };
}

// A name that is none stands for some command.
inline const Command& command_of(const std::string& name) {
    static const std::map<std::string, Command> all{
#define ZK_NAMED(name) {#name, command(name)},
        ZK_EVERY_COMMAND(ZK_NAMED)
#undef ZK_NAMED
    };
    if (const auto found = all.find(name); found != all.end()) return found->second;
    std::size_t number = 0;
    for (const char letter : name) number = number * 31 + static_cast<std::uint8_t>(letter);
    return std::next(all.begin(), static_cast<std::ptrdiff_t>(number % all.size()))->second;
}

// -------------------------------------------------------------------------------------------------------- Connection
// --

// A connection and the controller's end of it: a socket pair, or what the start-up opens.
class Wire {
 public:
    Wire() {
        constexpr int kAboveStatuses = 100;
        int ends[2];
        expect(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "a socket pair opens");
        controller_ = ends[0];
        library_ = fcntl(ends[1], F_DUPFD_CLOEXEC, kAboveStatuses);
        close(ends[1]);
    }
    explicit Wire(int controller) : controller_(controller) {
        const int on = 1;  // each slice goes out by itself
        setsockopt(controller, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    ~Wire() { reset(); }  // the library closes its own end
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    void opened(ArmSocket library) { library_ = library > ZK_LARGEST_STATUS ? library : 0; }
    ArmSocket library() const { return library_; }  // 0 while there is none
    void send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(controller_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            if (sent < 0 && errno != EAGAIN) return;  // the library has closed
            sent > 0 ? bytes.remove_prefix(static_cast<std::size_t>(sent)) : let_others_run();
        }
    }
    bool is_read() const {
        int unread = 0;
        return library_ == 0 || (ioctl(library_, FIONREAD, &unread) == 0 && unread == 0);
    }
    std::string requests() {
        char bytes[4096];
        const ssize_t got = recv(controller_, bytes, sizeof bytes, MSG_DONTWAIT);
        return {bytes, got > 0 ? static_cast<std::size_t>(got) : 0};
    }
    void send_no_more() { shutdown(controller_, SHUT_WR); }
    void hang_up() { close(std::exchange(controller_, -1)); }
    void reset() {  // leaves no port behind
        const linger at_once{1, 0};
        setsockopt(controller_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
        hang_up();
    }

 private:
    int controller_;
    std::atomic<ArmSocket> library_{0};
};

// Where a start-up connects to.
class Listener {
 public:
    Listener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        expect(bind(descriptor_, reinterpret_cast<sockaddr*>(&address), size) == 0 && listen(descriptor_, 8) == 0,
               "a port of the loopback is free");
        getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
    }
    int port() const { return port_; }
    int accept() const { return ::accept(descriptor_, nullptr, nullptr); }
    bool is_called() const {
        pollfd caller{descriptor_, POLLIN, 0};
        return poll(&caller, 1, 0) == 1;
    }

 private:
    int descriptor_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int port_;
};

// The connection in the first slot stays open. A message on it shows when the receive thread has come round.
class Receiver {
 public:
    static Receiver& started() {
        static Receiver only;
        return only;
    }
    void come_round(std::size_t times = 1) {
        for (; times > 0; --times) {
            std::atomic_ref count(Set_Arm_Power_Cmd[0].count);
            count = 0;
            wire_.send("{\"command\":\"set_arm_power\",\"arm_power\":true}\r\n");
            wait_until([&] { return count.load() > 0; });
        }
    }

 private:
    Receiver() {
        prctl(PR_SET_TIMERSLACK, 1UL);  // nanoseconds: a short sleep is short
        listener.socket = -1;
        ZK_API_Init(65, [](ArmMotionReport report) {
            expect(report.report_type >= 1 && report.report_type <= 3, "a report has a type");
        });
        m_nOutTime = 10'000;  // a silence lets no call run out
        Init_Socket_Joint(65, wire_.library());
    }
    Wire wire_;
};

inline thread_local std::atomic<int>* own_sleeps = nullptr;

// One call at a time, on a thread of its own.
class Caller {
 public:
    ~Caller() { join(); }
    template <class Call>
    void start(Call call) {
        join();
        ended_ = false;
        sleeps_ = 0;
        thread_ = std::thread([this, call = std::move(call)] {
            own_sleeps = &sleeps_;
            call();
            ended_ = true;
        });
    }
    bool has_ended() const { return ended_; }
    int sleeps() const { return sleeps_; }  // of the call, in the library
    void join() {
        if (thread_.joinable()) thread_.join();
    }

 private:
    std::thread thread_;
    std::atomic<bool> ended_{true};
    std::atomic<int> sleeps_{0};
};

constexpr std::size_t kMostConnections = 4;  // at once, the receiver's among them

// An input finds the library as the one before did.
inline void forget() {
    wait_until([] { return ZK_Queue_Empty(&Socket_Tx_Buffer) == 1; });
    expect(m_nSockeRIinfosLen == 0, "a call takes its entry off the pending list");
#define ZK_CLEAR(name) std::memset(static_cast<void*>(name), 0, kMostConnections * sizeof name[0]);
    ZK_EVERY_MAILBOX(ZK_CLEAR)
#undef ZK_CLEAR
    Algo_Init_Sys_Data(0, 0);
    Tool_Matrix = Frame_Matrix = Matrix{};
    Curr_Robot_Type = Curr_Senser_Type = 0;
    g_is_robot_type_i = 0;
}

// A connection for the time of one input, and one call at a time on it.
class Arm {
 public:
    explicit Arm(int arm_mode) : receiver_(Receiver::started()), wire_(std::make_unique<Wire>()) {
        Init_Socket_Joint(arm_mode, wire_->library());
    }
    // The start-up is the first call.
    Arm(int arm_mode, const Listener& controller) : receiver_(Receiver::started()) {
        CUR_ARM_MODE = arm_mode;
        std::promise<Wire*> wire;
        caller_.start([&controller, accepted = wire.get_future().share()] {
            const ArmSocket socket = Arm_Socket_Start("127.0.0.1", controller.port(), 0);
            accepted.get()->opened(socket);
        });
        wire_ = std::make_unique<Wire>(controller.accept());
        wire.set_value(wire_.get());
    }
    ~Arm() {
        wire_->send_no_more();
        receiver_.come_round(2 + std::min(sent_ / kBytesPerRound, kMostRounds));
        finish_call();
        close();
        forget();
    }
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;

    void send(std::string_view slice) {
        sent_ += slice.size();
        wire_->send(slice);
        wait_until([&] { return wire_->is_read(); });
    }
    std::string requests() { return wire_->requests(); }
    // A silence that ends a message which is not whole.
    void be_silent() {
        receiver_.come_round();
        pass(3001);
        receiver_.come_round(2);
    }

    void call(const std::string& name, Input arguments) {
        finish_call();
        caller_.start([socket = wire_->library(), &command = command_of(name), arguments = std::move(arguments)] {
            command(socket, arguments);
        });
    }
    bool has_ended() const { return caller_.has_ended(); }
    // Lets time pass. A call that waits as long as the arm moves, or longer than any limit, ends with its connection.
    void finish_call() {
        int seconds = 0;
        wait_until([&] {
            if (has_ended()) return true;
            pass(1000);
            if (++seconds == kLongestLimit) close();
            return false;
        });
        caller_.join();
    }

 private:
    static constexpr int kLongestLimit = 200;              // seconds
    static constexpr std::size_t kBytesPerRound = 7 * 16;  // the shortest messages that one turn dispatches
    static constexpr std::size_t kMostRounds = 100;        // for all that a text may hold

    void close() {
        Arm_Socket_Close(wire_->library());
        wire_->opened(0);
    }

    Receiver& receiver_;
    std::unique_ptr<Wire> wire_;
    std::size_t sent_ = 0;
    Caller caller_;
};

}  // namespace zk::fuzz

ZK_API int32_t Get_Program_Runtime(void) { return zk::fuzz::now; }
ZK_API void sleep_cp(int32_t milliseconds) {
    if (zk::fuzz::own_sleeps) ++*zk::fuzz::own_sleeps;
    std::this_thread::sleep_for(std::chrono::microseconds(10 * std::min(milliseconds, 100)));
}
