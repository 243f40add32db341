#include "support/parser_case.h"

#include <gtest/gtest.h>

namespace zk::test {
void expect_parsed(const Parse& parse, const std::vector<ParserCase>& cases) {
    for (const ParserCase& row : cases) {
        std::string outputs;
        EXPECT_EQ(parse(-1, row.text.c_str(), outputs), row.status) << row.text;
        EXPECT_EQ(outputs, row.outputs) << row.text;
    }
}

}  // namespace zk::test
