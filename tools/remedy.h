// What to do about a failure, for who runs this program: the library's own advice names functions.
#pragma once

#include <string>

#include "zk/arm.hpp"

namespace tool {

// Of a call. "" when there is nothing to do.
std::string remedy_of(const zk::Error& error);

// Of a status or of the result of a set-point; "" for one that is not known.
std::string remedy_of(int status);

// Of an error word that arm or system report.
std::string remedy_of_error_word();

// Why the arm that the user calls by this name or address does not answer, and what to do: the address stands there
// once.
std::string sentence_of_no_arm(const std::string& arm, const std::string& host, const zk::Error& error);

}  // namespace tool
