// By which literal a message is known: the first of this order that stands anywhere in it.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "zk/dispatch.h"

namespace {

struct Row {
    std::array<const char*, 4> literals;
    int code;
};

// clang-format off
constexpr Row kRows[] = {
    {{"add_global_waypoint"}, 265},
    {{"update_global_waypoint"}, 266},
    {{"delete_global_waypoint"}, 267},
    {{"given_global_waypoint"}, 268},
    {{"get_global_waypoints_list"}, 269},
    {{"point"}, 231},
    {{"set_joint_drive_max_speed", "set_joint_max_drive_speed"}, 218},
    {{"get_joint_drive_max_speed"}, 222},
    {{"set_joint_drive_max_acc", "set_joint_max_drive_acc"}, 219},
    {{"get_joint_drive_max_acc"}, 223},
    {{"set_joint_drive_max_pos"}, 221},
    {{"get_joint_drive_max_pos"}, 203},
    {{"set_joint_drive_min_pos"}, 220},
    {{"get_joint_drive_min_pos"}, 202},
    {{"set_joint_max_speed"}, 2},
    {{"expand_get_version"}, 217},
    {{"expand_set_version"}, 216},
    {{"get_realtime_push"}, 230},
    {{"expand_state"}, 224},
    {{"expand_config"}, 225},
    {{"expand_get_config"}, 226},
    {{"joint_max_speed"}, 1},
    {{"joint_zero_pos"}, 7},
    {{"set_joint_max_acc"}, 3},
    {{"set_joint_min_pos"}, 4},
    {{"set_joint_max_pos"}, 5},
    {{"set_joint_en_state"}, 6},
    {{"set_joint_clear_err"}, 8},
    {{"start_calibrate"}, 9},
    {{"stop_calibrate"}, 10},
    {{"calibrate_state"}, 11},
    {{"joint_max_acc"}, 12},
    {{"joint_min_pos"}, 13},
    {{"joint_max_pos"}, 14},
    {{"joint_en_state"}, 15},
    {{"joint_err_flag"}, 16},
    {{"joint_software_version"}, 17},
    {{"set_arm_max_line_speed"}, 19},
    {{"set_arm_max_line_acc"}, 20},
    {{"set_arm_max_angular_speed"}, 21},
    {{"set_arm_max_angular_acc"}, 22},
    {{"arm_max_line_speed"}, 23},
    {{"arm_max_line_acc"}, 24},
    {{"arm_max_angular_speed"}, 25},
    {{"arm_max_angular_acc"}, 26},
    {{"set_arm_init"}, 27},
    {{"get_collision_stage"}, 29},
    {{"set_DH_data"}, 30},
    {{"DH_data"}, 31},
    {{"set_joint_zero_offset"}, 32},
    {{"set_arm_dynamic_parm"}, 33},
    {{"tool_software_version"}, 34},
    {{"set_arm_servo"}, 35},
    {{"set_system_state_servo"}, 36},
    {{"set_auto_tool_frame"}, 37},
    {{"generate_auto_tool_frame"}, 38},
    {{"set_manual_tool_frame"}, 39},
    {{"set_change_tool_frame"}, 40},
    {{"set_delete_tool_frame"}, 41},
    {{"set_payload"}, 42},
    {{"set_none_payload"}, 43},
    {{"current_tool_frame"}, 44},
    {{"given_tool_frame", "get_tool_frame"}, 45},
    {{"total_tool_frame"}, 46},
    {{"set_auto_work_frame"}, 47},
    {{"set_manual_work_frame"}, 48},
    {{"set_change_work_frame"}, 49},
    {{"set_delete_work_frame"}, 50},
    {{"current_work_frame"}, 51},
    {{"given_work_frame", "get_work_frame"}, 52},
    {{"total_work_frame"}, 53},
    {{"current_arm_state"}, 54},
    {{"current_joint_current"}, 56},
    {{"current_joint_voltage"}, 57},
    {{"joint_degree"}, 58},
    {{"arm_all_state"}, 59},
    {{"arm_plan_num"}, 60},
    {{"set_init_pose"}, 61},
    {{"init_pose"}, 62},
    {{"set_install_pose"}, 63},
    {{"current_trajectory_state"}, 64},
    {{"joint_state"}, 65},
    {{"pose_state"}, 66},
    {{"set_arm_stop"}, 67},
    {{"set_arm_slow_stop"}, 232},
    {{"set_arm_pause"}, 68},
    {{"set_delete_current_trajectory"}, 70},
    {{"set_arm_delete_trajectory"}, 71},
    {{"arm_current_trajectory"}, 72},
    {{"movej", "movel", "movec", "moves"}, 189},
    {{"add_waypoint"}, 73},
    {{"start_waypoint"}, 74},
    {{"clear_waypoint"}, 75},
    {{"timer"}, 77},
    {{"set_joint_teach"}, 78},
    {{"set_pos_teach"}, 79},
    {{"set_ort_teach"}, 80},
    {{"set_stop_teach"}, 81},
    {{"set_joint_step"}, 82},
    {{"set_pos_step"}, 83},
    {{"set_ort_step"}, 84},
    {{"controller_state"}, 85},
    {{"set_arm_power"}, 86},
    {{"arm_power_state"}, 87},
    {{"clear_system_err"}, 88},
    {{"arm_hardware_version"}, 89},
    {{"arm_software_version"}, 90},
    {{"get_log_file"}, 91},
    {{"get_system_runtime"}, 92},
    {{"clear_system_runtime"}, 93},
    {{"get_joint_odom"}, 94},
    {{"clear_joint_odom"}, 95},
    {{"set_high_speed_eth"}, 96},
    {{"set_tool_DO_state"}, 106},
    {{"set_DO_state"}, 97},
    {{"set_AO_state"}, 98},
    {{"DO_state"}, 100},
    {{"DI_state"}, 101},
    {{"AO_state"}, 102},
    {{"AI_state"}, 103},
    {{"IO_input"}, 99},
    {{"IO_output"}, 104},
    {{"set_tool_IO_mode"}, 107},
    {{"tool_IO_state"}, 108},
    {{"Start_Force_Position_Move"}, 160},
    {{"Stop_Force_Position_Move"}, 162},
    {{"set_tool_voltage"}, 109},
    {{"tool_voltage"}, 110},
    {{"set_gripper_route"}, 111},
    {{"set_gripper"}, 112},
    {{"start_drag_teach"}, 113},
    {{"stop_drag_teach"}, 114},
    {{"set_drag_teach_sensitivity"}, 272},
    {{"get_drag_teach_sensitivity"}, 273},
    {{"run_drag_trajectory"}, 115},
    {{"pause_drag_trajectory"}, 116},
    {{"continue_drag_trajectory"}, 117},
    {{"stop_drag_trajectory"}, 118},
    {{"drag_trajectory_origin"}, 119},
    {{"start_multi_drag_teach"}, 120},
    {{"set_force_position"}, 121},
    {{"stop_force_position"}, 122},
    {{"get_force_data"}, 123},
    {{"clear_force_data"}, 124},
    {{"stop_set_force_sensor"}, 126},
    {{"set_force_sensor"}, 125},
    {{"set_hand_posture"}, 127},
    {{"set_hand_seq"}, 128},
    {{"set_hand_angle"}, 129},
    {{"set_hand_speed"}, 130},
    {{"set_PWM"}, 132},
    {{"get_Fz"}, 133},
    {{"clear_Fz"}, 134},
    {{"auto_set_Fz"}, 135},
    {{"manual_set_Fz"}, 136},
    {{"close_modbus_mode"}, 138},
    {{"read_coils"}, 139},
    {{"read_multiple_coils"}, 215},
    {{"input_status"}, 140},
    {{"multiple_holding_registers"}, 211},
    {{"multiple_input_registers"}, 270},
    {{"holding_registers"}, 141},
    {{"input_registers"}, 142},
    {{"write_single_coil"}, 143},
    {{"write_coils"}, 144},
    {{"write_single_register"}, 145},
    {{"write_registers"}, 146},
    {{"set_vehicle"}, 147},
    {{"set_lift_speed"}, 149},
    {{"set_lift_height"}, 150},
    {{"set_lift"}, 148},
    {{"lift_state"}, 151},
    {{"set_car_move"}, 152},
    {{"set_car_speed"}, 153},
    {{"set_car_navigation_speed"}, 154},
    {{"set_car_navigation_mode"}, 155},
    {{"get_car_state"}, 156},
    {{"set_car_charge"}, 157},
    {{"set_car_station_num"}, 158},
    {{"set_collision_state"}, 28},
    {{"current_joint_temperature"}, 55},
    {{"set_arm_continue"}, 69},
    {{"set_hand_force"}, 131},
    {{"hand_follow_angle"}, 274},
    {{"hand_follow_pos"}, 275},
    {{"set_modbus_mode"}, 137},
    {{"set_modbustcp_mode"}, 252},
    {{"Force_Position_State"}, 161},
    {{"set_teach_frame"}, 165},
    {{"get_teach_frame"}, 241},
    {{"download_project"}, 164},
    {{"run_project"}, 163},
    {{"install_pose"}, 167},
    {{"auto_set_joint_limit"}, 206},
    {{"IO_state"}, 105},
    {{"set_arm_run_mode"}, 181},
    {{"get_arm_run_mode"}, 182},
    {{"run_update_software"}, 183},
    {{"online_next"}, 184},
    {{"set_lift_version"}, 185},
    {{"set_sale_version"}, 192},
    {{"get_tool_hardware_version"}, 193},
    {{"save_trajectory"}, 194},
    {{"popup"}, 197},
    {{"get_program_trajectory_list"}, 235},
    {{"get_program_run_state"}, 236},
    {{"set_program_id_start"}, 237},
    {{"program_run_finish"}, 240},
    {{"delete_program_trajectory"}, 239},
    {{"set_high_ethernet"}, 198},
    {{"get_high_ethernet"}, 199},
    {{"save_device_info_all"}, 200},
    {{"set_NetIP"}, 201},
    {{"get_wired_net"}, 208},
    {{"get_wifi_net"}, 209},
    {{"get_controller_RS485_mode"}, 233},
    {{"get_tool_RS485_mode"}, 234},
    {{"set_net_default"}, 210},
    {{"set_IO_mode"}, 212},
    {{"set_voltage"}, 213},
    {{"voltage_state"}, 214},
    {{"set_realtime_push"}, 229},
    {{"set_electronic_fence_enable"}, 242},
    {{"get_electronic_fence_enable"}, 243},
    {{"set_electronic_fence_config"}, 244},
    {{"get_electronic_fence_config"}, 245},
    {{"add_electronic_fence_config"}, 246},
    {{"update_electronic_fence_config"}, 247},
    {{"delete_electronic_fence_config"}, 248},
    {{"get_electronic_fence_list_names"}, 249},
    {{"given_electronic_fence_config"}, 250},
    {{"get_electronic_fence_list_infos"}, 251},
    {{"close_modbustcp_mode"}, 253},
    {{"set_self_collision_enable"}, 254},
    {{"get_self_collision_enable"}, 255},
    {{"get_gripper_state"}, 204},
    {{"auto_fix_joint_over_soft_limit"}, 205},
    {{"arm_software_info"}, 207},
    {{"plan_speed"}, 196},
    {{"set_force_drag_threshold"}, 186},
    {{"get_force_drag_threshold"}, 187},
    {{"init_force_drag_threshold"}, 188},
    {{"set_tool_envelope"}, 190},
    {{"velope"}, 191},
    {{"set_virtual_wall_config"}, 256},
    {{"get_virtual_wall_config"}, 257},
    {{"set_virtual_wall_enable"}, 258},
    {{"get_virtual_wall_enable"}, 259},
    {{"update_work_frame"}, 260},
    {{"update_tool_frame"}, 261},
    {{"set_default_run_program"}, 263},
    {{"get_default_run_program"}, 264},
    {{"update_program_trajectory"}, 262},
};
// clang-format on

constexpr int kCount = std::size(kRows);

int code_of(const std::string& literal) { return Get_Json_KeyCode(("{\"command\":\"" + literal + "\"}").c_str()); }

// The row that decides for a literal on its own.
int deciding_row(const std::string& literal) {
    for (int i = 0; i < kCount; ++i) {
        for (const char* candidate : kRows[i].literals) {
            if (candidate && literal.find(candidate) != literal.npos) return i;
        }
    }
    return -1;
}

TEST(Classification, HasItsRows) { EXPECT_EQ(kCount, 253); }

TEST(Classification, EveryLiteralHasItsCode) {
    for (const Row& row : kRows) {
        for (const char* literal : row.literals) {
            if (!literal) continue;
            int code = row.code;
            // These contain an earlier literal and are never reached.
            for (const char* dead : {"add_waypoint", "start_waypoint", "clear_waypoint"}) {
                if (std::strcmp(literal, dead) == 0) code = 231;
            }
            if (std::strcmp(literal, "set_lift_version") == 0) code = 148;
            EXPECT_EQ(code_of(literal), code) << literal;
        }
    }
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

}  // namespace
