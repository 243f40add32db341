// The rows of a family, called on a simulated arm instead of a scripted one.
#pragma once

#include <string>
#include <vector>

#include "support/command_case.h"

namespace zk::test {

// Calls every row that gets a reply, in order, on one simulated arm. Each returns 0 or 1: then the reply has the
// literal, the keys and the types that the library expects. Each acknowledgement returns 1 on an arm that refuses
// it. Rows whose name matches `omitted` are not called. Rows of arm mode 75 are called on an arm of seven joints.
void expect_simulated(const std::vector<CommandCase>& rows, const std::string& model = "ZK65-6F",
                      const std::string& omitted = "");

}  // namespace zk::test
