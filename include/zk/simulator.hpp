/*
 * Starts the simulated controller for a test, and disturbs it. Header only, C++17, Linux. It uses no function of the
 * library: the tests of any client can include it.
 *
 *     zk::Simulator simulator({"--model", "ZK75-6F", "--speed", "max"});
 *     ... a client connects to 127.0.0.1, simulator.port() ...
 *     simulator.set_faults(R"("silent_on":["get_joint_degree"])");
 *
 * With {"--state", "cell.json"} it keeps its settings, programs and waypoints in that file, for the next one.
 */
#ifndef ZK_SIMULATOR_HPP
#define ZK_SIMULATOR_HPP

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace zk {

/* A simulated controller in a process of its own, which ends with the object, and when this program dies. Its methods
 * may be called from any thread, one at a time. They throw std::runtime_error when the simulator has ended. */
class Simulator {
 public:
    /* The program in the environment variable ZK_SIMULATOR, or "zk_simulator", which is searched on the PATH. */
    static std::string default_program() {
        const char* named = std::getenv("ZK_SIMULATOR");
        return named && *named ? named : "zk_simulator";
    }

    /* Starts it on free ports of 127.0.0.1 with these further arguments (zk_simulator --help lists them), and waits
     * until it listens. Throws std::runtime_error when it does not start within the patience, in milliseconds. */
    explicit Simulator(const std::vector<std::string>& arguments = {}, const std::string& program = default_program(),
                       int patience_ms = 10'000)
        : patience_ms_(patience_ms) {
        std::vector<std::string> words{program, "--port", "0", "--push-port", "0", "--until-eof"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        start(words);
        try {
            first_line_ = read_first_line();
            port_ = number_of("port");
            push_port_ = number_of("push_port");
            connection_ = connect();
        } catch (...) {
            end();
            throw;
        }
    }
    ~Simulator() { end(); }
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    int port() const { return port_; }           /* TCP, for requests */
    int push_port() const { return push_port_; } /* UDP, to which it pushes its state */
    pid_t id() const { return process_; }

    /* Its first line of output, with the model and the ports. */
    const std::string& first_line() const { return first_line_; }

    /* After this time without an answer, in milliseconds, the methods that ask throw std::runtime_error. At first it is
     * that of the constructor. */
    void set_patience(int milliseconds) { patience_ms_ = milliseconds; }

    /* Simulated seconds in a second, 0.1 to 100; std::invalid_argument for another number. */
    void set_speed(double speed) {
        if (!std::isfinite(speed)) throw std::invalid_argument("a speed that is not finite");
        std::ostringstream text;
        text.imbue(std::locale::classic());
        text << R"({"command":"zk_sim_speed","speed":)" << speed << '}';
        expect_done(text.str());
    }

    /* From now on each request runs to rest as fast as the machine computes; between requests time stands. */
    void run_at_once() { expect_done(R"({"command":"zk_sim_speed","speed":"max"})"); }

    /* Sets faults: keys and values of a JSON object, as the request zk_sim_fault takes them. Throws
     * std::invalid_argument when they are no such text, or the simulator refuses them; then none is set. */
    void set_faults(const std::string& keys) {
        if (!may_be_members(keys)) throw std::invalid_argument("no keys and values of a JSON object: " + keys);
        expect_done(R"({"command":"zk_sim_fault",)" + keys + "}");
    }

    /* Sends a request, a JSON object, and returns the first line of the answer. A request of the simulator itself
     * ("zk_sim_...") leaves on the connection that this object keeps, which counts as one of "max_clients"; any other
     * on a connection of its own. */
    std::string ask(const std::string& request) const {
        std::string line;
        if (request.find("\"zk_sim_") == std::string::npos) {
            const Descriptor client = connect();
            line = answer(client, request);
        } else {
            line = answer(connection_, request);
            if (line.empty()) { /* the simulator has closed it, as a restart does */
                connection_ = connect();
                line = answer(connection_, request);
            }
        }
        if (line.empty()) throw std::runtime_error("the simulator does not answer " + request);
        line.pop_back();
        return line;
    }

    /* Waits until it has ended, and returns its exit status; -1 when a signal ended it. */
    int wait_for_exit() {
        int status = 0;
        while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

 private:
    class Descriptor {
     public:
        explicit Descriptor(int number = -1) : number_(number) {}
        Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
        Descriptor& operator=(Descriptor&& other) noexcept {
            std::swap(number_, other.number_);
            return *this;
        }
        ~Descriptor() { close(); }
        void close() {
            if (number_ >= 0) ::close(number_);
            number_ = -1;
        }
        int number() const { return number_; }

     private:
        int number_;
    };

    struct Pipe {
        Pipe() {
            int numbers[2];
            if (::pipe2(numbers, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe2");
            read = above_standard(Descriptor(numbers[0]));
            write = above_standard(Descriptor(numbers[1]));
        }
        Descriptor read, write;
    };

    /* A program without standard input may get its number for a pipe, which the child then could not pass on. */
    static Descriptor above_standard(Descriptor low) {
        if (low.number() > STDERR_FILENO) return low;
        Descriptor high(::fcntl(low.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        if (high.number() < 0) throw std::system_error(errno, std::generic_category(), "fcntl");
        return high;
    }

    void start(std::vector<std::string>& words) {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        Pipe input, output, failure;
        process_ = ::fork();
        if (process_ == 0) {
            if (::dup2(input.read.number(), STDIN_FILENO) >= 0 && ::dup2(output.write.number(), STDOUT_FILENO) >= 0)
                ::execvp(arguments[0], arguments.data());
            const int reason = errno;
            ::_exit(::write(failure.write.number(), &reason, sizeof reason) > 0 ? 127 : 126);
        }
        if (process_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
        failure.write.close();
        int reason = 0;
        if (::read(failure.read.number(), &reason, sizeof reason) == static_cast<ssize_t>(sizeof reason)) {
            ::waitpid(process_, nullptr, 0);
            throw std::runtime_error("cannot run '" + words[0] + "': " + std::generic_category().message(reason));
        }
        program_ = words[0];
        input_ = std::move(input.write);
        output_ = std::move(output.read);
    }

    /* None when the simulator refuses it. */
    Descriptor connect() const {
        Descriptor client(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(client.number(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) client.close();
        return client;
    }

    /* The next line, or the rest before the other end closes. Throws std::runtime_error when it takes too long. */
    std::string line_from(const Descriptor& file) const {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point end = Clock::now() + std::chrono::milliseconds(patience_ms_);
        for (std::string line;;) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
            pollfd readable{file.number(), POLLIN, 0};
            const int ready = ::poll(&readable, 1, left > 0 ? static_cast<int>(left) : 0);
            if (ready < 0 && errno == EINTR) continue;
            if (ready == 0) throw std::runtime_error("silent for " + std::to_string(patience_ms_) + " ms");
            char next;
            if (::read(file.number(), &next, 1) != 1 || next == '\n') return line;
            line += next;
        }
    }

    std::string read_first_line() const {
        try {
            return line_from(output_);
        } catch (const std::runtime_error& error) {
            ::kill(process_, SIGKILL);
            throw std::runtime_error("'" + program_ + "' does not start: " + error.what());
        }
    }

    /* The first line of the answer; empty when the simulator closes the connection instead. After a time without an
     * answer the connection is closed: the answer may still come. */
    std::string answer(const Descriptor& client, const std::string& request) const {
        const std::string text = request + "\r\n";
        if (::send(client.number(), text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size()))
            return {};
        try {
            return line_from(client);
        } catch (const std::runtime_error& error) {
            ::shutdown(client.number(), SHUT_RDWR);
            throw std::runtime_error("the simulator is " + std::string(error.what()) + " after the request " + request);
        }
    }

    /* Whether this begins as a member of a JSON object does, and closes what it opens. The simulator ignores a request
     * that is no JSON. */
    static bool may_be_members(const std::string& text) {
        const std::size_t first = text.find_first_not_of(" \t\r\n");
        if (first == std::string::npos || text[first] != '"') return false;
        bool quoted = false, named = false;
        int depth = 0;
        for (std::size_t i = first; i < text.size() && depth >= 0; ++i) {
            if (text[i] == '"') quoted = !quoted;
            if (quoted && text[i] == '\\') ++i;
            if (quoted) continue;
            if (text[i] == ':') named = true;
            if (text[i] == '{' || text[i] == '[') ++depth;
            if (text[i] == '}' || text[i] == ']') --depth;
        }
        return named && !quoted && depth == 0;
    }

    /* The number after " name=" in the first line. */
    int number_of(const std::string& name) const {
        const std::size_t at = first_line_.find(" " + name + "=");
        if (at == std::string::npos)
            throw std::runtime_error("'" + program_ + "' did not start" +
                                     (first_line_.empty() ? "; standard error has its reason" : ": " + first_line_));
        return std::stoi(first_line_.substr(at + name.size() + 2));
    }

    void expect_done(const std::string& request) const {
        const std::string answer = ask(request);
        if (answer.find("\"done\":true") == std::string::npos)
            throw std::invalid_argument("the simulator refuses " + request + ": " + answer);
    }

    /* The end of its input ends it, after it has saved its state; one that hangs is killed. */
    void end() {
        input_.close();
        for (int waited_ms = 0; process_ > 0; ++waited_ms) {
            if (::waitpid(process_, nullptr, WNOHANG) != 0) break;
            if (waited_ms == 1000) ::kill(process_, SIGKILL);
            ::usleep(1000);
        }
    }

    pid_t process_ = -1;
    std::string program_;
    Descriptor input_; /* held open: its end ends the simulator */
    Descriptor output_;
    std::string first_line_;
    int port_ = 0;
    int push_port_ = 0;
    int patience_ms_;
    mutable Descriptor connection_; /* open from the start, so that a limit of clients does not lock this object out */
};

}  // namespace zk

#endif
