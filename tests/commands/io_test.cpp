// Inputs, outputs and supply voltages: every command on the wire, its guards, and its parsers.
#include "zk/io.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/simulated_arm.h"
#include "support/wire_protocol.h"
#include "zk/dispatch.h"

namespace {

using namespace zk::test;

// A query of the input or output 3.
template <class... Outs>
Call asking_3(int (*query)(ArmSocket, uint8_t, Outs*...)) {
    return [query](ArmSocket arm, std::string& told) {
        return with_outputs<Outs...>(told, query, arm, static_cast<uint8_t>(3));
    };
}
#define ASK_3(command) #command, asking_3(command)

const char* const kDone = R"({"command":"set_DO_state","set_state":true})";
const char* const kInput = R"({"state":"IO_input","DI":[1,0,1,-1],"AI":[2500,0,1,10000]})";
const char* const kOutput = R"({"state":"IO_output","DO":[0,1,0,1],"AO":[1,2500,0,10000]})";
const char* const kTool = R"({"state":"tool_IO_state","IO_Mode":[0,1],"IO_State":[1,1234]})";

const std::vector<CommandCase> kRows = {
    acknowledged(CALL(Set_DO_State, (s, 3, 200, true)), Set_DO_State_Cmd,
                 R"({"command": "set_DO_state", "IO_Num": 3, "state": 1})", kDone),
    acknowledged(CALL(Set_DO_State_Block, (s, 255, 0)), Set_DO_State_Cmd,
                 R"({"command": "set_DO_state", "IO_Num": 255, "state": 0})", kDone),
    queued(CALL(Set_DO_State_NonBlock, (s, 1, 1)), R"({"command": "set_DO_state", "IO_Num": 1, "state": 1})"),
    // A single-precision product, truncated.
    acknowledged(CALL(Set_AO_State, (s, 2, 0.251f, true)), Set_AO_State_Cmd,
                 R"({"command": "set_AO_state", "IO_Num": 2, "voltage": 250})",
                 R"({"command":"set_AO_state","state":true})"),
    acknowledged(CALL(Set_AO_State_Block, (s, 2, -1.5f)), Set_AO_State_Cmd,
                 R"({"command": "set_AO_state", "IO_Num": 2, "voltage": -1500})",
                 R"({"command":"set_AO_state","state":true})"),
    queued(CALL(Set_AO_State_NonBlock, (s, 0, 10)), R"({"command": "set_AO_state", "IO_Num": 0, "voltage": 10000})"),
    acknowledged(CALL(Set_IO_State, (s, 0, 4, 7, true)), Set_DO_State_Cmd,
                 R"({"command": "set_DO_state", "IO_Num": 4, "state": 1})", kDone),
    queued("Analogue_" CALL(Set_IO_State, (s, 1, 4, 7, false)),
           R"({"command": "set_AO_state", "IO_Num": 4, "voltage": 7000})"),

    answered(ASK_3(Get_DO_State), Get_DO_State_Cmd, R"({"command": "get_DO_state", "IO_Num": 3})",
             R"({"state":"DO_state","IO_state":257})", "1"),
    answered(ASK_3(Get_DO_State_Block), Get_DO_State_Cmd, R"({"command": "get_DO_state", "IO_Num": 3})",
             R"({"state":"DO_state","IO_state":1})", "1"),
    answered(ASK_3(Get_DI_State), Get_DI_State_Cmd, R"({"command": "get_DI_state", "IO_Num": 3})",
             R"({"state":"DI_state","IO_state":1})", "0"),
    answered(ASK_3(Get_DI_State_Block), Get_DI_State_Cmd, R"({"command": "get_DI_state", "IO_Num": 3})",
             R"({"state":"DI_state","IO_state":1})", "0"),
    answered(ASK_3(Get_AO_State), Get_AO_State_Cmd, R"({"command": "get_AO_state", "IO_Num": 3})",
             R"({"state":"AO_state","voltage":2500})", "2"),
    answered(ASK_3(Get_AO_State_Block), Get_AO_State_Cmd, R"({"command": "get_AO_state", "IO_Num": 3})",
             R"({"state":"AO_state","voltage":9999})", "9"),
    answered(ASK_3(Get_AI_State), Get_AI_State_Cmd, R"({"command": "get_AI_state", "IO_Num": 3})",
             R"({"state":"AI_state","voltage":2500})", "2"),
    answered(ASK_3(Get_AI_State_Blcok), Get_AI_State_Cmd, R"({"command": "get_AI_state", "IO_Num": 3})",
             R"({"state":"AI_state","voltage":256000})", "0"),

    answered(ASK(Get_IO_Input), Get_IO_State_Cmd, R"({"command": "get_IO_input"})", kInput, "1 0 1 -1; 2.5 0 0.001 10"),
    answered(ASK(Get_IO_Input_Block), Get_IO_State_Cmd, R"({"command": "get_IO_input"})", kInput,
             "1 0 1 -1; 2.5 0 0.001 10"),
    answered(ASK(Get_IO_Output), Get_IO_Output_State_Cmd, R"({"command": "get_IO_output"})", kOutput,
             "0 1 0 1; 0.001 2.5 0 10"),
    answered(ASK(Get_IO_Output_Block), Get_IO_Output_State_Cmd, R"({"command": "get_IO_output"})", kOutput,
             "0 1 0 1; 0.001 2.5 0 10"),

    answered(ASK_3(Get_IO_State), Get_DIO_State_Cmd, R"({"command": "get_IO_state", "IO_Num": 3})",
             R"({"state":"IO_state","IO_state":1,"IO_Mode":3})", "1; 3"),
    answered(ASK_3(Get_IO_State_Block), Get_DIO_State_Cmd, R"({"command": "get_IO_state", "IO_Num": 3})",
             R"({"state":"IO_state","IO_state":1})", "1; 0"),
    acknowledged(CALL(Set_IO_Mode, (s, 3, 2)), Set_IO_Mode_Cmd,
                 R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 2})",
                 R"({"command":"set_IO_mode","set_state":true})"),
    acknowledged(CALL(Set_IO_Mode_Block, (s, 3, 255)), Set_IO_Mode_Cmd,
                 R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 255})",
                 R"({"command":"set_IO_mode","set_state":true})"),

    acknowledged(CALL(Set_Voltage, (s, 3, 2)), Set_Voltage_Cmd,
                 R"({"command": "set_voltage", "voltage_type": 3, "start_enable": true})",
                 R"({"command":"set_voltage","state":true})"),
    acknowledged(CALL(Set_Voltage_Block, (s, 0, 0)), Set_Voltage_Cmd,
                 R"({"command": "set_voltage", "voltage_type": 0, "start_enable": false})",
                 R"({"command":"set_voltage","state":true})"),
    answered(ASK(Get_Voltage), Get_Voltage_Cmd, R"({"command": "get_voltage"})",
             R"({"state":"voltage_state","voltage_type":3})", "3"),
    answered(ASK(Get_Voltage_Block), Get_Voltage_Cmd, R"({"command": "get_voltage"})",
             R"({"state":"voltage_state","voltage_type":3})", "3"),

    acknowledged(CALL(Set_Tool_DO_State, (s, 1, 9, true)), Set_Tool_DO_State_Cmd,
                 R"({"command": "set_tool_DO_state", "IO_Num": 1, "state": 1})",
                 R"({"command":"set_tool_DO_state","set_state":true})"),
    acknowledged(CALL(Set_Tool_DO_State_Block, (s, 2, 0)), Set_Tool_DO_State_Cmd,
                 R"({"command": "set_tool_DO_state", "IO_Num": 2, "state": 0})",
                 R"({"command":"set_tool_DO_state","set_state":true})"),
    queued(CALL(Set_Tool_DO_State_NonBlock, (s, 2, 1)), R"({"command": "set_tool_DO_state", "IO_Num": 2, "state": 1})"),
    acknowledged(CALL(Set_Tool_IO_Mode, (s, 1, 1, true)), Set_Tool_IO_Mode_Cmd,
                 R"({"command": "set_tool_IO_mode", "IO_Num": 1, "state": 1})",
                 R"({"command":"set_tool_IO_mode","set_state":true})"),
    acknowledged(CALL(Set_Tool_IO_Mode_Block, (s, 2, 0)), Set_Tool_IO_Mode_Cmd,
                 R"({"command": "set_tool_IO_mode", "IO_Num": 2, "state": 0})",
                 R"({"command":"set_tool_IO_mode","set_state":true})"),
    queued(CALL(Set_Tool_IO_Mode_NonBlock, (s, 2, 2)), R"({"command": "set_tool_IO_mode", "IO_Num": 2, "state": 1})"),
    answered(ASK(Get_Tool_IO_State), Get_Tool_IO_State_Cmd, R"({"command": "get_tool_IO_state"})", kTool,
             "0 1; 1 1234"),
    answered(ASK(Get_Tool_IO_State_Block), Get_Tool_IO_State_Cmd, R"({"command": "get_tool_IO_state"})", kTool,
             "0 1; 1 1234"),
    acknowledged(CALL(Set_Tool_Voltage, (s, 3, true)), Set_Tool_Voltage_Cmd,
                 R"({"command": "set_tool_voltage", "voltage_type": 3})",
                 R"({"command":"set_tool_voltage","state":true})"),
    acknowledged(CALL(Set_Tool_Voltage_Block, (s, 255)), Set_Tool_Voltage_Cmd,
                 R"({"command": "set_tool_voltage", "voltage_type": 255})",
                 R"({"command":"set_tool_voltage","state":true})"),
    queued(CALL(Set_Tool_Voltage_NonBlock, (s, 0)), R"({"command": "set_tool_voltage", "voltage_type": 0})"),
    answered(ASK(Get_Tool_Voltage), Get_Tool_Voltage_Cmd, R"({"command": "get_tool_voltage"})",
             R"({"state":"tool_voltage","voltage_type":2})", "2"),
    answered(ASK(Get_Tool_Voltage_Block), Get_Tool_Voltage_Cmd, R"({"command": "get_tool_voltage"})",
             R"({"state":"tool_voltage","voltage_type":2})", "2"),

    // Other names, whose mailboxes nothing feeds. Only 1 counts as on.
    unheard(CALL(Set_IO_Mode_NC_E, (s, 3, 1)), R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 1})",
            R"({"command":"set_IO_mode","set_state":true})"),
    unheard(CALL(Set_IO_Mode_Block_NC_E, (s, 3, 2)), R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 0})",
            R"({"command":"set_IO_mode","set_state":true})"),
    unheard(CALL(Set_IO_Mode_NC_Block_E, (s, 3, 0)), R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 0})",
            R"({"command":"set_IO_mode","set_state":true})"),
    unheard(CALL(Set_IO_State_NC_E, (s, 3, 1)), R"({"command": "set_DO_state", "IO_Num": 3, "state": 1})", kDone),
    unheard(CALL(Set_IO_State_Block_NC_E, (s, 3, 2)), R"({"command": "set_DO_state", "IO_Num": 3, "state": 0})", kDone),
    unheard(CALL(Set_IO_State_NC_Block_E, (s, 3, 1)), R"({"command": "set_DO_state", "IO_Num": 3, "state": 1})", kDone),
    unheard(ASK_3(Get_IO_State_NC_E), R"({"command": "get_IO_state", "IO_Num": 3})",
            R"({"state":"IO_state","IO_state":1,"IO_Mode":3})"),
    unheard(ASK_3(Get_IO_State_Block_NC_E), R"({"command": "get_IO_state", "IO_Num": 3})",
            R"({"state":"IO_state","IO_state":1,"IO_Mode":3})"),
    unheard(ASK_3(Get_IO_State_NC_Block_E), R"({"command": "get_IO_state", "IO_Num": 3})",
            R"({"state":"IO_state","IO_state":1,"IO_Mode":3})"),
    unheard(ASK(Get_Controller_Voltage_NC_E), R"({"command": "get_voltage"})",
            R"({"state":"voltage_state","voltage_type":3})"),
    unheard(ASK(Get_Controller_Voltage_Block_NC_E), R"({"command": "get_voltage"})",
            R"({"state":"voltage_state","voltage_type":3})"),
    unheard(ASK(Get_Controller_Voltage_NC_Block_E), R"({"command": "get_voltage"})",
            R"({"state":"voltage_state","voltage_type":3})"),
    unheard(CALL(Set_Controller_Voltage_NC_E, (s, 3, 2)),
            R"({"command": "set_voltage", "voltage_type": 3, "start_enable": true})",
            R"({"command":"set_voltage","state":true})"),
    unheard(CALL(Set_Controller_Voltage_Block_NC_E, (s, 3, 0)),
            R"({"command": "set_voltage", "voltage_type": 3, "start_enable": false})",
            R"({"command":"set_voltage","state":true})"),
    unheard(CALL(Set_Controller_Voltage_NC_Block_E, (s, 3, 1)),
            R"({"command": "set_voltage", "voltage_type": 3, "start_enable": true})",
            R"({"command":"set_voltage","state":true})"),
};

class Io : public testing::TestWithParam<CommandCase> {};
TEST_P(Io, OnTheWire) { run(GetParam()); }
INSTANTIATE_TEST_SUITE_P(, Io, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

TEST(IoGuards, EveryCommandHasARow) { EXPECT_EQ(commands_without_row("io.h", kRows), ""); }

TEST(IoGuards, ThePageTellsTheWire) { expect_documented("Inputs and outputs", kRows); }

// They go on during a file transfer, as far as the queue that it holds.
bool is_thin(const CommandCase& row) {
    for (const char* name :
         {"Set_DO_State", "Set_AO_State", "Get_DO_State", "Get_DI_State", "Get_AO_State", "Get_AI_State"}) {
        if (row.name == name) return true;
    }
    return false;
}

TEST(IoGuards, PlainNamesDoNothingDuringAFileTransfer) {
    std::vector<CommandCase> rows = kRows;
    std::erase_if(rows, is_thin);
    EXPECT_EQ(rows.size(), kRows.size() - 6);
    expect_nothing_during_a_file_transfer(rows);
}

TEST(IoGuards, SingleInputsAndOutputsAreQueuedDuringAFileTransfer) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 1);
    const ArmSocket arm = connect_arm(controller);
    set_shared(IsSendFile, 1);
    std::string told;
    for (const CommandCase& row : kRows) {
        if (!is_thin(row)) continue;
        EXPECT_EQ(row.call(arm, told), 7) << row.name;
    }
    set_shared(IsSendFile, 0);
    for (const CommandCase& row : kRows) {
        if (!is_thin(row)) continue;
        EXPECT_EQ(controller.next_request(), formatted(row.wire)) << row.name;
    }
}

TEST(IoGuards, NullPointersAreToldAndNothingIsSent) {
    static int32_t number[4];
    static float value[4];
    static uint8_t byte;
    expect_nothing_sent({{CALL(Get_IO_Input, (s, nullptr, value))},
                         {CALL(Get_IO_Input, (s, number, nullptr))},
                         {CALL(Get_IO_Output, (s, nullptr, value))},
                         {CALL(Get_IO_State, (s, 1, nullptr, &byte))},
                         {CALL(Get_IO_State, (s, 1, &byte, nullptr))},
                         {CALL(Get_Voltage, (s, nullptr))},
                         {CALL(Get_Tool_IO_State, (s, value, nullptr))},
                         {CALL(Get_Tool_Voltage, (s, nullptr))},
                         {CALL(Get_IO_State_NC_E, (s, 1, nullptr, number))},
                         {CALL(Get_Controller_Voltage_NC_E, (s, nullptr))}});
}

TEST(IoGuards, AnotherTypeThanDigitalAndAnalogueSendsNothing) {
    expect_nothing_sent({{CALL(Set_IO_State, (s, 2, 1, 1, true))}, {CALL(Set_IO_State, (s, -1, 1, 1, false))}}, 11);
}

TEST(Inputs, LandWhereTheOutputsAreRead) {
    Init_Socket_Joint(65, 1000);
    char input[] = R"({"state":"DI_state","IO_state":1})", broken[] = R"({"state":"DI_state"})";
    handle_Recv_Json(0, input);
    EXPECT_EQ(Get_DO_State_Cmd[0].value, 1);
    EXPECT_EQ(Get_DO_State_Cmd[0].count, 0);
    EXPECT_EQ(Get_DI_State_Cmd[0].value, 0);
    handle_Recv_Json(0, broken);
    EXPECT_EQ(Get_DI_State_Cmd[0].count, 2);
    EXPECT_EQ(Get_DI_State_Cmd[0].result, 9);
    EXPECT_EQ(Get_DO_State_Cmd[0].result, 0);
}

// ------------------------------------------------------------------------------------------------------- Parsers --

TEST(IoParsers, Numbers) {
    expect_number({parsing(Parser_Get_DO_State), "IO_state", "1234"});
    expect_number({parsing(Parser_Get_DI_State), "IO_state", "1234"});
    expect_number({parsing(Parser_Get_AO_State), "voltage", "1.234"});
    expect_number({parsing(Parser_Get_AI_State), "voltage", "1.234"});
    expect_number({parsing(Parser_Get_Voltage), "voltage_type", "1234"});
    expect_number({parsing(Parser_Get_Tool_Voltage), "voltage_type", "1234"});
}

TEST(IoParsers, States) {
    for (const Parse& parse : {parsing(Parser_Get_IO_State), parsing(Parser_Get_IO_State_NC_E)}) {
        expect_parsed(parse, {{R"({"IO_state":1,"IO_Mode":3})", 0, "1; 3"},
                              {R"({"IO_state":1,"IO_Mode":"3"})", 0, "1; -"},
                              {R"({"IO_Mode":3})", 9, ""},
                              {R"({"IO_state":true,"IO_Mode":3})", 11, ""},
                              {"", 9, ""}});
    }
}

// Shorter arrays fill what they hold, longer ones no more than there is room for.
TEST(IoParsers, Banks) {
    for (const auto& [parse, digital, analogue] :
         {std::tuple{parsing(Parser_IO_Input), "DI", "AI"}, {parsing(Parser_IO_Output), "DO", "AO"}}) {
        const auto text = [&, digital = digital, analogue = analogue](const char* first, const char* second) {
            return std::string(R"({")") + digital + "\":" + first + ",\"" + analogue + "\":" + second + "}";
        };
        expect_parsed(parse, {{text("[1,2,3,4,5]", "[1,2,3,4,5]"), 0, "1 2 3 4; 0.001 0.002 0.003 0.004"},
                              {text("[1]", "[]"), 0, "1; -"},
                              {text("1", "[]"), 11, ""},
                              {text("[1]", "1"), 11, "1; -"},
                              {std::string(R"({")") + digital + R"(":[1]})", 9, "1; -"},
                              {std::string(R"({")") + analogue + R"(":[1]})", 9, ""}});
    }
}

TEST(IoParsers, Tool) {
    expect_parsed(parsing(Parser_Get_Tool_IO_State), {{R"({"IO_Mode":[1,0,1],"IO_State":[1]})", 0, "1 0; 1"},
                                                      {R"({"IO_Mode":[1,0]})", 9, "1 0; -"},
                                                      {R"({"IO_State":[1,0]})", 9, ""},
                                                      {R"({"IO_Mode":1,"IO_State":[1,0]})", 11, ""},
                                                      {R"({"IO_Mode":[1],"IO_State":{}})", 11, "1; -"}});
}

// ------------------------------------------------------------------------------------------------- A simulated arm --

TEST(IoOfASimulatedArm, OutputsAreReadBackAndAtTheInputsTheyAreWiredTo) {
    SimulatedArm arm;
    EXPECT_EQ(Set_DO_State(arm, 2, 1, true), 0);
    EXPECT_EQ(Set_AO_State(arm, 4, 2.5f, true), 0);
    EXPECT_EQ(Set_AO_State(arm, 4, 10.5f, true), 1) << "more than ten volts";
    EXPECT_EQ(Set_DO_State(arm, 5, 1, true), 1) << "there are four";
    int32_t digital[4];
    float analogue[4];
    EXPECT_EQ(Get_IO_Output(arm, digital, analogue), 0);
    EXPECT_EQ(text_of(digital) + ", " + text_of(analogue), "0 1 0 0, 0 0 0 2.5");
    EXPECT_EQ(Get_IO_Input(arm, digital, analogue), 0);
    EXPECT_EQ(text_of(digital) + ", " + text_of(analogue), "0 1 0 0, 0 0 0 2.5");

    uint8_t state = 9, mode = 9;
    EXPECT_EQ(Set_IO_Mode(arm, 2, 0), 0);
    EXPECT_EQ(Set_DO_State(arm, 2, 0, true), 1) << "an input now";
    EXPECT_EQ(Get_IO_State(arm, 2, &state, &mode), 0);
    EXPECT_EQ(text_of({state, mode}), "1 0");
}

TEST(IoOfASimulatedArm, TheToolHasTwoPortsAndASupply) {
    SimulatedArm arm;
    EXPECT_EQ(Set_Tool_IO_Mode(arm, 1, 0, true), 0);
    EXPECT_EQ(Set_Tool_DO_State(arm, 1, 1, true), 1) << "an input";
    EXPECT_EQ(Set_Tool_DO_State(arm, 2, 1, true), 0);
    float mode[2], state[2];
    EXPECT_EQ(Get_Tool_IO_State(arm, mode, state), 0);
    EXPECT_EQ(text_of(mode) + ", " + text_of(state), "0 1, 0 1");
    uint8_t type = 9;
    EXPECT_EQ(Set_Tool_Voltage(arm, 3, true), 0);
    EXPECT_EQ(Get_Tool_Voltage(arm, &type), 0);
    EXPECT_EQ(type, 3);
    EXPECT_EQ(Set_Voltage(arm, 2, 1), 0);
    EXPECT_EQ(Get_Voltage(arm, &type), 0);
    EXPECT_EQ(type, 2);
}

}  // namespace
