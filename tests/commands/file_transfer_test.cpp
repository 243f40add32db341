// File transfer: every command on the wire, what goes out in which pieces, and files that arrive as they were sent.
#include "zk/replies/file_transfer.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "commands/project.h"
#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/pattern.h"
#include "support/simulated_arm.h"
#include "support/temporary_file.h"
#include "support/wire_protocol.h"
#include "zk/arm_state.h"
#include "zk/connection.h"
#include "zk/drag_teach.h"
#include "zk/system.h"

namespace {

using namespace zk::test;

// A file whose bytes the scripted controller takes for a request, so that it answers the end of the transfer.
const char* const kContent = R"({"command": "content"})";
const TemporaryDirectory& directory() {
    static const TemporaryDirectory only;
    return only;
}
std::string file_named(const std::string& name) { return directory().file(name, formatted(kContent) + "\r\n"); }

const char* const kAccepted = R"({"command":"run_project","project_state":true})";
const char* const kDone = R"({"command":"download_project","project_state":true})";
const char* const kUpdateAccepted = R"({"command":"run_update_software","update_state":true})";
const char* const kRunProject =
    R"({"command": "run_project", "project_name": "a.b", "file_size": 27, "plan_speed": 20})";
const char* const kRunKnown =
    R"({"command": "run_project", "project_name": "p", "file_size": -1, "plan_speed": 50, "auto_start": 1, )"
    R"("step_flag": 255, "save_id": 7, "only_save": 2})";
const char* const kUpdate = "{\"command\":\"update_software\",\"file_size\":27,\"update_name\":\"u\\n.bin\"}";

int send_trajectory(ArmSocket s, std::string& outputs) {
    return with_outputs<int32_t>(
        outputs, [s](int32_t* line) { return Send_TrajectoryFile(s, line, project(file_named("a.b.txt"), 20)); });
}
int send_block(ArmSocket s) {
    const std::string path = file_named("a.b.txt");
    return Send_TrajectoryFile_Block(s, 0, 0, path.c_str(), static_cast<int32_t>(path.size()) + 1, 20, 0, 0, nullptr,
                                     0);
}
int run_known(ArmSocket s) {
    g_is_robot_type_i = 1;
    return Run_Project_Block(s, 7, 2, "pq", 1, -1, 50, 1, 255);
}
int send_data(ArmSocket s, std::string& outputs) {
    const std::string data = formatted(kContent) + "\r\n";
    return with_outputs<int32_t>(outputs, [&](int32_t* line) {
        return Send_Project_Block(s, data.data(), static_cast<int32_t>(data.size()), line);
    });
}
template <class Function, class... More>
int update(Function function, ArmSocket s, More... more) {
    const std::string path = file_named("u\\n.bin");
    return function(s, path.c_str(), static_cast<int32_t>(path.size()), more...);
}
template <class Function>
Call saving(Function function, const char* name) {
    return [=](ArmSocket s, std::string& outputs) {
        return with_outputs<int32_t>(outputs,
                                     [=](int32_t* total) { return function(s, (directory() / name).c_str(), total); });
    };
}

// The forms that share a request: its wire text, the announcement's reply, the bytes, the verdict.
CommandCase transfer(const std::string& name, Call call, const std::string& wire, const std::string& reply,
                     FirstRecord mailbox) {
    CommandCase row{name, call, wire, reply};
    row.mailbox = mailbox;
    return row.followed_by({kContent, kDone});
}
CommandCase telling(CommandCase row, const std::string& outputs) {
    row.outputs = outputs;
    return row;
}

const char* const kSave = R"({"command": "save_trajectory", "trajectory_name": "drag.txt"})";
CommandCase save(const std::string& name, Call call, const std::string& reply, int status, const std::string& outputs) {
    return telling(CommandCase{name, call, kSave, reply, status}, outputs);
}
const char* const kTwoPoints = R"({"command":"save_trajectory","total_num":2,"save_state":true})";

const char* const kAskTool = R"({"command": "get_tool_hardware_version"})";
const char* const kTool = R"({"state":"get_tool_hardware_version","version":512})";
const char* const kSetIp = R"({"command": "set_NetIP", "ip": "10.0.0.3"})";
const char* const kIpSet = R"({"command":"set_NetIP","status":true})";

// The same row for <name>_E and <name>_Block_E.
#define FORMS(row, name, arguments, ...) \
    row(CALL(name##_E, arguments), __VA_ARGS__), row(CALL(name##_Block_E, arguments), __VA_ARGS__)

const std::vector<CommandCase> kFileTransferRows = {
    {"Send_TrajectoryFile", send_trajectory, kRunProject, kAccepted, 0, 65, "0", {}, {kContent, kDone}},
    transfer(
        CALL(ZK_Send_TrajectoryFile_With_Progress, (s, nullptr, project(file_named("a.b.txt"), 20), nullptr, nullptr)),
        kRunProject, kAccepted, Run_Project_Cmd),
    transfer("Send_TrajectoryFile_Block", send_block, kRunProject, kAccepted, Run_Project_Cmd),
    {"Refused_Run_Project_Block", run_known, kRunKnown, R"({"command":"run_project","project_state":false})", 16},
    transfer("Run_Project_Block", run_known, kRunKnown, kAccepted, Run_Project_Cmd).followed_by({}),
    {"Send_Project_Block", send_data, kContent, kDone, 0, 65, "0", {}},
    {"Rejected_Send_Project_Block", send_data, kContent,
     R"({"command":"download_project","project_state":false,"err_line":3})", 16, 65, "3"},

    save("Save_Trajectory", saving(Save_Trajectory, "drag.txt"), kTwoPoints, 0, "2"),
    save("Save_Drag_Teach_File_Block_NC_E", saving(Save_Drag_Teach_File_Block_NC_E, "drag.txt"), kTwoPoints, 0, "2"),
    save("Save_Drag_Teach_File_NonBlock", saving(Save_Drag_Teach_File_NonBlock, "drag.txt"), kTwoPoints, 0, "2"),
    save("Empty_Save_Drag_Teach_File_Block_NC_E", saving(Save_Drag_Teach_File_Block_NC_E, "drag.txt"),
         R"({"command":"save_trajectory","total_num":0,"save_state":false})", 24, "0"),
    save("Refused_Save_Drag_Teach_File_NonBlock", saving(Save_Drag_Teach_File_NonBlock, "drag.txt"),
         R"({"command":"save_trajectory","total_num":5,"save_state":false})", 1, "5"),

    FORMS(acknowledged, Set_Online_Next, (s), Set_Online_Start_Cmd, R"({"command": "online_next"})",
          R"({"command":"online_next","state":true})"),
    FORMS(no_reply, Set_Lift_Version, (s, -3), R"({"command": "set_lift_version", "lift_version": -3})",
          R"({"command":"set_lift_version","lift_version":true})"),
    FORMS(acknowledged, Set_Sale_Version, (s, 3), of_any_type(Set_Sale_Version_Cmd),
          R"({"command": "set_sale_version", "sale_version": 3})",
          R"({"command":"set_sale_version","sale_version":true})"),
    answered(ASK(Get_Tool_Hardware_Version_E), Get_Tool_Hardware_Version_Cmd, kAskTool, kTool, "512"),
    answered(ASK(Get_Tool_Hardware_Version_Block_E), Get_Tool_Hardware_Version_Cmd, kAskTool, kTool, "512"),
    no_reply(CALL(Set_Controller_IP_NC_E, (s, "10.0.0.3")), kSetIp, kIpSet),
    no_reply(CALL(Set_Controller_IP_Block_NC_E, (s, "10.0.0.3")), kSetIp, kIpSet),
    queued(CALL(Set_Popup_NonBlock_E, (s)), R"({"command": "popup", "popup_result": true})"),
};

ZK_WIRE_ROWS(FileTransfer, kFileTransferRows, static_cast<void>(0));

// The update's request is the one that is not formatted.
struct UpdateRow {
    const char* name;
    Call call;
    bool announces, sends;
};
const UpdateRow kUpdates[] = {
    {"UpdataSoftWare_Block_E", [](ArmSocket s) { return update(UpdataSoftWare_Block_E, s); }, true, true},
    {"ZK_UpdataSoftWare_With_Progress",
     [](ArmSocket s) {
         const ZK_TransferProgress nobody = nullptr;
         void* const user = nullptr;
         return update(ZK_UpdataSoftWare_With_Progress, s, nobody, user);
     },
     true, true},
    {CALL(Run_Update_Software_Block_E, (s, "u\\n.binary", 7, 27)), true, false},
    {"Send_Update_Software_Block_E", [](ArmSocket s) { return update(Send_Update_Software_Block_E, s); }, false, true},
};
TEST(Update, GoesOverTheWire) {
    for (const UpdateRow& row : kUpdates) {
        SCOPED_TRACE(row.name);
        ScriptedController controller;
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 60000);
        const ArmSocket arm = connect_arm(controller);
        controller.answer("update_software", kUpdateAccepted);
        controller.answer("content", kDone);
        set_shared(m_update_scale, 50);
        std::string outputs;
        EXPECT_EQ(row.call(arm, outputs), 0);
        EXPECT_EQ(shared(m_update_scale), row.announces && row.sends ? 0 : 50);
        if (row.announces) {
            EXPECT_EQ(controller.next_request(), kUpdate);
        }
        if (row.sends) {
            EXPECT_EQ(controller.next_request(), formatted(kContent));
        }
        controller.answer("update_software", R"({"command":"run_update_software","update_state":false})");
        controller.answer("content", R"({"command":"download_project","project_state":false})");
        EXPECT_EQ(row.call(arm, outputs), 16);
        Arm_Socket_Close(arm);
    }
}

// Numbers that never go over the wire.
const char* const kNumbers[] = {"Set_Popup_State_E",        "Get_Popup_State_E",          "Get_Update_Scale_E",
                                "Cancle_Save_Trajectory_E", "Get_Save_Trajectory_Flag_E", "countLinesInFile"};
TEST(FileTransferNumbers, AreKept) {
    std::string outputs;
    EXPECT_EQ(Set_Popup_State_E(1, 7), 0);
    EXPECT_EQ((with_outputs<int32_t, int32_t>(outputs, Get_Popup_State_E)), 0);
    EXPECT_EQ(outputs, "1; 7");
    EXPECT_EQ(Get_Popup_State_E(nullptr, nullptr), 19);
    EXPECT_EQ(with_outputs<int32_t>(outputs, Get_Update_Scale_E), 0);
    EXPECT_EQ(outputs, "0");
    drag_teach_flag = 1;
    EXPECT_EQ(Cancle_Save_Trajectory_E(), 0);
    EXPECT_EQ(with_outputs<int32_t>(outputs, Get_Save_Trajectory_Flag_E), 0);
    EXPECT_EQ(outputs, "0");
    const std::string lines = "1\n" + std::string(1023, 'x') + "\n" + std::string(2046, 'y') + "\nlast";
    EXPECT_EQ(countLinesInFile(directory().file("lines", lines).c_str()), 7);
}

// The page lists requests, not the bytes of files.
std::vector<CommandCase> all_rows() {
    std::vector<CommandCase> rows = kFileTransferRows;
    for (CommandCase& row : rows) {
        if (row.wire == kContent) row.wire = "";
    }
    for (const UpdateRow& row : kUpdates) rows.push_back({row.name, row.call, "", ""});
    rows.push_back({"update", kUpdates[0].call, R"({"command": "update_software", "file_size": 1, "update_name": "u"})",
                    kUpdateAccepted});
    return rows;
}
TEST(FileTransferGuards, EveryCommandHasARow) {
    std::vector<CommandCase> rows = all_rows();
    for (const char* name : kNumbers) rows.push_back({name, kUpdates[0].call, "", ""});
    EXPECT_EQ(commands_without_row("file_transfer.h", rows), "");
}
TEST(FileTransferGuards, ThePageDescribesTheWire) { expect_documented("File transfer", all_rows()); }
TEST(FileTransferGuards, PlainNamesDoNothingDuringAFileTransfer) {
    expect_nothing_during_a_file_transfer(kFileTransferRows);
}

int update_at(ArmSocket s, const std::string& path) {
    return UpdataSoftWare_Block_E(s, path.c_str(), static_cast<int32_t>(path.size()));
}
int save_at(ArmSocket s, const char* path) {
    int32_t total;
    return Save_Trajectory(s, path, &total);
}
ProjectSendParams project_of_length(int32_t length) {
    ProjectSendParams params = project("/a");
    params.project_path_len = length;
    return params;
}

// A call that returns this status: the difference is 0.
#define REJECTED(status, command, arguments)                                          \
    {                                                                                 \
#command #arguments, [](ArmSocket s) { return command arguments - (status); } \
    }

// In a directory of their own: a name without a separator is one of the current directory.
TEST(FileTransferGuards, BadArgumentsSendNothing) {
    std::filesystem::current_path(directory().path());
    directory().file("empty", "");
    expect_nothing_sent(
        {
            REJECTED(19, Save_Trajectory, (s, "/tmp/x", nullptr)),
            REJECTED(19, Save_Drag_Teach_File_NonBlock, (s, nullptr, nullptr)),
            REJECTED(19, Set_Controller_IP_NC_E, (s, nullptr)),
            REJECTED(19, Get_Tool_Hardware_Version_E, (s, nullptr)),
            REJECTED(19, Get_Tool_Hardware_Version_Block_E, (s, nullptr)),
            REJECTED(19, Run_Project_Block, (s, 0, 0, nullptr, 1, 1, 1, 0, 0)),
            REJECTED(19, Send_Project_Block, (s, nullptr, 1, nullptr)),
            REJECTED(19, UpdataSoftWare_Block_E, (s, nullptr, 1)),
            REJECTED(15, UpdataSoftWare_Block_E, (s, "/a", 301)),
            REJECTED(15, Send_TrajectoryFile_Block, (s, 0, 0, "/a", 301, 1, 0, 0, nullptr, 0)),
            REJECTED(15, Send_TrajectoryFile, (s, nullptr, project_of_length(301))),
            REJECTED(17, UpdataSoftWare_Block_E, (s, "/a", 300)),
            REJECTED(17, Send_TrajectoryFile_Block, (s, 0, 0, "/a", 300, 1, 0, 0, nullptr, 0)),
            REJECTED(17, Send_TrajectoryFile, (s, nullptr, project_of_length(300))),
            REJECTED(17, update_at, (s, "/nowhere/at/all")),
            REJECTED(17, update_at, (s, "./empty")),
            REJECTED(17, Send_TrajectoryFile, (s, nullptr, project("/nowhere/at/all"))),
            REJECTED(17, Send_TrajectoryFile, (s, nullptr, project("/tmp"))),
            REJECTED(17, Send_TrajectoryFile, (s, nullptr, project_of_length(-1))),
            REJECTED(22, save_at, (s, "/nowhere/at/all")),
            REJECTED(-4, Send_TrajectoryFile, (s, nullptr, project("a\\b", 100, 1))),
            REJECTED(16, update_at, (s, "name")),
            REJECTED(16, save_at, (s, "bare")),
        },
        0);
    EXPECT_EQ(shared(IsSendFile), 0);
    EXPECT_NE(shared(F_SaveDragTeach), nullptr) << "the file of the bare name stays open";
}

TEST(FileTransferParsers, ReadTheirReplies) {
    expect_parsed(parsing(Parser_SendFile), {{R"({"project_state":true,"err_line":4})", 0, ""},
                                             {R"({"project_state":false,"err_line":4})", 16, "4"},
                                             {R"({"project_state":false,"err_line":"4"})", 16, ""},
                                             {R"({"project_state":1})", 11, ""}});
    expect_parsed(parsing(Parser_Save_Drag_Teach_File_Block_NC_E), {{R"({"total_num":3,"save_state":true})", 0, "3"},
                                                                    {R"({"total_num":3,"save_state":false})", 1, "3"},
                                                                    {R"({"total_num":0,"save_state":false})", 24, "0"},
                                                                    {R"({"total_num":3,"save_state":"no"})", 0, "3"}});
}

// A connection that keeps the pieces apart in which it was written to.
class Pieces {
 public:
    Pieces() {
        ZK_API_Init(65, nullptr);
        if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends_) != 0) throw std::runtime_error("socketpair");
        Init_Socket_Joint(65, ends_[0]);
        set_shared(m_nOutTime, -10000);  // no reply comes
    }
    ~Pieces() {
        Arm_Socket_Close(ends_[0]);
        close(ends_[1]);
    }
    operator ArmSocket() const { return ends_[0]; }
    std::vector<std::string> read() {
        std::vector<std::string> pieces;
        char bytes[4096];
        for (ssize_t size; (size = recv(ends_[1], bytes, sizeof bytes, MSG_DONTWAIT)) > 0;)
            pieces.emplace_back(bytes, static_cast<size_t>(size));
        return pieces;
    }

 private:
    int ends_[2];
};

TEST(Chunks, OfAProjectAreTenBytesAndEndAtAZero) {
    Pieces arm;
    using List = std::vector<std::string>;
    EXPECT_EQ(Send_Project_Block(arm, "abcdefghijklmnopqrstuvwxy", 25, nullptr), 7);
    EXPECT_EQ(arm.read(), (List{"abcdefghij", "klmnopqrst", "uvwxy"}));
    const char zeros[] = "ab\0defghij\0lmnopqrstuvwx\0";
    EXPECT_EQ(Send_Project_Block(arm, zeros, 25, nullptr), 7);
    EXPECT_EQ(arm.read(), (List{"ab", "uvwx"}));
}

TEST(Chunks, OfAnUpdateAreTwoThousandBytesOfAnyKind) {
    Pieces arm;
    std::string content(4500, '\0');
    for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i % 251);
    const std::string path = directory().file("update", content);
    EXPECT_EQ(Send_Update_Software_Block_E(arm, path.c_str(), static_cast<int32_t>(path.size())), 7);
    const std::vector<std::string> pieces = arm.read();
    ASSERT_EQ(pieces.size(), 3u);
    EXPECT_EQ(pieces[0].size(), 2000u);
    EXPECT_EQ(pieces[0] + pieces[1] + pieces[2], content);
}

TEST(Project, WithItsHeaderGoesOutAsACopyUnderANewName) {
    SimulatedArm arm({"--quiet", "--files", directory().path()});
    const TemporaryDirectory source;
    ProjectSendParams params = project(source.file("a.b.txt", "{}\n{}\n"), 100, 1);
    params.only_save = 1;
    ASSERT_EQ(Send_TrajectoryFile(arm, nullptr, params), 0);
    std::string name;
    for (const auto& entry : std::filesystem::directory_iterator(directory().path())) {
        if (matches(entry.path().filename().string(), R"(a\.b\d{4}-\d\d-\d\d \d\d_\d\d_\d\d\.txt)"))
            name = entry.path().filename();
    }
    const std::string expected =
        "{\"file\":6}\r\n{\"name\":\"Folder\",\"num\":1,\"type\":2,\"enabled\":true,\"parent_number\":0}\r\n{}\n{}\n";
    EXPECT_EQ(content_of(directory() / name), expected);
    EXPECT_EQ(content_of(source / name), expected) << "the copy stays beside the source";
}

TEST(ProjectDeathTest, WithItsHeaderEndsTheProcessWithoutASource) {
    EXPECT_EXIT(add_lines_to_file(-1, "/nowhere/at/all", "/nowhere/too"), testing::ExitedWithCode(1), "打开文件失败");
}

struct Progress {
    ArmSocket arm;
    std::vector<int64_t> sent = {};
    int64_t total = 0;
    int other_transfer = 0, other_command = 0;

    static void progress(int64_t sent, int64_t total, void* user) {
        Progress& outputs = *static_cast<Progress*>(user);
        if (sent == 0) {
            outputs.other_transfer = Send_TrajectoryFile(outputs.arm, nullptr, project("/tmp/x"));
            outputs.other_command = Clear_System_Err(outputs.arm, true);
            Set_Ethernet_Block(outputs.arm);  // waits in the queue for the end of the transfer
        }
        outputs.sent.push_back(sent);
        outputs.total = total;
    }
};

bool is_content(const std::string& path, const std::string& content) {
    std::string kept(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary).read(kept.data(), static_cast<std::streamsize>(kept.size()));
    return kept == content;
}

TEST(Transfer, OfAProjectOfFiveMegabytesArrivesWholeAndHoldsTheLine) {
    const TemporaryDirectory kept;
    SimulatedArm arm({"--quiet", "--files", kept.path()});
    const TemporaryDirectory source;
    const std::string content = program_of_size(5'000'000), path = source.file("large.txt", content);
    ProjectSendParams params = project(path);
    params.only_save = 1;
    Progress outputs{arm};
    ASSERT_EQ(ZK_Send_TrajectoryFile_With_Progress(arm, nullptr, params, Progress::progress, &outputs), 0);
    EXPECT_TRUE(is_content(kept / "large", content));
    EXPECT_EQ(outputs.other_transfer, 18);
    EXPECT_EQ(outputs.other_command, 18);
    EXPECT_EQ(outputs.sent.size(), 101u);
    EXPECT_TRUE(std::is_sorted(outputs.sent.begin(), outputs.sent.end()));
    EXPECT_EQ(outputs.sent.back(), static_cast<int64_t>(content.size()));
    EXPECT_EQ(outputs.total, static_cast<int64_t>(content.size()));
    EXPECT_EQ(shared(IsSendFile), 0);
    EXPECT_EQ(Clear_System_Err(arm, true), 0);
}

TEST(Transfer, OfAnUpdateArrivesWholeWhateverItsBytes) {
    const TemporaryDirectory kept, source;
    SimulatedArm arm({"--quiet", "--files", kept.path()});
    std::string content = "{\"command\":\"set_arm_stop\"}\r\n";
    for (uint32_t i = 0; content.size() < 5'000'000; ++i) content += static_cast<char>(i * 2654435761u >> 24);
    const std::string path = source.file("image.bin", content);
    ASSERT_EQ(UpdataSoftWare_Block_E(arm, path.c_str(), static_cast<int32_t>(path.size())), 0);
    EXPECT_TRUE(is_content(kept / "image.bin", content));
    EXPECT_EQ(Clear_System_Err(arm, true), 0);
}

// Points that the controller streams, one a line, until all have come.
class Saving : public testing::Test {
 protected:
    Saving() : path_(directory() / "drag.txt") {
        ZK_API_Init(65, nullptr);
        set_shared(m_nOutTime, 60000);
        arm_ = connect_arm(controller_);
    }
    int save(const zk::test::Pieces& replies) {
        controller_.answer_bytes("save_trajectory", replies);
        return Save_Trajectory(arm_, path_.c_str(), &total_);
    }
    void wait_for_close() {
        eventually([] { return shared(F_SaveDragTeach) == nullptr; });
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
    std::string path_;
    int32_t total_ = 0;
};
std::string announcement(int total) {
    return line(R"({"command":"save_trajectory","total_num":)" + std::to_string(total) + R"(,"save_state":true})");
}
std::string point(int number) { return line(R"({"point":[)" + std::to_string(number) + "]}"); }

TEST_F(Saving, WritesThePointsAndClosesTheFileAfterTheLast) {
    EXPECT_EQ(save({announcement(2), point(1), point(2), point(3)}), 0);
    EXPECT_EQ(total_, 2);
    wait_for_close();
    EXPECT_EQ(content_of(path_), "{\"point\":[1]}\n{\"point\":[2]}\n");
    EXPECT_EQ(shared(drag_teach_count), 0);
}

TEST_F(Saving, AfterAnIncompleteOneEndsEarly) {
    EXPECT_EQ(save({announcement(3), point(1)}), 0);
    eventually([] { return shared(drag_teach_count) == 1; });
    EXPECT_EQ(save({announcement(3), point(4), point(5), point(6)}), 0);
    wait_for_close();
    EXPECT_EQ(content_of(path_), "{\"point\":[4]}\n{\"point\":[5]}\n");
}

TEST(Save, StoresThePathOfTheSimulatedArm) {
    SimulatedArm arm({"--quiet", "--hand", directory().file("hand.txt", "0.3  20 -20 -60 15 -40 20\n")});
    int32_t total = 0;
    const std::string path = directory() / "way.txt";
    EXPECT_EQ(Save_Trajectory(arm, path.c_str(), &total), 24);
    ASSERT_EQ(Start_Drag_Teach(arm, true), 0);
    float joint[6] = {};
    eventually([&] { return Get_Joint_Degree(arm, joint) == 0 && joint[0] > 19.9f; });
    ASSERT_EQ(Stop_Drag_Teach(arm, true), 0);
    ASSERT_EQ(Save_Trajectory(arm, path.c_str(), &total), 0);
    EXPECT_GT(total, 5);
    eventually([] { return shared(F_SaveDragTeach) == nullptr; });
    const std::string content = content_of(path);
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), total);
}

}  // namespace
