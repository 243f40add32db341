// The second family of parsers. Those of acknowledgements are tested with their namesakes.
#include "zk/replies/second_parsers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "support/parser_case.h"
#include "support/paths.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/drag_teach.h"
#include "zk/replies/frames.h"
#include "zk/replies/io.h"
#include "zk/replies/joint_configuration.h"
#include "zk/replies/motion.h"
#include "zk/replies/system.h"
#include "zk/replies/trajectory.h"

namespace {

using namespace zk::test;

struct Twins {
    std::string name;
    Parse first, second;
    std::string good;
};
#define TWINS(parser, good) \
    { #parser "_E", parsing(parser), parsing(parser##_E), good }

const Twins kTwins[] = {
    TWINS(Parser_Get_Joint_Speed, R"({"joint_speed":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Joint_Acc, R"({"joint_acc":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Min_Pos, R"({"min_pos":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Max_Pos, R"({"max_pos":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Joint_EN_State, R"({"en_state":[1,0,1,0,1,0]})"),
    TWINS(Parser_Get_Joint_Err_Flag, R"({"err_flag":[1,0,1,0,1,0],"brake_state":[0,1,0,1,0,1]})"),
    TWINS(Parser_Get_Joint_Software_Version, R"({"version":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Arm_Line_Speed, R"({"arm_line_speed":1})"),
    TWINS(Parser_Get_Arm_Line_Acc, R"({"arm_line_acc":1})"),
    TWINS(Parser_Get_Arm_Angular_Speed, R"({"arm_angular_speed":1})"),
    TWINS(Parser_Get_Arm_Angular_Acc, R"({"arm_angular_acc":1})"),
    TWINS(Parser_Get_Collision_Stage, R"({"collision_stage":4})"),
    TWINS(Parser_Get_DH_Data, R"({"data":[10,20,30,40,50]})"),
    TWINS(Parser_Arm_State, R"({"arm_state":{"joint":[1,2,3,4,5,6],"pose":[1,2,3,4,5,6],"arm_err":1,"sys_err":2}})"),
    TWINS(Parser_Joint_Temperature, R"({"joint_temperature":[1,2,3,4,5,6]})"),
    TWINS(Parser_Joint_Current, R"({"joint_current":[1,2,3,4,5,6]})"),
    TWINS(Parser_Joint_Voltage, R"({"joint_voltage":[1,2,3,4,5,6]})"),
    TWINS(Parser_Arm_All_State,
          R"({"all_state":{"temperature":[1,2,3,4,5,6],"voltage":[1,2,3,4,5,6],"current":[1,2,3,4,5,6],)"
          R"("en_flag":[1,1,1,1,1,1],"err_flag":[0,0,0,0,0,1],"sys_err":3}})"),
    TWINS(Parser_Get_Arm_Plan_Num, R"({"plan_num":5})"),
    TWINS(Parser_Get_Arm_Init_Pose, R"({"init_pose":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_All_Tool_Frame, R"({"tool_names":["a","b"]})"),
    TWINS(Parser_Get_Current_Work_Frame, R"({"frame_name":"w","pose":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_All_Work_Frame, R"({"frame_names":["a"]})"),
    TWINS(Parser_Plan_Feedback, R"({"trajectory_state":true,"device":1,"trajectory_connect":2})"),
    TWINS(Parser_Movej_CANFD, R"({"arm_err":0,"pose":[1,2,3,4,5,6],"joint":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Current_Trajectory, R"({"type":"movel","data":[1,2,3,4,5,6]})"),
    TWINS(Parser_Get_Arm_Power_State, R"({"power_state":1})"),
    TWINS(Parser_Controller_State, R"({"voltage":1,"current":2,"temperature":3,"err_flag":4})"),
    TWINS(Parser_Get_Arm_Software_Version,
          R"({"Plan_version":1,"Ctrl_version":2,"Real-time_Kernal1":3,"Real-time_Kernal2":4,"Product_version":"x"})"),
    TWINS(Parser_Get_Tool_Software_Version, R"({"version":1})"),
    TWINS(Parser_Get_System_Runtime, R"({"day":1,"hour":2,"min":3,"sec":4})"),
    TWINS(Parser_Get_Joint_Odom, R"({"odom":[1,2,3,4,5,6]})"),
    TWINS(Parser_Drag_Trajectory_Origin, R"({"trajectory_state":true,"device":1})"),
    TWINS(Parser_Get_DO_State, R"({"IO_state":1})"),
    TWINS(Parser_Get_DI_State, R"({"IO_state":1})"),
    TWINS(Parser_Get_AO_State, R"({"voltage":1500})"),
    TWINS(Parser_Get_AI_State, R"({"voltage":1500})"),
    TWINS(Parser_IO_Input, R"({"DI":[1,0,1,0],"AI":[1000,2,3,4]})"),
    TWINS(Parser_IO_Output, R"({"DO":[1,0,1,0],"AO":[1000,2,3,4]})"),
    TWINS(Parser_Get_IO_State, R"({"IO_state":1,"IO_Mode":2})"),
    TWINS(Parser_Get_Tool_IO_State, R"({"IO_Mode":[1,0],"IO_State":[0,1]})"),
    TWINS(Parser_Get_Tool_Voltage, R"({"voltage_type":3})"),
};

// Of each key's value a wrong type, and each array a size too small.
std::vector<std::string> variations(const std::string& good) {
    return {good,
            "",
            "{}",
            std::regex_replace(good, std::regex(R"(:\[[^,\]]*,?)"), ":["),
            std::regex_replace(good, std::regex(R"(:[^{][^,}]*\}$)"), ":null}"),
            std::regex_replace(good, std::regex(R"(^\{"[^"]*")"), "{\"other\"")};
}

TEST(SecondParsers, TakeTellAndReturnWhatTheirNamesakesDo) {
    for (const Twins& twins : kTwins) {
        for (const std::string& text : variations(twins.good)) {
            std::string told, expected;
            const int status = twins.first(-1, text.c_str(), expected);
            EXPECT_EQ(twins.second(-1, text.c_str(), told), status) << twins.name << " of " << text;
            EXPECT_EQ(told, expected) << twins.name << " of " << text;
            if (text != twins.good) continue;
            EXPECT_EQ(status, 0) << twins.name;
            EXPECT_NE(told, "") << twins.name;
        }
    }
}

TEST(SecondParsers, EveryOneThatStoresSomethingIsTested) {
    const std::set<std::string> own = {"Parser_Get_Current_Tool_Frame_E",
                                       "Parser_Get_Given_Tool_Frame_E",
                                       "Parser_Get_Given_Work_Frame_E",
                                       "Parser_Get_Force_Data_E",
                                       "Parser_Get_Fz_E",
                                       "Parser_Get_Update_scale_E",
                                       "Parser_Get_Popup_E"};
    std::stringstream text;
    text << std::ifstream(std::string(kSourceFolder) + "/include/zk/replies/second_parsers.h").rdbuf();
    const std::string header = text.str();
    const std::regex storing(R"(ZK_API int (\w+)\([^)]*text,)");
    size_t count = 0;
    for (std::sregex_iterator found(header.begin(), header.end(), storing), end; found != end; ++found, ++count) {
        const std::string name = (*found)[1];
        const auto is_named = [&](const Twins& twins) { return twins.name == name; };
        EXPECT_TRUE(own.count(name) || std::any_of(std::begin(kTwins), std::end(kTwins), is_named)) << name;
    }
    EXPECT_EQ(count, own.size() + std::size(kTwins));
}

TEST(SecondParsers, Tools) {
    const std::string centre = R"(,"payload":1500,"position":[1000000,0,0]})";
    const std::string ten = R"({"tool_name":"0123456789","pose":)";
    for (const Parse& parse : {parsing(Parser_Get_Current_Tool_Frame_E), parsing(Parser_Get_Given_Tool_Frame_E)}) {
        std::string told;
        EXPECT_EQ(parse(-1, (ten + "[1000000,0,0,1000,0,0]" + centre).c_str(), told), 0);
        EXPECT_EQ(told.substr(0, 9), "012345678");
        EXPECT_NE(told[9], '9') << "nine bytes of the name";
        EXPECT_EQ(told.substr(10), ", 1 0 0, 1 0 0, 1500 1 0 0");
        EXPECT_EQ(parse(-1, (ten + "[1,2,3,4,5]" + centre).c_str(), told), 12);
        EXPECT_EQ(parse(-1, (ten + "7" + centre).c_str(), told), 11);
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
