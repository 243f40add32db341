// Speaks raw lines to a controller, without the library.
#pragma once

#include <optional>
#include <string>

namespace zk::test {

class LineClient {
 public:
    // Connects to a port of 127.0.0.1; throws when nobody listens.
    explicit LineClient(int port);
    ~LineClient();
    LineClient(const LineClient&) = delete;
    LineClient& operator=(const LineClient&) = delete;

    // Sends a text and CRLF, or bytes as they are.
    void send_line(const std::string& text);
    void send_bytes(const std::string& bytes);

    // The next line, without its CRLF; fails the test and returns nothing when none comes.
    std::string read_line();

    // Sends a text and reads one line.
    std::string ask(const std::string& text);

    // Waits for the other end to close, dropping what comes before that; false when it does not.
    bool wait_for_close();

    // The descriptor, for what a test does to it of its own.
    int descriptor() const { return descriptor_; }

 private:
    bool receive();

    int descriptor_;
    std::string received_;
};

}  // namespace zk::test
