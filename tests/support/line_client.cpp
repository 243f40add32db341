#include "support/line_client.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/socket.h"

namespace zk::test {

LineClient::LineClient(int port) : descriptor_(checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket")) {
    const sockaddr_in address = loopback(port);
    if (connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(descriptor_);
        checked(-1, "connect");
    }
}

LineClient::~LineClient() { ::close(descriptor_); }

void LineClient::send_line(const std::string& text) { send_bytes(line(text)); }

void LineClient::send_bytes(const std::string& bytes) {
    for (size_t sent = 0; sent < bytes.size();) {
        sent += checked(static_cast<int>(send(descriptor_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL)),
                        "send");
    }
}

std::string LineClient::read_line() {
    size_t end;
    while ((end = received_.find("\r\n")) == std::string::npos) {
        if (!receive()) {
            ADD_FAILURE() << "no line came; the last bytes are: " << received_;
            return {};
        }
    }
    std::string text = received_.substr(0, end);
    received_.erase(0, end + 2);
    return text;
}

std::string LineClient::ask(const std::string& text) {
    send_line(text);
    return read_line();
}

bool LineClient::wait_for_close() {
    while (wait_readable(descriptor_)) {
        char bytes[4096];
        if (recv(descriptor_, bytes, sizeof bytes, 0) <= 0) return true;
    }
    return false;
}

// Waits for more bytes; false when none come, or the other end has closed.
bool LineClient::receive() {
    char bytes[4096];
    if (!wait_readable(descriptor_)) return false;
    const ssize_t count = recv(descriptor_, bytes, sizeof bytes, 0);
    if (count > 0) received_.append(bytes, count);
    return count > 0;
}

}  // namespace zk::test
