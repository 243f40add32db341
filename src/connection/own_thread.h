// Threads of the library's own.
#pragma once

#include <pthread.h>

#include <csignal>
#include <system_error>
#include <thread>

namespace zk {

// Starts a thread that runs to the end of the process. Signals go to the application's threads. Returns 0 or errno.
template <class Run>
int start_own_thread(Run run) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    int error = 0;
    try {
        std::thread(run).detach();
    } catch (const std::system_error& failure) {
        error = failure.code().value();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return error;
}

}  // namespace zk
