#include "commands/transfer.h"

#include <algorithm>
#include <cstring>

#include "connection/exchange.h"
#include "zk/replies/file_transfer.h"

namespace zk {
namespace {

constexpr int32_t kVerdictMs = 10000;  // behind m_nOutTime

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
    if (!tell_) return;
    const int64_t hundredths = total_ > 0 ? bytes * 100 / total_ : 100;
    if (hundredths == hundredths_) return;
    hundredths_ = hundredths;
    tell_(bytes, total_, user_);
}

ByteStream file_stream(ArmSocket socket) { return ByteStream(socket, limit_beyond(kVerdictMs)); }

int await_verdict(ArmSocket socket, int written, int32_t* err_line) {
    if (written == ZK_NOT_CONNECTED) return ZK_NOT_CONNECTED;
    Mailbox mailbox(Send_Project_Cmd);
    int slot = -1;
    const int32_t limit = written == ZK_TIMEOUT ? 0 : limit_beyond(kVerdictMs);
    if (const int status = await(mailbox, socket, limit, slot)) return status;
    IntReply reply;
    mailbox.clear(slot);
    mailbox.copy(slot, &reply);
    if (err_line) *err_line = reply.value;
    return reply.result;
}

}  // namespace zk
