// What the messages between clients and a controller are, by their names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "command.h"

namespace tool {

// A request of a client, with its line end.
struct Request {
    std::string text;
    Json body;  // discarded when the text is no JSON
    std::string command;

    static Request of(std::string text);
    // Changes nothing, and is answered.
    bool is_query() const;
    // Brings the arm to rest, or takes its power: anyone may.
    bool is_stop() const;
};

// "command" or "state" of a message; empty when it has none.
std::string name_of_message(const std::string& text);

// Whether a controller has the command; zk_simulator --commands lists them.
bool is_command(const std::string& name);

// Whether a message of this name answers the command.
bool answers(const std::string& name, const std::string& command);

// Reports of the end of a motion or a program: no request asks for them.
bool is_report(const std::string& name);

// The messages, without line ends, by which a controller refuses the command: none for one that it never answers.
std::vector<std::string> refusal_of(const std::string& command);

}  // namespace tool
