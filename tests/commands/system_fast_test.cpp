// The pause of a second after Set_High_Speed_Eth.
#include "zk/system.h"

#include <gtest/gtest.h>

#include "support/arm.h"
#include "support/scaled_time.h"

namespace {

using namespace zk::test;

TEST(HighSpeedEthernet, WaitsASecondAfterTheBlockingForm) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    m_nOutTime = 2000000000;
    const ArmSocket arm = connect_arm(controller);
    set_time_factor(20);
    const auto taken = [&](int expected_status) {
        const int32_t start = Get_Program_Runtime();
        EXPECT_EQ(Set_High_Speed_Eth(arm, 1, true), expected_status);
        return Get_Program_Runtime() - start;
    };
    controller.answer("set_high_speed_eth", R"({"command":"set_high_speed_eth","set_state":true})");
    EXPECT_GE(taken(0), 1000);
    controller.answer("set_high_speed_eth", R"({"command":"set_high_speed_eth","set_state":false})");
    EXPECT_GE(taken(1), 1000);
    EXPECT_EQ(controller.wait_for_request("set_high_speed_eth"),
              "{\n\t\"command\":\t\"set_high_speed_eth\",\n\t\"mode\":\t1\n}");
}

}  // namespace
