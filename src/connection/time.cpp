#include <time.h>
#include <unistd.h>

#include "zk/connection.h"

ZK_API int32_t Get_Program_Runtime() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int32_t>(static_cast<uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1000000));
}

// This one under a name that no application can take.
extern "C" [[gnu::visibility("hidden"), gnu::alias("sleep_cp")]] void zk_usual_sleep(int32_t milliseconds);

ZK_API void sleep_cp(int32_t milliseconds) {
    if (milliseconds > 0) usleep(static_cast<useconds_t>(milliseconds) * 1000);
}
