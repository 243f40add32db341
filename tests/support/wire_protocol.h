// The tables of docs/wire-protocol.md, checked against the commands' own.
#pragma once

#include <string>
#include <vector>

#include "support/command_case.h"

namespace zk::test {

// The section of this title has exactly the commands of the rows, with the keys of their requests in order, and one of
// the words and the keys of their replies.
void expect_documented(const std::string& section, const std::vector<CommandCase>& rows);

}  // namespace zk::test
