#include "connection/line.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "connection/in_use.h"
#include "connection/journal.h"
#include "connection/transmit.h"
#include "connection/wait.h"
#include "zk/mailboxes.h"

namespace zk {
namespace {

constexpr int kSlotBits = 5;
constexpr unsigned kGenerations = 1u << (30 - kSlotBits);
static_assert(ZK_SLOTS <= 1 << kSlotBits);

std::array<Line, ZK_SLOTS>& lines() {
    static auto& only = *new std::array<Line, ZK_SLOTS>;  // never destroyed: the receive thread outlives main
    return only;
}

ArmSocket next_handle(int slot) {
    static std::array<unsigned, ZK_SLOTS> opened{};  // the table of connections is locked
    const unsigned generation = ++opened[static_cast<size_t>(slot)] % kGenerations;
    return kFirstHandle | static_cast<ArmSocket>(generation << kSlotBits) | slot;
}

ssize_t send_on(int descriptor, const char* bytes, size_t size) {
    return ::send(descriptor, bytes, size, MSG_DONTWAIT | MSG_NOSIGNAL);
}

}  // namespace

Line& Line::at(int slot) { return lines()[static_cast<size_t>(slot)]; }

Line* Line::of(ArmSocket handle) {
    const int slot = is_handle(handle) ? handle & ((1 << kSlotBits) - 1) : ZK_SLOTS;
    return slot < ZK_SLOTS && at(slot).handle() == handle ? &at(slot) : nullptr;
}

ArmSocket Line::open(int descriptor, int32_t arm_mode, const HeartbeatQuery& heartbeat, std::string received) {
    const ArmSocket handle = take_slot(arm_mode, [&](int slot) {
        const ArmSocket handle = next_handle(slot);
        forget_round_trips(slot);
        Line& line = at(slot);
        const std::lock_guard guard(line.lock_);
        line.introduced_ = false;
        line.loss_.reset();
        line.traffic_.reset();
        line.motions_.reset();
        line.heartbeat_.begin(heartbeat);
        line.received_ = std::move(received);
        line.transfers_ = 0;
        line.stops_at_exit = false;
        line.descriptor_.store(descriptor, std::memory_order_release);
        line.handle_.store(handle, std::memory_order_release);
        return handle;
    });
    wake_receiver();
    return handle;
}

std::string Line::take_received() {
    const std::lock_guard guard(lock_);
    return std::exchange(received_, {});
}

std::string Line::cause() const {
    const std::lock_guard guard(lock_);
    return loss_.cause;
}

ssize_t Line::send(ArmSocket handle, const char* bytes, size_t size, bool announces_file) {
    ssize_t sent = -1;
    int error = EBADF;
    {
        const std::lock_guard guard(lock_);
        const bool is_held = (transfers_ > 0 && !announces_file) || (stops_at_exit && process_ends);
        error = is_held ? EBUSY : EBADF;
        if (handle_ == handle && !is_lost() && !is_held) {
            sent = send_on(descriptor_, bytes, size);
            error = errno;
        }
    }
    if (sent < 0 && (error == EPIPE || error == ECONNRESET)) lose(handle, "the controller closed the connection");
    if (sent > 0 && static_cast<size_t>(sent) < size)
        lose(handle, "the controller reads nothing: a frame went out in part");
    if (sent <= 0) {
        ++traffic_.dropped;
        return sent;
    }
    ++traffic_.frames_sent;
    traffic_.bytes_sent += sent;
    return sent;
}

int Line::duplicate(ArmSocket handle) {
    const std::lock_guard guard(lock_);
    return handle_ == handle && !is_lost() ? fcntl(descriptor_, F_DUPFD_CLOEXEC, 0) : -1;
}

void Line::lose(ArmSocket handle, const char* cause) {
    {
        const std::lock_guard guard(lock_);
        if (handle_ != handle || is_lost()) return;
        loss_.cause = cause;
        loss_.has_come.store(true, std::memory_order_release);
        shutdown(descriptor_, SHUT_RDWR);
    }
    wake_receiver();
}

// Once: the receive thread does, or a close that comes first.
void Line::report_loss(ArmSocket handle) {
    if (!loss_.is_reported.exchange(true)) report_change(handle, ZK_CONNECTION_LOST, cause().c_str());
}

void Line::introduce() {
    introduced_ = true;
    wake_receiver();
}

// The receive thread and all callbacks are out of the line before its slot is free.
bool Line::close(ArmSocket handle) {
    int descriptor = -1;
    {
        const std::lock_guard guard(lock_);
        if (handle_ != handle) return false;
        handle_.store(0, std::memory_order_seq_cst);
        stops_at_exit = false;
        descriptor = descriptor_.exchange(-1);
        shutdown(descriptor, SHUT_RDWR);
    }
    const bool was_introduced = introduced_;
    receive_use.wait_until_left(descriptor);
    if (!on_receive_thread) dispatch_use.wait_until_left(slot_of(handle));
    for (Pause pause; reports > 0 && !is_reporting() && !on_receive_thread;) pause.next();
    if (was_introduced && is_lost()) report_loss(handle);
    forget_connection(handle);
    forget_frames(handle);
    wake_receiver();
    ::close(descriptor);
    if (was_introduced) report_change(handle, ZK_CONNECTION_CLOSED, "");
    return true;
}

void Line::begin_transfer(ArmSocket handle) {
    const std::lock_guard guard(lock_);
    if (handle_ == handle) ++transfers_;
}

void Line::end_transfer(ArmSocket handle) {
    const std::lock_guard guard(lock_);
    if (handle_ == handle) --transfers_;
}

void Line::heard(ssize_t bytes) {
    traffic_.bytes_received += bytes;
    heartbeat_.heard();
}

int Line::beat(ArmSocket handle) {
    if (!heartbeat_.is_on() || is_lost()) return -1;
    if (const int left = heartbeat_.left()) return left;
    if (heartbeat_.is_unanswered()) {
        lose(handle, "the controller fell silent: it answers no heartbeat");
        return -1;
    }
    heartbeat_.wait_a_period();
    const std::string& request = heartbeat_.request();
    if (send_silently(handle, request.data(), request.size()) > 0) heartbeat_.sent();
    return heartbeat_.left();
}

bool Line::takes(int slot, const char* message) {
    ++traffic_.messages_received;
    const int code = Get_Json_KeyCode(message);
    if (code == 0) ++traffic_.unmatched;
    return !heartbeat_.takes(slot, code);
}

ssize_t send_silently(ArmSocket socket, const char* bytes, size_t size, bool announces_file) {
    if (!is_handle(socket)) return send_on(socket, bytes, size);
    errno = EBADF;
    Line* line = Line::of(socket);
    return line ? line->send(socket, bytes, size, announces_file) : -1;
}

ssize_t send_now(ArmSocket socket, const char* bytes, size_t size, bool announces_file) {
    const ssize_t sent = send_silently(socket, bytes, size, announces_file);
    if (sent > 0) log_frame(socket, Way::kSent, bytes, static_cast<size_t>(sent));
    return sent;
}

bool send_beside(int descriptor, const char* bytes, size_t size, int milliseconds) {
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    auto* const address = reinterpret_cast<sockaddr*>(&peer);
    if (getpeername(descriptor, address, &length) != 0) return false;
    const int beside = socket(peer.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval limit{milliseconds / 1000, milliseconds % 1000 * 1000};
    const bool sent = beside >= 0 && setsockopt(beside, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) == 0 &&
                      connect(beside, address, length) == 0 &&
                      send_on(beside, bytes, size) == static_cast<ssize_t>(size);
    if (beside >= 0) ::close(beside);
    return sent;
}

}  // namespace zk
