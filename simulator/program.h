#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client.h"

namespace sim {

class Controller;

// A program is a text of one JSON object a line. A line with a "command" orders a motion; {"loop": N} and
// {"end_loop": true} repeat what stands between them; any other object, and an empty line, is passed over.
struct Program {
    int id = 0;  // 0: not among the kept ones
    int size = 0;
    int speed = 100;  // percent of the speeds in its lines
    std::string name;
    std::vector<std::string> lines;
};

// The lines of a program's text, and the first of them, counted from 1, that is no such line; 0 when all are.
std::vector<std::string> program_lines(const std::string& text);
int first_wrong_line(const std::vector<std::string>& lines);

// The programs that the controller keeps, and the one that runs.
class Programs {
 public:
    static constexpr int kMaxId = 200;

    std::map<int, Program> kept;
    int default_id = 0;

    // False while one runs. Who started it hears of its end, if it comes to that.
    bool start(const Program& program, int speed, bool step_mode, const std::shared_ptr<Client>& starter);
    bool running() const { return run_.has_value(); }
    bool runs(int id) const { return run_ && run_->program.id == id; }
    // In step mode: the next line. False when none is waited for.
    bool next();

    // Orders what comes next, once the arm has come as far.
    void step(Controller& controller);

    // As clients are told.
    Json state(const Controller& controller) const;

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
        size_t line = 0;    // that is ordered next
        bool held = false;  // in step mode, until `next`
        std::vector<Loop> loops = {};
    };

    void end(bool finished);

    std::optional<Run> run_;
};

}  // namespace sim
