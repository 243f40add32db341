#include "support/command_case.h"

#include <gtest/gtest.h>

namespace zk::test {

void run(const CommandCase& row) {
    ScriptedController controller;
    ZK_API_Init(row.arm_mode, nullptr);
    const ArmSocket arm = connect_arm(controller, row.arm_mode);
    if (!row.reply.empty()) controller.answer(command_name(row.wire), row.reply);
    EXPECT_EQ(row.call(arm), row.status);
    EXPECT_EQ(controller.next_request(), row.wire);
}

}  // namespace zk::test
