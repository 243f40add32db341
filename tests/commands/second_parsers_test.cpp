// The second family of parsers.
#include "zk/replies/second_parsers.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "support/parser_case.h"
#include "support/paths.h"
#include "support/pattern.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

// Every <name>_E is <name>, but for those tested below.
TEST(SecondParsers, AreTheirNamesakes) {
    const std::set<std::string> own = {"Parser_Get_Current_Tool_Frame_E",
                                       "Parser_Get_Given_Tool_Frame_E",
                                       "Parser_Get_Given_Work_Frame_E",
                                       "Parser_Get_Force_Data_E",
                                       "Parser_Get_Fz_E",
                                       "Parser_SendFile_E",
                                       "Parser_Get_Update_scale_E",
                                       "Parser_Get_Popup_E"};
    std::stringstream text;
    text << std::ifstream(std::string(kSourceFolder) + "/include/zk/replies/second_parsers.h").rdbuf();
    const std::string header = text.str();
    const std::vector<std::string> names = found_in(header, R"(ZK_API int (\w+)_E\()");
    for (const std::string& name : names) {
        void* const second = dlsym(RTLD_DEFAULT, (name + "_E").c_str());
        EXPECT_NE(second, nullptr) << name;
        EXPECT_EQ(second == dlsym(RTLD_DEFAULT, name.c_str()), own.count(name + "_E") == 0) << name;
    }
    EXPECT_GT(names.size(), own.size());
}

// Parsers of acknowledgements that no row runs: their replies reach no mailbox, or no command asks for them.
TEST(AcknowledgementParsers, WithoutARow) {
    struct AckParser {
        int (*parse)(const char* text);
        const char* key;
        int other = 11;
    };
    for (const auto& [parse, key, other] : {AckParser{Parser_Start_Calibrate, "calibrate_state", 8},
                                            {Parser_Set_System_State_Servo, "servo_state"},
                                            {Parser_Set_Gripper, "waypoint_state"},
                                            {Paser_Timer, "wait_time"},
                                            {Parser_Set_Car_Station, "navigation_state"},
                                            {Parser_Set_Net_State_E, "status"},
                                            {Parser_Set_Popup, "popup_result"},
                                            {Parser_Set_Sale_Version_E, "sale_version", 0},
                                            {Parser_Set_Lift_Version_E, "lift_version", 0},
                                            {Parser_init_force_drag_threshold, "init_state"}}) {
        const std::string start = std::string("{\"") + key + "\":";
        EXPECT_EQ(parse((start + "true}").c_str()), 0) << key;
        EXPECT_EQ(parse((start + "false}").c_str()), 1) << key;
        EXPECT_EQ(parse((start + "null}").c_str()), other) << key;
        EXPECT_EQ(parse("{}"), 9) << key;
    }
}

TEST(SecondParsers, Tools) {
    const std::string centre = R"(,"payload":1500,"position":[1000000,0,0]})";
    const std::string ten = R"({"tool_name":"0123456789","pose":)";
    for (const Parse& parse : {parsing(Parser_Get_Current_Tool_Frame_E), parsing(Parser_Get_Given_Tool_Frame_E)}) {
        std::string outputs;
        EXPECT_EQ(parse(-1, (ten + "[1000000,0,0,1000,0,0]" + centre).c_str(), outputs), 0);
        EXPECT_EQ(outputs.substr(0, 9), "012345678");
        EXPECT_NE(outputs[9], '9') << "nine bytes of the name";
        EXPECT_EQ(outputs.substr(10), ", 1 0 0, 1 0 0, 1500 1 0 0");
        EXPECT_EQ(parse(-1, (ten + "[1,2,3,4,5]" + centre).c_str(), outputs), 12);
        EXPECT_EQ(parse(-1, (ten + "7" + centre).c_str(), outputs), 11);
    }
}

TEST(SecondParsers, WorkFrame) {
    expect_parsed(parsing(Parser_Get_Given_Work_Frame_E),
                  {{R"({"frame_name":"w","pose":[1000000,0,0,1000,0,0]})", 0, "w; 1 0 0, 1 0 0"},
                   {R"({"pose":[1,2,3,4,5,6,7]})", 12, ""},
                   {R"({"pose":1})", 11, ""},
                   {R"({"get_state":false,"pose":[1,2,3,4,5,6]})", 1, ""}});
}

TEST(SecondParsers, Forces) {
    expect_parsed(parsing(Parser_Get_Force_Data_E), {{R"({"force_data":[1500,-2,3,4,5,6,7],"zero_force_data":[9]})", 0,
                                                      "1.5 -0.002 0.003 0.004 0.005 0.006"},
                                                     {R"({"force_data":[1500]})", 0, "1.5"},
                                                     {R"({"force_data":1500})", 11, ""},
                                                     {R"({"zero_force_data":[9]})", 9, ""}});
    expect_parsed(parsing(Parser_Get_Fz_E), {{R"({"set_state":false,"Fz":1500})", 0, "1.5"},
                                             {R"({"set_state":true,"Fz":1500})", 9, ""},
                                             {R"({"Fz":1500})", 9, ""},
                                             {R"({"set_state":false})", 9, ""}});
}

TEST(SecondParsers, Progress) {
    for (const auto& [parse, key] :
         {std::pair{parsing(Parser_Get_Update_scale_E), "scale"}, {parsing(Parser_Get_Popup_E), "content"}}) {
        expect_parsed(parse, {{std::string("{\"") + key + "\":40}", 0, "40"}, {"{}", 0, ""}, {"{", 9, ""}});
    }
}

TEST(SecondParsers, SendFile) {
    EXPECT_EQ(Parser_SendFile_E(R"({"command":"download_project","project_state":true})"), 0);
    EXPECT_EQ(Parser_SendFile_E("not true at all"), 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Parser_SendFile_E(R"({"state":false})"), 16);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Parser_SendFile: {\"state\":false}\r\n");
    EXPECT_EQ(Parser_SendFile_E(nullptr), 16);
}

}  // namespace
