// What the arm does when the program ends in the middle of a motion.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/arm.h"
#include "support/simulator_process.h"
#include "zk_base.h"

namespace {

using namespace zk::test;

const float kTarget[7] = {0, 60, 0, 0, 0, 0};

float second_joint(ArmSocket arm) {
    float joint[7] = {};
    EXPECT_EQ(Get_Joint_Degree(arm, joint), 0);
    return joint[1];
}

// A program of its own that starts a motion and ends during it.
[[noreturn]] void move_and_end(int port, uint32_t flags, void (*end)()) {
    ZK_ConnectOptions options{};
    options.flags = flags;
    ArmSocket arm = 0;
    if (ZK_Connect("localhost", port, &options, &arm) != 0 || Movej_Cmd(arm, kTarget, 10, 0, 0, false) != 0) _exit(2);
    while (second_joint(arm) < 2) {
    }
    end();
    _exit(3);
}

struct End {
    const char* name;
    uint32_t flags;
    void (*end)();
    bool stops;
};
void PrintTo(const End& end, std::ostream* out) { *out << end.name; }

class Exit : public testing::TestWithParam<End> {};
INSTANTIATE_TEST_SUITE_P(, Exit,
                         testing::Values(End{"Exits", ZK_STOP_AT_EXIT, [] { std::exit(0); }, true},
                                         End{"Signal", ZK_STOP_AT_EXIT, [] { raise(SIGTERM); }, true},
                                         End{"WithoutTheOption", 0, [] { raise(SIGTERM); }, false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Exit, StopsTheArmWhereAskedTo) {
    SimulatorProcess simulator;
    const pid_t child = fork();  // no thread runs in this process yet
    if (child == 0) move_and_end(simulator.port(), GetParam().flags, GetParam().end);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == SIGTERM : WEXITSTATUS(status) == 0) << status;

    ArmSocket arm = 0;
    ASSERT_EQ(ZK_Connect("127.0.0.1", simulator.port(), nullptr, &arm), 0) << ZK_Failure();
    eventually([&] {
        int32_t type = 0;
        float joint[8];
        return Get_Current_Trajectory(arm, &type, joint) == 0 && type == 0;
    });
    const float at_rest = second_joint(arm);
    if (GetParam().stops) {
        EXPECT_LT(at_rest, kTarget[1] - 1);
    } else {
        EXPECT_NEAR(at_rest, kTarget[1], 0.01);
    }
}

}  // namespace
