// A blocking move returns when the arm has arrived. A stop from another thread ends it early: here from a thread that
// waits for the Enter key, or for two seconds if standard input is not a terminal.
#include <poll.h>
#include <unistd.h>

#include <thread>

#include "check.h"

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;

    float joint[7] = {};
    Pose pose;
    uint16_t arm_err = 0, sys_err = 0;
    if (!succeeded("Reading the joints", Get_Current_Arm_State(arm, joint, &pose, &arm_err, &sys_err))) return 1;
    joint[0] += joint[0] > 0 ? -120.0f : 120.0f;

    // The end of the move wakes the stopping thread through a pipe.
    int over[2];
    if (pipe(over) != 0) return 1;
    const bool somebody_there = isatty(STDIN_FILENO);
    std::printf("Moving joint 1 slowly to %.0f degrees. Press Enter to stop.\n", joint[0]);
    bool asked = false, stopped = false;
    std::thread stopper([&] {
        pollfd events[2] = {{over[0], POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        poll(events, somebody_there ? 2 : 1, somebody_there ? -1 : 2000);
        asked = (events[0].revents & POLLIN) == 0;
        if (asked) stopped = succeeded("Stopping", Move_Slow_Stop_Cmd(arm, true));
    });
    const int status = Movej_Cmd(arm, joint, 5, 0, 0, true);
    (void)!write(over[1], "", 1);
    stopper.join();

    std::printf("The move ended with status %d: %s\n", status, ZK_Status_Text(status));
    return asked ? (stopped && status == ZK_REFUSED ? 0 : 1) : (status == ZK_OK ? 0 : 1);
}
