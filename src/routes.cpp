// The table of all messages from controllers: the literals that identify a message, its code, and its handler.
//
// The order of the rows matters. A message belongs to the first row with a literal that occurs anywhere in it, so a
// setter's literal precedes the query's that it contains, and a literal that contains an earlier one is never reached.
// The last rows have no literal: the commands that wait for their mailboxes get no reply.
#include "routes.h"
#include "commands/arrival.h"
#include "commands/counters.h"
#include "commands/drag_point.h"
#include "commands/pages.h"
#include "connection/line.h"
#include "connection/reply.h"
#include "first_literal.h"
#include "payloads.h"
#include "zk/algorithm.h"
#include "zk/connection.h"
#include "zk/mailboxes.h"

namespace zk {

namespace {

using enum Counter;

// Also stores the tool frame in use in Tool_Matrix, with the Euler angles in place of the position.
void tool_frame_in_use(int slot, char* message) {
    store_and_apply<kAdd, Current_Tool_Cmd, Parser_Get_Current_Tool_Frame>(slot, message, [](const FrameReply& reply) {
        Pose pose = reply.frame.pose;
        pose.position = {pose.euler.rx, pose.euler.ry, pose.euler.rz};
        Tool_Matrix = Algo_Pos2Matrix(pose);
    });
}

void work_frame_in_use(int slot, char* message) {
    store_and_apply<kAdd, Current_Work_Cmd, Parser_Get_Current_Work_Frame>(
        slot, message, [](const FrameReply& reply) { Frame_Matrix = Algo_Pos2Matrix(reply.frame.pose); });
}

// Also stores the mounting angles in the local model.
void mounting(int slot, char* message) {
    store_and_apply<kAdd, Get_Install_Pose_Cmd, Parser_Get_Install_Pose>(
        slot, message, [](const InstallPoseReply& reply) { Algo_Set_Angle(reply.x, reply.y, reply.z); });
}

// The state of an input is stored in the mailbox of the outputs; its own mailbox gets only the status and the count.
void digital_input(int slot, char* message) {
    Mailbox inputs(Get_DI_State_Cmd), outputs(Get_DO_State_Cmd);
    if (!message) return inputs.clear(slot);
    IntReply record;
    outputs.copy(slot, &record);
    const int status = Parser_Get_DI_State(message, &record.value);
    outputs.fill(slot, &record);
    inputs.finish(slot, status);
    inputs.raise(slot, true);
}

// The replies of the two sensors' calibrations cannot be distinguished: both mailboxes get each.
void force_sensor(int slot, char* message) {
    store<kSet, Set_Force_Sensor_Cmd, Parser_Set_Force_Sensor>(slot, message);
    store<kSet, Auto_Set_Fz_Cmd, Parser_Set_Force_Sensor>(slot, message);
}

// Reports of streamed motion go to the application's callback.
template <int type>
void report(int slot, char* message) {
    if (!message) return;
    ArmMotionReport report{};
    report.report_type = type;
    report.arm_err = 8;
    report.socket = read(SockInfo[slot].socket);
    if constexpr (type == ZK_REPORT_FORCE) {
        report.result = Parser_Force_Position_Move(report.socket, message, report.joint, report.all_direction_force,
                                                   &report.force, &report.arm_err);
    } else {
        report.result = Parser_Movej_CANFD(report.socket, message, &report.pose, report.joint, &report.arm_err);
    }
    if (const MotionReportCallback callback = read(callback1, std::memory_order_acquire)) callback(report);
}
constexpr Handler kJointReport = report<ZK_REPORT_JOINT>;
constexpr Handler kPoseReport = report<ZK_REPORT_POSE>;
constexpr Handler kForceReport = report<ZK_REPORT_FORCE>;

void drag_point(int slot, char* message) {
    if (message) save_drag_point(slot, message);
}

// The parser skips the device of a failure report, so it is read here. A report without one is about the arm.
void arrival(int slot, char* message) {
    Mailbox mailbox(Move_Cmd);
    if (!message) return mailbox.clear(slot);
    MoveReport report{};
    const int status = Parser_Plan_Feedback(message, &report.device, &report.trajectory_connect);
    if (status == ZK_REFUSED) {
        const Reply failure(message);
        report.device = failure.find("device").integer();
    }
    mailbox.fill(slot, &report);
    mailbox.finish(slot, status);
    mailbox.raise(slot, false);
    if (is_of(report, Device::kArm) && report.trajectory_connect == 0) Line::at(slot).motions().report(status);
}

// clang-format off
constexpr Route kRoutes[] = {
    {{"add_global_waypoint"}, 265, store<kAdd, Add_Global_Waypoint_Cmd, Parser_Add_State>},
    {{"update_global_waypoint"}, 266, store<kAdd, Update_Global_Waypoint_Cmd, Parser_Update_State>},
    {{"delete_global_waypoint"}, 267, store<kAdd, Delete_Global_Waypoint_Cmd, Parser_Delete_State>},
    {{"given_global_waypoint"}, 268, store<kAdd, Given_Global_Waypoint_Cmd, Parser_Given_Global_Waypoint>},
    {{"get_global_waypoints_list"}, 269, store<kAdd, Get_Global_Waypoint_List_Cmd, read_waypoint_list>},
    {{"point"}, 231, drag_point},
    {{"set_joint_drive_max_speed", "set_joint_max_drive_speed"}, 218, store<kAdd, Set_Joint_Drive_Max_Speed_Cmd, Parser_Set_Joint_Drive_Max_Speed>},
    {{"get_joint_drive_max_speed"}, 222, store<kAdd, Get_Joint_Drive_Max_Speed_Cmd, Parser_Get_Joint_Drive_Max_Speed>},
    {{"set_joint_drive_max_acc", "set_joint_max_drive_acc"}, 219, store<kAdd, Set_Joint_Drive_Max_Acc_Cmd, Parser_Set_Joint_Drive_Max_Acc>},
    {{"get_joint_drive_max_acc"}, 223, store<kAdd, Get_Joint_Drive_Max_Acc_Cmd, Parser_Get_Joint_Drive_Max_Acc>},
    {{"set_joint_drive_max_pos"}, 221, store<kAdd, Set_Joint_Drive_Max_Pos_Cmd, Parser_Set_Joint_Drive_Max_Pos>},
    {{"get_joint_drive_max_pos"}, 203, store<kAdd, Get_Joint_Drive_Max_Pos_Cmd, Parser_Get_Joint_Drive_Max_Pos>},
    {{"set_joint_drive_min_pos"}, 220, store<kAdd, Set_Joint_Drive_Min_Pos_Cmd, Parser_Set_Joint_Drive_Min_Pos>},
    {{"get_joint_drive_min_pos"}, 202, store<kAdd, Get_Joint_Drive_Min_Pos_Cmd, Parser_Get_Joint_Drive_Min_Pos>},
    {{"set_joint_max_speed"}, 2, store<kSet, Set_Joint_Max_Speed_Cmd, Parser_Joint_Speed>},
    {{"expand_get_version"}, 217, store<kSet, Expand_Get_Version_Cmd, Parser_Expand_Get_Version>},
    {{"expand_set_version"}, 216, store<kSet, Expand_Set_Version_Cmd, Parser_Expand_Set_Version>},
    {{"get_realtime_push"}, 230, store<kAdd, Get_Realtime_Push_Cmd, Parser_Get_Realtime_Push>},
    {{"expand_state"}, 224, store<kSet, Expand_Get_State_Cmd, Parser_Expand_Get_State>},
    {{"expand_config"}, 225, store<kSet, Expand_Config_Cmd, Parser_Expand_Config>},
    {{"expand_get_config"}, 226, store<kSet, Expand_Get_Config_Cmd, Parser_Expand_Get_Config>},
    {{"joint_max_speed"}, 1, store<kAdd, Joint_Max_Speed_Cmd, Parser_Get_Joint_Speed>},
    {{"joint_zero_pos"}, 7, store<kSetFirst, Set_Joint_Zero_Cmd, Parser_Joint_Zero_Pos>},
    {{"set_joint_max_acc"}, 3, store<kSet, Set_Joint_Max_Acc_Cmd, Parser_Joint_Acc>},
    {{"set_joint_min_pos"}, 4, store<kSetFirst, Set_Joint_Min_Pos_Cmd, Parser_Joint_Min_Pos>},
    {{"set_joint_max_pos"}, 5, store<kSet, Set_Joint_Max_Pos_Cmd, Parser_Joint_Max_Pos>},
    {{"set_joint_en_state"}, 6, store<kSet, Set_Joint_En_State_Cmd, Parser_Joint_EN_State>},
    {{"set_joint_clear_err"}, 8, store<kSet, Set_Joint_Clear_Err_Cmd, Parser_Joint_Err_Clear>},
    {{"start_calibrate"}, 9, dropped},
    {{"stop_calibrate"}, 10, dropped},
    {{"calibrate_state"}, 11, dropped},
    {{"joint_max_acc"}, 12, store<kAddFirst, Get_Joint_Max_Acc_Cmd, Parser_Get_Joint_Acc>},
    {{"joint_min_pos"}, 13, store<kAdd, Get_Joint_Min_Pos_Cmd, Parser_Get_Min_Pos>},
    {{"joint_max_pos"}, 14, store<kAdd, Get_Joint_Max_Pos_Cmd, Parser_Get_Max_Pos>},
    {{"joint_en_state"}, 15, store<kAdd, Get_Joint_En_State_Cmd, Parser_Get_Joint_EN_State>},
    {{"joint_err_flag"}, 16, store<kAdd, Get_Joint_Err_Flag_Cmd, Parser_Get_Joint_Err_Flag>},
    {{"joint_software_version"}, 17, store<kAdd, Get_Joint_Software_Version_Cmd, Parser_Get_Joint_Software_Version>},
    {{"set_arm_max_line_speed"}, 19, store<kSet, Set_Arm_Max_Line_Speed_Cmd, Parser_Arm_Line_Speed>},
    {{"set_arm_max_line_acc"}, 20, store<kSet, Set_Arm_Max_Line_Acc_Cmd, Parser_Arm_Line_Acc>},
    {{"set_arm_max_angular_speed"}, 21, store<kSet, Set_Arm_Max_Angular_Speed_Cmd, Parser_Arm_Angular_Speed>},
    {{"set_arm_max_angular_acc"}, 22, store<kSet, Set_Arm_Max_Angular_Acc_Cmd, Parser_Arm_Angular_Acc>},
    {{"arm_max_line_speed"}, 23, store<kAdd, Get_Arm_Max_Line_Speed_Cmd, Parser_Get_Arm_Line_Speed>},
    {{"arm_max_line_acc"}, 24, store<kAdd, Get_Arm_Max_Line_Acc_Cmd, Parser_Get_Arm_Line_Acc>},
    {{"arm_max_angular_speed"}, 25, store<kAdd, Get_Arm_Max_Angular_Speed_Cmd, Parser_Get_Arm_Angular_Speed>},
    {{"arm_max_angular_acc"}, 26, store<kAdd, Get_Arm_Max_Angular_Acc_Cmd, Parser_Get_Arm_Angular_Acc>},
    {{"set_arm_init"}, 27, store<kSetFirst, Set_Arm_Tip_Init_Cmd, Parser_Arm_Tip_Init>},
    {{"get_collision_stage"}, 29, store<kAdd, Get_Collision_Stage_Cmd, Parser_Get_Collision_Stage>},
    {{"set_DH_data"}, 30, store<kSet, Set_DH_Data_Cmd, Parser_Set_DH_Data>},
    {{"DH_data"}, 31, store<kAdd, Get_DH_Data_Cmd, Parser_Get_DH_Data>},
    {{"set_joint_zero_offset"}, 32, store<kSet, Set_Joint_Zero_OffSet_Cmd, Parser_Set_Joint_Zero_Offset>},
    {{"set_arm_dynamic_parm"}, 33, store<kSet, Set_ARM_Dynamic_Parm_Cmd, Parser_Set_Hand>},
    {{"tool_software_version"}, 34, store<kAdd, Get_Tool_SoftWare_Version_Cmd, Parser_Get_Tool_Software_Version>},
    {{"set_arm_servo"}, 35, store<kSet, Set_Arm_Servo_State_Cmd, Parser_Arm_Servo_State>},
    {{"set_system_state_servo"}, 36, dropped},
    {{"set_auto_tool_frame"}, 37, store<kSet, Auto_Set_Tool_Frame_Cmd, Parser_Auto_Set_Tool_Frame>},
    {{"generate_auto_tool_frame"}, 38, store<kSet, Auto_Set_Tool_Frame_Cmd, Parser_Auto_Set_Tool_Frame>},
    {{"set_manual_tool_frame"}, 39, store<kSet, Manual_Set_Tool_Frame_Cmd, Parser_Manual_Set_Tool_Frame>},
    {{"set_change_tool_frame"}, 40, store<kSetFirst, Change_Tool_Frame_Cmd, Parser_Change_Tool_Frame>},
    {{"set_delete_tool_frame"}, 41, store<kSet, Delete_Tool_Frame_Cmd, Parser_Delete_Tool_Frame>},
    {{"set_payload"}, 42, store<kSet, Set_Payload_Cmd, Parser_Set_Hand>},
    {{"set_none_payload"}, 43, store<kSet, Set_None_Payload_Cmd, Parser_Set_Hand>},
    {{"current_tool_frame"}, 44, tool_frame_in_use},
    {{"given_tool_frame", "get_tool_frame"}, 45, store<kAdd, Given_Tool_Cmd, Parser_Get_Given_Tool_Frame>},
    {{"total_tool_frame"}, 46, store<kAdd, Get_All_Tool_Frame_Cmd, Parser_Get_All_Tool_Frame>},
    {{"set_auto_work_frame"}, 47, store<kSet, Auto_Set_Work_Frame_Cmd, Parser_Auto_Set_Work_Frame>},
    {{"set_manual_work_frame"}, 48, store<kSet, Manual_Set_Work_Frame_Cmd, Parser_Manual_Set_Work_Frame>},
    {{"set_change_work_frame"}, 49, store<kSet, Change_Work_Frame_Cmd, Parser_Change_Work_Frame>},
    {{"set_delete_work_frame"}, 50, store<kSet, Delete_Work_Frame_Cmd, Parser_Delete_Work_Frame>},
    {{"current_work_frame"}, 51, work_frame_in_use},
    {{"given_work_frame", "get_work_frame"}, 52, store<kAdd, Given_Work_Frame_Cmd, Parser_Get_Given_Work_Frame>},
    {{"total_work_frame"}, 53, store<kAdd, Get_All_Work_Frame_Cmd, Parser_Get_All_Work_Frame>},
    {{"current_arm_state"}, 54, store<kAdd, Arm_Current_State_Cmd, Parser_Arm_State>},
    {{"current_joint_current"}, 56, store<kAdd, Get_Joint_Current_Cmd, Parser_Joint_Current>},
    {{"current_joint_voltage"}, 57, store<kAddFirst, Get_Joint_Voltage_Cmd, Parser_Joint_Voltage>},
    {{"joint_degree"}, 58, store<kAdd, Get_Joint_Degree_Cmd, Paser_Get_Joint_Degree>},
    {{"arm_all_state"}, 59, store<kAdd, Get_Joint_All_State_Cmd, Parser_Arm_All_State>},
    {{"arm_plan_num"}, 60, store<kAdd, Get_Arm_Plan_Num_Cmd, Parser_Get_Arm_Plan_Num>},
    {{"set_init_pose"}, 61, store<kSet, Set_Arm_Init_Pose_Cmd, Parser_Set_Arm_Init_Pose>},
    {{"init_pose"}, 62, store<kAdd, Get_Arm_Init_Pose_Cmd, Parser_Get_Arm_Init_Pose>},
    {{"set_install_pose"}, 63, store<kSet, Set_Install_Pose_Cmd, Parser_Set_Hand>},
    {{"current_trajectory_state"}, 64, arrival},
    {{"joint_state"}, 65, kJointReport},
    {{"pose_state"}, 66, kPoseReport},
    {{"set_arm_stop"}, 67, store<kSet, Set_Arm_Stop_Cmd, Parser_Move_Stop>},
    {{"set_arm_slow_stop"}, 232, store<kSet, Set_Arm_Slow_Stop_Cmd, Parser_Move_Slow_Stop>},
    {{"set_arm_pause"}, 68, store<kSet, Set_Arm_Pause_Cmd, Parser_Move_Pause>},
    {{"set_delete_current_trajectory"}, 70, store<kSet, Clear_Current_Trajectory_Cmd, Parser_Clear_Current_Trajectory>},
    {{"set_arm_delete_trajectory"}, 71, store<kSet, Clear_All_Trajectory_Cmd, Parser_Clear_All_Trajectory>},
    {{"arm_current_trajectory"}, 72, store<kSet, Get_Arm_Current_Trajectory_Cmd, Parser_Get_Current_Trajectory>},
    {{"movej", "movel", "movec", "moves"}, 189, store<kSet, Move_Receive_Cmd, Parser_Receive_State>},
    {{"add_waypoint"}, 73, dropped},
    {{"start_waypoint"}, 74, dropped},
    {{"clear_waypoint"}, 75, dropped},
    {{"timer"}, 77, dropped},
    {{"set_joint_teach"}, 78, store<kSet, Joint_Teach_Cmd_Cmd, Parser_Joint_Teach>},
    {{"set_pos_teach"}, 79, store<kSet, Pos_Teach_Cmd_Cmd, Parser_Pos_Teach>},
    {{"set_ort_teach"}, 80, store<kSet, Ort_Teach_Cmd_Cmd, Parser_Ort_Teach>},
    {{"set_stop_teach"}, 81, store<kSet, Teach_Stop_Cmd_Cmd, Parser_Teach_Stop>},
    {{"set_joint_step"}, 82, dropped},
    {{"set_pos_step"}, 83, dropped},
    {{"set_ort_step"}, 84, dropped},
    {{"controller_state"}, 85, store<kSet, Get_Controller_State_Cmd, Parser_Controller_State>},
    {{"set_arm_power"}, 86, store<kSet, Set_Arm_Power_Cmd, Parser_Set_Arm_Power>},
    {{"arm_power_state"}, 87, store<kAdd, Get_Arm_Power_State_Cmd, Parser_Get_Arm_Power_State>},
    {{"clear_system_err"}, 88, store<kSet, Clear_System_Err_Cmd, Parser_Clear_System_Err>},
    {{"arm_hardware_version"}, 89, dropped},
    {{"arm_software_version"}, 90, store<kAdd, Get_Arm_Software_Version_Cmd, Parser_Get_Arm_Software_Version>},
    {{"get_log_file"}, 91, dropped},
    {{"get_system_runtime"}, 92, store<kAdd, Get_System_Runtime_Cmd, read_system_runtime>},
    {{"clear_system_runtime"}, 93, store<kSetFirst, Clear_System_Runtime_Cmd, Parser_Clear_System_Err>},
    {{"get_joint_odom"}, 94, store<kAdd, Get_Joint_Odom_Cmd, read_joint_odom>},
    {{"clear_joint_odom"}, 95, store<kSet, Clear_Joint_Odom_Cmd, Parser_Clear_System_Err>},
    {{"set_high_speed_eth"}, 96, store<kSet, Set_High_Speed_Eth_Cmd, Parser_Set_High_Speed_Eth>},
    {{"set_tool_DO_state"}, 106, store<kSet, Set_Tool_DO_State_Cmd, Parser_Set_Tool_DO_State_2>},
    {{"set_DO_state"}, 97, store<kSet, Set_DO_State_Cmd, Parser_Set_DO_State>},
    {{"set_AO_state"}, 98, store<kSet, Set_AO_State_Cmd, Parser_Set_AO_State>},
    {{"DO_state"}, 100, store<kAdd, Get_DO_State_Cmd, Parser_Get_DO_State>},
    {{"DI_state"}, 101, digital_input},
    {{"AO_state"}, 102, store<kAdd, Get_AO_State_Cmd, Parser_Get_AO_State>},
    {{"AI_state"}, 103, store<kAdd, Get_AI_State_Cmd, Parser_Get_AI_State>},
    {{"IO_input"}, 99, store<kAdd, Get_IO_State_Cmd, Parser_IO_Input>},
    {{"IO_output"}, 104, store<kAdd, Get_IO_Output_State_Cmd, Parser_IO_Output>},
    {{"set_tool_IO_mode"}, 107, store<kSet, Set_Tool_IO_Mode_Cmd, Parser_Set_Tool_DO_State>},
    {{"tool_IO_state"}, 108, store<kAdd, Get_Tool_IO_State_Cmd, Parser_Get_Tool_IO_State>},
    {{"Start_Force_Position_Move"}, 160, store<kSet, Start_Force_Position_Move_Cmd, Parser_Set_Tool_DO_State>},
    {{"Stop_Force_Position_Move"}, 162, store<kSet, Stop_Force_Position_Move_Cmd, Parser_Set_Tool_DO_State>},
    {{"set_tool_voltage"}, 109, store<kSet, Set_Tool_Voltage_Cmd, Parser_Set_Tool_Voltage>},
    {{"tool_voltage"}, 110, store<kAdd, Get_Tool_Voltage_Cmd, Parser_Get_Tool_Voltage>},
    {{"set_gripper_route"}, 111, store<kSet, Set_Gripper_Route_Cmd, Parser_Set_Gripper_Route>},
    {{"set_gripper"}, 112, store<kSet, Set_Gripper_Release_Cmd, Parser_Set_Gripper_Route>},
    {{"start_drag_teach"}, 113, store<kSet, Start_Drag_Teach_Cmd, Parser_Drag_Teach>},
    {{"stop_drag_teach"}, 114, store<kSet, Stop_Drag_Teach_Cmd, Parser_Drag_Teach>},
    {{"set_drag_teach_sensitivity"}, 272, store<kSet, Set_Drag_Teach_Sensitivity_Cmd, Parser_Set_Joint_Zero_Offset>},
    {{"get_drag_teach_sensitivity"}, 273, store<kSet, Get_Drag_Teach_Sensitivity_Cmd, Parser_Get_Drag_Teach_Sensitivity>},
    {{"run_drag_trajectory"}, 115, store<kSet, Run_Drag_Trajectory_Cmd, Parser_Run_Drag_Trajectory>},
    {{"pause_drag_trajectory"}, 116, store<kSet, Pause_Drag_Trajectory_Cmd, Parser_Pause_Drag_Trajectory>},
    {{"continue_drag_trajectory"}, 117, store<kSet, Continue_Drag_Trajectory_Cmd, Parser_Continue_Drag_Trajectory>},
    {{"stop_drag_trajectory"}, 118, store<kSet, Stop_Drag_Trajectory_Cmd, Parser_Stop_Drag_Trajectory>},
    {{"drag_trajectory_origin"}, 119, store<kSet, Drag_Trajectory_Origin_Cmd, Parser_Drag_Trajectory_Origin>},
    {{"start_multi_drag_teach"}, 120, store<kSet, Start_Multi_Drag_Teach_Cmd, Parser_Set_Hand>},
    {{"set_force_position"}, 121, store<kSet, Set_Force_Postion_Cmd, Parser_Set_Hand>},
    {{"stop_force_position"}, 122, store<kSet, Stop_Force_Postion_Cmd, Parser_Stop_Drag_Trajectory>},
    {{"get_force_data"}, 123, store<kAdd, Get_Force_Data_Cmd, Parser_Get_Force_Data>},
    {{"clear_force_data"}, 124, store<kSet, Clear_Force_Data_Cmd, Parser_Clear_Force_Data>},
    {{"stop_set_force_sensor"}, 126, store<kSet, Stop_Set_Force_Sensor_Cmd, Parser_Stop_Force_Sensor>},
    {{"set_force_sensor"}, 125, force_sensor},
    {{"set_hand_posture"}, 127, store<kSet, Set_Hand_Posture_Cmd, Parser_Set_Hand>},
    {{"set_hand_seq"}, 128, store<kSet, Set_Hand_Seq_Cmd, Parser_Set_Hand>},
    {{"set_hand_angle"}, 129, store<kSet, Set_Hand_Angle_Cmd, Parser_Set_Hand>},
    {{"set_hand_speed"}, 130, store<kSet, Set_Hand_Speed_Cmd, Parser_Set_Hand>},
    {{"set_PWM"}, 132, dropped},
    {{"get_Fz"}, 133, store<kAdd, Get_FZ_Data_Cmd, Parser_Get_Fz>},
    {{"clear_Fz"}, 134, store<kSet, Clear_Fz_Cmd, Parser_Set_Hand>},
    {{"auto_set_Fz"}, 135, force_sensor},
    {{"manual_set_Fz"}, 136, force_sensor},
    {{"close_modbus_mode"}, 138, store<kSet, Stop_Modbus_Mode_Cmd, Parser_Set_Hand>},
    {{"read_coils"}, 139, store<kAdd, Get_Read_Coils_Cmd, Parser_Get_read_coils>},
    {{"read_multiple_coils"}, 215, store<kAdd, Get_Read_Multiple_Coils_Cmd, Parser_Get_Read_Multiple_Coils>},
    {{"input_status"}, 140, store<kAdd, Get_Read_Input_Status_Cmd, Parser_Get_read_coils>},
    {{"multiple_holding_registers"}, 211, store<kAdd, Read_Multiple_Holding_Registers_Cmd, Parser_Read_Multiple_Holding_Registers>},
    {{"multiple_input_registers"}, 270, store<kAdd, Read_Multiple_intput_Registers_Cmd, Parser_Read_Multiple_Holding_Registers>},
    {{"holding_registers"}, 141, store<kAdd, Get_Read_Holding_Registers_Cmd, Parser_Get_read_coils>},
    {{"input_registers"}, 142, store<kAdd, Get_Read_Input_Registers_Cmd, Parser_Get_read_coils>},
    {{"write_single_coil"}, 143, store<kSet, Write_Single_Coil_Cmd, Parser_Write_single_coil>},
    {{"write_coils"}, 144, store<kSet, Write_Coils_Cmd, Parser_Write_Multiple_Coils>},
    {{"write_single_register"}, 145, store<kSet, Write_Single_Registers_Cmd, Parser_Write_single_coil>},
    {{"write_registers"}, 146, store<kSet, Write_Registers_Cmd, Parser_Write_Multiple_Coils>},
    {{"set_vehicle"}, 147, dropped},
    {{"set_lift_speed"}, 149, dropped},
    {{"set_lift_height"}, 150, dropped},
    {{"set_lift"}, 148, dropped},
    {{"lift_state"}, 151, store<kSet, Get_Lift_State_Cmd, Parser_Get_Lift_Speed>},
    {{"set_car_move"}, 152, dropped},
    {{"set_car_speed"}, 153, dropped},
    {{"set_car_navigation_speed"}, 154, dropped},
    {{"set_car_navigation_mode"}, 155, dropped},
    {{"get_car_state"}, 156, dropped},
    {{"set_car_charge"}, 157, dropped},
    {{"set_car_station_num"}, 158, dropped},
    {{"set_collision_state"}, 28, store<kSet, Set_Collision_Stage_Cmd, Parser_Set_Collision_Stage>},
    {{"current_joint_temperature"}, 55, store<kAdd, Get_Joint_Temperature_Cmd, Parser_Joint_Temperature>},
    {{"set_arm_continue"}, 69, store<kSet, Set_Arm_Continue_Cmd, Parser_Move_Continue>},
    {{"set_hand_force"}, 131, store<kSet, Set_Hand_Force_Cmd, Parser_Set_Hand>},
    {{"hand_follow_angle"}, 274, store<kSet, Set_Hand_Follow_Angle_Cmd, Parser_Set_Hand>},
    {{"hand_follow_pos"}, 275, store<kSet, Set_Hand_Follow_Pos_Cmd, Parser_Set_Hand>},
    {{"set_modbus_mode"}, 137, store<kSet, Set_Modbus_Mode_Cmd, Parser_Set_Hand>},
    {{"set_modbustcp_mode"}, 252, store<kAdd, Set_Modbustcp_Mode_Cmd, Parser_Set_Modbustcp_Mode>},
    {{"Force_Position_State"}, 161, kForceReport},
    {{"set_teach_frame"}, 165, store<kSet, Set_Teach_Frame_Cmd, Parser_Set_TEACH_FRAME>},
    {{"get_teach_frame"}, 241, store<kSet, Get_Teach_Frame_Cmd, Parser_Get_Teach_Frame>},
    {{"download_project"}, 164, store<kSet, Send_Project_Cmd, Parser_SendFile>},
    {{"run_project"}, 163, store<kSet, Run_Project_Cmd, Parser_RunProject>},
    {{"install_pose"}, 167, mounting},
    {{"auto_set_joint_limit"}, 206, store<kSet, Auto_Set_Joint_Limit_Cmd, Parser_Set_Joint_Limit>},
    {{"IO_state"}, 105, store<kAdd, Get_DIO_State_Cmd, Parser_Get_IO_State>},
    {{"set_arm_run_mode"}, 181, store<kSet, Set_Arm_Run_Mode_NC_Cmd, Parser_Set_Arm_Run_Mode_NC_E>},
    {{"get_arm_run_mode"}, 182, store<kAdd, Get_Arm_Run_Mode_NC_Cmd, Parser_Get_Arm_Run_Mode_NC_E>},
    {{"run_update_software"}, 183, store<kSet, Run_Update_Software_Project_Cmd, Parser_Run_UpdateSoftware_E>},
    {{"online_next"}, 184, store<kSet, Set_Online_Start_Cmd, Parser_Set_Online_Start>},
    {{"set_lift_version"}, 185, store<kSet, Set_Lift_Version_Cmd, Parser_Set_Lift_Version_E>},
    {{"set_sale_version"}, 192, store<kSet, Set_Sale_Version_Cmd, Parser_Set_Sale_Version_E>},
    {{"get_tool_hardware_version"}, 193, store<kAdd, Get_Tool_Hardware_Version_Cmd, Parser_Get_Tool_Software_Version>},
    {{"save_trajectory"}, 194, store<kSet, Save_Trajectory_Cmd, Parser_Save_Drag_Teach_File_Block_NC_E>},
    {{"popup"}, 197, store<kSet, Set_Popup_Cmd, Parser_Set_Popup>},
    {{"get_program_trajectory_list"}, 235, store<kSet, Get_Program_Trajectory_List_Cmd, read_program_list>},
    {{"get_program_run_state"}, 236, store<kSet, Get_Program_Run_State_Cmd, Parser_Get_Program_Run_State>},
    {{"set_program_id_start"}, 237, store<kSet, Set_Program_ID_Start_Cmd, Parser_Set_Program_ID_Start>},
    {{"program_run_finish"}, 240, store<kSet, Run_Finish_Cmd, Parser_Program_Run_Finish>},
    {{"delete_program_trajectory"}, 239, store<kSet, Delete_Program_Trajectory_Cmd, Parser_Delete_State>},
    {{"set_high_ethernet"}, 198, store<kSet, Set_High_Ethernet_Cmd, Parser_Set_High_Ethernet>},
    {{"get_high_ethernet"}, 199, store<kAdd, Get_High_Ethernet_Cmd, Parser_Get_High_Ethernet>},
    {{"save_device_info_all"}, 200, store<kSet, Save_Device_Info_All_Cmd, Parser_Save_Device_Info_All>},
    {{"set_NetIP"}, 201, store<kSet, Set_NetIP_Cmd, Parser_Set_NetIP>},
    {{"get_wired_net"}, 208, store<kAdd, Get_Wired_Net_Cmd, Parser_Get_Wired_Net>},
    {{"get_wifi_net"}, 209, store<kAdd, Get_Wifi_Net_Cmd, Parser_Get_Wifi_Net>},
    {{"get_controller_RS485_mode"}, 233, store<kAdd, Get_Controller_RS485_Cmd, Parser_Get_Controller_RS485_Mode>},
    {{"get_tool_RS485_mode"}, 234, store<kAdd, Get_Tool_RS485_Cmd, Parser_Get_Tool_RS485_Mode>},
    {{"set_net_default"}, 210, store<kSet, Set_Net_Default_Cmd, Parser_Set_Net_Default_Cmd>},
    {{"set_IO_mode"}, 212, store<kSet, Set_IO_Mode_Cmd, Parser_Set_IO_Mode>},
    {{"set_voltage"}, 213, store<kSet, Set_Voltage_Cmd, Parser_Set_Voltage>},
    {{"voltage_state"}, 214, store<kAdd, Get_Voltage_Cmd, Parser_Get_Voltage>},
    {{"set_realtime_push"}, 229, store<kAdd, Set_Realtime_Push_Cmd, Parser_Set_Realtime_Push>},
    {{"set_electronic_fence_enable"}, 242, store<kAdd, Set_Electronic_Fence_Enable_Cmd, Parser_Set_Electronic_Fence_Enable>},
    {{"get_electronic_fence_enable"}, 243, store<kAdd, Get_Electronic_Fence_Enable_Cmd, Parser_Get_Electronic_Fence_Enable>},
    {{"set_electronic_fence_config"}, 244, store<kAdd, Set_Electronic_Fence_Config_Cmd, Parser_Set_Electronic_Fence_Config>},
    {{"get_electronic_fence_config"}, 245, store<kAdd, Get_Electronic_Fence_Config_Cmd, Parser_Get_Electronic_Fence_Config>},
    {{"add_electronic_fence_config"}, 246, store<kAdd, Add_Electronic_Fence_Config_Cmd, Parser_Add_Electronic_Fence_Config>},
    {{"update_electronic_fence_config"}, 247, store<kAdd, Update_Electronic_Fence_Config_Cmd, Parser_Update_Electronic_Fence_Config>},
    {{"delete_electronic_fence_config"}, 248, store<kAdd, Delete_Electronic_Fence_Config_Cmd, Parser_delete_Electronic_Fence_Config>},
    {{"get_electronic_fence_list_names"}, 249, store<kAdd, Get_Electronic_Fence_List_Name_Cmd, Parser_Get_Electronic_Fence_List_Names>},
    {{"given_electronic_fence_config"}, 250, store<kAdd, Given_Electronic_Fence_Config_Cmd, Parser_Given_Electronic_Fence_Config>},
    {{"get_electronic_fence_list_infos"}, 251, store<kAdd, Get_Electronic_Fence_List_Info_Cmd, Parser_Get_Electronic_Fence_List_Info>},
    {{"close_modbustcp_mode"}, 253, store<kAdd, Close_Modbustcp_Mode_Cmd, Parser_Close_Modbustcp_Mode>},
    {{"set_self_collision_enable"}, 254, store<kAdd, Set_Self_Collision_Enable_Cmd, Parser_Set_Self_Collision_Enable>},
    {{"get_self_collision_enable"}, 255, store<kAdd, Get_Self_Collision_Enable_Cmd, Parser_Get_Self_Collision_Enable>},
    {{"get_gripper_state"}, 204, store<kAdd, Get_Gripper_State_Cmd, Parser_Get_Gripper_State>},
    {{"auto_fix_joint_over_soft_limit"}, 205, store<kAdd, Auto_Fix_Joint_Over_Soft_Limit_Cmd, Parser_Set_IO_Mode>},
    {{"arm_software_info"}, 207, store<kAdd, Get_Arm_Software_Info_Cmd, Parser_Get_Arm_Software_Info>},
    {{"plan_speed"}, 196, store<kSet, Set_Plan_Speed_Cmd, Parser_Set_Plan_Speed>},
    {{"set_force_drag_threshold"}, 186, store<kAdd, Set_Force_Drag_Threshold_Cmd, Parser_Set_IO_Mode>},
    {{"get_force_drag_threshold"}, 187, store<kAdd, Get_Force_Drag_Threshold_Cmd, Parser_Get_Force_Drag_Threshold>},
    {{"init_force_drag_threshold"}, 188, store<kAdd, Init_Force_Drag_Threshold_Cmd, Parser_init_force_drag_threshold>},
    {{"set_tool_envelope"}, 190, store<kAdd, Set_Tool_Envelope_Cmd, Parser_Set_High_Speed_Eth>},
    {{"velope"}, 191, store<kAdd, Get_Tool_Envelope_Cmd, Parser_Get_Tool_Envelope>},
    {{"set_virtual_wall_config"}, 256, store<kAdd, Set_Virtual_Wall_Config_Cmd, Parser_Set_Config>},
    {{"get_virtual_wall_config"}, 257, store<kAdd, Get_Virtual_Wall_Config_Cmd, Parser_Get_Electronic_Fence_Config>},
    {{"set_virtual_wall_enable"}, 258, store<kAdd, Set_Virtual_Wall_Enable_Cmd, Parser_Set_High_Speed_Eth>},
    {{"get_virtual_wall_enable"}, 259, store<kAdd, Get_Virtual_Wall_Enable_Cmd, Parser_Get_Electronic_Fence_Enable>},
    {{"update_work_frame"}, 260, store<kAdd, Update_Work_Frame_Cmd, Parser_Update_State>},
    {{"update_tool_frame"}, 261, store<kAdd, Update_Tool_Frame_Cmd, Parser_Update_State>},
    {{"set_default_run_program"}, 263, store<kAdd, Set_Default_Run_Program_Cmd, Parser_Set_High_Speed_Eth>},
    {{"get_default_run_program"}, 264, store<kAdd, Get_Default_Run_Program_Cmd, Parser_Get_id>},
    {{"update_program_trajectory"}, 262, store<kAdd, Update_Program_Trajectory_Cmd, Parser_Update_State>},
    {{}, 169, store<kSet, Set_IO_Mode_NC_Cmd, Parser_Set_High_Speed_Eth>},
    {{}, 176, store<kSet, Set_IO_State_NC_Cmd, Parser_Set_High_Speed_Eth>},
    {{}, 177, store<kAdd, Get_IO_State_NC_Cmd, Parser_Get_IO_State_NC_E>},
    {{}, 178, store<kAdd, Get_Controller_Voltage_NC_Cmd, Parser_Get_Tool_Voltage>},
    {{}, 179, store<kSet, Set_Controller_Voltage_NC_Cmd, Parser_Set_Gripper_Route>},
    {{}, 180, store<kSet, Set_Controller_IP_NC_Cmd, Parser_Set_Net_State_E>},
    {{}, 195, store<kSet, Set_Controller_ResetIP_NC_Cmd, Parser_Set_Net_State_E>},
};
// clang-format on

const Route* find_route(const char* message) {
    static const FirstLiteral& kLiterals = *new FirstLiteral([] {
        std::vector<FirstLiteral::Ranked> literals;
        for (const Route& route : kRoutes) {
            for (const char* literal : route.literals) {
                if (literal) literals.push_back({literal, static_cast<int>(&route - kRoutes)});
            }
        }
        return literals;
    }());
    const int row = kLiterals.find(message);
    return row == FirstLiteral::kNone ? nullptr : &kRoutes[row];
}

}  // namespace

void forget_replies(int slot) {
    for (const Route& route : kRoutes) route.handle(slot, nullptr);
}

}  // namespace zk

ZK_API int Get_Json_KeyCode(const char* message) {
    const zk::Route* route = message ? zk::find_route(message) : nullptr;
    return route ? route->code : 0;
}

ZK_API int handle_Recv_Json(int32_t slot, char* message) {
    if (slot < 0 || slot >= ZK_SLOTS || !message) return 0;
    if (const zk::Route* route = zk::find_route(message)) route->handle(slot, message);
    return 0;
}
