// The commands of the real-time push on the wire.
#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/wire_protocol.h"
#include "zk/connection.h"
#include "zk/replies/realtime.h"

namespace {

using namespace zk::test;

constexpr RealtimePushConfig kFull{5, true, 8089, 2, "192.168.1.10", 1, 0, 1, 0, 1, 0};
constexpr RealtimePushConfig kBare{0, false, 0, -1, "1.1.1", -1, -1, -1, -1, -1, -1};
constexpr RealtimePushConfig kLongAddress{1, true, 1, 0, "1234567890123456", -1, -1, -1, 1, -1, -1};

int set_push(int (*set)(ArmSocket, RealtimePushConfig), ArmSocket s, const RealtimePushConfig& config, int sensor) {
    set_shared(Curr_Senser_Type, int32_t{sensor});
    return set(s, config);
}

const std::string kReply =
    R"({"state":"get_realtime_push","cycle":5,"enable":true,"port":8089,"force_coordinate":1,"ip":"192.168.1.10",)"
    R"("custom":{"joint_speed":true,"lift_state":false,"expand_state":true,"hand":false,"arm_current_status":true,)"
    R"("aloha_state":false}})";
const char* const kReplyOutputs = "5, on, 8089, 1, 192.168.1.10, 1 0 1 0 1 0";

CommandCase adding(CommandCase row) { return row.adding(); }

// Values that are negative, zero or too long are not sent.
const std::vector<CommandCase> kRealtimePushRows = {
    adding(acknowledged(
        "Set_Realtime_Push", [](ArmSocket s) { return set_push(Set_Realtime_Push, s, kFull, 1); },
        Set_Realtime_Push_Cmd,
        R"({"command": "set_realtime_push", "cycle": 5, "enable": true, "port": 8089, )"
        R"("force_coordinate": 2, "ip": "192.168.1.10", "custom": {"joint_speed": true, )"
        R"("lift_state": false, "expand_state": true, "arm_current_status": true, "hand": false, )"
        R"("aloha_state": false}})",
        R"({"command":"set_realtime_push","state":true})")),
    adding(acknowledged(
        "Set_Realtime_Push_Block", [](ArmSocket s) { return set_push(Set_Realtime_Push_Block, s, kLongAddress, 0); },
        Set_Realtime_Push_Cmd,
        R"({"command": "set_realtime_push", "cycle": 1, "enable": true, "port": 1, "custom": {"hand": true}})",
        R"({"command":"set_realtime_push","state":true})")),
    adding(acknowledged(
        "SaysLittle_Set_Realtime_Push", [](ArmSocket s) { return set_push(Set_Realtime_Push, s, kBare, 2); },
        Set_Realtime_Push_Cmd,
        "{\n\t\"command\":\t\"set_realtime_push\",\n\t\"enable\":\tfalse,\n\t\"custom\":\t{\n\t}\n}",
        R"({"command":"set_realtime_push","state":true})")),
    answered(ASK(Get_Realtime_Push), Get_Realtime_Push_Cmd, R"({"command": "get_realtime_push"})", kReply,
             kReplyOutputs)
        .wiping()
        .reads({{}, {{"/force_coordinate", {0}}}}),
    answered(ASK(Get_Realtime_Push_Block), Get_Realtime_Push_Cmd, R"({"command": "get_realtime_push"})", kReply,
             kReplyOutputs)
        .wiping(),
};

ZK_WIRE_ROWS(RealtimePush, kRealtimePushRows, static_cast<void>(0));

TEST(RealtimePushGuards, ThePageDescribesTheWire) { expect_documented("Real-time push", kRealtimePushRows); }

TEST(RealtimePushGuards, PlainNamesDoNothingDuringAFileTransfer) {
    expect_nothing_during_a_file_transfer(kRealtimePushRows);
}

TEST(RealtimePushGuards, TheQueryRefusesANullRecord) { expect_nothing_sent({{CALL(Get_Realtime_Push, (s, nullptr))}}); }

}  // namespace
