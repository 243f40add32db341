#include <poll.h>
#include <termios.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <memory>

#include "move/following.h"
#include "move/move.h"
#include "move/plan.h"

namespace tool {
namespace {

using namespace zk::literals;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// How long the arm goes on after a key: longer than the pause between two repeats of a key, much shorter than the delay
// before the first. So the first press is a short step, and the arm goes on once the key repeats.
constexpr milliseconds kHold{150};
constexpr milliseconds kCycle{10};

std::atomic<int> jog_signal{0};

// A terminal that hands over each key at once and does not show it, restored at the end of this object's life.
class Keys {
 public:
    Keys() {
        if (isatty(STDIN_FILENO) == 0 || tcgetattr(STDIN_FILENO, &before_) != 0)
            throw Failure(kUsage, "zk jog needs a terminal: keys move the arm");
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
            std::signal(signal, [](int number) { jog_signal = number; });
        termios raw = before_;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        raw.c_cc[VMIN] = raw.c_cc[VTIME] = 0;
        raw.c_cc[VSUSP] = _POSIX_VDISABLE;
        tcsetattr(STDIN_FILENO, TCSANOW, &raw);
        std::cout << "\x1b[?25l";
    }
    Keys(const Keys&) = delete;
    Keys& operator=(const Keys&) = delete;
    ~Keys() {
        std::cout << "\x1b[?25h" << std::endl;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    }

    // What was typed within a cycle. Throws Failure when the terminal is gone.
    static std::string next() {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, static_cast<int>(kCycle.count())) <= 0) return {};
        std::array<char, 256> bytes{};
        const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count == 0 || (count < 0 && errno != EINTR))
            throw Failure(kInterrupted, "the terminal is gone; the arm rests");
        return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

 private:
    termios before_{};
};

// Streams set-points of one joint. They end with the program, however it ends, and the arm rests at the last one.
class Jogger {
 public:
    Jogger(const zk::Arm& arm, double percent) : arm_(arm), percent_(percent), target_(arm.joints().value()) {
        const zk::Model model = arm.model().value();
        limits_ = model.joint_limits().value();
        std::array<float, zk::Joints::kMost> speed{}, acceleration{};
        zk::call<ZK_Model_Get_Speed_Limits>(model.get(), speed, acceleration).value();
        most_speed_ = zk::Joints::from_c(speed.data(), arm.joint_count());
        most_acceleration_ = zk::Joints::from_c(acceleration.data(), arm.joint_count());
    }

    void choose(std::size_t joint) {
        if (joint >= arm_.joint_count() || speed_ != 0_deg) return;  // the joint that moves stops first
        joint_ = joint;
    }
    void change_speed(double factor) { percent_ = std::clamp(percent_ * factor, 1.0, 50.0); }

    // A key that moves was pressed, or has repeated.
    void hold(int direction) {
        if (speed_ == 0_deg && Clock::now() >= held_until_)
            target_ = arm_.joints().value();  // others may have moved it
        direction_ = direction;
        held_until_ = Clock::now() + kHold;
    }
    void let_go() { held_until_ = {}; }

    // Sends the next set-point, if the arm moves.
    void step() {
        const auto now = Clock::now();
        const double seconds = std::min(0.05, std::chrono::duration<double>(now - last_step_).count());
        last_step_ = now;
        const zk::Angle most = most_speed_[joint_] * (percent_ / 100);
        const zk::Angle wanted = now < held_until_ ? std::min(most, braking_speed()) * direction_ : 0_deg;
        const zk::Angle change = most_acceleration_[joint_] * (0.5 * seconds);
        if (wanted == 0_deg && speed_ == 0_deg) return;
        speed_ = std::clamp(wanted, speed_ - change, speed_ + change);
        zk::Angle& target = target_[joint_];
        target = std::clamp(target + speed_ * seconds, std::min(target, limits_.min[joint_]),
                            std::max(target, limits_.max[joint_]));
        arm_.stream_joints(target_, true).value();
    }

    bool is_moving() const { return speed_ != 0_deg; }

    std::string line() const {
        const zk::Angle position = target_[joint_];
        const bool at_limit = position <= limits_.min[joint_] || position >= limits_.max[joint_];
        std::array<char, 128> text{};
        std::snprintf(text.data(), text.size(), "joint %zu  %8.2f deg  %7.2f deg/s  speed %.0f %%%s", joint_ + 1,
                      position.degrees(), speed_.degrees(), percent_, at_limit ? "  at its limit" : "");
        return text.data();
    }

 private:
    // From which the arm can stop before the limit ahead.
    zk::Angle braking_speed() const {
        const zk::Angle room =
            direction_ > 0 ? limits_.max[joint_] - target_[joint_] : target_[joint_] - limits_.min[joint_];
        return zk::degrees(std::sqrt(std::max(0.0, room.degrees() * most_acceleration_[joint_].degrees() / 2)));
    }

    const zk::Arm& arm_;
    double percent_;
    zk::Joints target_, most_speed_, most_acceleration_;
    zk::JointLimits limits_;
    std::size_t joint_ = 0;
    int direction_ = 1;
    zk::Angle speed_{};
    Clock::time_point held_until_, last_step_ = Clock::now();
};

// Carries out what was typed. Returns false for q.
bool take_keys(const std::string& keys, Jogger& jogger) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        char key = keys[i];
        if (key == '\x1b' && i + 2 < keys.size() && (keys[i + 1] == '[' || keys[i + 1] == 'O')) {
            const char arrow = keys[i += 2];
            key = arrow == 'C' ? '+' : arrow == 'D' ? '-' : arrow == 'A' ? '>' : arrow == 'B' ? '<' : ' ';
        }
        if (key == 'q') return false;
        if (key >= '1' && key <= '7') jogger.choose(static_cast<std::size_t>(key - '1'));
        if (key == '+' || key == '=') jogger.hold(1);
        if (key == '-') jogger.hold(-1);
        if (key == '>' || key == '.') jogger.change_speed(1.25);
        if (key == '<' || key == ',') jogger.change_speed(0.8);
        if (key == ' ') jogger.let_go();
    }
    return true;
}

void jog(const ArmOption& where, double percent) {
    if (isatty(STDIN_FILENO) == 0) throw Failure(kUsage, "zk jog needs a terminal: keys move the arm");
    const zk::Arm arm = where.connect({5_s, 0, 100_ms, true, true});
    check_ready(arm);
    arm.set_deadline(1_s).value();
    const Following following(arm);
    Jogger jogger(arm, percent);
    std::cout << "1 to " << arm.joint_count() << ": joint   + - or right left: move while held   "
              << "> < or up down: speed   space: stop   q: quit\n";
    const Keys keys;
    std::string shown;
    for (bool goes_on = true; goes_on || jogger.is_moving();) {
        const std::string typed = Keys::next();
        if (goes_on && jog_signal == 0) goes_on = take_keys(typed, jogger);
        if (jog_signal != 0) goes_on = false;
        if (!goes_on) jogger.let_go();
        following.check();
        jogger.step();
        if (std::string line = jogger.line(); line != shown) {
            std::cout << '\r' << line << "\x1b[K" << std::flush;
            shown = std::move(line);
        }
    }
    if (jog_signal != 0) throw CLI::RuntimeError(kInterrupted);
}

}  // namespace

void add_jog(CLI::App& zk) {
    const auto where = std::make_shared<ArmOption>();
    const auto percent = std::make_shared<double>(10);
    CLI::App* command = zk.add_subcommand("jog", "move one joint by keys, as long as a key is held");
    where->add_to(*command);
    command->add_option("-s,--speed", *percent, "percent of the joint's limit at the start")
        ->capture_default_str()
        ->check(CLI::Range(1, 50));
    command->callback([where, percent] { jog(*where, *percent); });
}

}  // namespace tool
