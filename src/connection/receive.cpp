// The thread that reads every connection: one visit a slot, in which what has come is joined up to a line feed, cut
// into messages at CRLF, and dispatched. Nothing is carried over to the next visit, but that the rest of a message that
// is too long is still to be dropped.
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "connection/descriptor_use.h"
#include "connection/elapsed.h"
#include "connection/slots.h"
#include "zk/dispatch.h"

namespace zk {
namespace {

constexpr int kLongestMessage = 10240;  // exclusive; the terminating zero needs the last place
constexpr int kChunk = 2048;
constexpr int kShortestVisit = 7;  // what is shorter cannot be a reply
constexpr int kFirstCut = 5;
constexpr int32_t kSilenceMs = 3000;
constexpr int kMostDroppedReads = 5;  // of one visit: about a message, so that the other arms have their turn

enum class Read { kBytes, kNothing, kEnd };

class SlotReader {
 public:
    explicit SlotReader(char (&text)[kLongestMessage]) : text_(text) {}

    void run(int slot) {
        slot_ = slot;
        socket_ = read(SockInfo[slot].socket, std::memory_order_acquire);
        if (socket_ == 0) return;
        length_ = 0;
        if (is_overlong() ? !drop_up_to_line_feed() : receive() != Read::kBytes) return;
        if (joined()) dispatch();
    }

 private:
    // A message of this connection that is too long, and whose line feed has not come yet.
    struct Overlong {
        bool dropping = false;
        unsigned connection = 0;  // of the slot
        int32_t last_byte = 0;
    };
    unsigned connection() const { return connections_had[slot_].load(std::memory_order_relaxed); }
    bool is_overlong() const { return overlong_[slot_].dropping && overlong_[slot_].connection == connection(); }

    // Appends up to a chunk to the text. A zero byte ends what counts of a read.
    Read receive() {
        if (length_ + kChunk >= kLongestMessage && !make_room()) return Read::kEnd;
        receive_use.enter(socket_);
        if (read(SockInfo[slot_].socket, std::memory_order_seq_cst) != socket_) {  // closed since
            receive_use.leave();
            length_ = 0;
            return Read::kEnd;
        }
        const int room = std::min(kChunk, kLongestMessage - 1 - length_);
        const ssize_t got = recv(socket_, text_ + length_, static_cast<size_t>(room), MSG_DONTWAIT);
        const int error = errno;
        receive_use.leave();
        if (got == 0) return Read::kEnd;
        if (got < 0) return error == EAGAIN || error == EINTR ? Read::kNothing : Read::kEnd;
        text_[length_ + got] = '\0';
        length_ += static_cast<int>(strnlen(text_ + length_, static_cast<size_t>(got)));
        return Read::kBytes;
    }

    // Joins reads until the text ends in a line feed (or nothing is left of it), or the peer has closed. A peer that
    // stays silent in the middle of a message loses what it sent, so that one dead cable does not silence every other
    // arm.
    bool joined() {
        int32_t last_byte = Get_Program_Runtime();
        while (length_ > 0 && text_[length_ - 1] != '\n') {
            const Read read = receive();
            if (read == Read::kEnd) break;
            if (read == Read::kBytes) {
                last_byte = Get_Program_Runtime();
            } else if (elapsed_since(last_byte) >= kSilenceMs) {
                std::fprintf(stderr, "ZK_Base: socket %d fell silent in the middle of a message; %d bytes dropped\n",
                             socket_, length_);
                return false;
            } else {
                sleep_cp(1);
            }
        }
        return true;
    }

    // Called with the text nearly full: whole messages are handed on, and what remains moves to the front. A message
    // that fills the buffer alone ends the visit; its rest is dropped in the next ones.
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
            std::fprintf(stderr, "ZK_Base: socket %d sent a message of %d bytes or more; it is dropped\n", socket_,
                         kLongestMessage);
            overlong_[slot_] = {true, connection(), Get_Program_Runtime()};
            length_ = 0;
            return false;
        }
        return true;
    }

    // What comes behind the line feed stays in the text. False while that has not come. After a silence, what comes is
    // a new message.
    bool drop_up_to_line_feed() {
        Overlong& overlong = overlong_[slot_];
        for (int reads = 0; reads < kMostDroppedReads; ++reads) {
            length_ = 0;
            if (receive() != Read::kBytes) {
                if (elapsed_since(overlong.last_byte) >= kSilenceMs) overlong = {};
                return false;
            }
            overlong.last_byte = Get_Program_Runtime();
            const char* line_feed = static_cast<const char*>(std::memchr(text_, '\n', static_cast<size_t>(length_)));
            if (!line_feed) continue;
            overlong = {};
            length_ -= static_cast<int>(line_feed + 1 - text_);
            std::memmove(text_, line_feed + 1, static_cast<size_t>(length_) + 1);
            return true;
        }
        return false;
    }

    // A message ends at CRLF; the last two bytes of a visit end one whatever they are.
    void dispatch() {
        if (length_ < kShortestVisit) return;
        acquire_reply();
        char* start = text_;
        for (int at = kFirstCut; at != length_ - 1; ++at) {
            const bool line_end = text_[at] == '\r' && text_[at + 1] == '\n';
            if (!line_end && at != length_ - 2) continue;
            text_[at] = text_[at + 1] = '\0';
            handle_Recv_Json(slot_, start);
            start = text_ + at + 2;
        }
    }

    char (&text_)[kLongestMessage];
    std::array<Overlong, ZK_SLOTS> overlong_{};
    int length_ = 0;
    int slot_ = 0;
    ArmSocket socket_ = 0;
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
