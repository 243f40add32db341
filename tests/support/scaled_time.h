// Time that passes faster: in a program that links scaled_time, the library's clock and sleep are the ones of here, so
// that a limit of seconds runs out in milliseconds. Source files named *_fast_test.cpp are built into such a program.
#pragma once

namespace zk::test {

// How many milliseconds of the library's pass in one of the machine's, from now on; 1 at the start. Keep it at 1 while
// something has to happen within a limit (a machine under load is late), and raise it for the limit to pass.
void set_time_factor(int factor);

}  // namespace zk::test
