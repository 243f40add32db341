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
#include <thread>

#include "commands/project.h"
#include "simulator/talk.h"
#include "support/command_case.h"
#include "support/pattern.h"
#include "support/simulated_arm.h"
#include "support/temporary_file.h"
#include "zk_base.h"

namespace zk::test {
namespace {

const Call kNothing([](ArmSocket) { return 0; });

// A call, and what it has changed, by a query.
struct Step {
    std::string name;  // of the command; empty: a request of the simulator's own
    Call call;
    std::string query = {};  // of the interface; empty: what else shows the change
    Call ask = kNothing;
    std::string outputs = {};
    int status = 0;
};

#define REFUSED "", kNothing, "", 1

struct Table {
    const char* name;
    std::vector<std::string> options;
    std::vector<Step> steps;
    int arm_mode = 65;
};

// What the steps of a table act on.
struct Place {
    explicit Place(const Table& table) : arm(table.options, table.arm_mode) { current = this; }
    ~Place() { current = nullptr; }
    SimulatedArm arm;
    TemporaryDirectory directory;
    static inline Place* current = nullptr;
};

// ---------------------------------------------------------------------------------------------- Ways of reading back
// --

// A query with arguments in front of its outputs.
template <class... All, class... Ins>
Call asking_with(int (*query)(ArmSocket, All...), Ins... ins) {
    return [=](ArmSocket s, std::string& outputs) {
        return [&]<size_t... at>(std::index_sequence<at...>) {
            using Parameters = std::tuple<All...>;
            return with_outputs<std::remove_pointer_t<std::tuple_element_t<sizeof...(Ins) + at, Parameters>>...>(
                outputs, query, s, ins...);
        }
        (std::make_index_sequence<sizeof...(All) - sizeof...(Ins)>());
    };
}
#define ASK_WITH(query, ...) #query, asking_with(query, __VA_ARGS__)

// A value of the reply to a request of the wire whose reply reaches no mailbox.
Call wire(const std::string& request, const std::string& pointer) {
    return [=](ArmSocket, std::string& outputs) {
        const Json reply = Json::parse(Place::current->arm.simulator().ask(request));
        outputs = reply.at(Json::json_pointer(pointer)).dump();
        return 0;
    };
}
#define WIRE(command, pointer) "", wire(R"({"command":")" command R"("})", pointer)

// A field of the pushed state.
template <class Field>
Call pushed(Field RobotStatus::*field) {
    return [field](ArmSocket, std::string& outputs) {
        RobotStatus state;
        const int status = Get_Realtime_Arm_Joint_State(&state);
        outputs = text_of(state.*field);
        return status;
    };
}
#define PUSHED(field) "Get_Realtime_Push", pushed(&RobotStatus::field)

// The pose alone, in hundredths of a millimetre: single precision on the way loses the rest.
const auto kPose = [](ArmSocket s, std::string& outputs) {
    float joints[7];
    Pose pose{};
    uint16_t arm_err = 0, sys_err = 0;
    const int status = Get_Current_Arm_State(s, joints, &pose, &arm_err, &sys_err);
    for (float* length : {&pose.position.x, &pose.position.y, &pose.position.z})
        *length = std::round(*length * 1e5f) / 1e5f;
    std::memset(&pose.quaternion, kUnwritten, sizeof pose.quaternion);
    outputs = text_of(pose);
    return status;
};
#define POSE "Get_Current_Arm_State", Call(kPose)

// The type of the trajectory.
const auto kDoing = [](ArmSocket s, std::string& outputs) {
    int32_t type = -1;
    float data[7];
    const int status = Get_Current_Trajectory(s, &type, data);
    outputs = text_of(type);
    return status;
};
#define DOING "Get_Current_Trajectory", Call(kDoing)

// The force along z without zero and load, in newtons.
const auto kForce = [](ArmSocket s, std::string& outputs) {
    float forces[4][6];
    const int status = Get_Force_Data(s, forces[0], forces[1], forces[2], forces[3]);
    outputs = text_of(static_cast<int>(std::lround(forces[2][2])));
    return status;
};
#define FORCE "Get_Force_Data", Call(kForce)
const auto kFz = [](ArmSocket s, std::string& outputs) {
    float fz = 0, zero = 0, work = 0, tool = 0;
    const int status = Get_Fz(s, &fz, &zero, &work, &tool);
    outputs = text_of(static_cast<int>(std::lround(zero)));
    return status;
};
#define FZ "Get_Fz", Call(kFz)

const auto kTable = [](ArmSocket s, std::string& outputs) {
    char name[12] = "table";
    return with_outputs<Pose>(outputs, Get_Given_Work_Frame, s, name);
};
const auto kPrograms = [](ArmSocket s, std::string& outputs) {
    static ProgramList list;
    const int status = Get_Program_Trajectory_List(s, &list);
    for (int i = 0; i < list.total_size; ++i)
        outputs += text_of({list.list[i].id, list.list[i].speed}) + " " + list.list[i].trajectory_name + ";";
    return status;
};
#define PROGRAMS "Get_Program_Trajectory_List", Call(kPrograms)

// The state of the program in progress; its status is that state.
const auto kProgram = [](ArmSocket s, std::string& outputs) {
    ProgramRunState state{};
    const int status = Get_Program_Run_State(s, &state);
    outputs = text_of({state.run_state, state.id});
    return status == state.run_state ? 0 : status;
};
#define PROGRAM "Get_Program_Run_State", Call(kProgram)

const auto kWaypoint = [](ArmSocket s, std::string& outputs) {
    GlobalWaypoint found{};
    const int status = Given_Global_Waypoint(s, "w", &found);
    std::memset(&found.pose.quaternion, kUnwritten, sizeof found.pose.quaternion);
    outputs = std::string(found.point_name) + " " + text_of(found.joint) + ", " + text_of(found.pose) + ", " +
              found.work_frame + " " + found.tool_frame + " " + found.time;
    return status;
};
#define WAYPOINT "Given_Global_Waypoint", Call(kWaypoint)
const auto kWaypoints = [](ArmSocket s, std::string& outputs) {
    static GlobalWaypointList list;
    const int status = Get_Global_Point_List(s, &list);
    outputs = text_of(list.total_size);
    return status;
};
#define WAYPOINTS "Get_Global_Point_List", Call(kWaypoints)

// --------------------------------------------------------------------------------------------------- Ways of calling
// --

// A request of the simulator's own.
Call outside(const std::string& request) {
    return
        [request](ArmSocket) { return Json::parse(Place::current->arm.simulator().ask(request)).at("done") ? 0 : 1; };
}

Call at_speed(int speed) { return outside(R"({"command":"zk_sim_speed","speed":)" + std::to_string(speed) + "}"); }

ProjectSendParams stored(int id, const std::string& text, bool only_save = true) {
    ProjectSendParams params = project(Place::current->directory.file("task.txt", text));
    params.save_id = id;
    params.only_save = only_save;
    return params;
}

// Announces a file and sends it, in the steps of the interface.
int send_in_steps(ArmSocket s) {
    const std::string text = "{}\n";
    int32_t line = -1;
    const int announced = Run_Project_Block(s, 4, 1, "steps", 5, static_cast<int32_t>(text.size()), 30, 0, 0);
    return announced ? announced : Send_Project_Block(s, text.data(), static_cast<int32_t>(text.size()), &line);
}
int update_in_steps(ArmSocket s) {
    const std::string path = Place::current->directory.file("update", "12345");
    const int announced = Run_Update_Software_Block_E(s, "update", 6, 5);
    return announced ? announced : Send_Update_Software_Block_E(s, path.data(), static_cast<int32_t>(path.size()));
}

template <class Save>
Call saving(Save save) {
    return [save](ArmSocket s) {
        int32_t total = 0;
        const int status = save(s, (Place::current->directory / "points").c_str(), &total);
        return status ? status : total > 1 ? 0 : -1;
    };
}
// The lines of the file to which the last recording was saved.
const auto kSaved = [](ArmSocket, std::string& outputs) {
    const std::string text = content_of(Place::current->directory / "points");
    outputs = F_SaveDragTeach ? "open" : std::count(text.begin(), text.end(), '\n') > 1 ? "points" : "none";
    return 0;
};

// ------------------------------------------------------------------------------------------------------------- Values
// --

const float kJoints[7] = {10, -20, -60, 15, -40, 20, 0}, kNear[7] = {11, -21, -61, 16, -41, 21, 0},
            kFar[7] = {-80, 30, 20, -60, 50, 100, 0}, kTurned[7] = {10, -20, -60, 15, -40, 110, 0},
            kBent[7] = {10, -20, -60, 15, 40, 60, 0}, kTilted[7] = {10, -20, -30, 75, 20, 20, 0};
const std::string kAtJoints = "10 -20 -60 15 -40 20", kAtNear = "11 -21 -61 16 -41 21", kAtFar = "-80 30 20 -60 50 100";
const float kHome[7] = {10, -30, 15, -60, 20, -40, 10}, kSeven[7] = {10, -30, 15, -60, 20, -40, 30},
            kSevenBent[7] = {10, -30, 15, -60, 20, 40, 10};
const float kDynamics[14] = {1, 2, 3};
const int32_t kFingers[6] = {0, 100, 200, 300, 400, 500}, kOther[6] = {5, 6, 7, 8, 9, 10};
const uint8_t kBytes[] = {1, 3, 5, 7};

constexpr Pose at(float x, float y, float z, float rx, float ry, float rz) { return {{x, y, z}, {}, {rx, ry, rz}}; }
const Pose kStart = at(0.3f, 0.1f, 0.4f, 3, 0.1f, 0.2f), kBeside = at(0.43f, 0.105f, 0.435f, -2.308f, -0.779f, -0.638f),
           kGrip = at(0.1f, 0, 0.15f, 0, 0, 1.5f);

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
ForcePositionMove force_move(const float* joints) {
    ForcePositionMove move{0, {}, {}, 1, 0, 0, {}, {}, {}};
    std::copy_n(joints, 7, move.joint);
    return move;
}
const ForcePositionNew kHold{1, 0, {0, 0, 3, 0, 0, 0}, {0, 0, -3, 0, 0, 0}, {0.1f, 0.1f, 0.1f, 10, 10, 10}};

// ------------------------------------------------------------------------------------------------------------- Tables
// --

const char* const kProject = "{\"command\":\"movej\",\"joint\":[90000,0,0,0,0,0]}\n";

const Table kTables[] = {
    {"Joints",
     {},
     {
         {CALL(Set_Joint_Speed, (s, 2, 90, true)), ASK(Get_Joint_Speed), "180 90 225 225 225 225"},
{CALL(Set_Joint_Drive_Speed, (s, 1, 181)), ASK(Get_Joint_Drive_Speed), "180 180 225 225 225 225", 1},
{CALL(Set_Joint_Drive_Acc, (s, 1, 0)), REFUSED},
{CALL(Set_Joint_Drive_Min_Pos, (s, 1, -179)), REFUSED},
{CALL(Set_Joint_Drive_Max_Pos, (s, 1, 179)), REFUSED},
         {CALL(Set_Joint_Acc, (s, 2, 300, true)), ASK(Get_Joint_Acc), "999.996 300 999.996 999.996 999.996 999.996"},
         {CALL(Set_Joint_Min_Pos, (s, 2, -100, true)), ASK(Get_Joint_Min_Pos), "-178 -100 -135 -178 -128 -360"},
         {CALL(Set_Joint_Max_Pos, (s, 2, 100.5f, true)), ASK(Get_Joint_Max_Pos), "178 100.5 135 178 128 360"},
         {CALL(Auto_Set_Joint_Limit, (s, 1)), ASK(Get_Joint_Max_Pos), "178 130 135 178 128 360"},
         {CALL(Set_Joint_Drive_Speed, (s, 1, 60)), ASK(Get_Joint_Drive_Speed), "60 180 225 225 225 225"},
         {CALL(Set_Joint_Drive_Acc, (s, 1, 60)), ASK(Get_Joint_Drive_Acc), "60 999.996 999.996 999.996 999.996 999.996"},
         {CALL(Set_Joint_Drive_Min_Pos, (s, 1, -60)), ASK(Get_Joint_Drive_Min_Pos), "-60 -130 -135 -178 -128 -360"},
         {CALL(Set_Joint_Drive_Max_Pos, (s, 1, 60)), ASK(Get_Joint_Drive_Max_Pos), "60 130 135 178 128 360"},
         {CALL(Set_Joint_EN_State, (s, 4, 0, true)), ASK(Get_Joint_EN_State), "1 1 1 0 1 1"},
{CALL(Auto_Fix_Joint_Over_Soft_Limit, (s, true)), ASK(Get_Joint_Err_Flag), "0 0 0 0 0 0; 0 0 0 1 0 0", 1},
{CALL(Set_Joint_Err_Clear, (s, 9, true)), REFUSED},
         {CALL(Set_Joint_EN_State, (s, 4, 1, true)), ASK(Get_Joint_EN_State), "1 1 1 1 1 1"},
         {"", outside(R"({"command":"zk_sim_fault","joint_err":[0,0,8,0,0,0]})"), ASK(Get_Joint_Err_Flag),
          "0 0 8 0 0 0; 0 0 0 0 0 0"},
         {CALL(Set_Joint_Err_Clear, (s, 3, true)), ASK(Get_Joint_Err_Flag), "0 0 0 0 0 0; 0 0 0 0 0 0"},
         {CALL(Set_Joint_Zero_Pos, (s, 2, true)), ASK(Get_Joint_Degree), "10 0 -60 15 -40 20"},
         {CALL(Set_Joint_Max_Pos, (s, 5, -41, true)), ASK(Get_Joint_Max_Pos), "178 130 135 178 -41 360"},
         {CALL(Auto_Fix_Joint_Over_Soft_Limit, (s, true)), ASK(Get_Joint_Degree), "10 0 -60 15 -41 20"},
         {CALL(Start_Calibrate_NonBlock, (s)), WIRE("get_calibrate_state", "/joint_state"), "[1,1,1,1,1,1]"},
         {CALL(Stop_Calibrate_NonBlock, (s)), WIRE("get_calibrate_state", "/joint_state"), "[0,0,0,0,0,0]"},
     }},
    {"ArmLimitsAndState",
     {},
     {
         {CALL(Set_Arm_Line_Speed, (s, 0.125f, true)), ASK(Get_Arm_Line_Speed), "0.125"},
{CALL(Set_Arm_Line_Speed, (s, 1000, true)), ASK(Get_Arm_Line_Speed), "0.125", 1},
{CALL(Set_Arm_Line_Acc, (s, 0, true)), REFUSED},
{CALL(Set_Arm_Angular_Speed, (s, 1000, true)), REFUSED},
         {CALL(Set_Arm_Line_Acc, (s, 0.125f, true)), ASK(Get_Arm_Line_Acc), "0.125"},
         {CALL(Set_Arm_Angular_Speed, (s, 0.125f, true)), ASK(Get_Arm_Angular_Speed), "0.125"},
         {CALL(Set_Arm_Angular_Acc, (s, 0.125f, true)), ASK(Get_Arm_Angular_Acc), "0.125"},
         {CALL(Set_Arm_Angular_Acc, (s, 0, true)), ASK(Get_Arm_Angular_Acc), "0.125", 1},
         {CALL(Set_Arm_Tip_Init, (s, true)), ASK(Get_Arm_Line_Speed), "0.25"},
         {CALL(Set_Collision_Stage, (s, 8, true)), ASK(Get_Collision_Stage), "8"},
         {CALL(Set_Collision_Stage, (s, 9, true)), ASK(Get_Collision_Stage), "8", 1},
         {CALL(Set_Teach_Frame, (s, 1, true)), ASK(Get_Teach_Frame), "1"},
         {CALL(Set_Teach_Frame, (s, 2, true)), ASK(Get_Teach_Frame), "1", 1},
         {CALL(Set_DH_Data, (s, 240.5f, 0, -0.1f, 256, 144, true)), ASK(Get_DH_Data), "240.5; 0; -0.1; 256; 144"},
         {CALL(Set_Arm_Init_Pose, (s, kNear, true)), ASK(Get_Arm_Init_Pose), kAtNear},
         {CALL(Set_Install_Pose, (s, true, 180, 0.5f, 90)), ASK(Get_Install_Pose), "180; 0.5; 90"},
         {CALL(Set_Install_Pose, (s, true, NAN, 0, 0)), ASK(Get_Install_Pose), "180; 0.5; 90", 1},
         {"", outside(R"({"command":"zk_sim_fault","sys_err":7,"arm_err":5})"), ASK(Get_Controller_State),
          "24; 1.2; 38; 7"},
         {CALL(Clear_System_Err, (s, true)), ASK(Get_Controller_State), "24; 1.2; 38; 0"},
         {CALL(Set_Arm_Power, (s, 0, true)), ASK(Get_Arm_Power_State), "0"},
         {CALL(Set_Arm_Power, (s, 0, true)), ASK(Get_Joint_Voltage), "0 0 0 0 0 0"},
         {CALL(Set_Arm_Power, (s, 0, true)), ASK(Get_Joint_Current), "0 0 0 0 0 0"},
         {CALL(Set_Arm_Power, (s, 1, true)), ASK(Get_Arm_Power_State), "1"},
         {CALL(Set_Arm_Power, (s, 1, true)), ASK(Get_Arm_All_State),
          "32 32.25 32.5 32.75 33 33.25 0, 24 24 24 24 24 24 0, 0.1 0.1 0.1 0.1 0.1 0.1 0, 1 1 1 1 1 1 0, "
          "0 0 0 0 0 0 0, 0"},
         {CALL(Set_Arm_Run_Mode, (s, 0)), ASK(Get_Arm_Run_Mode), "0"},
         {CALL(Set_Arm_Run_Mode, (s, 7)), ASK(Get_Arm_Run_Mode), "0", 1},
     }},
    {"Network",
     {},
     {
         {CALL(Set_High_Ethernet, (s, "10.0.0.2", "255.0.0.0", "10.0.0.1")), ASK(Get_High_Ethernet),
          "10.0.0.2; 255.0.0.0; 10.0.0.1; 02:00:00:00:00:28"},
         {CALL(Set_NetIP, (s, "10.0.0.3")), ASK(Get_Wired_Net), "10.0.0.3; 255.255.255.0; 02:00:00:00:00:18"},
         {CALL(Set_NetIP, (s, "a text of sixteen")), ASK(Get_Wired_Net), "10.0.0.3; 255.255.255.0; 02:00:00:00:00:18",
          1},
         {CALL(Set_Net_Default, (s)), ASK(Get_Wired_Net), "192.168.1.18; 255.255.255.0; 02:00:00:00:00:18"},
         {CALL(Set_WiFi_AP_Data, (s, "own", "word")), ASK(Get_Wifi_Net),
          "6, 192.168.3.18, 02:00:00:00:00:38, 255.255.255.0, ap, word, own"},
         {CALL(Set_WiFI_STA_Data, (s, "hall", "secret")), ASK(Get_Wifi_Net),
          "6, 192.168.3.18, 02:00:00:00:00:38, 255.255.255.0, sta, secret, hall"},
         {CALL(Set_RS485, (s, 9600)), ASK(Get_Controller_RS485_Mode), "0; 9600; 0"},
         {CALL(Set_Realtime_Push, (s, {4, false, 9000, 2, "10.0.0.4", 1, 0, 1, 0, 1, 0})), ASK(Get_Realtime_Push),
          "4, off, 9000, -1, 10.0.0.4, 1 0 1 0 1 0"},
         {CALL(Arm_Socket_State, (s))},
     }},
    {"Frames",
     {"--speed", "max"},
     {
         {CALL(Manual_Set_Tool_Frame, (s, "grip", kGrip, 1.5f, 0.01f, 0.02f, -0.03f, true)),
          ASK_WITH(Get_Given_Tool_Frame, "grip"), "grip, 0.1 0 0.15, 0 0 1.5, 1.5 0.01 0.02 -0.03"},
         {CALL(Update_Tool_Frame, (s, "grip", kGrip, 2.5f, 0, 0, 0)), ASK(Get_All_Tool_Frame), "Arm_Tip grip; 2"},
         {CALL(Change_Tool_Frame, (s, "none", true)), ASK(Get_Current_Tool_Frame), "Arm_Tip, 0 0 0, 0 0 0, 0 0 0 0", 1},
         {CALL(Change_Tool_Frame, (s, "grip", true)), ASK(Get_Current_Tool_Frame),
          "grip, 0.1 0 0.15, 0 0 1.5, 2.5 0 0 0"},
         {CALL(Delete_Tool_Frame, (s, "grip", true)), ASK_WITH(Get_Given_Tool_Frame, "grip"), "status 1"},
{"", kNothing, ASK(Get_Current_Tool_Frame), "Arm_Tip, 0 0 0, 0 0 0, 0 0 0 0"},
         {CALL(Manual_Set_Work_Frame, (s, "table", kGrip, true)), "Get_Given_Work_Frame", Call(kTable),
          "0.1 0 0.15, 0 0 1.5"},
         {CALL(Update_Work_Frame, (s, "table", at(1, 2, 3, 0, 0, 0))), ASK(Get_All_Work_Frame), "Base table; 2"},
         {CALL(Change_Work_Frame, (s, "table", true)), ASK(Get_Current_Work_Frame), "table, 1 2 3, 0 0 0, 0 0 0 0"},
         {CALL(Delete_Work_Frame, (s, "table", true)), "Get_Given_Work_Frame", Call(kTable), "status 1"},
{"", kNothing, ASK(Get_Current_Work_Frame), "Base, 0 0 0, 0 0 0, 0 0 0 0"},
         // Turned in place, the flange's origin is the one point that all postures share.
         {CALL(Auto_Set_Tool_Frame, (s, 1, true))},
         {CALL(Movej_Cmd, (s, kTurned, 100, 0, 0, true)), ASK(Get_Joint_Degree), "10 -20 -60 15 -40 110"},
         {CALL(Auto_Set_Tool_Frame, (s, 2, true))},
         {CALL(Movej_Cmd, (s, kBent, 100, 0, 0, true)), ASK(Get_Joint_Degree), "10 -20 -60 15 40 60"},
         {CALL(Auto_Set_Tool_Frame, (s, 3, true))},
         {CALL(Generate_Auto_Tool_Frame, (s, "found", 0.5f, 0, 0, 0, true)), ASK(Get_All_Tool_Frame),
          "Arm_Tip found; 2"},
         {CALL(Auto_Set_Work_Frame, (s, "three", 1, true))},
         {CALL(Movej_Cmd, (s, kJoints, 100, 0, 0, true)), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Auto_Set_Work_Frame, (s, "three", 2, true))},
         {CALL(Movej_Cmd, (s, kFar, 100, 0, 0, true)), ASK(Get_Joint_Degree), kAtFar},
         {CALL(Auto_Set_Work_Frame, (s, "three", 3, true))},
         {CALL(Auto_Set_Work_Frame, (s, "three", 4, true)), ASK(Get_All_Work_Frame), "Base three; 2"},
     }},
    {"Moves",
     {"--speed", "max"},
     {
         {CALL(Movej_Cmd, (s, kFar, 100, 0, 0, true)), ASK(Get_Joint_Degree), kAtFar},
         {CALL(Movej_P_Cmd, (s, kStart, 100, 0, 0, true)), POSE, "0.3 0.1 0.4, 3 0.1 0.2"},
         {CALL(Movel_Cmd, (s, at(0.3f, 0.05f, 0.4f, 3, 0.1f, 0.2f), 100, 0, 0, true)), POSE,
          "0.3 0.05 0.4, 3 0.1 0.2"},
         {CALL(Movec_Cmd, (s, at(0.32f, 0.07f, 0.4f, 3, 0.1f, 0.2f), kStart, 100, 0, 0, 0, true)), POSE,
          "0.3 0.1 0.4, 3 0.1 0.2"},
         {CALL(Moves_Cmd, (s, at(0.32f, 0.07f, 0.4f, 3, 0.1f, 0.2f), 100, 0, 1, false))},
         {CALL(Moves_Cmd, (s, at(0.3f, 0.05f, 0.4f, 3, 0.1f, 0.2f), 100, 0, 0, true)), POSE,
          "0.3 0.05 0.4, 3 0.1 0.2"},
         {CALL(Movej_P_Cmd, (s, at(0.3f, 0.1f, 0.4f, 3, 0, 0), 100, 0, 0, true)), POSE, "0.3 0.1 0.4, 3 0 0"},
         {CALL(MoveCartesianTool_Cmd, (s, 100, 0, 0, true, 0.02f, 0, 0)), POSE, "0.32 0.1 0.4, 3 0 0"},
         {CALL(MoveRotate_Cmd, (s, 3, 100, 0, 0, true, at(0, 0, 0, 0, 0, 0), 30)), POSE, "0.32 0.1 0.4, 3 0 0.523"},
         {CALL(Movej_Cmd, (s, kJoints, 100, 0, 0, true)), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Joint_Step_Cmd, (s, 2, 50, 5, true)), ASK(Get_Joint_Degree), "10 -15 -60 15 -40 20"},
         {CALL(Movej_P_Cmd, (s, kStart, 100, 0, 0, true)), POSE, "0.3 0.1 0.4, 3 0.1 0.2"},
         {CALL(Pos_Step_Cmd, (s, 1, 50, 0.02f, true)), POSE, "0.3 0.12 0.4, 3 0.1 0.2"},
         {CALL(Ort_Step_Cmd, (s, 2, 50, 0.1f, true)), POSE, "0.3 0.12 0.4, 3 0.1 0.3"},
         {CALL(Movej_Cmd, (s, kJoints, 100, 0, 0, true)), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Movej_CANFD, (s, kNear, 1, 0.5f)), ASK(Expand_Get_State), "500; 0; 0; 0"},
         {"", kNothing, ASK(Get_Joint_Degree), kAtNear},
         {CALL(Movej_Follow, (s, kJoints)), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Movej_P_Cmd, (s, kStart, 100, 0, 0, true)), POSE, "0.3 0.1 0.4, 3 0.1 0.2"},
         {CALL(Movep_CANFD, (s, 0, at(0.31f, 0.1f, 0.4f, 3, 0.1f, 0.2f))), POSE, "0.31 0.1 0.4, 3 0.1 0.2"},
         {CALL(Movep_Follow, (s, kStart)), POSE, "0.3 0.1 0.4, 3 0.1 0.2"},
         {CALL(Clear_Joint_Odom, (s, true)), ASK(Get_Joint_Odom), "0 0 0 0 0 0"},
     }},
    {"MotionInProgress",
     {},
     {
         {CALL(Set_Realtime_Push, (s, everything())), PUSHED(arm_current_status), "0"},
         {CALL(Movej_Cmd, (s, kFar, 1, 0, 0, false)), PUSHED(arm_current_status), "2"},
         {CALL(Move_Pause_Cmd, (s, true)), PUSHED(arm_current_status), "11"},
         {CALL(Move_Continue_Cmd, (s, true)), PUSHED(arm_current_status), "2"},
         {CALL(Move_Continue_Cmd, (s, true)), DOING, "1", 1},
         {CALL(Move_Slow_Stop_Cmd, (s, true)), DOING, "0"},
         {CALL(Move_Pause_Cmd, (s, true)), DOING, "0", 1},
         {CALL(Movej_Cmd, (s, kFar, 1, 0, 0, false)), DOING, "1"},
         {CALL(Move_Stop_Cmd, (s, true)), DOING, "0"},
         {CALL(Movej_Cmd, (s, kFar, 1, 0, 0, false)), ASK(Get_Arm_Plan_Num), "1"},
         {CALL(Movej_Cmd, (s, kJoints, 1, 0, 0, false)), ASK(Get_Arm_Plan_Num), "2"},
         {CALL(Movej_Cmd, (s, kFar, 1, 0, 0, false)), ASK(Get_Arm_Plan_Num), "3"},
         {CALL(Clear_Current_Trajectory, (s, true)), ASK(Get_Arm_Plan_Num), "2"},
         {CALL(Clear_All_Trajectory, (s, true)), ASK(Get_Arm_Plan_Num), "0"},
         {CALL(Timer_NonBlock, (s, 60000)), ASK(Get_Arm_Plan_Num), "1"},
         {CALL(Move_Stop_Cmd, (s, true)), ASK(Get_Arm_Plan_Num), "0"},
         {CALL(Add_Waypoint_NonBlock, (s, kFar))},
         {CALL(Start_Waypoint_NonBlock, (s, 1)), DOING, "4"},
         {CALL(Stop_Waypoint_NonBlock, (s)), DOING, "0"},
         {CALL(Clear_Waypoint_NonBlock, (s))},
         {CALL(Start_Waypoint_NonBlock, (s, 1)), ASK(Get_Arm_Plan_Num), "0"},
         {CALL(Pos_Teach_Cmd, (s, 2, 0, 1, true)), DOING, "2"},
         {CALL(Teach_Stop_Cmd, (s, true)), DOING, "0"},
         {CALL(Ort_Teach_Cmd, (s, 2, 1, 1, true)), PUSHED(arm_current_status), "14"},
         {CALL(Teach_Stop_Cmd, (s, true)), PUSHED(arm_current_status), "0"},
         {CALL(Joint_Teach_Cmd, (s, 1, 1, 1, true)), DOING, "1"},
         {CALL(Teach_Stop_Cmd, (s, true)), DOING, "0"},
         {CALL(Clear_System_Runtime, (s, true)), ASK(Get_System_Runtime), "0; 0; 0; 1"},
     }},
    {"DragTeaching",
     {"--model", "ZK65-6F", "--speed", "10"},
     {
         {CALL(Set_Realtime_Push, (s, everything())), PUSHED(arm_current_status), "0"},
         {CALL(Set_Drag_Teach_Sensitivity, (s, 70)), ASK(Get_Drag_Teach_Sensitivity), "70"},
         {CALL(Start_Multi_Drag_Teach, (s, 3, 0, true)), PUSHED(arm_current_status), "13"},
         {CALL(Stop_Drag_Teach, (s, true)), PUSHED(arm_current_status), "0"},
         {CALL(Start_Multi_Drag_Teach_New, (s, {{1, 1, 1, 0, 0, 0}, 1, 0})), PUSHED(arm_current_status), "13"},
         {CALL(Stop_Drag_Teach, (s, true)), PUSHED(arm_current_status), "0"},
         {CALL(Start_Drag_Teach, (s, true)), PUSHED(arm_current_status), "12"},
         {"", outside(R"({"command":"zk_sim_hand","seconds":20,"joint":[11,-21,-61,16,-41,21]})"),
          ASK(Get_Joint_Degree), kAtNear},
         {CALL(Stop_Drag_Teach, (s, true)), PUSHED(arm_current_status), "0"},
         {CALL(Drag_Trajectory_Origin, (s, true)), ASK(Get_Joint_Degree), kAtJoints},
         {"", at_speed(1)},
         {CALL(Run_Drag_Trajectory_NonBlock, (s)), DOING, "4"},
         {CALL(Pause_Drag_Trajectory, (s, true)), PUSHED(arm_current_status), "11"},
         {CALL(Continue_Drag_Trajectory, (s, true)), PUSHED(arm_current_status), "5"},
         {CALL(Stop_Drag_Trajectory, (s, true)), DOING, "0"},
         {"", at_speed(10)},
         {CALL(Drag_Trajectory_Origin, (s, true)), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Run_Drag_Trajectory, (s, true)), ASK(Get_Joint_Degree), kAtNear},
         {"Save_Trajectory", saving(Save_Trajectory), "", kSaved, "points"},
         {"Save_Drag_Teach_File", saving(Save_Drag_Teach_File_Block_NC_E), "", kSaved, "points"},
     }},
    {"Force",
     {"--model", "ZK65-6F", "--load", "1,0,0,0.05", "--force-noise", "0", "--speed", "10"},
     {
         {CALL(Set_Realtime_Push, (s, everything())), PUSHED(arm_current_status), "0"},
         {CALL(Clear_Force_Data, (s, true)), FORCE, "0"},
         {CALL(Movej_Cmd, (s, kBent, 100, 0, 0, true)), FORCE, "-9"},
         {CALL(Set_Force_Sensor, (s)), FORCE, "0"},
         {CALL(Movej_Cmd, (s, kJoints, 100, 0, 0, true)), FORCE, "0"},
         {CALL(Manual_Set_Force, (s, 1, kJoints))},
         {CALL(Manual_Set_Force, (s, 2, kTurned))},
         {CALL(Manual_Set_Force, (s, 3, kBent))},
         {CALL(Manual_Set_Force, (s, 4, kTilted)), ASK(Get_Joint_Degree), "10 -20 -30 75 20 20"},
         {"", at_speed(1)},
         {CALL(Set_Force_Sensor_NonBlock, (s)), DOING, "1"},
         {CALL(Stop_Set_Force_Sensor, (s, true)), DOING, "0"},
         {"", at_speed(10)},
         {CALL(Movej_Cmd, (s, kJoints, 100, 0, 0, true)), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Start_Force_Position_Move, (s, true))},
         {CALL(Force_Position_Move_Joint, (s, kNear, 1, 0, 2, 0, 0)), ASK(Get_Joint_Degree), kAtNear},
         {CALL(Force_Position_Move, (s, force_move(kJoints))), ASK(Get_Joint_Degree), kAtJoints},
         {CALL(Force_Position_Move_Pose, (s, 1, 0, 0, 0, kBeside, 0)), POSE, "0.43 0.105 0.435, -2.308 -0.779 -0.638"},
         {CALL(Stop_Force_Position_Move, (s, true))},
         {CALL(Stop_Force_Position_Move, (s, true)), POSE, "0.43 0.105 0.435, -2.308 -0.779 -0.638", 1},
     }},
    {"OneForce",
     {"--model", "ZK65-ZF", "--load", "1,0,0,0.05", "--force-noise", "0", "--speed", "10"},
     {
         {CALL(Clear_Fz, (s, true)), FZ, "0"},
         {CALL(Movej_Cmd, (s, kBent, 100, 0, 0, true)), FZ, "-12"},
         {CALL(Auto_Set_Fz, (s)), FZ, "0"},
         {CALL(Manual_Set_Fz, (s, kJoints, kBent)), FZ, "0"},
     }},
    {"ForceHeld",
     {"--model", "ZK65-6F", "--wall", "0,0,0.425,0,0,1,5000", "--force-noise", "0", "--speed", "10"},
     {
         {CALL(Clear_Force_Data, (s, true)), FORCE, "0"},
         {CALL(Set_Force_Postion, (s, 1, 0, 2, -5, true)), FORCE, "5"},
         {CALL(Set_Force_Postion_New, (s, kHold)), FORCE, "3"},
         {CALL(Stop_Force_Postion, (s, true))},
         {CALL(Stop_Force_Postion, (s, true)), FORCE, "3", 1},
     }},
    {"Safety",
     {},
     {
         {CALL(Set_Electronic_Fence_Config, (s, fence(1, "", 1))), ASK(Get_Electronic_Fence_Config),
          "1 '' 0:-1 1:1 2:-1 3:1 4:-1 5:1"},
         {CALL(Set_Electronic_Fence_Enable, (s, 1, 1, 2)), ASK(Get_Electronic_Fence_Enable), "1; 1; 2"},
         {CALL(Set_Virtual_Wall_Config, (s, fence(3, "", 1))), ASK(Get_Virtual_Wall_Config), "3 ''"},
         {CALL(Set_Virtual_Wall_Config, (s, fence(2, "", 1))), ASK(Get_Virtual_Wall_Config), "3 ''", 1},
         {CALL(Set_Virtual_Wall_Enable, (s, 1, 0, 1)), ASK(Get_Virtual_Wall_Enable), "1; 0; 1"},
         {CALL(Set_Self_Collision_Enable, (s, 1)), ASK(Get_Self_Collision_Enable), "1"},
         {CALL(Add_Electronic_Fence_Config, (s, fence(3, "ball", 0.5f))), ASK(Get_Electronic_Fence_List_Names),
          "ball; 1"},
{CALL(Add_Electronic_Fence_Config, (s, fence(3, "ball", 2))), REFUSED},
{CALL(Add_Electronic_Fence_Config, (s, fence(2, "line", 1))), REFUSED},
{CALL(Add_Electronic_Fence_Config, (s, fence(1, "inside out", -1))), REFUSED},
{CALL(Add_Electronic_Fence_Config, (s, fence(4, "four", 1))), REFUSED},
{CALL(Update_Electronic_Fence_Config, (s, fence(3, "none", 1))), REFUSED},
         {CALL(Update_Electronic_Fence_Config, (s, fence(3, "ball", 0.75f))),
          ASK_WITH(Given_Electronic_Fence_Config, "ball"), "3 'ball' 15:0.75"},
         {CALL(Delete_Electronic_Fence_Config, (s, "none")), ASK(Get_Electronic_Fence_List_Info),
          "3 'ball' 15:0.75; 1", 1},
         {CALL(Delete_Electronic_Fence_Config, (s, "ball")), ASK(Get_Electronic_Fence_List_Names), "-; 0"},
         {CALL(Set_Tool_Envelope, (s, kEnvelope)), ASK_WITH(Get_Tool_Envelope, "Arm_Tip"),
          "Arm_Tip 1, ball 0.05 0 0 0.25"},
     }},
    {"InputsAndOutputs",
     {},
     {
         {CALL(Set_DO_State, (s, 2, 1, true)), ASK(Get_IO_Output), "0 1 0 0; 0 0 0 0"},
         {CALL(Set_DO_State, (s, 5, 1, true)), ASK_WITH(Get_DO_State, uint8_t{2}), "1", 1},
         {CALL(Set_IO_State, (s, 0, 1, 1, true)), ASK(Get_IO_Input), "1 1 0 0; 0 0 0 0"},
         {CALL(Set_AO_State, (s, 4, 2.5f, true)), ASK(Get_IO_Input), "1 1 0 0; 0 0 0 2.5"},
         {CALL(Set_AO_State, (s, 4, 10.5f, true)), ASK_WITH(Get_AO_State, uint8_t{4}), "2", 1},
         {CALL(Set_IO_State, (s, 1, 3, 4, true)), ASK_WITH(Get_AI_State, uint8_t{3}), "4"},
         {CALL(Set_IO_Mode, (s, 3, 0)), ASK_WITH(Get_IO_State, uint8_t{3}), "0; 0"},
         {CALL(Set_DO_State, (s, 3, 1, true)), ASK_WITH(Get_IO_State, uint8_t{3}), "0; 0", 1},
         {CALL(Set_Tool_IO_Mode, (s, 1, 0, true)), ASK(Get_Tool_IO_State), "0 1; 0 0"},
         {CALL(Set_Tool_DO_State, (s, 1, 1, true)), ASK(Get_Tool_IO_State), "0 1; 0 0", 1},
         {CALL(Set_Tool_DO_State, (s, 2, 1, true)), ASK(Get_Tool_IO_State), "0 1; 0 1"},
         {CALL(Set_Tool_Voltage, (s, 3, true)), ASK(Get_Tool_Voltage), "3"},
         {CALL(Set_Voltage, (s, 2, 1)), ASK(Get_Voltage), "2"},
     }},
    {"Modbus",
     {},
     {
         {CALL(Set_Modbus_Mode, (s, 1, 115200, 600, true)), ASK(Get_Tool_RS485_Mode), "1; 115200; 600"},
         {CALL(Write_Single_Coil, (s, 1, 7, 1, 2, true)), ASK_WITH(Get_Read_Coils, 1, 6, 4, 2), "2"},
         {CALL(Write_Coils, (s, 1, 8, 9, kBytes, 2, true)), ASK_WITH(Get_Read_Multiple_Coils, 1, 7, 10, 2), "3 2"},
         {CALL(Write_Single_Register, (s, 1, 5, 258, 2, true)), ASK_WITH(Get_Read_Holding_Registers, 1, 5, 2), "258"},
         {CALL(Write_Registers, (s, 1, 6, 2, kBytes, 2, true)), ASK_WITH(Read_Multiple_Holding_Registers, 1, 5, 3, 2),
          "1 2 1 3 5 7"},
         {"", outside(R"({"command":"zk_sim_modbus","port":1,"device":2,"kind":"input_register","address":7,)"
                      R"("values":[513,2]})"),
          ASK_WITH(Get_Read_Input_Registers, 1, 7, 2), "513"},
         {"", kNothing, ASK_WITH(Read_Multiple_Input_Registers, 1, 7, 2, 2), "2 1 0 2"},
         {"", outside(R"({"command":"zk_sim_modbus","port":1,"device":2,"kind":"discrete_input","address":1,)"
                      R"("values":[1,1]})"),
          ASK_WITH(Get_Read_Input_Status, 1, 1, 2, 2), "3"},
         {CALL(Close_Modbus_Mode, (s, 1, true)), ASK(Get_Tool_RS485_Mode), "0; 115200; 0"},
         {CALL(Set_Modbustcp_Mode, (s, "10.0.0.9", 502, 1000))},
         {CALL(Write_Single_Register, (s, 2, 5, 22, 1, true)), ASK_WITH(Get_Read_Holding_Registers, 2, 5, 1), "22"},
         {CALL(Close_Modbustcp_Mode, (s))},
         {CALL(Write_Single_Register, (s, 2, 5, 23, 1, true)), ASK(Get_Tool_RS485_Mode), "0; 115200; 0", 1},
     }},
    {"Devices",
     {"--object", "300", "--speed", "10"},
     {
         {CALL(Set_Realtime_Push, (s, everything())), PUSHED(lift_height), "0"},
         {CALL(Set_Gripper_Route, (s, 100, 900, true)), ASK(Get_Gripper_State), "1 1, 0 0 0 30 1000"},
         {CALL(Set_Gripper_Position, (s, 500, true, 60)), ASK(Get_Gripper_State), "1 1, 0 0 0 30 500"},
         {CALL(Set_Gripper_Release, (s, 500, true, 60)), ASK(Get_Gripper_State), "1 1, 0 0 0 30 900"},
{CALL(Set_Gripper_Position, (s, 950, true, 60)), ASK(Get_Gripper_State), "1 1, 0 0 0 30 900", 1},
{CALL(Set_Gripper_Pick_On, (s, 500, 5, true, 60)), REFUSED},
         {CALL(Set_Gripper_Pick, (s, 500, 200, true, 60)), ASK(Get_Gripper_State), "1 1, 0 1 200 30 300"},
         {CALL(Set_Gripper_Pick_On, (s, 500, 250, true, 60)), ASK(Get_Gripper_State), "1 1, 0 2 250 30 300"},
         {CALL(Set_Hand_Angle, (s, kFingers, true)), PUSHED(hand_angle), "0 100 200 300 400 500"},
         {CALL(Set_Hand_Follow_Angle, (s, kOther, false)), PUSHED(hand_angle), "5 6 7 8 9 10"},
         {CALL(Set_Hand_Follow_Pos, (s, kFingers, false)), PUSHED(hand_pos), "0 100 200 300 400 500"},
         {CALL(Set_Hand_Posture, (s, 2, true)), PUSHED(hand_angle), "1000 1000 1000 1000 1000 1000"},
{CALL(Set_Hand_Posture, (s, 99, true)), PUSHED(hand_angle), "1000 1000 1000 1000 1000 1000", 1},
         {CALL(Set_Hand_Seq, (s, 1, true)), PUSHED(hand_angle), "0 0 0 0 0 0"},
         {CALL(Set_Lift_Height, (s, 300, 100, true)), ASK(Get_Lift_State), "300; 0; 0; 0"},
{CALL(Set_Lift_Height, (s, 2000, 100, true)), ASK(Get_Lift_State), "300; 0; 0; 0", 1},
{CALL(Expand_Set_Pos, (s, 1, 200, true)), ASK(Expand_Get_State), "0; 0; 0; 0", 1},
         {CALL(Expand_Set_Pos, (s, 9000, 100, true)), ASK(Expand_Get_State), "9000; 0; 0; 0"},
         {CALL(Expand_Set_Speed, (s, -100, true)), ASK(Expand_Get_State), "-200000; 0; 0; 0"},
         {CALL(Set_Lift_NonBlock, (s, 100, 100)), PUSHED(lift_height), "100"},
         {CALL(Set_Lift_Speed, (s, 100)), ASK(Get_Lift_State), "1000; 0; 0; 0"},
         {CALL(Expand_Config, (s, 6000, 60000, 500)), ASK(Expand_Get_Config), "6000; 60000; 500; -200000; 200000"},
         {CALL(Expand_Set_Version, (s, 7)), ASK(Expand_Get_Version), "7"},
         {CALL(Set_Vehicle_NonBlock, (s, 100, 0)), WIRE("get_car_state", "/car_state"), "1"},
         {CALL(Set_Car_Move_NonBlock, (s, 0, 0)), WIRE("get_car_state", "/car_state"), "0"},
         {CALL(Set_Car_Charge_NonBlock, (s, 1)), WIRE("get_car_state", "/car_state"), "3"},
         {CALL(Set_Car_Charge_NonBlock, (s, 0)), WIRE("get_car_state", "/car_state"), "0"},
         {CALL(Set_Car_Station_Num_NonBlock, (s, 6)), WIRE("get_car_state", "/station_num"), "6"},
         {CALL(Set_Car_Station_NonBlock, (s, 7, 2000)), WIRE("get_car_state", "/station_num"), "7"},
     }},
    {"Programs",
     {"--speed", "10"},
     {
         {CALL(Send_TrajectoryFile, (s, nullptr, stored(3, kProject))), PROGRAMS, "3 100 task;"},
         {"Send_Project", Call(send_in_steps), PROGRAMS, "3 100 task;4 30 steps;"},
         {"Run_Project", Call(send_in_steps), PROGRAMS, "3 100 task;4 30 steps;"},
         {CALL(Update_Program_Trajectory, (s, 4, 40, "new")), PROGRAMS, "3 100 task;4 40 new;"},
         {CALL(Set_Default_run_program_Block, (s, 9)), ASK(Get_Default_Run_Program), "0", 1},
         {CALL(Set_Default_Run_Program, (s, 4)), ASK(Get_Default_run_program_Block), "4"},
         {CALL(Delete_Program_Trajectory, (s, 4)), PROGRAMS, "3 100 task;"},
         {CALL(Set_Program_ID_Start, (s, 3, 1, false)), PROGRAM, "1 3"},
         {CALL(Move_Stop_Cmd, (s, true)), PROGRAM, "0 -1"},
         {"Send_TrajectoryFile",
          [](ArmSocket s) {
              ProjectSendParams params = stored(5, kProject, false);
              params.step_flag = 1;
              return Send_TrajectoryFile(s, nullptr, params);
          },
          PROGRAM, "2 5"},
         {CALL(Set_Online_Next_E, (s)), ASK(Get_Joint_Degree), "90 0 0 0 0 0"},
         {CALL(Add_Global_Waypoint, (s, waypoint(1))), WAYPOINT, "w 1 0 0 0 0 0 0, 0.1 0 0.15, 0 0 1.5, Base Arm_Tip noon"},
         {CALL(Add_Global_Waypoint, (s, waypoint(2))), WAYPOINTS, "1", 1},
         {CALL(Update_Global_Waypoint, (s, waypoint(2))), WAYPOINT, "w 2 0 0 0 0 0 0, 0.1 0 0.15, 0 0 1.5, Base Arm_Tip noon"},
         {CALL(Delete_Global_Waypoint, (s, "w")), WAYPOINTS, "0"},
{CALL(Delete_Global_Waypoint, (s, "w")), REFUSED},
         {"Send_Update_Software", Call(update_in_steps), WIRE("zk_sim_files", "/files/4/kind"), R"("update")"},
         {"Run_Update_Software", Call(update_in_steps), WIRE("zk_sim_files", "/files/5/size"), "5"},
         {"UpdataSoftWare",
          [](ArmSocket s) {
              const std::string path = Place::current->directory.file("firmware", "1234567");
              return UpdataSoftWare_Block_E(s, path.c_str(), static_cast<int32_t>(path.size()));
          },
          WIRE("zk_sim_files", "/files/6/name"), R"("firmware")"},
     }},
    {"SevenJoints",
     {"--model", "ZK75-6F", "--speed", "max", "--force-noise", "0"},
     {
         {CALL(Movej_Cmd, (s, kSeven, 100, 0, 0, true)), ASK(Get_Joint_Degree), "10 -30 15 -60 20 -40 30"},
         {CALL(Movej_CANFD, (s, kHome, 0, 0)), ASK(Get_Joint_Degree), "10 -30 15 -60 20 -40 10"},
         {CALL(Movej_Follow, (s, kSeven)), ASK(Get_Joint_Degree), "10 -30 15 -60 20 -40 30"},
         {CALL(Set_Arm_Init_Pose, (s, kSeven, true)), ASK(Get_Arm_Init_Pose), "10 -30 15 -60 20 -40 30"},
         {CALL(Set_Joint_EN_State, (s, 7, 0, true)), ASK(Get_Joint_EN_State), "1 1 1 1 1 1 0"},
         {CALL(Set_Joint_EN_State, (s, 7, 1, true)), ASK(Get_Joint_Err_Flag), "0 0 0 0 0 0 0; 0 0 0 0 0 0 0"},
         {CALL(Clear_Joint_Odom, (s, true)), ASK(Get_Joint_Odom), "0 0 0 0 0 0 0"},
         {CALL(Set_Joint_Zero_Offset, (s, kSeven, true))},
         {CALL(Set_Arm_Dynamic_Parm, (s, kDynamics, true))},
         {CALL(Add_Global_Waypoint, (s, waypoint(1))), WIRE("get_global_waypoints_list", "/total_size"), "1"},
         {CALL(Manual_Set_Force, (s, 1, kSeven)), ASK(Get_Joint_Degree), "10 -30 15 -60 20 -40 30"},
     },
     75},
    {"OneForceAndSevenJoints",
     {"--model", "ZK75-ZF", "--speed", "max", "--force-noise", "0"},
     {
         {CALL(Manual_Set_Fz, (s, kHome, kSevenBent)), ASK(Get_Joint_Degree), "10 -30 15 -60 20 40 10"},
     },
     75},
    // What never changes.
    {"Constants",
     {},
     {
         {"", kNothing, FORCE, "status 9"},  // without a sensor
         {"", kNothing, FZ, "status 9"},
         {"", kNothing, ASK(Get_Joint_Temperature), "32 32.25 32.5 32.75 33 33.25"},
         {"", kNothing, ASK(Get_Joint_Software_Version), "131072 131073 131074 131075 131076 131077"},
         {"", kNothing, ASK(Get_Arm_Software_Version), "100000; 100000; 1000; 1000; ZK65-B"},
         {"", kNothing, ASK(Get_Arm_Software_Info),
          "ZK65-B, 1.0.0, 2024/01/15 10:00:00, V1.0.0, 2, 2024/01/15 10:00:00, V1.0.0"},
         {"", kNothing, ASK(Get_Tool_Software_Version), "256"},
         {"Get_Tool_Hardware_Version", asking(Get_Tool_Hardware_Version_E)},
     }},
    // What the interface has no query for: a good value is taken, a wrong one refused.
    {"Unread",
     {},
     {
         {CALL(Set_Joint_Zero_Offset, (s, kJoints, true))},
         {CALL(Set_Arm_Dynamic_Parm, (s, kDynamics, true))},
         {CALL(Set_Plan_Speed, (s, 50, true))},
         {CALL(Set_Plan_Speed, (s, 101, true)), REFUSED},
         {CALL(Set_Arm_Servo_State, (s, 1, true))},
         {CALL(Set_High_Speed_Eth_Block, (s, 1))},
         {CALL(Set_High_Speed_Eth_Block, (s, 9)), REFUSED},
         {CALL(Save_Device_Info_All, (s))},
         {CALL(Set_Payload_Block, (s, 500, 1, 2, 3))},
         {CALL(Set_Payload_Block, (s, 50001, 1, 2, 3)), REFUSED},
         {CALL(Set_None_Payload_Block, (s))},
         {CALL(Set_Hand_Speed, (s, 500, true))},
         {CALL(Set_Hand_Speed, (s, 0, true)), REFUSED},
         {CALL(Set_Hand_Force, (s, 500, true))},
         {CALL(Set_Hand_Force, (s, 1001, true)), REFUSED},
         {CALL(Set_Sale_Version_E, (s, 1))},
     }},
};

// Commands that no step calls.
struct Missing {
    const char* pattern;
    const char* reason;
};
const Missing kMissing[] = {
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

// Each without the ending of its forms.
std::set<std::string> commands_of_the_headers() {
    std::set<std::string> commands;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(kSourceFolder) + "/include/zk")) {
        if (entry.is_directory()) continue;
        for (const std::string& form : found_in(content_of(entry.path()), R"(ZK_API int (\w+)\(ArmSocket)"))
            commands.insert(command_of(form));
    }
    return commands;
}

std::ostream& operator<<(std::ostream& out, const Table& table) { return out << table.name; }

class Coverage : public testing::TestWithParam<Table> {};
INSTANTIATE_TEST_SUITE_P(, Coverage, testing::ValuesIn(kTables), [](const auto& row) { return row.param.name; });

// Waits for what takes its time.
std::string outputs_of(const Step& step, ArmSocket arm) {
    std::string outputs;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    do {
        outputs.clear();
        const int status = step.ask(arm, outputs);
        if (status != 0) outputs = "status " + text_of(status);
    } while (outputs != step.outputs && std::chrono::steady_clock::now() < end);
    return outputs;
}

TEST_P(Coverage, IsReadBack) {
    const Place place(GetParam());
    for (const Step& step : GetParam().steps) {
        std::string nothing;
        EXPECT_EQ(step.call(place.arm, nothing), step.status) << step.name;
        EXPECT_EQ(outputs_of(step, place.arm), step.outputs) << step.query << " after " << step.name;
    }
}

TEST(CoverageOfTheHeaders, EveryCommandIsCalledOrHasAReason) {
    std::set<std::string> called;
    for (const Table& table : kTables) {
        for (const Step& step : table.steps) called.insert({command_of(step.name), command_of(step.query)});
    }
    const std::set<std::string> commands = commands_of_the_headers();
    EXPECT_GT(commands.size(), 250u);
    for (const std::string& command : commands) {
        const auto excuses = [&](const Missing& row) { return matches(command, row.pattern); };
        const bool has_reason = std::any_of(std::begin(kMissing), std::end(kMissing), excuses);
        EXPECT_NE(called.count(command) == 1, has_reason) << command;
    }
}

}  // namespace
}  // namespace zk::test
