// The thread that reads every connection, one slot after the other. It joins reads until a line feed, cuts the text
// into messages at CRLF and dispatches them. Between two turns of a slot it keeps one flag: whether to drop
// the rest of a message that is too long.
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

#include "connection/elapsed.h"
#include "connection/in_use.h"
#include "connection/slots.h"
#include "zk/mailboxes.h"

namespace zk {
namespace {

constexpr int kLongestMessage = 10240;  // exclusive; the terminating zero needs the last place
constexpr int kChunk = 2048;
constexpr int kShortestText = 7;  // a shorter text cannot be a reply
constexpr int kFirstCut = 5;
constexpr int32_t kSilenceMs = 3000;
constexpr int kMostDroppedReads = 5;  // in one turn: about a message, so that the other arms have theirs

enum class Read { kBytes, kNothing, kEnd };

class SlotReader {
 public:
    explicit SlotReader(char (&text)[kLongestMessage]) : text_(text) {}

    void run(int slot) {
        connection_ = Connection::at(slot);
        if (connection_.socket() == 0) return;
        length_ = 0;
        if (is_overlong() ? !drop_up_to_line_feed() : receive() != Read::kBytes) return;
        if (joined()) dispatch();
    }

 private:
    // A message that is too long, and whose line feed has not come yet.
    struct Overlong {
        Connection connection;
        int32_t last_byte;
    };
    std::optional<Overlong>& overlong() { return overlong_[static_cast<size_t>(connection_.slot())]; }
    bool is_overlong() { return overlong() && !overlong()->connection.has_changed(); }

    // Appends up to a chunk to the text. A zero byte ends a read.
    Read receive() {
        if (length_ + kChunk >= kLongestMessage && !make_room()) return Read::kEnd;
        receive_use.enter(connection_.socket());
        if (connection_.has_changed()) {
            receive_use.leave();
            length_ = 0;
            return Read::kEnd;
        }
        const int room = std::min(kChunk, kLongestMessage - 1 - length_);
        const ssize_t got = recv(connection_.socket(), text_ + length_, static_cast<size_t>(room), MSG_DONTWAIT);
        const int error = errno;
        receive_use.leave();
        if (got == 0) return Read::kEnd;
        if (got < 0) return error == EAGAIN || error == EINTR ? Read::kNothing : Read::kEnd;
        text_[length_ + got] = '\0';
        length_ += static_cast<int>(strnlen(text_ + length_, static_cast<size_t>(got)));
        return Read::kBytes;
    }

    // Joins reads until the text ends in a line feed or is empty, or until either end has closed. The text of a peer
    // that stays silent in the middle of a message is dropped, since the other arms are not read meanwhile.
    bool joined() {
        int32_t last_byte = Get_Program_Runtime();
        while (length_ > 0 && text_[length_ - 1] != '\n') {
            const Read read = receive();
            if (read == Read::kEnd) break;
            if (read == Read::kBytes) {
                last_byte = Get_Program_Runtime();
            } else if (elapsed_since(last_byte) >= kSilenceMs) {
                std::fprintf(stderr, "ZK_Base: socket %d fell silent in the middle of a message; %d bytes dropped\n",
                             connection_.socket(), length_);
                return false;
            } else {
                sleep_cp(1);
            }
        }
        return true;
    }

    // Dispatches the whole messages of a text that nearly fills the buffer, and moves the rest to the front. A message
    // that fills the buffer alone is dropped, its rest in the next turns.
    bool make_room() {
        const std::string_view text(text_, static_cast<size_t>(length_));
        const size_t line_end = text.rfind("\r\n");
        if (line_end != text.npos) {
            const int whole = static_cast<int>(line_end) + 2;
            const int rest = length_ - whole;
            length_ = whole;
            dispatch();
            std::memmove(text_, text_ + whole, static_cast<size_t>(rest));
            length_ = rest;
        } else if (length_ >= kLongestMessage - 1) {
            std::fprintf(stderr, "ZK_Base: socket %d sent a message of %d bytes or more; it is dropped\n",
                         connection_.socket(), kLongestMessage);
            overlong() = {connection_, Get_Program_Runtime()};
            length_ = 0;
            return false;
        }
        return true;
    }

    // Leaves what follows the line feed in the text; false while the line feed has not come. After a silence the next
    // bytes are a new message.
    bool drop_up_to_line_feed() {
        for (int reads = 0; reads < kMostDroppedReads; ++reads) {
            length_ = 0;
            if (receive() != Read::kBytes) {
                if (elapsed_since(overlong()->last_byte) >= kSilenceMs) overlong().reset();
                return false;
            }
            overlong()->last_byte = Get_Program_Runtime();
            const char* line_feed = static_cast<const char*>(std::memchr(text_, '\n', static_cast<size_t>(length_)));
            if (!line_feed) continue;
            overlong().reset();
            length_ -= static_cast<int>(line_feed + 1 - text_);
            std::memmove(text_, line_feed + 1, static_cast<size_t>(length_) + 1);
            return true;
        }
        return false;
    }

    // A message ends at CRLF; the last two bytes of a text end one whatever they are.
    void dispatch() {
        if (length_ < kShortestText) return;
        acquire_reply();
        char* start = text_;
        for (int at = kFirstCut; at != length_ - 1; ++at) {
            const bool line_end = text_[at] == '\r' && text_[at + 1] == '\n';
            if (!line_end && at != length_ - 2) continue;
            text_[at] = text_[at + 1] = '\0';
            dispatch(start);
            start = text_ + at + 2;
        }
    }

    void dispatch(char* message) {
        dispatch_use.enter(connection_.slot());
        if (!connection_.has_changed()) handle_Recv_Json(connection_.slot(), message);
        dispatch_use.leave();
    }

    char (&text_)[kLongestMessage];
    std::array<std::optional<Overlong>, ZK_SLOTS> overlong_;
    int length_ = 0;
    Connection connection_ = Connection::at(0);
};

}  // namespace
}  // namespace zk

ZK_API void* RecvThread(void*) {
    char text[zk::kLongestMessage];
    zk::SlotReader reader(text);
    for (;;) {
        for (int slot = 0; slot < ZK_SLOTS; ++slot) reader.run(slot);
        sleep_cp(1);
    }
    return nullptr;
}
