// Transfers that fail on their way: the status, and that the line is free again. Limits run out in scaled time.
#include "zk/file_transfer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <thread>

#include "commands/project.h"
#include "support/arm.h"
#include "support/scaled_time.h"
#include "support/simulated_arm.h"
#include "support/temporary_file.h"

namespace {

using namespace zk::test;

// More than a connection holds while the peer does not read.
constexpr size_t kLarge = 30'000'000;

struct Failure {
    const char* name;
    std::vector<std::string> options;  // of the simulator
    int status;
    int32_t line;  // reported
};

class FailingTransfer : public testing::TestWithParam<Failure> {};

// From the first byte on, a limit of a minute runs out fast.
void hurry(int64_t sent, int64_t, void*) {
    if (sent == 0) set_time_factor(200);
}

size_t open_descriptors() {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

TEST_P(FailingTransfer, ReturnsItsStatusAndFreesTheLine) {
    const Failure& failure = GetParam();
    const TemporaryDirectory source;
    const std::string name = failure.name;
    const bool stalls = name == "Stall", ignored = name == "Ignored", closes = name.rfind("Close", 0) == 0;
    const std::string path = source.file("a.txt", program_of_size(stalls || name == "Close" ? kLarge : 2000));
    const ZK_TransferProgress progress = failure.status == 7 && !closes ? hurry : nullptr;
    for (const bool update : {false, true}) {
        SCOPED_TRACE(update ? "update" : "project");
        SimulatedArm arm(failure.options);
        if (ignored) set_time_factor(200);
        const int32_t start = Get_Program_Runtime();
        const size_t before = open_descriptors();
        int32_t line = -1;
        EXPECT_EQ(update ? ZK_UpdataSoftWare_With_Progress(arm, path.c_str(), static_cast<int32_t>(path.size()),
                                                           progress, nullptr)
                         : ZK_Send_TrajectoryFile_With_Progress(arm, &line, project(path), progress, nullptr),
                  failure.status);
        EXPECT_EQ(line, update ? -1 : failure.line);
        EXPECT_EQ(shared(IsSendFile), 0);
        EXPECT_EQ(open_descriptors(), before);
        EXPECT_TRUE(!closes || Get_Program_Runtime() - start < 10000) << "no verdict comes on a closed connection";
        set_time_factor(1);
        Arm_Socket_Close(arm);
    }
}
#define BOTH_WAYS(option) "--quiet", option, "run_project", option, "update_software"
const Failure kFailures[] = {{"Refused", {BOTH_WAYS("--refuse-on")}, 16, -1},
                             {"Ignored", {BOTH_WAYS("--silent-on")}, 7, -1},
                             {"Rejected", {"--quiet", "--transfer-fault", "refuse"}, 16, 0},
                             {"ErrorLine", {"--quiet", "--transfer-fault", "error_line:17"}, 16, 17},
                             {"Silence", {"--quiet", "--transfer-fault", "silent"}, 7, -1},
                             {"Close", {"--quiet", "--transfer-fault", "close:500"}, 7, -1},
                             {"CloseAfterTheWrite", {"--quiet", "--transfer-fault", "close:500"}, 7, -1},
                             {"Stall", {"--quiet", "--transfer-fault", "stall:500"}, 7, -1}};
INSTANTIATE_TEST_SUITE_P(, FailingTransfer, testing::ValuesIn(kFailures),
                         [](const auto& row) { return row.param.name; });

// A transfer to a controller that does not read ends when another thread closes the connection.
TEST(StalledTransfer, EndsWhenItsConnectionIsClosed) {
    const TemporaryDirectory source;
    const std::string path = source.file("a.txt", program_of_size(kLarge));
    SimulatedArm arm({"--quiet", "--transfer-fault", "stall:0"});
    std::thread closer;
    struct Context {
        ArmSocket arm;
        std::thread& closer;
    } context{arm, closer};
    const auto close_it = [](int64_t sent, int64_t, void* user) {
        auto& [connection, thread] = *static_cast<Context*>(user);
        if (sent == 0) thread = std::thread([connection = connection] { Arm_Socket_Close(connection); });
    };
    EXPECT_EQ(ZK_Send_TrajectoryFile_With_Progress(arm, nullptr, project(path), close_it, &context), 5);
    closer.join();
    EXPECT_EQ(shared(IsSendFile), 0);
}

TEST(SavedPoints, AreAwaitedUpToTheLimitOfTheForm) {
    const TemporaryDirectory directory;
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    set_shared(m_nOutTime, 1000);
    const ArmSocket arm = connect_arm(controller);
    set_time_factor(200);
    int32_t total = -1;
    const int32_t start = Get_Program_Runtime();
    EXPECT_EQ(Save_Drag_Teach_File_NonBlock(arm, (directory / "a").c_str(), &total), 7);
    EXPECT_EQ(shared(F_SaveDragTeach), nullptr);
    const int32_t middle = Get_Program_Runtime();
    EXPECT_GE(middle - start, 1000);
    EXPECT_EQ(Save_Drag_Teach_File_Block_NC_E(arm, (directory / "a").c_str(), &total), 7);
    EXPECT_NE(shared(F_SaveDragTeach), nullptr) << "points may still come";
    EXPECT_GE(Get_Program_Runtime() - middle, 31000);
    EXPECT_EQ(total, -1);
}

}  // namespace
