// Modbus: every command on the wire, its guards, its parsers, and the banks of a simulated arm.
#include "zk/replies/modbus.h"

#include <gtest/gtest.h>

#include "commands/wire.h"
#include "support/parser_case.h"
#include "support/simulated_arm.h"
#include "support/wire_protocol.h"
#include "zk/system.h"

namespace {

using namespace zk::test;

const uint8_t kBytes[] = {1, 2, 255, 0, 5};

// Reads of several bits and of one register, as calls that report the values read.
const auto kSeveral = [](auto form) {
    return
        [form](ArmSocket s, std::string& outputs) { return with_outputs<int32_t>(outputs, form, s, 1, 40000, 9, 255); };
};
const auto kOne = [](auto form) {
    return [form](ArmSocket s, std::string& outputs) { return with_outputs<int32_t>(outputs, form, s, 1, 40000, 255); };
};
std::string several(const std::string& command) {
    return R"({"command": ")" + command + R"(", "port": 1, "address": 40000, "num": 9, "device": 255})";
}
std::string one(const std::string& command) {
    return R"({"command": ")" + command + R"(", "port": 1, "address": 40000, "device": 255})";
}
std::string read_out(const std::string& literal, const std::string& data) {
    return R"({"state":")" + literal + R"(","read_state":true,"data":)" + data + "}";
}
// A write at address 7 of device 1.
std::string at_7(const std::string& command, const std::string& what) {
    return R"({"command": ")" + command + R"(", "port": 0, "address": 7, )" + what + R"(, "device": 1})";
}

const Reading kLax{{8, 8}, {{"/read_state", {0, 0}}}};  // the flag is optional

const char* const kTcp = R"({"command": "set_modbustcp_mode", "ip": "10.0.0.9", "port": 502, "timeout": 2000})";
const std::string kManyCoils = read_out("read_multiple_coils", "[165,1]");
const std::string kManyHolding = read_out("multiple_holding_registers", "[1,2,3]");
const std::string kManyInput = read_out("multiple_input_registers", "[255,-1]");

const std::vector<CommandCase> kModbusRows = {
    SETTER(Set_Modbus_Mode, Set_Modbus_Mode_Cmd,
           R"({"command": "set_modbus_mode", "port": 1, "baudrate": 115200, "timeout": 600})", "set_state", 1, 115200,
           600),
    SETTER(Close_Modbus_Mode, Stop_Modbus_Mode_Cmd, R"({"command": "close_modbus_mode", "port": 1})", "set_state", 1),
    WAITING_WITH(.adding(), Set_Modbustcp_Mode, Set_Modbustcp_Mode_Cmd, kTcp, "set_state", "10.0.0.9", 502, 2000),
    WAITING_WITH(.adding(), Close_Modbustcp_Mode, Close_Modbustcp_Mode_Cmd, "close_modbustcp_mode", "set_state"),

    QUERY_BY(kSeveral, Get_Read_Coils, Get_Read_Coils_Cmd, several("read_coils"), read_out("read_coils", "165"), "165",
             .reads(kLax)),
    QUERY_BY(kSeveral, Get_Read_Multiple_Coils, Get_Read_Multiple_Coils_Cmd, several("read_multiple_coils"), kManyCoils,
             "165 1", .reads(kLax)),
    QUERY_BY(kSeveral, Get_Read_Input_Status, Get_Read_Input_Status_Cmd, several("read_input_status"),
             R"({"state":"input_status","data":3})", "3", .reads(kLax)),
    QUERY_BY(kOne, Get_Read_Holding_Registers, Get_Read_Holding_Registers_Cmd, one("read_holding_registers"),
             read_out("holding_registers", "65535"), "65535", .reads(kLax)),
    QUERY_BY(kOne, Get_Read_Input_Registers, Get_Read_Input_Registers_Cmd, one("read_input_registers"),
             read_out("input_registers", "7"), "7", .reads(kLax)),
    QUERY_BY(kSeveral, Read_Multiple_Holding_Registers, Read_Multiple_Holding_Registers_Cmd,
             several("read_multiple_holding_registers"), kManyHolding, "1 2 3", .reads(kLax)),
    QUERY_BY(kSeveral, Read_Multiple_Input_Registers, Read_Multiple_intput_Registers_Cmd,
             several("read_multiple_input_registers"), kManyInput, "255 -1", .reads(kLax)),

    SETTER(Write_Single_Coil, Write_Single_Coil_Cmd, at_7("write_single_coil", R"("data": 65280)"), "write_state", 0, 7,
           65280, 1),
    SETTER(Write_Single_Register, Write_Single_Registers_Cmd, at_7("write_single_register", R"("data": 65535)"),
           "write_state", 0, 7, 65535, 1),
    SETTER(Write_Coils, Write_Coils_Cmd, at_7("write_coils", R"("num": 9, "data": [1, 2])"), "write_state", 0, 7, 9,
           kBytes, 1),
    queued("Of16_" CALL(Write_Coils_NonBlock, (s, 0, 7, 16, kBytes, 1)),
           at_7("write_coils", R"("num": 16, "data": [1, 2])")),
    queued("Of17_" CALL(Write_Coils_NonBlock, (s, 0, 7, 17, kBytes, 1)),
           at_7("write_coils", R"("num": 17, "data": [1, 2, 255])")),
    queued("Of8_" CALL(Write_Coils_NonBlock, (s, 0, 7, 8, kBytes + 2, 1)),
           at_7("write_coils", R"("num": 8, "data": 255)")),
    SETTER(Write_Registers, Write_Registers_Cmd, at_7("write_registers", R"("num": 2, "data": [1, 2, 255, 0])"),
           "write_state", 0, 7, 2, kBytes, 1),
};

ZK_WIRE_ROWS(Modbus, kModbusRows, set_shared(m_nmodbusrtu_OutTime, 60000));

ZK_WIRE_GUARDS(Modbus, "modbus.h", "Modbus", kModbusRows)

TEST(ModbusGuards, RegistersAreDroppedWithoutAnArray) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nmodbusrtu_OutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    controller.answer("read_multiple_holding_registers", kManyHolding);
    controller.answer("read_multiple_input_registers", kManyInput);
    EXPECT_EQ(Read_Multiple_Holding_Registers(arm, 0, 0, 2, 1, nullptr), 0);
    EXPECT_EQ(Read_Multiple_Input_Registers(arm, 0, 0, 2, 1, nullptr), 0);
}

// The limit of reads and writes follows the plain name alone, before its guard, whatever comes of it.
TEST(ModbusGuards, TheModeSetsTheLimitOfTheBus) {
    ZK_API_Init(65, nullptr);
    EXPECT_EQ(m_nmodbusrtu_OutTime, 1000);
    EXPECT_EQ(Set_Modbus_Mode_NonBlock(77, 0, 115200, 5), 0);
    EXPECT_EQ(Set_Modbus_Mode_Block(77, 0, 115200, 5), 5);
    EXPECT_EQ(m_nmodbusrtu_OutTime, 1000);
    set_shared(IsSendFile, 1);
    EXPECT_EQ(Set_Modbus_Mode(77, 0, 115200, 5, true), 18);
    EXPECT_EQ(m_nmodbusrtu_OutTime, 500);
    EXPECT_EQ(Set_Modbus_Mode(77, 0, 115200, 0x7FFFFFFF, false), 18);
    EXPECT_EQ(m_nmodbusrtu_OutTime, -100) << "the product wraps";
}

// As many as the header promises for the frame, in the longest digits; many more end the process.
TEST(ModbusGuards, DataThatDoesNotFitTheFrameEndsTheProcess) {
    ZK_API_Init(65, nullptr);
    const std::vector<uint8_t> bytes(400, 255);
    const int32_t longest = 65535;
    EXPECT_EQ(Write_Coils_NonBlock(77, 0, longest, 288, bytes.data(), 255), 0);
    EXPECT_EQ(Write_Registers_NonBlock(77, 0, longest, 18, bytes.data(), 255), 0);
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(Write_Coils_NonBlock(77, 0, 0, 0x7FFFFFFF, bytes.data(), 1), "write_coils.*frame holds 299");
    const std::vector<uint8_t> many(1000, 0);
    EXPECT_DEATH(Write_Registers_NonBlock(77, 0, 0, 0x7FFFFFFF, many.data(), 1), "write_registers.*frame holds 299");
}

// ---------------------------------------------------------------------------------------------------------- Parsers --

TEST(ModbusParsers, ReadWhatIsNotRefused) {
    expect_parsed(parsing(Parser_Get_read_coils),
                  {{R"({"data":-1.9,"read_state":true})", 0, "-1"}, {R"({"data":7,"read_state":false})", 1, ""}});
    for (const auto& parser : {Parser_Get_Read_Multiple_Coils, Parser_Read_Multiple_Holding_Registers}) {
        expect_parsed(parsing(parser), {{R"({"data":[1,"2",3,null],"read_state":true})", 0, "1 - 3; 4"},
                                        {R"({"data":[]})", 0, "-; 0"},
                                        {R"({"data":[1],"read_state":false})", 1, ""}});
    }
}

TEST(ModbusParsers, MoreValuesThanTheRecordHolds) {
    std::string text = R"({"data":[0)";
    for (int i = 1; i < 300; ++i) text += ',' + std::to_string(i);
    int32_t values[ZK_MODBUS_VALUES + 1] = {}, count = 0;
    EXPECT_EQ(Parser_Get_Read_Multiple_Coils((text + "]}").c_str(), values, &count), 0);
    EXPECT_EQ(count, ZK_MODBUS_VALUES);
    EXPECT_EQ(values[ZK_MODBUS_VALUES - 1], ZK_MODBUS_VALUES - 1);
    EXPECT_EQ(values[ZK_MODBUS_VALUES], 0);
}

// -------------------------------------------------------------------------------------------------- A simulated arm --

class Bus : public testing::Test {
 protected:
    void SetUp() override { ASSERT_EQ(Set_Modbus_Mode(arm_, 0, 115200, 600, true), 0); }

    // The value that is read, or the status when it fails.
    template <class... Ins>
    std::string read(Ins... ins) {
        std::string outputs;
        const int status = with_outputs<int32_t>(outputs, ins...);
        return status == 0 ? outputs : "status " + std::to_string(status);
    }

    const SimulatedArm arm_;
    const ArmSocket s_ = arm_;
};

TEST_F(Bus, StoresWhatIsWritten) {
    const uint8_t coils[] = {0x0D, 0x03}, registers[] = {0x12, 0x34, 0xFF, 0x00};
    EXPECT_EQ(Write_Coils(arm_, 0, 100, 10, coils, 1, true), 0);
    EXPECT_EQ(read(Get_Read_Multiple_Coils, s_, 0, 98, 12, 1), "52 12");
    EXPECT_EQ(Write_Single_Coil(arm_, 0, 100, 0, 1, true), 0);
    EXPECT_EQ(read(Get_Read_Coils, s_, 0, 100, 8, 1), "12");
    EXPECT_EQ(Write_Coils(arm_, 0, 100, 2, coils, 1, true), 0);
    EXPECT_EQ(read(Get_Read_Coils, s_, 0, 100, 8, 1), "13") << "the other six stay";

    EXPECT_EQ(Write_Registers(arm_, 0, 7, 2, registers, 1, true), 0);
    EXPECT_EQ(Write_Single_Register(arm_, 0, 9, 65535, 1, true), 0);
    EXPECT_EQ(read(Read_Multiple_Holding_Registers, s_, 0, 7, 3, 1), "18 52 255 0 255 255");
    EXPECT_EQ(read(Get_Read_Holding_Registers, s_, 0, 7, 1), "4660");

    EXPECT_EQ(read(Get_Read_Input_Status, s_, 0, 3, 4, 1), "5") << "on at odd addresses";
    EXPECT_EQ(read(Get_Read_Input_Registers, s_, 0, 300, 1), "300");
    EXPECT_EQ(read(Read_Multiple_Input_Registers, s_, 0, 300, 2, 1), "1 44 1 45");
}

TEST_F(Bus, KeepsPortsAndDevicesApart) {
    EXPECT_EQ(Set_Modbus_Mode(arm_, 1, 9600, 600, true), 0);
    EXPECT_EQ(Set_Modbustcp_Mode(arm_, "10.0.0.9", 502, 1000), 0);
    const std::pair<int, int> places[] = {{0, 1}, {0, 2}, {1, 1}, {2, 2}};
    for (const auto& [port, device] : places)
        EXPECT_EQ(Write_Single_Register(arm_, port, 5, static_cast<uint16_t>(10 * port + device), device, true), 0);
    for (const auto& [port, device] : places)
        EXPECT_EQ(read(Get_Read_Holding_Registers, s_, port, 5, device), std::to_string(10 * port + device));
    int32_t mode = 0, baudrate = 0, timeout = 0;
    EXPECT_EQ(Get_Tool_RS485_Mode(arm_, &mode, &baudrate, &timeout), 0);
    EXPECT_EQ(text_of({mode, baudrate, timeout}), "1 9600 600");
}

TEST_F(Bus, RefusesWithoutADevice) {
    for (const auto& [port, address, device] :
         {std::array{0, 0, 3}, {0, 0, 0}, {0, 65536, 1}, {0, -1, 1}, {1, 0, 1}, {2, 0, 1}, {9, 0, 1}}) {
        SCOPED_TRACE(text_of({port, address, device}));
        EXPECT_EQ(read(Get_Read_Holding_Registers, s_, port, address, device), "status 1");
        EXPECT_EQ(Write_Single_Coil(arm_, port, address, 1, device, true), 1);
    }
    EXPECT_EQ(read(Get_Read_Coils, s_, 0, 0, 9, 1), "status 1") << "one byte holds eight";
    EXPECT_EQ(read(Get_Read_Multiple_Coils, s_, 0, 65530, 7, 1), "status 1") << "beyond the last address";
    EXPECT_EQ(Set_Modbus_Mode_Block(arm_, 2, 115200, 10), 1) << "no serial port";
    EXPECT_EQ(Close_Modbus_Mode(arm_, 0, true), 0);
    EXPECT_EQ(read(Get_Read_Coils, s_, 0, 0, 1, 1), "status 1") << "closed";
}

}  // namespace
