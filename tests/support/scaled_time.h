// Time that passes faster: in a program that links scaled_time, the library's clock and sleep are the ones of here, so
// that a limit of seconds runs out in milliseconds. Source files named *_fast_test.cpp are built into such a program.
#pragma once

namespace zk::test {

// How many milliseconds of the library's pass in one of the machine's, from now on; 1 at the start. Raise it for a
// limit to run out. With 0 the library's clock stands still while its sleeps pass as they are: for what has to happen
// within a limit, on a machine that may be under any load.
void set_time_factor(int factor);

}  // namespace zk::test
