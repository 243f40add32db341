// A call of each kind that waits, and what keeps it waiting.
#pragma once

#include "commands/wire.h"
#include "support/arm.h"
#include "zk_base.h"

namespace zk::test {

inline const char* const kReport = R"({"state":"current_trajectory_state","trajectory_state":true,"device":0})";
inline const char* const kSpeeds = R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6]})";
inline const char* const kMoving = R"({"state":"arm_current_trajectory","type":"movej","data":[0,0,0,0,0,0]})";
inline const char* const kReplaying =
    R"({"state":"arm_current_trajectory","type":"re_trajectory","data":[0,0,0,0,0,0]})";
inline const float kJoints[7] = {};
inline const int32_t kFingers[6] = {};

struct WaitingCall {
    const char* name;
    int (*call)(ArmSocket);
    const char* request;                // the one after which the call waits
    std::vector<std::string> messages;  // that would end the wait
    int32_t* count;                     // of the last of them
    const char* trajectory = kMoving;
};

inline int ask_speed(ArmSocket s) {
    float joint[7];
    return Get_Joint_Speed_Block(s, joint);
}

inline int send_project(ArmSocket s) {
    char line[] = "{\"command\":\"file\"}\r\n";
    return Send_Project_Block(s, line, sizeof line - 1, nullptr);
}

inline int save_trajectory(ArmSocket s) {
    int32_t total;
    return Save_Trajectory(s, "/dev/null", &total);
}

#define WAITING_IN(command, ...) #command, [](ArmSocket s) { return command(s __VA_OPT__(, ) __VA_ARGS__); }

inline const WaitingCall kWaits[] = {
    {WAITING_IN(Move_Stop_Cmd_Block), "set_arm_stop", {done("set_arm_stop", "arm_stop")}, &Set_Arm_Stop_Cmd[0].count},
    {WAITING_IN(ask_speed), "get_joint_max_speed", {kSpeeds}, &Joint_Max_Speed_Cmd[0].count},
    {WAITING_IN(Arm_Socket_State_Block), "get_joint_max_speed", {kSpeeds}, &Joint_Max_Speed_Cmd[0].count},
    {WAITING_IN(Movej_Cmd, kJoints, 20, 0, 0, true), "get_arm_current_trajectory", {kReport}, &Move_Cmd[0].count},
    {WAITING_IN(Movel_Cmd, Pose{}, 20, 0, 0, false),
     "movel",
     {done("movel", "receive_state")},
     &Move_Receive_Cmd[0].count},
    {WAITING_IN(Pos_Step_Cmd_Block, 0, 20, 0.1f), "set_pos_step", {kReport}, &Move_Cmd[0].count},
    {WAITING_IN(Set_Gripper_Pick, 500, 200, true, 30),
     "set_gripper_pick",
     {done("set_gripper_pick")},
     &Set_Gripper_Release_Cmd[0].count},
    {WAITING_IN(Set_Lift_Height, 300, 20, true),
     "get_lift_state",
     {R"({"state":"current_trajectory_state","trajectory_state":true,"device":3})"},
     &Move_Cmd[0].count},
    {WAITING_IN(Expand_Set_Pos, 20, 300, true), "expand_set_pos", {kReport}, &Move_Cmd[0].count},
    {WAITING_IN(Set_Hand_Follow_Angle, kFingers, true),
     "hand_follow_angle",
     {done("hand_follow_angle")},
     &Set_Hand_Follow_Angle_Cmd[0].count},
    {WAITING_IN(Set_Program_ID_Start, 3, 20, true),
     "get_program_run_state",
     {R"({"state":"program_run_finish","finish_id":3})"},
     &Run_Finish_Cmd[0].count},
    {WAITING_IN(Run_Drag_Trajectory, true),
     "get_arm_current_trajectory",
     {done("run_drag_trajectory", "run_state")},
     &Run_Drag_Trajectory_Cmd[0].count,
     kReplaying},
    {WAITING_IN(Pos_Teach_Cmd, 0, 1, 20, true),
     "set_pos_teach",
     {done("set_pos_teach", "pos_teach")},
     &Pos_Teach_Cmd_Cmd[0].count},
    {WAITING_IN(Auto_Fix_Joint_Over_Soft_Limit, true),
     "auto_fix_joint_over_soft_limit",
     {done("auto_fix_joint_over_soft_limit"), kReport},
     &Move_Cmd[0].count},
    {WAITING_IN(send_project), "file", {done("download_project", "project_state")}, &Send_Project_Cmd[0].count},
    {WAITING_IN(save_trajectory),
     "save_trajectory",
     {R"({"command":"save_trajectory","total_num":1,"save_state":true})"},
     &Save_Trajectory_Cmd[0].count},
    {WAITING_IN(Set_Lift, 300, 20, true), "set_lift", {kSpeeds}, &Joint_Max_Speed_Cmd[0].count},
};

inline void PrintTo(const WaitingCall& wait, std::ostream* out) { *out << wait.name; }

// Lets the controller answer what the call asks meanwhile, but not what ends it.
inline void keep_waiting(ScriptedController& controller, const WaitingCall& call) {
    controller.answer("get_arm_current_trajectory", call.trajectory);
    controller.answer("get_lift_state", R"({"state":"lift_state","height":0,"current":0,"err_flag":0,"mode":1})");
    controller.answer("get_program_run_state",
                      R"({"state":"get_program_run_state","run_state":1,"id":3,"plan_num":1,"loop_num":[],)"
                      R"("loop_cont":[],"plan_speed":1,"step_mode":0})");
}

}  // namespace zk::test
