// Connections by ZK_Connect, with time for a loaded machine.
#pragma once

#include <gtest/gtest.h>

#include "zk/control.h"

namespace zk::test {

inline int connect_to(int port, ArmSocket& arm, int arm_mode = 0, const char* host = "127.0.0.1") {
    ZK_ConnectOptions options{};
    options.timeout_ms = 60000;
    options.arm_mode = arm_mode;
    arm = -1;
    const int status = ZK_Connect(host, port, &options, &arm);
    EXPECT_EQ(arm > 0, status == ZK_OK);
    return status;
}

inline ArmSocket connected(int port) {
    ArmSocket arm;
    EXPECT_EQ(connect_to(port, arm), 0) << ZK_Failure();
    return arm;
}

}  // namespace zk::test
