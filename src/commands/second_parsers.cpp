// The second family of parsers.
#include "zk/replies/second_parsers.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "commands/frame_replies.h"
#include "connection/reply.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/drag_teach.h"
#include "zk/replies/force_control.h"
#include "zk/replies/frames.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/io.h"
#include "zk/replies/joint_configuration.h"
#include "zk/replies/motion.h"
#include "zk/replies/system.h"
#include "zk/replies/trajectory.h"

using namespace zk;

static float thousandth(Item number) { return static_cast<float>(number.number() / 1000.0); }

// ---------------------------------------------------------------------------------------------- Joint configuration --

ZK_API int Parser_Joint_Speed_E(const char* text) { return Parser_Joint_Speed(text); }
ZK_API int Parser_Joint_Acc_E(const char* text) { return Parser_Joint_Acc(text); }
ZK_API int Parser_Joint_Min_Pos_E(const char* text) { return Parser_Joint_Min_Pos(text); }
ZK_API int Parser_Joint_Max_Pos_E(const char* text) { return Parser_Joint_Max_Pos(text); }
ZK_API int Parser_Get_Joint_Speed_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Get_Joint_Speed(socket, text, out);
}
ZK_API int Parser_Get_Joint_Acc_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Get_Joint_Acc(socket, text, out);
}
ZK_API int Parser_Get_Min_Pos_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Get_Min_Pos(socket, text, out);
}
ZK_API int Parser_Get_Max_Pos_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Get_Max_Pos(socket, text, out);
}
ZK_API int Parser_Joint_EN_State_E(const char* text) { return Parser_Joint_EN_State(text); }
ZK_API int Parser_Get_Joint_EN_State_E(ArmSocket socket, const char* text, int32_t* state) {
    return Parser_Get_Joint_EN_State(socket, text, state);
}
ZK_API int Parser_Joint_Err_Clear_E(const char* text) { return Parser_Joint_Err_Clear(text); }
ZK_API int Parser_Get_Joint_Err_Flag_E(ArmSocket socket, const char* text, int32_t* err_flag, int32_t* brake_state) {
    return Parser_Get_Joint_Err_Flag(socket, text, err_flag, brake_state);
}
ZK_API int Parser_Get_Joint_Software_Version_E(ArmSocket socket, const char* text, int32_t* version) {
    return Parser_Get_Joint_Software_Version(socket, text, version);
}
ZK_API int Parser_Joint_Zero_Pos_E(const char* text) { return Parser_Joint_Zero_Pos(text); }

// ------------------------------------------------------------------------------------------------ Limits of the arm --

ZK_API int Parser_Arm_Line_Speed_E(const char* text) { return Parser_Arm_Line_Speed(text); }
ZK_API int Parser_Get_Arm_Line_Speed_E(const char* text, float* value) {
    return Parser_Get_Arm_Line_Speed(text, value);
}
ZK_API int Parser_Arm_Line_Acc_E(const char* text) { return Parser_Arm_Line_Acc(text); }
ZK_API int Parser_Get_Arm_Line_Acc_E(const char* text, float* value) { return Parser_Get_Arm_Line_Acc(text, value); }
ZK_API int Parser_Arm_Angular_Speed_E(const char* text) { return Parser_Arm_Angular_Speed(text); }
ZK_API int Parser_Get_Arm_Angular_Speed_E(const char* text, float* value) {
    return Parser_Get_Arm_Angular_Speed(text, value);
}
ZK_API int Parser_Arm_Angular_Acc_E(const char* text) { return Parser_Arm_Angular_Acc(text); }
ZK_API int Parser_Get_Arm_Angular_Acc_E(const char* text, float* value) {
    return Parser_Get_Arm_Angular_Acc(text, value);
}
ZK_API int Parser_Arm_Tip_Init_E(const char* text) { return Parser_Arm_Tip_Init(text); }
ZK_API int Parser_Set_Collision_Stage_E(const char* text) { return Parser_Set_Collision_Stage(text); }
ZK_API int Parser_Get_Collision_Stage_E(const char* text, int32_t* stage) {
    return Parser_Get_Collision_Stage(text, stage);
}
ZK_API int Parser_Set_DH_Data_E(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Get_DH_Data_E(const char* text, float* data) { return Parser_Get_DH_Data(text, data); }
ZK_API int Parser_Set_Joint_Zero_Offset_E(const char* text) { return Parser_Set_Joint_Zero_Offset(text); }
ZK_API int Parser_Set_Hand_E(const char* text) { return Parser_Set_Hand(text); }
ZK_API int Parser_Arm_Servo_State_E(const char* text) { return Parser_Arm_Servo_State(text); }

// ------------------------------------------------------------------------------------------------- State of the arm --

ZK_API int Parser_Arm_State_E(ArmSocket socket, const char* text, float* joint, Pose* pose, uint16_t* arm_err,
                              uint16_t* sys_err) {
    return Parser_Arm_State(socket, text, joint, pose, arm_err, sys_err);
}
ZK_API int Parser_Joint_Temperature_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Joint_Temperature(socket, text, out);
}
ZK_API int Parser_Joint_Current_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Joint_Current(socket, text, out);
}
ZK_API int Parser_Joint_Voltage_E(ArmSocket socket, const char* text, float* out) {
    return Parser_Joint_Voltage(socket, text, out);
}
ZK_API int Parser_Arm_All_State_E(ArmSocket socket, const char* text, ArmAllState* state) {
    return Parser_Arm_All_State(socket, text, state);
}
ZK_API int Parser_Get_Arm_Plan_Num_E(const char* text, int32_t* number) {
    return Parser_Get_Arm_Plan_Num(text, number);
}
ZK_API int Parser_Set_Arm_Init_Pose_E(const char* text) { return Parser_Set_Arm_Init_Pose(text); }
ZK_API int Parser_Get_Arm_Init_Pose_E(ArmSocket socket, const char* text, float* joint) {
    return Parser_Get_Arm_Init_Pose(socket, text, joint);
}

// ----------------------------------------------------------------------------------------------- Frames and payload --

ZK_API int Parser_Auto_Set_Tool_Frame_E(const char* text) { return Parser_Auto_Set_Tool_Frame(text); }
ZK_API int Parser_Manual_Set_Tool_Frame_E(const char* text) { return Parser_Manual_Set_Tool_Frame(text); }
ZK_API int Parser_Change_Tool_Frame_E(const char* text) { return Parser_Change_Tool_Frame(text); }
ZK_API int Parser_Delete_Tool_Frame_E(const char* text) { return Parser_Delete_Tool_Frame(text); }
ZK_API int Parser_Get_All_Tool_Frame_E(const char* text, FrameName* names, int32_t* count) {
    return Parser_Get_All_Tool_Frame(text, names, count);
}
ZK_API int Parser_Auto_Set_Work_Frame_E(const char* text) { return Parser_Auto_Set_Work_Frame(text); }
ZK_API int Parser_Manual_Set_Work_Frame_E(const char* text) { return Parser_Manual_Set_Work_Frame(text); }
ZK_API int Parser_Change_Work_Frame_E(const char* text) { return Parser_Change_Work_Frame(text); }
ZK_API int Parser_Delete_Work_Frame_E(const char* text) { return Parser_Delete_Work_Frame(text); }
ZK_API int Parser_Get_Current_Work_Frame_E(const char* text, FrameRec* frame) {
    return Parser_Get_Current_Work_Frame(text, frame);
}
ZK_API int Parser_Get_All_Work_Frame_E(const char* text, FrameName* names, int32_t* count) {
    return Parser_Get_All_Work_Frame(text, names, count);
}

constexpr FrameReading kReading = {.tool_name_bytes = 9, .wrong_pose_size = ZK_OTHER_DEVICE, .mass_divisor = 1.0};
ZK_API int Parser_Get_Current_Tool_Frame_E(const char* text, FrameRec* frame) {
    return read_current_tool(text, frame, kReading);
}
ZK_API int Parser_Get_Given_Tool_Frame_E(const char* text, FrameRec* frame) {
    return read_given_tool(text, frame, kReading);
}
ZK_API int Parser_Get_Given_Work_Frame_E(const char* text, char* name, Pose* pose) {
    return read_given_work(text, name, pose, kReading);
}

// ----------------------------------------------------------------------------------------------------------- Motion --

ZK_API int Parser_Plan_Feedback_E(const char* text, int32_t* device, int32_t* trajectory_connect) {
    return Parser_Plan_Feedback(text, device, trajectory_connect);
}
ZK_API int Parser_Movej_CANFD_E(ArmSocket socket, const char* text, Pose* pose, float* joint, uint16_t* arm_err) {
    return Parser_Movej_CANFD(socket, text, pose, joint, arm_err);
}
ZK_API int Parser_Move_Stop_E(const char* text) { return Parser_Move_Stop(text); }
ZK_API int Parser_Move_Pause_E(const char* text) { return Parser_Move_Pause(text); }
ZK_API int Parser_Move_Continue_E(const char* text) { return Parser_Move_Continue(text); }
ZK_API int Parser_Clear_Current_Trajectory_E(const char* text) { return Parser_Clear_Current_Trajectory(text); }
ZK_API int Parser_Clear_All_Trajectory_E(const char* text) { return Parser_Clear_All_Trajectory(text); }
ZK_API int Parser_Get_Current_Trajectory_E(ArmSocket socket, const char* text, int32_t* type, float* data) {
    return Parser_Get_Current_Trajectory(socket, text, type, data);
}

// --------------------------------------------------------------------------------------------------------- Teaching --

ZK_API int Parser_Joint_Teach_E(const char* text) { return Parser_Joint_Teach(text); }
ZK_API int Parser_Pos_Teach_E(const char* text) { return Parser_Pos_Teach(text); }
ZK_API int Parser_Ort_Teach_E(const char* text) { return Parser_Ort_Teach(text); }
ZK_API int Parser_Teach_Stop_E(const char* text) { return Parser_Teach_Stop(text); }

// ----------------------------------------------------------------------------------------------------------- System --

ZK_API int Parser_Set_Arm_Power_E(const char* text) { return Parser_Set_Arm_Power(text); }
ZK_API int Parser_Get_Arm_Power_State_E(const char* text, int32_t* on) { return Parser_Get_Arm_Power_State(text, on); }
ZK_API int Parser_Clear_System_Err_E(const char* text) { return Parser_Clear_System_Err(text); }
ZK_API int Parser_Controller_State_E(const char* text, float* voltage, float* current, float* temperature,
                                     int32_t* err_flag) {
    return Parser_Controller_State(text, voltage, current, temperature, err_flag);
}
ZK_API int Parser_Get_Arm_Software_Version_E(const char* text, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                             char* product) {
    return Parser_Get_Arm_Software_Version(text, plan, ctrl, kernel1, kernel2, product);
}
ZK_API int Parser_Get_Tool_Software_Version_E(const char* text, int32_t* version) {
    return Parser_Get_Tool_Software_Version(text, version);
}
ZK_API int Parser_Get_System_Runtime_E(const char* text, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec) {
    return Parser_Get_System_Runtime(text, day, hour, min, sec);
}
ZK_API int Parser_Get_Joint_Odom_E(const char* text, float* odom) { return Parser_Get_Joint_Odom(text, odom); }
ZK_API int Parser_Set_High_Speed_Eth_E(const char* text) { return Parser_Set_High_Speed_Eth(text); }

// ----------------------------------------------------------------------------------------------- Inputs and outputs --

ZK_API int Parser_Set_DO_State_E(const char* text) { return Parser_Set_DO_State(text); }
ZK_API int Parser_Set_AO_State_E(const char* text) { return Parser_Set_AO_State(text); }
ZK_API int Parser_Set_Tool_DO_State_2_E(const char* text) { return Parser_Set_Tool_DO_State_2(text); }
ZK_API int Parser_Set_Tool_DO_State_E(const char* text) { return Parser_Set_Tool_DO_State(text); }
ZK_API int Parser_Set_Tool_Voltage_E(const char* text) { return Parser_Set_Tool_Voltage(text); }
ZK_API int Parser_Get_DO_State_E(const char* text, int32_t* state) { return Parser_Get_DO_State(text, state); }
ZK_API int Parser_Get_DI_State_E(const char* text, int32_t* state) { return Parser_Get_DI_State(text, state); }
ZK_API int Parser_Get_AO_State_E(const char* text, float* volts) { return Parser_Get_AO_State(text, volts); }
ZK_API int Parser_Get_AI_State_E(const char* text, float* volts) { return Parser_Get_AI_State(text, volts); }
ZK_API int Parser_IO_Input_E(const char* text, int32_t* digital, float* analogue) {
    return Parser_IO_Input(text, digital, analogue);
}
ZK_API int Parser_IO_Output_E(const char* text, int32_t* digital, float* analogue) {
    return Parser_IO_Output(text, digital, analogue);
}
ZK_API int Parser_Get_IO_State_E(const char* text, int32_t* state, int32_t* mode) {
    return Parser_Get_IO_State(text, state, mode);
}
ZK_API int Parser_Get_Tool_IO_State_E(const char* text, float* mode, float* state) {
    return Parser_Get_Tool_IO_State(text, mode, state);
}
ZK_API int Parser_Get_Tool_Voltage_E(const char* text, int32_t* type) { return Parser_Get_Tool_Voltage(text, type); }

// ----------------------------------------------------------------------------------- Hands, drag teaching and force --

ZK_API int Parser_Set_Gripper_Route_E(const char* text) { return Parser_Set_Gripper_Route(text); }
ZK_API int Parser_Drag_Teach_E(const char* text) { return Parser_Drag_Teach(text); }
ZK_API int Parser_Run_Drag_Trajectory_E(const char* text) { return Parser_Run_Drag_Trajectory(text); }
ZK_API int Parser_Pause_Drag_Trajectory_E(const char* text) { return Parser_Pause_Drag_Trajectory(text); }
ZK_API int Parser_Continue_Drag_Trajectory_E(const char* text) { return Parser_Continue_Drag_Trajectory(text); }
ZK_API int Parser_Stop_Drag_Trajectory_E(const char* text) { return Parser_Stop_Drag_Trajectory(text); }
ZK_API int Parser_Drag_Trajectory_Origin_E(const char* text, int32_t* device) {
    return Parser_Drag_Trajectory_Origin(text, device);
}
ZK_API int Parser_Clear_Force_Data_E(const char* text) { return Parser_Clear_Force_Data(text); }
ZK_API int Parser_Set_Force_Sensor_E(const char* text) { return Parser_Set_Force_Sensor(text); }
ZK_API int Parser_Stop_Force_Sensor_E(const char* text) { return Parser_Stop_Force_Sensor(text); }

ZK_API int Parser_Get_Force_Data_E(const char* text, float* force) {
    Reply reply(text);
    const Item forces = reply.array(reply.root(), "force_data");
    for (int i = 0; i < std::min(forces.size(), 6); ++i) force[i] = thousandth(forces[i]);
    return reply.status();
}
ZK_API int Parser_Get_Fz_E(const char* text, float* fz) {  // the controller means well when it says false
    Reply reply(text);
    reply.require(reply.find("set_state").is_false(), ZK_BAD_REPLY);
    if (const Item number = reply.number(reply.root(), "Fz")) *fz = thousandth(number);
    return reply.status();
}

// ----------------------------------------------------------------------------------------------- Files and progress --

ZK_API int Parser_SendFile_E(const char* text) {
    if (text && std::strstr(text, "true")) return ZK_OK;
    std::printf("Parser_SendFile: %s\r\n", text ? text : "");
    return ZK_BAD_PATH;
}

static int told_integer(const char* text, const char* key, int32_t* value) {
    const Reply reply(text);
    if (const Item number = reply.find(key)) *value = number.integer();
    return reply.status();
}
ZK_API int Parser_Get_Update_scale_E(const char* text, int32_t* scale) { return told_integer(text, "scale", scale); }
ZK_API int Parser_Get_Popup_E(const char* text, int32_t* content) { return told_integer(text, "content", content); }
