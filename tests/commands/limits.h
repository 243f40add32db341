// How long calls wait that nothing ends but their limit.
#pragma once

#include <gtest/gtest.h>

#include "support/scaled_time.h"
#include "zk/connection.h"

namespace zk::test {

// What such a call takes of the library's time, in milliseconds, when that runs so many times faster.
template <class Call>
int32_t time_to_give_up(int factor, Call call) {
    const int32_t start = Get_Program_Runtime();
    set_time_factor(factor);
    EXPECT_EQ(call(), 7);
    set_time_factor(0);
    return Get_Program_Runtime() - start;
}

}  // namespace zk::test
