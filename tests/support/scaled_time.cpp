#include "support/scaled_time.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>

#include "zk/connection.h"

namespace {

using Clock = std::chrono::steady_clock;

thread_local int64_t slept_ms = 0;

constexpr Clock::duration kLongestStop = std::chrono::minutes(1);

struct Scale {
    std::mutex mutex;
    Clock::time_point since = Clock::now();
    Clock::duration passed_before = since.time_since_epoch();
    int factor = 1;

    // Library time since the factor was set; the caller holds the mutex.
    Clock::duration passed() const {
        const Clock::duration real = Clock::now() - since;
        return factor == 0 ? std::max(real - kLongestStop, Clock::duration::zero()) : real * factor;
    }
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
    time.passed_before += time.passed();
    time.since = Clock::now();
    time.factor = factor;
}

int64_t zk::test::slept() { return slept_ms; }

ZK_API int32_t Get_Program_Runtime(void) {
    const std::lock_guard lock(scale().mutex);
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(scale().passed_before + scale().passed());
    return static_cast<int32_t>(passed.count());
}

ZK_API void sleep_cp(int32_t milliseconds) {
    slept_ms += milliseconds;
    std::chrono::nanoseconds real = std::chrono::milliseconds(milliseconds);
    {
        const std::lock_guard lock(scale().mutex);
        if (scale().factor > 1) real /= scale().factor;
    }
    std::this_thread::sleep_for(real);
}
