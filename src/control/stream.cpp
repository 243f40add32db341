#include "control/stream.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <iterator>
#include <mutex>
#include <string>

#include "connection/black_box.h"
#include "connection/own_thread.h"
#include "connection/realtime.h"
#include "connection/shared_memory.h"
#include "connection/slots.h"
#include "control/dial.h"
#include "zk/control.h"
#include "zk/status.h"

namespace zk {
namespace {

constexpr size_t kLongestDatagram = 2048;
constexpr int kMostAtOnce = 16;  // datagrams of one port before the next port has its turn
constexpr int kOffsets = 256;
constexpr int kStillRecords = 4;
constexpr float kStillDegrees = 0.002f;

// The last records of one writer, for any number of readers that never wait for it. The writer fills the cells in turn:
// a reader tries again only when the writer has overtaken its copy.
class LastRecords {
 public:
    void publish(const StreamRecord& record) {
        const uint32_t number = latest_.load(std::memory_order_relaxed) + 1;
        Cell& cell = cells_[number % kCells];
        cell.number.exchange(0, std::memory_order_acq_rel);
        write_words(&cell.record, &record, sizeof record);
        cell.number.store(number, std::memory_order_release);
        latest_.store(number, std::memory_order_release);
    }

    // False before the first record.
    bool copy(StreamRecord& record) {
        for (;;) {
            const uint32_t number = latest_.load(std::memory_order_acquire);
            if (number == 0) return false;
            if (copy(number, record)) return true;
        }
    }

    // The first one after a sequence number, or the oldest that is kept. False when the last one is not after it.
    bool copy_after(uint32_t sequence, StreamRecord& record) {
        for (;;) {
            const uint32_t number = latest_.load(std::memory_order_acquire);
            if (number == 0) return false;
            if (!copy(number, record)) continue;
            if (static_cast<int32_t>(record.sequence - sequence) <= 0) return false;  // the count wraps
            const uint32_t back = std::min(record.sequence - sequence - 1, kKept - 1);
            if (back == 0 || copy(number - back, record)) return true;
        }
    }

 private:
    // Further cells are written while the kept ones are read.
    static constexpr uint32_t kKept = ZK_STATES_KEPT, kCells = 2 * kKept;
    struct Cell {
        std::atomic<uint32_t> number{0};
        StreamRecord record{};
    };
    // False when the cell holds another record by now.
    bool copy(uint32_t number, StreamRecord& record) {
        Cell& cell = cells_[number % kCells];
        if (cell.number.load(std::memory_order_acquire) != number) return false;
        read_words(&record, &cell.record, sizeof record);
        return cell.number.fetch_add(0, std::memory_order_acq_rel) == number;
    }
    std::array<Cell, kCells> cells_;
    std::atomic<uint32_t> latest_{0};
};

// The smallest of the last values: of host time minus controller time that of the datagram that travelled fastest.
class ClockOffset {
 public:
    double add(double offset) {
        offsets_[next_++ % kOffsets] = offset;
        return *std::min_element(offsets_.begin(), offsets_.begin() + std::min<size_t>(next_, kOffsets));
    }

 private:
    std::array<double, kOffsets> offsets_;
    size_t next_ = 0;
};

// Where the arm stood still last: through some records in a row.
class Rest {
 public:
    const float* add(const float (&joint)[7]) {
        const bool same =
            std::equal(joint, joint + 7, last_, [](float a, float b) { return std::fabs(a - b) < kStillDegrees; });
        still_ = same ? still_ + 1 : 0;
        std::copy(joint, joint + 7, last_);
        if (is_first_ || still_ >= kStillRecords) std::copy(joint, joint + 7, rest_);
        is_first_ = false;
        return rest_;
    }

 private:
    float last_[7] = {}, rest_[7] = {};
    int still_ = 0;
    bool is_first_ = true;
};

struct Stream {
    ArmSocket handle = 0;
    in6_addr peer{};
    int32_t port = 0;
    StreamRecord record{};
    ClockOffset offset;
    Rest rest;
};

struct Port {
    int32_t number = 0;
    int socket = -1;  // -1: free
    bool is_closing = false;
    int64_t dropped = 0;
};

// Held while streams open and close, and while a datagram is handled.
std::mutex lock;
std::array<Stream, ZK_SLOTS> streams;
std::array<Port, ZK_SLOTS> ports;
std::array<LastRecords, ZK_SLOTS> published;
int wake_up = -1;                             // of the thread
auto& closed = *new std::condition_variable;  // a port; never destroyed: the thread outlives main

Stream* find_stream(ArmSocket handle) {
    const auto found =
        std::find_if(streams.begin(), streams.end(), [&](const Stream& stream) { return stream.handle == handle; });
    return handle == 0 || found == streams.end() ? nullptr : &*found;
}

Port* find_port(int32_t number) {
    const auto found = std::find_if(ports.begin(), ports.end(),
                                    [&](const Port& port) { return port.socket >= 0 && port.number == number; });
    return found == ports.end() ? nullptr : &*found;
}

// An IPv4 address as the one that an IPv6 socket reports for it.
bool parse_address(const char* text, in6_addr& address) {
    return inet_pton(AF_INET6, text, &address) == 1 ||
           inet_pton(AF_INET6, ("::ffff:" + std::string(text)).c_str(), &address) == 1;
}

in6_addr sender_of(const sockaddr_storage& from) {
    if (from.ss_family == AF_INET6) return reinterpret_cast<const sockaddr_in6&>(from).sin6_addr;
    in6_addr mapped{};
    mapped.s6_addr[10] = mapped.s6_addr[11] = 0xff;
    std::memcpy(mapped.s6_addr + 12, &reinterpret_cast<const sockaddr_in&>(from).sin_addr, 4);
    return mapped;
}

// A socket that receives from both families, or from IPv4 alone where the system has no IPv6. Sets errno on failure.
Descriptor bound_socket(int32_t port) {
    Descriptor both(socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int off = 0;
    sockaddr_in6 any{};
    any.sin6_family = AF_INET6;
    any.sin6_port = htons(static_cast<uint16_t>(port));
    if (both.get() >= 0 && setsockopt(both.get(), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off) == 0) {
        if (bind(both.get(), reinterpret_cast<sockaddr*>(&any), sizeof any) == 0) return both;
        if (errno != EADDRNOTAVAIL) return Descriptor();
    }
    Descriptor four(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_in any_four{};
    any_four.sin_family = AF_INET;
    any_four.sin_port = any.sin6_port;
    if (four.get() < 0 || bind(four.get(), reinterpret_cast<sockaddr*>(&any_four), sizeof any_four) != 0)
        return Descriptor();
    return four;
}

// False when the datagram cannot be read; then nothing changes.
bool take(Stream& stream, const char* text) {
    const int64_t now = monotonic_ns();
    StreamRecord& record = stream.record;
    RobotStatus status = record.status;
    double time = -1;
    if (parse_datagram(text, &status, &time) != ZK_OK) return false;
    black_box::add(black_box::Kind::kPush, stream.handle, text, black_box::is_on() ? std::strlen(text) : 0);
    const bool is_new_error = (status.arm_err != 0 && status.arm_err != record.status.arm_err) ||
                              (status.sys_err != 0 && status.sys_err != record.status.sys_err);
    if (is_new_error) black_box::keep("arm-error");
    status.errCode = ZK_OK;
    status.arm_ip = nullptr;
    record.status = status;
    record.handle = stream.handle;
    ++record.sequence;
    record.host_ns = now;
    const bool has_time = time >= 0 && time < 9e15;
    record.controller_ms = has_time ? static_cast<int64_t>(time) : -1;
    if (has_time) record.clock_offset_ms = stream.offset.add(static_cast<double>(now) / 1e6 - time);
    std::copy_n(stream.rest.add(status.joint_position), 7, record.rest);
    published[static_cast<size_t>(&stream - streams.data())].publish(record);
    return true;
}

// Handles one datagram; false when there is none, or the socket is no port's any more.
bool receive(int descriptor) {
    const std::lock_guard guard(lock);
    const auto port =
        std::find_if(ports.begin(), ports.end(), [&](const Port& other) { return other.socket == descriptor; });
    if (port == ports.end()) return false;
    char text[kLongestDatagram + 1];
    sockaddr_storage from{};
    socklen_t size = sizeof from;
    const ssize_t got = recvfrom(descriptor, text, kLongestDatagram, 0, reinterpret_cast<sockaddr*>(&from), &size);
    if (got < 0) return false;
    text[got] = '\0';
    const in6_addr sender = sender_of(from);
    const auto stream = std::find_if(streams.begin(), streams.end(), [&](const Stream& other) {
        return other.handle != 0 && other.port == port->number && std::memcmp(&other.peer, &sender, sizeof sender) == 0;
    });
    if (stream == streams.end() || !take(*stream, text)) ++port->dropped;
    return true;
}

// A port that the thread polls is free only after the poll, so the thread itself closes it.
void close_ports() {
    for (Port& port : ports) {
        if (!std::exchange(port.is_closing, false)) continue;
        close(port.socket);
        port.socket = -1;
    }
    closed.notify_all();
}

void run() {
    for (;;) {
        std::array<pollfd, ZK_SLOTS + 1> wanted{{{wake_up, POLLIN, 0}}};
        nfds_t count = 1;
        {
            const std::lock_guard guard(lock);
            close_ports();
            for (const Port& port : ports) {
                if (port.socket >= 0) wanted[count++] = {port.socket, POLLIN, 0};
            }
        }
        if (poll(wanted.data(), count, -1) < 0) continue;
        uint64_t woken;
        if (wanted[0].revents) (void)!::read(wake_up, &woken, sizeof woken);
        for (nfds_t i = 1; i < count; ++i) {
            for (int n = 0; wanted[i].revents && n < kMostAtOnce && receive(wanted[i].fd);) ++n;
        }
    }
}

void wake() {
    const uint64_t one = 1;
    (void)!::write(wake_up, &one, sizeof one);
}

// Ends the stream, and closes its port when no other stream uses it.
void release(Stream& stream, std::unique_lock<std::mutex>& guard) {
    if (stream.handle == 0) return;
    stream.handle = 0;
    const bool is_used = std::any_of(streams.begin(), streams.end(), [&](const Stream& other) {
        return other.handle != 0 && other.port == stream.port;
    });
    if (is_used) return;
    Port& unused = *find_port(stream.port);
    unused.is_closing = true;
    wake();
    closed.wait(guard, [&] { return !unused.is_closing; });
}

bool start_thread() {
    if (wake_up >= 0) return true;
    Descriptor event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (event.get() < 0) return false;
    wake_up = event.get();
    if (const int error = start_own_thread(run)) {
        wake_up = -1;
        errno = error;
        return false;
    }
    event.release();
    return true;
}

}  // namespace

int64_t monotonic_ns() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

int open_stream(int slot, ArmSocket handle, const char* peer, int32_t port) {
    in6_addr address;
    if (!parse_address(peer, address) || port < 1 || port > 65535) return EINVAL;
    std::unique_lock guard(lock);
    if (!start_thread()) return errno;
    Stream& stream = streams[static_cast<size_t>(slot)];
    release(stream, guard);
    if (Port* known = find_port(port)) {
        known->is_closing = false;
    } else {
        Descriptor socket = bound_socket(port);
        if (socket.get() < 0) return errno;
        Port& free = *std::find_if(ports.begin(), ports.end(), [](const Port& p) { return p.socket < 0; });
        free = {port, socket.release(), false, 0};
        wake();
    }
    stream = {};
    stream.handle = handle;
    stream.peer = address;
    stream.port = port;
    return 0;
}

void close_stream(ArmSocket handle) {
    std::unique_lock guard(lock);
    if (Stream* stream = find_stream(handle)) release(*stream, guard);
}

bool last_record(int slot, ArmSocket handle, StreamRecord& record) {
    return published[static_cast<size_t>(slot)].copy(record) && record.handle == handle;
}

bool record_after(int slot, ArmSocket handle, uint32_t sequence, StreamRecord& record) {
    return published[static_cast<size_t>(slot)].copy_after(sequence, record) && record.handle == handle;
}

StreamCounts stream_counts(ArmSocket handle) {
    const std::lock_guard guard(lock);
    const Stream* stream = find_stream(handle);
    if (!stream) return {};
    return {stream->record.sequence, find_port(stream->port)->dropped};
}

}  // namespace zk
