/* The second family of parsers, for applications that read replies themselves. <name>_E is the same function as <name>,
 * unless a comment here says otherwise. The parsers with this ending that the library itself uses are declared with
 * their family. Any thread. */
#ifndef ZK_SECOND_PARSERS_H
#define ZK_SECOND_PARSERS_H

#include "zk/arm_state.h"
#include "zk/connection.h"
#include "zk/frames.h"

/* ------------------------------------------------------------------------------------------- Joint configuration -- */

ZK_API int Parser_Joint_Speed_E(const char* text);
ZK_API int Parser_Joint_Acc_E(const char* text);
ZK_API int Parser_Joint_Min_Pos_E(const char* text);
ZK_API int Parser_Joint_Max_Pos_E(const char* text);
ZK_API int Parser_Get_Joint_Speed_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Get_Joint_Acc_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Get_Min_Pos_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Get_Max_Pos_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Joint_EN_State_E(const char* text);
ZK_API int Parser_Get_Joint_EN_State_E(ArmSocket socket, const char* text, int32_t* state);
ZK_API int Parser_Joint_Err_Clear_E(const char* text);
ZK_API int Parser_Get_Joint_Err_Flag_E(ArmSocket socket, const char* text, int32_t* err_flag, int32_t* brake_state);
ZK_API int Parser_Get_Joint_Software_Version_E(ArmSocket socket, const char* text, int32_t* version);
ZK_API int Parser_Joint_Zero_Pos_E(const char* text);

/* --------------------------------------------------------------------------------------------- Limits of the arm -- */

ZK_API int Parser_Arm_Line_Speed_E(const char* text);
ZK_API int Parser_Get_Arm_Line_Speed_E(const char* text, float* value);
ZK_API int Parser_Arm_Line_Acc_E(const char* text);
ZK_API int Parser_Get_Arm_Line_Acc_E(const char* text, float* value);
ZK_API int Parser_Arm_Angular_Speed_E(const char* text);
ZK_API int Parser_Get_Arm_Angular_Speed_E(const char* text, float* value);
ZK_API int Parser_Arm_Angular_Acc_E(const char* text);
ZK_API int Parser_Get_Arm_Angular_Acc_E(const char* text, float* value);
ZK_API int Parser_Arm_Tip_Init_E(const char* text);
ZK_API int Parser_Set_Collision_Stage_E(const char* text);
ZK_API int Parser_Get_Collision_Stage_E(const char* text, int32_t* stage);
ZK_API int Parser_Set_DH_Data_E(const char* text);
ZK_API int Parser_Get_DH_Data_E(const char* text, float* data);
ZK_API int Parser_Set_Joint_Zero_Offset_E(const char* text);
ZK_API int Parser_Set_Hand_E(const char* text);
ZK_API int Parser_Arm_Servo_State_E(const char* text);

/* ---------------------------------------------------------------------------------------------- State of the arm -- */

ZK_API int Parser_Arm_State_E(ArmSocket socket, const char* text, float* joint, Pose* pose, uint16_t* arm_err,
                              uint16_t* sys_err);
ZK_API int Parser_Joint_Temperature_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Joint_Current_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Joint_Voltage_E(ArmSocket socket, const char* text, float* out);
ZK_API int Parser_Arm_All_State_E(ArmSocket socket, const char* text, ArmAllState* state);
ZK_API int Parser_Get_Arm_Plan_Num_E(const char* text, int32_t* number);
ZK_API int Parser_Set_Arm_Init_Pose_E(const char* text);
ZK_API int Parser_Get_Arm_Init_Pose_E(ArmSocket socket, const char* text, float* joint);

/* -------------------------------------------------------------------------------------------- Frames and payload -- */

ZK_API int Parser_Auto_Set_Tool_Frame_E(const char* text);
ZK_API int Parser_Manual_Set_Tool_Frame_E(const char* text);
ZK_API int Parser_Change_Tool_Frame_E(const char* text);
ZK_API int Parser_Delete_Tool_Frame_E(const char* text);
ZK_API int Parser_Get_All_Tool_Frame_E(const char* text, FrameName* names, int32_t* count);
ZK_API int Parser_Auto_Set_Work_Frame_E(const char* text);
ZK_API int Parser_Manual_Set_Work_Frame_E(const char* text);
ZK_API int Parser_Change_Work_Frame_E(const char* text);
ZK_API int Parser_Delete_Work_Frame_E(const char* text);
ZK_API int Parser_Get_Current_Work_Frame_E(const char* text, FrameRec* frame);
ZK_API int Parser_Get_All_Work_Frame_E(const char* text, FrameName* names, int32_t* count);

/* These return 12 for a pose that has not six elements. The two about tools copy at most nine bytes of the name, and
 * store the payload as received, unscaled. */
ZK_API int Parser_Get_Current_Tool_Frame_E(const char* text, FrameRec* frame);
ZK_API int Parser_Get_Given_Tool_Frame_E(const char* text, FrameRec* frame);
ZK_API int Parser_Get_Given_Work_Frame_E(const char* text, char* name, Pose* pose);

/* -------------------------------------------------------------------------------------------------------- Motion -- */

ZK_API int Parser_Plan_Feedback_E(const char* text, int32_t* device, int32_t* trajectory_connect);
ZK_API int Parser_Movej_CANFD_E(ArmSocket socket, const char* text, Pose* pose, float* joint, uint16_t* arm_err);
ZK_API int Parser_Move_Stop_E(const char* text);
ZK_API int Parser_Move_Pause_E(const char* text);
ZK_API int Parser_Move_Continue_E(const char* text);
ZK_API int Parser_Clear_Current_Trajectory_E(const char* text);
ZK_API int Parser_Clear_All_Trajectory_E(const char* text);
ZK_API int Parser_Get_Current_Trajectory_E(ArmSocket socket, const char* text, int32_t* type, float* data);

/* ------------------------------------------------------------------------------------------------------ Teaching -- */

ZK_API int Parser_Joint_Teach_E(const char* text);
ZK_API int Parser_Pos_Teach_E(const char* text);
ZK_API int Parser_Ort_Teach_E(const char* text);
ZK_API int Parser_Teach_Stop_E(const char* text);

/* -------------------------------------------------------------------------------------------------------- System -- */

ZK_API int Parser_Set_Arm_Power_E(const char* text);
ZK_API int Parser_Get_Arm_Power_State_E(const char* text, int32_t* on);
ZK_API int Parser_Clear_System_Err_E(const char* text);
ZK_API int Parser_Controller_State_E(const char* text, float* voltage, float* current, float* temperature,
                                     int32_t* err_flag);
ZK_API int Parser_Get_Arm_Software_Version_E(const char* text, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                             char* product);
ZK_API int Parser_Get_Tool_Software_Version_E(const char* text, int32_t* version);
ZK_API int Parser_Get_System_Runtime_E(const char* text, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec);
ZK_API int Parser_Get_Joint_Odom_E(const char* text, float* odom);
ZK_API int Parser_Set_High_Speed_Eth_E(const char* text);

/* -------------------------------------------------------------------------------------------- Inputs and outputs -- */

ZK_API int Parser_Set_DO_State_E(const char* text);
ZK_API int Parser_Set_AO_State_E(const char* text);
ZK_API int Parser_Set_Tool_DO_State_2_E(const char* text);
ZK_API int Parser_Set_Tool_DO_State_E(const char* text);
ZK_API int Parser_Set_Tool_Voltage_E(const char* text);
ZK_API int Parser_Get_DO_State_E(const char* text, int32_t* state);
ZK_API int Parser_Get_DI_State_E(const char* text, int32_t* state);
ZK_API int Parser_Get_AO_State_E(const char* text, float* volts);
ZK_API int Parser_Get_AI_State_E(const char* text, float* volts);
ZK_API int Parser_IO_Input_E(const char* text, int32_t* digital, float* analogue);
ZK_API int Parser_IO_Output_E(const char* text, int32_t* digital, float* analogue);
ZK_API int Parser_Get_IO_State_E(const char* text, int32_t* state, int32_t* mode);
ZK_API int Parser_Get_Tool_IO_State_E(const char* text, float* mode, float* state);
ZK_API int Parser_Get_Tool_Voltage_E(const char* text, int32_t* type);

/* -------------------------------------------------------------------------------- Hands, drag teaching and force -- */

ZK_API int Parser_Set_Gripper_Route_E(const char* text);
ZK_API int Parser_Drag_Teach_E(const char* text);
ZK_API int Parser_Run_Drag_Trajectory_E(const char* text);
ZK_API int Parser_Pause_Drag_Trajectory_E(const char* text);
ZK_API int Parser_Continue_Drag_Trajectory_E(const char* text);
ZK_API int Parser_Stop_Drag_Trajectory_E(const char* text);
ZK_API int Parser_Drag_Trajectory_Origin_E(const char* text, int32_t* device);
ZK_API int Parser_Clear_Force_Data_E(const char* text);
ZK_API int Parser_Set_Force_Sensor_E(const char* text);
ZK_API int Parser_Stop_Force_Sensor_E(const char* text);

/* Read only the six forces (newtons, newton metres), and only the single force (newtons). */
ZK_API int Parser_Get_Force_Data_E(const char* text, float* force);
ZK_API int Parser_Get_Fz_E(const char* text, float* fz);

/* -------------------------------------------------------------------------------------------- Files and progress -- */

/* Whether the controller accepted a file: 0 when "true" occurs anywhere in the text, else 16 and a line on standard
 * output that quotes the text. */
ZK_API int Parser_SendFile_E(const char* text);

/* Read the progress of an update, and the number of a popup. They return 0, even when the reply lacks the key and
 * nothing is stored, and 9 when the text is not JSON. */
ZK_API int Parser_Get_Update_scale_E(const char* text, int32_t* scale);
ZK_API int Parser_Get_Popup_E(const char* text, int32_t* content);

#endif
