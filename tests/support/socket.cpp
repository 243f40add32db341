#include "support/socket.h"

#include <poll.h>

#include <cerrno>
#include <system_error>

namespace zk::test {

int checked(int result, const char* call) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), call);
    return result;
}

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

int bind_loopback(int descriptor, int port) {
    sockaddr_in address = loopback(port);
    socklen_t size = sizeof address;
    checked(bind(descriptor, reinterpret_cast<sockaddr*>(&address), size), "bind");
    checked(getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size), "getsockname");
    return ntohs(address.sin_port);
}

bool wait_readable(int descriptor, std::chrono::milliseconds deadline) {
    pollfd polled{descriptor, POLLIN, 0};
    int ready;
    do {
        ready = poll(&polled, 1, static_cast<int>(deadline.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

}  // namespace zk::test
