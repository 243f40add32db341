// Every parser of an acknowledgement.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "support/paths.h"

namespace {

using Parser = int (*)(const char*);

struct Row {
    const char* parser;
    const char* key;
    int other;  // for a value that is neither true nor false
    int refused = 1;
};

// clang-format off
constexpr Row kRows[] = {
    {"Parser_Joint_Zero_Pos", "joint_zero_pos", 8}, {"Parser_Joint_Speed", "joint_max_speed", 8},
    {"Parser_Joint_Acc", "joint_max_acc", 8}, {"Parser_Joint_Min_Pos", "joint_min_pos", 8},
    {"Parser_Joint_Max_Pos", "joint_max_pos", 8}, {"Parser_Joint_EN_State", "joint_en_state", 8},
    {"Parser_Joint_Err_Clear", "joint_clear_err", 8}, {"Parser_Start_Calibrate", "calibrate_state", 8},
    {"Parser_Arm_Line_Speed", "arm_line_speed", 8}, {"Parser_Arm_Line_Acc", "arm_line_acc", 8},
    {"Parser_Arm_Angular_Speed", "arm_angular_speed", 8}, {"Parser_Arm_Angular_Acc", "arm_angular_acc", 8},
    {"Parser_Arm_Tip_Init", "arm_init", 11}, {"Parser_Set_Collision_Stage", "collision_state", 11},
    {"Parser_Set_DH_Data", "set_state", 11}, {"Parser_Arm_Servo_State", "arm_servo", 11},
    {"Parser_Auto_Set_Tool_Frame", "auto_tool_frame", 11}, {"Parser_Set_System_State_Servo", "servo_state", 11},
    {"Parser_Manual_Set_Tool_Frame", "manual_tool_frame", 11}, {"Parser_Change_Tool_Frame", "change_tool_frame", 11},
    {"Parser_Delete_Tool_Frame", "delete_tool_frame", 11}, {"Parser_Auto_Set_Work_Frame", "auto_work_frame", 11},
    {"Parser_Manual_Set_Work_Frame", "manual_work_frame", 11}, {"Parser_Delete_Work_Frame", "delete_work_frame", 11},
    {"Parser_Change_Work_Frame", "change_work_frame", 11}, {"Parser_Set_Arm_Init_Pose", "init_pose", 11},
    {"Parser_Move_Slow_Stop", "arm_slow_stop", 11}, {"Parser_Move_Stop", "arm_stop", 11},
    {"Parser_Move_Pause", "arm_pause", 11}, {"Parser_Move_Continue", "arm_continue", 11},
    {"Parser_Clear_Current_Trajectory", "delete_current_trajectory", 11},
    {"Parser_Clear_All_Trajectory", "arm_delete_trajectory", 11}, {"Parser_Set_Gripper", "waypoint_state", 11},
    {"Paser_Timer", "wait_time", 11}, {"Parser_Joint_Teach", "joint_teach", 11}, {"Parser_Pos_Teach", "pos_teach", 11},
    {"Parser_Ort_Teach", "ort_teach", 11}, {"Parser_Teach_Stop", "stop_teach", 11},
    {"Parser_Set_Arm_Power", "arm_power", 11}, {"Parser_Clear_System_Err", "clear_state", 11},
    {"Parser_Set_Config", "set_config", 11}, {"Parser_Update_State", "update_state", 11},
    {"Parser_Add_State", "add_state", 11}, {"Parser_Set_Joint_Limit", "limit_mode", 11},
    {"Parser_Set_Online_Start", "state", 11}, {"Parser_Drag_Teach", "drag_teach", 11},
    {"Parser_Run_Drag_Trajectory", "run_state", 11}, {"Parser_Pause_Drag_Trajectory", "pause_state", 11},
    {"Parser_Continue_Drag_Trajectory", "continue_state", 11}, {"Parser_Stop_Drag_Trajectory", "stop_state", 11},
    {"Parser_Write_single_coil", "write_state", 11}, {"Parser_Expand_Set_Version", "expand_version", 11},
    {"Parser_Expand_Config", "config_state", 11}, {"Parser_Set_Car_Station", "navigation_state", 11},
    {"Parser_Set_Plan_Speed", "plan_state", 11}, {"Parser_Set_Popup", "popup_result", 11},
    {"Parser_Set_Program_ID_Start", "start_state", 11}, {"Parser_Delete_State", "delete_state", 11},
    {"Parser_Save_Device_Info_All", "model", 11}, {"Parser_Set_NetIP", "status", 11},
    {"Parser_Set_Net_State_E", "status", 11}, {"Parser_Set_Net_Default_Cmd", "net_default_state", 11},
    {"Parser_init_force_drag_threshold", "init_state", 11}, {"Parser_Add_Electronic_Fence_Config", "add_config", 11},
    {"Parser_Update_Electronic_Fence_Config", "update_config", 11},
    {"Parser_delete_Electronic_Fence_Config", "delete_config", 11},
    {"Parser_Set_Joint_Drive_Max_Speed", "joint_max_speed", 11},
    {"Parser_Set_Joint_Drive_Max_Acc", "joint_max_acc", 11}, {"Parser_Set_Joint_Drive_Max_Pos", "joint_max_pos", 11},
    {"Parser_Set_Joint_Drive_Min_Pos", "joint_min_pos", 11}, {"Parser_RunProject", "project_state", 11, 16},
    {"Parser_Run_UpdateSoftware_E", "update_state", 11, 16}, {"Parser_Set_Joint_Zero_Offset", "set_state", 11},
    {"Parser_Set_Hand", "set_state", 11}, {"Parser_Set_High_Speed_Eth", "set_state", 11},
    {"Parser_Set_DO_State", "set_state", 11}, {"Parser_Set_Tool_DO_State", "set_state", 11},
    {"Parser_Set_Tool_DO_State_2", "set_state", 11}, {"Parser_Set_Force_Sensor", "set_state", 11},
    {"Parser_Set_IO_Mode", "set_state", 11}, {"Parser_Set_Electronic_Fence_Enable", "set_state", 11},
    {"Parser_Set_Modbustcp_Mode", "set_state", 11}, {"Parser_Close_Modbustcp_Mode", "set_state", 11},
    {"Parser_Set_Self_Collision_Enable", "set_state", 11}, {"Parser_Set_Tool_Voltage", "state", 11},
    {"Parser_Set_Gripper_Route", "state", 11}, {"Parser_Set_High_Ethernet", "state", 11},
    {"Parser_Set_Voltage", "state", 11}, {"Parser_Set_Realtime_Push", "state", 11},
    {"Parser_Set_AO_State", "state", 11}, {"Parser_Clear_Force_Data", "clear_state", 11},
    {"Parser_Stop_Force_Sensor", "stop_state", 11}, {"Parser_Write_Multiple_Coils", "write_state", 11},
    {"Parser_Set_Electronic_Fence_Config", "set_config", 11}, {"Parser_Set_TEACH_FRAME", "set_state", 8},
};
// clang-format on

// Parsers of one text that are no plain acknowledgements; they are tested with their commands.
const std::set<std::string> kOfTheirOwn = {"Parser_Add_Waypoint",       "Parser_Set_Arm_Run_Mode_NC_E",
                                           "Parser_SendFile",           "Parser_SendFile_E",
                                           "Parser_Set_Lift_Version_E", "Parser_Set_Sale_Version_E"};

// Every parser that the public headers declare with a text as its only argument.
std::set<std::string> declared_parsers() {
    std::set<std::string> names;
    const std::regex declaration(R"(ZK_API int (Pars?er_\w+|Paser_\w+)\(\s*const char\*\s*text\);)");
    for (const auto& file :
         std::filesystem::recursive_directory_iterator(std::string(zk::test::kSourceFolder) + "/include/zk")) {
        std::ostringstream text;
        text << std::ifstream(file.path()).rdbuf();
        const std::string header = text.str();
        for (std::sregex_iterator match(header.begin(), header.end(), declaration), end; match != end; ++match) {
            names.insert((*match)[1]);
        }
    }
    return names;
}

// The row of a parser; a name with the ending _E stands for the parser without it unless it has a row of its own.
const Row* row_of(const std::string& name) {
    for (const Row& row : kRows) {
        if (name == row.parser) return &row;
    }
    return name.ends_with("_E") ? row_of(name.substr(0, name.size() - 2)) : nullptr;
}

TEST(Acknowledgements, EveryDeclaredParserKeepsToItsRow) {
    const std::set<std::string> names = declared_parsers();
    EXPECT_GE(names.size(), 80u);
    for (const std::string& name : names) {
        if (kOfTheirOwn.count(name)) continue;
        const Row* const row = row_of(name);
        if (!row) {
            ADD_FAILURE() << name << " is in no row";
            continue;
        }
        const Parser parse = reinterpret_cast<Parser>(dlsym(RTLD_DEFAULT, name.c_str()));
        ASSERT_NE(parse, nullptr) << name;
        const std::string key = std::string("{\"command\":\"x\",\"") + row->key + "\":";
        EXPECT_EQ(parse((key + "true}").c_str()), 0) << name;
        EXPECT_EQ(parse((key + "false}").c_str()), row->refused) << name;
        EXPECT_EQ(parse((key + "1}").c_str()), row->other) << name;
    }
}

TEST(Acknowledgements, NoRowIsLeftOver) {
    const std::set<std::string> names = declared_parsers();
    for (const Row& row : kRows) EXPECT_TRUE(names.count(row.parser)) << row.parser;
}

}  // namespace
