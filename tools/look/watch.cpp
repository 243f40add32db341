#include <sys/ioctl.h>
#include <unistd.h>
#include <atomic>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include "arms.h"
#include "look/look.h"
#include "look/push.h"
#include "report.h"

namespace tool {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

std::atomic<bool> watch_ends{false};

struct WatchRequest {
    ArmOption arm;
    double rate_Hz = 10;
    int count = 0;
    bool json = false;
};

Json report_of(const ZK_State& record) {
    const RobotStatus& s = record.status;
    Json joints = Json::array();
    for (std::size_t i = 0; i < static_cast<std::size_t>(record.joint_count); ++i) {
        joints.push_back({{"joint", i + 1},
                          {"position_deg", rounded(s.joint_position[i], 3)},
                          {"speed_deg_s", rounded(s.joint_speed[i], 2)},
                          {"current_A", rounded(s.joint_current[i], 3)},
                          {"temperature_C", rounded(s.joint_temperature[i], 1)},
                          {"voltage_V", rounded(s.joint_voltage[i], 1)},
                          {"enabled", s.joint_en_flag[i] != 0},
                          {"error", hexadecimal(s.joint_err_code[i])}});
    }
    const auto vector = [](const auto& from, std::size_t size, int decimals) {
        Json numbers = Json::array();
        for (std::size_t i = 0; i < size; ++i) numbers.push_back(rounded(from[i], decimals));
        return numbers;
    };
    zk::State state;
    state.record = record;
    const zk::EulerAngles euler = state.pose().rotation.euler();
    return {
        {"sequence", record.sequence},
        {"controller_ms", record.controller_ms < 0 ? Json() : Json(record.controller_ms)},
        {"joints", joints},
        {"position_m", vector(s.position, 3, 5)},
        {"euler_deg", {rounded(euler.rx.degrees(), 3), rounded(euler.ry.degrees(), 3), rounded(euler.rz.degrees(), 3)}},
        {"force", vector(s.force, 6, 2)},
        {"errors", json_of_errors(s.arm_err, s.sys_err)}};
}

// A text that stays in its place on a terminal: each one is drawn over the one before.
class Place {
 public:
    Place() { std::cout << "\x1b[?25l"; }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() { std::cout << "\x1b[?25h" << std::flush; }

    void draw(const std::string& text) {
        winsize size{};
        ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
        if (lines_ > 0 && (size.ws_row != size_.ws_row || size.ws_col != size_.ws_col)) {
            std::cout << "\x1b[H\x1b[2J";  // the terminal has broken the lines anew
        } else if (lines_ > 0) {
            std::cout << "\x1b[" << lines_ << 'A';
        }
        size_ = size;
        lines_ = 0;
        std::istringstream lines(text);
        std::cout << "\x1b[?7l";  // what is too wide is cut
        for (std::string line; std::getline(lines, line) && (size.ws_row == 0 || lines_ + 1 < size.ws_row); ++lines_)
            std::cout << '\r' << line << "\x1b[K\n";
        std::cout << "\x1b[J\x1b[?7h" << std::flush;
    }

 private:
    winsize size_{};
    int lines_ = 0;
};

// What the watch shows: a table on a terminal, lines elsewhere.
class Display {
 public:
    Display(std::string arm, bool json) : arm_(std::move(arm)), json_(json) {
        if (!json && isatty(STDOUT_FILENO) != 0) place_.emplace();
    }

    void show(const ZK_State& state, double rate_Hz) {
        said_.clear();
        if (place_) {
            std::ostringstream heading;
            heading << rounded(rate_Hz, 0) << " states a second";
            draw(state, heading.str());
            last_ = state;
        } else if (json_) {
            std::cout << report_of(state).dump() << std::endl;
        } else {
            print_line(state);
        }
    }

    // In words; the table keeps what was known last.
    void say(const std::string& sentence) {
        if (place_) {
            draw(last_, sentence);
        } else if (said_ != sentence) {
            std::cerr << "zk: " << arm_ << ": " << sentence << std::endl;
        }
        said_ = sentence;
    }

 private:
    void draw(const std::optional<ZK_State>& state, const std::string& heading) {
        std::ostringstream text;
        text << arm_ << ": " << heading << '\n';
        if (state) print(report_of(*state), text);
        place_->draw(text.str());
    }

    void print_line(const ZK_State& state) {
        const Json report = report_of(state);
        std::ostringstream line;
        line << report["sequence"];
        for (const Json& joint : report["joints"]) line << ' ' << joint["position_deg"];
        line << " deg ";
        for (const Json& number : report["position_m"]) line << ' ' << number;
        line << " m ";
        for (const Json& number : report["euler_deg"]) line << ' ' << number;
        line << " deg";
        for (const Json& error : report["errors"])
            line << "  " << error["of"].get<std::string>() << " error " << error["word"].get<std::string>();
        std::cout << line.str() << std::endl;
    }

    std::string arm_, said_;
    bool json_;
    std::optional<Place> place_;
    std::optional<ZK_State> last_;
};

std::string seconds_text(Clock::duration time) {
    std::ostringstream text;
    text << rounded(std::chrono::duration<double>(time).count(), 1) << " s";
    return text.str();
}

// Waits in pieces, so that Ctrl-C ends it.
void rest(milliseconds time) {
    for (const auto end = Clock::now() + time; !watch_ends && Clock::now() < end;)
        std::this_thread::sleep_for(std::min<milliseconds>(time, milliseconds(20)));
}

// Shows what one connection pushes. Returns when it is lost, or the watch has ended.
void watch_connection(const zk::Arm& arm, const WatchRequest& request, Display& display, int& shown) {
    constexpr milliseconds kStall{500};
    const milliseconds between(static_cast<std::int64_t>(1000 / request.rate_Hz));
    zk::StateStream states = arm.states();
    std::optional<ZK_State> before;
    std::string cause;  // why none has come
    auto last_at = Clock::now();
    while (!watch_ends && (request.count == 0 || shown < request.count)) {
        const auto begin = Clock::now();
        const zk::Result<zk::State> state = states.next(milliseconds(20));
        if (const auto record = arm.connection(); !record || record->state != ZK_CONNECTION_UP) return;
        if (state) {
            const ZK_State& now = state->record;
            const auto span = static_cast<double>(before ? now.host_ns - before->host_ns : 0) / 1e9;
            display.show(now, span > 0 ? (now.sequence - before->sequence) / span : 0);
            before = now;
            last_at = Clock::now();
            ++shown;
            rest(between - std::chrono::duration_cast<milliseconds>(Clock::now() - begin));
        } else if (const auto silence = Clock::now() - last_at; silence > kStall) {
            if (!before && cause.empty()) cause = why_no_state(arm).text();
            display.say(before ? "the stream stalls: no state for " + seconds_text(silence)
                               : "no state comes. " + cause);
        }
    }
}

void watch(const WatchRequest& request) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, [](int) { watch_ends = true; });
    zk::ConnectOptions options;
    options.keep_model = true;
    options.heartbeat = milliseconds(250);
    zk::Result<zk::Arm> arm = request.arm.connect(options);
    const Address address = request.arm.address();
    Display display(request.arm.text(), request.json);
    for (int shown = 0;;) {
        if (arm) watch_connection(*arm, request, display, shown);
        if (watch_ends || (request.count > 0 && shown >= request.count)) return;
        const std::string cause = arm ? "the connection is lost (" + std::string(arm->connection().value().cause) + ")"
                                      : "no connection (" + arm.error().text + ")";
        display.say(cause + "; it is tried again every second");
        arm = zk::Unexpected({});
        rest(std::chrono::seconds(1));
        if (!watch_ends) arm = zk::Arm::connect(address.host, address.port, options);
    }
}

}  // namespace

void add_watch(CLI::App& zk) {
    const auto request = std::make_shared<WatchRequest>();
    CLI::App* command =
        zk.add_subcommand("watch", "the state as it changes: a table that stays in place, until Ctrl-C");
    request->arm.add_to(*command);
    command->add_option("-r,--rate", request->rate_Hz, "shown states a second")
        ->capture_default_str()
        ->check(CLI::Range(0.1, 200.0));
    command->add_option("-n,--count", request->count, "end after so many")->check(CLI::Range(1, 1000000000));
    command->add_flag("--json", request->json, "print a line of JSON for each state");
    command->callback([request] { watch(*request); });
}

}  // namespace tool
