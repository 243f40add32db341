// The listener of the real-time stream and its thread.
#include "connection/realtime.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "connection/elapsed.h"
#include "connection/in_use.h"
#include "connection/shared_memory.h"
#include "connection/slots.h"
#include "zk/replies/realtime.h"
#include "zk/status.h"

RobotStatus robotstatus;
RealtimeListener listener;

namespace zk {
namespace {

constexpr int32_t kIdleMs = 100;
constexpr int32_t kPollStateMs = 5;
constexpr size_t kLongestDatagram = 1024;

char sender_text[INET_ADDRSTRLEN];

// Odd while the thread writes robotstatus, so that a poll never copies half a datagram.
std::atomic<uint32_t> publication{0};

void publish(const RobotStatus& status) {
    publication.fetch_add(1, std::memory_order_acq_rel);
    write_words(&robotstatus, &status, sizeof status);
    publication.fetch_add(1, std::memory_order_acq_rel);
}

void copy_state(RobotStatus* status) {
    for (Pause pause;; pause.next()) {
        const uint32_t before = publication.load(std::memory_order_acquire);
        read_words(status, &robotstatus, sizeof *status);
        if (before % 2 == 0 && publication.fetch_add(0, std::memory_order_acq_rel) == before) return;
    }
}

void note_sender(const in_addr& address) {
    char text[INET_ADDRSTRLEN];
    inet_ntop(AF_INET, &address, text, sizeof text);
    if (std::strcmp(text, sender_text) != 0) std::memcpy(sender_text, text, sizeof text);
}

// Returns the bytes of a datagram, or -1 when there is none or the listener is closed.
ssize_t receive(int32_t descriptor, char (&text)[kLongestDatagram + 1], in_addr& sender) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ssize_t got = -1;
    int error = EAGAIN;
    realtime_use.enter(descriptor);
    if (read(listener.socket, std::memory_order_seq_cst) == descriptor) {
        got = recvfrom(descriptor, text, kLongestDatagram, 0, reinterpret_cast<sockaddr*>(&address), &length);
        error = errno;
    }
    realtime_use.leave();
    sender = address.sin_addr;
    if (got < 0 && error != EAGAIN && error != EINTR) sleep_cp(kIdleMs);
    return read(listener.socket) == descriptor ? got : -1;  // a close wakes the call with an empty result
}

void handle(const char* text, const in_addr& sender) {
    RobotStatus status = robotstatus;  // this thread alone writes it
    note_sender(sender);
    status.arm_ip = sender_text;
    status.errCode = Parser_Realtime_Arm_Joint_State(text, &status);
    publish(status);
    write(listener.receiving, uint8_t{1}, std::memory_order_release);
    if (const RealtimeCallback callback = read(listener.callback, std::memory_order_acquire)) callback(status);
}

}  // namespace

int listen_on(int32_t port) {
    const int32_t descriptor = lift_descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    write(listener.socket, descriptor, std::memory_order_release);
    if (descriptor == -1) return ZK_NO_STREAM;
    const timeval timeout{2, 0};
    if (setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout) != 0) {
        std::perror("setsockopt");
        return ZK_NO_STREAM;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    (void)bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
    return ZK_OK;
}

void stop_listening() {
    const int32_t descriptor = std::atomic_ref(listener.socket).exchange(-1);
    if (descriptor == -1) return;
    if (descriptor > 0) shutdown(descriptor, SHUT_RDWR);  // wakes the real-time thread
    close_unused(descriptor);
}

}  // namespace zk

using namespace zk;

ZK_API void Realtime_Arm_Joint_State(RealtimeCallback callback) {
    write(listener.callback, callback, std::memory_order_release);
}

ZK_API int Get_Realtime_Arm_Joint_State(RobotStatus* status) {
    if (!status) return ZK_BAD_ARGUMENT;
    const int32_t start = Get_Program_Runtime();
    while (read(listener.receiving, std::memory_order_acquire) == 0) {
        if (elapsed_since(start) >= read(m_nOutTime_max)) return ZK_NO_STREAM;
        sleep_cp(kPollStateMs);
    }
    copy_state(status);
    return ZK_OK;
}

ZK_API void* threadFunction(void*) {
    for (;;) {
        const int32_t start = Get_Program_Runtime();
        int32_t descriptor;
        while (!is_listening(descriptor = read(listener.socket, std::memory_order_acquire))) sleep_cp(kIdleMs);

        char text[kLongestDatagram + 1];
        in_addr sender;
        const ssize_t got = receive(descriptor, text, sender);
        if (got < 0) continue;
        text[got] = '\0';
        handle(text, sender);
        if (elapsed_since(start) > read(listener.cycle) * int64_t{100} + 199) write(listener.receiving, uint8_t{0});
    }
    return nullptr;
}
