#include "support/udp.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "support/socket.h"

namespace zk::test {
namespace {

int udp_socket() { return checked(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0), "socket"); }

}  // namespace

UdpReceiver::UdpReceiver(int port) : descriptor_(udp_socket()), port_(bind_loopback(descriptor_, port)) {}

UdpReceiver::~UdpReceiver() { ::close(descriptor_); }

std::string UdpReceiver::receive() {
    std::string datagram(65536, '\0');
    if (!wait_readable(descriptor_)) {
        ADD_FAILURE() << "no datagram came to port " << port_;
        return {};
    }
    sockaddr_in from{};
    socklen_t size = sizeof from;
    auto* const address = reinterpret_cast<sockaddr*>(&from);
    datagram.resize(checked(
        static_cast<int>(recvfrom(descriptor_, datagram.data(), datagram.size(), 0, address, &size)), "recvfrom"));
    sender_ = inet_ntoa(from.sin_addr);
    return datagram;
}

void UdpReceiver::forget() {
    char dropped;
    while (recv(descriptor_, &dropped, sizeof dropped, MSG_DONTWAIT) >= 0) {
    }
}

void send_datagram(int port, const std::string& text) {
    const int descriptor = udp_socket();
    const sockaddr_in address = loopback(port);
    const ssize_t sent =
        sendto(descriptor, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::close(descriptor);
    checked(static_cast<int>(sent), "sendto");
}

int reserve_udp_port() {
    constexpr int kLowest = 16384, kHighest = 32767;
    static int next = kLowest + getpid() % (kHighest - kLowest);
    const int guard = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    for (int tries = kLowest; tries < kHighest; ++tries) {
        const int port = next;
        next = next == kHighest ? kLowest : next + 1;
        const sockaddr_in address = loopback(port);
        if (bind(guard, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return port;
    }
    throw std::runtime_error("no port is free");
}

}  // namespace zk::test
