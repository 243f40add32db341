#include "programs/program.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "wire/note.h"

namespace sim {
namespace {

constexpr int kMaxLinesAStep = 100;  // so that a loop without a motion does not block the controller

constexpr std::array kMotions{"movej", "movel", "movec", "moves", "movej_p", "timer"};

bool is_motion(const Json& line) {
    const Json* command = line.find("command");
    return command && command->is_string() &&
           std::find(kMotions.begin(), kMotions.end(), command->text()) != kMotions.end();
}

// Whether the motion of this line is joined to the next.
bool is_joined(const Json& line) {
    const Json* connect = line.find("trajectory_connect");
    return line.at("command").text() != "timer" && connect && connect->is_number() &&
           std::trunc(connect->number()) != 0;
}

bool is_loop(const Json& line) {
    const Json* loop = line.find("loop");
    return loop && loop->is_integer() && loop->integer() >= 1 && loop->integer() <= 1'000'000;
}

bool is_blank(const std::string& line) { return line.find_first_not_of(" \t") == std::string::npos; }

// The keys that a motion may omit.
void complete(Json& line, int speed) {
    for (const char* key : {"r", "trajectory_connect"}) {
        if (!line.contains(key)) line[key] = 0;
    }
    const Json* v = line.find("v");
    const int64_t own = !v ? 100 : v->is_integer() ? v->integer() : 0;
    if (own > 0 && own <= 100) line["v"] = std::max<int64_t>(1, own * speed / 100);
}

}  // namespace

std::vector<std::string> program_lines(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        std::string line = text.substr(begin, end - begin);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        begin = end + 1;
    }
    return lines;
}

int first_wrong_line(const std::vector<std::string>& lines) {
    int open_loops = 0, joined_line = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (is_blank(lines[i])) continue;
        const std::optional<Json> line = Json::parse(lines[i], true);
        bool good = line && line->is_object();
        if (good && line->contains("command")) {  // "loop" of a circle is its number of turns
            good = is_motion(*line);
            if (good) joined_line = is_joined(*line) ? static_cast<int>(i) + 1 : 0;
        } else if (good && line->contains("loop")) {
            good = is_loop(*line), ++open_loops;
        } else if (good && line->contains("end_loop")) {
            good = --open_loops >= 0;
        }
        if (!good) return static_cast<int>(i) + 1;
    }
    return open_loops == 0 ? joined_line : static_cast<int>(lines.size());
}

// Sends the orders of a program and receives their reports.
class Programs::Orders : public Client {
 public:
    void send(const Json& message) override {
        if (message.contains("trajectory_state")) return end(message.at("trajectory_state").boolean());
        answered_ = true;
        for (const auto& [key, value] : message.members()) {
            if (value.is_boolean() && !value.boolean()) refused_ = true;
        }
    }
    std::string name() const override { return "program"; }
    void timer_ended(bool ran_out) override { end(ran_out); }

    // The end of a motion is reported, unless it is joined to the next.
    void send(const Dispatcher& dispatcher, const Json& order, const std::shared_ptr<Client>& self) {
        answered_ = false;
        waiting_ = !is_joined(order);
        dispatcher.handle(order.dump(), self);
        if (!answered_) refused_ = true;
    }
    bool waiting() const { return waiting_ && !refused_; }
    bool refused() const { return refused_; }

 private:
    void end(bool whole) {
        waiting_ = false;
        if (!whole) refused_ = true;
    }

    bool answered_ = false;
    bool waiting_ = false;
    bool refused_ = false;
};

bool Programs::start(const Program& program, int speed, bool step_mode, const std::shared_ptr<Client>& starter) {
    if (run_) return false;
    run_.emplace(Run{program, speed, step_mode, starter, std::make_shared<Orders>()});
    return true;
}

bool Programs::next() {
    if (!run_ || !run_->step_mode) return false;
    run_->held = false;
    return true;
}

void Programs::stop() {
    if (run_) run_->stopped = true;
}

void Programs::step() {
    const MotionQueue& motion = arm_.motion();
    for (int lines = 0; run_ && lines < kMaxLinesAStep; ++lines) {
        Run& run = *run_;
        const bool stopped = run.stopped || !arm_.reason_not_to_move().empty();
        if (run.orders->refused() || (stopped && motion.idle())) return end(false);
        if (stopped || run.orders->waiting() || run.held) return;
        if (run.line == run.program.lines.size()) {
            if (motion.idle()) end(true);
            return;
        }
        const std::string& text = run.program.lines[run.line++];
        const Json line = is_blank(text) ? Json::object() : *Json::parse(text);
        if (line.contains("command")) {
            Json order = line;
            complete(order, run.speed);
            run.held = run.step_mode;
            run.orders->send(dispatcher_, order, run.orders);
        } else if (line.contains("loop")) {
            run.loops.push_back({run.line, static_cast<int>(line.at("loop").integer()), 1});
        } else if (line.contains("end_loop")) {
            Loop& loop = run.loops.back();
            if (loop.round++ < loop.rounds)
                run.line = loop.start;
            else
                run.loops.pop_back();
        }
    }
}

bool Programs::proceed() const {
    return run_ && !(run_->held && !run_->orders->waiting()) && arm_.motion().status() != "pause";
}

// Only a program that reached its end reports that, so that no client takes an aborted one for done.
void Programs::end(bool finished) {
    const Run run = *std::exchange(run_, std::nullopt);
    arm_.motion().drop_joined_of(run.orders);
    if (!finished) note("program " + run.program.name + ": ended before its end");
    const auto starter = run.starter.lock();
    if (finished && starter) starter->send({{"state", "program_run_finish"}, {"finish_id", run.program.id}});
}

Json Programs::state() const {
    if (!run_) return {{"run_state", 0}, {"edit_id", 0}};
    std::vector<int> rounds, totals;
    for (const Loop& loop : run_->loops) {
        totals.push_back(loop.rounds);
        rounds.push_back(loop.round);
    }
    const bool paused = run_->held || arm_.motion().status() == "pause";
    return {{"run_state", paused ? 2 : 1},
            {"id", run_->program.id},
            {"plan_num", std::max<size_t>(run_->line, 1)},
            {"loop_num", totals},
            {"loop_cont", rounds},
            {"plan_speed", run_->speed},
            {"step_mode", run_->step_mode ? 1 : 0},
            {"edit_id", 0}};
}

}  // namespace sim
