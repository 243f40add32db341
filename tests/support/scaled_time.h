// A program that links scaled_time replaces the library's clock and sleep, so that a limit of seconds runs out in
// milliseconds. Source files named *_fast_test.cpp are built into such a program.
#pragma once

#include <cstdint>

namespace zk::test {

// Sets how many milliseconds of library time pass in one millisecond; 1 at the start. Raise it to let a limit run out.
// With 0 the library's clock is stopped and its sleeps last as usual: for what must happen within a limit under any
// load. After a minute the clock runs again, so that a lost reply fails the test instead of hanging it.
void set_time_factor(int factor);

// The milliseconds that this thread has slept in the library.
int64_t slept();

}  // namespace zk::test
