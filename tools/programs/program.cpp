#include "programs/program.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace tool {
namespace {

using Kind = Instruction::Kind;

constexpr std::uintmax_t kMostBytes = 64 << 20;
constexpr double kMostDegrees = 360, kMostMetres = 5;

constexpr std::array<std::pair<std::string_view, Kind>, 6> kCommands{{{"movej", Kind::kJoints},
                                                                      {"movej_p", Kind::kPose},
                                                                      {"movel", Kind::kLine},
                                                                      {"moves", Kind::kSpline},
                                                                      {"movec", Kind::kCircle},
                                                                      {"timer", Kind::kTimer}}};

std::string read_text(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) throw Failure(kUsage, path + " is a directory");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Failure(kUsage, path + " cannot be read");
    if (std::filesystem::file_size(path, error) > kMostBytes && !error)
        throw Failure(kUsage, path + " is larger than 64 MiB");
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.find('\0') != std::string::npos) throw Failure(kUsage, path + " is no program: it is no text");
    return text;
}

// The instruction of a line. What is wrong is thrown as text.
class LineReader {
 public:
    explicit LineReader(const Json& line) : line_(line) {}

    void read(Instruction& into) const {
        for (const auto& [name, kind] : kCommands) {
            if (name == into.command) return read(kind, into);
        }
        throw std::invalid_argument("a program has no command '" + into.command + "'");
    }
    int whole(const char* key, int low, int high, std::optional<int> otherwise = {}) const {
        const auto found = line_.find(key);
        if (found == line_.end() && otherwise) return *otherwise;
        if (found == line_.end() || !found->is_number_integer() || *found < low || *found > high) {
            throw std::invalid_argument('"' + std::string(key) + "\" is no whole number from " + std::to_string(low) +
                                        " to " + std::to_string(high));
        }
        return *found;
    }

 private:
    void read(Kind kind, Instruction& into) const {
        into.kind = kind;
        if (kind == Kind::kTimer) {
            into.count = whole("wait_time", 0, 1'000'000'000);
            return;
        }
        into.speed_percent = whole("v", 1, 100, 100);
        whole("r", 0, 100, 0);
        if (kind == Kind::kJoints) {
            into.joints = joints(numbers(line_, "joint"));
        } else if (kind == Kind::kCircle) {
            if (!line_.contains("pose") || !line_["pose"].is_object())
                throw std::invalid_argument("\"pose\" holds no \"pose_via\" and \"pose_to\"");
            into.via = pose(numbers(line_["pose"], "pose_via"));
            into.target = pose(numbers(line_["pose"], "pose_to"));
            into.count = whole("loop", 0, 255);
        } else {
            into.target = pose(numbers(line_, "pose"));
        }
    }

    static std::vector<double> numbers(const Json& in, const char* key) {
        const auto found = in.find(key);
        std::vector<double> all;
        if (found != in.end() && found->is_array()) {
            for (const Json& number : *found) {
                if (number.is_number()) all.push_back(number);
            }
            if (all.size() == found->size() && (all.size() == 6 || all.size() == 7)) return all;
        }
        throw std::invalid_argument('"' + std::string(key) + "\" is no list of six or seven numbers");
    }

    static zk::Joints joints(std::vector<double> thousandths) {
        for (double& number : thousandths) {
            number /= 1000;
            if (!(std::abs(number) <= kMostDegrees)) {
                throw std::invalid_argument("a joint is beyond 360 degrees; \"joint\" is in thousandths of a degree");
            }
        }
        return zk::Joints::from_degrees(thousandths);
    }

    static zk::Pose pose(const std::vector<double>& n) {
        for (std::size_t i = 0; i < 3; ++i) {
            if (!(std::abs(n[i]) <= kMostMetres * 1e6))
                throw std::invalid_argument("a place is more than 5 m away; \"pose\" begins with micrometres");
        }
        const auto metres = [&n](std::size_t i) { return zk::metres(n[i] / 1e6); };
        const auto radians = [&n](std::size_t i) { return zk::radians(n[i] / 1e3); };
        zk::Pose pose;
        pose.position = {metres(0), metres(1), metres(2)};
        pose.rotation = zk::Rotation::from_euler(radians(3), radians(4), radians(5));
        return pose;
    }

    const Json& line_;
};

// Objects without a key that a controller knows are remarks.
void read_line(const std::string& text, int number, bool& waits, Program& program) {
    const Json line = Json::parse(text, nullptr, false);
    if (!line.is_object()) throw std::invalid_argument("the line is no JSON object");
    const LineReader reader(line);
    Instruction one{number, {}, Kind::kEndLoop, {}, {}, {}};
    if (line.contains("command")) {
        one.command = line["command"].is_string() ? line["command"].get<std::string>() : line["command"].dump();
        reader.read(one);
        waits = one.kind != Kind::kTimer && reader.whole("trajectory_connect", 0, 255, 0) != 0;
    } else if (line.contains("loop")) {
        one.command = "loop";
        one.kind = Kind::kLoop;
        one.count = reader.whole("loop", 1, 1'000'000);
    } else if (line.contains("end_loop")) {
        one.command = "end_loop";
    } else {
        return;
    }
    program.instructions.push_back(one);
}

void check_whole(const Program& program, bool waits) {
    int open = 0;
    bool moves = false;
    for (const Instruction& one : program.instructions) {
        moves = moves || (one.kind != Kind::kLoop && one.kind != Kind::kEndLoop);
        open += one.kind == Kind::kLoop ? 1 : one.kind == Kind::kEndLoop ? -1 : 0;
        if (open < 0)
            throw Failure(kUsage,
                          program.path + ", line " + std::to_string(one.line) + ": no loop is open to be ended");
    }
    if (!moves) throw Failure(kUsage, program.path + " is no program: no line of it has a command");
    if (open > 0) throw Failure(kUsage, program.path + " is cut short: a loop is not ended");
    if (waits) throw Failure(kUsage, program.path + " is cut short: its last motion waits to be joined to another");
}

}  // namespace

Program read_program(const std::string& path) {
    Program program{path, read_text(path), {}};
    std::istringstream lines(program.text);
    std::string text;
    bool waits = false;
    for (int number = 1; std::getline(lines, text); ++number) {
        if (!text.empty() && text.back() == '\r') text.pop_back();
        if (text.find_first_not_of(" \t") == std::string::npos) continue;
        try {
            read_line(text, number, waits, program);
        } catch (const std::invalid_argument& error) {
            throw Failure(kUsage, path + ", line " + std::to_string(number) + ": " + error.what());
        }
    }
    check_whole(program, waits);
    return program;
}

}  // namespace tool
