// A controller in this process that sends what a test scripts, over a real TCP connection.
//
// Of the protocol it knows only where a request ends and how it names its command. It sends the bytes of the test and
// keeps all bytes that it receives. Nothing here waits for the clock; a deadline passes only when a test fails.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/socket.h"

namespace zk::test {

// Bytes to send, exactly as they are. A piece goes out when the peer has read the one before it.
using Pieces = std::vector<std::string>;

class ScriptedController {
 public:
    // Names a connection: they are numbered from 0 as they come in.
    static constexpr int kLatest = -1;
    static constexpr int kAny = -2;

    ScriptedController();
    ~ScriptedController();
    ScriptedController(const ScriptedController&) = delete;
    ScriptedController& operator=(const ScriptedController&) = delete;

    // The port it listens on, on 127.0.0.1.
    int port() const { return port_; }

    // Sets the reply to a command; the last call for a command counts. A command without a reply gets none. A reply
    // function runs on the controller's thread and must not call the controller.
    void answer(const std::string& command, const std::string& message);
    void answer_in_turn(const std::string& command, const std::vector<std::string>& messages);  // the last one stays
    void answer_bytes(const std::string& command, const Pieces& pieces);
    void answer_with(const std::string& command, std::function<Pieces(const std::string& request)> reply);
    void ignore(const std::string& command);

    // Sends something unasked, after what is still to be sent. Returns at once.
    void say(const std::string& message, int connection = kLatest) { say_bytes({line(message)}, connection); }
    void say_bytes(const Pieces& pieces, int connection = kLatest);

    // Waits until the peer has read all that was sent on a connection.
    void wait_until_read(int connection = kLatest);

    // Ends a connection when the peer has read all that is to be sent on it: closes it, resets it, or sends no more.
    enum class End { kClose, kReset, kHalfClose };
    void close(int connection = kLatest, End end = End::kClose);

    // The first request of this command that no call has taken yet: its exact text, without the CRLF that ends it.
    // Waits for it; fails the test and returns nothing when it does not come.
    std::string wait_for_request(const std::string& command, int connection = kAny);
    // The same for a request of any command.
    std::string next_request(int connection = kAny) { return wait_for_request("", connection); }
    // Takes all requests that have arrived.
    void forget_requests();

    // Wait until so many connections have come in, and until the peer has closed one; they fail the test when that does
    // not happen.
    void wait_for_connections(int count);
    void wait_for_connection_of(int descriptor);  // of this process
    void wait_for_close(int connection = kLatest);

    // Everything that came on a connection, every CRLF included, once there are so many bytes of it.
    std::string received(size_t at_least = 0, int connection = kLatest);

 private:
    struct Connection {
        int descriptor = -1;
        int peer_port = 0;
        std::optional<End> end;  // to come
        bool closed_by_peer = false;
        std::string received;
        size_t uncut = 0;  // where the first request begins that is not whole yet
        std::deque<std::string> to_send;
        bool unread = false;  // the piece sent last may still wait for the peer to read it
    };
    struct Request {
        int connection;
        std::string text;
        bool taken;
    };

    void run();
    bool serve(int index, short events);
    void accept_connection();
    void receive(Connection& connection);
    void answer_requests(int index);
    void send_next(Connection& connection);
    static void end(Connection& connection);
    void wake();
    Connection* find(int connection);
    template <class Condition>
    bool wait_until(std::unique_lock<std::mutex>& lock, const std::string& what, Condition condition);

    int listener_ = -1;
    int wake_pipe_[2] = {-1, -1};
    int port_ = 0;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool stopping_ = false;
    std::deque<Connection> connections_;
    std::deque<Request> requests_;
    std::map<std::string, std::function<Pieces(const std::string&)>> answers_;
    std::thread thread_;
};

}  // namespace zk::test
