#include "proxy/client.h"

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <utility>

#include "proxy/keep_alive.h"
#include "wire/note.h"

namespace tool {
namespace {

constexpr std::string_view kEnd = "\r\n";
constexpr std::size_t kLongestRequest = 64 * 1024;

}  // namespace

Client::Client(asio::ip::tcp::socket socket, const sim::DisturbedWire& faults, Service& service)
    : Sender(std::move(socket), faults), service_(service) {
    keep_alive(this->socket());
    asio::error_code ignored;
    address_ = this->socket().remote_endpoint(ignored).address();
    is_on_this_host_ = address_.is_loopback() || address_ == this->socket().local_endpoint(ignored).address();
}

void Client::start() {
    sim::note(name() + ": connected");
    service_.join(self());
    read();
}

void Client::read() {
    if (is_reading_ || is_paused_ || has_ended()) return;
    is_reading_ = true;
    socket().async_read_some(asio::buffer(buffer_),
                             [this, keep = self()](const asio::error_code& error, std::size_t size) {
                                 is_reading_ = false;
                                 if (error && error != asio::error::eof) close();
                                 if (error) return leave(error == asio::error::eof ? "left" : error.message());
                                 pending_.append(buffer_.data(), size);
                                 cut();
                                 read();
                             });
}

void Client::go_on() {
    if (!std::exchange(is_paused_, false)) return;
    asio::post(socket().get_executor(), [this, keep = self()] {
        cut();
        read();
    });
}

void Client::cut() {
    while (!is_paused_ && !has_ended() && (file_left_ > 0 ? cut_file() : cut_request())) continue;
    if (is_paused_ || pending_.size() <= kLongestRequest) return;
    if (!is_dropping_)
        sim::note(name() + ": a request of more than " + std::to_string(kLongestRequest) + " bytes is dropped");
    is_dropping_ = true;
    pending_ = pending_.back() == '\r' ? "\r" : "";  // may be the first half of the line end
}

bool Client::cut_file() {
    if (pending_.empty()) return false;
    std::string bytes = pending_.substr(0, file_left_);
    pending_.erase(0, bytes.size());
    file_left_ -= bytes.size();
    service_.take_file(self(), std::move(bytes));
    return true;
}

bool Client::cut_request() {
    const std::size_t end = pending_.find(kEnd);
    if (end == std::string::npos) return false;
    std::string text = pending_.substr(0, end + kEnd.size());
    pending_.erase(0, text.size());
    if (!std::exchange(is_dropping_, false) && end > 0) service_.take(self(), Request::of(std::move(text)));
    return true;
}

void Client::leave(const std::string& reason) {
    if (std::exchange(has_left_, true)) return;
    sim::note(name() + ": " + reason + (pending_.empty() ? "" : " in the middle of a request"));
    service_.leave(*this);
}

}  // namespace tool
