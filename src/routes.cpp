// The one table of what controllers say: by which literal a message is known, its code, and what becomes of it.
//
// The order of the rows is behaviour. A message belongs to the first row with a literal that stands anywhere in it, so
// a setter's literal comes before the query's that it contains, and a literal that contains an earlier one is never
// reached. The last rows have codes that no literal gives; they stand for commands that wait for them all the same.
#include <cstring>

#include "commands/counters.h"
#include "commands/drag_point.h"
#include "commands/pages.h"
#include "connection/reply.h"
#include "connection/routing.h"
#include "routes.h"
#include "zk/algorithm.h"
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
#include "zk/startup.h"

namespace zk {
namespace {

// The tool frame in use also becomes Tool_Matrix, with its Euler angles in the place of the position.
void tool_frame_in_use(int slot, char* message) {
    add_and_apply<Current_Tool_Cmd, Parser_Get_Current_Tool_Frame, &FrameReply::frame>(
        slot, message, [](const FrameReply& reply) {
            Pose pose = reply.frame.pose;
            pose.position = {pose.euler.rx, pose.euler.ry, pose.euler.rz};
            Tool_Matrix = Algo_Pos2Matrix(pose);
        });
}

void work_frame_in_use(int slot, char* message) {
    add_and_apply<Current_Work_Cmd, Parser_Get_Current_Work_Frame, &FrameReply::frame>(
        slot, message, [](const FrameReply& reply) { Frame_Matrix = Algo_Pos2Matrix(reply.frame.pose); });
}

// The local model follows the arm's mounting.
void mounting(int slot, char* message) {
    add_and_apply<Get_Install_Pose_Cmd, Parser_Get_Install_Pose, &InstallPoseReply::x, &InstallPoseReply::y,
                  &InstallPoseReply::z>(
        slot, message, [](const InstallPoseReply& reply) { Algo_Set_Angle(reply.x, reply.y, reply.z); });
}

// The state of an input lands where those of the outputs are read; its own mailbox learns only that a reply came.
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

// The replies of the force sensor's calibrations are told apart by nobody: both mailboxes get each.
void force_sensor(int slot, char* message) {
    set<Set_Force_Sensor_Cmd, Parser_Set_Force_Sensor>(slot, message);
    set<Auto_Set_Fz_Cmd, Parser_Set_Force_Sensor>(slot, message);
}

// Reports of streamed motion go to the application's callback.
template <int type>
void report(int slot, char* message) {
    if (!message) return;
    ArmMotionReport report{};
    report.report_type = type;
    report.arm_err = 8;
    report.socket = read(SockInfo[slot].socket);
    if constexpr (type == 3) {
        report.result = Parser_Force_Position_Move(report.socket, message, report.joint, report.all_direction_force,
                                                   &report.force, &report.arm_err);
    } else {
        report.result = Parser_Movej_CANFD(report.socket, message, &report.pose, report.joint, &report.arm_err);
    }
    if (const MotionReportCallback callback = read(callback1, std::memory_order_acquire)) callback(report);
}
constexpr Handler kJointReport = report<1>;
constexpr Handler kPoseReport = report<2>;
constexpr Handler kForceReport = report<3>;

void drag_point(int slot, char* message) {
    if (message) save_drag_point(slot, message);
}

// The parser takes nothing of the report of a failure, which is of the device that it names all the same: the arm,
// where it names none, whatever the report before it said.
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
}

// clang-format off
constexpr Route kRoutes[] = {
    {{"add_global_waypoint"}, 265, add<Add_Global_Waypoint_Cmd, Parser_Add_State>},
    {{"update_global_waypoint"}, 266, add<Update_Global_Waypoint_Cmd, Parser_Update_State>},
    {{"delete_global_waypoint"}, 267, add<Delete_Global_Waypoint_Cmd, Parser_Delete_State>},
    {{"given_global_waypoint"}, 268, add<Given_Global_Waypoint_Cmd, Parser_Given_Global_Waypoint, &GlobalWaypointReply::waypoint>},
    {{"get_global_waypoints_list"}, 269, add<Get_Global_Waypoint_List_Cmd, read_waypoint_list, &GlobalWaypointListReply::received, &GlobalWaypointListReply::waypoints>},
    {{"point"}, 231, drag_point},
    {{"set_joint_drive_max_speed", "set_joint_max_drive_speed"}, 218, add<Set_Joint_Drive_Max_Speed_Cmd, Parser_Set_Joint_Drive_Max_Speed>},
    {{"get_joint_drive_max_speed"}, 222, add<Get_Joint_Drive_Max_Speed_Cmd, Parser_Get_Joint_Drive_Max_Speed, &JointReply::value>},
    {{"set_joint_drive_max_acc", "set_joint_max_drive_acc"}, 219, add<Set_Joint_Drive_Max_Acc_Cmd, Parser_Set_Joint_Drive_Max_Acc>},
    {{"get_joint_drive_max_acc"}, 223, add<Get_Joint_Drive_Max_Acc_Cmd, Parser_Get_Joint_Drive_Max_Acc, &JointReply::value>},
    {{"set_joint_drive_max_pos"}, 221, add<Set_Joint_Drive_Max_Pos_Cmd, Parser_Set_Joint_Drive_Max_Pos>},
    {{"get_joint_drive_max_pos"}, 203, add<Get_Joint_Drive_Max_Pos_Cmd, Parser_Get_Joint_Drive_Max_Pos, &JointReply::value>},
    {{"set_joint_drive_min_pos"}, 220, add<Set_Joint_Drive_Min_Pos_Cmd, Parser_Set_Joint_Drive_Min_Pos>},
    {{"get_joint_drive_min_pos"}, 202, add<Get_Joint_Drive_Min_Pos_Cmd, Parser_Get_Joint_Drive_Min_Pos, &JointReply::value>},
    {{"set_joint_max_speed"}, 2, set<Set_Joint_Max_Speed_Cmd, Parser_Joint_Speed>},
    {{"expand_get_version"}, 217, set<Expand_Get_Version_Cmd, Parser_Expand_Get_Version, &IntReply::value>},
    {{"expand_set_version"}, 216, set<Expand_Set_Version_Cmd, Parser_Expand_Set_Version>},
    {{"get_realtime_push"}, 230, add<Get_Realtime_Push_Cmd, Parser_Get_Realtime_Push, &RealtimePushReply::config>},
    {{"expand_state"}, 224, set<Expand_Get_State_Cmd, Parser_Expand_Get_State, &ExpandStateReply::pos, &ExpandStateReply::err_flag, &ExpandStateReply::current, &ExpandStateReply::mode>},
    {{"expand_config"}, 225, set<Expand_Config_Cmd, Parser_Expand_Config>},
    {{"expand_get_config"}, 226, set<Expand_Get_Config_Cmd, Parser_Expand_Get_Config, &ExpandConfigReply::rpm_max, &ExpandConfigReply::rpm_acc, &ExpandConfigReply::conversin_coe, &ExpandConfigReply::limit_min, &ExpandConfigReply::limit_max>},
    {{"joint_max_speed"}, 1, add<Joint_Max_Speed_Cmd, Parser_Get_Joint_Speed, &JointReply::value>},
    {{"joint_zero_pos"}, 7, set_first<Set_Joint_Zero_Cmd, Parser_Joint_Zero_Pos>},
    {{"set_joint_max_acc"}, 3, set<Set_Joint_Max_Acc_Cmd, Parser_Joint_Acc>},
    {{"set_joint_min_pos"}, 4, set_first<Set_Joint_Min_Pos_Cmd, Parser_Joint_Min_Pos>},
    {{"set_joint_max_pos"}, 5, set<Set_Joint_Max_Pos_Cmd, Parser_Joint_Max_Pos>},
    {{"set_joint_en_state"}, 6, set<Set_Joint_En_State_Cmd, Parser_Joint_EN_State>},
    {{"set_joint_clear_err"}, 8, set<Set_Joint_Clear_Err_Cmd, Parser_Joint_Err_Clear>},
    {{"start_calibrate"}, 9, dropped},
    {{"stop_calibrate"}, 10, dropped},
    {{"calibrate_state"}, 11, dropped},
    {{"joint_max_acc"}, 12, add_first<Get_Joint_Max_Acc_Cmd, Parser_Get_Joint_Acc, &JointReply::value>},
    {{"joint_min_pos"}, 13, add<Get_Joint_Min_Pos_Cmd, Parser_Get_Min_Pos, &JointReply::value>},
    {{"joint_max_pos"}, 14, add<Get_Joint_Max_Pos_Cmd, Parser_Get_Max_Pos, &JointReply::value>},
    {{"joint_en_state"}, 15, add<Get_Joint_En_State_Cmd, Parser_Get_Joint_EN_State, &JointIntReply::value>},
    {{"joint_err_flag"}, 16, add<Get_Joint_Err_Flag_Cmd, Parser_Get_Joint_Err_Flag, &JointErrorReply::err_flag, &JointErrorReply::brake_state>},
    {{"joint_software_version"}, 17, add<Get_Joint_Software_Version_Cmd, Parser_Get_Joint_Software_Version, &JointIntReply::value>},
    {{"set_arm_max_line_speed"}, 19, set<Set_Arm_Max_Line_Speed_Cmd, Parser_Arm_Line_Speed>},
    {{"set_arm_max_line_acc"}, 20, set<Set_Arm_Max_Line_Acc_Cmd, Parser_Arm_Line_Acc>},
    {{"set_arm_max_angular_speed"}, 21, set<Set_Arm_Max_Angular_Speed_Cmd, Parser_Arm_Angular_Speed>},
    {{"set_arm_max_angular_acc"}, 22, set<Set_Arm_Max_Angular_Acc_Cmd, Parser_Arm_Angular_Acc>},
    {{"arm_max_line_speed"}, 23, add<Get_Arm_Max_Line_Speed_Cmd, Parser_Get_Arm_Line_Speed, &FloatReply::value>},
    {{"arm_max_line_acc"}, 24, add<Get_Arm_Max_Line_Acc_Cmd, Parser_Get_Arm_Line_Acc, &FloatReply::value>},
    {{"arm_max_angular_speed"}, 25, add<Get_Arm_Max_Angular_Speed_Cmd, Parser_Get_Arm_Angular_Speed, &FloatReply::value>},
    {{"arm_max_angular_acc"}, 26, add<Get_Arm_Max_Angular_Acc_Cmd, Parser_Get_Arm_Angular_Acc, &FloatReply::value>},
    {{"set_arm_init"}, 27, set_first<Set_Arm_Tip_Init_Cmd, Parser_Arm_Tip_Init>},
    {{"get_collision_stage"}, 29, add<Get_Collision_Stage_Cmd, Parser_Get_Collision_Stage, &IntReply::value>},
    {{"set_DH_data"}, 30, set<Set_DH_Data_Cmd, Parser_Set_DH_Data>},
    {{"DH_data"}, 31, add<Get_DH_Data_Cmd, Parser_Get_DH_Data, &DhDataReply::data>},
    {{"set_joint_zero_offset"}, 32, set<Set_Joint_Zero_OffSet_Cmd, Parser_Set_Joint_Zero_Offset>},
    {{"set_arm_dynamic_parm"}, 33, set<Set_ARM_Dynamic_Parm_Cmd, Parser_Set_Hand>},
    {{"tool_software_version"}, 34, add<Get_Tool_SoftWare_Version_Cmd, Parser_Get_Tool_Software_Version, &IntReply::value>},
    {{"set_arm_servo"}, 35, set<Set_Arm_Servo_State_Cmd, Parser_Arm_Servo_State>},
    {{"set_system_state_servo"}, 36, dropped},
    {{"set_auto_tool_frame"}, 37, set<Auto_Set_Tool_Frame_Cmd, Parser_Auto_Set_Tool_Frame>},
    {{"generate_auto_tool_frame"}, 38, set<Auto_Set_Tool_Frame_Cmd, Parser_Auto_Set_Tool_Frame>},
    {{"set_manual_tool_frame"}, 39, set<Manual_Set_Tool_Frame_Cmd, Parser_Manual_Set_Tool_Frame>},
    {{"set_change_tool_frame"}, 40, set_first<Change_Tool_Frame_Cmd, Parser_Change_Tool_Frame>},
    {{"set_delete_tool_frame"}, 41, set<Delete_Tool_Frame_Cmd, Parser_Delete_Tool_Frame>},
    {{"set_payload"}, 42, set<Set_Payload_Cmd, Parser_Set_Hand>},
    {{"set_none_payload"}, 43, set<Set_None_Payload_Cmd, Parser_Set_Hand>},
    {{"current_tool_frame"}, 44, tool_frame_in_use},
    {{"given_tool_frame", "get_tool_frame"}, 45, add<Given_Tool_Cmd, Parser_Get_Given_Tool_Frame, &FrameReply::frame>},
    {{"total_tool_frame"}, 46, add<Get_All_Tool_Frame_Cmd, Parser_Get_All_Tool_Frame, &FrameNamesReply::name, &FrameNamesReply::names>},
    {{"set_auto_work_frame"}, 47, set<Auto_Set_Work_Frame_Cmd, Parser_Auto_Set_Work_Frame>},
    {{"set_manual_work_frame"}, 48, set<Manual_Set_Work_Frame_Cmd, Parser_Manual_Set_Work_Frame>},
    {{"set_change_work_frame"}, 49, set<Change_Work_Frame_Cmd, Parser_Change_Work_Frame>},
    {{"set_delete_work_frame"}, 50, set<Delete_Work_Frame_Cmd, Parser_Delete_Work_Frame>},
    {{"current_work_frame"}, 51, work_frame_in_use},
    {{"given_work_frame", "get_work_frame"}, 52, add<Given_Work_Frame_Cmd, Parser_Get_Given_Work_Frame, &GivenWorkFrameReply::frame_name, &GivenWorkFrameReply::pose>},
    {{"total_work_frame"}, 53, add<Get_All_Work_Frame_Cmd, Parser_Get_All_Work_Frame, &FrameNamesReply::name, &FrameNamesReply::names>},
    {{"current_arm_state"}, 54, add<Arm_Current_State_Cmd, Parser_Arm_State, &ArmStateReply::joint, &ArmStateReply::pose, &ArmStateReply::arm_err, &ArmStateReply::sys_err>},
    {{"current_joint_current"}, 56, add<Get_Joint_Current_Cmd, Parser_Joint_Current, &JointReply::value>},
    {{"current_joint_voltage"}, 57, add_first<Get_Joint_Voltage_Cmd, Parser_Joint_Voltage, &JointReply::value>},
    {{"joint_degree"}, 58, add<Get_Joint_Degree_Cmd, Paser_Get_Joint_Degree, &JointReply::value>},
    {{"arm_all_state"}, 59, add<Get_Joint_All_State_Cmd, Parser_Arm_All_State, &ArmAllStateReply::state>},
    {{"arm_plan_num"}, 60, add<Get_Arm_Plan_Num_Cmd, Parser_Get_Arm_Plan_Num, &IntReply::value>},
    {{"set_init_pose"}, 61, set<Set_Arm_Init_Pose_Cmd, Parser_Set_Arm_Init_Pose>},
    {{"init_pose"}, 62, add<Get_Arm_Init_Pose_Cmd, Parser_Get_Arm_Init_Pose, &JointReply::value>},
    {{"set_install_pose"}, 63, set<Set_Install_Pose_Cmd, Parser_Set_Hand>},
    {{"current_trajectory_state"}, 64, arrival},
    {{"joint_state"}, 65, kJointReport},
    {{"pose_state"}, 66, kPoseReport},
    {{"set_arm_stop"}, 67, set<Set_Arm_Stop_Cmd, Parser_Move_Stop>},
    {{"set_arm_slow_stop"}, 232, set<Set_Arm_Slow_Stop_Cmd, Parser_Move_Slow_Stop>},
    {{"set_arm_pause"}, 68, set<Set_Arm_Pause_Cmd, Parser_Move_Pause>},
    {{"set_delete_current_trajectory"}, 70, set<Clear_Current_Trajectory_Cmd, Parser_Clear_Current_Trajectory>},
    {{"set_arm_delete_trajectory"}, 71, set<Clear_All_Trajectory_Cmd, Parser_Clear_All_Trajectory>},
    {{"arm_current_trajectory"}, 72, set<Get_Arm_Current_Trajectory_Cmd, Parser_Get_Current_Trajectory, &TrajectoryReply::type, &TrajectoryReply::data>},
    {{"movej", "movel", "movec", "moves"}, 189, set<Move_Receive_Cmd, Parser_Receive_State, &MoveAcknowledgement::move_type>},
    {{"add_waypoint"}, 73, dropped},
    {{"start_waypoint"}, 74, dropped},
    {{"clear_waypoint"}, 75, dropped},
    {{"timer"}, 77, dropped},
    {{"set_joint_teach"}, 78, set<Joint_Teach_Cmd_Cmd, Parser_Joint_Teach>},
    {{"set_pos_teach"}, 79, set<Pos_Teach_Cmd_Cmd, Parser_Pos_Teach>},
    {{"set_ort_teach"}, 80, set<Ort_Teach_Cmd_Cmd, Parser_Ort_Teach>},
    {{"set_stop_teach"}, 81, set<Teach_Stop_Cmd_Cmd, Parser_Teach_Stop>},
    {{"set_joint_step"}, 82, dropped},
    {{"set_pos_step"}, 83, dropped},
    {{"set_ort_step"}, 84, dropped},
    {{"controller_state"}, 85, set<Get_Controller_State_Cmd, Parser_Controller_State, &ControllerStateReply::voltage, &ControllerStateReply::current, &ControllerStateReply::temperature, &ControllerStateReply::err_flag>},
    {{"set_arm_power"}, 86, set<Set_Arm_Power_Cmd, Parser_Set_Arm_Power>},
    {{"arm_power_state"}, 87, add<Get_Arm_Power_State_Cmd, Parser_Get_Arm_Power_State, &IntReply::value>},
    {{"clear_system_err"}, 88, set<Clear_System_Err_Cmd, Parser_Clear_System_Err>},
    {{"arm_hardware_version"}, 89, dropped},
    {{"arm_software_version"}, 90, add<Get_Arm_Software_Version_Cmd, Parser_Get_Arm_Software_Version, &SoftwareVersionReply::plan, &SoftwareVersionReply::ctrl, &SoftwareVersionReply::kernel1, &SoftwareVersionReply::kernel2, &SoftwareVersionReply::product>},
    {{"get_log_file"}, 91, dropped},
    {{"get_system_runtime"}, 92, add<Get_System_Runtime_Cmd, read_system_runtime, &SystemRuntimeReply::told, &SystemRuntimeReply::day, &SystemRuntimeReply::hour, &SystemRuntimeReply::min, &SystemRuntimeReply::sec>},
    {{"clear_system_runtime"}, 93, set_first<Clear_System_Runtime_Cmd, Parser_Clear_System_Err>},
    {{"get_joint_odom"}, 94, add<Get_Joint_Odom_Cmd, read_joint_odom, &JointOdomReply::told, &JointOdomReply::value>},
    {{"clear_joint_odom"}, 95, set<Clear_Joint_Odom_Cmd, Parser_Clear_System_Err>},
    {{"set_high_speed_eth"}, 96, set<Set_High_Speed_Eth_Cmd, Parser_Set_High_Speed_Eth>},
    {{"set_tool_DO_state"}, 106, set<Set_Tool_DO_State_Cmd, Parser_Set_Tool_DO_State_2>},
    {{"set_DO_state"}, 97, set<Set_DO_State_Cmd, Parser_Set_DO_State>},
    {{"set_AO_state"}, 98, set<Set_AO_State_Cmd, Parser_Set_AO_State>},
    {{"DO_state"}, 100, add<Get_DO_State_Cmd, Parser_Get_DO_State, &IntReply::value>},
    {{"DI_state"}, 101, digital_input},
    {{"AO_state"}, 102, add<Get_AO_State_Cmd, Parser_Get_AO_State, &FloatReply::value>},
    {{"AI_state"}, 103, add<Get_AI_State_Cmd, Parser_Get_AI_State, &FloatReply::value>},
    {{"IO_input"}, 99, add<Get_IO_State_Cmd, Parser_IO_Input, &IoBankReply::digital, &IoBankReply::analogue>},
    {{"IO_output"}, 104, add<Get_IO_Output_State_Cmd, Parser_IO_Output, &IoBankReply::digital, &IoBankReply::analogue>},
    {{"set_tool_IO_mode"}, 107, set<Set_Tool_IO_Mode_Cmd, Parser_Set_Tool_DO_State>},
    {{"tool_IO_state"}, 108, add<Get_Tool_IO_State_Cmd, Parser_Get_Tool_IO_State, &ToolIoReply::mode, &ToolIoReply::state>},
    {{"Start_Force_Position_Move"}, 160, set<Start_Force_Position_Move_Cmd, Parser_Set_Tool_DO_State>},
    {{"Stop_Force_Position_Move"}, 162, set<Stop_Force_Position_Move_Cmd, Parser_Set_Tool_DO_State>},
    {{"set_tool_voltage"}, 109, set<Set_Tool_Voltage_Cmd, Parser_Set_Tool_Voltage>},
    {{"tool_voltage"}, 110, add<Get_Tool_Voltage_Cmd, Parser_Get_Tool_Voltage, &IntReply::value>},
    {{"set_gripper_route"}, 111, set<Set_Gripper_Route_Cmd, Parser_Set_Gripper_Route>},
    {{"set_gripper"}, 112, set<Set_Gripper_Release_Cmd, Parser_Set_Gripper_Route>},
    {{"start_drag_teach"}, 113, set<Start_Drag_Teach_Cmd, Parser_Drag_Teach>},
    {{"stop_drag_teach"}, 114, set<Stop_Drag_Teach_Cmd, Parser_Drag_Teach>},
    {{"set_drag_teach_sensitivity"}, 272, set<Set_Drag_Teach_Sensitivity_Cmd, Parser_Set_Joint_Zero_Offset>},
    {{"get_drag_teach_sensitivity"}, 273, set<Get_Drag_Teach_Sensitivity_Cmd, Parser_Get_Drag_Teach_Sensitivity, &IntReply::value>},
    {{"run_drag_trajectory"}, 115, set<Run_Drag_Trajectory_Cmd, Parser_Run_Drag_Trajectory>},
    {{"pause_drag_trajectory"}, 116, set<Pause_Drag_Trajectory_Cmd, Parser_Pause_Drag_Trajectory>},
    {{"continue_drag_trajectory"}, 117, set<Continue_Drag_Trajectory_Cmd, Parser_Continue_Drag_Trajectory>},
    {{"stop_drag_trajectory"}, 118, set<Stop_Drag_Trajectory_Cmd, Parser_Stop_Drag_Trajectory>},
    {{"drag_trajectory_origin"}, 119, set<Drag_Trajectory_Origin_Cmd, Parser_Drag_Trajectory_Origin, &DragOriginReply::device>},
    {{"start_multi_drag_teach"}, 120, set<Start_Multi_Drag_Teach_Cmd, Parser_Set_Hand>},
    {{"set_force_position"}, 121, set<Set_Force_Postion_Cmd, Parser_Set_Hand>},
    {{"stop_force_position"}, 122, set<Stop_Force_Postion_Cmd, Parser_Stop_Drag_Trajectory>},
    {{"get_force_data"}, 123, add<Get_Force_Data_Cmd, Parser_Get_Force_Data, &ForceDataReply::force_data, &ForceDataReply::zero_force_data, &ForceDataReply::work_zero_force_data, &ForceDataReply::tool_zero_force_data>},
    {{"clear_force_data"}, 124, set<Clear_Force_Data_Cmd, Parser_Clear_Force_Data>},
    {{"stop_set_force_sensor"}, 126, set<Stop_Set_Force_Sensor_Cmd, Parser_Stop_Force_Sensor>},
    {{"set_force_sensor"}, 125, force_sensor},
    {{"set_hand_posture"}, 127, set<Set_Hand_Posture_Cmd, Parser_Set_Hand>},
    {{"set_hand_seq"}, 128, set<Set_Hand_Seq_Cmd, Parser_Set_Hand>},
    {{"set_hand_angle"}, 129, set<Set_Hand_Angle_Cmd, Parser_Set_Hand>},
    {{"set_hand_speed"}, 130, set<Set_Hand_Speed_Cmd, Parser_Set_Hand>},
    {{"set_PWM"}, 132, dropped},
    {{"get_Fz"}, 133, add<Get_FZ_Data_Cmd, Parser_Get_Fz, &FzReply::fz, &FzReply::zero_fz, &FzReply::work_zero_fz, &FzReply::tool_zero_fz>},
    {{"clear_Fz"}, 134, set<Clear_Fz_Cmd, Parser_Set_Hand>},
    {{"auto_set_Fz"}, 135, force_sensor},
    {{"manual_set_Fz"}, 136, force_sensor},
    {{"close_modbus_mode"}, 138, set<Stop_Modbus_Mode_Cmd, Parser_Set_Hand>},
    {{"read_coils"}, 139, add<Get_Read_Coils_Cmd, Parser_Get_read_coils, &IntReply::value>},
    {{"read_multiple_coils"}, 215, add<Get_Read_Multiple_Coils_Cmd, Parser_Get_Read_Multiple_Coils, &ModbusValuesReply::value, &ModbusValuesReply::values>},
    {{"input_status"}, 140, add<Get_Read_Input_Status_Cmd, Parser_Get_read_coils, &IntReply::value>},
    {{"multiple_holding_registers"}, 211, add<Read_Multiple_Holding_Registers_Cmd, Parser_Read_Multiple_Holding_Registers, &ModbusValuesReply::value, &ModbusValuesReply::values>},
    {{"multiple_input_registers"}, 270, add<Read_Multiple_intput_Registers_Cmd, Parser_Read_Multiple_Holding_Registers, &ModbusValuesReply::value, &ModbusValuesReply::values>},
    {{"holding_registers"}, 141, add<Get_Read_Holding_Registers_Cmd, Parser_Get_read_coils, &IntReply::value>},
    {{"input_registers"}, 142, add<Get_Read_Input_Registers_Cmd, Parser_Get_read_coils, &IntReply::value>},
    {{"write_single_coil"}, 143, set<Write_Single_Coil_Cmd, Parser_Write_single_coil>},
    {{"write_coils"}, 144, set<Write_Coils_Cmd, Parser_Write_Multiple_Coils>},
    {{"write_single_register"}, 145, set<Write_Single_Registers_Cmd, Parser_Write_single_coil>},
    {{"write_registers"}, 146, set<Write_Registers_Cmd, Parser_Write_Multiple_Coils>},
    {{"set_vehicle"}, 147, dropped},
    {{"set_lift_speed"}, 149, dropped},
    {{"set_lift_height"}, 150, dropped},
    {{"set_lift"}, 148, dropped},
    {{"lift_state"}, 151, set<Get_Lift_State_Cmd, Parser_Get_Lift_Speed, &LiftStateReply::height, &LiftStateReply::current, &LiftStateReply::err_flag, &LiftStateReply::mode>},
    {{"set_car_move"}, 152, dropped},
    {{"set_car_speed"}, 153, dropped},
    {{"set_car_navigation_speed"}, 154, dropped},
    {{"set_car_navigation_mode"}, 155, dropped},
    {{"get_car_state"}, 156, dropped},
    {{"set_car_charge"}, 157, dropped},
    {{"set_car_station_num"}, 158, dropped},
    {{"set_collision_state"}, 28, set<Set_Collision_Stage_Cmd, Parser_Set_Collision_Stage>},
    {{"current_joint_temperature"}, 55, add<Get_Joint_Temperature_Cmd, Parser_Joint_Temperature, &JointReply::value>},
    {{"set_arm_continue"}, 69, set<Set_Arm_Continue_Cmd, Parser_Move_Continue>},
    {{"set_hand_force"}, 131, set<Set_Hand_Force_Cmd, Parser_Set_Hand>},
    {{"hand_follow_angle"}, 274, set<Set_Hand_Follow_Angle_Cmd, Parser_Set_Hand>},
    {{"hand_follow_pos"}, 275, set<Set_Hand_Follow_Pos_Cmd, Parser_Set_Hand>},
    {{"set_modbus_mode"}, 137, set<Set_Modbus_Mode_Cmd, Parser_Set_Hand>},
    {{"set_modbustcp_mode"}, 252, add<Set_Modbustcp_Mode_Cmd, Parser_Set_Modbustcp_Mode>},
    {{"Force_Position_State"}, 161, kForceReport},
    {{"set_teach_frame"}, 165, set<Set_Teach_Frame_Cmd, Parser_Set_TEACH_FRAME>},
    {{"get_teach_frame"}, 241, set<Get_Teach_Frame_Cmd, Parser_Get_Teach_Frame, &IntReply::value>},
    {{"download_project"}, 164, set<Send_Project_Cmd, Parser_SendFile, &IntReply::value>},
    {{"run_project"}, 163, set<Run_Project_Cmd, Parser_RunProject>},
    {{"install_pose"}, 167, mounting},
    {{"auto_set_joint_limit"}, 206, set<Auto_Set_Joint_Limit_Cmd, Parser_Set_Joint_Limit>},
    {{"IO_state"}, 105, add<Get_DIO_State_Cmd, Parser_Get_IO_State, &IoStateReply::state, &IoStateReply::mode>},
    {{"set_arm_run_mode"}, 181, set<Set_Arm_Run_Mode_NC_Cmd, Parser_Set_Arm_Run_Mode_NC_E>},
    {{"get_arm_run_mode"}, 182, add<Get_Arm_Run_Mode_NC_Cmd, Parser_Get_Arm_Run_Mode_NC_E, &IntReply::value>},
    {{"run_update_software"}, 183, set<Run_Update_Software_Project_Cmd, Parser_Run_UpdateSoftware_E>},
    {{"online_next"}, 184, set<Set_Online_Start_Cmd, Parser_Set_Online_Start>},
    {{"set_lift_version"}, 185, set<Set_Lift_Version_Cmd, Parser_Set_Lift_Version_E>},
    {{"set_sale_version"}, 192, set<Set_Sale_Version_Cmd, Parser_Set_Sale_Version_E>},
    {{"get_tool_hardware_version"}, 193, add<Get_Tool_Hardware_Version_Cmd, Parser_Get_Tool_Software_Version, &IntReply::value>},
    {{"save_trajectory"}, 194, set<Save_Trajectory_Cmd, Parser_Save_Drag_Teach_File_Block_NC_E, &IntReply::value>},
    {{"popup"}, 197, set<Set_Popup_Cmd, Parser_Set_Popup>},
    {{"get_program_trajectory_list"}, 235, set<Get_Program_Trajectory_List_Cmd, read_program_list, &ProgramListReply::received, &ProgramListReply::programs>},
    {{"get_program_run_state"}, 236, set<Get_Program_Run_State_Cmd, Parser_Get_Program_Run_State, &ProgramRunStateReply::state>},
    {{"set_program_id_start"}, 237, set<Set_Program_ID_Start_Cmd, Parser_Set_Program_ID_Start>},
    {{"program_run_finish"}, 240, set<Run_Finish_Cmd, Parser_Program_Run_Finish, &IntReply::value>},
    {{"delete_program_trajectory"}, 239, set<Delete_Program_Trajectory_Cmd, Parser_Delete_State>},
    {{"set_high_ethernet"}, 198, set<Set_High_Ethernet_Cmd, Parser_Set_High_Ethernet>},
    {{"get_high_ethernet"}, 199, add<Get_High_Ethernet_Cmd, Parser_Get_High_Ethernet, &HighEthernetReply::ip, &HighEthernetReply::mask, &HighEthernetReply::gateway, &HighEthernetReply::mac>},
    {{"save_device_info_all"}, 200, set<Save_Device_Info_All_Cmd, Parser_Save_Device_Info_All>},
    {{"set_NetIP"}, 201, set<Set_NetIP_Cmd, Parser_Set_NetIP>},
    {{"get_wired_net"}, 208, add<Get_Wired_Net_Cmd, Parser_Get_Wired_Net, &WiredNetReply::ip, &WiredNetReply::mask, &WiredNetReply::mac>},
    {{"get_wifi_net"}, 209, add<Get_Wifi_Net_Cmd, Parser_Get_Wifi_Net, &WifiNetReply::net>},
    {{"get_controller_RS485_mode"}, 233, add<Get_Controller_RS485_Cmd, Parser_Get_Controller_RS485_Mode, &Rs485Reply::mode, &Rs485Reply::baudrate, &Rs485Reply::timeout>},
    {{"get_tool_RS485_mode"}, 234, add<Get_Tool_RS485_Cmd, Parser_Get_Tool_RS485_Mode, &Rs485Reply::mode, &Rs485Reply::baudrate, &Rs485Reply::timeout>},
    {{"set_net_default"}, 210, set<Set_Net_Default_Cmd, Parser_Set_Net_Default_Cmd>},
    {{"set_IO_mode"}, 212, set<Set_IO_Mode_Cmd, Parser_Set_IO_Mode>},
    {{"set_voltage"}, 213, set<Set_Voltage_Cmd, Parser_Set_Voltage>},
    {{"voltage_state"}, 214, add<Get_Voltage_Cmd, Parser_Get_Voltage, &IntReply::value>},
    {{"set_realtime_push"}, 229, add<Set_Realtime_Push_Cmd, Parser_Set_Realtime_Push>},
    {{"set_electronic_fence_enable"}, 242, add<Set_Electronic_Fence_Enable_Cmd, Parser_Set_Electronic_Fence_Enable>},
    {{"get_electronic_fence_enable"}, 243, add<Get_Electronic_Fence_Enable_Cmd, Parser_Get_Electronic_Fence_Enable, &FenceEnableReply::enable, &FenceEnableReply::in_out_side, &FenceEnableReply::effective_region>},
    {{"set_electronic_fence_config"}, 244, add<Set_Electronic_Fence_Config_Cmd, Parser_Set_Electronic_Fence_Config>},
    {{"get_electronic_fence_config"}, 245, add<Get_Electronic_Fence_Config_Cmd, Parser_Get_Electronic_Fence_Config, &FenceConfigReply::fence>},
    {{"add_electronic_fence_config"}, 246, add<Add_Electronic_Fence_Config_Cmd, Parser_Add_Electronic_Fence_Config>},
    {{"update_electronic_fence_config"}, 247, add<Update_Electronic_Fence_Config_Cmd, Parser_Update_Electronic_Fence_Config>},
    {{"delete_electronic_fence_config"}, 248, add<Delete_Electronic_Fence_Config_Cmd, Parser_delete_Electronic_Fence_Config>},
    {{"get_electronic_fence_list_names"}, 249, add<Get_Electronic_Fence_List_Name_Cmd, Parser_Get_Electronic_Fence_List_Names, &FenceNamesReply::name, &FenceNamesReply::names>},
    {{"given_electronic_fence_config"}, 250, add<Given_Electronic_Fence_Config_Cmd, Parser_Given_Electronic_Fence_Config, &FenceConfigReply::fence>},
    {{"get_electronic_fence_list_infos"}, 251, add<Get_Electronic_Fence_List_Info_Cmd, Parser_Get_Electronic_Fence_List_Info, &FenceListReply::fence, &FenceListReply::fences>},
    {{"close_modbustcp_mode"}, 253, add<Close_Modbustcp_Mode_Cmd, Parser_Close_Modbustcp_Mode>},
    {{"set_self_collision_enable"}, 254, add<Set_Self_Collision_Enable_Cmd, Parser_Set_Self_Collision_Enable>},
    {{"get_self_collision_enable"}, 255, add<Get_Self_Collision_Enable_Cmd, Parser_Get_Self_Collision_Enable, &IntReply::value>},
    {{"get_gripper_state"}, 204, add<Get_Gripper_State_Cmd, Parser_Get_Gripper_State, &GripperStateReply::state>},
    {{"auto_fix_joint_over_soft_limit"}, 205, add<Auto_Fix_Joint_Over_Soft_Limit_Cmd, Parser_Set_IO_Mode>},
    {{"arm_software_info"}, 207, add<Get_Arm_Software_Info_Cmd, Parser_Get_Arm_Software_Info, &ArmSoftwareInfoReply::info>},
    {{"plan_speed"}, 196, set<Set_Plan_Speed_Cmd, Parser_Set_Plan_Speed>},
    {{"set_force_drag_threshold"}, 186, add<Set_Force_Drag_Threshold_Cmd, Parser_Set_IO_Mode>},
    {{"get_force_drag_threshold"}, 187, add<Get_Force_Drag_Threshold_Cmd, Parser_Get_Force_Drag_Threshold, &IntReply::value>},
    {{"init_force_drag_threshold"}, 188, add<Init_Force_Drag_Threshold_Cmd, Parser_init_force_drag_threshold>},
    {{"set_tool_envelope"}, 190, add<Set_Tool_Envelope_Cmd, Parser_Set_High_Speed_Eth>},
    {{"velope"}, 191, add<Get_Tool_Envelope_Cmd, Parser_Get_Tool_Envelope, &ToolEnvelopeReply::envelope>},
    {{"set_virtual_wall_config"}, 256, add<Set_Virtual_Wall_Config_Cmd, Parser_Set_Config>},
    {{"get_virtual_wall_config"}, 257, add<Get_Virtual_Wall_Config_Cmd, Parser_Get_Electronic_Fence_Config, &FenceConfigReply::fence>},
    {{"set_virtual_wall_enable"}, 258, add<Set_Virtual_Wall_Enable_Cmd, Parser_Set_High_Speed_Eth>},
    {{"get_virtual_wall_enable"}, 259, add<Get_Virtual_Wall_Enable_Cmd, Parser_Get_Electronic_Fence_Enable, &FenceEnableReply::enable, &FenceEnableReply::in_out_side, &FenceEnableReply::effective_region>},
    {{"update_work_frame"}, 260, add<Update_Work_Frame_Cmd, Parser_Update_State>},
    {{"update_tool_frame"}, 261, add<Update_Tool_Frame_Cmd, Parser_Update_State>},
    {{"set_default_run_program"}, 263, add<Set_Default_Run_Program_Cmd, Parser_Set_High_Speed_Eth>},
    {{"get_default_run_program"}, 264, add<Get_Default_Run_Program_Cmd, Parser_Get_id, &IntReply::value>},
    {{"update_program_trajectory"}, 262, add<Update_Program_Trajectory_Cmd, Parser_Update_State>},
    {{}, 169, set<Set_IO_Mode_NC_Cmd, Parser_Set_High_Speed_Eth>},
    {{}, 176, set<Set_IO_State_NC_Cmd, Parser_Set_High_Speed_Eth>},
    {{}, 177, add<Get_IO_State_NC_Cmd, Parser_Get_IO_State_NC_E, &IoStateReply::state, &IoStateReply::mode>},
    {{}, 178, add<Get_Controller_Voltage_NC_Cmd, Parser_Get_Tool_Voltage, &IntReply::value>},
    {{}, 179, set<Set_Controller_Voltage_NC_Cmd, Parser_Set_Gripper_Route>},
    {{}, 180, set<Set_Controller_IP_NC_Cmd, Parser_Set_Net_State_E>},
    {{}, 195, set<Set_Controller_ResetIP_NC_Cmd, Parser_Set_Net_State_E>},
};
// clang-format on

const Route* find_route(const char* message) {
    for (const Route& route : kRoutes) {
        for (const char* literal : route.literals) {
            if (!literal) break;
            if (std::strstr(message, literal)) return &route;
        }
    }
    return nullptr;
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
