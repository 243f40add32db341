// Safety geometry: every command on the wire, its guards, its parsers.
#include "zk/replies/safety_geometry.h"

#include <gtest/gtest.h>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

FenceConfig fence(int32_t form, const char* name = "") {
    FenceConfig fence{};
    fence.form = form;
    std::memcpy(fence.form_name, name, strnlen(name, sizeof fence.form_name));
    return fence;
}

// A record with lengths of every form; 0.0019 and -0.0019 are truncated.
FenceConfig filled(int32_t form, const char* name = "desk") {
    FenceConfig all = fence(form, name);
    float* lengths = &all.x_min_limit;
    for (int i = 0; i < 19; ++i) lengths[i] = static_cast<float>(i + 1) / 8;
    all.x_min_limit = all.x1 = all.radius = -0.0019f;
    return all;
}
const std::string kCuboid =
    R"("x_min_limit": -1, "x_max_limit": 250, "y_min_limit": 375, "y_max_limit": 500, "z_min_limit": 625, )"
    R"("z_max_limit": 750)";
const std::string kPlane =
    R"("x1": -1, "y1": 1000, "z1": 1125, "x2": 1250, "y2": 1375, "z2": 1500, "x3": 1625, "y3": 1750, "z3": 1875)";
const std::string kSphere = R"("radius": -1, "x": 2125, "y": 2250, "z": 2375)";

ToolEnvelope envelope(int32_t count) {
    return {"grip", {{"a", 0.05f, 0.0019f, -0.0019f, 1}, {"b", 1, 2, 3, 4}, {"c", 1, 1, 1, 1}, {}, {}}, count};
}

#define ONE(kind, command, arguments, wire, key) \
    acknowledged(kind CALL(command, arguments), command##_Cmd, wire, key).adding()
// The query of a record by its name.
template <class Record>
Call asking_for(const char* name, int (*form)(ArmSocket, const char*, Record*)) {
    return [=](ArmSocket s, std::string& outputs) { return with_outputs<Record>(outputs, form, s, name); };
}
#define NAMED(command, name, mailbox, wire, reply, outputs, ...)                                       \
    answered(#command, asking_for(name, command), mailbox, wire, reply, outputs).wiping() __VA_ARGS__, \
        answered(#command "_Block", asking_for(name, command##_Block), mailbox, wire, reply, outputs)  \
            .wiping() __VA_ARGS__

const char* const kEnableReply =
    R"({"state":"get_electronic_fence_enable","enable_state":true,"effective_region":2,"in_out_side":1})";
const char* const kWallEnableReply =
    R"({"state":"get_virtual_wall_enable","enable_state":false,"effective_region":-2,"in_out_side":0})";
const char* const kConfigReply =
    R"({"state":"get_electronic_fence_config","form":1,"x_min_limit":-1500,"x_max_limit":1,"y_min_limit":0,)"
    R"("y_max_limit":2000,"z_min_limit":0,"z_max_limit":0})";
const char* const kWallReply = R"({"state":"get_virtual_wall_config","form":3,"radius":500,"x":1,"y":2,"z":3})";
const char* const kGivenReply =
    R"({"state":"given_electronic_fence_config","form":3,"form_name":"desk","radius":500,"x":1,"y":2,"z":3})";
const char* const kNamesReply =
    R"({"state":"get_electronic_fence_list_names","name_list":["desk","hall_and_more","NULL","x"]})";
const char* const kInfosReply =
    R"({"state":"get_electronic_fence_list_infos","info_list":[{"form_name":"desk","form":3,"radius":500,"x":1,)"
    R"("y":2,"z":3},{"form_name":"other","form":4}]})";
const char* const kInfosOutputs = "3 'desk' 15:0.5 16:0.001 17:0.002 18:0.003 4 'other'; 2";
const char* const kEnvelopeReply =
    R"({"state":"get_tool_envelope","get_state":true,"tool_name":"grip","list":[{"name":"tip","radius":50,"x":1,)"
    R"("y":-2,"z":1000}]})";

const std::vector<CommandCase> kSafetyGeometryRows = {
    WAITING_WITH(
            .adding(), Set_Electronic_Fence_Enable, Set_Electronic_Fence_Enable_Cmd,
            R"({"command": "set_electronic_fence_enable", "set_enable": true, "in_out_side": -1, "effective_region": 2})",
            "set_state", 255, -1, 2),
    QUERY(Get_Electronic_Fence_Enable, Get_Electronic_Fence_Enable_Cmd, "get_electronic_fence_enable", kEnableReply,
          "1; 1; 2", .wiping()),
    WAITING_WITH(.adding(), Set_Electronic_Fence_Config, Set_Electronic_Fence_Config_Cmd,
                 R"({"command": "set_electronic_fence_config", "form": 1, )" + kCuboid + "}", "set_config", filled(1)),
    ONE("Of_A_Plane_", Set_Electronic_Fence_Config, (s, filled(2)),
        R"({"command": "set_electronic_fence_config", "form": 2, )" + kPlane + "}", "set_config"),
    ONE("Of_No_Form_", Set_Electronic_Fence_Config, (s, filled(4)),
        R"({"command": "set_electronic_fence_config", "form": 4})", "set_config"),
    QUERY(Get_Electronic_Fence_Config, Get_Electronic_Fence_Config_Cmd, "get_electronic_fence_config", kConfigReply,
          "1 '' 0:-1.5 1:0.001 3:2", .wiping()),
    WAITING_WITH(.adding(), Add_Electronic_Fence_Config, Add_Electronic_Fence_Config_Cmd,
                 R"({"command": "add_electronic_fence_config", "form": 2, "form_name": "desk", )" + kPlane + "}",
                 "add_config", filled(2)),
    WAITING_WITH(.adding(), Update_Electronic_Fence_Config, Update_Electronic_Fence_Config_Cmd,
                 R"({"command": "update_electronic_fence_config", "form": 3, "form_name": "twelve bytes", )" + kSphere +
                     "}",
                 "update_config", filled(3, "twelve bytes")),
    WAITING_WITH(.adding(), Delete_Electronic_Fence_Config, Delete_Electronic_Fence_Config_Cmd,
                 R"({"command": "delete_electronic_fence_config", "form_name": "desk"})", "delete_config", "desk"),
    NAMED(Given_Electronic_Fence_Config, "desk", Given_Electronic_Fence_Config_Cmd,
          R"({"command": "given_electronic_fence_config", "form_name": "desk"})", kGivenReply,
          "3 'desk' 15:0.5 16:0.001 17:0.002 18:0.003"),
    QUERY(Get_Electronic_Fence_List_Names, Get_Electronic_Fence_List_Name_Cmd, "get_electronic_fence_list_names",
          kNamesReply, "desk hall_and_m; 2", .wiping()),
    QUERY(Get_Electronic_Fence_List_Info, Get_Electronic_Fence_List_Info_Cmd, "get_electronic_fence_list_infos",
          kInfosReply, kInfosOutputs, .wiping()),

    WAITING_WITH(
            .adding(), Set_Virtual_Wall_Enable, Set_Virtual_Wall_Enable_Cmd,
            R"({"command": "set_virtual_wall_enable", "set_enable": false, "in_out_side": 1, "effective_region": 2})",
            "set_state", 0, 1, 2),
    QUERY(Get_Virtual_Wall_Enable, Get_Virtual_Wall_Enable_Cmd, "get_virtual_wall_enable", kWallEnableReply,
          "0; 0; -2"),
    WAITING_WITH(.adding(), Set_Virtual_Wall_Config, Set_Virtual_Wall_Config_Cmd,
                 R"({"command": "set_virtual_wall_config", "form": 3, )" + kSphere + "}", "set_config", filled(3)),
    ONE("Of_A_Cuboid_", Set_Virtual_Wall_Config, (s, filled(1)),
        R"({"command": "set_virtual_wall_config", "form": 1, )" + kCuboid + "}", "set_config"),
    ONE("Of_A_Plane_", Set_Virtual_Wall_Config, (s, filled(2)), R"({"command": "set_virtual_wall_config", "form": 2})",
        "set_config"),
    QUERY(Get_Virtual_Wall_Config, Get_Virtual_Wall_Config_Cmd, "get_virtual_wall_config", kWallReply, "3 ''",
          .reads({{0, 0}, {{"/form", {}}}})),

    WAITING_WITH(.adding(), Set_Self_Collision_Enable, Set_Self_Collision_Enable_Cmd,
                 R"({"command": "set_self_collision_enable", "set_enable": true})", "set_state", 2),
    QUERY(Get_Self_Collision_Enable, Get_Self_Collision_Enable_Cmd, "get_self_collision_enable",
          R"({"state":"get_self_collision_enable","enable_state":-7})", "1"),

    // Objects in an array are printed on lines of their own.
    WAITING_WITH(
            .adding(), Set_Tool_Envelope, Set_Tool_Envelope_Cmd,
            "{\n\t\"command\":\t\"set_tool_envelope\",\n\t\"tool_name\":\t\"grip\",\n\t\"list\":\t[{\n"
            "\t\t\t\"name\":\t\"a\",\n\t\t\t\"radius\":\t50,\n\t\t\t\"x\":\t1,\n\t\t\t\"y\":\t-1,\n\t\t\t\"z\":\t1000\n"
            "\t\t}, {\n\t\t\t\"name\":\t\"b\",\n\t\t\t\"radius\":\t1000,\n\t\t\t\"x\":\t2000,\n\t\t\t\"y\":\t3000,\n"
            "\t\t\t\"z\":\t4000\n\t\t}]\n}",
            "set_state", envelope(2)),
    ONE("Empty_", Set_Tool_Envelope, (s, envelope(-1)),
        R"({"command": "set_tool_envelope", "tool_name": "grip", "list": []})", "set_state"),
    NAMED(Get_Tool_Envelope, "grip", Get_Tool_Envelope_Cmd, R"({"command": "get_tool_envelope", "tool_name": "grip"})",
          kEnvelopeReply, "grip 1, tip 0.05 0.001 -0.002 1",
          .with_the_status_of_another().reads({{}, {{"/get_state", {0, 0}}}})),
};

ZK_WIRE_TESTS(SafetyGeometry, "safety_geometry.h", "Safety geometry", kSafetyGeometryRows)

TEST(SafetyGeometryGuards, MoreThanFiveSpheresSendNothing) {
    expect_nothing_sent({{CALL(Set_Tool_Envelope, (s, envelope(6)))}});
}

TEST(SafetyGeometryGuards, NullPointersAreDropped) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    for (const CommandCase& row : kSafetyGeometryRows) controller.answer(command_name(row.wire), row.reply);
    EXPECT_EQ(Get_Electronic_Fence_Enable(arm, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(Get_Electronic_Fence_Config(arm, nullptr), 0);
    EXPECT_EQ(Given_Electronic_Fence_Config(arm, nullptr, nullptr), 0);
    EXPECT_EQ(Get_Electronic_Fence_List_Names(arm, nullptr, nullptr), 0);
    EXPECT_EQ(Get_Electronic_Fence_List_Info(arm, nullptr, nullptr), 0);
    EXPECT_EQ(Get_Self_Collision_Enable(arm, nullptr), 0);
    EXPECT_EQ(Get_Tool_Envelope(arm, nullptr, nullptr), 0);
}

// The query reads its status after it has zeroed the record of the first connection.
TEST(SafetyGeometryGuards, ARefusedEnvelopeReturnsZeroOnTheFirstConnectionOnly) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket first = connect_arm(controller), second = connect_arm(controller);
    controller.answer("get_tool_envelope", R"({"state":"get_tool_envelope","get_state":false})");
    ToolEnvelope outputs{};
    EXPECT_EQ(Get_Tool_Envelope(first, "grip", &outputs), 0);
    EXPECT_STREQ(outputs.tool_name, "");
    EXPECT_EQ(Get_Tool_Envelope(second, "grip", &outputs), 1);
}

// Five spheres with names of one letter fit the frame of 500 bytes; longer ones end the process.
TEST(SafetyGeometryGuards, AnEnvelopeThatIsTooLongEndsTheProcess) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 60000);
    const ArmSocket arm = connect_arm(controller);
    controller.answer("set_tool_envelope", R"({"command":"set_tool_envelope","set_state":true})");
    ToolEnvelope five{"grip", {}, 5};
    for (ToolSphere& sphere : five.spheres) sphere = {"s", 0.05f, 0.1f, -0.1f, 0.2f};
    EXPECT_EQ(Set_Tool_Envelope(arm, five), 0);
    EXPECT_GT(controller.next_request().size(), 400u);
    for (ToolSphere& sphere : five.spheres) sphere = {"eleven char", 0.05f, 0.1f, -0.1f, 0.2f};
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(Set_Tool_Envelope(arm, five), "set_tool_envelope.*frame holds 499");
}

// ---------------------------------------------------------------------------------------------------------- Parsers --

TEST(SafetyGeometryParsers, ReadTheLengthsOfEveryForm) {
    expect_parsed(parsing(Parser_Get_Electronic_Fence_Config),
                  {{R"({"form":2,"x1":1})", 0, "2 ''"}, {R"({"form":3,"radius":1,"x":1,"y":1,"z":1})", 0, "3 ''"}});
    expect_parsed(parsing(Parser_Given_Electronic_Fence_Config),
                  {{R"({"form":1,"form_name":"a","x_min_limit":1,"x_max_limit":2,"y_min_limit":3,"y_max_limit":4,)"
                    R"("z_min_limit":5,"z_max_limit":-6.9})",
                    0, "1 'a' 0:0.001 1:0.002 2:0.003 3:0.004 4:0.005 5:-0.006"},
                   {R"({"form":2,"form_name":"a","x1":1,"y1":2,"z1":3,"x2":4,"y2":5,"z2":6,"x3":7,"y3":8,"z3":9})", 0,
                    "2 'a' 6:0.001 7:0.002 8:0.003 9:0.004 10:0.005 11:0.006 12:0.007 13:0.008 14:0.009"},
                   {R"({"form":9,"form_name":"thirteen byte"})", 0, "9 'thirteen byt'"},
                   {R"({"form":2,"form_name":"a","x1":1})", 9, "2 'a' 6:0.001"},
                   {R"({"given_state":false})", 1, ""},
                   {R"({"given_state":true,"form":9,"form_name":"a"})", 11, ""}});
}

TEST(SafetyGeometryParsers, StopAtTheEndOfTheirRecords) {
    expect_parsed(
        parsing(Parser_Get_Electronic_Fence_List_Names),
        {{R"({"name_list":["1","2","3","4","5","6","7","8","9","10","11","12"]})", 0, "1 2 3 4 5 6 7 8 9 10 11; 11"}});
    const std::string named = R"({"form":9,"form_name":"a"})", sphere = R"({"name":"a","radius":50,"x":1,"y":2,"z":3})";
    std::string twelve = named, eleven_read = "9 'a'", six = sphere, five_read = "grip 5";
    for (int i = 1; i < 12; ++i) twelve += "," + named;
    for (int i = 1; i < 11; ++i) eleven_read += " 9 'a'";
    for (int i = 1; i < 6; ++i) six += "," + sphere;
    for (int i = 0; i < 5; ++i) five_read += ", a 0.05 0.001 0.002 0.003";
    expect_parsed(
        parsing(Parser_Get_Electronic_Fence_List_Info),
        {{R"({"info_list":[)" + twelve + "]}", 0, eleven_read + "; 11"},
         {R"({"info_list":[]})", 0, "-; 0"},
         {R"({"info_list":[)" + named + R"(,{"form":3,"form_name":"b"},)" + named + "]}", 9, "9 'a' 3 'b'; 1"}});
    expect_parsed(parsing(Parser_Get_Tool_Envelope),
                  {{R"({"tool_name":"grip","list":[)" + six + "]}", 0, five_read},
                   {R"({"tool_name":"twelve bytes","list":[{"name":"twelve bytes","radius":0,"x":0,"y":0,"z":0}]})", 0,
                    "twelve byte 1, twelve byte 0 0 0 0"},
                   {R"({"tool_name":"grip","list":[{"name":"a","radius":50,"x":1,"y":2}]})", 11, "grip 1, a 0 0 0 0"},
                   {R"({"get_state":false,"tool_name":"grip","list":[]})", 1, ""}});
}

}  // namespace
