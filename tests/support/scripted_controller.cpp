#include "support/scripted_controller.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace zk::test {
namespace {

// The value of the key "command", after any space; empty without the key.
std::string command_of(const std::string& request) {
    const std::string key = "\"command\"";
    size_t at = request.find(key);
    if (at == std::string::npos) return {};
    at = request.find('"', at + key.size());
    if (at == std::string::npos) return {};
    return request.substr(at + 1, request.find('"', at + 1) - at - 1);
}

// Whether the peer has read all bytes written to a loopback connection. /proc/net/tcp lists the fill of both ends: a
// row has the address and port of its own end, those of the other, a state, tx:rx.
bool is_read(int descriptor, int own_port, int peer_port) {
    int unsent = 0;
    if (ioctl(descriptor, SIOCOUTQ, &unsent) != 0) return true;
    if (unsent != 0) return false;
    std::ifstream table("/proc/net/tcp");
    std::string row;
    while (std::getline(table, row)) {
        unsigned local = 0, remote = 0, queued = 0;
        if (std::sscanf(row.c_str(), " %*u: %*x:%x %*x:%x %*x %*x:%x", &local, &remote, &queued) != 3) continue;
        if (static_cast<int>(local) == peer_port && static_cast<int>(remote) == own_port) return queued == 0;
    }
    return true;  // the peer's end is gone
}

}  // namespace

ScriptedController::ScriptedController() {
    listener_ = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0), "socket");
    port_ = bind_loopback(listener_, 0);
    checked(listen(listener_, 64), "listen");
    checked(pipe2(wake_pipe_, O_CLOEXEC | O_NONBLOCK), "pipe2");
    thread_ = std::thread([this] { run(); });
}

ScriptedController::~ScriptedController() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake();
    thread_.join();
    for (const Connection& connection : connections_) {
        if (connection.descriptor >= 0) ::close(connection.descriptor);
    }
    ::close(listener_);
    ::close(wake_pipe_[0]);
    ::close(wake_pipe_[1]);
}

void ScriptedController::answer(const std::string& command, const std::string& message) {
    answer_bytes(command, {line(message)});
}

void ScriptedController::answer_in_turn(const std::string& command, const std::vector<std::string>& messages) {
    answer_with(command, [messages, next = size_t{0}](const std::string&) mutable {
        const size_t turn = next;
        if (next + 1 < messages.size()) ++next;
        return Pieces{line(messages.at(turn))};
    });
}

void ScriptedController::answer_bytes(const std::string& command, const Pieces& pieces) {
    answer_with(command, [pieces](const std::string&) { return pieces; });
}

void ScriptedController::answer_with(const std::string& command, std::function<Pieces(const std::string&)> reply) {
    const std::lock_guard lock(mutex_);
    answers_[command] = std::move(reply);
}

void ScriptedController::ignore(const std::string& command) {
    const std::lock_guard lock(mutex_);
    answers_.erase(command);
}

void ScriptedController::say_bytes(const Pieces& pieces, int connection) {
    const std::lock_guard lock(mutex_);
    Connection* target = find(connection);
    if (target == nullptr) throw std::logic_error("there is no connection to send this on");
    target->to_send.insert(target->to_send.end(), pieces.begin(), pieces.end());
    wake();
}

void ScriptedController::wait_until_read(int connection) {
    std::unique_lock lock(mutex_);
    wait_until(lock, "the peer to read", [&] {
        const Connection* target = find(connection);
        return target != nullptr && !target->unread && target->to_send.empty();
    });
}

void ScriptedController::close(int connection, End end) {
    std::unique_lock lock(mutex_);
    Connection* target = find(connection);
    if (target == nullptr) throw std::logic_error("there is no connection to close");
    target->end = end;
    wake();
    wait_until(lock, "the connection to close", [&] { return !target->end || target->descriptor < 0; });
}

std::string ScriptedController::wait_for_request(const std::string& command, int connection) {
    std::unique_lock lock(mutex_);
    std::string text;
    wait_until(lock, "request \"" + command + "\"", [&] {
        const Connection* from = connection == kAny ? nullptr : find(connection);
        for (Request& request : requests_) {
            if (request.taken || (!command.empty() && command_of(request.text) != command)) continue;
            if (connection != kAny && (from == nullptr || &connections_[request.connection] != from)) continue;
            request.taken = true;
            text = request.text;
            return true;
        }
        return false;
    });
    return text;
}

void ScriptedController::forget_requests() {
    const std::lock_guard lock(mutex_);
    for (Request& request : requests_) request.taken = true;
}

void ScriptedController::wait_for_connections(int count) {
    std::unique_lock lock(mutex_);
    wait_until(lock, "connections", [&] { return static_cast<int>(connections_.size()) >= count; });
}

void ScriptedController::wait_for_connection_of(int descriptor) {
    sockaddr_in own{};
    socklen_t size = sizeof own;
    checked(getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &size), "getsockname");
    std::unique_lock lock(mutex_);
    wait_until(lock, "a connection", [&] {
        return std::any_of(connections_.begin(), connections_.end(),
                           [&](const Connection& c) { return c.peer_port == ntohs(own.sin_port); });
    });
}

void ScriptedController::wait_for_close(int connection) {
    std::unique_lock lock(mutex_);
    wait_until(lock, "the peer to close", [&] {
        const Connection* target = find(connection);
        return target != nullptr && target->closed_by_peer;
    });
}

std::string ScriptedController::received(size_t at_least, int connection) {
    std::unique_lock lock(mutex_);
    std::string bytes;
    wait_until(lock, "bytes to come", [&] {
        const Connection* target = find(connection);
        if (target != nullptr) bytes = target->received;
        return bytes.size() >= at_least;
    });
    return bytes;
}

template <class Condition>
bool ScriptedController::wait_until(std::unique_lock<std::mutex>& lock, const std::string& what, Condition condition) {
    if (changed_.wait_for(lock, kDeadline, condition)) return true;
    ADD_FAILURE() << "the scripted controller waited in vain for " << what;
    return false;
}

ScriptedController::Connection* ScriptedController::find(int connection) {
    const int count = static_cast<int>(connections_.size());
    const int index = connection == kLatest ? count - 1 : connection;
    return index >= 0 && index < count ? &connections_[index] : nullptr;
}

void ScriptedController::wake() {
    [[maybe_unused]] const ssize_t written = write(wake_pipe_[1], "", 1);  // a full pipe wakes just as well
}

// The server's thread: every descriptor is read, written and closed here alone.
void ScriptedController::run() {
    bool busy = false;  // a peer has something to read; the kernel does not report when it has done so
    while (true) {
        std::vector<pollfd> polled{{wake_pipe_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        {
            const std::lock_guard lock(mutex_);
            if (stopping_) return;
            for (const Connection& connection : connections_) {
                polled.push_back({connection.closed_by_peer ? -1 : connection.descriptor, POLLIN, 0});
            }
        }
        poll(polled.data(), polled.size(), busy ? 1 : -1);
        char drained[64];
        while (read(wake_pipe_[0], drained, sizeof drained) > 0) {
        }
        const std::lock_guard lock(mutex_);
        busy = false;
        for (size_t i = 2; i < polled.size(); ++i) busy |= serve(static_cast<int>(i) - 2, polled[i].revents);
        if (polled[1].revents != 0) accept_connection();
        changed_.notify_all();
    }
}

// Returns whether the connection needs another poll although nothing may come from it.
bool ScriptedController::serve(int index, short events) {
    Connection& connection = connections_[index];
    if (connection.descriptor < 0) return false;
    if (events != 0) {
        receive(connection);
        answer_requests(index);
    }
    if (connection.unread) connection.unread = !is_read(connection.descriptor, port_, connection.peer_port);
    if (!connection.unread && !connection.to_send.empty()) send_next(connection);
    if (connection.end && !connection.unread && connection.to_send.empty()) end(connection);
    return connection.unread;
}

void ScriptedController::end(Connection& connection) {
    const End end = *std::exchange(connection.end, std::nullopt);
    if (end == End::kHalfClose) {
        shutdown(connection.descriptor, SHUT_WR);
        return;
    }
    const linger at_once{end == End::kReset, 0};
    setsockopt(connection.descriptor, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    ::close(std::exchange(connection.descriptor, -1));
}

void ScriptedController::accept_connection() {
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    const int descriptor = accept4(listener_, reinterpret_cast<sockaddr*>(&peer), &size, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (descriptor < 0) return;
    Connection& connection = connections_.emplace_back();
    connection.descriptor = descriptor;
    connection.peer_port = ntohs(peer.sin_port);
}

void ScriptedController::receive(Connection& connection) {
    char bytes[4096];
    ssize_t count;
    while ((count = recv(connection.descriptor, bytes, sizeof bytes, 0)) > 0) connection.received.append(bytes, count);
    connection.closed_by_peer = count == 0 || (errno != EAGAIN && errno != EINTR);
}

void ScriptedController::answer_requests(int index) {
    Connection& connection = connections_[index];
    size_t end;
    while ((end = connection.received.find("\r\n", connection.uncut)) != std::string::npos) {
        std::string text = connection.received.substr(connection.uncut, end - connection.uncut);
        connection.uncut = end + 2;
        if (const auto answer = answers_.find(command_of(text)); answer != answers_.end()) {
            for (std::string& piece : answer->second(text)) connection.to_send.push_back(std::move(piece));
        }
        requests_.push_back({index, std::move(text), false});
    }
}

void ScriptedController::send_next(Connection& connection) {
    std::string& piece = connection.to_send.front();
    const ssize_t sent = send(connection.descriptor, piece.data(), piece.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno != EAGAIN && errno != EINTR) {
        connection.to_send.clear();  // nobody is there to read it
        return;
    }
    connection.unread = true;
    piece.erase(0, sent > 0 ? sent : 0);
    if (piece.empty()) connection.to_send.pop_front();
}

}  // namespace zk::test
