// Parsers of replies, without a connection: text in, status and outputs out. By default a parser of joint arrays gets
// the socket of no connection, which counts as six joints.
#pragma once

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
void expect_parsed(const Parse& parse, const std::vector<ParserCase>& cases);

// A reply whose keys are read in order, each required: the value, the outputs after it was read, and values that end
// the reading. A missing key ends it with 9.
struct KeyInOrder {
    std::string key;
    std::string value;
    std::string outputs;
    std::vector<std::pair<std::string, int>> wrong = {{"null", 11}};
};
void expect_keys(const Parse& parse, const std::vector<KeyInOrder>& keys, const std::string& before = "{",
                 const std::string& after = "}");

// An acknowledgement: `other` is the status for a key that is neither true nor false.
struct AckParser {
    int (*parse)(const char* text);
    const char* key;
    int other = 11;
};
void expect_acknowledgement(const AckParser& parser);

// One number: `outputs` is the output for 1234, `wrong` the status for a key that is not a number.
struct NumberParser {
    Parse parse;
    const char* key;
    const char* outputs;
    int wrong = 11;
};
void expect_number(const NumberParser& parser);

// One integer for each joint: `outputs` are those for [1000, -2000, 1, 0, 166, 1234].
struct JointArrayParser {
    Parse parse;
    const char* key;
    const char* outputs;
    int not_array = 11;
    int wrong_size = 10;
};
void expect_joint_array(const JointArrayParser& parser);

}  // namespace zk::test
