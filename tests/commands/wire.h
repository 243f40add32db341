// Texts and calls that the rows of many commands share.
#pragma once

#include <string>

#include "support/command_case.h"

namespace zk::test {

// A good acknowledgement.
inline std::string done(const std::string& command, const std::string& key = "set_state") {
    return R"({"command":")" + command + R"(",")" + key + R"(":true})";
}

// The report of a device, or of the arm, that it has arrived or will not.
inline std::string report(int device, bool arrived = true) {
    return R"({"state":"current_trajectory_state","trajectory_state":)" + std::string(arrived ? "true" : "false") +
           R"(,"device":)" + std::to_string(device) + R"(,"trajectory_connect":0})";
}

// Makes calls with these values of the forms it is given.
template <class... Values>
auto given(Values... values) {
    return [=](auto form) { return [=](ArmSocket s) { return form(s, values...); }; };
}

}  // namespace zk::test
