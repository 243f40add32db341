#include "control/at_exit.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <mutex>

#include "connection/line.h"

namespace zk {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr char kStop[] = "{\"command\":\"set_arm_stop\"}\r\n";
constexpr int kMostLooks = 100;
constexpr int kBesideMs = 200;

pid_t watched_process = 0;

// The end of the process may reset a connection, so the bytes have to be with the controller before.
void wait_until_sent(int descriptor) {
    int waiting = 1;
    for (int looks = 0; looks < kMostLooks && ioctl(descriptor, SIOCOUTQ, &waiting) == 0 && waiting > 0; ++looks) {
        const timespec pause{0, 1000000};
        nanosleep(&pause, nullptr);
    }
}

// Runs in signal handlers too: it makes system calls and reads atomic words alone. A child of the process stops
// nothing.
void stop_arms() {
    if (getpid() != watched_process) return;
    process_ends = true;
    for (int slot = 0; slot < ZK_SLOTS; ++slot) {
        const Line& line = Line::at(slot);
        const int descriptor = line.descriptor();
        if (!line.stops_at_exit || line.is_lost()) continue;
        if (line.is_in_transfer()) {
            (void)send_beside(descriptor, kStop, sizeof kStop - 1, kBesideMs);
        } else {
            (void)send(descriptor, kStop, sizeof kStop - 1, MSG_DONTWAIT | MSG_NOSIGNAL);
            wait_until_sent(descriptor);
        }
    }
}

void stop_arms_and_end(int signal) {
    stop_arms();
    std::signal(signal, SIG_DFL);
    raise(signal);
}

}  // namespace

void watch_the_exit() {
    static std::once_flag once;
    std::call_once(once, [] {
        watched_process = getpid();
        std::atexit(stop_arms);
        for (const int signal : kSignals) {
            struct sigaction current {};
            // A program with a handler of its own decides itself.
            if (sigaction(signal, nullptr, &current) != 0 || current.sa_handler != SIG_DFL) continue;
            struct sigaction ours {};
            ours.sa_handler = stop_arms_and_end;
            sigaction(signal, &ours, nullptr);
        }
    });
}

}  // namespace zk
