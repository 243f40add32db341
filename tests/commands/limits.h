// The limits of calls that get no reply.
#pragma once

#include <gtest/gtest.h>

#include "support/scaled_time.h"
#include "zk/connection.h"

namespace zk::test {

// The library's time that such a call takes, in milliseconds, with the clock `factor` times faster.
template <class Call>
int32_t time_to_give_up(int factor, Call call) {
    const int32_t start = Get_Program_Runtime();
    set_time_factor(factor);
    EXPECT_EQ(call(), 7);
    set_time_factor(0);
    return Get_Program_Runtime() - start;
}

}  // namespace zk::test
