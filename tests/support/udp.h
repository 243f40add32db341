// Both ends of a real-time stream, without the library and without a controller.
#pragma once

#include <string>

namespace zk::test {

// Receives datagrams on a port of 127.0.0.1.
class UdpReceiver {
 public:
    explicit UdpReceiver(int port = 0);
    ~UdpReceiver();
    UdpReceiver(const UdpReceiver&) = delete;
    UdpReceiver& operator=(const UdpReceiver&) = delete;

    int port() const { return port_; }

    // The next datagram, waiting for it; fails the test and returns nothing when none comes.
    std::string receive();

    // The address from which that datagram came.
    const std::string& sender() const { return sender_; }

    // Drops what has come so far, so that the next datagram is one sent after this.
    void forget();

 private:
    int descriptor_;
    int port_;
    std::string sender_;
};

// Sends one datagram to a port of 127.0.0.1.
void send_datagram(int port, const std::string& text);

// A UDP port that is free until this process ends, for a receiver that binds it later. It lies below the ports that the
// system assigns, and a TCP socket on the same number keeps it from other tests.
int reserve_udp_port();

}  // namespace zk::test
