#include "support/simulated_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "support/simulated_arm.h"
#include "zk/status.h"

namespace zk::test {

void expect_simulated(const std::vector<CommandCase>& rows, const std::string& model, const std::string& omitted) {
    const int arm_mode = model.rfind("ZK75", 0) == 0 ? 75 : 65;
    std::vector<std::string> options{"--quiet", "--model", model};
    std::vector<CommandCase> called;
    for (const CommandCase& row : rows) {
        const bool replied = !row.reply.empty() && row.status != ZK_TIMEOUT && row.status != ZK_LIST_FULL;
        const bool fits = row.arm_mode == 65 || row.arm_mode == arm_mode;
        if (replied && fits && !std::regex_match(row.name, std::regex(omitted))) called.push_back(row);
    }
    std::string outputs;
    const SimulatedArm arm(options, arm_mode);
    for (const CommandCase& row : called) {
        const int status = row.call(arm, outputs);
        EXPECT_TRUE(status == ZK_OK || status == ZK_REFUSED) << row.name << " returned " << status;
    }
    for (const CommandCase& row : called) {
        if (row.refusable) options.insert(options.end(), {"--refuse-on", command_name(row.wire)});
    }
    const SimulatedArm unwilling(options, arm_mode);
    for (const CommandCase& row : called) {
        if (row.refusable) {
            EXPECT_EQ(row.call(unwilling, outputs), ZK_REFUSED) << row.name;
        }
    }
    const auto of_seven_joints = [](const CommandCase& row) { return row.arm_mode == 75; };
    if (model == "ZK65-6F" && omitted.empty() && std::any_of(rows.begin(), rows.end(), of_seven_joints)) {
        expect_simulated(rows, "ZK75-6F", omitted);
    }
}

}  // namespace zk::test
