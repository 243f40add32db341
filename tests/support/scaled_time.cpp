#include "support/scaled_time.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>

#include "zk/connection.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Scale {
    std::mutex mutex;
    Clock::time_point since = Clock::now();
    Clock::duration passed_before = since.time_since_epoch();
    int factor = 1;

    // Library time; the caller holds the mutex.
    Clock::duration now() const { return passed_before + (Clock::now() - since) * factor; }
};

// Never destroyed: the library's threads read the clock until the process ends.
Scale& scale() {
    static Scale& only = *new Scale;
    return only;
}

}  // namespace

void zk::test::set_time_factor(int factor) {
    Scale& time = scale();
    const std::lock_guard lock(time.mutex);
    const Clock::time_point now = Clock::now();
    time.passed_before += (now - time.since) * time.factor;
    time.since = now;
    time.factor = factor;
}

ZK_API int32_t Get_Program_Runtime(void) {
    const std::lock_guard lock(scale().mutex);
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(scale().now());
    return static_cast<int32_t>(passed.count());
}

ZK_API void sleep_cp(int32_t milliseconds) {
    std::chrono::nanoseconds real = std::chrono::milliseconds(milliseconds);
    {
        const std::lock_guard lock(scale().mutex);
        if (scale().factor > 1) real /= scale().factor;
    }
    std::this_thread::sleep_for(real);
}
