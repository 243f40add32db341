// Programs and global waypoints: every command on the wire, its guards, its parsers, and programs that run.
#include "zk/programs.h"

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
    std::string told = text_of({list.page_num, list.page_size, list.total_size}) + " [" + list.vague_search + "]";
    for (const Entry& entry : list.list) {
        if (!is_unwritten(entry)) told += " / " + text(entry);
    }
    return told;
}
Call listing(int (*command)(ArmSocket, ProgramList*), ProgramList list) {
    return [=](ArmSocket s, std::string& told) {
        ProgramList out = list;
        const int status = command(s, &out);
        told = list_text(out, entry_text);
        return status;
    };
}
Call listing(int (*command)(ArmSocket, GlobalWaypointList*), GlobalWaypointList list) {
    return [=](ArmSocket s, std::string& told) {
        GlobalWaypointList out = list;
        const int status = command(s, &out);
        told = list_text(out, waypoint_text);
        return status;
    };
}

std::string state_text(const ProgramRunState& state) {
    return text_of({state.run_state, state.id, state.plan_num, state.plan_speed, state.step_mode, state.edit_id,
                    state.loop_count}) +
           ", " + text_of(state.loop_num) + ", " + text_of(state.loop_cont);
}
Call running(int (*command)(ArmSocket, ProgramRunState*)) {
    return [=](ArmSocket s, std::string& told) {
        ProgramRunState state;
        std::memset(&state, kUnwritten, sizeof state);
        const int status = command(s, &state);
        // What the mailbox has never held is 0.
        for (int i = 2; i < ZK_PROGRAM_LOOPS && is_unwritten(state) == false; ++i) {
            std::memset(&state.loop_num[i], kUnwritten, sizeof(int32_t));
            std::memset(&state.loop_cont[i], kUnwritten, sizeof(int32_t));
        }
        told = is_unwritten(state) ? "" : state_text(state);
        return status;
    };
}
Call given(int (*command)(ArmSocket, const char*, GlobalWaypoint*)) {
    return [=](ArmSocket s, std::string& told) {
        GlobalWaypoint waypoint{};
        const int status = command(s, "w1", &waypoint);
        told = waypoint.point_name[0] ? waypoint_text(waypoint) : "";
        return status;
    };
}

const char* const kPrograms =
    R"({"state":"get_program_trajectory_list","page_num":2,"page_size":3,"total_size":8,"vague_search":"a",)"
    R"("list":[{"id":4,"size":100,"speed":20,"trajectory_name":"ab"},)"
    R"({"id":5,"size":7,"speed":100,"trajectory_name":"0123456789012345678901234567890123"}]})";
const char* const kProgramsTold = "2 3 8 [a] / 4 100 20 ab / 5 7 100 0123456789012345678901234567890";
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
const char* const kWaypointTold =
    "w1, 1 -2.5 3 0 5 6 0, 0.1 -0.2 0.3, 3.141 0 -1.5, quaternion!, Base, Arm_Tip, 2024-05-17";
const char* const kGiven = R"({"state":"given_global_waypoint",)" WAYPOINT_REPLY;
const char* const kWaypoints =
    R"({"state":"get_global_waypoints_list","total_size":1,"list":[{)" WAYPOINT_REPLY R"(],"get_state":true})";
const char* const kAdded = R"({"command":"add_global_waypoint","add_state":true})";
const char* const kUpdated = R"({"command":"update_global_waypoint","update_state":true})";

// The counter of a list's and of the run state's mailbox is set, their record is wiped, their status can be a number of
// the reply.
CommandCase set_rule(const CommandCase& row) { return row.absorbing().wiping(); }

const std::vector<CommandCase> kRows = {
    set_rule(answered("Get_Program_Trajectory_List",
                      listing(Get_Program_Trajectory_List, asked<ProgramList>(2, 3, "a")),
                      Get_Program_Trajectory_List_Cmd,
                      R"({"command": "get_program_trajectory_list", "page_num": 2, "page_size": 3, )"
                      R"("vague_search": "a"})",
                      kPrograms, kProgramsTold)),
    set_rule(answered(
        "Get_Program_Trajectory_List_Block", listing(Get_Program_Trajectory_List_Block, asked<ProgramList>(0, -1, "")),
        Get_Program_Trajectory_List_Cmd, R"({"command": "get_program_trajectory_list"})", kPrograms, kProgramsTold)),
    set_rule(answered("Get_Program_Run_State", running(Get_Program_Run_State), Get_Program_Run_State_Cmd,
                      R"({"command": "get_program_run_state"})", kRunning, "1 7 3 20 0 9 2, 5 2, 1 2"))
        .giving(1),
    set_rule(answered("Get_Program_Run_State_Block", running(Get_Program_Run_State_Block), Get_Program_Run_State_Cmd,
                      R"({"command": "get_program_run_state"})", R"({"state":"get_program_run_state","run_state":0})",
                      "0 -1 -1 -1 -1 0 -1, 0 0, 0 0")),
    acknowledged(CALL(Set_Program_ID_Start, (s, 3, 20, false)), Set_Program_ID_Start_Cmd,
                 R"({"command": "set_program_id_start", "id": 3, "speed": 20})",
                 R"({"command":"set_program_id_start","start_state":true})"),
    acknowledged(CALL(Set_Program_ID_Start_NonBlock, (s, -3, 20)), Set_Program_ID_Start_Cmd,
                 R"({"command": "set_program_id_start", "id": -3, "speed": 20})",
                 R"({"command":"set_program_id_start","start_state":true})"),
    {"Refused_Set_Program_ID_Start", [](ArmSocket s) { return Set_Program_ID_Start(s, 3, 20, true); },
     R"({"command": "set_program_id_start", "id": 3, "speed": 20})",
     R"({"command":"set_program_id_start","start_state":false})", 1},
    {"Set_Program_ID_Start_Block", [](ArmSocket s) { return Set_Program_ID_Start_Block(s, 3, 20); },
     R"({"command": "set_program_id_start", "id": 3, "speed": 20})",
     R"({"command":"set_program_id_start","start_state":"?"})", 11},
    WAITING(Delete_Program_Trajectory, Delete_Program_Trajectory_Cmd,
            R"({"command": "delete_program_trajectory", "id": 3})",
            R"({"command":"delete_program_trajectory","delete_state":true})", 3),
    acknowledged(
        CALL(Update_Program_Trajectory, (s, 3, 50, "new \"name\"")), Update_Program_Trajectory_Cmd,
        R"({"command": "update_program_trajectory", "project_name": "new \"name\"", "plan_speed": 50, "id": 3})",
        R"({"command":"update_program_trajectory","update_state":true})")
        .adding(),
    acknowledged(CALL(Update_Program_Trajectory_Block, (s, 3, 50, "n")), Update_Program_Trajectory_Cmd,
                 R"({"command": "update_program_trajectory", "project_name": "n", "plan_speed": 50, "id": 3})",
                 R"({"command":"update_program_trajectory","update_state":true})")
        .adding(),
    acknowledged(CALL(Set_Default_Run_Program, (s, 3)), Set_Default_Run_Program_Cmd,
                 R"({"command": "set_default_run_program", "id": 3})",
                 R"({"command":"set_default_run_program","set_state":true})")
        .adding(),
    acknowledged(CALL(Set_Default_run_program_Block, (s, 3)), Set_Default_Run_Program_Cmd,
                 R"({"command": "set_default_run_program", "id": 3})",
                 R"({"command":"set_default_run_program","set_state":true})")
        .adding(),
    answered(ASK(Get_Default_Run_Program), Get_Default_Run_Program_Cmd, R"({"command": "get_default_run_program"})",
             R"({"state":"get_default_run_program","id":3})", "3"),
    answered(ASK(Get_Default_run_program_Block), Get_Default_Run_Program_Cmd,
             R"({"command": "get_default_run_program"})", R"({"state":"get_default_run_program","id":3})", "3"),

    acknowledged(CALL(Add_Global_Waypoint, (s, waypoint())), Add_Global_Waypoint_Cmd,
                 R"({"command": "add_global_waypoint")" WAYPOINT_KEYS("w1", ""), kAdded)
        .adding(),
    acknowledged(CALL(Add_Global_Waypoint_Block, (s, full_waypoint())), Add_Global_Waypoint_Cmd,
                 R"({"command": "add_global_waypoint")" WAYPOINT_KEYS("nnnnnnnnnnnnnnnn", ", 7000"), kAdded)
        .adding()
        .on(75),
    acknowledged(CALL(Update_Global_Waypoint, (s, waypoint())), Update_Global_Waypoint_Cmd,
                 R"({"command": "update_global_waypoint")" WAYPOINT_KEYS("w1", ""), kUpdated)
        .adding(),
    acknowledged(CALL(Update_Global_Waypoint_Block, (s, waypoint())), Update_Global_Waypoint_Cmd,
                 R"({"command": "update_global_waypoint")" WAYPOINT_KEYS("w1", ", 7000"), kUpdated)
        .adding()
        .on(72),
    acknowledged(CALL(Delete_Global_Waypoint, (s, "w1")), Delete_Global_Waypoint_Cmd,
                 R"({"command": "delete_global_waypoint", "point_name": "w1"})",
                 R"({"command":"delete_global_waypoint","delete_state":true})")
        .adding(),
    acknowledged(CALL(Delete_Global_Waypoint_Block, (s, "")), Delete_Global_Waypoint_Cmd,
                 R"({"command": "delete_global_waypoint", "point_name": ""})",
                 R"({"command":"delete_global_waypoint","delete_state":true})")
        .adding(),
    answered("Given_Global_Waypoint", given(Given_Global_Waypoint), Given_Global_Waypoint_Cmd,
             R"({"command": "given_global_waypoint", "point_name": "w1"})", kGiven, kWaypointTold),
    answered("Given_Global_Waypoint_Block", given(Given_Global_Waypoint_Block), Given_Global_Waypoint_Cmd,
             R"({"command": "given_global_waypoint", "point_name": "w1"})", kGiven, kWaypointTold),
    answered("Get_Global_Point_List", listing(Get_Global_Point_List, asked<GlobalWaypointList>(1, 10, "w")),
             Get_Global_Waypoint_List_Cmd,
             R"({"command": "get_global_waypoints_list", "page_num": 1, "page_size": 10, "vague_search": "w"})",
             kWaypoints, std::string("1 10 1 [w] / ") + kWaypointTold),
    answered("Get_Global_Point_List_Block", listing(Get_Global_Point_List_Block, asked<GlobalWaypointList>(0, 0, "")),
             Get_Global_Waypoint_List_Cmd, R"({"command": "get_global_waypoints_list"})", kWaypoints,
             std::string("0 0 1 [] / ") + kWaypointTold),
};

class ProgramsAndWaypoints : public testing::TestWithParam<CommandCase> {};
TEST_P(ProgramsAndWaypoints, OnTheWire) { run(GetParam()); }
INSTANTIATE_TEST_SUITE_P(, ProgramsAndWaypoints, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(ProgramGuards, EveryCommandHasARow) { EXPECT_EQ(commands_without_row("programs.h", kRows), ""); }

TEST(ProgramGuards, ThePageTellsTheWire) { expect_documented("Programs and global waypoints", kRows); }

TEST(ProgramGuards, NullPointersSendNothing) {
    expect_nothing_sent({{CALL(Get_Program_Trajectory_List, (s, nullptr))},
                         {CALL(Get_Program_Trajectory_List_Block, (s, nullptr))},
                         {CALL(Get_Program_Run_State, (s, nullptr))},
                         {CALL(Update_Program_Trajectory, (s, 1, 1, nullptr))},
                         {CALL(Get_Default_Run_Program, (s, nullptr))},
                         {CALL(Delete_Global_Waypoint, (s, nullptr))},
                         {CALL(Given_Global_Waypoint, (s, "a", nullptr))},
                         {CALL(Get_Global_Point_List, (s, nullptr))}});
}

TEST(ProgramGuardsDeathTest, AWaypointTooLongForItsFrameEndsTheProcess) {
    GlobalWaypoint large = full_waypoint();
    std::memset(large.time, '"', sizeof large.time);  // two bytes each on the wire
    EXPECT_DEATH(Update_Global_Waypoint_Block((Init_Socket_Joint(65, 1000), 1000), large),
                 "\"update_global_waypoint\" takes");
}

Parse listing_of(int (*parser)(ArmSocket, const char*, GlobalWaypointList*)) {
    return [=](ArmSocket arm, const char* text, std::string& told) {
        GlobalWaypointList list;
        std::memset(&list, kUnwritten, sizeof list);
        const int status = parser(arm, text, &list);
        told = text_of(list.total_size);
        return status;
    };
}

TEST(ProgramParsers, ReadTheirReplies) {
    expect_number({parsing(Parser_Program_Run_Finish), "finish_id", "1234"});
    expect_number({parsing(Parser_Get_id), "id", "1234"});

    const Parse run_state = [](ArmSocket, const char* text, std::string&) {
        ProgramRunState state{};
        return Parser_Get_Program_Run_State(text, &state);
    };
    const std::string running = R"({"run_state":2,"id":7,"plan_num":3,"plan_speed":20,"step_mode":0,)";
    expect_parsed(run_state, {{running + R"("loop_num":[],"loop_cont":[]})", 2, ""},
                              {running + R"("loop_num":[1],"loop_cont":[]})", 10, ""},
                              {running + R"("loop_num":1,"loop_cont":[]})", 11, ""},
                              {running + R"("loop_num":[]})", 9, ""},
                              {R"({"run_state":1})", 9, ""},
                              {R"({"run_state":true})", 11, ""},
                              {R"({"id":1})", 9, ""},
                              {R"({"run_state":1)", 9, ""}});

    const Parse programs = [](ArmSocket, const char* text, std::string&) {
        ProgramList list{};
        return Parser_Get_Program_Trajectory_List(text, &list);
    };
    const std::string page = R"({"page_num":1,"page_size":1,"total_size":1,)";
    expect_parsed(programs, {{page + R"("vague_search":"","list":[]})", 0, ""},
                             {page + R"("list":[]})", 9, ""},
                             {page + R"("vague_search":""})", 9, ""},
                             {page + R"("vague_search":1,"list":[]})", 11, ""},
                             {page + R"("vague_search":"","list":{}})", 11, ""},
                             {page + R"("vague_search":"","list":[{"id":1}]})", 9, ""},
                             {R"({"page_num":1,"page_size":1,"vague_search":"","list":[]})", 9, ""}});

    const Parse given = [](ArmSocket arm, const char* text, std::string&) {
        GlobalWaypoint w{};
        return Parser_Given_Global_Waypoint(arm, text, &w);
    };
    expect_parsed(given, {{R"({"given_state":true})", 0, ""},
                          {R"({"given_state":false})", 1, ""},
                          {R"({"given_state":0})", 11, ""},
                          {kGiven, 0, ""},
                          {R"({"point_name":"w","joint":[1,2,3,4,5,6,7]})", 10, ""},
                          {R"({"point_name":"w","joint":[1,2,3,4,5,6]})", 9, ""},
                          {R"({"point_name":1})", 11, ""}});
    constexpr ArmSocket kSevenJoints = 1000;
    Init_Socket_Joint(75, kSevenJoints);
    std::string told;
    const std::string seven = R"({"point_name":"w","joint":[1,2,3,4,5,6,7],"pose":[1,2,3,4,5,6)";
    EXPECT_EQ(given(kSevenJoints, (seven + "]}").c_str(), told), 10) << "a pose of six on a connection of seven";
    const std::string texts = R"("work_frame":"","tool_frame":"","time":""})";
    EXPECT_EQ(given(kSevenJoints, (seven + ",7]," + texts).c_str(), told), 0);

    expect_parsed(listing_of(Parser_Get_Global_Waypoints_List),
                  {{R"({"total_size":0,"list":[],"get_state":true})", 0, "0"},
                   {R"({"total_size":0,"list":[],"get_state":false})", 1, "0"},
                   {R"({"total_size":0,"list":[],"get_state":1})", 11, "0"},
                   {R"({"total_size":0,"list":[]})", 9, "0"},
                   {R"({"total_size":0,"list":[{}],"get_state":true})", 9, "0"},
                   {R"({"list":[],"get_state":true})", 9, "-"},
                   {R"({"total_size":"0","list":[],"get_state":true})", 11, "-"}});
}

// A reply beyond the record's capacity fills the record and nothing behind it.
TEST(ProgramParsers, StopAtTheEndOfTheirRecord) {
    std::string text = R"({"page_num":1,"page_size":1,"total_size":1,"vague_search":"","list":[)";
    for (int i = 0; i <= ZK_PROGRAMS; ++i) {
        text += (i ? "," : "") + std::string(R"({"id":)") + std::to_string(i) +
                R"(,"size":1,"speed":1,"trajectory_name":"n"})";
    }
    struct {
        ProgramList list;
        int32_t behind = 42;
    } record;
    EXPECT_EQ(Parser_Get_Program_Trajectory_List((text + "]}").c_str(), &record.list), 0);
    EXPECT_EQ(record.list.list[ZK_PROGRAMS - 1].id, ZK_PROGRAMS - 1);
    EXPECT_EQ(record.behind, 42);
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
    EXPECT_EQ(Move_Pause_Cmd(arm_, true), 0);
    runs(2);
    EXPECT_EQ(Move_Continue_Cmd(arm_, true), 0);
    runs(1);
    EXPECT_EQ(Move_Stop_Cmd(arm_, true), 0);
    runs(0);
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

TEST_F(SimulatedPrograms, StandBesideWaypointsThatComeBack) {
    GlobalWaypoint w = waypoint(), back{};
    EXPECT_EQ(Add_Global_Waypoint(arm_, w), 0);
    EXPECT_EQ(Add_Global_Waypoint(arm_, w), 1) << "the name is taken";
    w.joint[0] = 9;
    EXPECT_EQ(Update_Global_Waypoint(arm_, w), 0);
    ASSERT_EQ(Given_Global_Waypoint(arm_, "w1", &back), 0);
    EXPECT_EQ(waypoint_text(back), "w1, 9 -2.5 3 0 5 6 0, 0.1 -0.2 0.3, 3.141 0 -1.5, quaternion!, Base, Arm_Tip, t");
    GlobalWaypointList list = asked<GlobalWaypointList>(1, 10, "w");
    ASSERT_EQ(Get_Global_Point_List(arm_, &list), 0);
    EXPECT_EQ(list.total_size, 1);
    EXPECT_EQ(Given_Global_Waypoint(arm_, "w2", &back), 1);
    EXPECT_EQ(Delete_Global_Waypoint(arm_, "w1"), 0);
    EXPECT_EQ(Delete_Global_Waypoint(arm_, "w1"), 1);
}

}  // namespace
