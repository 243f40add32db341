// Parsers of replies, without a connection: text in, status and outputs out. By default a parser of joint arrays gets
// the socket of no connection, which counts as six joints.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/outputs.h"

namespace zk::test {

// A parser and the text of its outputs.
using Parse = std::function<int(ArmSocket arm, const char* text, std::string& outputs)>;

template <class... Outs>
Parse parsing(int (*parser)(const char*, Outs*...)) {
    return [parser](ArmSocket, const char* text, std::string& outputs) {
        return with_outputs<Outs...>(outputs, parser, text);
    };
}
template <class... Outs>
Parse parsing(int (*parser)(ArmSocket, const char*, Outs*...)) {
    return [parser](ArmSocket arm, const char* text, std::string& outputs) {
        return with_outputs<Outs...>(outputs, parser, arm, text);
    };
}

struct ParserCase {
    std::string text;
    int status;
    std::string outputs;
};
inline void expect_parsed(const Parse& parse, const std::vector<ParserCase>& cases) {
    for (const ParserCase& row : cases) {
        std::string outputs;
        EXPECT_EQ(parse(-1, row.text.c_str(), outputs), row.status) << row.text;
        EXPECT_EQ(outputs, row.outputs) << row.text;
    }
}

}  // namespace zk::test
