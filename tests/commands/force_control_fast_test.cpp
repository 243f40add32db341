// The long limits of force control.
#include "zk/force_control.h"

#include <gtest/gtest.h>

#include "commands/limits.h"
#include "support/arm.h"

namespace {

using namespace zk::test;

TEST(ForceControl, CalibrationsAndTheStopHaveTheirOwnLimits) {
    static const float joint[7] = {};
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_shared(m_nOutTime, 100);
    const auto limit = [](auto call) { return time_to_give_up(200, call); };
    EXPECT_GE(limit([=] { return Set_Force_Sensor(arm); }), 30100);
    EXPECT_GE(limit([=] { return Auto_Set_Fz(arm); }), 30100);
    EXPECT_GE(limit([=] { return Manual_Set_Force(arm, 4, joint); }), 30100);
    EXPECT_GE(limit([=] { return Manual_Set_Fz(arm, joint, joint); }), 2100);
    EXPECT_GE(limit([=] { return Stop_Force_Postion(arm, true); }), 2100);
}

}  // namespace
