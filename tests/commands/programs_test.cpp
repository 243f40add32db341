// Programs and global waypoints: every command on the wire, its guards, its parsers, and programs that run.
#include "zk/replies/programs.h"

#include <gtest/gtest.h>

#include "commands/project.h"
#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/simulated_arm.h"
#include "support/temporary_file.h"
#include "support/wire_protocol.h"
#include "zk/arm_state.h"
#include "zk/file_transfer.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

std::string entry_text(const ProgramEntry& entry) {
    return text_of({entry.id, entry.size, entry.speed}) + " " + text_of(entry.trajectory_name);
}
std::string waypoint_text(const GlobalWaypoint& w) {
    return text_of(w.point_name) + ", " + text_of(w.joint) + ", " + text_of(w.pose) + ", " + text_of(w.work_frame) +
           ", " + text_of(w.tool_frame) + ", " + text_of(w.time);
}

// A list that knows of two entries more than its page, and what a call makes of it.
template <class List>
List asked(int32_t page_num, int32_t page_size, const char* search) {
    List list;
    std::memset(&list, kUnwritten, sizeof list);
    list.page_num = page_num;
    list.page_size = page_size;
    std::memcpy(list.vague_search, search, std::strlen(search) + 1);
    return list;
}
template <class List, class Entry>
std::string list_text(const List& list, std::string (*text)(const Entry&)) {
    if (is_unwritten(list.total_size)) return "";
    std::string outputs = text_of({list.page_num, list.page_size, list.total_size}) + " [" + list.vague_search + "]";
    for (const Entry& entry : list.list) {
        if (!is_unwritten(entry)) outputs += " / " + text(entry);
    }
    return outputs;
}
template <class List, class Entry>
Call listing(int (*command)(ArmSocket, List*), const List& list, std::string (*text)(const Entry&)) {
    return [=](ArmSocket s, std::string& outputs) {
        List out = list;
        const int status = command(s, &out);
        outputs = list_text(out, text);
        return status;
    };
}

std::string state_text(const ProgramRunState& state) {
    std::string text = text_of({state.run_state, state.id, state.plan_num, state.plan_speed, state.step_mode,
                                state.edit_id, state.loop_count});
    for (int i = 0; i < state.loop_count; ++i) text += ", " + text_of({state.loop_num[i], state.loop_cont[i]});
    return text;
}
Call running(int (*command)(ArmSocket, ProgramRunState*)) {
    return [=](ArmSocket s, std::string& outputs) {
        ProgramRunState state;
        std::memset(&state, kUnwritten, sizeof state);
        const int status = command(s, &state);
        outputs = is_unwritten(state) ? "" : state_text(state);
        return status;
    };
}
Call given(int (*command)(ArmSocket, const char*, GlobalWaypoint*)) {
    return [=](ArmSocket s, std::string& outputs) {
        GlobalWaypoint waypoint{};
        const int status = command(s, "w1", &waypoint);
        outputs = waypoint.point_name[0] ? waypoint_text(waypoint) : "";
        return status;
    };
}

const char* const kPrograms =
    R"({"state":"get_program_trajectory_list","page_num":2,"page_size":3,"total_size":8,"vague_search":"a",)"
    R"("list":[{"id":4,"size":100,"speed":20,"trajectory_name":"ab"},)"
    R"({"id":5,"size":7,"speed":100,"trajectory_name":"0123456789012345678901234567890123"}]})";
const char* const kProgramsOutputs = "2 3 8 [a] / 4 100 20 ab / 5 7 100 0123456789012345678901234567890";
const char* const kRunning =
    R"({"state":"get_program_run_state","run_state":1,"id":7,"plan_num":3,"loop_num":[5,2],"loop_cont":[1,2],)"
    R"("plan_speed":20,"step_mode":0,"edit_id":9})";

GlobalWaypoint waypoint() {
    return {"w1", {1, -2.5, 3, 0.0006, 5, 6, 7}, {{0.1f, -0.2f, 0.3f}, {}, {3.141f, 0, -1.5f}}, "Base", "Arm_Tip", "t"};
}
GlobalWaypoint full_waypoint() {
    GlobalWaypoint full = waypoint();
    std::memset(full.point_name, 'n', sizeof full.point_name);
    return full;
}
#define WAYPOINT_KEYS(name, joints)                                                                \
    R"(, "point_name": ")" name R"(", "joint": [1000, -2500, 3000, 0, 5000, 6000)" joints R"(], )" \
    R"("pose": [100000, -200000, 300000, 3141, 0, -1500], "work_frame": "Base", )"                 \
    R"("tool_frame": "Arm_Tip", "time": "t"})"
#define WAYPOINT_REPLY                                                                                        \
    R"("point_name":"w1","joint":[1000,-2500,3000,0,5000,6000],"pose":[100000,-200000,300000,3141,0,-1500],)" \
    R"("work_frame":"Base","tool_frame":"Arm_Tip","time":"2024-05-17"})"
const char* const kWaypointOutputs =
    "w1, 1 -2.5 3 0 5 6 0, 0.1 -0.2 0.3, 3.141 0 -1.5, quaternion!, Base, Arm_Tip, 2024-05-17";
const char* const kGiven = R"({"state":"given_global_waypoint",)" WAYPOINT_REPLY;
const char* const kWaypoints =
    R"({"state":"get_global_waypoints_list","total_size":1,"list":[{)" WAYPOINT_REPLY R"(],"get_state":true})";

// The counter of a list's and of the run state's mailbox is set, their record is wiped, their status can be a number of
// the reply.
CommandCase set_rule(const CommandCase& row) { return row.setting_the_count().wiping(); }

CommandCase programs(const char* name, int (*command)(ArmSocket, ProgramList*), const ProgramList& list,
                     const char* wire) {
    return set_rule(answered(name, listing(command, list, entry_text), Get_Program_Trajectory_List_Cmd, wire, kPrograms,
                             kProgramsOutputs));
}
CommandCase waypoints(const char* name, int (*command)(ArmSocket, GlobalWaypointList*), const GlobalWaypointList& list,
                      const char* wire, const std::string& outputs) {
    return answered(name, listing(command, list, waypoint_text), Get_Global_Waypoint_List_Cmd, wire, kWaypoints,
                    outputs + kWaypointOutputs);
}
CommandCase run_state(const char* name, int (*command)(ArmSocket, ProgramRunState*), const char* reply,
                      const char* outputs) {
    return set_rule(
        answered(name, running(command), Get_Program_Run_State_Cmd, "get_program_run_state", reply, outputs));
}
CommandCase named(const char* name, int (*command)(ArmSocket, const char*, GlobalWaypoint*)) {
    return answered(name, given(command), Given_Global_Waypoint_Cmd,
                    R"({"command": "given_global_waypoint", "point_name": "w1"})", kGiven, kWaypointOutputs);
}

// A row of a setter whose replies add up, acknowledged under `key`, and the same one for both of its forms.
#define ADDING(form, command, arguments, wire, key) \
    acknowledged(CALL(form, arguments), command##_Cmd, wire, key).adding()
#define BOTH(command, block, arguments, wire, key) \
    ADDING(command, command, arguments, wire, key), ADDING(block, command, arguments, wire, key)

const char* const kProgramStart = R"({"command": "set_program_id_start", "id": 3, "speed": 20})";
const char* const kStarted = R"({"command":"set_program_id_start","start_state":true})";
const char* const kDefault = "get_default_run_program";
const char* const kDefaultOutputs = R"({"state":"get_default_run_program","id":3})";

// A start that ends with its reply, without a query of the program.
CommandCase turned_down(const std::string& name, Call call, const std::string& state, int status) {
    CommandCase row{name, call, kProgramStart, R"({"command":"set_program_id_start","start_state":)" + state + "}",
                    status};
    row.limit = 1000;
    return row;
}

const std::vector<CommandCase> kProgramsRows = {
    programs("Get_Program_Trajectory_List", Get_Program_Trajectory_List, asked<ProgramList>(2, 3, "a"),
             R"({"command": "get_program_trajectory_list", "page_num": 2, "page_size": 3, "vague_search": "a"})"),
    programs("Get_Program_Trajectory_List_Block", Get_Program_Trajectory_List_Block, asked<ProgramList>(0, -1, ""),
             "get_program_trajectory_list"),
    run_state("Get_Program_Run_State", Get_Program_Run_State, kRunning, "1 7 3 20 0 9 2, 5 1, 2 2")
        .returning(1)
        .reads({{}, {{"/edit_id", {0}}}}),
    run_state("Get_Program_Run_State_Block", Get_Program_Run_State_Block,
              R"({"state":"get_program_run_state","run_state":0})", "0 -1 -1 -1 -1 0 -1"),
    acknowledged(CALL(Set_Program_ID_Start, (s, 3, 20, false)), Set_Program_ID_Start_Cmd, kProgramStart, kStarted),
    acknowledged(CALL(Set_Program_ID_Start_NonBlock, (s, 3, 20)), Set_Program_ID_Start_Cmd, kProgramStart, kStarted),
    turned_down("Refused_" CALL(Set_Program_ID_Start, (s, 3, 20, true)), "false", 1),
    turned_down(CALL(Set_Program_ID_Start_Block, (s, 3, 20)), "\"?\"", 11),
    WAITING(Delete_Program_Trajectory, Delete_Program_Trajectory_Cmd,
            R"({"command": "delete_program_trajectory", "id": -3})", "delete_state", -3),
    BOTH(Update_Program_Trajectory, Update_Program_Trajectory_Block, (s, 3, 50, "new \"name\""),
         R"({"command": "update_program_trajectory", "project_name": "new \"name\"", "plan_speed": 50, "id": 3})",
         "update_state"),
    BOTH(Set_Default_Run_Program, Set_Default_run_program_Block, (s, 3),
         R"({"command": "set_default_run_program", "id": 3})", "set_state"),
    answered(ASK(Get_Default_Run_Program), Get_Default_Run_Program_Cmd, kDefault, kDefaultOutputs, "3"),
    answered(ASK(Get_Default_run_program_Block), Get_Default_Run_Program_Cmd, kDefault, kDefaultOutputs, "3"),

    ADDING(Add_Global_Waypoint, Add_Global_Waypoint, (s, waypoint()),
           R"({"command": "add_global_waypoint")" WAYPOINT_KEYS("w1", ""), "add_state"),
    ADDING(Add_Global_Waypoint_Block, Add_Global_Waypoint, (s, full_waypoint()),
           R"({"command": "add_global_waypoint")" WAYPOINT_KEYS("nnnnnnnnnnnnnnnn", ", 7000"), "add_state")
        .on(75),
    ADDING(Update_Global_Waypoint, Update_Global_Waypoint, (s, waypoint()),
           R"({"command": "update_global_waypoint")" WAYPOINT_KEYS("w1", ""), "update_state"),
    ADDING(Update_Global_Waypoint_Block, Update_Global_Waypoint, (s, waypoint()),
           R"({"command": "update_global_waypoint")" WAYPOINT_KEYS("w1", ", 7000"), "update_state")
        .on(72),
    BOTH(Delete_Global_Waypoint, Delete_Global_Waypoint_Block, (s, "w1"),
         R"({"command": "delete_global_waypoint", "point_name": "w1"})", "delete_state"),
    named("Given_Global_Waypoint", Given_Global_Waypoint),
    named("Given_Global_Waypoint_Block", Given_Global_Waypoint_Block),
    waypoints("Get_Global_Point_List", Get_Global_Point_List, asked<GlobalWaypointList>(1, 10, "w"),
              R"({"command": "get_global_waypoints_list", "page_num": 1, "page_size": 10, "vague_search": "w"})",
              "1 10 1 [w] / "),
    waypoints("Get_Global_Point_List_Block", Get_Global_Point_List_Block, asked<GlobalWaypointList>(0, 0, ""),
              "get_global_waypoints_list", "0 0 1 [] / "),
};

ZK_WIRE_TESTS(ProgramsAndWaypoints, "programs.h", "Programs and global waypoints", kProgramsRows)

TEST(ProgramGuards, QueriesWithoutARecordSendNothing) {
    expect_nothing_sent({{CALL(Get_Program_Trajectory_List, (s, nullptr))},
                         {CALL(Get_Program_Trajectory_List_Block, (s, nullptr))},
                         {CALL(Get_Program_Run_State, (s, nullptr))},
                         {CALL(Get_Default_run_program_Block, (s, nullptr))},
                         {CALL(Given_Global_Waypoint, (s, "a", nullptr))},
                         {CALL(Get_Global_Point_List, (s, nullptr))}});
}

TEST(ProgramGuardsDeathTest, AWaypointBeyondItsFrameEndsTheProcess) {
    GlobalWaypoint large = full_waypoint();
    std::memset(large.time, '"', sizeof large.time);  // two bytes each on the wire
    EXPECT_DEATH(Update_Global_Waypoint_Block((Init_Socket_Joint(65, 1000), 1000), large),
                 "\"update_global_waypoint\" takes");
}

TEST(ProgramParsers, RefuseElementsThatAreIncomplete) {
    ProgramRunState state{};
    const std::string running = R"({"run_state":2,"id":7,"plan_num":3,"plan_speed":20,"step_mode":0,"loop_num":)";
    EXPECT_EQ(Parser_Get_Program_Run_State((running + R"([],"loop_cont":[]})").c_str(), &state), 2);
    EXPECT_EQ(Parser_Get_Program_Run_State((running + R"([1],"loop_cont":[]})").c_str(), &state), 10);
    ProgramList programs{};
    const std::string page = R"({"page_num":1,"page_size":1,"total_size":1,"vague_search":"","list":[)";
    EXPECT_EQ(Parser_Get_Program_Trajectory_List((page + R"({"id":1}]})").c_str(), &programs), 9);
    GlobalWaypointList waypoints{};
    for (const auto& [end, status] :
         {std::pair{R"(],"get_state":true})", 0}, {R"(],"get_state":false})", 1}, {R"({}],"get_state":true})", 9}}) {
        EXPECT_EQ(Parser_Get_Global_Waypoints_List(-1, (page + end).c_str(), &waypoints), status) << end;
    }
}

TEST(ProgramParsers, ReadAWaypointOrItsRefusal) {
    constexpr ArmSocket kSevenJoints = 1000;
    Init_Socket_Joint(75, kSevenJoints);
    const std::string seven = R"({"point_name":"w","joint":[1,2,3,4,5,6,7],"work_frame":"","tool_frame":"","time":"",)";
    GlobalWaypoint w{};
    for (const auto& [arm, text, status] : {std::tuple{-1, std::string(R"({"given_state":true})"), 0},
                                            {-1, R"({"given_state":false})", 1},
                                            {-1, R"({"given_state":0})", 11},
                                            {kSevenJoints, seven + R"("pose":[1,2,3,4,5,6,7]})", 0},
                                            {kSevenJoints, seven + R"("pose":[1,2,3,4,5,6]})", 10}}) {
        EXPECT_EQ(Parser_Given_Global_Waypoint(arm, text.c_str(), &w), status) << text;
    }
}

// A reply beyond the record's capacity fills the record and nothing after it.
TEST(ProgramParsers, StopAtTheEndOfTheirRecord) {
    std::string text = R"({"page_num":1,"page_size":1,"total_size":1,"vague_search":"","list":[)";
    for (int i = 0; i <= ZK_PROGRAMS; ++i) {
        text += (i ? "," : "") + std::string(R"({"id":)") + std::to_string(i) +
                R"(,"size":1,"speed":1,"trajectory_name":"n"})";
    }
    struct {
        ProgramList list;
        int32_t after = 42;
    } record;
    EXPECT_EQ(Parser_Get_Program_Trajectory_List((text + "]}").c_str(), &record.list), 0);
    EXPECT_EQ(record.list.list[ZK_PROGRAMS - 1].id, ZK_PROGRAMS - 1);
    EXPECT_EQ(record.after, 42);
}

class SimulatedPrograms : public testing::Test {
 protected:
    // Keeps a program under an id without running it.
    void keep(int32_t id, const std::string& name, const std::string& text) {
        ProjectSendParams params = project(directory_.file(name + ".txt", text));
        params.save_id = id;
        params.only_save = 1;
        ASSERT_EQ(Send_TrajectoryFile(arm_, nullptr, params), 0);
    }
    std::vector<float> joints() {
        std::vector<float> joints(7);
        EXPECT_EQ(Get_Joint_Degree(arm_, joints.data()), 0);
        joints.resize(6);
        return joints;
    }

    TemporaryDirectory directory_;
    SimulatedArm arm_{std::vector<std::string>{"--quiet"}};
};
const char* const kThereAndOn =
    "{\"file\":6}\n"
    "{\"loop\":2}\n"
    "{\"command\":\"movej\",\"joint\":[2000,0,0,0,0,0],\"trajectory_connect\":1}\n"
    "{\"command\":\"movej\",\"joint\":[0,0,0,0,0,0]}\n"
    "{\"end_loop\":true}\n"
    "{\"command\":\"movej\",\"joint\":[1000,2000,0,0,0,0],\"v\":50}\n";

TEST_F(SimulatedPrograms, RunToTheirEnd) {
    keep(7, "there and on", kThereAndOn);
    EXPECT_EQ(Set_Program_ID_Start(arm_, 7, 100, true), 0);
    EXPECT_EQ(joints(), (std::vector<float>{1, 2, 0, 0, 0, 0}));
    EXPECT_EQ(Set_Program_ID_Start(arm_, 8, 100, true), 1) << "there is none of this id";
    ProgramRunState state{};
    EXPECT_EQ(Get_Program_Run_State(arm_, &state), 0);
    EXPECT_EQ(state.id, -1);
}

TEST_F(SimulatedPrograms, ArePausedContinuedAndStopped) {
    keep(7, "far", "{\"loop\":1}\n{\"command\":\"movej\",\"joint\":[90000,0,0,0,0,0],\"v\":10}\n{\"end_loop\":true}\n");
    ASSERT_EQ(Set_Program_ID_Start(arm_, 7, 50, false), 0);
    ProgramRunState state{};
    const auto runs = [&](int run_state) {
        return eventually([&] { return Get_Program_Run_State(arm_, &state) == run_state; });
    };
    runs(1);
    EXPECT_EQ(state.id, 7);
    EXPECT_EQ(state.plan_num, 2);
    EXPECT_EQ(state.plan_speed, 50);
    EXPECT_EQ(state.loop_count, 1);
    EXPECT_EQ(state.loop_num[0], 1);
    EXPECT_EQ(Delete_Program_Trajectory(arm_, 7), 1) << "it runs";
    EXPECT_EQ(Send_TrajectoryFile(arm_, nullptr, project(directory_.file("other.txt", "{}\n"))), 16) << "another runs";
    EXPECT_EQ(Move_Pause_Cmd(arm_, true), 0);
    runs(2);
    EXPECT_EQ(Move_Continue_Cmd(arm_, true), 0);
    runs(1);
    EXPECT_EQ(Move_Stop_Cmd(arm_, true), 0);
    runs(0);
}

TEST_F(SimulatedPrograms, EndAtAMotionThatIsRefused) {
    const std::vector<float> before = joints();
    keep(7, "fast", "{\"command\":\"movej\",\"joint\":[1000,0,0,0,0,0],\"v\":42949673}\n");
    ASSERT_EQ(Set_Program_ID_Start(arm_, 7, 100, false), 0);
    ProgramRunState state{};
    eventually([&] { return Get_Program_Run_State(arm_, &state) == 0; });
    EXPECT_EQ(joints(), before);
}

TEST_F(SimulatedPrograms, GoStepByStep) {
    ProjectSendParams params = project(directory_.file("step.txt", kThereAndOn));
    params.step_flag = 1;
    ASSERT_EQ(Send_TrajectoryFile(arm_, nullptr, params), 0);
    ProgramRunState state{};
    for (int next = 0; Get_Program_Run_State(arm_, &state) != 0 && next < 1000; ++next) Set_Online_Next_E(arm_);
    EXPECT_EQ(state.run_state, 0);
    EXPECT_EQ(joints(), (std::vector<float>{1, 2, 0, 0, 0, 0}));
}

TEST_F(SimulatedPrograms, AreListedChangedAndDeleted) {
    keep(3, "one", "{}\n");
    keep(5, "two", "{}\n");
    EXPECT_EQ(Update_Program_Trajectory(arm_, 5, 40, "twice"), 0);
    ProgramList list = asked<ProgramList>(1, 1, "tw");
    ASSERT_EQ(Get_Program_Trajectory_List(arm_, &list), 0);
    EXPECT_EQ(list_text(list, entry_text), "1 1 1 [tw] / 5 3 40 twice");
    list = asked<ProgramList>(2, 1, "");
    ASSERT_EQ(Get_Program_Trajectory_List(arm_, &list), 0);
    EXPECT_EQ(list_text(list, entry_text), "2 1 2 [] / 5 3 40 twice");
    int32_t id = -1;
    EXPECT_EQ(Set_Default_Run_Program(arm_, 4), 1);
    EXPECT_EQ(Set_Default_Run_Program(arm_, 3), 0);
    EXPECT_EQ(Get_Default_Run_Program(arm_, &id), 0);
    EXPECT_EQ(id, 3);
    EXPECT_EQ(Delete_Program_Trajectory(arm_, 3), 0);
    EXPECT_EQ(Delete_Program_Trajectory(arm_, 3), 1);
}

}  // namespace
