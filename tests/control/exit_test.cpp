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

void move(ArmSocket arm) {
    if (Movej_Cmd(arm, kTarget, 10, 0, 0, false) != ZK_OK) _exit(2);
    while (second_joint(arm) < 2) {
    }
}

void stream(ArmSocket arm) {
    float joint[7] = {};
    if (Get_Joint_Degree(arm, joint) != 0) _exit(2);
    for (const float end = joint[1] + 5; joint[1] < end; joint[1] += 0.1f, sleep_cp(2))
        Movej_CANFD(arm, joint, false, 0);
}

struct End {
    const char* name;
    uint32_t flags;
    void (*act)(ArmSocket);
    void (*end)();
    int signal;               // that ends or halts the program; 0: it exits
    float at_least, at_most;  // where the second joint rests; it starts at -20
};
void PrintTo(const End& end, std::ostream* out) { *out << end.name; }

// A program of its own that ends while its arm moves.
[[noreturn]] void run(int port, const End& end) {
    ZK_ConnectOptions options{};
    options.flags = end.flags;
    ArmSocket arm = 0;
    if (ZK_Connect("localhost", port, &options, &arm) != 0) {
        std::fprintf(stderr, "%s\n", ZK_Failure());
        _exit(2);
    }
    end.act(arm);
    end.end();
    _exit(3);
}

class Exit : public testing::TestWithParam<End> {};
INSTANTIATE_TEST_SUITE_P(
    , Exit,
    testing::Values(End{"Exits", ZK_STOP_AT_EXIT, move, [] { std::exit(0); }, 0, 2, 59},
                    End{"Signal", ZK_STOP_AT_EXIT, move, [] { raise(SIGTERM); }, SIGTERM, 2, 59},
                    End{"Interrupt", ZK_STOP_AT_EXIT, move, [] { raise(SIGINT); }, SIGINT, 2, 59},
                    End{"HangUp", ZK_STOP_AT_EXIT, move, [] { raise(SIGHUP); }, SIGHUP, 2, 59},
                    End{"WithoutTheOption", 0, move, [] { raise(SIGTERM); }, SIGTERM, 59.9f, 60.1f},
                    End{"OwnHandler", ZK_STOP_AT_EXIT, move,
                        [] {
                            std::signal(SIGTERM, [](int) { _exit(0); });
                            raise(SIGTERM);
                        },
                        0, 59.9f, 60.1f},
                    End{"Killed", ZK_STOP_AT_EXIT, move, [] { raise(SIGKILL); }, SIGKILL, 59.9f, 60.1f},
                    End{"Halted", ZK_STOP_AT_EXIT, move, [] { raise(SIGSTOP); }, SIGSTOP, 59.9f, 60.1f},
                    End{"HaltedInAStream", 0, stream, [] { raise(SIGSTOP); }, SIGSTOP, -15.2f, -14.8f},
                    End{"KilledInAStream", 0, stream, [] { raise(SIGKILL); }, SIGKILL, -15.2f, -14.8f}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(Exit, StopsTheArmWhereAskedTo) {
    SimulatorProcess simulator;
    const pid_t child = fork();  // no thread runs in this process yet
    if (child == 0) run(simulator.port(), GetParam());
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, WUNTRACED), child);
    EXPECT_EQ(WIFSIGNALED(status)  ? WTERMSIG(status)
              : WIFSTOPPED(status) ? WSTOPSIG(status)
                                   : WEXITSTATUS(status),
              GetParam().signal);

    ArmSocket arm = 0;
    ASSERT_EQ(ZK_Connect("127.0.0.1", simulator.port(), nullptr, &arm), 0) << ZK_Failure();
    eventually([&] {
        int32_t type = 0;
        float joint[8];
        return Get_Current_Trajectory(arm, &type, joint) == 0 && type == 0;
    });
    const float at_rest = second_joint(arm);
    EXPECT_GE(at_rest, GetParam().at_least);
    EXPECT_LE(at_rest, GetParam().at_most);
    if (WIFSTOPPED(status)) kill(child, SIGKILL);
}

}  // namespace
