// The long limits of force control.
#include "zk/force_control.h"

#include <gtest/gtest.h>

#include "support/arm.h"
#include "support/scaled_time.h"

namespace {

using namespace zk::test;

TEST(ForceControl, CalibrationsAndTheStopHaveLimitsOfTheirOwn) {
    struct Row {
        const char* name;
        int (*call)(ArmSocket);
        int32_t behind_the_usual;
    };
    static const float joint[7] = {};
    constexpr Row rows[] = {
        {"Set_Force_Sensor", Set_Force_Sensor, 30000},
        {"Auto_Set_Fz", Auto_Set_Fz, 30000},
        {"Manual_Set_Force", [](ArmSocket s) { return Manual_Set_Force(s, 4, joint); }, 30000},
        {"Manual_Set_Fz", [](ArmSocket s) { return Manual_Set_Fz(s, joint, joint); }, 2000},
        {"Stop_Force_Postion", [](ArmSocket s) { return Stop_Force_Postion(s, true); }, 2000},
    };
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_shared(m_nOutTime, 100);
    set_time_factor(200);
    for (const Row& row : rows) {
        const int32_t start = Get_Program_Runtime();
        EXPECT_EQ(row.call(arm), 7) << row.name;
        EXPECT_GE(Get_Program_Runtime() - start, 100 + row.behind_the_usual) << row.name;
    }
}

}  // namespace
