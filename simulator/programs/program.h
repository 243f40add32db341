#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "motion/arm.h"
#include "wire/dispatcher.h"

namespace sim {

// A program is a text with one JSON object per line. A line with a "command" orders a motion; {"loop": N} and
// {"end_loop": true} repeat the lines between them; other objects and empty lines are ignored.
struct Program {
    int id = 0;  // 0: not stored
    int size = 0;
    int speed = 100;  // percent of the speeds in its lines
    std::string name;
    std::vector<std::string> lines;
};

// The lines of a program's text and the number, from 1, of the first invalid one; 0 if all are valid. The last motion
// must not wait to be joined to another.
std::vector<std::string> program_lines(const std::string& text);
int first_wrong_line(const std::vector<std::string>& lines);

// The stored programs and the running one.
class Programs {
 public:
    // The lines of a program are requests to the dispatcher that move the arm.
    Programs(const Dispatcher& dispatcher, Arm& arm) : dispatcher_(dispatcher), arm_(arm) {}

    static constexpr int kMaxId = 200;

    std::map<int, Program> kept;
    int default_id = 0;

    // False while a program runs. The client that started it gets a report when it reaches its end.
    bool start(const Program& program, int speed, bool step_mode, const std::shared_ptr<Client>& starter);
    bool running() const { return run_.has_value(); }
    bool runs(int id) const { return run_ && run_->program.id == id; }
    // False when it does not go on before the next request.
    bool proceed() const;
    // Runs the next line in step mode. False if the program does not wait for it.
    bool next();
    // Ends the running program before its end, as soon as the arm rests.
    void stop();

    // Orders the next lines when the arm has finished the previous ones.
    void step();

    // The state that clients query.
    Json state() const;

 private:
    class Orders;

    struct Loop {
        size_t start;
        int rounds;
        int round;
    };
    struct Run {
        Program program;
        int speed;
        bool step_mode;
        std::weak_ptr<Client> starter;
        std::shared_ptr<Orders> orders;
        size_t line = 0;    // ordered next
        bool held = false;  // in step mode, until `next`
        bool stopped = false;
        std::vector<Loop> loops = {};
    };

    void end(bool finished);

    const Dispatcher& dispatcher_;
    Arm& arm_;
    std::optional<Run> run_;
};

}  // namespace sim
