#include "wire/sender.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/write.hpp>
#include <utility>

#include "wire/note.h"

namespace sim {
namespace {

constexpr size_t kMaxUnread = 4 * 1024 * 1024;  // of what a peer does not read

std::string name_of(const asio::ip::tcp::socket& socket) {
    asio::error_code error;
    const auto endpoint = socket.remote_endpoint(error);
    return error ? "client" : endpoint.address().to_string() + ":" + std::to_string(endpoint.port());
}

std::chrono::steady_clock::time_point next_multiple(std::chrono::steady_clock::time_point time,
                                                    std::chrono::steady_clock::duration period) {
    const auto rest = time.time_since_epoch() % period;
    return rest.count() == 0 ? time : time + (period - rest);
}

}  // namespace

Sender::Sender(asio::ip::tcp::socket socket, const DisturbedWire& faults)
    : socket_(std::move(socket)),
      timer_(socket_.get_executor()),
      faults_(faults),
      peer_(name_of(socket_)),
      disturbance_(faults.seed) {
    asio::error_code ignored;
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
}

void Sender::send_text(std::string text, bool is_disturbed) {
    if (!socket_.is_open() || (ended_ && unread_bytes_ == 0)) return;
    is_disturbed ? disturb(text) : post({std::move(text), last_due_, 0, false}, true);
    if (unread_bytes_ > kMaxUnread) {
        note(peer_ + ": does not read its replies, disconnected");
        close();
    } else {
        send_due();
    }
}

void Sender::end() {
    ended_ = true;
    if (unread_bytes_ == 0) close();
}

void Sender::disturb(const std::string& text) {
    const WireFaults& faults = faults_.wire;
    const Time now = std::chrono::steady_clock::now();
    for (Sending& sending : disturbance_.sendings(text, faults.replies)) {
        Time due = std::max(now, faults_.silent_until) + sending.delay;
        if (faults.join_ms > 0) due = next_multiple(due, std::chrono::milliseconds(faults.join_ms));
        post({disturbance_.garbage(faults.garbage) + sending.text, due, static_cast<size_t>(faults.cut_at)},
             sending.keeps_order);
    }
}

// A message is later than those before it, unless it is overtaken.
void Sender::post(Message message, bool keeps_order) {
    if (keeps_order) message.due = last_due_ = std::max(last_due_, message.due);
    unread_bytes_ += message.text.size();
    const auto later = std::upper_bound(outbox_.begin(), outbox_.end(), message.due,
                                        [](Time due, const Message& other) { return due < other.due; });
    outbox_.insert(later, std::move(message));
}

void Sender::send_due() {
    if (!writing_.text.empty()) return;
    for (const Time now = std::chrono::steady_clock::now(); !outbox_.empty() && outbox_.front().due <= now;) {
        const Message& next = outbox_.front();
        if (!writing_.text.empty() && !may_join(next)) break;
        writing_ = {writing_.text + next.text, next.due, next.cut_at, next.is_disturbed};
        outbox_.pop_front();
    }
    if (!writing_.text.empty()) return write(0);
    if (outbox_.empty()) {
        if (ended_) close();
        return;
    }
    timer_.expires_at(outbox_.front().due);
    timer_.async_wait([this, self = shared_from_this()](const asio::error_code& error) {
        if (!error && socket_.is_open()) send_due();
    });
}

bool Sender::may_join(const Message& next) const {
    return writing_.cut_at == 0 && next.cut_at == 0 && writing_.is_disturbed == next.is_disturbed;
}

void Sender::write(size_t begin) {
    const size_t rest = writing_.text.size() - begin;
    const size_t slice = writing_.is_disturbed ? static_cast<size_t>(faults_.wire.slice_bytes) : 0;
    const size_t most = begin == 0 && writing_.cut_at > 0 ? writing_.cut_at : slice;
    const size_t size = most > 0 ? std::min(rest, most) : rest;
    asio::async_write(socket_, asio::buffer(writing_.text.data() + begin, size),
                      [this, self = shared_from_this(), begin, size](const asio::error_code& error, size_t) {
                          if (error || !socket_.is_open()) return close();
                          unread_bytes_ -= size;
                          if (begin + size < writing_.text.size()) return write_later(begin + size);
                          writing_.text.clear();
                          send_due();
                      });
}

void Sender::write_later(size_t begin) {
    timer_.expires_after(std::chrono::milliseconds(faults_.wire.slice_delay_ms));
    timer_.async_wait([this, self = shared_from_this(), begin](const asio::error_code& error) {
        if (!error && socket_.is_open()) write(begin);
    });
}

void Sender::drop(bool reset) {
    asio::error_code ignored;
    if (reset) socket_.set_option(asio::socket_base::linger(true, 0), ignored);
    close();
}

// Keeps the messages: a pending write may still use one of them.
void Sender::close() {
    ended_ = true;
    asio::error_code ignored;
    timer_.cancel();
    socket_.close(ignored);
}

}  // namespace sim
