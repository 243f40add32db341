// What becomes of a message: its result lands in its own mailbox, of its own slot, and nowhere else.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "zk/arm_limits.h"
#include "zk/arm_state.h"
#include "zk/attached_axes.h"
#include "zk/dispatch.h"
#include "zk/drag_teach.h"
#include "zk/file_transfer.h"
#include "zk/force_control.h"
#include "zk/force_position.h"
#include "zk/frames.h"
#include "zk/gripper_and_hand.h"
#include "zk/io.h"
#include "zk/joint_configuration.h"
#include "zk/modbus.h"
#include "zk/programs.h"
#include "zk/realtime.h"
#include "zk/safety_geometry.h"
#include "zk/system.h"
#include "zk/teach.h"
#include "zk/trajectory.h"

namespace {

enum Rule { kSet, kAdd, kSetFirst, kAddFirst };

// A table of records of any kind: count and result stand first in each.
struct Table {
    template <class Record>
    constexpr Table(Record (&table)[ZK_SLOTS]) : records(table), size(sizeof(Record)) {}

    int32_t* record(int slot) const {
        return reinterpret_cast<int32_t*>(static_cast<char*>(records) + static_cast<size_t>(slot) * size);
    }

    void* records;
    size_t size;
};

// A literal, its mailbox, the rule of its count; for an acknowledgement its key and the status of a refusal.
struct Row {
    const char* literal;
    Table table;
    Rule rule;
    const char* key = nullptr;
    int refused = 1;
};

// clang-format off
const Row kRows[] = {
    {"joint_max_speed", Joint_Max_Speed_Cmd, kAdd},
    {"set_joint_max_speed", Set_Joint_Max_Speed_Cmd, kSet, "joint_max_speed"},
    {"set_joint_max_acc", Set_Joint_Max_Acc_Cmd, kSet, "joint_max_acc"},
    {"set_joint_min_pos", Set_Joint_Min_Pos_Cmd, kSetFirst, "joint_min_pos"},
    {"set_joint_max_pos", Set_Joint_Max_Pos_Cmd, kSet, "joint_max_pos"},
    {"set_joint_en_state", Set_Joint_En_State_Cmd, kSet, "joint_en_state"},
    {"joint_zero_pos", Set_Joint_Zero_Cmd, kSetFirst, "joint_zero_pos"},
    {"set_joint_clear_err", Set_Joint_Clear_Err_Cmd, kSet, "joint_clear_err"},
    {"joint_max_acc", Get_Joint_Max_Acc_Cmd, kAddFirst},
    {"joint_min_pos", Get_Joint_Min_Pos_Cmd, kAdd},
    {"joint_max_pos", Get_Joint_Max_Pos_Cmd, kAdd},
    {"joint_en_state", Get_Joint_En_State_Cmd, kAdd},
    {"joint_err_flag", Get_Joint_Err_Flag_Cmd, kAdd},
    {"joint_software_version", Get_Joint_Software_Version_Cmd, kAdd},
    {"set_arm_max_line_speed", Set_Arm_Max_Line_Speed_Cmd, kSet, "arm_line_speed"},
    {"set_arm_max_line_acc", Set_Arm_Max_Line_Acc_Cmd, kSet, "arm_line_acc"},
    {"set_arm_max_angular_speed", Set_Arm_Max_Angular_Speed_Cmd, kSet, "arm_angular_speed"},
    {"set_arm_max_angular_acc", Set_Arm_Max_Angular_Acc_Cmd, kSet, "arm_angular_acc"},
    {"arm_max_line_speed", Get_Arm_Max_Line_Speed_Cmd, kAdd},
    {"arm_max_line_acc", Get_Arm_Max_Line_Acc_Cmd, kAdd},
    {"arm_max_angular_speed", Get_Arm_Max_Angular_Speed_Cmd, kAdd},
    {"arm_max_angular_acc", Get_Arm_Max_Angular_Acc_Cmd, kAdd},
    {"set_arm_init", Set_Arm_Tip_Init_Cmd, kSetFirst, "arm_init"},
    {"set_collision_state", Set_Collision_Stage_Cmd, kSet, "collision_state"},
    {"get_collision_stage", Get_Collision_Stage_Cmd, kAdd},
    {"set_DH_data", Set_DH_Data_Cmd, kSet, "set_state"},
    {"DH_data", Get_DH_Data_Cmd, kAdd},
    {"set_joint_zero_offset", Set_Joint_Zero_OffSet_Cmd, kSet, "set_state"},
    {"set_arm_dynamic_parm", Set_ARM_Dynamic_Parm_Cmd, kSet, "set_state"},
    {"tool_software_version", Get_Tool_SoftWare_Version_Cmd, kAdd},
    {"set_arm_servo", Set_Arm_Servo_State_Cmd, kSet, "arm_servo"},
    {"set_auto_tool_frame", Auto_Set_Tool_Frame_Cmd, kSet, "auto_tool_frame"},
    {"generate_auto_tool_frame", Auto_Set_Tool_Frame_Cmd, kSet, "auto_tool_frame"},
    {"set_manual_tool_frame", Manual_Set_Tool_Frame_Cmd, kSet, "manual_tool_frame"},
    {"set_change_tool_frame", Change_Tool_Frame_Cmd, kSetFirst, "change_tool_frame"},
    {"set_delete_tool_frame", Delete_Tool_Frame_Cmd, kSet, "delete_tool_frame"},
    {"set_payload", Set_Payload_Cmd, kSet, "set_state"},
    {"set_none_payload", Set_None_Payload_Cmd, kSet, "set_state"},
    {"given_tool_frame", Given_Tool_Cmd, kAdd},
    {"get_tool_frame", Given_Tool_Cmd, kAdd},
    {"total_tool_frame", Get_All_Tool_Frame_Cmd, kAdd},
    {"set_auto_work_frame", Auto_Set_Work_Frame_Cmd, kSet, "auto_work_frame"},
    {"set_manual_work_frame", Manual_Set_Work_Frame_Cmd, kSet, "manual_work_frame"},
    {"set_change_work_frame", Change_Work_Frame_Cmd, kSet, "change_work_frame"},
    {"set_delete_work_frame", Delete_Work_Frame_Cmd, kSet, "delete_work_frame"},
    {"given_work_frame", Given_Work_Frame_Cmd, kAdd},
    {"get_work_frame", Given_Work_Frame_Cmd, kAdd},
    {"total_work_frame", Get_All_Work_Frame_Cmd, kAdd},
    {"current_arm_state", Arm_Current_State_Cmd, kAdd},
    {"current_joint_temperature", Get_Joint_Temperature_Cmd, kAdd},
    {"current_joint_current", Get_Joint_Current_Cmd, kAdd},
    {"current_joint_voltage", Get_Joint_Voltage_Cmd, kAddFirst},
    {"joint_degree", Get_Joint_Degree_Cmd, kAdd},
    {"arm_all_state", Get_Joint_All_State_Cmd, kAdd},
    {"arm_plan_num", Get_Arm_Plan_Num_Cmd, kAdd},
    {"set_init_pose", Set_Arm_Init_Pose_Cmd, kSet, "init_pose"},
    {"init_pose", Get_Arm_Init_Pose_Cmd, kAdd},
    {"set_install_pose", Set_Install_Pose_Cmd, kSet, "set_state"},
    {"set_arm_stop", Set_Arm_Stop_Cmd, kSet, "arm_stop"},
    {"set_arm_pause", Set_Arm_Pause_Cmd, kSet, "arm_pause"},
    {"set_arm_continue", Set_Arm_Continue_Cmd, kSet, "arm_continue"},
    {"set_delete_current_trajectory", Clear_Current_Trajectory_Cmd, kSet, "delete_current_trajectory"},
    {"set_arm_delete_trajectory", Clear_All_Trajectory_Cmd, kSet, "arm_delete_trajectory"},
    {"arm_current_trajectory", Get_Arm_Current_Trajectory_Cmd, kSet},
    {"set_joint_teach", Joint_Teach_Cmd_Cmd, kSet, "joint_teach"},
    {"set_pos_teach", Pos_Teach_Cmd_Cmd, kSet, "pos_teach"},
    {"set_ort_teach", Ort_Teach_Cmd_Cmd, kSet, "ort_teach"},
    {"set_stop_teach", Teach_Stop_Cmd_Cmd, kSet, "stop_teach"},
    {"controller_state", Get_Controller_State_Cmd, kSet},
    {"set_arm_power", Set_Arm_Power_Cmd, kSet, "arm_power"},
    {"arm_power_state", Get_Arm_Power_State_Cmd, kAdd},
    {"clear_system_err", Clear_System_Err_Cmd, kSet, "clear_state"},
    {"arm_software_version", Get_Arm_Software_Version_Cmd, kAdd},
    {"get_system_runtime", Get_System_Runtime_Cmd, kAdd},
    {"clear_system_runtime", Clear_System_Runtime_Cmd, kSetFirst, "clear_state"},
    {"get_joint_odom", Get_Joint_Odom_Cmd, kAdd},
    {"clear_joint_odom", Clear_Joint_Odom_Cmd, kSet, "clear_state"},
    {"set_high_speed_eth", Set_High_Speed_Eth_Cmd, kSet, "set_state"},
    {"set_DO_state", Set_DO_State_Cmd, kSet, "set_state"},
    {"set_AO_state", Set_AO_State_Cmd, kSet, "state"},
    {"set_tool_DO_state", Set_Tool_DO_State_Cmd, kSet, "set_state"},
    {"set_tool_IO_mode", Set_Tool_IO_Mode_Cmd, kSet, "set_state"},
    {"set_tool_voltage", Set_Tool_Voltage_Cmd, kSet, "state"},
    {"set_gripper_route", Set_Gripper_Route_Cmd, kSet, "state"},
    {"set_gripper", Set_Gripper_Release_Cmd, kSet, "state"},
    {"start_drag_teach", Start_Drag_Teach_Cmd, kSet, "drag_teach"},
    {"stop_drag_teach", Stop_Drag_Teach_Cmd, kSet, "drag_teach"},
    {"run_drag_trajectory", Run_Drag_Trajectory_Cmd, kSet, "run_state"},
    {"pause_drag_trajectory", Pause_Drag_Trajectory_Cmd, kSet, "pause_state"},
    {"continue_drag_trajectory", Continue_Drag_Trajectory_Cmd, kSet, "continue_state"},
    {"stop_drag_trajectory", Stop_Drag_Trajectory_Cmd, kSet, "stop_state"},
    {"start_multi_drag_teach", Start_Multi_Drag_Teach_Cmd, kSet, "set_state"},
    {"set_force_position", Set_Force_Postion_Cmd, kSet, "set_state"},
    {"stop_force_position", Stop_Force_Postion_Cmd, kSet, "stop_state"},
    {"clear_force_data", Clear_Force_Data_Cmd, kSet, "clear_state"},
    {"stop_set_force_sensor", Stop_Set_Force_Sensor_Cmd, kSet, "stop_state"},
    {"set_hand_posture", Set_Hand_Posture_Cmd, kSet, "set_state"},
    {"set_hand_seq", Set_Hand_Seq_Cmd, kSet, "set_state"},
    {"set_hand_angle", Set_Hand_Angle_Cmd, kSet, "set_state"},
    {"set_hand_speed", Set_Hand_Speed_Cmd, kSet, "set_state"},
    {"set_hand_force", Set_Hand_Force_Cmd, kSet, "set_state"},
    {"clear_Fz", Clear_Fz_Cmd, kSet, "set_state"},
    {"set_modbus_mode", Set_Modbus_Mode_Cmd, kSet, "set_state"},
    {"close_modbus_mode", Stop_Modbus_Mode_Cmd, kSet, "set_state"},
    {"write_single_coil", Write_Single_Coil_Cmd, kSet, "write_state"},
    {"write_coils", Write_Coils_Cmd, kSet, "write_state"},
    {"write_single_register", Write_Single_Registers_Cmd, kSet, "write_state"},
    {"write_registers", Write_Registers_Cmd, kSet, "write_state"},
    {"Start_Force_Position_Move", Start_Force_Position_Move_Cmd, kSet, "set_state"},
    {"Stop_Force_Position_Move", Stop_Force_Position_Move_Cmd, kSet, "set_state"},
    {"run_project", Run_Project_Cmd, kSet, "project_state", 16},
    {"download_project", Send_Project_Cmd, kSet, "project_state", 16},
    {"set_teach_frame", Set_Teach_Frame_Cmd, kSet, "set_state"},
    {"set_arm_run_mode", Set_Arm_Run_Mode_NC_Cmd, kSet},
    {"get_arm_run_mode", Get_Arm_Run_Mode_NC_Cmd, kAdd},
    {"run_update_software", Run_Update_Software_Project_Cmd, kSet, "update_state", 16},
    {"online_next", Set_Online_Start_Cmd, kSet, "state"},
    {"set_force_drag_threshold", Set_Force_Drag_Threshold_Cmd, kAdd, "set_state"},
    {"init_force_drag_threshold", Init_Force_Drag_Threshold_Cmd, kAdd, "init_state"},
    {"set_tool_envelope", Set_Tool_Envelope_Cmd, kAdd, "set_state"},
    {"plan_speed", Set_Plan_Speed_Cmd, kSet, "plan_state"},
    {"popup", Set_Popup_Cmd, kSet, "popup_result"},
    {"set_sale_version", Set_Sale_Version_Cmd, kSet},
    {"get_tool_hardware_version", Get_Tool_Hardware_Version_Cmd, kAdd},
    {"save_trajectory", Save_Trajectory_Cmd, kSet},
    {"get_program_trajectory_list", Get_Program_Trajectory_List_Cmd, kSet},
    {"get_program_run_state", Get_Program_Run_State_Cmd, kSet},
    {"program_run_finish", Run_Finish_Cmd, kSet},
    {"get_default_run_program", Get_Default_Run_Program_Cmd, kAdd},
    {"given_global_waypoint", Given_Global_Waypoint_Cmd, kAdd},
    {"get_global_waypoints_list", Get_Global_Waypoint_List_Cmd, kAdd},
    {"set_high_ethernet", Set_High_Ethernet_Cmd, kSet, "state"},
    {"get_high_ethernet", Get_High_Ethernet_Cmd, kAdd},
    {"save_device_info_all", Save_Device_Info_All_Cmd, kSet, "model"},
    {"set_NetIP", Set_NetIP_Cmd, kSet, "status"},
    {"get_joint_drive_min_pos", Get_Joint_Drive_Min_Pos_Cmd, kAdd},
    {"get_joint_drive_max_pos", Get_Joint_Drive_Max_Pos_Cmd, kAdd},
    {"auto_fix_joint_over_soft_limit", Auto_Fix_Joint_Over_Soft_Limit_Cmd, kAdd, "set_state"},
    {"auto_set_joint_limit", Auto_Set_Joint_Limit_Cmd, kSet, "limit_mode"},
    {"arm_software_info", Get_Arm_Software_Info_Cmd, kAdd},
    {"get_wired_net", Get_Wired_Net_Cmd, kAdd},
    {"get_wifi_net", Get_Wifi_Net_Cmd, kAdd},
    {"set_net_default", Set_Net_Default_Cmd, kSet, "net_default_state"},
    {"set_IO_mode", Set_IO_Mode_Cmd, kSet, "set_state"},
    {"set_voltage", Set_Voltage_Cmd, kSet, "state"},
    {"expand_set_version", Expand_Set_Version_Cmd, kSet, "expand_version"},
    {"set_joint_drive_max_speed", Set_Joint_Drive_Max_Speed_Cmd, kAdd, "joint_max_speed"},
    {"set_joint_max_drive_speed", Set_Joint_Drive_Max_Speed_Cmd, kAdd, "joint_max_speed"},
    {"set_joint_drive_max_acc", Set_Joint_Drive_Max_Acc_Cmd, kAdd, "joint_max_acc"},
    {"set_joint_max_drive_acc", Set_Joint_Drive_Max_Acc_Cmd, kAdd, "joint_max_acc"},
    {"set_joint_drive_min_pos", Set_Joint_Drive_Min_Pos_Cmd, kAdd, "joint_min_pos"},
    {"set_joint_drive_max_pos", Set_Joint_Drive_Max_Pos_Cmd, kAdd, "joint_max_pos"},
    {"get_joint_drive_max_speed", Get_Joint_Drive_Max_Speed_Cmd, kAdd},
    {"get_joint_drive_max_acc", Get_Joint_Drive_Max_Acc_Cmd, kAdd},
    {"expand_config", Expand_Config_Cmd, kSet, "config_state"},
    {"set_realtime_push", Set_Realtime_Push_Cmd, kAdd, "state"},
    {"get_realtime_push", Get_Realtime_Push_Cmd, kAdd},
    {"set_arm_slow_stop", Set_Arm_Slow_Stop_Cmd, kSet, "arm_slow_stop"},
    {"get_controller_RS485_mode", Get_Controller_RS485_Cmd, kAdd},
    {"get_tool_RS485_mode", Get_Tool_RS485_Cmd, kAdd},
    {"set_program_id_start", Set_Program_ID_Start_Cmd, kSet, "start_state"},
    {"delete_program_trajectory", Delete_Program_Trajectory_Cmd, kSet, "delete_state"},
    {"get_teach_frame", Get_Teach_Frame_Cmd, kSet},
    {"set_electronic_fence_enable", Set_Electronic_Fence_Enable_Cmd, kAdd, "set_state"},
    {"set_electronic_fence_config", Set_Electronic_Fence_Config_Cmd, kAdd, "set_config"},
    {"add_electronic_fence_config", Add_Electronic_Fence_Config_Cmd, kAdd, "add_config"},
    {"update_electronic_fence_config", Update_Electronic_Fence_Config_Cmd, kAdd, "update_config"},
    {"delete_electronic_fence_config", Delete_Electronic_Fence_Config_Cmd, kAdd, "delete_config"},
    {"set_modbustcp_mode", Set_Modbustcp_Mode_Cmd, kAdd, "set_state"},
    {"close_modbustcp_mode", Close_Modbustcp_Mode_Cmd, kAdd, "set_state"},
    {"set_self_collision_enable", Set_Self_Collision_Enable_Cmd, kAdd, "set_state"},
    {"set_virtual_wall_config", Set_Virtual_Wall_Config_Cmd, kAdd, "set_config"},
    {"set_virtual_wall_enable", Set_Virtual_Wall_Enable_Cmd, kAdd, "set_state"},
    {"update_work_frame", Update_Work_Frame_Cmd, kAdd, "update_state"},
    {"update_tool_frame", Update_Tool_Frame_Cmd, kAdd, "update_state"},
    {"update_program_trajectory", Update_Program_Trajectory_Cmd, kAdd, "update_state"},
    {"set_default_run_program", Set_Default_Run_Program_Cmd, kAdd, "set_state"},
    {"add_global_waypoint", Add_Global_Waypoint_Cmd, kAdd, "add_state"},
    {"update_global_waypoint", Update_Global_Waypoint_Cmd, kAdd, "update_state"},
    {"delete_global_waypoint", Delete_Global_Waypoint_Cmd, kAdd, "delete_state"},
    {"set_drag_teach_sensitivity", Set_Drag_Teach_Sensitivity_Cmd, kSet, "set_state"},
    {"hand_follow_angle", Set_Hand_Follow_Angle_Cmd, kSet, "set_state"},
    {"hand_follow_pos", Set_Hand_Follow_Pos_Cmd, kSet, "set_state"},
};
// clang-format on

constexpr int kSlot = 3;

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
        EXPECT_TRUE(was == is) << literal << " reached the mailbox of " << kRows[i].literal;
    }
}

class Routes : public testing::Test {
 protected:
    void SetUp() override {
        for (int i = 0; i < 5; ++i) Init_Socket_Joint(65, 1000 + i);
    }
};

TEST_F(Routes, AMessageThatDoesNotParseGoesToItsMailboxWithNine) {
    for (const Row& row : kRows) {
        const std::vector<std::string> before = everything();
        int32_t* const record = row.table.record(kSlot);
        const int32_t count = record[0];
        dispatch(std::string("{\"state\":\"") + row.literal + "\",");
        EXPECT_EQ(record[0], row.rule == kAdd || row.rule == kAddFirst ? count + 1 : 1) << row.literal;
        EXPECT_EQ(record[1], 9) << row.literal;
        expect_no_other_change(before, row.table, row.literal);
    }
}

TEST_F(Routes, CountsAreSetOrAdded) {
    for (const Row& row : kRows) {
        int32_t* const record = row.table.record(kSlot);
        record[0] = 5;
        dispatch(std::string("{\"state\":\"") + row.literal + "\",");
        EXPECT_EQ(record[0], row.rule == kAdd || row.rule == kAddFirst ? 6 : 1) << row.literal;
    }
}

TEST_F(Routes, AcknowledgementsReachTheirParser) {
    for (const Row& row : kRows) {
        if (!row.key) continue;
        int32_t* const record = row.table.record(kSlot);
        const std::string start = std::string("{\"command\":\"") + row.literal + "\",\"" + row.key + "\":";
        dispatch(start + "true}");
        EXPECT_EQ(record[1], 0) << row.literal;
        dispatch(start + "false}");
        EXPECT_EQ(record[1], row.refused) << row.literal;
    }
}

TEST_F(Routes, MessagesThatNobodyWaitsForAreDropped) {
    const std::vector<std::string> before = everything();
    for (const char* literal : {"nothing",
                                "start_calibrate",
                                "stop_calibrate",
                                "calibrate_state",
                                "set_system_state_servo",
                                "timer",
                                "set_joint_step",
                                "set_pos_step",
                                "set_ort_step",
                                "arm_hardware_version",
                                "get_log_file",
                                "set_PWM",
                                "set_vehicle",
                                "set_lift",
                                "set_lift_speed",
                                "set_lift_height",
                                "set_lift_version",
                                "set_car_move",
                                "set_car_speed",
                                "set_car_navigation_speed",
                                "set_car_navigation_mode",
                                "get_car_state",
                                "set_car_charge",
                                "set_car_station_num",
                                "add_waypoint"}) {
        dispatch(std::string("{\"command\":\"") + literal + "\",\"set_state\":true}");
        EXPECT_TRUE(before == everything()) << literal;
    }
}

TEST_F(Routes, AnImpossibleSlotIsIgnored) {
    const std::vector<std::string> before = everything();
    char message[] = "{\"command\":\"set_arm_stop\",\"arm_stop\":true}";
    for (const int slot : {-1, 20, 2147483647}) EXPECT_EQ(handle_Recv_Json(slot, message), 0);
    EXPECT_EQ(handle_Recv_Json(0, nullptr), 0);
    EXPECT_TRUE(before == everything());
}

}  // namespace
