#include "support/parser_case.h"

#include <gtest/gtest.h>

namespace zk::test {
namespace {

std::string object(const std::string& key, const std::string& value) { return "{\"" + key + "\":" + value + "}"; }

// Replies that have no such key, and one that is cut.
std::vector<ParserCase> without_key(const std::string& key) {
    return {{"{}", 9, ""},
            {"[]", 9, ""},
            {"7", 9, ""},
            {"", 9, ""},
            {object("other", "\"" + key + "\""), 9, ""},
            {object(key, "tru"), 9, ""}};
}

}  // namespace

void expect_parsed(const Parse& parse, const std::vector<ParserCase>& cases) {
    for (const ParserCase& row : cases) {
        std::string outputs;
        EXPECT_EQ(parse(-1, row.text.c_str(), outputs), row.status) << row.text;
        EXPECT_EQ(outputs, row.outputs) << row.text;
    }
}

void expect_keys(const Parse& parse, const std::vector<KeyInOrder>& keys, const std::string& before,
                 const std::string& after) {
    // The reply in which one key has another value, or none.
    const auto reply = [&](size_t changed, const std::string& value) {
        std::string text;
        for (size_t i = 0; i < keys.size(); ++i) {
            const std::string& its = i == changed ? value : keys[i].value;
            if (!its.empty()) text += (text.empty() ? "" : ",") + ("\"" + keys[i].key + "\":") + its;
        }
        return before + text + after;
    };
    const std::string whole = reply(keys.size(), "");
    expect_parsed(parse, {{whole, 0, keys.back().outputs}, {whole.substr(0, whole.size() - 1), 9, ""}, {"{}", 9, ""}});
    for (size_t i = 0; i < keys.size(); ++i) {
        const std::string outputs = i > 0 ? keys[i - 1].outputs : "";
        expect_parsed(parse, {{reply(i, ""), 9, outputs}});
        for (const auto& [value, status] : keys[i].wrong) expect_parsed(parse, {{reply(i, value), status, outputs}});
    }
}

void expect_acknowledgement(const AckParser& parser) {
    const Parse parse = [&](ArmSocket, const char* text, std::string&) { return parser.parse(text); };
    expect_parsed(parse, without_key(parser.key));
    expect_parsed(parse, {{object(parser.key, "true"), 0, ""}, {object(parser.key, "false"), 1, ""}});
    for (const char* other : {"1", "0", "\"true\"", "null", "[true]", "{}"}) {
        expect_parsed(parse, {{object(parser.key, other), parser.other, ""}});
    }
}

void expect_number(const NumberParser& parser) {
    expect_parsed(parser.parse, without_key(parser.key));
    expect_parsed(parser.parse, {{object(parser.key, "1234"), 0, parser.outputs}});
    for (const char* other : {"true", "\"1234\"", "null", "[1234]"}) {
        expect_parsed(parser.parse, {{object(parser.key, other), parser.wrong, ""}});
    }
}

void expect_joint_array(const JointArrayParser& parser) {
    const std::string six = "[1000,-2000,1,0,166,1234]", seven = "[1000,-2000,1,0,166,1234,0]";
    expect_parsed(parser.parse, without_key(parser.key));
    expect_parsed(parser.parse, {{object(parser.key, six), 0, parser.outputs},
                                 {object(parser.key, seven), parser.wrong_size, ""},
                                 {object(parser.key, "[1,2,3,4,5]"), parser.wrong_size, ""},
                                 {object(parser.key, "[]"), parser.wrong_size, ""},
                                 {object(parser.key, "1"), parser.not_array, ""},
                                 {object(parser.key, "\"1\""), parser.not_array, ""},
                                 {object(parser.key, "null"), parser.not_array, ""}});

    constexpr ArmSocket kSevenJoints = 1000;
    if (Get_Socket_Idx(kSevenJoints) < 0) Init_Socket_Joint(75, kSevenJoints);
    std::string outputs;
    EXPECT_EQ(parser.parse(kSevenJoints, object(parser.key, seven).c_str(), outputs), 0) << parser.key;
    EXPECT_EQ(outputs, std::string(parser.outputs) + " 0") << parser.key;
    EXPECT_EQ(parser.parse(kSevenJoints, object(parser.key, six).c_str(), outputs), parser.wrong_size) << parser.key;
    EXPECT_EQ(outputs, "") << parser.key;
}

}  // namespace zk::test
