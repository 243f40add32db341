// Parsers of replies, without a connection: text in, status and outputs out. A parser of joint arrays gets the socket
// of no connection, which counts as six joints, where not told otherwise.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/outputs.h"

namespace zk::test {

// A parser that tells what it stored.
using Parse = std::function<int(ArmSocket arm, const char* text, std::string& told)>;

template <class... Outs>
Parse parsing(int (*parser)(const char*, Outs*...)) {
    return
        [parser](ArmSocket, const char* text, std::string& told) { return with_outputs<Outs...>(told, parser, text); };
}
template <class... Outs>
Parse parsing(int (*parser)(ArmSocket, const char*, Outs*...)) {
    return [parser](ArmSocket arm, const char* text, std::string& told) {
        return with_outputs<Outs...>(told, parser, arm, text);
    };
}

struct ParserCase {
    std::string text;
    int status;
    std::string told;
};
void expect_parsed(const Parse& parse, const std::vector<ParserCase>& cases);

// A reply whose keys are read in their order, each required: the value, what is told once it was read, and values that
// end the reading. A reply without the key ends it with 9.
struct KeyInOrder {
    std::string key;
    std::string value;
    std::string told;
    std::vector<std::pair<std::string, int>> wrong = {{"null", 11}};
};
void expect_keys(const Parse& parse, const std::vector<KeyInOrder>& keys, const std::string& before = "{",
                 const std::string& behind = "}");

// An acknowledgement: `other` is what a key gives that is neither true nor false.
struct AckParser {
    int (*parse)(const char* text);
    const char* key;
    int other = 11;
};
void expect_acknowledgement(const AckParser& parser);

// One number: `told` is what 1234 gives, `wrong` what a key gives that is no number.
struct NumberParser {
    Parse parse;
    const char* key;
    const char* told;
    int wrong = 11;
};
void expect_number(const NumberParser& parser);

// One integer for each joint: `told` is what [1000, -2000, 1, 0, 166, 1234] gives.
struct JointArrayParser {
    Parse parse;
    const char* key;
    const char* told;
    int not_array = 11;
    int wrong_size = 10;
};
void expect_joint_array(const JointArrayParser& parser);

}  // namespace zk::test
