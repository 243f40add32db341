#include "wire/session.h"

#include <asio/buffer.hpp>
#include <utility>

#include "wire/note.h"

namespace sim {
namespace {

constexpr std::string_view kEnd = "\r\n";
constexpr size_t kMaxRequest = 64 * 1024;

// Tests can always talk to the simulator itself.
bool is_of_a_test(const std::string& reply) { return reply.find(":\"zk_sim_") < reply.find(','); }

}  // namespace

Session::Session(asio::ip::tcp::socket socket, const Dispatcher& dispatcher)
    : Sender(std::move(socket), dispatcher.faults), dispatcher_(dispatcher) {}

void Session::start() {
    note(peer() + ": connected");
    read();
}

void Session::read() {
    socket().async_read_some(asio::buffer(buffer_), [this, keep = self()](const asio::error_code& error, size_t size) {
        if (has_ended()) return;
        if (error) return leave(error == asio::error::eof ? "left" : error.message());
        take({buffer_.data(), size});
        if (socket().is_open() && !stopped_) read();
    });
}

void Session::stop_reading() {
    stopped_ = true;
    socket().async_wait(asio::ip::tcp::socket::wait_error, [this, keep = self()](const asio::error_code&) { close(); });
}

void Session::take(std::string_view bytes) {
    // The bytes of a file bypass the buffer of requests.
    if (pending_.empty() && receiving()) bytes.remove_prefix(receiver_->take(bytes));
    pending_ += bytes;
    handle_requests();
    if (pending_.empty() || (pending_.size() <= kMaxRequest && !dropping_)) return;
    if (!dropping_) note(peer() + ": a request of more than " + std::to_string(kMaxRequest) + " bytes is dropped");
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
        dispatcher_.handle(request, self());
        if (receiving()) begin += receiver_->take(std::string_view(pending_).substr(begin));
    }
    pending_.erase(0, begin);
}

void Session::leave(const std::string& reason) {
    note(peer() + ": " + reason + (pending_.empty() ? "" : " in the middle of a request"));
    end();
}

void Session::send(const Json& message) {
    std::string text = message.dump() + std::string(kEnd);
    const bool is_disturbed = !is_of_a_test(text);
    send_text(std::move(text), is_disturbed);
}

}  // namespace sim
