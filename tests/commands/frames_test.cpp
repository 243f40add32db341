// Frames and payload: every command on the wire, its guards, its parsers, and the local picture of the frames in use.
#include "zk/replies/frames.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/kdl_frames.h"
#include "support/parser_case.h"
#include "support/pattern.h"
#include "support/wire_protocol.h"
#include "zk/algorithm.h"
#include "zk/connection.h"

namespace {

using namespace zk::test;

// Only position and Euler angles of a pose are sent.
const Pose kFramePose{{0.123456f, -0.3f, 0.0000019f}, {1, 2, 3, 4}, {3.1415f, -1.5708f, 0.0015f}};

const Exchange kToolFrame{"get_current_tool_frame",
                          R"({"state":"current_tool_frame","tool_name":"grip","pose":[100000,-200000,1,3141,-1570,1],)"
                          R"("payload":1234.5,"position":[100000,-1500,1]})"};
const char* const kToolOutputs = "grip, 0.1 -0.2 1e-06, 3.141 -1.57 0.001, 1.2345 0.1 -0.0015 1e-06";
const Reading kToolRead{{}, {{"/tool_name", {9, 0}}}};
const Exchange kWork{"get_current_work_frame",
                     R"({"state":"current_work_frame","frame_name":"table","pose":[100000,-200000,1,3141,-1570,1]})"};
const char* const kWorkOutputs = "table, 0.1 -0.2 1e-06, 3.141 -1.57 0.001, 0 0 0 0";

// A name that goes in and comes back.
const auto kAskGivenTool = [](auto form) {
    return [form](ArmSocket s, std::string& outputs) { return with_outputs<FrameRec>(outputs, form, s, "grip"); };
};
const auto kAskGivenWork = [](auto form) {
    return [form](ArmSocket s, std::string& outputs) {
        char name[12] = "table";
        const int status = with_outputs<Pose>(outputs, form, s, name);
        if (!outputs.empty()) outputs = std::string(name, strnlen(name, 10)) + "; " + outputs;
        return status;
    };
};

#define CENTRE 0.1f, -0.0015f, 0.0000019f
// Selects or deletes a frame, then asks for the frame in use, even in the non-blocking form.
#define SELECTION(command, mailbox, wire, reply, question, name) \
    FOLLOWED(command, mailbox, wire, wire, reply, question, name)
#define GIVEN(name, call, mailbox, wire, reply, outputs) \
    answered(name, call, mailbox, wire, reply, outputs).clearing_old_replies().wiping()

const std::vector<CommandCase> kFramesRows = {
    // Tools: mass and centre of gravity have other scales in each form.
    SETTER(Auto_Set_Tool_Frame, Auto_Set_Tool_Frame_Cmd, R"({"command": "set_auto_tool_frame", "point_num": 6})",
           "auto_tool_frame", 6),
    FOLLOWED(Generate_Auto_Tool_Frame, Auto_Set_Tool_Frame_Cmd,
             R"({"command": "generate_auto_tool_frame", "tool_name": "grip", "payload": 1234.500000, )"
             R"("position": [100000, -1500, 1]})",
             R"({"command": "generate_auto_tool_frame", "tool_name": "grip", "payload": 1234.500000, )"
             R"("position": [100, -1, 0]})",
             "auto_tool_frame", {}, "grip", 1.2345f, CENTRE),
    FOLLOWED(Manual_Set_Tool_Frame, Manual_Set_Tool_Frame_Cmd,
             R"({"command": "set_manual_tool_frame", "tool_name": "a \"b\"", )"
             R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 333.299988, )"
             R"("position": [100000, -1500, 1]})",
             R"({"command": "set_manual_tool_frame", "tool_name": "a \"b\"", )"
             R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 0.333300, "position": [100, -1, 0]})",
             "manual_tool_frame", {}, "a \"b\"", kFramePose, 0.3333f, CENTRE),
    WAITING_WITH(.adding(), Update_Tool_Frame, Update_Tool_Frame_Cmd,
                 R"({"command": "update_tool_frame", "tool_name": "grip", )"
                 R"("tool_pose": [123456, -300000, 1, 3141, -1570, 1], "payload": 1234.500000, )"
                 R"("position": [100000, -1500, 1]})",
                 "update_state", "grip", kFramePose, 1.2345f, CENTRE),
    SELECTION(Change_Tool_Frame, Change_Tool_Frame_Cmd, R"({"command": "set_change_tool_frame", "tool_name": ""})",
              "change_tool_frame", kToolFrame, ""),
    SELECTION(Delete_Tool_Frame, Delete_Tool_Frame_Cmd, R"({"command": "set_delete_tool_frame", "tool_name": "grip"})",
              "delete_tool_frame", kToolFrame, "grip"),

    // The load: thousandths of a metre in both forms.
    acknowledged(CALL(Set_Payload_Block, (s, 2147483647, CENTRE)), Set_Payload_Cmd,
                 R"({"command": "set_payload", "payload": 2147483647, "position": [100, -1, 0]})", "set_state"),
    queued(CALL(Set_Payload_NonBlock, (s, -5, CENTRE)),
           R"({"command": "set_payload", "payload": -5, "position": [100, -1, 0]})"),
    acknowledged(CALL(Set_None_Payload_Block, (s)), Set_None_Payload_Cmd, "set_none_payload", "set_state"),
    queued(CALL(Set_None_Payload_NonBlock, (s)), "set_none_payload"),

    QUERY(Get_Current_Tool_Frame, Current_Tool_Cmd, kToolFrame.wire, kToolFrame.reply, kToolOutputs,
          .wiping().reads(kToolRead)),
    GIVEN("Get_Given_Tool_Frame", kAskGivenTool(Get_Given_Tool_Frame), Given_Tool_Cmd,
          R"({"command": "get_tool_frame", "tool_name": "grip"})",
          R"({"state":"given_tool_frame","tool_name":"tool_frame_long","pose":[1.9,2,3e0,4,5,6],"payload":2.5,)"
          R"("position":[1,2,3]})",
          "tool_frame, 1e-06 2e-06 3e-06, 0.004 0.005 0.006, 0.0025 1e-06 2e-06 3e-06")
        .reads(kToolRead),
    GIVEN("Get_Given_Tool_Frame_Block", kAskGivenTool(Get_Given_Tool_Frame_Block), Given_Tool_Cmd,
          R"({"command": "get_tool_frame", "tool_name": "grip"})",
          R"({"state":"get_tool_frame","get_state":true,"tool_name":"grip","pose":[1,2,3,4,5,6],"payload":0,)"
          R"("position":[0,0,0]})",
          "grip, 1e-06 2e-06 3e-06, 0.004 0.005 0.006, 0 0 0 0"),
    QUERY(Get_All_Tool_Frame, Get_All_Tool_Frame_Cmd, "get_total_tool_frame",
          R"({"state":"total_tool_frame","tool_names":["a","tool_frame_long","NULL","c"]})", "a tool_frame; 2",
          .wiping()),

    SETTER(Auto_Set_Work_Frame, Auto_Set_Work_Frame_Cmd,
           R"({"command": "set_auto_work_frame", "frame_name": "table", "point_num": 4})", "auto_work_frame", "table",
           4),
    SETTER(Manual_Set_Work_Frame, Manual_Set_Work_Frame_Cmd,
           R"({"command": "set_manual_work_frame", "frame_name": "table", )"
           R"("frame_pose": [123456, -300000, 1, 3141, -1570, 1]})",
           "manual_work_frame", "table", kFramePose),
    WAITING_WITH(.adding(), Update_Work_Frame, Update_Work_Frame_Cmd,
                 R"({"command": "update_work_frame", "frame_name": "table", )"
                 R"("frame_pose": [123456, -300000, 1, 3141, -1570, 1]})",
                 "update_state", "table", kFramePose),
    SELECTION(Change_Work_Frame, Change_Work_Frame_Cmd,
              R"({"command": "set_change_work_frame", "frame_name": "table"})", "change_work_frame", kWork, "table"),
    SELECTION(Delete_Work_Frame, Delete_Work_Frame_Cmd,
              R"({"command": "set_delete_work_frame", "frame_name": "table"})", "delete_work_frame", kWork, "table"),

    QUERY(Get_Current_Work_Frame, Current_Work_Cmd, kWork.wire, kWork.reply, kWorkOutputs,
          .wiping().reads({{}, {{"/frame_name", {9, 0}}}})),
    GIVEN("Get_Given_Work_Frame", kAskGivenWork(Get_Given_Work_Frame), Given_Work_Frame_Cmd,
          R"({"command": "get_work_frame", "frame_name": "table"})",
          R"({"state":"given_work_frame","frame_name":"work_frame_long","pose":[1.9,2,3,4,5,6]})",
          "work_frame; 1e-06 2e-06 3e-06, 0.004 0.005 0.006")
        .reads({{}, {{"/frame_name", {0, 0}}}}),
    GIVEN("Get_Given_Work_Frame_Block", kAskGivenWork(Get_Given_Work_Frame_Block), Given_Work_Frame_Cmd,
          R"({"command": "get_work_frame", "frame_name": "table"})", R"({"state":"get_work_frame","get_state":false})",
          "; 0 0 0, 0 0 0")
        .returning(1),
    answered(ASK(Get_All_Work_Frame), Get_All_Work_Frame_Cmd, "get_total_work_frame",
             R"({"state":"total_work_frame","frame_names":["Base","table"]})", "Base table; 2")
        .wiping(),
    answered(ASK(Get_All_Work_Frame_Blcok), Get_All_Work_Frame_Cmd, "get_total_work_frame",
             R"({"state":"total_work_frame","frame_names":["NULL","table"]})", "-; 0")
        .wiping(),
};

// Only these names touch the local picture.
bool touches(const std::string& name, const std::string& kind) {
    return matches(name, "(Get_Current|(Unwaited_)?(Change|Delete))_(Tool|Work)_Frame") &&
           name.find(kind) != std::string::npos;
}

class Frames : public testing::TestWithParam<CommandCase> {};
TEST_P(Frames, OnTheWire) {
    g_tool_pose.position.x = g_work_pose.position.x = 7;
    run(GetParam());
    EXPECT_EQ(g_tool_pose.position.x != 7, touches(GetParam().name, "Tool"));
    EXPECT_EQ(g_work_pose.position.x != 7, touches(GetParam().name, "Work"));
}
INSTANTIATE_TEST_SUITE_P(, Frames, testing::ValuesIn(kFramesRows), [](const auto& row) { return row.param.name; });

ZK_WIRE_GUARDS(Frames, "frames.h", "Frames and payload", kFramesRows)

TEST(FramesGuards, QueriesByNameRefuseNullPointers) {
    static FrameRec frame;
    static Pose pose;
    static char name[12];
    expect_nothing_sent({{CALL(Get_Given_Tool_Frame, (s, nullptr, &frame))},
                         {CALL(Get_Given_Tool_Frame, (s, "grip", nullptr))},
                         {CALL(Get_Given_Work_Frame, (s, nullptr, &pose))},
                         {CALL(Get_Given_Work_Frame, (s, name, nullptr))}});
}

// A request has at most 299 bytes with its CRLF.
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

// ---------------------------------------------------------------------------------------------------------- Parsers --

TEST(FramesParsers, RefuseAFrameThatIsNotThere) {
    expect_parsed(parsing(Parser_Get_Given_Tool_Frame),
                  {{R"({"tool_name":"grip","get_state":false,"pose":[0,0,0,0,0,0]})", 1, ""},
                   {R"({"tool_name":"grip","pose":[1000000,0,0,0,0,0],"payload":0,"position":[0,0]})", 11,
                    "grip, 1 0 0, 0 0 0, 0"}});
    expect_parsed(parsing(Parser_Get_Given_Work_Frame),
                  {{R"({"get_state":false,"frame_name":"table","pose":[0,0,0,0,0,0]})", 1, ""},
                   {R"({"get_state":null,"pose":[1000000,0,0,0,0,1000]})", 0, "-; 1 0 0, 0 0 1"}});
}

// Ten bytes of name at most, the eleventh left alone.
TEST(FramesParsers, NamesAreCut) {
    FrameRec frame;
    std::memset(&frame, 'z', sizeof frame);
    const char* const reply = R"({"tool_name":"0123456789ab","pose":[0,0,0,0,0,0],"payload":0,"position":[0,0,0]})";
    EXPECT_EQ(Parser_Get_Current_Tool_Frame(reply, &frame), 0);
    EXPECT_EQ(std::string(frame.frame_name, 12), "0123456789zz");
}

TEST(FramesParsers, ReadTheNamesUpToNullOrTheEndOfTheRecord) {
    expect_parsed(parsing(Parser_Get_All_Tool_Frame),
                  {{R"({"tool_names":["a","null","NULLx","NULL","b"]})", 0, "a null NULLx; 3"},
                   {R"({"tool_names":[]})", 0, "-; 0"},
                   {R"({"tool_names":["1","2","3","4","5","6","7","8","9","10","11","12","13"]})", 0,
                    "1 2 3 4 5 6 7 8 9 10 11; 11"}});
}

// ------------------------------------------------------------------------------------------------ The local picture --

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
    std::string frame;         // as the commands call it
    const char* reply;         // 0.5 0.25 0.125 metres, turned by 1.571 about z
    const char* broken_reply;  // all but its pose
};

const Kind kKinds[] = {
    {"Tool", Change_Tool_Frame, Delete_Tool_Frame, Get_Current_Tool_Frame, Get_Current_Tool_Frame_Block,
     Algo_Set_ToolFrame, Algo_Get_Curr_ToolFrame, &g_tool_pose, "tool_frame",
     R"({"state":"current_tool_frame","tool_name":"grip","pose":[500000,250000,125000,0,0,1571],"payload":1500,)"
     R"("position":[0,0,0]})",
     R"({"state":"current_tool_frame","tool_name":"grip"})"},
    {"Work", Change_Work_Frame, Delete_Work_Frame, Get_Current_Work_Frame, Get_Current_Work_Frame_Block,
     Algo_Set_WorkFrame, Algo_Get_Curr_WorkFrame, &g_work_pose, "work_frame",
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
        controller_.answer("get_current_" + kind_.frame, kind_.reply);
        let("change_", "true");
        let("delete_", "true");
    }

    void let(const std::string& act, const std::string& state) {
        const std::string key = act + kind_.frame;
        controller_.answer("set_" + key, R"({"command":"set_)" + key + R"(",")" + key + "\":" + state + "}");
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
    let("change_", "false");
    let("delete_", "7");
    EXPECT_EQ(kind_.change(arm_, "any", true), 1);
    EXPECT_EQ(kind_.remove(arm_, "any", true), 11);
    let("change_", "true");
    controller_.answer("get_current_" + kind_.frame, kind_.broken_reply);
    kind_.picture->position.x = 9;
    EXPECT_EQ(kind_.change(arm_, "any", true), 9) << "the question's failure is the change's";
    EXPECT_EQ(kind_.remove(arm_, "any", false), 9);
    EXPECT_EQ(kind_.in_use(arm_, &frame_), 9);
    EXPECT_EQ(position(*kind_.picture), "9 2 3");
    EXPECT_EQ(model(), "1 2 3");
}

// A good answer also sets the matrix; that of the tool has the Euler angles in the place of the position.
TEST(FrameMatrices, ChangeWithTheReplies) {
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

}  // namespace
