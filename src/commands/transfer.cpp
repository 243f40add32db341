#include "commands/transfer.h"

#include <algorithm>
#include <cstring>

#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "zk/replies/file_transfer.h"

namespace zk {
namespace {

constexpr int32_t kVerdictMs = 10000;     // beyond m_nOutTime
constexpr int32_t kLastVerdictMs = 1000;  // for the receive thread to find what came before the connection closed

}  // namespace

int32_t size_of(FILE* file) {
    if (fseeko(file, 0, SEEK_END) != 0) return -1;
    const off_t size = ftello(file);
    std::rewind(file);
    return size < 0 || size > INT32_MAX ? -1 : static_cast<int32_t>(size);
}

std::string bounded(const char* text, int32_t length, int32_t limit) {
    return std::string(text, strnlen(text, static_cast<size_t>(std::clamp(length, 0, limit))));
}

size_t last_separator(std::string_view path) {
    const size_t slash = path.rfind('/');
    return slash != path.npos ? slash : path.rfind('\\');
}

void Progress::sent(int64_t bytes) {
    if (!callback_) return;
    const int64_t hundredths = total_ > 0 ? bytes * 100 / total_ : 100;
    if (hundredths == hundredths_) return;
    hundredths_ = hundredths;
    callback_(bytes, total_, user_);
}

ByteStream file_stream(const Connection& connection) { return {connection, limit_beyond(kVerdictMs)}; }

// Waits for at most `limit` ms, and at most kLastVerdictMs once the controller has closed the connection.
static int await_message(Mailbox mailbox, const Connection& connection, const ByteStream& stream, int32_t limit) {
    int32_t start = Get_Program_Runtime();
    for (bool closed = false;;) {
        if (!closed && stream.is_closed_by_peer()) {
            closed = true;
            start = Get_Program_Runtime();
            limit = std::min(limit, kLastVerdictMs);
        }
        const int32_t left = limit - elapsed_since(start);
        const int status = await(mailbox, connection, std::clamp(left, 0, kPollMs));
        if (status != ZK_TIMEOUT || left <= 0) return status;
    }
}

int await_verdict(const Connection& connection, const ByteStream& stream, int written, int32_t* err_line) {
    if (written == ZK_NOT_CONNECTED) return ZK_NOT_CONNECTED;
    Mailbox mailbox(Send_Project_Cmd);
    const int32_t limit = written == ZK_TIMEOUT ? 0 : limit_beyond(kVerdictMs);
    if (const int status = await_message(mailbox, connection, stream, limit)) return status;
    IntReply reply;
    mailbox.clear(connection.slot());
    mailbox.copy(connection.slot(), &reply);
    if (const int status = connection.status()) return status;
    if (err_line) *err_line = reply.value;
    return reply.result;
}

}  // namespace zk
