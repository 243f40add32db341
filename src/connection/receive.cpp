// The thread that reads every connection. Each has a text of its own, in which its reads are joined, cut into messages
// at CRLF and dispatched. A connection gets one read and a few messages a turn, so none delays the others.
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

#include "connection/elapsed.h"
#include "connection/in_use.h"
#include "connection/journal.h"
#include "connection/line.h"
#include "connection/reply.h"
#include "connection/wait.h"
#include "zk/mailboxes.h"

namespace zk {
namespace {

constexpr int kLongestMessage = 10240;  // exclusive; the terminating zero needs the last place
constexpr int kChunk = 2048;
constexpr int kShortestText = 7;  // a shorter text cannot be a reply
constexpr int kFirstCut = 5;
constexpr int kMessagesPerTurn = 16;
constexpr int32_t kSilenceMs = 3000;
constexpr int kSilencePollMs = 10;
constexpr int kEndedPollMs = 100;
constexpr int kIdlePollMs = 1000;

// The descriptor that wakes the thread. Its number lies above those of the connections.
int wake_descriptor() {
    static const int kDescriptor = [] {
        const int low = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
        const int high = fcntl(low, F_DUPFD_CLOEXEC, 1023);
        if (high < 0) return low;
        close(low);
        return high;
    }();
    return kDescriptor;
}

class SlotReader {
 public:
    // What the reader needs next.
    enum class Needs { kNothing, kBytes, kBytesSoon, kTurn };

    void turn(int slot) {
        const Connection now = Connection::at(slot);
        if (now.socket() != connection_.socket() || connection_.has_changed()) begin(now);
        if (connection_.socket() == 0) return;
        const bool is_lost = line_ && line_->is_lost();
        if (whole_ == 0 && !is_lost) read();
        if (whole_ > 0) return dispatch_some();  // what came before the loss counts
        if (is_lost) report_loss();
    }

    // The descriptor to wait at, and how; a connection that a turn has not seen yet needs one.
    Needs needs(int slot) const {
        const Connection now = Connection::at(slot);
        if (now.socket() != connection_.socket() || connection_.has_changed())
            return now.socket() ? Needs::kTurn : Needs::kNothing;
        if (connection_.socket() == 0) return Needs::kNothing;
        if (whole_ > 0) return Needs::kTurn;
        if (line_ && line_->is_lost()) return line_->has_loss_to_report() ? Needs::kTurn : Needs::kNothing;
        return length_ > 0 || overlong_ ? Needs::kBytesSoon : Needs::kBytes;
    }
    bool has_ended() const { return ended_; }
    int descriptor() const { return line_ ? line_->descriptor() : connection_.socket(); }
    // Milliseconds to the next heartbeat, or -1.
    int beat() {
        if (!line_) return -1;
        dispatch_use.enter(connection_.slot());
        const int left = is_current() ? line_->beat(connection_.socket()) : -1;
        dispatch_use.leave();
        return left;
    }

 private:
    enum class Got { kBytes, kNothing, kEnd };

    void begin(const Connection& connection) {
        connection_ = connection;
        line_ = is_handle(connection.socket()) ? Line::of(connection.socket()) : nullptr;
        length_ = whole_ = 0;
        overlong_ = ended_ = false;
        if (line_) length_ = static_cast<int>(line_->take_received().copy(text_, kLongestMessage - 1 - kChunk));
        last_byte_ = Get_Program_Runtime();
    }

    // Checked after one of the uses is entered: then a close waits until it is left.
    bool is_current() const {
        return !connection_.has_changed() && (!line_ || line_->handle() == connection_.socket());
    }

    void report_loss() {
        dispatch_use.enter(connection_.slot());
        if (is_current() && line_->has_loss_to_report()) line_->report_loss(connection_.socket());
        dispatch_use.leave();
    }

    // Appends up to a chunk to the text. A zero byte ends a read.
    Got receive() {
        const int descriptor = this->descriptor();
        receive_use.enter(descriptor);
        if (!is_current()) {
            receive_use.leave();
            return Got::kNothing;
        }
        const int room = std::min(kChunk, kLongestMessage - 1 - length_);
        const ssize_t got = recv(descriptor, text_ + length_, static_cast<size_t>(room), MSG_DONTWAIT);
        const int error = errno;
        receive_use.leave();
        ended_ = got == 0 || (got < 0 && error != EAGAIN && error != EINTR);
        if (ended_) return lose(got == 0 ? "the controller closed the connection" : std::strerror(error)), Got::kEnd;
        if (got < 0) return Got::kNothing;
        if (line_) line_->heard(got);
        text_[length_ + got] = '\0';
        length_ += static_cast<int>(strnlen(text_ + length_, static_cast<size_t>(got)));
        last_byte_ = Get_Program_Runtime();
        return Got::kBytes;
    }

    void lose(const char* cause) {
        if (line_) line_->lose(connection_.socket(), cause);
    }

    // Reads once, and finds how much of the text is whole messages. On a connection of Arm_Socket_Start the messages
    // before an incomplete one wait for it, as long as there is room.
    void read() {
        const Got got = receive();
        if (overlong_ && !drop_up_to_line_feed(got)) return;
        if (got == Got::kEnd || (length_ > 0 && text_[length_ - 1] == '\n')) {
            whole_ = length_;
        } else if (got == Got::kBytes && (line_ || length_ + kChunk >= kLongestMessage)) {
            const size_t line_end = std::string_view(text_, static_cast<size_t>(length_)).rfind("\r\n");
            if (line_end != std::string_view::npos) {
                whole_ = static_cast<int>(line_end) + 2;
            } else if (length_ >= kLongestMessage - 1) {
                drop_overlong();
            }
        } else if (length_ > 0 && elapsed_since(last_byte_) >= kSilenceMs) {
            report_dropped("socket %d fell silent in the middle of a message; %d bytes dropped", length_);
            length_ = 0;
        }
        start_ = 0;
        at_ = kFirstCut;
        if (whole_ > 0 && whole_ < kShortestText) remove_whole();
    }

    void drop_overlong() {
        report_dropped("socket %d sent a message of %d bytes or more; it is dropped", kLongestMessage);
        overlong_ = true;
        length_ = 0;
    }

    // Leaves what follows the line feed of a message that is too long; false while that has not come. After a silence
    // the next bytes are a new message.
    bool drop_up_to_line_feed(Got got) {
        if (got != Got::kBytes) {
            if (elapsed_since(last_byte_) >= kSilenceMs) overlong_ = false;
            return false;
        }
        const char* line_feed = static_cast<const char*>(std::memchr(text_, '\n', static_cast<size_t>(length_)));
        if (!line_feed) {
            length_ = 0;
            return false;
        }
        overlong_ = false;
        length_ -= static_cast<int>(line_feed + 1 - text_);
        std::memmove(text_, line_feed + 1, static_cast<size_t>(length_) + 1);
        return true;
    }

    [[gnu::format(printf, 2, 0)]] void report_dropped(const char* format, int bytes) {
        char text[128];
        std::snprintf(text, sizeof text, format, connection_.socket(), bytes);
        std::fprintf(stderr, "ZK_Base: %s\n", text);
        if (line_) ++line_->traffic().dropped;
        log(ZK_LOG_EVENTS, connection_.socket(), "%s", text);
    }

    // A message ends at CRLF; the last two bytes of a text end one whatever they are.
    void dispatch_some() {
        acquire_reply();
        for (int messages = 0; at_ != whole_ - 1; ++at_) {
            if (messages == kMessagesPerTurn) return;
            const bool line_end = text_[at_] == '\r' && text_[at_ + 1] == '\n';
            if (!line_end && at_ != whole_ - 2) continue;
            text_[at_] = text_[at_ + 1] = '\0';
            dispatch(text_ + start_);
            start_ = at_ + 2;
            ++messages;
        }
        remove_whole();
    }

    void remove_whole() {
        std::memmove(text_, text_ + whole_, static_cast<size_t>(length_ - whole_));
        length_ -= whole_;
        whole_ = 0;
    }

    void dispatch(char* message) {
        const int slot = connection_.slot();
        dispatch_use.enter(slot);
        if (is_current()) {
            log_frame(connection_.socket(), Way::kReceived, message, std::strlen(message));
            cuts_texts = line_ != nullptr;
            if (!line_) {
                handle_Recv_Json(slot, message);
            } else if (line_->takes(slot, message)) {
                handle_Recv_Json(slot, message);
                note_arrivals(slot);
            }
        }
        dispatch_use.leave();
    }

    char text_[kLongestMessage];
    int length_ = 0;
    int whole_ = 0;           // of which are whole messages, now being cut
    int start_ = 0, at_ = 0;  // the message being cut, and where its end is looked for
    bool overlong_ = false;   // dropping the rest of a message that is too long
    bool ended_ = false;      // the last read failed or found the end
    int32_t last_byte_ = 0;
    Connection connection_{0};
    Line* line_ = nullptr;
};

class Receiver {
 public:
    void run() {
        for (;;) {
            wait();
            for (int slot = 0; slot < ZK_SLOTS; ++slot) {
                if (is_due_[index(slot)]) readers_[index(slot)].turn(slot);
            }
        }
    }

 private:
    static size_t index(int slot) { return static_cast<size_t>(slot); }

    // Waits until a connection is due. One whose reads fail is looked at now and then: it may be connected later.
    void wait() {
        using Needs = SlotReader::Needs;
        std::array<pollfd, ZK_SLOTS + 1> waits;
        std::array<int, ZK_SLOTS> slots;
        size_t count = 0;
        int timeout = kIdlePollMs;
        for (int slot = 0; slot < ZK_SLOTS; ++slot) {
            SlotReader& reader = readers_[index(slot)];
            const Needs needs = reader.needs(slot);
            is_due_[index(slot)] = needs == Needs::kTurn || (needs != Needs::kNothing && reader.has_ended());
            if (needs == Needs::kTurn) timeout = 0;
            if (needs == Needs::kNothing || needs == Needs::kTurn) continue;
            if (needs == Needs::kBytesSoon) {
                is_due_[index(slot)] = true;
                timeout = std::min(timeout, kSilencePollMs);
            }
            if (reader.has_ended()) {
                timeout = std::min(timeout, kEndedPollMs);
                continue;
            }
            const int left = reader.beat();
            if (left >= 0) timeout = std::min(timeout, left);
            slots[count] = slot;
            waits[count++] = {reader.descriptor(), POLLIN, 0};
        }
        waits[count] = {wake_descriptor(), POLLIN, 0};
        if (poll(waits.data(), count + 1, timeout) <= 0) return;
        for (size_t i = 0; i < count; ++i) {
            if (waits[i].revents) is_due_[index(slots[i])] = true;
        }
        eventfd_t wakes;
        if (waits[count].revents) (void)eventfd_read(wake_descriptor(), &wakes);
    }

    std::array<SlotReader, ZK_SLOTS> readers_;
    std::array<bool, ZK_SLOTS> is_due_{};
};

}  // namespace

void wake_receiver() { (void)eventfd_write(wake_descriptor(), 1); }

}  // namespace zk

ZK_API void* RecvThread(void*) {
    zk::on_receive_thread = true;
    static zk::Receiver& receiver = *new zk::Receiver;  // too large for a stack of limited size
    receiver.run();
    return nullptr;
}
