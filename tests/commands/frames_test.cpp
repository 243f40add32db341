// Frames and payload: every command on the wire, its guards, its parsers, and the local picture of the frames in use.
#include "zk/frames.h"

#include <gtest/gtest.h>

#include <set>

#include "support/command_case.h"
#include "support/kdl_frames.h"
#include "support/parser_case.h"
#include "support/simulated_arm.h"
#include "support/wire_protocol.h"
#include "zk/algorithm.h"
#include "zk/arm_limits.h"
#include "zk/startup.h"

namespace {

using namespace zk::test;

// Of a pose only position and Euler angles go out.
const Pose kPose{{0.123456f, -0.3f, 0.0000019f}, {1, 2, 3, 4}, {3.1415f, -1.5708f, 0.0015f}};

const Exchange kTool{R"({"command": "get_current_tool_frame"})",
                     R"({"state":"current_tool_frame","tool_name":"grip","pose":[100000,-200000,1,3141,-1570,1],)"
                     R"("payload":1234.5,"position":[100000,-1500,1]})"};
const char* const kToolTold = "grip, 0.1 -0.2 1e-06, 3.141 -1.57 0.001, 1.2345 0.1 -0.0015 1e-06";
const Exchange kWork{R"({"command": "get_current_work_frame"})",
                     R"({"state":"current_work_frame","frame_name":"table","pose":[100000,-200000,1,3141,-1570,1]})"};
const char* const kWorkTold = "table, 0.1 -0.2 1e-06, 3.141 -1.57 0.001, 0 0 0 0";

// A name that goes in and comes back.
const auto kAskGivenTool = [](auto form) {
    return [form](ArmSocket s, std::string& told) { return with_outputs<FrameRec>(told, form, s, "grip"); };
};
const auto kAskGivenWork = [](auto form) {
    return [form](ArmSocket s, std::string& told) {
        char name[12] = "table";
        const int status = with_outputs<Pose>(told, form, s, name);
        if (!told.empty()) told = std::string(name, strnlen(name, 10)) + "; " + told;
        return status;
    };
};

const std::vector<CommandCase> kRows = {
    // Tools: mass and centre of gravity have other scales in each form.
    SETTER(Auto_Set_Tool_Frame, Auto_Set_Tool_Frame_Cmd, R"({"command": "set_auto_tool_frame", "point_num": 6})",
           R"({"command":"set_auto_tool_frame","auto_tool_frame":true})", 6),
    acknowledged(CALL(Generate_Auto_Tool_Frame, (s, "grip", 1.5f, 0.1f, -0.0015f, 0.0000019f, true)),
                 Auto_Set_Tool_Frame_Cmd,
                 R"({"command": "generate_auto_tool_frame", "tool_name": "grip", "payload": 1500, )"
                 R"("position": [100000, -1500, 1]})",
                 R"({"command":"generate_auto_tool_frame","auto_tool_frame":true})"),
    acknowledged(CALL(Generate_Auto_Tool_Frame_Block, (s, "grip", 1.2345f, 0.1f, -0.0015f, 0.0000019f)),
                 Auto_Set_Tool_Frame_Cmd,
                 R"({"command": "generate_auto_tool_frame", "tool_name": "grip", "payload": 1234.500000, )"
                 R"("position": [100000, -1500, 1]})",
                 R"({"command":"generate_auto_tool_frame","auto_tool_frame":true})"),
    queued(CALL(Generate_Auto_Tool_Frame_NonBlock, (s, "grip", 1.2345f, 0.1f, -0.0015f, 0.0000019f)),
           R"({"command": "generate_auto_tool_frame", "tool_name": "grip", "payload": 1234.500000, )"
           R"("position": [100, -1, 0]})"),
    acknowledged(CALL(Manual_Set_Tool_Frame, (s, "a \"b\"", kPose, 0.3333f, 0.1f, -0.0015f, 0.0000019f, true)),
                 Manual_Set_Tool_Frame_Cmd,
                 R"({"command": "set_manual_tool_frame", "tool_name": "a \"b\"", )"
                 R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 333.299988, )"
                 R"("position": [100000, -1500, 1]})",
                 R"({"command":"set_manual_tool_frame","manual_tool_frame":true})"),
    acknowledged(CALL(Manual_Set_Tool_Frame_Block, (s, "grip", kPose, 1.5f, 0.1f, 0, 0)), Manual_Set_Tool_Frame_Cmd,
                 R"({"command": "set_manual_tool_frame", "tool_name": "grip", )"
                 R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 1500, )"
                 R"("position": [100000, 0, 0]})",
                 R"({"command":"set_manual_tool_frame","manual_tool_frame":true})"),
    queued(CALL(Manual_Set_Tool_Frame_NonBlock, (s, "grip", kPose, 1.2345f, 0.1f, -0.0015f, 0.0000019f)),
           R"({"command": "set_manual_tool_frame", "tool_name": "grip", )"
           R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 1.234500, "position": [100, -1, 0]})"),
    acknowledged(CALL(Update_Tool_Frame, (s, "grip", kPose, 1.2345f, 0.1f, -0.0015f, 0.0000019f)),
                 Update_Tool_Frame_Cmd,
                 R"({"command": "update_tool_frame", "tool_name": "grip", )"
                 R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 1234.500000, )"
                 R"("position": [100000, -1500, 1]})",
                 R"({"command":"update_tool_frame","update_state":true})")
        .adding(),
    acknowledged(CALL(Update_Tool_Frame_Block, (s, "grip", kPose, -1, 0, 0, 0)), Update_Tool_Frame_Cmd,
                 R"({"command": "update_tool_frame", "tool_name": "grip", )"
                 R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": -1000, "position": [0, 0, 0]})",
                 R"({"command":"update_tool_frame","update_state":true})")
        .adding(),
    acknowledged(CALL(Change_Tool_Frame, (s, "grip", true)), Change_Tool_Frame_Cmd,
                 R"({"command": "set_change_tool_frame", "tool_name": "grip"})",
                 R"({"command":"set_change_tool_frame","change_tool_frame":true})")
        .followed_by(kTool),
    queued("Unblocked_" CALL(Change_Tool_Frame, (s, "grip", false)),
           R"({"command": "set_change_tool_frame", "tool_name": "grip"})")
        .followed_by(kTool),
    acknowledged(CALL(Change_Tool_Frame_Block, (s, "")), Change_Tool_Frame_Cmd,
                 R"({"command": "set_change_tool_frame", "tool_name": ""})",
                 R"({"command":"set_change_tool_frame","change_tool_frame":true})"),
    queued(CALL(Change_Tool_Frame_NonBlock, (s, "grip")),
           R"({"command": "set_change_tool_frame", "tool_name": "grip"})"),
    acknowledged(CALL(Delete_Tool_Frame, (s, "grip", true)), Delete_Tool_Frame_Cmd,
                 R"({"command": "set_delete_tool_frame", "tool_name": "grip"})",
                 R"({"command":"set_delete_tool_frame","delete_tool_frame":true})")
        .followed_by(kTool),
    queued("Unblocked_" CALL(Delete_Tool_Frame, (s, "grip", false)),
           R"({"command": "set_delete_tool_frame", "tool_name": "grip"})")
        .followed_by(kTool),
    acknowledged(CALL(Delete_Tool_Frame_Block, (s, "grip")), Delete_Tool_Frame_Cmd,
                 R"({"command": "set_delete_tool_frame", "tool_name": "grip"})",
                 R"({"command":"set_delete_tool_frame","delete_tool_frame":true})"),
    queued(CALL(Delete_Tool_Frame_NonBlock, (s, "grip")),
           R"({"command": "set_delete_tool_frame", "tool_name": "grip"})"),

    // The load: thousandths of a metre in both forms.
    acknowledged(CALL(Set_Payload_Block, (s, 2147483647, 0.1f, -0.0015f, 0.0000019f)), Set_Payload_Cmd,
                 R"({"command": "set_payload", "payload": 2147483647, "position": [100, -1, 0]})",
                 R"({"command":"set_payload","set_state":true})"),
    queued(CALL(Set_Payload_NonBlock, (s, -5, 0.1f, -0.0015f, 0.0000019f)),
           R"({"command": "set_payload", "payload": -5, "position": [100, -1, 0]})"),
    acknowledged(CALL(Set_None_Payload_Block, (s)), Set_None_Payload_Cmd, R"({"command": "set_none_payload"})",
                 R"({"command":"set_none_payload","set_state":true})"),
    queued(CALL(Set_None_Payload_NonBlock, (s)), R"({"command": "set_none_payload"})"),

    QUERY(Get_Current_Tool_Frame, Current_Tool_Cmd, kTool.wire, kTool.reply, kToolTold, .wiping()),
    answered("Get_Given_Tool_Frame", kAskGivenTool(Get_Given_Tool_Frame), Given_Tool_Cmd,
             R"({"command": "get_tool_frame", "tool_name": "grip"})",
             R"({"state":"given_tool_frame","tool_name":"tool_frame_long","pose":[1.9,2,3e0,4,5,6],"payload":2.5,)"
             R"("position":[1,2,3]})",
             "tool_frame, 1e-06 2e-06 3e-06, 0.004 0.005 0.006, 0.0025 1e-06 2e-06 3e-06")
        .clearing_old_replies()
        .wiping(),
    answered("Get_Given_Tool_Frame_Block", kAskGivenTool(Get_Given_Tool_Frame_Block), Given_Tool_Cmd,
             R"({"command": "get_tool_frame", "tool_name": "grip"})",
             R"({"state":"get_tool_frame","get_state":true,"tool_name":"grip","pose":[1,2,3,4,5,6],"payload":0,)"
             R"("position":[0,0,0]})",
             "grip, 1e-06 2e-06 3e-06, 0.004 0.005 0.006, 0 0 0 0")
        .clearing_old_replies()
        .wiping(),
    QUERY(Get_All_Tool_Frame, Get_All_Tool_Frame_Cmd, R"({"command": "get_total_tool_frame"})",
          R"({"state":"total_tool_frame","tool_names":["a","tool_frame_long","NULL","c"]})", "a tool_frame; 2",
          .wiping()),

    SETTER(Auto_Set_Work_Frame, Auto_Set_Work_Frame_Cmd,
           R"({"command": "set_auto_work_frame", "frame_name": "table", "point_num": 4})",
           R"({"command":"set_auto_work_frame","auto_work_frame":true})", "table", 4),
    SETTER(Manual_Set_Work_Frame, Manual_Set_Work_Frame_Cmd,
           R"({"command": "set_manual_work_frame", "frame_name": "table", )"
           R"("frame_pose": [123456, -300000, 1, 3141, -1570, 1]})",
           R"({"command":"set_manual_work_frame","manual_work_frame":true})", "table", kPose),
    acknowledged(CALL(Update_Work_Frame, (s, "table", kPose)), Update_Work_Frame_Cmd,
                 R"({"command": "update_work_frame", "frame_name": "table", )"
                 R"("frame_pose": [123456, -300000, 1, 3141, -1570, 1]})",
                 R"({"command":"update_work_frame","update_state":true})")
        .adding(),
    acknowledged(CALL(Update_Work_Frame_Block, (s, "table", kPose)), Update_Work_Frame_Cmd,
                 R"({"command": "update_work_frame", "frame_name": "table", )"
                 R"("frame_pose": [123456, -300000, 1, 3141, -1570, 1]})",
                 R"({"command":"update_work_frame","update_state":true})")
        .adding(),
    acknowledged(CALL(Change_Work_Frame, (s, "table", true)), Change_Work_Frame_Cmd,
                 R"({"command": "set_change_work_frame", "frame_name": "table"})",
                 R"({"command":"set_change_work_frame","change_work_frame":true})")
        .followed_by(kWork),
    queued("Unblocked_" CALL(Change_Work_Frame, (s, "table", false)),
           R"({"command": "set_change_work_frame", "frame_name": "table"})")
        .followed_by(kWork),
    acknowledged(CALL(Change_Work_Frame_Block, (s, "table")), Change_Work_Frame_Cmd,
                 R"({"command": "set_change_work_frame", "frame_name": "table"})",
                 R"({"command":"set_change_work_frame","change_work_frame":true})"),
    queued(CALL(Change_Work_Frame_NonBlock, (s, "table")),
           R"({"command": "set_change_work_frame", "frame_name": "table"})"),
    acknowledged(CALL(Delete_Work_Frame, (s, "table", true)), Delete_Work_Frame_Cmd,
                 R"({"command": "set_delete_work_frame", "frame_name": "table"})",
                 R"({"command":"set_delete_work_frame","delete_work_frame":true})")
        .followed_by(kWork),
    queued("Unblocked_" CALL(Delete_Work_Frame, (s, "table", false)),
           R"({"command": "set_delete_work_frame", "frame_name": "table"})")
        .followed_by(kWork),
    acknowledged(CALL(Delete_Work_Frame_Block, (s, "table")), Delete_Work_Frame_Cmd,
                 R"({"command": "set_delete_work_frame", "frame_name": "table"})",
                 R"({"command":"set_delete_work_frame","delete_work_frame":true})"),
    queued(CALL(Delete_Work_Frame_NonBlock, (s, "table")),
           R"({"command": "set_delete_work_frame", "frame_name": "table"})"),

    QUERY(Get_Current_Work_Frame, Current_Work_Cmd, kWork.wire, kWork.reply, kWorkTold, .wiping()),
    answered("Get_Given_Work_Frame", kAskGivenWork(Get_Given_Work_Frame), Given_Work_Frame_Cmd,
             R"({"command": "get_work_frame", "frame_name": "table"})",
             R"({"state":"given_work_frame","frame_name":"work_frame_long","pose":[1.9,2,3,4,5,6]})",
             "work_frame; 1e-06 2e-06 3e-06, 0.004 0.005 0.006")
        .clearing_old_replies()
        .wiping(),
    answered("Get_Given_Work_Frame_Block", kAskGivenWork(Get_Given_Work_Frame_Block), Given_Work_Frame_Cmd,
             R"({"command": "get_work_frame", "frame_name": "table"})",
             R"({"state":"get_work_frame","get_state":false})", "; 0 0 0, 0 0 0")
        .giving(1)
        .clearing_old_replies()
        .wiping(),
    answered(ASK(Get_All_Work_Frame), Get_All_Work_Frame_Cmd, R"({"command": "get_total_work_frame"})",
             R"({"state":"total_work_frame","frame_names":["Base","table"]})", "Base table; 2")
        .wiping(),
    answered(ASK(Get_All_Work_Frame_Blcok), Get_All_Work_Frame_Cmd, R"({"command": "get_total_work_frame"})",
             R"({"state":"total_work_frame","frame_names":["NULL","table"]})", "-; 0")
        .wiping(),
};

// What the rows do to the local picture: only these names touch it.
const std::set<std::string> kTouchTool = {"Get_Current_Tool_Frame", "Change_Tool_Frame", "Unblocked_Change_Tool_Frame",
                                          "Delete_Tool_Frame", "Unblocked_Delete_Tool_Frame"};
const std::set<std::string> kTouchWork = {"Get_Current_Work_Frame", "Change_Work_Frame", "Unblocked_Change_Work_Frame",
                                          "Delete_Work_Frame", "Unblocked_Delete_Work_Frame"};

class Frames : public testing::TestWithParam<CommandCase> {};
TEST_P(Frames, OnTheWire) {
    g_tool_pose.position.x = g_work_pose.position.x = 7;
    run(GetParam());
    EXPECT_EQ(g_tool_pose.position.x != 7, kTouchTool.count(GetParam().name) == 1);
    EXPECT_EQ(g_work_pose.position.x != 7, kTouchWork.count(GetParam().name) == 1);
}
INSTANTIATE_TEST_SUITE_P(, Frames, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

TEST(FramesGuards, EveryCommandHasARow) { EXPECT_EQ(commands_without_row("frames.h", kRows), ""); }

TEST(FramesGuards, ThePageTellsTheWire) { expect_documented("Frames and payload", kRows); }

TEST(FramesGuards, PlainNamesDoNothingDuringAFileTransfer) {
    std::vector<CommandCase> rows = kRows;
    std::erase_if(rows, [](const CommandCase& row) { return row.name.find("Set_Payload") == 0; });
    expect_nothing_during_a_file_transfer(rows);
}

TEST(FramesGuards, NullPointersAreToldAndNothingIsSent) {
    static FrameRec frame;
    static Pose pose;
    static int32_t count;
    static char name[12];
    expect_nothing_sent({{CALL(Generate_Auto_Tool_Frame, (s, nullptr, 1, 0, 0, 0, true))},
                         {CALL(Manual_Set_Tool_Frame, (s, nullptr, pose, 1, 0, 0, 0, false))},
                         {CALL(Update_Tool_Frame, (s, nullptr, pose, 1, 0, 0, 0))},
                         {CALL(Change_Tool_Frame, (s, nullptr, false))},
                         {CALL(Delete_Tool_Frame, (s, nullptr, true))},
                         {CALL(Get_Current_Tool_Frame, (s, nullptr))},
                         {CALL(Get_Given_Tool_Frame, (s, nullptr, &frame))},
                         {CALL(Get_Given_Tool_Frame, (s, "grip", nullptr))},
                         {CALL(Get_All_Tool_Frame, (s, nullptr, &count))},
                         {CALL(Auto_Set_Work_Frame, (s, nullptr, 1, true))},
                         {CALL(Manual_Set_Work_Frame, (s, nullptr, pose, true))},
                         {CALL(Update_Work_Frame, (s, nullptr, pose))},
                         {CALL(Change_Work_Frame, (s, nullptr, true))},
                         {CALL(Delete_Work_Frame, (s, nullptr, false))},
                         {CALL(Get_Current_Work_Frame, (s, nullptr))},
                         {CALL(Get_Given_Work_Frame, (s, nullptr, &pose))},
                         {CALL(Get_Given_Work_Frame, (s, name, nullptr))},
                         {CALL(Get_All_Work_Frame, (s, nullptr, &count))}});
}

// 299 bytes with the CRLF are the most that goes out.
TEST(FramesGuards, ANameThatIsTooLongEndsTheProcess) {
    const std::string frame_around_name =
        "{\n\t\"command\":\t\"set_change_tool_frame\",\n\t\"tool_name\":\t\"\"\n}\r\n";
    const std::string longest(299 - frame_around_name.size(), 'x');
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    EXPECT_EQ(Change_Tool_Frame_NonBlock(arm, longest.c_str()), 0);
    EXPECT_EQ(controller.next_request().size(), 297u);
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(Change_Tool_Frame_NonBlock(77, (longest + "x").c_str()), "set_change_tool_frame.*300.*299");
}

// ------------------------------------------------------------------------------------------------------- Parsers --

TEST(FramesParsers, Acknowledgements) {
    for (const AckParser& parser : {
             AckParser{Parser_Auto_Set_Tool_Frame, "auto_tool_frame"},
             {Parser_Manual_Set_Tool_Frame, "manual_tool_frame"},
             {Parser_Update_State, "update_state"},
             {Parser_Change_Tool_Frame, "change_tool_frame"},
             {Parser_Delete_Tool_Frame, "delete_tool_frame"},
             {Parser_Auto_Set_Work_Frame, "auto_work_frame"},
             {Parser_Manual_Set_Work_Frame, "manual_work_frame"},
             {Parser_Change_Work_Frame, "change_work_frame"},
             {Parser_Delete_Work_Frame, "delete_work_frame"},
         }) {
        expect_acknowledgement(parser);
    }
}

// What ends every reply about a tool; `name` is what stands before it.
void expect_tool_parser(const Parse& parse) {
    const std::string name = R"({"tool_name":"grip")", pose = R"(,"pose":[1000000,0,0,0,0,1000])",
                      payload = R"(,"payload":500)", position = R"(,"position":[0,0,1000]})";
    const std::string named = "grip, , , ", posed = "grip, 1 0 0, 0 0 1, ";
    expect_parsed(parse, {{name + pose + payload + position, 0, posed + "0.5 0 0 0.001"},
                          {R"({"frame_name":"grip")" + pose + payload + position, 9, ""},
                          {name + payload + position, 9, named},
                          {name + R"(,"pose":true)" + payload + position, 11, named},
                          {name + R"(,"pose":[1,2,3,4,5,6,7])" + payload + position, 10, named},
                          {name + pose + position, 9, posed},
                          {name + pose + R"(,"payload":"500")" + position, 11, posed},
                          {name + pose + payload + "}", 9, posed + "0.5"},
                          {name + pose + payload + R"(,"position":0})", 11, posed + "0.5"},
                          {name + pose + payload + R"(,"position":[0,0]})", 11, posed + "0.5"},
                          {name + pose + payload + R"(,"position":[0,0,0,0]})", 11, posed + "0.5"},
                          {name + pose + payload, 9, ""}});
}

TEST(FramesParsers, ToolFrames) {
    expect_tool_parser(parsing(Parser_Get_Current_Tool_Frame));
    expect_tool_parser(parsing(Parser_Get_Given_Tool_Frame));
    expect_parsed(parsing(Parser_Get_Given_Tool_Frame),
                  {{R"({"get_state":false})", 1, ""},
                   {R"({"tool_name":"grip","get_state":false,"pose":[0,0,0,0,0,0]})", 1, ""},
                   {R"({"get_state":true})", 9, ""}});
}

// Ten bytes of name at most, the eleventh left alone.
TEST(FramesParsers, NamesAreCut) {
    FrameRec frame;
    std::memset(&frame, 'z', sizeof frame);
    const char* const reply = R"({"tool_name":"0123456789ab","pose":[0,0,0,0,0,0],"payload":0,"position":[0,0,0]})";
    EXPECT_EQ(Parser_Get_Current_Tool_Frame(reply, &frame), 0);
    EXPECT_EQ(std::string(frame.frame_name, 12), "0123456789zz");
}

TEST(FramesParsers, WorkFrames) {
    const std::string pose = R"(,"pose":[1000000,0,0,0,0,1000]})";
    expect_parsed(parsing(Parser_Get_Current_Work_Frame),
                  {{R"({"frame_name":"table")" + pose, 0, "table, 1 0 0, 0 0 1, "},
                   {R"({"tool_name":"table")" + pose, 9, ""},
                   {R"({"frame_name":"table"})", 9, "table, , , "},
                   {R"({"frame_name":"table","pose":7})", 11, "table, , , "},
                   {R"({"frame_name":"table","pose":[1,2,3]})", 10, "table, , , "},
                   {R"({"frame_name":"table")", 9, ""}});
    expect_parsed(parsing(Parser_Get_Given_Work_Frame), {{R"({"frame_name":"table")" + pose, 0, "table; 1 0 0, 0 0 1"},
                                                         {R"({"frame_name":7)" + pose, 0, "-; 1 0 0, 0 0 1"},
                                                         {R"({"get_state":null)" + pose, 0, "-; 1 0 0, 0 0 1"},
                                                         {R"({"get_state":false,"frame_name":"table")" + pose, 1, ""},
                                                         {R"({"frame_name":"table"})", 9, "table; -"},
                                                         {R"({"pose":{}})", 11, ""},
                                                         {R"({"pose":[]})", 10, ""},
                                                         {"", 9, ""}});
}

TEST(FramesParsers, Names) {
    const std::pair<Parse, std::string> parsers[] = {{parsing(Parser_Get_All_Tool_Frame), "tool_names"},
                                                     {parsing(Parser_Get_All_Work_Frame), "frame_names"}};
    for (const auto& [parse, key] : parsers) {
        const auto reply = [&list = key](const std::string& names) { return "{\"" + list + "\":" + names + "}"; };
        expect_parsed(parse, {{reply(R"(["a","NULL","b"])"), 0, "a; 1"},
                              {reply(R"(["a","null","NULLx"])"), 0, "a null NULLx; 3"},
                              {reply("[]"), 0, "-; 0"},
                              {reply(R"(["1","2","3","4","5","6","7","8","9","10","11","12","13"])"), 0,
                               "1 2 3 4 5 6 7 8 9 10 11; 11"},
                              {reply(R"("a")"), 11, ""},
                              {R"({"names":["a"]})", 9, ""},
                              {reply("[\"a\""), 9, ""}});
    }
}

// -------------------------------------------------------------------------------------------- The local picture --

// Tool and work frame alike, with what they are called in each case.
struct Kind {
    const char* name;
    int (*change)(ArmSocket, const char*, bool);
    int (*remove)(ArmSocket, const char*, bool);
    int (*in_use)(ArmSocket, FrameRec*);
    int (*in_use_block)(ArmSocket, FrameRec*);
    void (*to_model)(const FrameRec*);
    void (*from_model)(FrameRec*);
    Pose* picture;
    const char* change_command;
    const char* change_key;
    const char* delete_command;
    const char* delete_key;
    const char* query;
    const char* reply;         // 0.5 0.25 0.125 metres, turned by 1.571 about z
    const char* broken_reply;  // all but its pose
};

const Kind kKinds[] = {
    {"Tool", Change_Tool_Frame, Delete_Tool_Frame, Get_Current_Tool_Frame, Get_Current_Tool_Frame_Block,
     Algo_Set_ToolFrame, Algo_Get_Curr_ToolFrame, &g_tool_pose, "set_change_tool_frame", "change_tool_frame",
     "set_delete_tool_frame", "delete_tool_frame", "get_current_tool_frame",
     R"({"state":"current_tool_frame","tool_name":"grip","pose":[500000,250000,125000,0,0,1571],"payload":1500,)"
     R"("position":[0,0,0]})",
     R"({"state":"current_tool_frame","tool_name":"grip"})"},
    {"Work", Change_Work_Frame, Delete_Work_Frame, Get_Current_Work_Frame, Get_Current_Work_Frame_Block,
     Algo_Set_WorkFrame, Algo_Get_Curr_WorkFrame, &g_work_pose, "set_change_work_frame", "change_work_frame",
     "set_delete_work_frame", "delete_work_frame", "get_current_work_frame",
     R"({"state":"current_work_frame","frame_name":"table","pose":[500000,250000,125000,0,0,1571]})",
     R"({"state":"current_work_frame","frame_name":"table"})"},
};

class LocalPicture : public testing::TestWithParam<Kind> {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 60000);
        arm_ = connect_arm(controller_);
        Algo_Init_Sys_Data(0, 0);
        FrameRec first{};
        first.pose.position = {1, 2, 3};
        kind_.to_model(&first);
        controller_.answer(kind_.query, kind_.reply);
        let(kind_.change_command, kind_.change_key, "true");
        let(kind_.delete_command, kind_.delete_key, "true");
    }

    void let(const char* command, const char* key, const std::string& state) {
        controller_.answer(command, std::string(R"({"command":")") + command + R"(",")" + key + "\":" + state + "}");
    }
    static std::string position(const Pose& pose) {
        return text_of({pose.position.x, pose.position.y, pose.position.z});
    }
    std::string model() const {
        FrameRec frame{};
        kind_.from_model(&frame);
        return position(frame.pose);
    }

    const Kind kind_ = GetParam();
    ScriptedController controller_;
    ArmSocket arm_ = 0;
    FrameRec frame_{};
};
INSTANTIATE_TEST_SUITE_P(Of, LocalPicture, testing::ValuesIn(kKinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(LocalPicture, IsRefreshedFromTheModelByAQuery) {
    kind_.picture->position.x = 9;
    EXPECT_EQ(kind_.in_use_block(arm_, &frame_), 0);
    EXPECT_EQ(position(*kind_.picture), "9 2 3");
    EXPECT_EQ(kind_.in_use(arm_, &frame_), 0);
    EXPECT_EQ(position(frame_.pose), "0.5 0.25 0.125");
    EXPECT_EQ(position(*kind_.picture), "1 2 3");
    EXPECT_EQ(model(), "1 2 3") << "the answer does not go there";
}

TEST_P(LocalPicture, FollowsAChangeAndADeletion) {
    for (const bool block : {true, false}) {
        for (const auto& act : {kind_.change, kind_.remove}) {
            FrameRec first{};
            kind_.to_model(&first);
            EXPECT_EQ(act(arm_, "any", block), 0);
            EXPECT_EQ(model(), "0.5 0.25 0.125");
            EXPECT_EQ(position(*kind_.picture), "0.5 0.25 0.125");
            EXPECT_EQ(kind_.picture->euler.rz, 1.571f);
        }
    }
}

TEST_P(LocalPicture, StaysWhenAnythingFails) {
    let(kind_.change_command, kind_.change_key, "false");
    let(kind_.delete_command, kind_.delete_key, "7");
    EXPECT_EQ(kind_.change(arm_, "any", true), 1);
    EXPECT_EQ(kind_.remove(arm_, "any", true), 11);
    let(kind_.change_command, kind_.change_key, "true");
    controller_.answer(kind_.query, kind_.broken_reply);
    kind_.picture->position.x = 9;
    EXPECT_EQ(kind_.change(arm_, "any", true), 9) << "the question's failure is the change's";
    EXPECT_EQ(kind_.remove(arm_, "any", false), 9);
    EXPECT_EQ(kind_.in_use(arm_, &frame_), 9);
    EXPECT_EQ(position(*kind_.picture), "9 2 3");
    EXPECT_EQ(model(), "1 2 3");
}

// A good answer makes the matrix too, whoever asked: the tool's with its Euler angles in the place of the position.
TEST(FrameMatrices, FollowTheAnswers) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    FrameRec frame{};
    const KDL::Rotation turned = KDL::Rotation::RPY(0.1, -0.2, 0.3);
    controller.answer("get_current_tool_frame",
                      R"({"state":"current_tool_frame","tool_name":"t","pose":[500000,250000,125000,100,-200,300],)"
                      R"("payload":0,"position":[0,0,0]})");
    EXPECT_EQ(Get_Current_Tool_Frame_Block(arm, &frame), 0);
    EXPECT_TRUE(KDL::Equal(to_kdl(Tool_Matrix), KDL::Frame(turned, KDL::Vector(0.1, -0.2, 0.3)), 1e-6));
    controller.answer("get_current_work_frame",
                      R"({"state":"current_work_frame","frame_name":"w","pose":[500000,250000,125000,100,-200,300]})");
    EXPECT_EQ(Get_Current_Work_Frame_Block(arm, &frame), 0);
    EXPECT_TRUE(KDL::Equal(to_kdl(Frame_Matrix), KDL::Frame(turned, KDL::Vector(0.5, 0.25, 0.125)), 1e-6));

    Tool_Matrix = Frame_Matrix = Matrix{};
    controller.answer("get_current_tool_frame",
                      R"({"state":"current_tool_frame","tool_name":"t","pose":[500000,250000,125000,100,-200,300]})");
    controller.answer("get_current_work_frame", R"({"state":"current_work_frame","frame_name":"w","pose":[1,2]})");
    EXPECT_EQ(Get_Current_Tool_Frame_Block(arm, &frame), 9);
    EXPECT_EQ(Get_Current_Work_Frame_Block(arm, &frame), 10);
    EXPECT_EQ(Tool_Matrix.rows + Frame_Matrix.rows, 0);
}

// ------------------------------------------------------------------------------------------------- A simulated arm --

const Pose kGrip{{0.1f, 0, 0.15f}, {}, {0, 0, 1.5f}};

TEST(FramesOfASimulatedArm, ToolsAreGotBackAsSet) {
    SimulatedArm arm;
    FrameRec frame{};
    EXPECT_EQ(Manual_Set_Tool_Frame(arm, "grip", kGrip, 1.5f, 0.01f, 0.02f, -0.03f, true), 0);
    EXPECT_EQ(Manual_Set_Tool_Frame(arm, "grip", kGrip, 1, 0, 0, 0, true), 1) << "there already";
    std::string told;
    EXPECT_EQ(with_outputs<FrameRec>(told, Get_Given_Tool_Frame, ArmSocket(arm), "grip"), 0);
    EXPECT_EQ(told, "grip, 0.1 0 0.15, 0 0 1.5, 1.5 0.01 0.02 -0.03");
    EXPECT_EQ(Get_Given_Tool_Frame(arm, "none", &frame), 1);
    EXPECT_EQ(Update_Tool_Frame(arm, "grip", kGrip, 2.5f, 0, 0, 0), 0);
    EXPECT_EQ(Update_Tool_Frame(arm, "none", kGrip, 2.5f, 0, 0, 0), 1);

    FrameName names[ZK_FRAME_NAMES];
    int32_t count = 0;
    EXPECT_EQ(Get_All_Tool_Frame(arm, names, &count), 0);
    ASSERT_EQ(count, 2);
    EXPECT_STREQ(names[0].text, "Arm_Tip");
    EXPECT_STREQ(names[1].text, "grip");

    EXPECT_EQ(Change_Tool_Frame(arm, "none", true), 1);
    EXPECT_EQ(Change_Tool_Frame(arm, "grip", true), 0);
    EXPECT_EQ(g_tool_pose.position.x, 0.1f);
    EXPECT_EQ(Get_Current_Tool_Frame(arm, &frame), 0);
    EXPECT_EQ(frame.payload, 2.5f);
    EXPECT_EQ(Delete_Tool_Frame(arm, "grip", true), 0);
    EXPECT_EQ(g_tool_pose.position.x, 0);
    EXPECT_EQ(Get_Current_Tool_Frame(arm, &frame), 0);
    EXPECT_STREQ(frame.frame_name, "Arm_Tip");
    EXPECT_EQ(Delete_Tool_Frame(arm, "Arm_Tip", true), 1);

    EXPECT_EQ(Auto_Set_Tool_Frame(arm, 1, true), 0);
    EXPECT_EQ(Generate_Auto_Tool_Frame(arm, "auto", 1, 0, 0, 0, true), 1) << "one point makes no tool";
    EXPECT_EQ(Set_Payload_Block(arm, 1000, 0.01f, 0, 0), 0);
    EXPECT_EQ(Set_Payload_Block(arm, -1, 0, 0, 0), 1);
    EXPECT_EQ(Set_None_Payload_Block(arm), 0);
}

TEST(FramesOfASimulatedArm, WorkFramesAreGotBackAsSet) {
    SimulatedArm arm;
    FrameRec frame{};
    Pose pose{};
    char name[12] = "table";
    EXPECT_EQ(Manual_Set_Work_Frame(arm, "table", kGrip, true), 0);
    EXPECT_EQ(Get_Given_Work_Frame(arm, name, &pose), 0);
    EXPECT_STREQ(name, "table");
    EXPECT_EQ(pose.position.z, 0.15f);
    EXPECT_EQ(pose.euler.rz, 1.5f);
    char missing[12] = "none";
    EXPECT_EQ(Get_Given_Work_Frame(arm, missing, &pose), 1);
    EXPECT_EQ(Update_Work_Frame(arm, "table", kPose), 0);
    EXPECT_EQ(Update_Work_Frame(arm, "Base", kPose), 1);

    FrameName names[ZK_FRAME_NAMES];
    int32_t count = 0;
    EXPECT_EQ(Get_All_Work_Frame(arm, names, &count), 0);
    ASSERT_EQ(count, 2);
    EXPECT_STREQ(names[1].text, "table");
    EXPECT_EQ(Change_Work_Frame(arm, "table", true), 0);
    EXPECT_EQ(g_work_pose.position.y, -0.3f);
    EXPECT_EQ(Get_Current_Work_Frame(arm, &frame), 0);
    EXPECT_STREQ(frame.frame_name, "table");
    EXPECT_EQ(Delete_Work_Frame(arm, "table", true), 0);
    EXPECT_EQ(g_work_pose.position.y, 0);
    EXPECT_EQ(Auto_Set_Work_Frame(arm, "auto", 1, true), 0);
    EXPECT_EQ(Auto_Set_Work_Frame(arm, "auto", 4, true), 1) << "one point makes no frame";
}

}  // namespace
