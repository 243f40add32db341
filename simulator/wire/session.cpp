#include "wire/session.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/write.hpp>
#include <utility>

#include "wire/note.h"

namespace sim {
namespace {

constexpr std::string_view kEnd = "\r\n";
constexpr size_t kMaxRequest = 64 * 1024;
constexpr size_t kMaxUnread = 4 * 1024 * 1024;  // of replies that a client does not read

std::string name_of(const asio::ip::tcp::socket& socket) {
    asio::error_code error;
    const auto endpoint = socket.remote_endpoint(error);
    return error ? "client" : endpoint.address().to_string() + ":" + std::to_string(endpoint.port());
}

// Tests can always talk to the simulator itself.
bool is_of_a_test(const std::string& reply) { return reply.find(":\"zk_sim_") < reply.find(','); }

std::chrono::steady_clock::time_point next_multiple(std::chrono::steady_clock::time_point time,
                                                    std::chrono::steady_clock::duration period) {
    const auto rest = time.time_since_epoch() % period;
    return rest.count() == 0 ? time : time + (period - rest);
}

}  // namespace

Session::Session(asio::ip::tcp::socket socket, const Dispatcher& dispatcher)
    : socket_(std::move(socket)),
      timer_(socket_.get_executor()),
      dispatcher_(dispatcher),
      name_(name_of(socket_)),
      disturbance_(dispatcher.faults.seed) {
    asio::error_code ignored;
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
}

void Session::start() {
    note(name_ + ": connected");
    read();
}

void Session::read() {
    socket_.async_read_some(asio::buffer(buffer_),
                            [this, self = shared_from_this()](const asio::error_code& error, size_t size) {
                                if (left_) return;
                                if (error) return leave(error == asio::error::eof ? "left" : error.message());
                                take({buffer_.data(), size});
                                if (socket_.is_open() && !stopped_) read();
                            });
}

void Session::stop_reading() {
    stopped_ = true;
    socket_.async_wait(asio::ip::tcp::socket::wait_error,
                       [this, self = shared_from_this()](const asio::error_code&) { close(); });
}

void Session::take(std::string_view bytes) {
    // The bytes of a file bypass the buffer of requests.
    if (pending_.empty() && receiving()) bytes.remove_prefix(receiver_->take(bytes));
    pending_ += bytes;
    handle_requests();
    if (pending_.empty() || (pending_.size() <= kMaxRequest && !dropping_)) return;
    if (!dropping_) note(name_ + ": a request of more than " + std::to_string(kMaxRequest) + " bytes is dropped");
    dropping_ = true;
    // A carriage return may be the first half of the line end.
    pending_ = pending_.back() == '\r' ? "\r" : "";
}

void Session::handle_requests() {
    size_t begin = 0;
    for (size_t end; (end = pending_.find(kEnd, begin)) != std::string::npos;) {
        const std::string_view request = std::string_view(pending_).substr(begin, end - begin);
        begin = end + kEnd.size();
        if (std::exchange(dropping_, false) || request.empty()) continue;
        dispatcher_.handle(request, shared_from_this());
        if (receiving()) begin += receiver_->take(std::string_view(pending_).substr(begin));
    }
    pending_.erase(0, begin);
}

void Session::leave(const std::string& reason) {
    note(name_ + ": " + reason + (pending_.empty() ? "" : " in the middle of a request"));
    left_ = true;
    if (unread_bytes_ == 0) close();
}

void Session::send(const Json& message) {
    if (!socket_.is_open() || (left_ && unread_bytes_ == 0)) return;
    const std::string text = message.dump() + std::string(kEnd);
    is_of_a_test(text) ? post({text, last_due_, 0, false}, true) : disturb(text);
    if (unread_bytes_ > kMaxUnread) {
        note(name_ + ": does not read its replies, disconnected");
        close();
    } else {
        send_due();
    }
}

void Session::disturb(const std::string& text) {
    const WireFaults& faults = dispatcher_.faults.wire;
    const Time now = std::chrono::steady_clock::now();
    for (Sending& sending : disturbance_.sendings(text, faults.replies)) {
        Time due = std::max(now, dispatcher_.faults.silent_until) + sending.delay;
        if (faults.join_ms > 0) due = next_multiple(due, std::chrono::milliseconds(faults.join_ms));
        post({disturbance_.garbage(faults.garbage) + sending.text, due, static_cast<size_t>(faults.cut_at)},
             sending.keeps_order);
    }
}

// A message is later than those before it, unless it is overtaken.
void Session::post(Message message, bool keeps_order) {
    if (keeps_order) message.due = last_due_ = std::max(last_due_, message.due);
    unread_bytes_ += message.text.size();
    const auto later = std::upper_bound(outbox_.begin(), outbox_.end(), message.due,
                                        [](Time due, const Message& other) { return due < other.due; });
    outbox_.insert(later, std::move(message));
}

void Session::send_due() {
    if (!writing_.text.empty()) return;
    for (const Time now = std::chrono::steady_clock::now(); !outbox_.empty() && outbox_.front().due <= now;) {
        const Message& next = outbox_.front();
        if (!writing_.text.empty() && !may_join(next)) break;
        writing_ = {writing_.text + next.text, next.due, next.cut_at, next.is_disturbed};
        outbox_.pop_front();
    }
    if (!writing_.text.empty()) return write(0);
    if (outbox_.empty()) {
        if (left_) close();
        return;
    }
    timer_.expires_at(outbox_.front().due);
    timer_.async_wait([this, self = shared_from_this()](const asio::error_code& error) {
        if (!error && socket_.is_open()) send_due();
    });
}

bool Session::may_join(const Message& next) const {
    return writing_.cut_at == 0 && next.cut_at == 0 && writing_.is_disturbed == next.is_disturbed;
}

void Session::write(size_t begin) {
    const size_t rest = writing_.text.size() - begin;
    const size_t slice = writing_.is_disturbed ? static_cast<size_t>(dispatcher_.faults.wire.slice_bytes) : 0;
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

void Session::write_later(size_t begin) {
    timer_.expires_after(std::chrono::milliseconds(dispatcher_.faults.wire.slice_delay_ms));
    timer_.async_wait([this, self = shared_from_this(), begin](const asio::error_code& error) {
        if (!error && socket_.is_open()) write(begin);
    });
}

void Session::drop(bool reset) {
    asio::error_code ignored;
    if (reset) socket_.set_option(asio::socket_base::linger(true, 0), ignored);
    close();
}

// Keeps the messages: a pending write may still use one of them.
void Session::close() {
    left_ = true;
    asio::error_code ignored;
    timer_.cancel();
    socket_.close(ignored);
}

}  // namespace sim
