// The little that the test's own sockets share.
#pragma once

#include <netinet/in.h>

#include <chrono>
#include <string>

namespace zk::test {

// How long a test waits for what has to happen; it passes only when the test fails.
inline constexpr std::chrono::seconds kDeadline{60};

// A message as both ends of the wire end it.
inline std::string line(const std::string& message) { return message + "\r\n"; }

// The result of a system call; throws when it is negative.
int checked(int result, const char* call);

// 127.0.0.1 and a port, 0 for any free one.
sockaddr_in loopback(int port);

// Binds to a loopback port, 0 for any free one, and returns the port.
int bind_loopback(int descriptor, int port);

// Whether there is something to read (or the other end is gone) before the deadline.
bool wait_readable(int descriptor, std::chrono::milliseconds deadline = kDeadline);

}  // namespace zk::test
