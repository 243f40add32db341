// The reader of replies: what it makes of every key that is missing or of another type, and of a text that is cut.
#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>

#include "zk_base.h"

namespace {

using nlohmann::json;

struct Reader {
    const char* name;
    std::function<int(const char*)> parse;
    json good;
    std::map<std::string, int> missing = {};  // by path, where the status is not 9
    int wrong = 11;
};

int parse_push(const char* text) {
    RealtimePushConfig config{};
    return Parser_Get_Realtime_Push(text, &config);
}

int parse_speed(const char* text) {
    float joint[7];
    return Parser_Get_Joint_Speed(-1, text, joint);
}

int parse_position(const char* text) {
    float joint[7];
    return Parser_Get_Min_Pos(-1, text, joint);
}

int parse_default_program(const char* text) {
    int32_t id;
    return Parser_Get_id(text, &id);
}

const Reader kReaders[] = {
    {"every kind of value",
     parse_push,
     {{"cycle", 5},
      {"enable", true},
      {"port", 8089},
      {"force_coordinate", 1},
      {"ip", "192.168.1.10"},
      {"custom",
       {{"joint_speed", true},
        {"lift_state", false},
        {"expand_state", true},
        {"hand", false},
        {"arm_current_status", true},
        {"aloha_state", false}}}},
     {{"/force_coordinate", 0}}},
    {"acknowledgement", Parser_Move_Stop, {{"arm_stop", true}}},
    {"older acknowledgement", Parser_Joint_Zero_Pos, {{"joint_zero_pos", true}}, {}, 8},
    {"verdict", Parser_RunProject, {{"project_state", true}}},
    {"number", parse_default_program, {{"id", 3}}},
    {"joint array", parse_position, {{"min_pos", {1, 2, 3, 4, 5, 6}}}},
    {"older joint array", parse_speed, {{"joint_speed", {1, 2, 3, 4, 5, 6}}}, {}, 10},
};

// Calls `visit` with the path of every key, also of nested objects.
void for_each_key(const json& object, const std::string& path, const std::function<void(const std::string&)>& visit) {
    for (const auto& [key, value] : object.items()) {
        visit(path + "/" + key);
        if (value.is_object()) for_each_key(value, path + "/" + key, visit);
    }
}

bool of_same_type(const json& a, const json& b) { return a.type() == b.type() || (a.is_number() && b.is_number()); }

class Replies : public testing::TestWithParam<Reader> {
 protected:
    void expect(const json& reply, int status) const {
        EXPECT_EQ(GetParam().parse(reply.dump().c_str()), status) << reply.dump();
    }
};
INSTANTIATE_TEST_SUITE_P(, Replies, testing::ValuesIn(kReaders), [](const auto& row) {
    std::string name = row.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

TEST_P(Replies, WithAKeyMissingOrOfAnotherTypeAreRefused) {
    const Reader& reader = GetParam();
    expect(reader.good, 0);
    for_each_key(reader.good, "", [&](const std::string& path) {
        const json::json_pointer key(path);
        const auto exception = reader.missing.find(path);
        json reply = reader.good;
        reply[key.parent_pointer()].erase(key.back());
        expect(reply, exception == reader.missing.end() ? 9 : exception->second);
        for (const json& other : {json(nullptr), json(true), json(1), json("1"), json::array(), json::object()}) {
            if (of_same_type(other, reader.good[key])) continue;
            reply = reader.good;
            reply[key] = other;
            expect(reply, reader.wrong);
        }
    });
}

TEST_P(Replies, ThatAreCutOrNoObjectAreRefused) {
    const std::string whole = GetParam().good.dump();
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(GetParam().parse(whole.substr(0, size).c_str()), 9) << whole.substr(0, size);
    }
    for (const char* text : {"7", "[]", "null", "\"text\"", "{}"}) EXPECT_EQ(GetParam().parse(text), 9) << text;
    EXPECT_EQ(GetParam().parse(nullptr), 9);
}

int trees = 0;  // that cJSON has been asked memory for

// cJSON reads only the texts that the library's own reader leaves to it; both read the same.
TEST(ReplyValues, OfUsualTextsAreReadWithoutATree) {
    cJSON_Hooks counting{[](size_t size) { return ++trees, std::malloc(size); }, std::free};
    cJSON_InitHooks(&counting);
    for (const Reader& reader : kReaders) EXPECT_EQ(reader.parse(reader.good.dump().c_str()), 0) << reader.name;
    EXPECT_EQ(trees, 0);
    std::string deep = "7";
    for (int level = 0; level < 20; ++level) deep = "[" + deep + "]";
    std::string crowded = "7";
    for (int i = 0; i < 1100; ++i) crowded += ",7";
    const std::string spread(11'000, ' ');
    for (const std::string& text :
         {std::string(R"({"id":3e0})"), std::string(R"({"i\u0064":3})"), std::string(R"({"id":3.0000000000000001})"),
          "{\"more\":" + deep + R"(,"id":3})", "{\"more\":[" + crowded + R"(],"id":3})", "{" + spread + R"("id":3})"}) {
        trees = 0;
        int32_t id = 0;
        EXPECT_EQ(Parser_Get_id(text.c_str(), &id), 0) << text;
        EXPECT_EQ(id, 3) << text;
        EXPECT_GT(trees, 0) << text;
    }
    cJSON_InitHooks(nullptr);
}

TEST(ReplyValues, OfAnotherSizeOrFalseAreRefused) {
    for (const char* array : {"[]", "[1,2,3,4,5]", "[1,2,3,4,5,6,7]"}) {
        EXPECT_EQ(parse_position((std::string("{\"min_pos\":") + array + "}").c_str()), 10) << array;
        EXPECT_EQ(parse_speed((std::string("{\"joint_speed\":") + array + "}").c_str()), 10) << array;
    }
    EXPECT_EQ(Parser_Move_Stop("{\"arm_stop\":false}"), 1);
    EXPECT_EQ(Parser_Joint_Zero_Pos("{\"joint_zero_pos\":false}"), 1);
    EXPECT_EQ(Parser_RunProject("{\"project_state\":false}"), 16);
}

}  // namespace
