// What the commands of the program have in common. A command is declared by one call in its file's add_...(zk), which
// main.cpp lists; the call names it, describes it, and holds what it does.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "zk/arm.hpp"

namespace tool {

struct Address;
using Json = nlohmann::ordered_json;

// How the program ends, for scripts.
using Exit = int;
constexpr Exit kDone = 0;
constexpr Exit kFailed = 1;         // refused by the arm, or found to be wrong
constexpr Exit kUsage = 2;          // arguments or a file cannot be used; nothing was sent
constexpr Exit kNoArm = 3;          // no controller could be reached, or the connection was lost
constexpr Exit kInterrupted = 130;  // Ctrl-C

// Ends a command with one sentence on standard error.
struct Failure : std::runtime_error {
    Failure(Exit exit_in, const std::string& sentence) : std::runtime_error(sentence), exit(exit_in) {}
    Exit exit;
};

// Which arm a command talks to: an option of the command, the variable ZK_ARM, or a name of the user's file.
class ArmOption {
 public:
    void add_to(CLI::App& command);
    bool is_given() const { return !text_.empty(); }
    const std::string& text() const { return text_; }
    // Throws Failure without an arm or for what is no address.
    Address address() const;
    zk::Arm connect(const zk::ConnectOptions& options = {}) const;

 private:
    std::string text_;
};

// Throws Failure for a name that no arm has.
zk::Model model_called(const std::string& name);

// An arm to compute with: a model by its name, or that of the connected arm with its frames and limits.
class ModelOption {
 public:
    void add_to(CLI::App& command);
    zk::Model load() const;

 private:
    std::string name_;
    ArmOption arm_;
};

// A command that looks and changes nothing. Its report is printed for people, or with --json for programs. One with
// "ok": false, or a row whose "answer" is not "ok", ends the program with kFailed, or with kNoArm if it says
// "reachable": false. setup adds options of the command's own; show prints for people in another way than print() of
// report.h.
using Setup = std::function<void(CLI::App&)>;
using Show = std::function<void(const Json&, std::ostream&)>;
void add_looking(CLI::App& zk, const std::string& name, const std::string& what, std::function<Json()> look,
                 const Setup& setup = {}, Show show = {});
void add_looking_at_arm(CLI::App& zk, const std::string& name, const std::string& what,
                        std::function<Json(const zk::Arm&)> look, const Setup& setup = {}, Show show = {});

}  // namespace tool
