// What the rows of every family have to pass.
#pragma once

#include <string>
#include <vector>

#include "support/command_case.h"

namespace zk::test {

// The section of this title has exactly the commands of the rows, with the keys of their requests in order, and one of
// the words and the keys of their replies.
void expect_documented(const std::string& section, const std::vector<CommandCase>& rows);

}  // namespace zk::test

// ZK_WIRE_ROWS: the exchange of each row, after `set_up`. ZK_WIRE_GUARDS: a
// row for each command of the header; a section of the page for all of them; status 18 during a file transfer; status
// 19 for null pointers. ZK_WIRE_TESTS: both.
#define ZK_WIRE_ROWS(suite, rows, set_up)                                  \
    class suite : public testing::TestWithParam<zk::test::CommandCase> {}; \
    TEST_P(suite, OnTheWire) {                                             \
        set_up;                                                            \
        zk::test::run(GetParam());                                         \
    }                                                                      \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::ValuesIn(rows), [](const auto& row) { return row.param.name; })
#define ZK_WIRE_GUARDS(suite, header, section, rows)                                                          \
    TEST(suite##Guards, EveryCommandHasARow) { EXPECT_EQ(zk::test::commands_without_row(header, rows), ""); } \
    TEST(suite##Guards, ThePageDescribesTheWire) { zk::test::expect_documented(section, rows); }              \
    TEST(suite##Guards, PlainNamesDoNothingDuringAFileTransfer) {                                             \
        zk::test::expect_nothing_during_a_file_transfer(rows);                                                \
    }                                                                                                         \
    TEST(suite##Guards, PlainNamesRefuseNullPointers) { zk::test::expect_nulls_refused(rows); }
#define ZK_WIRE_TESTS(suite, header, section, rows)  \
    ZK_WIRE_ROWS(suite, rows, static_cast<void>(0)); \
    ZK_WIRE_GUARDS(suite, header, section, rows)
