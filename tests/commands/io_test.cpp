// Inputs, outputs and supply voltages: every command on the wire, its guards, and its parsers.
#include "zk/replies/io.h"

#include <gtest/gtest.h>

#include "commands/wire.h"
#include "support/parser_case.h"
#include "support/pattern.h"
#include "support/wire_protocol.h"
#include "zk/mailboxes.h"

namespace {

using namespace zk::test;

// A query of the input or output 3.
template <class... Outs>
Call asking_3(int (*query)(ArmSocket, uint8_t, Outs*...)) {
    return [query](ArmSocket arm, std::string& outputs) {
        return with_outputs<Outs...>(outputs, query, arm, static_cast<uint8_t>(3));
    };
}

std::string of_3(const std::string& command) { return R"({"command": ")" + command + R"(", "IO_Num": 3})"; }

// The three forms whose mailbox nothing feeds, as calls that `call` makes of them.
#define UNFED(command, call, wire, reply)                                                                         \
    no_reply(#command "_NC_E", Call(call(command##_NC_E), nulls(#command "_NC_E", command##_NC_E)), wire, reply), \
        no_reply(#command "_Block_NC_E", call(command##_Block_NC_E), wire, reply),                                \
        no_reply(#command "_NC_Block_E", call(command##_NC_Block_E), wire, reply)

const char* const kOn = R"({"command": "set_DO_state", "IO_Num": 3, "state": 1})";
const char* const kOff = R"({"command": "set_DO_state", "IO_Num": 3, "state": 0})";
const char* const kSupply = R"({"command": "set_voltage", "voltage_type": 3, "start_enable": true})";
const char* const kSupplyType = R"({"state":"voltage_state","voltage_type":3})";
const char* const kIoState = R"({"state":"IO_state","IO_state":1,"IO_Mode":3})";

const std::vector<CommandCase> kIoRows = {
    SETTER(Set_DO_State, Set_DO_State_Cmd, kOn, "set_state", 3, 200),
    queued("Off_" CALL(Set_DO_State_NonBlock, (s, 3, 0)), kOff),
    // A single-precision product, truncated.
    SETTER(Set_AO_State, Set_AO_State_Cmd, R"({"command": "set_AO_state", "IO_Num": 255, "voltage": 250})", "state",
           255, 0.251f),
    queued("Negative_" CALL(Set_AO_State_NonBlock, (s, 0, -1.5f)),
           R"({"command": "set_AO_state", "IO_Num": 0, "voltage": -1500})"),
    acknowledged(CALL(Set_IO_State, (s, 0, 3, 7, true)), Set_DO_State_Cmd, kOn, "set_state"),
    queued("Analogue_" CALL(Set_IO_State, (s, 1, 4, 7, false)),
           R"({"command": "set_AO_state", "IO_Num": 4, "voltage": 7000})"),

    QUERY_BY(asking_3, Get_DO_State, Get_DO_State_Cmd, of_3("get_DO_state"), R"({"state":"DO_state","IO_state":257})",
             "1"),
    QUERY_BY(asking_3, Get_DI_State, Get_DI_State_Cmd, of_3("get_DI_state"), R"({"state":"DI_state","IO_state":1})",
             "0"),
    QUERY_BY(asking_3, Get_AO_State, Get_AO_State_Cmd, of_3("get_AO_state"), R"({"state":"AO_state","voltage":2999})",
             "2"),
    answered("Get_AI_State", asking_3(Get_AI_State), Get_AI_State_Cmd, of_3("get_AI_state"),
             R"({"state":"AI_state","voltage":2500})", "2"),
    answered("Get_AI_State_Blcok", asking_3(Get_AI_State_Blcok), Get_AI_State_Cmd, of_3("get_AI_state"),
             R"({"state":"AI_state","voltage":256000})", "0"),
    QUERY(Get_IO_Input, Get_IO_State_Cmd, "get_IO_input",
          R"({"state":"IO_input","DI":[1,0,1,-1],"AI":[2500,0,1,10000]})", "1 0 1 -1; 2.5 0 0.001 10"),
    QUERY(Get_IO_Output, Get_IO_Output_State_Cmd, "get_IO_output",
          R"({"state":"IO_output","DO":[0,1,0,1],"AO":[1,2500,0,10000]})", "0 1 0 1; 0.001 2.5 0 10"),
    QUERY_BY(asking_3, Get_IO_State, Get_DIO_State_Cmd, of_3("get_IO_state"), kIoState, "1; 3",
             .reads({{}, {{"/IO_Mode", {0, 0}}}})),
    WAITING(Set_IO_Mode, Set_IO_Mode_Cmd, R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 255})", "set_state", 3,
            255),

    WAITING(Set_Voltage, Set_Voltage_Cmd, kSupply, "state", 3, 2),
    acknowledged("AtOnce_" CALL(Set_Voltage_Block, (s, 0, 0)), Set_Voltage_Cmd,
                 R"({"command": "set_voltage", "voltage_type": 0, "start_enable": false})", "state"),
    QUERY(Get_Voltage, Get_Voltage_Cmd, "get_voltage", kSupplyType, "3"),

    SETTER(Set_Tool_DO_State, Set_Tool_DO_State_Cmd, R"({"command": "set_tool_DO_state", "IO_Num": 1, "state": 1})",
           "set_state", 1, 9),
    SETTER(Set_Tool_IO_Mode, Set_Tool_IO_Mode_Cmd, R"({"command": "set_tool_IO_mode", "IO_Num": 2, "state": 0})",
           "set_state", 2, 0),
    QUERY(Get_Tool_IO_State, Get_Tool_IO_State_Cmd, "get_tool_IO_state",
          R"({"state":"tool_IO_state","IO_Mode":[0,1],"IO_State":[1,1234]})", "0 1; 1 1234"),
    SETTER(Set_Tool_Voltage, Set_Tool_Voltage_Cmd, R"({"command": "set_tool_voltage", "voltage_type": 255})", "state",
           255),
    QUERY(Get_Tool_Voltage, Get_Tool_Voltage_Cmd, "get_tool_voltage", R"({"state":"tool_voltage","voltage_type":2})",
          "2"),

    // Only 1 counts as on.
    UNFED(Set_IO_Mode, given(3, 2), R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 0})", "set_state"),
    no_reply("One_" CALL(Set_IO_Mode_Block_NC_E, (s, 3, 1)), R"({"command": "set_IO_mode", "IO_Num": 3, "IO_mode": 1})",
             "set_state"),
    UNFED(Set_IO_State, given(3, 2), kOff, "set_state"),
    no_reply("One_" CALL(Set_IO_State_Block_NC_E, (s, 3, 1)), kOn, "set_state"),
    UNFED(Get_IO_State, asking_3, of_3("get_IO_state"), kIoState),
    UNFED(Get_Controller_Voltage, asking, "get_voltage", kSupplyType),
    UNFED(Set_Controller_Voltage, given(3, 2), kSupply, "state"),
};

ZK_WIRE_TESTS(Io, "io.h", "Inputs and outputs", kIoRows)

// They go on during a file transfer, as far as the queue that it holds.
TEST(IoGuards, SingleInputsAndOutputsWaitInTheQueueDuringAFileTransfer) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 1);
    const ArmSocket arm = connect_arm(controller);
    std::vector<CommandCase> rows = kIoRows;
    std::erase_if(
        rows, [](const CommandCase& row) { return !matches(row.name, "(Unwaited_)?(Set_[DA]O|Get_[DA][IO])_State"); });
    EXPECT_EQ(rows.size(), 8u);
    set_shared(IsSendFile, 1);
    std::string outputs;
    for (const CommandCase& row : rows) EXPECT_EQ(row.call(arm, outputs), row.reply.empty() ? 0 : 7) << row.name;
    set_shared(IsSendFile, 0);
    for (const CommandCase& row : rows) EXPECT_EQ(controller.next_request(), formatted(row.wire)) << row.name;
}

TEST(IoGuards, AnUnknownTypeSendsNothing) {
    expect_nothing_sent({{CALL(Set_IO_State, (s, 2, 1, 1, true))}, {CALL(Set_IO_State, (s, -1, 1, 1, false))}}, 11);
}

TEST(Inputs, AreStoredWithTheOutputs) {
    Init_Socket_Joint(65, 1000);
    char input[] = R"({"state":"DI_state","IO_state":1})", broken[] = R"({"state":"DI_state"})";
    handle_Recv_Json(0, input);
    handle_Recv_Json(0, broken);
    const IntReply &in = Get_DI_State_Cmd[0], &out = Get_DO_State_Cmd[0];
    EXPECT_EQ(text_of({in.count, in.result, in.value}), "2 9 0");
    EXPECT_EQ(text_of({out.count, out.result, out.value}), "0 0 1");
}

// Shorter arrays fill what they hold, longer ones no more than there is room for.
TEST(IoParsers, Banks) {
    expect_parsed(parsing(Parser_IO_Input),
                  {{R"({"DI":[1,2,3,4,5],"AI":[1,2,3,4,5]})", 0, "1 2 3 4; 0.001 0.002 0.003 0.004"},
                   {R"({"DI":[1],"AI":[]})", 0, "1; -"}});
    expect_parsed(parsing(Parser_Get_Tool_IO_State), {{R"({"IO_Mode":[1,0,1],"IO_State":[1]})", 0, "1 0; 1"}});
}

}  // namespace
