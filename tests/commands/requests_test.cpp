// The exact text of every request, and what the plain reply to it gives.
#include <gtest/gtest.h>

#include "support/command_case.h"
#include "zk/arm_state.h"
#include "zk/frames.h"
#include "zk/joint_configuration.h"
#include "zk/realtime.h"
#include "zk/startup.h"
#include "zk/system.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

const float kJoints[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};

int query_joints(int (*query)(ArmSocket, float*), ArmSocket s) {
    float out[7];
    return query(s, out);
}

template <class Record>
int query_record(int (*query)(ArmSocket, Record*), ArmSocket s) {
    Record out{};
    return query(s, &out);
}

int set_push(ArmSocket s, const RealtimePushConfig& config, int sensor) {
    set_shared(Curr_Senser_Type, int32_t{sensor});
    return Set_Realtime_Push(s, config);
}

constexpr RealtimePushConfig kFullPush{5, true, 8089, 2, "192.168.1.10", 1, 0, 1, 0, 1, 0};
constexpr RealtimePushConfig kBarePush{0, false, 0, -1, "1.1.1", -1, -1, -1, -1, -1, -1};
constexpr RealtimePushConfig kPushWithLongAddress{1, true, 1, 0, "1234567890123456", -1, -1, -1, 1, -1, -1};

// Products are single-precision and truncated toward zero: 0.251 degrees are 250.99998 thousandths.
const CommandCase kRows[] = {
    {"Stop", Move_Stop_Cmd_NonBlock, "{\n\t\"command\":\t\"set_arm_stop\"\n}", ""},
    {"SlowStop", Move_Slow_Stop_Cmd_NonBlock, "{\n\t\"command\":\t\"set_arm_slow_stop\"\n}", ""},
    {"Pause", Move_Pause_Cmd_NonBlock, "{\n\t\"command\":\t\"set_arm_pause\"\n}", ""},
    {"Continue", Move_Continue_Cmd_NonBlock, "{\n\t\"command\":\t\"set_arm_continue\"\n}", ""},
    {"ClearCurrent", Clear_Current_Trajectory_NonBlock, "{\n\t\"command\":\t\"set_delete_current_trajectory\"\n}", ""},
    {"ClearAll", Clear_All_Trajectory_NonBlock, "{\n\t\"command\":\t\"set_arm_delete_trajectory\"\n}", ""},
    {"Trajectory",
     [](ArmSocket s) {
         int32_t type;
         float data[7];
         return Get_Current_Trajectory(s, &type, data);
     },
     "{\n\t\"command\":\t\"get_arm_current_trajectory\"\n}",
     R"({"state":"arm_current_trajectory","type":"none","data":[0,0,0,0,0,0]})"},
    {"AddWaypoint", [](ArmSocket s) { return Add_Waypoint(s, kJoints, false); },
     "{\n\t\"command\":\t\"add_waypoint\",\n\t\"joint\":\t[250, -90000, 1500, 0, 178000, 12345]\n}", ""},
    {"AddWaypointOfSevenJoints", [](ArmSocket s) { return Add_Waypoint(s, kJoints, false); },
     "{\n\t\"command\":\t\"add_waypoint\",\n\t\"joint\":\t[250, -90000, 1500, 0, 178000, 12345, -7250]\n}", "", 0, 72},
    {"StartWaypoint", [](ArmSocket s) { return Start_Waypoint(s, -2147483647 - 1, false); },
     "{\n\t\"command\":\t\"start_waypoint\",\n\t\"frequency\":\t-2147483648\n}", ""},
    {"ClearWaypoint", [](ArmSocket s) { return Clear_Waypoint(s, false); }, "{\n\t\"command\":\t\"clear_waypoint\"\n}",
     ""},
    {"StopWaypoint", [](ArmSocket s) { return Stop_Waypoint(s, false); }, "{\n\t\"command\":\t\"stop_waypoint\"\n}",
     ""},
    {"Timer", [](ArmSocket s) { return Timer(s, 2147483647, false); },
     "{\n\t\"command\":\t\"timer\",\n\t\"wait_time\":\t2147483647\n}", ""},
    {"ArmState",
     [](ArmSocket s) {
         float joint[7];
         Pose pose{};
         uint16_t arm_err, sys_err;
         return Get_Current_Arm_State(s, joint, &pose, &arm_err, &sys_err);
     },
     "{\n\t\"command\":\t\"get_current_arm_state\"\n}",
     R"({"state":"current_arm_state","arm_state":{"joint":[1,2,3,4,5,6],"pose":[1,2,3,4,5,6],"arm_err":0,"sys_err":0}})"},
    {"InstallPose",
     [](ArmSocket s) {
         float x = 0, y = 0, z = 0;
         return Get_Install_Pose_Block(s, &x, &y, &z);
     },
     "{\n\t\"command\":\t\"get_install_pose\"\n}", R"({"state":"install_pose","pose":[0.5,0,0]})"},
    {"ToolFrame", [](ArmSocket s) { return query_record<FrameRec>(Get_Current_Tool_Frame, s); },
     "{\n\t\"command\":\t\"get_current_tool_frame\"\n}",
     R"({"state":"current_tool_frame","tool_name":"t","pose":[0,0,0,0,0,0],"payload":0,"position":[0,0,0]})"},
    {"WorkFrame", [](ArmSocket s) { return query_record<FrameRec>(Get_Current_Work_Frame, s); },
     "{\n\t\"command\":\t\"get_current_work_frame\"\n}",
     R"({"state":"current_work_frame","frame_name":"w","pose":[0,0,0,0,0,0]})"},
    {"Speed", [](ArmSocket s) { return query_joints(Get_Joint_Speed, s); },
     "{\n\t\"command\":\t\"get_joint_max_speed\"\n}", R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6]})"},
    {"Acceleration", [](ArmSocket s) { return query_joints(Get_Joint_Acc, s); },
     "{\n\t\"command\":\t\"get_joint_max_acc\"\n}", R"({"state":"joint_max_acc","joint_acc":[1,2,3,4,5,6]})"},
    {"LowestPosition", [](ArmSocket s) { return query_joints(Get_Joint_Min_Pos, s); },
     "{\n\t\"command\":\t\"get_joint_min_pos\"\n}", R"({"state":"joint_min_pos","min_pos":[1,2,3,4,5,6]})"},
    {"HighestPosition", [](ArmSocket s) { return query_joints(Get_Joint_Max_Pos, s); },
     "{\n\t\"command\":\t\"get_joint_max_pos\"\n}", R"({"state":"joint_max_pos","max_pos":[1,2,3,4,5,6,7]})", 10},
    {"SoftwareInfo", [](ArmSocket s) { return query_record<ArmSoftwareInfo>(Get_Arm_Software_Info, s); },
     "{\n\t\"command\":\t\"get_arm_software_info\"\n}",
     R"({"state":"arm_software_info","Product_version":"ZK65-B","algorithm_info":{"version":"1"},"ctrl_info":)"
     R"({"build_time":"b","version":"2"},"dynamic_info":{"model_version":"3"},"plan_info":{"build_time":"c","version":"4"}})"},
    {"Probe", Arm_Socket_State, "{\n\t\"command\":\t\"get_joint_max_speed\"\n}",
     R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6]})"},
    {"ProbeWithoutReply", Arm_Socket_State_nBlock, "{\n\t\"command\":\t\"get_joint_max_speed\"\n}", ""},
    {"PushQuery", [](ArmSocket s) { return query_record<RealtimePushConfig>(Get_Realtime_Push, s); },
     "{\n\t\"command\":\t\"get_realtime_push\"\n}",
     R"({"state":"get_realtime_push","cycle":1,"enable":true,"port":2,"ip":"1.2.3.4","custom":{"joint_speed":true,)"
     R"("lift_state":true,"expand_state":true,"hand":true,"arm_current_status":true,"aloha_state":true}})"},
    {"Push", [](ArmSocket s) { return set_push(s, kFullPush, 1); },
     "{\n\t\"command\":\t\"set_realtime_push\",\n\t\"cycle\":\t5,\n\t\"enable\":\ttrue,\n\t\"port\":\t8089,\n\t"
     "\"force_coordinate\":\t2,\n\t\"ip\":\t\"192.168.1.10\",\n\t\"custom\":\t{\n\t\t\"joint_speed\":\ttrue,\n\t\t"
     "\"lift_state\":\tfalse,\n\t\t\"expand_state\":\ttrue,\n\t\t\"arm_current_status\":\ttrue,\n\t\t\"hand\":\tfalse,"
     "\n\t\t"
     "\"aloha_state\":\tfalse\n\t}\n}",
     R"({"command":"set_realtime_push","state":true})"},
    {"PushWithoutForceSensor", [](ArmSocket s) { return set_push(s, kPushWithLongAddress, 0); },
     "{\n\t\"command\":\t\"set_realtime_push\",\n\t\"cycle\":\t1,\n\t\"enable\":\ttrue,\n\t\"port\":\t1,\n\t\"custom\":"
     "\t{\n"
     "\t\t\"hand\":\ttrue\n\t}\n}",
     R"({"command":"set_realtime_push","state":false})", 1},
    {"PushThatSaysLittle", [](ArmSocket s) { return set_push(s, kBarePush, 2); },
     "{\n\t\"command\":\t\"set_realtime_push\",\n\t\"enable\":\tfalse,\n\t\"custom\":\t{\n\t}\n}",
     R"({"command":"set_realtime_push","state":1})", 11},
};

class Requests : public testing::TestWithParam<CommandCase> {};
TEST_P(Requests, GoOutAsToldAndAreAnswered) { run(GetParam()); }
INSTANTIATE_TEST_SUITE_P(, Requests, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

}  // namespace
