#include "wire/session.h"

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

}  // namespace

Session::Session(asio::ip::tcp::socket socket, const Dispatcher& dispatcher)
    : socket_(std::move(socket)), timer_(socket_.get_executor()), dispatcher_(dispatcher), name_(name_of(socket_)) {
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
    if (outbox_.empty()) close();
}

void Session::send(const Json& message) {
    if (!socket_.is_open() || (left_ && outbox_.empty())) return;
    outbox_.push_back({message.dump() + std::string(kEnd),
                       std::chrono::steady_clock::now() + std::chrono::milliseconds(dispatcher_.faults.delay_ms)});
    outbox_bytes_ += outbox_.back().text.size();
    if (outbox_bytes_ > kMaxUnread) {
        note(name_ + ": does not read its replies, disconnected");
        close();
    } else if (!sending_) {
        send_next();
    }
}

void Session::send_next() {
    sending_ = !outbox_.empty();
    if (!sending_) {
        if (left_) close();
        return;
    }
    if (outbox_.front().due <= std::chrono::steady_clock::now()) return write_first();
    timer_.expires_at(outbox_.front().due);
    timer_.async_wait([this, self = shared_from_this()](const asio::error_code& error) {
        if (!error) write_first();
    });
}

void Session::write_first() {
    asio::async_write(socket_, asio::buffer(outbox_.front().text),
                      [this, self = shared_from_this()](const asio::error_code& error, size_t) {
                          if (error) return close();
                          outbox_bytes_ -= outbox_.front().text.size();
                          outbox_.pop_front();
                          send_next();
                      });
}

// Keeps the messages: a pending write may still use one of them.
void Session::close() {
    left_ = true;
    asio::error_code ignored;
    timer_.cancel();
    socket_.close(ignored);
}

}  // namespace sim
