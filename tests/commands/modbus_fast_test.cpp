// The limits of the Modbus commands.
#include "zk/modbus.h"

#include <gtest/gtest.h>

#include "commands/limits.h"
#include "support/arm.h"

namespace {

using namespace zk::test;

constexpr int32_t kEndless = 2000000000;

class ModbusLimits : public ConnectedArm {
 protected:
    template <class Form, class... Arguments>
    void expect_limit(int32_t limit, Form form, Arguments... arguments) {
        EXPECT_GE(time_to_give_up(50, [&] { return form(arm_, arguments...); }), limit);
    }

    int32_t data_[ZK_MODBUS_VALUES];
    const uint8_t bytes_[2] = {1, 2};
};

TEST_F(ModbusLimits, OfTheModes) {
    set_shared(m_nmodbusrtu_OutTime, kEndless);
    expect_limit(5000, Set_Modbus_Mode_Block, 0, 115200, 10);
    expect_limit(3000, Close_Modbus_Mode_Block, 0);
    expect_limit(3700, Set_Modbustcp_Mode_Block, "10.0.0.9", 502, 700);
    expect_limit(3000, Close_Modbustcp_Mode_Block);
    set_shared(m_nOutTime, kEndless);
    expect_limit(0, Set_Modbustcp_Mode_Block, "10.0.0.9", 502, -kEndless);
}

TEST_F(ModbusLimits, OfReadsAndWrites) {
    set_shared(m_nOutTime, kEndless);
    for (const int32_t limit : {1500, 0}) {  // a limit of 0 is over at once
        set_shared(m_nmodbusrtu_OutTime, int32_t{limit});
        expect_limit(limit, Get_Read_Coils_Block, 0, 0, 1, 1, data_);
        expect_limit(limit, Get_Read_Multiple_Coils_Block, 0, 0, 9, 1, data_);
        expect_limit(limit, Get_Read_Input_Status_Block, 0, 0, 1, 1, data_);
        expect_limit(limit, Get_Read_Holding_Registers_Block, 0, 0, 1, data_);
        expect_limit(limit, Get_Read_Input_Registers_Block, 0, 0, 1, data_);
        expect_limit(limit, Read_Multiple_Holding_Registers_Block, 0, 0, 2, 1, data_);
        expect_limit(limit, Read_Multiple_Input_Registers_Block, 0, 0, 2, 1, data_);
        expect_limit(limit, Write_Single_Coil_Block, 0, 0, 1, 1);
        expect_limit(limit, Write_Single_Register_Block, 0, 0, 1, 1);
        expect_limit(limit, Write_Coils_Block, 0, 0, 9, bytes_, 1);
        expect_limit(limit, Write_Registers_Block, 0, 0, 1, bytes_, 1);
    }
}

}  // namespace
