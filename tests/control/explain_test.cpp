// Explanations of results.
#include <gtest/gtest.h>

#include <string>

#include "zk/control.h"
#include "zk/streaming.h"

namespace {

struct Row {
    int status;
    uint16_t arm_err, sys_err;
    int returns;
    const char* cause;  // a part of it
    ZK_GoOn go_on;
};

TEST(Explain, NamesTheFirstThatIsNotZero) {
    for (const Row& row :
         {Row{0, 0, 0, 0, "succeeded", ZK_GO_ON}, Row{7, 1, 1, 0, "time limit", ZK_MEND_FIRST},
          Row{0, 1, 1, 0, "an error of the arm", ZK_MUST_NOT}, Row{0, 0, 65535, 0, "error of its own", ZK_MUST_NOT},
          Row{ZK_BUSY, 0, 0, 0, "another thread", ZK_RETRY},
          Row{ZK_SET_POINT_UNREACHABLE, 0, 0, 0, "out of reach", ZK_MEND_FIRST},
          Row{3, 1, 0, ZK_UNKNOWN_CODE, "none of this library", ZK_MEND_FIRST},
          Row{65536, 0, 0, ZK_UNKNOWN_CODE, "none of this library", ZK_MEND_FIRST}}) {
        ZK_Advice advice{};
        EXPECT_EQ(ZK_Explain(row.status, row.arm_err, row.sys_err, &advice), row.returns) << row.status;
        EXPECT_NE(std::string(advice.cause).find(row.cause), std::string::npos) << advice.cause;
        EXPECT_EQ(advice.go_on, row.go_on) << row.status;
    }
    EXPECT_EQ(ZK_Explain(0, 0, 0, nullptr), 19);
}

}  // namespace
