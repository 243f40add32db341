// The route of a message: the first literal of the table that it contains decides its code, and its result reaches the
// mailbox of its own slot and no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "zk/dispatch.h"
#include "zk/realtime.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/attached_axes.h"
#include "zk/replies/drag_teach.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/force_control.h"
#include "zk/replies/frames.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/io.h"
#include "zk/replies/joint_configuration.h"
#include "zk/replies/modbus.h"
#include "zk/replies/motion.h"
#include "zk/replies/programs.h"
#include "zk/replies/safety_geometry.h"
#include "zk/replies/system.h"
#include "zk/replies/trajectory.h"

namespace {

// What a message does to the count of its mailbox: set it to 1, or raise it by 1. No mailbox waits for dropped
// messages; the tests of the commands check the routes elsewhere.
enum Rule { kElsewhere, kDropped, kSet, kAdd };

// A table of records of any kind: count and result stand first in each.
struct Table {
    constexpr Table() = default;
    template <class Record>
    constexpr Table(Record (&table)[ZK_SLOTS]) : records(table), size(sizeof(Record)) {}

    int32_t* record(int slot) const {
        return reinterpret_cast<int32_t*>(static_cast<char*>(records) + static_cast<size_t>(slot) * size);
    }

    void* records = nullptr;
    size_t size = 0;
};

struct Row {
    std::array<const char*, 4> literals;
    int code;
    Rule rule = kElsewhere;
    Table table = {};
};

// clang-format off
const Row kRows[] = {
    {{"add_global_waypoint"}, 265, kAdd, Add_Global_Waypoint_Cmd},
    {{"update_global_waypoint"}, 266, kAdd, Update_Global_Waypoint_Cmd},
    {{"delete_global_waypoint"}, 267, kAdd, Delete_Global_Waypoint_Cmd},
    {{"given_global_waypoint"}, 268, kAdd, Given_Global_Waypoint_Cmd},
    {{"get_global_waypoints_list"}, 269, kAdd, Get_Global_Waypoint_List_Cmd}, {{"point"}, 231},
    {{"set_joint_drive_max_speed", "set_joint_max_drive_speed"}, 218, kAdd, Set_Joint_Drive_Max_Speed_Cmd},
    {{"get_joint_drive_max_speed"}, 222, kAdd, Get_Joint_Drive_Max_Speed_Cmd},
    {{"set_joint_drive_max_acc", "set_joint_max_drive_acc"}, 219, kAdd, Set_Joint_Drive_Max_Acc_Cmd},
    {{"get_joint_drive_max_acc"}, 223, kAdd, Get_Joint_Drive_Max_Acc_Cmd},
    {{"set_joint_drive_max_pos"}, 221, kAdd, Set_Joint_Drive_Max_Pos_Cmd},
    {{"get_joint_drive_max_pos"}, 203, kAdd, Get_Joint_Drive_Max_Pos_Cmd},
    {{"set_joint_drive_min_pos"}, 220, kAdd, Set_Joint_Drive_Min_Pos_Cmd},
    {{"get_joint_drive_min_pos"}, 202, kAdd, Get_Joint_Drive_Min_Pos_Cmd},
    {{"set_joint_max_speed"}, 2, kSet, Set_Joint_Max_Speed_Cmd}, {{"expand_get_version"}, 217},
    {{"expand_set_version"}, 216, kSet, Expand_Set_Version_Cmd},
    {{"get_realtime_push"}, 230, kAdd, Get_Realtime_Push_Cmd}, {{"expand_state"}, 224},
    {{"expand_config"}, 225, kSet, Expand_Config_Cmd}, {{"expand_get_config"}, 226},
    {{"joint_max_speed"}, 1, kAdd, Joint_Max_Speed_Cmd}, {{"joint_zero_pos"}, 7, kSet, Set_Joint_Zero_Cmd},
    {{"set_joint_max_acc"}, 3, kSet, Set_Joint_Max_Acc_Cmd}, {{"set_joint_min_pos"}, 4, kSet, Set_Joint_Min_Pos_Cmd},
    {{"set_joint_max_pos"}, 5, kSet, Set_Joint_Max_Pos_Cmd}, {{"set_joint_en_state"}, 6, kSet, Set_Joint_En_State_Cmd},
    {{"set_joint_clear_err"}, 8, kSet, Set_Joint_Clear_Err_Cmd}, {{"start_calibrate"}, 9, kDropped},
    {{"stop_calibrate"}, 10, kDropped}, {{"calibrate_state"}, 11, kDropped},
    {{"joint_max_acc"}, 12, kAdd, Get_Joint_Max_Acc_Cmd}, {{"joint_min_pos"}, 13, kAdd, Get_Joint_Min_Pos_Cmd},
    {{"joint_max_pos"}, 14, kAdd, Get_Joint_Max_Pos_Cmd}, {{"joint_en_state"}, 15, kAdd, Get_Joint_En_State_Cmd},
    {{"joint_err_flag"}, 16, kAdd, Get_Joint_Err_Flag_Cmd},
    {{"joint_software_version"}, 17, kAdd, Get_Joint_Software_Version_Cmd},
    {{"set_arm_max_line_speed"}, 19, kSet, Set_Arm_Max_Line_Speed_Cmd},
    {{"set_arm_max_line_acc"}, 20, kSet, Set_Arm_Max_Line_Acc_Cmd},
    {{"set_arm_max_angular_speed"}, 21, kSet, Set_Arm_Max_Angular_Speed_Cmd},
    {{"set_arm_max_angular_acc"}, 22, kSet, Set_Arm_Max_Angular_Acc_Cmd},
    {{"arm_max_line_speed"}, 23, kAdd, Get_Arm_Max_Line_Speed_Cmd},
    {{"arm_max_line_acc"}, 24, kAdd, Get_Arm_Max_Line_Acc_Cmd},
    {{"arm_max_angular_speed"}, 25, kAdd, Get_Arm_Max_Angular_Speed_Cmd},
    {{"arm_max_angular_acc"}, 26, kAdd, Get_Arm_Max_Angular_Acc_Cmd},
    {{"set_arm_init"}, 27, kSet, Set_Arm_Tip_Init_Cmd}, {{"get_collision_stage"}, 29, kAdd, Get_Collision_Stage_Cmd},
    {{"set_DH_data"}, 30, kSet, Set_DH_Data_Cmd}, {{"DH_data"}, 31, kAdd, Get_DH_Data_Cmd},
    {{"set_joint_zero_offset"}, 32, kSet, Set_Joint_Zero_OffSet_Cmd},
    {{"set_arm_dynamic_parm"}, 33, kSet, Set_ARM_Dynamic_Parm_Cmd},
    {{"tool_software_version"}, 34, kAdd, Get_Tool_SoftWare_Version_Cmd},
    {{"set_arm_servo"}, 35, kSet, Set_Arm_Servo_State_Cmd}, {{"set_system_state_servo"}, 36, kDropped},
    {{"set_auto_tool_frame"}, 37, kSet, Auto_Set_Tool_Frame_Cmd},
    {{"generate_auto_tool_frame"}, 38, kSet, Auto_Set_Tool_Frame_Cmd},
    {{"set_manual_tool_frame"}, 39, kSet, Manual_Set_Tool_Frame_Cmd},
    {{"set_change_tool_frame"}, 40, kSet, Change_Tool_Frame_Cmd},
    {{"set_delete_tool_frame"}, 41, kSet, Delete_Tool_Frame_Cmd}, {{"set_payload"}, 42, kSet, Set_Payload_Cmd},
    {{"set_none_payload"}, 43, kSet, Set_None_Payload_Cmd}, {{"current_tool_frame"}, 44},
    {{"given_tool_frame", "get_tool_frame"}, 45, kAdd, Given_Tool_Cmd},
    {{"total_tool_frame"}, 46, kAdd, Get_All_Tool_Frame_Cmd},
    {{"set_auto_work_frame"}, 47, kSet, Auto_Set_Work_Frame_Cmd},
    {{"set_manual_work_frame"}, 48, kSet, Manual_Set_Work_Frame_Cmd},
    {{"set_change_work_frame"}, 49, kSet, Change_Work_Frame_Cmd},
    {{"set_delete_work_frame"}, 50, kSet, Delete_Work_Frame_Cmd}, {{"current_work_frame"}, 51},
    {{"given_work_frame", "get_work_frame"}, 52, kAdd, Given_Work_Frame_Cmd},
    {{"total_work_frame"}, 53, kAdd, Get_All_Work_Frame_Cmd}, {{"current_arm_state"}, 54, kAdd, Arm_Current_State_Cmd},
    {{"current_joint_current"}, 56, kAdd, Get_Joint_Current_Cmd},
    {{"current_joint_voltage"}, 57, kAdd, Get_Joint_Voltage_Cmd}, {{"joint_degree"}, 58, kAdd, Get_Joint_Degree_Cmd},
    {{"arm_all_state"}, 59, kAdd, Get_Joint_All_State_Cmd}, {{"arm_plan_num"}, 60, kAdd, Get_Arm_Plan_Num_Cmd},
    {{"set_init_pose"}, 61, kSet, Set_Arm_Init_Pose_Cmd}, {{"init_pose"}, 62, kAdd, Get_Arm_Init_Pose_Cmd},
    {{"set_install_pose"}, 63, kSet, Set_Install_Pose_Cmd}, {{"current_trajectory_state"}, 64}, {{"joint_state"}, 65},
    {{"pose_state"}, 66}, {{"set_arm_stop"}, 67, kSet, Set_Arm_Stop_Cmd},
    {{"set_arm_slow_stop"}, 232, kSet, Set_Arm_Slow_Stop_Cmd}, {{"set_arm_pause"}, 68, kSet, Set_Arm_Pause_Cmd},
    {{"set_delete_current_trajectory"}, 70, kSet, Clear_Current_Trajectory_Cmd},
    {{"set_arm_delete_trajectory"}, 71, kSet, Clear_All_Trajectory_Cmd},
    {{"arm_current_trajectory"}, 72, kSet, Get_Arm_Current_Trajectory_Cmd}, {{"movej", "movel", "movec", "moves"}, 189},
    {{"add_waypoint"}, 73, kDropped}, {{"start_waypoint"}, 74}, {{"clear_waypoint"}, 75}, {{"timer"}, 77, kDropped},
    {{"set_joint_teach"}, 78, kSet, Joint_Teach_Cmd_Cmd}, {{"set_pos_teach"}, 79, kSet, Pos_Teach_Cmd_Cmd},
    {{"set_ort_teach"}, 80, kSet, Ort_Teach_Cmd_Cmd}, {{"set_stop_teach"}, 81, kSet, Teach_Stop_Cmd_Cmd},
    {{"set_joint_step"}, 82, kDropped}, {{"set_pos_step"}, 83, kDropped}, {{"set_ort_step"}, 84, kDropped},
    {{"controller_state"}, 85, kSet, Get_Controller_State_Cmd}, {{"set_arm_power"}, 86, kSet, Set_Arm_Power_Cmd},
    {{"arm_power_state"}, 87, kAdd, Get_Arm_Power_State_Cmd}, {{"clear_system_err"}, 88, kSet, Clear_System_Err_Cmd},
    {{"arm_hardware_version"}, 89, kDropped}, {{"arm_software_version"}, 90, kAdd, Get_Arm_Software_Version_Cmd},
    {{"get_log_file"}, 91, kDropped}, {{"get_system_runtime"}, 92, kAdd, Get_System_Runtime_Cmd},
    {{"clear_system_runtime"}, 93, kSet, Clear_System_Runtime_Cmd}, {{"get_joint_odom"}, 94, kAdd, Get_Joint_Odom_Cmd},
    {{"clear_joint_odom"}, 95, kSet, Clear_Joint_Odom_Cmd}, {{"set_high_speed_eth"}, 96, kSet, Set_High_Speed_Eth_Cmd},
    {{"set_tool_DO_state"}, 106, kSet, Set_Tool_DO_State_Cmd}, {{"set_DO_state"}, 97, kSet, Set_DO_State_Cmd},
    {{"set_AO_state"}, 98, kSet, Set_AO_State_Cmd}, {{"DO_state"}, 100}, {{"DI_state"}, 101}, {{"AO_state"}, 102},
    {{"AI_state"}, 103}, {{"IO_input"}, 99}, {{"IO_output"}, 104},
    {{"set_tool_IO_mode"}, 107, kSet, Set_Tool_IO_Mode_Cmd}, {{"tool_IO_state"}, 108},
    {{"Start_Force_Position_Move"}, 160, kSet, Start_Force_Position_Move_Cmd},
    {{"Stop_Force_Position_Move"}, 162, kSet, Stop_Force_Position_Move_Cmd},
    {{"set_tool_voltage"}, 109, kSet, Set_Tool_Voltage_Cmd}, {{"tool_voltage"}, 110},
    {{"set_gripper_route"}, 111, kSet, Set_Gripper_Route_Cmd}, {{"set_gripper"}, 112, kSet, Set_Gripper_Release_Cmd},
    {{"start_drag_teach"}, 113, kSet, Start_Drag_Teach_Cmd}, {{"stop_drag_teach"}, 114, kSet, Stop_Drag_Teach_Cmd},
    {{"set_drag_teach_sensitivity"}, 272, kSet, Set_Drag_Teach_Sensitivity_Cmd}, {{"get_drag_teach_sensitivity"}, 273},
    {{"run_drag_trajectory"}, 115, kSet, Run_Drag_Trajectory_Cmd},
    {{"pause_drag_trajectory"}, 116, kSet, Pause_Drag_Trajectory_Cmd},
    {{"continue_drag_trajectory"}, 117, kSet, Continue_Drag_Trajectory_Cmd},
    {{"stop_drag_trajectory"}, 118, kSet, Stop_Drag_Trajectory_Cmd}, {{"drag_trajectory_origin"}, 119},
    {{"start_multi_drag_teach"}, 120, kSet, Start_Multi_Drag_Teach_Cmd},
    {{"set_force_position"}, 121, kSet, Set_Force_Postion_Cmd},
    {{"stop_force_position"}, 122, kSet, Stop_Force_Postion_Cmd}, {{"get_force_data"}, 123},
    {{"clear_force_data"}, 124, kSet, Clear_Force_Data_Cmd},
    {{"stop_set_force_sensor"}, 126, kSet, Stop_Set_Force_Sensor_Cmd}, {{"set_force_sensor"}, 125},
    {{"set_hand_posture"}, 127, kSet, Set_Hand_Posture_Cmd}, {{"set_hand_seq"}, 128, kSet, Set_Hand_Seq_Cmd},
    {{"set_hand_angle"}, 129, kSet, Set_Hand_Angle_Cmd}, {{"set_hand_speed"}, 130, kSet, Set_Hand_Speed_Cmd},
    {{"set_PWM"}, 132, kDropped}, {{"get_Fz"}, 133}, {{"clear_Fz"}, 134, kSet, Clear_Fz_Cmd}, {{"auto_set_Fz"}, 135},
    {{"manual_set_Fz"}, 136}, {{"close_modbus_mode"}, 138, kSet, Stop_Modbus_Mode_Cmd}, {{"read_coils"}, 139},
    {{"read_multiple_coils"}, 215}, {{"input_status"}, 140}, {{"multiple_holding_registers"}, 211},
    {{"multiple_input_registers"}, 270}, {{"holding_registers"}, 141}, {{"input_registers"}, 142},
    {{"write_single_coil"}, 143, kSet, Write_Single_Coil_Cmd}, {{"write_coils"}, 144, kSet, Write_Coils_Cmd},
    {{"write_single_register"}, 145, kSet, Write_Single_Registers_Cmd},
    {{"write_registers"}, 146, kSet, Write_Registers_Cmd}, {{"set_vehicle"}, 147, kDropped},
    {{"set_lift_speed"}, 149, kDropped}, {{"set_lift_height"}, 150, kDropped}, {{"set_lift"}, 148, kDropped},
    {{"lift_state"}, 151}, {{"set_car_move"}, 152, kDropped}, {{"set_car_speed"}, 153, kDropped},
    {{"set_car_navigation_speed"}, 154, kDropped}, {{"set_car_navigation_mode"}, 155, kDropped},
    {{"get_car_state"}, 156, kDropped}, {{"set_car_charge"}, 157, kDropped}, {{"set_car_station_num"}, 158, kDropped},
    {{"set_collision_state"}, 28, kSet, Set_Collision_Stage_Cmd},
    {{"current_joint_temperature"}, 55, kAdd, Get_Joint_Temperature_Cmd},
    {{"set_arm_continue"}, 69, kSet, Set_Arm_Continue_Cmd}, {{"set_hand_force"}, 131, kSet, Set_Hand_Force_Cmd},
    {{"hand_follow_angle"}, 274, kSet, Set_Hand_Follow_Angle_Cmd},
    {{"hand_follow_pos"}, 275, kSet, Set_Hand_Follow_Pos_Cmd}, {{"set_modbus_mode"}, 137, kSet, Set_Modbus_Mode_Cmd},
    {{"set_modbustcp_mode"}, 252, kAdd, Set_Modbustcp_Mode_Cmd}, {{"Force_Position_State"}, 161},
    {{"set_teach_frame"}, 165, kSet, Set_Teach_Frame_Cmd}, {{"get_teach_frame"}, 241, kSet, Get_Teach_Frame_Cmd},
    {{"download_project"}, 164, kSet, Send_Project_Cmd}, {{"run_project"}, 163, kSet, Run_Project_Cmd},
    {{"install_pose"}, 167}, {{"auto_set_joint_limit"}, 206, kSet, Auto_Set_Joint_Limit_Cmd}, {{"IO_state"}, 105},
    {{"set_arm_run_mode"}, 181, kSet, Set_Arm_Run_Mode_NC_Cmd},
    {{"get_arm_run_mode"}, 182, kAdd, Get_Arm_Run_Mode_NC_Cmd},
    {{"run_update_software"}, 183, kSet, Run_Update_Software_Project_Cmd},
    {{"online_next"}, 184, kSet, Set_Online_Start_Cmd}, {{"set_lift_version"}, 185, kDropped},
    {{"set_sale_version"}, 192, kSet, Set_Sale_Version_Cmd},
    {{"get_tool_hardware_version"}, 193, kAdd, Get_Tool_Hardware_Version_Cmd},
    {{"save_trajectory"}, 194, kSet, Save_Trajectory_Cmd}, {{"popup"}, 197, kSet, Set_Popup_Cmd},
    {{"get_program_trajectory_list"}, 235, kSet, Get_Program_Trajectory_List_Cmd},
    {{"get_program_run_state"}, 236, kSet, Get_Program_Run_State_Cmd},
    {{"set_program_id_start"}, 237, kSet, Set_Program_ID_Start_Cmd},
    {{"program_run_finish"}, 240, kSet, Run_Finish_Cmd},
    {{"delete_program_trajectory"}, 239, kSet, Delete_Program_Trajectory_Cmd},
    {{"set_high_ethernet"}, 198, kSet, Set_High_Ethernet_Cmd},
    {{"get_high_ethernet"}, 199, kAdd, Get_High_Ethernet_Cmd},
    {{"save_device_info_all"}, 200, kSet, Save_Device_Info_All_Cmd}, {{"set_NetIP"}, 201, kSet, Set_NetIP_Cmd},
    {{"get_wired_net"}, 208, kAdd, Get_Wired_Net_Cmd}, {{"get_wifi_net"}, 209, kAdd, Get_Wifi_Net_Cmd},
    {{"get_controller_RS485_mode"}, 233, kAdd, Get_Controller_RS485_Cmd},
    {{"get_tool_RS485_mode"}, 234, kAdd, Get_Tool_RS485_Cmd}, {{"set_net_default"}, 210, kSet, Set_Net_Default_Cmd},
    {{"set_IO_mode"}, 212, kSet, Set_IO_Mode_Cmd}, {{"set_voltage"}, 213, kSet, Set_Voltage_Cmd},
    {{"voltage_state"}, 214}, {{"set_realtime_push"}, 229, kAdd, Set_Realtime_Push_Cmd},
    {{"set_electronic_fence_enable"}, 242, kAdd, Set_Electronic_Fence_Enable_Cmd},
    {{"get_electronic_fence_enable"}, 243},
    {{"set_electronic_fence_config"}, 244, kAdd, Set_Electronic_Fence_Config_Cmd},
    {{"get_electronic_fence_config"}, 245},
    {{"add_electronic_fence_config"}, 246, kAdd, Add_Electronic_Fence_Config_Cmd},
    {{"update_electronic_fence_config"}, 247, kAdd, Update_Electronic_Fence_Config_Cmd},
    {{"delete_electronic_fence_config"}, 248, kAdd, Delete_Electronic_Fence_Config_Cmd},
    {{"get_electronic_fence_list_names"}, 249}, {{"given_electronic_fence_config"}, 250},
    {{"get_electronic_fence_list_infos"}, 251}, {{"close_modbustcp_mode"}, 253, kAdd, Close_Modbustcp_Mode_Cmd},
    {{"set_self_collision_enable"}, 254, kAdd, Set_Self_Collision_Enable_Cmd}, {{"get_self_collision_enable"}, 255},
    {{"get_gripper_state"}, 204}, {{"auto_fix_joint_over_soft_limit"}, 205, kAdd, Auto_Fix_Joint_Over_Soft_Limit_Cmd},
    {{"arm_software_info"}, 207, kAdd, Get_Arm_Software_Info_Cmd}, {{"plan_speed"}, 196, kSet, Set_Plan_Speed_Cmd},
    {{"set_force_drag_threshold"}, 186, kAdd, Set_Force_Drag_Threshold_Cmd}, {{"get_force_drag_threshold"}, 187},
    {{"init_force_drag_threshold"}, 188, kAdd, Init_Force_Drag_Threshold_Cmd},
    {{"set_tool_envelope"}, 190, kAdd, Set_Tool_Envelope_Cmd}, {{"velope"}, 191},
    {{"set_virtual_wall_config"}, 256, kAdd, Set_Virtual_Wall_Config_Cmd}, {{"get_virtual_wall_config"}, 257},
    {{"set_virtual_wall_enable"}, 258, kAdd, Set_Virtual_Wall_Enable_Cmd}, {{"get_virtual_wall_enable"}, 259},
    {{"update_work_frame"}, 260, kAdd, Update_Work_Frame_Cmd},
    {{"update_tool_frame"}, 261, kAdd, Update_Tool_Frame_Cmd},
    {{"set_default_run_program"}, 263, kAdd, Set_Default_Run_Program_Cmd},
    {{"get_default_run_program"}, 264, kAdd, Get_Default_Run_Program_Cmd},
    {{"update_program_trajectory"}, 262, kAdd, Update_Program_Trajectory_Cmd},
};
// clang-format on

constexpr int kCount = std::size(kRows);
constexpr int kSlot = 3;

// Calls `visit(literal, row)` for every literal.
template <class Visit>
void for_each_literal(Visit visit) {
    for (const Row& row : kRows) {
        for (const char* literal : row.literals) {
            if (literal) visit(std::string(literal), row);
        }
    }
}

// The row that decides for a literal on its own.
int deciding_row(const std::string& literal) {
    const auto is_found = [&](const char* candidate) { return candidate && literal.find(candidate) != literal.npos; };
    const auto decides = [&](const Row& row) {
        return std::any_of(row.literals.begin(), row.literals.end(), is_found);
    };
    return static_cast<int>(std::find_if(std::begin(kRows), std::end(kRows), decides) - std::begin(kRows));
}

TEST(Classification, EveryLiteralHasItsCode) {
    EXPECT_EQ(kCount, 253);
    for_each_literal([](const std::string& literal, const Row& row) {
        int code = row.code;
        // These contain an earlier literal and are never reached.
        for (const char* dead : {"add_waypoint", "start_waypoint", "clear_waypoint"}) {
            if (literal == dead) code = 231;
        }
        if (literal == "set_lift_version") code = 148;
        EXPECT_EQ(Get_Json_KeyCode(("{\"command\":\"" + literal + "\"}").c_str()), code) << literal;
    });
}

TEST(Classification, OfTwoLiteralsTheEarlierInTheOrderDecidesAndNotTheFirstInTheText) {
    for (const Row& a : kRows) {
        for (const Row& b : kRows) {
            const std::string first = a.literals[0], second = b.literals[0];
            const int row = std::min(deciding_row(first), deciding_row(second));
            ASSERT_EQ(Get_Json_KeyCode((first + " " + second).c_str()), kRows[row].code) << first << " " << second;
        }
    }
}

TEST(Classification, LiteralsAreFoundInKeysValuesAndNames) {
    struct Case {
        const char* message;
        int code;
    };
    for (const Case& row :
         {Case{"", 0}, Case{"{}", 0}, Case{"{\"state\":\"nothing\"}", 0}, Case{"movej", 189},
          Case{"{\"command\":\"set_change_tool_frame\",\"tool_name\":\"point_2\"}", 231},
          Case{"{\"waypoint_state\":true}", 231}, Case{"{\"state\":\"current_tool_frame\",\"total_tool_frame\":1}", 44},
          Case{"{\"total_tool_frame\":1,\"state\":\"current_tool_frame\"}", 44},
          Case{"{\"state\":\"get_program_run_state\",\"plan_speed\":50}", 236}, Case{"{\"command\":\"movej_p\"}", 189},
          Case{"{\"get_tool_envelope\":1}", 191}, Case{"start_force_position_move", 0},
          Case{"Start_Force_Position_Move", 160}, Case{"JOINT_STATE", 0}, Case{"update_program_trajectory", 262}}) {
        EXPECT_EQ(Get_Json_KeyCode(row.message), row.code) << row.message;
    }
    EXPECT_EQ(Get_Json_KeyCode(nullptr), 0);
}

std::vector<std::string> everything() {
    std::vector<std::string> bytes;
    for (const Row& row : kRows) bytes.emplace_back(static_cast<char*>(row.table.records), row.table.size * ZK_SLOTS);
    return bytes;
}

void dispatch(std::string message) { EXPECT_EQ(handle_Recv_Json(kSlot, message.data()), 0); }

// All tables but one record of one table hold what they held.
void expect_no_other_change(const std::vector<std::string>& before, const Table& table, const std::string& literal) {
    const std::vector<std::string> after = everything();
    for (size_t i = 0; i < after.size(); ++i) {
        std::string was = before[i], is = after[i];
        if (kRows[i].table.records == table.records) {
            was.erase(kSlot * table.size, table.size);
            is.erase(kSlot * table.size, table.size);
        }
        EXPECT_TRUE(was == is) << literal << " reached the mailbox of " << kRows[i].literals[0];
    }
}

class Routes : public testing::Test {
 protected:
    void SetUp() override {
        for (int i = 0; i < 5; ++i) Init_Socket_Joint(65, 1000 + i);
    }
};

TEST_F(Routes, AMessageThatDoesNotParseGoesToItsMailboxWithNine) {
    for_each_literal([](const std::string& literal, const Row& row) {
        if (row.rule < kSet) return;
        int32_t* const record = row.table.record(kSlot);
        record[0] = 5;
        const std::vector<std::string> before = everything();
        dispatch("{\"state\":\"" + literal + "\",");
        EXPECT_EQ(record[0], row.rule == kAdd ? 6 : 1) << literal;
        EXPECT_EQ(record[1], 9) << literal;
        expect_no_other_change(before, row.table, literal);
    });
}

TEST_F(Routes, MessagesThatNobodyWaitsForAreDropped) {
    const std::vector<std::string> before = everything();
    dispatch("{\"command\":\"nothing\",\"set_state\":true}");
    for_each_literal([](const std::string& literal, const Row& row) {
        if (row.rule == kDropped) dispatch("{\"command\":\"" + literal + "\",\"set_state\":true}");
    });
    EXPECT_TRUE(before == everything());
}

TEST_F(Routes, AnImpossibleSlotIsIgnored) {
    const std::vector<std::string> before = everything();
    char message[] = "{\"command\":\"set_arm_stop\",\"arm_stop\":true}";
    for (const int slot : {-1, 20, 2147483647}) EXPECT_EQ(handle_Recv_Json(slot, message), 0);
    EXPECT_EQ(handle_Recv_Json(0, nullptr), 0);
    EXPECT_TRUE(before == everything());
}

}  // namespace
