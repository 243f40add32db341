#include "proxy/line.h"

#include <asio/buffer.hpp>
#include <asio/write.hpp>
#include <utility>

#include "proxy/keep_alive.h"
#include "wire/note.h"

namespace tool {
namespace {

constexpr std::chrono::seconds kPatience{5};          // for a connection, and for a controller that does not read
constexpr std::size_t kLongestMessage = 1024 * 1024;  // lists of programs are the longest

}  // namespace

std::shared_ptr<Line> Line::open(asio::io_context& io, const asio::ip::tcp::endpoint& controller, Events events) {
    const auto line = std::make_shared<Line>(io);
    line->events_ = std::move(events);
    line->wait(kPatience, "does not answer");
    line->socket_.async_connect(controller, [line](const asio::error_code& error) {
        if (!line->is_open_) return;
        if (error) return line->lose(error.message());
        line->timer_.cancel();
        asio::error_code ignored;
        line->socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
        keep_alive(line->socket_);
        line->is_connected_ = true;
        line->read();
        line->write();
    });
    return line;
}

void Line::wait(std::chrono::seconds limit, const char* why) {
    timer_.expires_after(limit);
    timer_.async_wait([line = shared_from_this(), why](const asio::error_code& error) {
        if (!error) line->lose(why);
    });
}

asio::ip::address Line::local_address() const {
    asio::error_code ignored;
    return socket_.local_endpoint(ignored).address();
}

void Line::send(std::string_view bytes) {
    if (!is_open_) return;
    unsent_ += bytes;
    if (is_connected_ && writing_.empty()) write();
}

void Line::finish() {
    is_finishing_ = true;
    if (is_connected_ && writing_.empty()) write();
}

void Line::write() {
    if (unsent_.empty() && is_finishing_) {
        asio::error_code ignored;
        socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
        return wait(kPatience, "stays open");
    }
    if (unsent_.empty()) return;
    writing_ = std::exchange(unsent_, {});
    wait(kPatience, "does not read");
    asio::async_write(socket_, asio::buffer(writing_),
                      [line = shared_from_this()](const asio::error_code& error, std::size_t) {
                          if (!line->is_open_) return;
                          if (error) return line->lose(error.message());
                          line->timer_.cancel();
                          line->writing_.clear();
                          line->write();
                          if (!line->is_full()) line->events_.drained();
                      });
}

void Line::read() {
    socket_.async_read_some(
        asio::buffer(buffer_), [line = shared_from_this()](const asio::error_code& error, std::size_t size) {
            if (!line->is_open_) return;
            if (error) return line->lose(error == asio::error::eof ? "closed by the controller" : error.message());
            line->received_.append(line->buffer_.data(), size);
            line->cut();
            if (line->is_open_) line->read();
        });
}

void Line::cut() {
    std::size_t begin = 0;
    for (std::size_t end; is_open_ && (end = received_.find('\n', begin)) != std::string::npos; begin = end + 1)
        events_.message(received_.substr(begin, end + 1 - begin));
    received_.erase(0, begin);
    if (received_.size() <= kLongestMessage) return;
    sim::note("a message of the controller has more than " + std::to_string(kLongestMessage) + " bytes: dropped");
    received_.clear();
}

void Line::lose(const std::string& why) {
    if (!is_open_) return;
    close();
    events_.lost(why);
}

void Line::close() {
    is_open_ = false;
    asio::error_code ignored;
    timer_.cancel();
    socket_.close(ignored);
}

}  // namespace tool
