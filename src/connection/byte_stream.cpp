#include "connection/byte_stream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "connection/elapsed.h"
#include "zk/status.h"

namespace zk {
namespace {

constexpr int kLookMs = 10;

}  // namespace

ByteStream::ByteStream(const Connection& connection, int32_t silence_limit)
    : connection_(connection),
      line_(Line::of(connection.socket())),
      descriptor_(line_ ? line_->duplicate(connection.socket()) : fcntl(connection.socket(), F_DUPFD_CLOEXEC, 0)),
      silence_limit_(silence_limit) {
    release_request();
    if (line_) line_->begin_transfer(connection_.socket());
}

ByteStream::~ByteStream() {
    if (line_) line_->end_transfer(connection_.socket());
    if (descriptor_ >= 0) close(descriptor_);
}

// The controller takes the next request for the rest of the file.
static int lose_if_early(const Connection& connection, int status) {
    Line* line = Line::of(connection.socket());
    if (line && (status == ZK_CANCELLED || status == ZK_DEADLINE || status == ZK_TIMEOUT))
        line->lose(connection.socket(), "a file transfer ended half-way");
    return status;
}

Transfer::Transfer(const Connection& connection) : connection_(connection) {
    if (Line* line = Line::of(connection.socket())) line->begin_transfer(connection.socket());
}

Transfer::~Transfer() {
    if (Line* line = Line::of(connection_.socket())) line->end_transfer(connection_.socket());
}

int Transfer::announced(int status) const { return lose_if_early(connection_, status); }

int ByteStream::write(const char* bytes, size_t size) {
    const int status = write_all(bytes, size);
    return lose_if_early(connection_, status);
}

int ByteStream::write_all(const char* bytes, size_t size) {
    while (size > 0) {
        if (const int status = descriptor_ < 0 ? int(ZK_NOT_CONNECTED) : connection_.status()) return status;
        const ssize_t written = ::send(descriptor_, bytes, size, MSG_DONTROUTE | MSG_DONTWAIT | MSG_NOSIGNAL);
        if (written > 0) {
            bytes += written;
            size -= static_cast<size_t>(written);
        } else if (written < 0 && (errno == EAGAIN || errno == EINTR)) {
            if (const int status = wait_for_room()) return status;
        } else {
            return ZK_SEND_FAILED;
        }
    }
    return ZK_OK;
}

bool ByteStream::is_closed_by_peer() const {
    pollfd peer{descriptor_, POLLRDHUP, 0};
    return poll(&peer, 1, 0) > 0;
}

// Polls, since a close at this end does not wake a waiting thread.
int ByteStream::wait_for_room() const {
    const int32_t start = Get_Program_Runtime();
    pollfd room{descriptor_, POLLOUT, 0};
    while (poll(&room, 1, kLookMs) <= 0) {
        if (const int status = connection_.status()) return status;
        if (elapsed_since(start) >= silence_limit_) return ZK_TIMEOUT;
    }
    return ZK_OK;
}

}  // namespace zk
