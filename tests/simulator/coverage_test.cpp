// Every command of the interface does something to a simulated arm that can be read back.
//
// A command's forms and its plain name send the same request, as the rows of tests/commands show: one form stands for
// all of them. The calls of zk/control.h have tests of their own, in tests/control.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <set>
#include <sstream>

#include "commands/project.h"
#include "simulator/talk.h"
#include "support/command_case.h"
#include "support/pattern.h"
#include "support/simulated_arm.h"
#include "support/temporary_file.h"
#include "zk_base.h"

namespace zk::test {
namespace {

// Of a table: a deed, or a question about the deeds after it.
struct Item {
    std::string name;  // of the command; empty: none of the interface
    Call call;
    bool asks = false;
    int status = 0;
    std::string outputs = {};  // what the question returns after this deed; empty: the same as before
};
Item question(const char* name, Call call) { return {name, std::move(call), true}; }
Item deed(const char* name, Call call) { return {name, std::move(call)}; }
Item refused(Item deed) { return deed.status = 1, deed; }
Item operator>>(Item deed, const std::string& outputs) { return deed.outputs = outputs, deed; }

struct Table {
    std::string name;  // and the options of the simulator
    std::vector<Item> items;
};
template <class... Items>
Table table(const char* name, const Items&... items) {
    return {name, {items...}};
}

// What the deeds of a table act on.
struct Place {
    Place(const std::vector<std::string>& options, int arm_mode) : arm(options, arm_mode) { current = this; }
    SimulatedArm arm;
    TemporaryDirectory directory;
    static inline Place* current = nullptr;
};

// A query with arguments in front of its outputs.
template <class... All, class... Ins>
auto asked(int (*query)(ArmSocket, All...), Ins... ins) {
    return [=](ArmSocket s, std::string& outputs) {
        return [&]<size_t... at>(std::index_sequence<at...>) {
            using Parameters = std::tuple<All...>;
            return with_outputs<std::remove_pointer_t<std::tuple_element_t<sizeof...(Ins) + at, Parameters>>...>(
                outputs, query, s, ins...);
        }
        (std::make_index_sequence<sizeof...(All) - sizeof...(Ins)>());
    };
}

// A command that succeeds, one that is refused, a query, and a setter whose query has the same name.
#define DO(command, ...) deed(#command, [](ArmSocket s) { return command(s __VA_OPT__(, ) __VA_ARGS__); })
#define NOT(...) refused(DO(__VA_ARGS__))
#define Q(query, ...) question(#query, asked(query __VA_OPT__(, ) __VA_ARGS__))
#define SET(name, outputs, ...) Q(Get_##name), DO(Set_##name, __VA_ARGS__) >> outputs

// A question whose outputs are a part, or a rounding, of what the query writes.
#define QUESTION(name, query, declarations, arguments, text)                          \
    const Item name = question(#query, [](ArmSocket s, std::string& outputs) -> int { \
        declarations;                                                                 \
        int status = query arguments;                                                 \
        return outputs = text, status;                                                \
    })

// A value of the reply to a request of the wire whose reply reaches no mailbox.
Item wire(const std::string& command, const std::string& pointer) {
    return question("", [=](ArmSocket, std::string& outputs) {
        const Json reply = Json::parse(Place::current->arm.simulator().ask(request_text(command)));
        return outputs = reply.at(Json::json_pointer(pointer)).dump(), 0;
    });
}

// A field of the pushed state.
template <class Field>
Item pushed(Field RobotStatus::*field) {
    return question("Get_Realtime_Push", [field](ArmSocket, std::string& outputs) {
        RobotStatus state;
        const int status = Get_Realtime_Arm_Joint_State(&state);
        return outputs = text_of(state.*field), status;
    });
}
const Item kStatus = pushed(&RobotStatus::arm_current_status);

// In hundredths of a millimetre: single precision on the way loses the rest. No reply holds a quaternion.
std::string rounded(Pose pose) {
    for (float* length : {&pose.position.x, &pose.position.y, &pose.position.z})
        *length = std::round(*length * 1e5f) / 1e5f;
    std::memset(&pose.quaternion, kUnwritten, sizeof pose.quaternion);
    return text_of(pose);
}
std::string text_of_waypoint(const GlobalWaypoint& found) {
    return std::string(found.point_name) + " " + text_of(found.joint) + ", " + rounded(found.pose) + ", " +
           found.work_frame + " " + found.tool_frame + " " + found.time;
}
std::string text_of_last(const ProgramList& list) {
    const auto& last = list.list[list.total_size - 1];
    return text_of({list.total_size, last.id, last.speed}) + " " + last.trajectory_name;
}
std::string newtons(float force) { return text_of(static_cast<int>(std::lround(force))); }
const Item kDegrees = Q(Get_Joint_Degree);
QUESTION(kPose, Get_Current_Arm_State, float joints[7]; Pose pose{};
         uint16_t errors[2], (s, joints, &pose, &errors[0], &errors[1]), rounded(pose));
QUESTION(kDoing, Get_Current_Trajectory, int32_t type = -1; float data[7], (s, &type, data), text_of(type));
// The forces along z without zero and load.
QUESTION(kForce, Get_Force_Data, float f[4][6], (s, f[0], f[1], f[2], f[3]), newtons(f[2][2]));
QUESTION(kFz, Get_Fz, float f[4], (s, &f[0], &f[1], &f[2], &f[3]), newtons(f[1]));
QUESTION(kTable, Get_Given_Work_Frame, char name[12] = "table"; Pose pose{}, (s, name, &pose), rounded(pose));
QUESTION(kPrograms, Get_Program_Trajectory_List, static ProgramList list, (s, &list), text_of_last(list));
// The state of the program is the status too.
QUESTION(kProgram, Get_Program_Run_State, ProgramRunState p{}, (s, &p),
         (status = status == p.run_state ? 0 : status, text_of({p.run_state, p.id})));
QUESTION(kWaypoint, Given_Global_Waypoint, GlobalWaypoint found{}, (s, "w", &found), text_of_waypoint(found));
QUESTION(kWaypoints, Get_Global_Point_List, static GlobalWaypointList list, (s, &list), text_of(list.total_size));
// The lines of the file to which the last recording was saved.
const Item kSaved = question("", [](ArmSocket, std::string& outputs) {
    const std::string text = content_of(Place::current->directory / "points");
    outputs = F_SaveDragTeach ? "open" : std::count(text.begin(), text.end(), '\n') > 1 ? "points" : "none";
    return 0;
});
const Item kNothing = deed("", [](ArmSocket) { return 0; });
Item move(const float* joints, int percent = 100, bool block = true) {
    return deed("Movej_Cmd", [=](ArmSocket s) { return Movej_Cmd(s, joints, percent, 0, 0, block); });
}
// A request of the simulator's own.
Item outside(const std::string& name, const std::string& keys) {
    return deed("", [request = R"({"command":"zk_sim_)" + name + "\"," + keys + "}"](ArmSocket) {
        return Json::parse(Place::current->arm.simulator().ask(request)).at("done") ? 0 : 1;
    });
}
Item at_speed(int speed) { return outside("speed", R"("speed":)" + std::to_string(speed)); }
ProjectSendParams stored(int id, const std::string& text, bool only_save = true, int step = 0) {
    ProjectSendParams params = project(Place::current->directory.file("task.txt", text));
    params.save_id = id;
    params.only_save = only_save;
    params.step_flag = step;
    return params;
}

// A call with the path of a file.
template <class Send>
Item sent(const char* name, const std::string& content, Send send) {
    return deed(name, [=](ArmSocket s) {
        const std::string path = Place::current->directory.file("update", content);
        return send(s, path.c_str(), static_cast<int32_t>(path.size()));
    });
}
int32_t wrong_line = -1;
template <class Save>
Item saved(const char* name, Save save) {
    return deed(name, [save](ArmSocket s) {
        int32_t total = 0;
        const int status = save(s, (Place::current->directory / "points").c_str(), &total);
        return status ? status : total > 1 ? 0 : -1;
    });
}
const float kJoints[7] = {10, -20, -60, 15, -40, 20, 0}, kNear[7] = {11, -21, -61, 16, -41, 21, 0},
            kFar[7] = {-80, 30, 20, -60, 50, 100, 0}, kTurned[7] = {10, -20, -60, 15, -40, 110, 0},
            kBent[7] = {10, -20, -60, 15, 40, 60, 0}, kTilted[7] = {10, -20, -30, 75, 20, 20, 0};
const std::string kAtJoints = "10 -20 -60 15 -40 20", kAtNear = "11 -21 -61 16 -41 21", kAtFar = "-80 30 20 -60 50 100";
const float kHome[7] = {10, -30, 15, -60, 20, -40, 10}, kSeven[7] = {10, -30, 15, -60, 20, -40, 30},
            kSevenBent[7] = {10, -30, 15, -60, 20, 40, 10}, kDynamics[14] = {1, 2, 3};
const int32_t kFingers[6] = {0, 100, 200, 300, 400, 500}, kOther[6] = {5, 6, 7, 8, 9, 10};
const uint8_t kBytes[] = {1, 3, 5, 7};
constexpr Pose at(float x, float y, float z, float rx, float ry, float rz) { return {{x, y, z}, {}, {rx, ry, rz}}; }
const Pose kStart = at(0.3f, 0.1f, 0.4f, 3, 0.1f, 0.2f), kBeside = at(0.43f, 0.105f, 0.435f, -2.308f, -0.779f, -0.638f),
           kGrip = at(0.1f, 0, 0.15f, 0, 0, 1.5f), kVia = at(0.32f, 0.07f, 0.4f, 3, 0.1f, 0.2f),
           kSide = at(0.3f, 0.05f, 0.4f, 3, 0.1f, 0.2f);

RealtimePushConfig everything() { return {1, true, 0, 0, "", 1, 1, 1, 1, 1, 0}; }
FenceConfig fence(int32_t form, const char* name, float size) {
    FenceConfig config{};
    config.form = form;
    std::strcpy(config.form_name, name);
    config.x_min_limit = config.y_min_limit = config.z_min_limit = -size;
    config.x_max_limit = config.y_max_limit = config.z_max_limit = config.radius = size;
    return config;
}
const ToolEnvelope kEnvelope{"Arm_Tip", {{"ball", 0.05f, 0, 0, 0.25f}, {}, {}, {}, {}}, 1};
GlobalWaypoint waypoint(float joint) { return {"w", {joint}, kGrip, "Base", "Arm_Tip", "noon"}; }
// Holds no force.
const ForcePositionMove kForceMove{0, {}, {10, -20, -60, 15, -40, 20, 0}, 1, 0, 0, {}, {}, {}};
const ForcePositionNew kHold{1, 0, {0, 0, 3, 0, 0, 0}, {0, 0, -3, 0, 0, 0}, {0.1f, 0.1f, 0.1f, 10, 10, 10}};
const Item kToStart = DO(Movej_P_Cmd, kStart, 100, 0, 0, true) >> "0.3 0.1 0.4, 3 0.1 0.2";
const Item kPush = DO(Set_Realtime_Push, everything()) >> "0";
const char* const kProject = "{\"command\":\"movej\",\"joint\":[90000,0,0,0,0,0]}\n";

const Table kTables[] = {
    table("Joints", SET(Joint_Speed, "180 90 225 225 225 225", 2, 90, true), Q(Get_Joint_Drive_Speed),
          NOT(Set_Joint_Drive_Speed, 1, 181) >> "180 180 225 225 225 225", NOT(Set_Joint_Drive_Acc, 1, 0),
          NOT(Set_Joint_Drive_Min_Pos, 1, -179), NOT(Set_Joint_Drive_Max_Pos, 1, 179),
          SET(Joint_Acc, "999.996 300 999.996 999.996 999.996 999.996", 2, 300, true),
          SET(Joint_Min_Pos, "-178 -100 -135 -178 -128 -360", 2, -100, true),
          SET(Joint_Max_Pos, "178 100.5 135 178 128 360", 2, 100.5f, true), NOT(Set_Joint_Speed, 2, 181, true),
          NOT(Set_Joint_Acc, 2, 0, true), NOT(Set_Joint_Max_Pos, 2, 131, true), NOT(Set_Joint_Min_Pos, 2, 100.5f, true),
          NOT(Set_Joint_Min_Pos, 7, -1, true), DO(Auto_Set_Joint_Limit, 1) >> "178 130 135 178 128 360",
          SET(Joint_Drive_Speed, "60 180 225 225 225 225", 1, 60),
          SET(Joint_Drive_Acc, "60 999.996 999.996 999.996 999.996 999.996", 1, 60),
          SET(Joint_Drive_Min_Pos, "-60 -130 -135 -178 -128 -360", 1, -60),
          SET(Joint_Drive_Max_Pos, "60 130 135 178 128 360", 1, 60), SET(Joint_EN_State, "1 1 1 0 1 1", 4, 0, true),
          Q(Get_Joint_Err_Flag), NOT(Auto_Fix_Joint_Over_Soft_Limit, true) >> "0 0 0 0 0 0; 0 0 0 1 0 0",
          NOT(Set_Joint_Err_Clear, 9, true), SET(Joint_EN_State, "1 1 1 1 1 1", 4, 1, true), Q(Get_Joint_Err_Flag),
          outside("fault", R"("joint_err":[0,0,8,0,0,0])") >> "0 0 8 0 0 0; 0 0 0 0 0 0",
          DO(Set_Joint_Err_Clear, 3, true) >> "0 0 0 0 0 0; 0 0 0 0 0 0", kDegrees,
          DO(Set_Joint_Zero_Pos, 2, true) >> "10 0 -60 15 -40 20",
          SET(Joint_Max_Pos, "178 130 135 178 -41 360", 5, -41, true), kDegrees,
          DO(Auto_Fix_Joint_Over_Soft_Limit, true) >> "10 0 -60 15 -41 20", wire("get_calibrate_state", "/joint_state"),
          DO(Start_Calibrate_NonBlock) >> "[1,1,1,1,1,1]", DO(Stop_Calibrate_NonBlock) >> "[0,0,0,0,0,0]"),
    table("ArmLimitsAndState", SET(Arm_Line_Speed, "0.125", 0.125f, true), NOT(Set_Arm_Line_Speed, 1000, true),
          NOT(Set_Arm_Line_Acc, 0, true), NOT(Set_Arm_Angular_Speed, 1000, true),
          SET(Arm_Line_Acc, "0.125", 0.125f, true), SET(Arm_Angular_Speed, "0.125", 0.125f, true),
          SET(Arm_Angular_Acc, "0.125", 0.125f, true), NOT(Set_Arm_Angular_Acc, 0, true), Q(Get_Arm_Line_Speed),
          DO(Set_Arm_Tip_Init, true) >> "0.25", SET(Collision_Stage, "8", 8, true), NOT(Set_Collision_Stage, 9, true),
          SET(Teach_Frame, "1", 1, true), NOT(Set_Teach_Frame, 2, true),
          SET(DH_Data, "240.5; 0; -0.1; 256; 144", 240.5f, 0, -0.1f, 256, 144, true),
          SET(Arm_Init_Pose, kAtNear, kNear, true), SET(Install_Pose, "180; 0.5; 90", true, 180, 0.5f, 90),
          NOT(Set_Install_Pose, true, NAN, 0, 0), Q(Get_Controller_State),
          outside("fault", R"("sys_err":7,"arm_err":5)") >> "24; 1.2; 38; 7",
          DO(Clear_System_Err, true) >> "24; 1.2; 38; 0", Q(Get_Arm_Power_State), DO(Set_Arm_Power, 0, true) >> "0",
          Q(Get_Joint_Voltage), DO(Set_Arm_Power, 0, true) >> "0 0 0 0 0 0", Q(Get_Joint_Current),
          DO(Set_Arm_Power, 0, true) >> "0 0 0 0 0 0", Q(Get_Arm_Power_State), DO(Set_Arm_Power, 1, true) >> "1",
          Q(Get_Arm_All_State),
          DO(Set_Arm_Power, 1, true) >> "32 32.25 32.5 32.75 33 33.25 0, 24 24 24 24 24 24 0, 0.1 0.1 0.1 0.1 0.1 0.1 "
                                        "0, 1 1 1 1 1 1 0, 0 0 0 0 0 0 0, 0",
          SET(Arm_Run_Mode, "0", 0), NOT(Set_Arm_Run_Mode, 7)),
    table("Network",
          SET(High_Ethernet, "10.0.0.2; 255.0.0.0; 10.0.0.1; 02:00:00:00:00:28", "10.0.0.2", "255.0.0.0", "10.0.0.1"),
          Q(Get_Wired_Net), DO(Set_NetIP, "10.0.0.3") >> "10.0.0.3; 255.255.255.0; 02:00:00:00:00:18",
          NOT(Set_NetIP, "a text of sixteen"), DO(Set_Net_Default) >> "192.168.1.18; 255.255.255.0; 02:00:00:00:00:18",
          Q(Get_Wifi_Net),
          DO(Set_WiFi_AP_Data, "own", "word") >> "6, 192.168.3.18, 02:00:00:00:00:38, 255.255.255.0, ap, word, own",
          DO(Set_WiFI_STA_Data, "hall", "secret") >>
              "6, 192.168.3.18, 02:00:00:00:00:38, 255.255.255.0, sta, secret, hall",
          Q(Get_Controller_RS485_Mode), DO(Set_RS485, 9600) >> "0; 9600; 0",
          SET(Realtime_Push, "4, off, 9000, -1, 10.0.0.4, 1 0 1 0 1 0",
              {4, false, 9000, 2, "10.0.0.4", 1, 0, 1, 0, 1, 0}),
          DO(Arm_Socket_State)),
    // Turned in place, the flange's origin is the one point that all postures share.
    table("Frames --speed max", Q(Get_Given_Tool_Frame, "grip"),
          DO(Manual_Set_Tool_Frame, "grip", kGrip, 1.5f, 0.01f, 0.02f, -0.03f, true) >>
              "grip, 0.1 0 0.15, 0 0 1.5, 1.5 0.01 0.02 -0.03",
          Q(Get_All_Tool_Frame), DO(Update_Tool_Frame, "grip", kGrip, 2.5f, 0, 0, 0) >> "Arm_Tip grip; 2",
          Q(Get_Current_Tool_Frame), NOT(Change_Tool_Frame, "none", true) >> "Arm_Tip, 0 0 0, 0 0 0, 0 0 0 0",
          DO(Change_Tool_Frame, "grip", true) >> "grip, 0.1 0 0.15, 0 0 1.5, 2.5 0 0 0",
          Q(Get_Given_Tool_Frame, "grip"), DO(Delete_Tool_Frame, "grip", true) >> "status 1", Q(Get_Current_Tool_Frame),
          kNothing >> "Arm_Tip, 0 0 0, 0 0 0, 0 0 0 0", kTable,
          DO(Manual_Set_Work_Frame, "table", kGrip, true) >> "0.1 0 0.15, 0 0 1.5", Q(Get_All_Work_Frame),
          DO(Update_Work_Frame, "table", at(1, 2, 3, 0, 0, 0)) >> "Base table; 2", Q(Get_Current_Work_Frame),
          DO(Change_Work_Frame, "table", true) >> "table, 1 2 3, 0 0 0, 0 0 0 0", kTable,
          DO(Delete_Work_Frame, "table", true) >> "status 1", Q(Get_Current_Work_Frame),
          kNothing >> "Base, 0 0 0, 0 0 0, 0 0 0 0", kDegrees, DO(Auto_Set_Tool_Frame, 1, true),
          move(kTurned) >> "10 -20 -60 15 -40 110", DO(Auto_Set_Tool_Frame, 2, true),
          move(kBent) >> "10 -20 -60 15 40 60", Q(Get_All_Tool_Frame), DO(Auto_Set_Tool_Frame, 3, true),
          DO(Generate_Auto_Tool_Frame, "found", 0.5f, 0, 0, 0, true) >> "Arm_Tip found; 2", kDegrees,
          DO(Auto_Set_Work_Frame, "three", 1, true), move(kJoints) >> kAtJoints,
          DO(Auto_Set_Work_Frame, "three", 2, true), move(kFar) >> kAtFar, Q(Get_All_Work_Frame),
          DO(Auto_Set_Work_Frame, "three", 3, true), DO(Auto_Set_Work_Frame, "three", 4, true) >> "Base three; 2"),
    table("Moves --speed max", kDegrees, move(kFar) >> kAtFar, kPose, kToStart,
          DO(Movel_Cmd, kSide, 100, 0, 0, true) >> "0.3 0.05 0.4, 3 0.1 0.2",
          DO(Movec_Cmd, kVia, kStart, 100, 0, 0, 0, true) >> "0.3 0.1 0.4, 3 0.1 0.2",
          DO(Moves_Cmd, kVia, 100, 0, 1, false), DO(Moves_Cmd, kSide, 100, 0, 0, true) >> "0.3 0.05 0.4, 3 0.1 0.2",
          DO(Movej_P_Cmd, at(0.3f, 0.1f, 0.4f, 3, 0, 0), 100, 0, 0, true) >> "0.3 0.1 0.4, 3 0 0",
          DO(MoveCartesianTool_Cmd, 100, 0, 0, true, 0.02f, 0, 0) >> "0.32 0.1 0.4, 3 0 0",
          DO(MoveRotate_Cmd, 3, 100, 0, 0, true, at(0, 0, 0, 0, 0, 0), 30) >> "0.32 0.1 0.4, 3 0 0.523", kDegrees,
          move(kJoints) >> kAtJoints, DO(Joint_Step_Cmd, 2, 50, 5, true) >> "10 -15 -60 15 -40 20", kPose, kToStart,
          DO(Pos_Step_Cmd, 1, 50, 0.02f, true) >> "0.3 0.12 0.4, 3 0.1 0.2",
          DO(Ort_Step_Cmd, 2, 50, 0.1f, true) >> "0.3 0.12 0.4, 3 0.1 0.3", DO(Set_Teach_Frame, 1, true),
          DO(Pos_Step_Cmd, 2, 50, 0.03f, true) >> "0.29842 0.11508 0.37045, 3 0.1 0.3", kDegrees,
          move(kJoints) >> kAtJoints, Q(Expand_Get_State), DO(Movej_CANFD, kNear, 1, 0.5f) >> "500; 0; 0; 0", kDegrees,
          kNothing >> kAtNear, DO(Movej_Follow, kJoints) >> kAtJoints, kPose, kToStart,
          DO(Movep_CANFD, 0, at(0.31f, 0.1f, 0.4f, 3, 0.1f, 0.2f)) >> "0.31 0.1 0.4, 3 0.1 0.2",
          DO(Movep_Follow, kStart) >> "0.3 0.1 0.4, 3 0.1 0.2", Q(Get_Joint_Odom),
          DO(Clear_Joint_Odom, true) >> "0 0 0 0 0 0"),
    table("MotionInProgress", kStatus, kPush, move(kFar, 1, false) >> "2", DO(Move_Pause_Cmd, true) >> "11",
          DO(Move_Continue_Cmd, true) >> "2", kDoing, NOT(Move_Continue_Cmd, true) >> "1",
          DO(Move_Slow_Stop_Cmd, true) >> "0", NOT(Move_Pause_Cmd, true), move(kFar, 1, false) >> "1",
          DO(Move_Stop_Cmd, true) >> "0", Q(Get_Arm_Plan_Num), move(kFar, 1, false) >> "1",
          move(kJoints, 1, false) >> "2", move(kFar, 1, false) >> "3", DO(Clear_Current_Trajectory, true) >> "2",
          DO(Clear_All_Trajectory, true) >> "0", DO(Timer_NonBlock, 60000) >> "1", DO(Move_Stop_Cmd, true) >> "0",
          kDoing, DO(Add_Waypoint_NonBlock, kFar), DO(Start_Waypoint_NonBlock, 1) >> "4",
          DO(Stop_Waypoint_NonBlock) >> "0", Q(Get_Arm_Plan_Num), DO(Clear_Waypoint_NonBlock),
          DO(Start_Waypoint_NonBlock, 1) >> "0", kDoing, DO(Pos_Teach_Cmd, 2, 0, 1, true) >> "2",
          DO(Teach_Stop_Cmd, true) >> "0", kStatus, DO(Ort_Teach_Cmd, 2, 1, 1, true) >> "14",
          DO(Teach_Stop_Cmd, true) >> "0", kDoing, DO(Joint_Teach_Cmd, 1, 1, 1, true) >> "1",
          DO(Teach_Stop_Cmd, true) >> "0", Q(Get_System_Runtime), DO(Clear_System_Runtime, true) >> "0; 0; 0; 1"),
    table("DragTeaching --model ZK65-6F --speed 10", kStatus, kPush, SET(Drag_Teach_Sensitivity, "70", 70), kStatus,
          DO(Start_Multi_Drag_Teach, 3, 0, true) >> "13", DO(Stop_Drag_Teach, true) >> "0",
          DO(Start_Multi_Drag_Teach_New, {{1, 1, 1, 0, 0, 0}, 1, 0}) >> "13", DO(Stop_Drag_Teach, true) >> "0",
          DO(Start_Drag_Teach, true) >> "12", kDegrees,
          outside("hand", R"("seconds":20,"joint":[11,-21,-61,16,-41,21])") >> kAtNear, kStatus,
          DO(Stop_Drag_Teach, true) >> "0", kDegrees, DO(Drag_Trajectory_Origin, true) >> kAtJoints, kDoing,
          at_speed(1), DO(Run_Drag_Trajectory_NonBlock) >> "4", kStatus, DO(Pause_Drag_Trajectory, true) >> "11",
          DO(Continue_Drag_Trajectory, true) >> "5", kDoing, DO(Stop_Drag_Trajectory, true) >> "0", kDegrees,
          at_speed(10), DO(Drag_Trajectory_Origin, true) >> kAtJoints, DO(Run_Drag_Trajectory, true) >> kAtNear, kSaved,
          saved("Save_Trajectory", Save_Trajectory) >> "points",
          saved("Save_Drag_Teach_File", Save_Drag_Teach_File_Block_NC_E) >> "points"),
    table("Force --model ZK65-6F --load 1,0,0,0.05 --force-noise 0 --speed 10", kStatus, kPush, kForce,
          DO(Clear_Force_Data, true) >> "0", move(kBent) >> "-9", DO(Set_Force_Sensor) >> "0", move(kJoints) >> "0",
          kDegrees, DO(Manual_Set_Force, 1, kJoints), DO(Manual_Set_Force, 2, kTurned), DO(Manual_Set_Force, 3, kBent),
          DO(Manual_Set_Force, 4, kTilted) >> "10 -20 -30 75 20 20", kDoing, at_speed(1),
          DO(Set_Force_Sensor_NonBlock) >> "1", DO(Stop_Set_Force_Sensor, true) >> "0", kDegrees, at_speed(10),
          move(kJoints) >> kAtJoints, DO(Start_Force_Position_Move, true),
          DO(Force_Position_Move_Joint, kNear, 1, 0, 2, 0, 0) >> kAtNear,
          DO(Force_Position_Move, kForceMove) >> kAtJoints, kPose,
          DO(Force_Position_Move_Pose, 1, 0, 0, 0, kBeside, 0) >> "0.43 0.105 0.435, -2.308 -0.779 -0.638",
          DO(Stop_Force_Position_Move, true), NOT(Stop_Force_Position_Move, true)),
    table("OneForce --model ZK65-ZF --load 1,0,0,0.05 --force-noise 0 --speed 10", kFz, DO(Clear_Fz, true) >> "0",
          move(kBent) >> "-12", DO(Auto_Set_Fz) >> "0", DO(Manual_Set_Fz, kJoints, kBent) >> "0"),
    table("ForceHeld --model ZK65-6F --wall 0,0,0.425,0,0,1,5000 --force-noise 0 --speed 10", kForce,
          DO(Clear_Force_Data, true) >> "0", DO(Set_Force_Postion, 1, 0, 2, -5, true) >> "5",
          DO(Set_Force_Postion_New, kHold) >> "3", DO(Stop_Force_Postion, true), NOT(Stop_Force_Postion, true)),
    table("Safety", SET(Electronic_Fence_Config, "1 '' 0:-1 1:1 2:-1 3:1 4:-1 5:1", fence(1, "", 1)),
          SET(Electronic_Fence_Enable, "1; 1; 2", 1, 1, 2), SET(Virtual_Wall_Config, "3 ''", fence(3, "", 1)),
          NOT(Set_Virtual_Wall_Config, fence(2, "", 1)), SET(Virtual_Wall_Enable, "1; 0; 1", 1, 0, 1),
          SET(Self_Collision_Enable, "1", 1), Q(Get_Electronic_Fence_List_Names),
          DO(Add_Electronic_Fence_Config, fence(3, "ball", 0.5f)) >> "ball; 1",
          NOT(Add_Electronic_Fence_Config, fence(3, "ball", 2)), NOT(Add_Electronic_Fence_Config, fence(2, "line", 1)),
          NOT(Add_Electronic_Fence_Config, fence(1, "inside out", -1)),
          NOT(Add_Electronic_Fence_Config, fence(4, "four", 1)),
          NOT(Update_Electronic_Fence_Config, fence(3, "none", 1)), Q(Given_Electronic_Fence_Config, "ball"),
          DO(Update_Electronic_Fence_Config, fence(3, "ball", 0.75f)) >> "3 'ball' 15:0.75",
          Q(Get_Electronic_Fence_List_Info), NOT(Delete_Electronic_Fence_Config, "none") >> "3 'ball' 15:0.75; 1",
          Q(Get_Electronic_Fence_List_Names), DO(Delete_Electronic_Fence_Config, "ball") >> "-; 0",
          Q(Get_Tool_Envelope, "Arm_Tip"), DO(Set_Tool_Envelope, kEnvelope) >> "Arm_Tip 1, ball 0.05 0 0 0.25"),
    table("InputsAndOutputs", Q(Get_IO_Output), DO(Set_DO_State, 2, 1, true) >> "0 1 0 0; 0 0 0 0",
          Q(Get_DO_State, uint8_t{2}), NOT(Set_DO_State, 5, 1, true) >> "1", Q(Get_IO_Input),
          DO(Set_IO_State, 0, 1, 1, true) >> "1 1 0 0; 0 0 0 0",
          DO(Set_AO_State, 4, 2.5f, true) >> "1 1 0 0; 0 0 0 2.5", Q(Get_AO_State, uint8_t{4}),
          NOT(Set_AO_State, 4, 10.5f, true) >> "2", Q(Get_AI_State, uint8_t{3}), DO(Set_IO_State, 1, 3, 4, true) >> "4",
          Q(Get_IO_State, uint8_t{3}), DO(Set_IO_Mode, 3, 0) >> "0; 0", NOT(Set_DO_State, 3, 1, true),
          Q(Get_Tool_IO_State), DO(Set_Tool_IO_Mode, 1, 0, true) >> "0 1; 0 0", NOT(Set_Tool_DO_State, 1, 1, true),
          DO(Set_Tool_DO_State, 2, 1, true) >> "0 1; 0 1", SET(Tool_Voltage, "3", 3, true), SET(Voltage, "2", 2, 1)),
    table("Modbus", Q(Get_Tool_RS485_Mode), DO(Set_Modbus_Mode, 1, 115200, 600, true) >> "1; 115200; 600",
          Q(Get_Read_Coils, 1, 6, 4, 2), DO(Write_Single_Coil, 1, 7, 1, 2, true) >> "2",
          Q(Get_Read_Multiple_Coils, 1, 7, 10, 2), DO(Write_Coils, 1, 8, 9, kBytes, 2, true) >> "3 2",
          Q(Get_Read_Holding_Registers, 1, 5, 2), DO(Write_Single_Register, 1, 5, 258, 2, true) >> "258",
          Q(Read_Multiple_Holding_Registers, 1, 5, 3, 2),
          DO(Write_Registers, 1, 6, 2, kBytes, 2, true) >> "1 2 1 3 5 7", Q(Get_Read_Input_Registers, 1, 7, 2),
          outside("modbus", R"("port":1,"device":2,"kind":"input_register","address":7,"values":[513,2])") >> "513",
          Q(Read_Multiple_Input_Registers, 1, 7, 2, 2), kNothing >> "2 1 0 2", Q(Get_Read_Input_Status, 1, 1, 2, 2),
          outside("modbus", R"("port":1,"device":2,"kind":"discrete_input","address":1,"values":[1,1])") >> "3",
          Q(Get_Tool_RS485_Mode), DO(Close_Modbus_Mode, 1, true) >> "0; 115200; 0",
          Q(Get_Read_Holding_Registers, 2, 5, 1), DO(Set_Modbustcp_Mode, "10.0.0.9", 502, 1000),
          DO(Write_Single_Register, 2, 5, 22, 1, true) >> "22", Q(Get_Tool_RS485_Mode), DO(Close_Modbustcp_Mode),
          NOT(Write_Single_Register, 2, 5, 23, 1, true) >> "0; 115200; 0"),
    table("Devices --object 300 --speed 10", pushed(&RobotStatus::lift_height), kPush, Q(Get_Gripper_State),
          DO(Set_Gripper_Route, 100, 900, true) >> "1 1, 0 0 0 30 1000",
          DO(Set_Gripper_Position, 500, true, 60) >> "1 1, 0 0 0 30 500",
          DO(Set_Gripper_Release, 500, true, 60) >> "1 1, 0 0 0 30 900", NOT(Set_Gripper_Position, 950, true, 60),
          NOT(Set_Gripper_Pick_On, 500, 5, true, 60), DO(Set_Gripper_Pick, 500, 200, true, 60) >> "1 1, 0 1 200 30 300",
          DO(Set_Gripper_Pick_On, 500, 250, true, 60) >> "1 1, 0 2 250 30 300", pushed(&RobotStatus::hand_angle),
          DO(Set_Hand_Angle, kFingers, true) >> "0 100 200 300 400 500",
          DO(Set_Hand_Follow_Angle, kOther, false) >> "5 6 7 8 9 10", pushed(&RobotStatus::hand_pos),
          DO(Set_Hand_Follow_Pos, kFingers, false) >> "0 100 200 300 400 500", pushed(&RobotStatus::hand_angle),
          DO(Set_Hand_Posture, 2, true) >> "1000 1000 1000 1000 1000 1000", NOT(Set_Hand_Posture, 99, true),
          DO(Set_Hand_Seq, 1, true) >> "0 0 0 0 0 0", Q(Get_Lift_State),
          DO(Set_Lift_Height, 300, 100, true) >> "300; 0; 0; 0", NOT(Set_Lift_Height, 2000, 100, true),
          Q(Expand_Get_State), NOT(Expand_Set_Pos, 1, 200, true) >> "0; 0; 0; 0",
          DO(Expand_Set_Pos, 9000, 100, true) >> "9000; 0; 0; 0",
          DO(Expand_Set_Speed, -100, true) >> "-200000; 0; 0; 0", pushed(&RobotStatus::lift_height),
          DO(Set_Lift_NonBlock, 100, 100) >> "100", Q(Get_Lift_State), DO(Set_Lift_Speed, 100) >> "1000; 0; 0; 0",
          Q(Expand_Get_Config), DO(Expand_Config, 6000, 60000, 500) >> "6000; 60000; 500; -200000; 200000",
          Q(Expand_Get_Version), DO(Expand_Set_Version, 7) >> "7", wire("get_car_state", "/car_state"),
          DO(Set_Vehicle_NonBlock, 100, 0) >> "1", DO(Set_Car_Move_NonBlock, 0, 0) >> "0",
          DO(Set_Car_Charge_NonBlock, 1) >> "3", DO(Set_Car_Charge_NonBlock, 0) >> "0",
          wire("get_car_state", "/station_num"), DO(Set_Car_Station_Num_NonBlock, 6) >> "6",
          DO(Set_Car_Station_NonBlock, 7, 2000) >> "7"),
    table("Programs --speed 10", kPrograms, DO(Send_TrajectoryFile, nullptr, stored(3, kProject)) >> "1 3 100 task",
          kPrograms, DO(Run_Project_Block, 4, 1, "steps", 5, 3, 30, 0, 0),
          DO(Send_Project_Block, "{}\n", 3, &wrong_line) >> "2 4 30 steps",
          DO(Update_Program_Trajectory, 4, 40, "new") >> "2 4 40 new", Q(Get_Default_Run_Program),
          NOT(Set_Default_run_program_Block, 9) >> "0", Q(Get_Default_run_program_Block),
          DO(Set_Default_Run_Program, 4) >> "4", kPrograms, DO(Delete_Program_Trajectory, 4) >> "1 3 100 task",
          kProgram, DO(Set_Program_ID_Start, 3, 1, false) >> "1 3", DO(Move_Stop_Cmd, true) >> "0 -1",
          DO(Send_TrajectoryFile, nullptr, stored(5, kProject, false, 1)) >> "2 5", kDegrees,
          DO(Set_Online_Next_E) >> "90 0 0 0 0 0", kWaypoint,
          DO(Add_Global_Waypoint, waypoint(1)) >> "w 1 0 0 0 0 0 0, 0.1 0 0.15, 0 0 1.5, Base Arm_Tip noon", kWaypoints,
          NOT(Add_Global_Waypoint, waypoint(2)) >> "1", kWaypoint,
          DO(Update_Global_Waypoint, waypoint(2)) >> "w 2 0 0 0 0 0 0, 0.1 0 0.15, 0 0 1.5, Base Arm_Tip noon",
          kWaypoints, DO(Delete_Global_Waypoint, "w") >> "0", NOT(Delete_Global_Waypoint, "w"),
          wire("zk_sim_files", "/files/3/kind"), DO(Run_Update_Software_Block_E, "update", 6, 5),
          sent("Send_Update_Software", "12345", Send_Update_Software_Block_E) >> R"("update")",
          wire("zk_sim_files", "/files/3/size"), kNothing >> "5", wire("zk_sim_files", "/files/4/name"),
          sent("UpdataSoftWare", "1234567", UpdataSoftWare_Block_E) >> R"("update")"),
    table("SevenJoints --model ZK75-6F --speed max --force-noise 0", kDegrees,
          move(kSeven) >> "10 -30 15 -60 20 -40 30", DO(Movej_CANFD, kHome, 0, 0) >> "10 -30 15 -60 20 -40 10",
          DO(Movej_Follow, kSeven) >> "10 -30 15 -60 20 -40 30",
          SET(Arm_Init_Pose, "10 -30 15 -60 20 -40 30", kSeven, true), SET(Joint_EN_State, "1 1 1 1 1 1 0", 7, 0, true),
          Q(Get_Joint_Err_Flag), DO(Set_Joint_EN_State, 7, 1, true) >> "0 0 0 0 0 0 0; 0 0 0 0 0 0 0",
          Q(Get_Joint_Odom), DO(Clear_Joint_Odom, true) >> "0 0 0 0 0 0 0",
          wire("get_global_waypoints_list", "/total_size"), DO(Set_Joint_Zero_Offset, kSeven, true),
          DO(Set_Arm_Dynamic_Parm, kDynamics, true), DO(Add_Global_Waypoint, waypoint(1)) >> "1", kDegrees,
          DO(Manual_Set_Force, 1, kSeven) >> "10 -30 15 -60 20 -40 30"),
    table("OneForceAndSevenJoints --model ZK75-ZF --speed max --force-noise 0", kDegrees,
          DO(Manual_Set_Fz, kHome, kSevenBent) >> "10 -30 15 -60 20 40 10"),
    // What never changes.
    table("Constants", kForce, kNothing >> "status 9", kFz, kNothing >> "status 9", Q(Get_Joint_Temperature),
          kNothing >> "32 32.25 32.5 32.75 33 33.25", Q(Get_Joint_Software_Version),
          kNothing >> "131072 131073 131074 131075 131076 131077", Q(Get_Arm_Software_Version),
          kNothing >> "100000; 100000; 1000; 1000; ZK65-B", Q(Get_Arm_Software_Info),
          kNothing >> "ZK65-B, 1.0.0, 2024/01/15 10:00:00, V1.0.0, 2, 2024/01/15 10:00:00, V1.0.0",
          Q(Get_Tool_Software_Version), kNothing >> "256", Q(Get_Tool_Hardware_Version_E), kNothing >> "512"),
    // What the interface has no query for: a good value is taken, a wrong one refused.
    table("Unread", DO(Set_Joint_Zero_Offset, kJoints, true), DO(Set_Arm_Dynamic_Parm, kDynamics, true),
          DO(Set_Plan_Speed, 50, true), NOT(Set_Plan_Speed, 101, true), DO(Set_Arm_Servo_State, 1, true),
          DO(Set_High_Speed_Eth_Block, 1), NOT(Set_High_Speed_Eth_Block, 9), DO(Save_Device_Info_All),
          DO(Set_Payload_Block, 500, 1, 2, 3), NOT(Set_Payload_Block, 50001, 1, 2, 3), DO(Set_None_Payload_Block),
          DO(Set_Hand_Speed, 500, true), NOT(Set_Hand_Speed, 0, true), DO(Set_Hand_Force, 500, true),
          NOT(Set_Hand_Force, 1001, true), DO(Set_Sale_Version_E, 1))};

// Commands that no item calls, and the reason.
const std::pair<const char*, const char*> kMissing[] = {
    {"ZK_.*", "they send no request of their own"},
    {"Get_(Calibrate_State|Arm_Hardware_Version|Car_State|Controller_Voltage)", "the reply reaches no mailbox"},
    {"Set_(Controller_Voltage|Controller_IP|Controller_ResetIP)", "other names of requests called here; no mailbox"},
    {"Set_(Car_Navigation_\\w+|System_State_Servo|USB_Data|Ethernet|PWM|Lift_Version|Popup)|Get_Log_File",
     "neither an effect nor a reply that reaches the caller"},
    {"Get_DI_State", "it delivers 0 whatever the state"},
    {"Stop_PWM", "it sends nothing"},
};

// The command without the ending of its form.
std::string command_of(const std::string& form) {
    return found_in(form, R"(^(\w*?)(?:_(?:Block|Blcok|BLock|NonBlock|NonBlcok|NonBLock|NoBlock|nBlock|NC|E))*$)")
        .at(0);
}

std::ostream& operator<<(std::ostream& out, const Table& table) { return out << table.name; }
class Coverage : public testing::TestWithParam<Table> {};
INSTANTIATE_TEST_SUITE_P(, Coverage, testing::ValuesIn(kTables),
                         [](const auto& row) { return row.param.name.substr(0, row.param.name.find(' ')); });

// Waits for what takes its time.
std::string outputs_of(const Item& question, ArmSocket arm, const std::string& expected) {
    std::string outputs;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    do {
        outputs.clear();
        const int status = question.call(arm, outputs);
        if (status != 0) outputs = "status " + text_of(status);
    } while (outputs != expected && std::chrono::steady_clock::now() < end);
    return outputs;
}

TEST_P(Coverage, IsReadBack) {
    std::istringstream words(GetParam().name);
    const std::vector<std::string> options(++std::istream_iterator<std::string>(words), {});
    const Place place(options, GetParam().name.find("ZK75") == std::string::npos ? 65 : 75);
    Item question = GetParam().items.front();
    for (const Item& item : GetParam().items) {
        if (item.asks) {
            question = item;
            continue;
        }
        std::string nothing;
        EXPECT_EQ(item.call(place.arm, nothing), item.status) << item.name;
        if (!item.outputs.empty()) question.outputs = item.outputs;
        if (question.outputs.empty()) continue;
        EXPECT_EQ(outputs_of(question, place.arm, question.outputs), question.outputs)
            << question.name << " after " << item.name;
    }
}

TEST(CoverageOfTheHeaders, EveryCommandIsCalledOrHasAReason) {
    std::set<std::string> called;
    for (const Table& table : kTables) {
        for (const Item& item : table.items) called.insert(command_of(item.name));
    }
    std::set<std::string> commands;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(kSourceFolder) + "/include/zk")) {
        if (entry.is_directory()) continue;
        for (const std::string& form : found_in(content_of(entry.path()), R"(ZK_API int (\w+)\(ArmSocket)"))
            commands.insert(command_of(form));
    }
    EXPECT_GT(commands.size(), 250u);
    for (const std::string& command : commands) {
        const auto excuses = [&](const auto& row) { return matches(command, row.first); };
        const bool has_reason = std::any_of(std::begin(kMissing), std::end(kMissing), excuses);
        EXPECT_NE(called.count(command) == 1, has_reason) << command;
    }
}

}  // namespace
}  // namespace zk::test
