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
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
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
     * until it listens. Throws std::runtime_error when it does not start. */
    explicit Simulator(const std::vector<std::string>& arguments = {}, const std::string& program = default_program()) {
        std::vector<std::string> words{program, "--port", "0", "--push-port", "0", "--until-eof"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        start(words);
        try {
            for (char next; ::read(output_, &next, 1) == 1 && next != '\n';) first_line_ += next;
            port_ = number_of("port");
            push_port_ = number_of("push_port");
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

    /* Simulated seconds in a second, 0.1 to 100. */
    void set_speed(double speed) {
        std::ostringstream text;
        text.imbue(std::locale::classic());
        text << R"({"command":"zk_sim_speed","speed":)" << speed << '}';
        expect_done(text.str());
    }

    /* From now on each request runs to rest as fast as the machine computes; between requests time stands. */
    void run_at_once() { expect_done(R"({"command":"zk_sim_speed","speed":"max"})"); }

    /* Sets faults: keys and values of a JSON object, as the request zk_sim_fault takes them. Throws
     * std::invalid_argument when the simulator refuses them; then none is set. */
    void set_faults(const std::string& keys) { expect_done(R"({"command":"zk_sim_fault",)" + keys + "}"); }

    /* Sends a request, a JSON object, on a connection of its own and returns the first line of the answer. */
    std::string ask(const std::string& request) const {
        const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const std::string text = request + "\r\n";
        std::string line;
        if (client >= 0 && ::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            ::send(client, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size())) {
            for (char next; ::read(client, &next, 1) == 1 && next != '\n';) line += next;
        }
        ::close(client);
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
    struct Pipe {
        Pipe() {
            if (::pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe2");
        }
        ~Pipe() {
            for (const int end : ends)
                if (end >= 0) ::close(end);
        }
        int release(int end) {
            const int descriptor = ends[end];
            ends[end] = -1;
            return descriptor;
        }
        int ends[2];
    };

    void start(std::vector<std::string>& words) {
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        Pipe input, output;
        process_ = ::fork();
        if (process_ == 0) {
            if (::dup2(input.ends[0], STDIN_FILENO) >= 0 && ::dup2(output.ends[1], STDOUT_FILENO) >= 0)
                ::execvp(arguments[0], arguments.data());
            ::_exit(127);
        }
        if (process_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
        input_ = input.release(1);
        output_ = output.release(0);
    }

    /* The number after " name=" in the first line. */
    int number_of(const std::string& name) const {
        const std::size_t at = first_line_.find(" " + name + "=");
        if (at == std::string::npos) throw std::runtime_error("the simulator did not start: " + first_line_);
        return std::stoi(first_line_.substr(at + name.size() + 2));
    }

    void expect_done(const std::string& request) const {
        const std::string answer = ask(request);
        if (answer.find("\"done\":true") == std::string::npos)
            throw std::invalid_argument("the simulator refuses " + request + ": " + answer);
    }

    /* The end of its input ends it, after it has saved its state; one that hangs is killed. */
    void end() {
        ::close(input_);
        for (int waited_ms = 0; process_ > 0; ++waited_ms) {
            if (::waitpid(process_, nullptr, WNOHANG) != 0) break;
            if (waited_ms == 1000) ::kill(process_, SIGKILL);
            ::usleep(1000);
        }
        ::close(output_);
    }

    pid_t process_ = -1;
    int input_ = -1; /* held open: its end ends the simulator */
    int output_ = -1;
    std::string first_line_;
    int port_ = 0;
    int push_port_ = 0;
};

}  // namespace zk

#endif
